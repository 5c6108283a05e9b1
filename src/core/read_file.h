#pragma once

#include <vector>

namespace orv::detail {

/// Reads a whole plain file. False for a null path, for anything that is no plain file, for one of
/// INT_MAX bytes or more and when reading fails; `out` is then empty.
bool read_whole_file(const char* path, std::vector<unsigned char>& out);

}  // namespace orv::detail
