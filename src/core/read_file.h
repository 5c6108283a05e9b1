#pragma once

#include <vector>

namespace orv::detail {

/// Reads a whole plain file. False for a null path, for anything that is no plain file, for one of
/// INT_MAX bytes or more and when reading fails; `out` is then empty. There is room for one byte
/// more, so that a terminator copies nothing.
bool read_whole_file(const char* path, std::vector<unsigned char>& out);

/// Whether there is a plain file, which can be opened without waiting.
bool is_plain_file(const char* path);

}  // namespace orv::detail
