#pragma once

#include <vector>

namespace orv::detail {

/// What an error number of the system means; the text is never freed.
const char* system_fault(int error);

inline constexpr const char* NOT_PLAIN_FILE = "not a plain file";
inline constexpr const char* FILE_TOO_LARGE = "2 GiB or more";

/// Reads a whole plain file. False for a null path, for anything that is no plain file, for one of
/// INT_MAX bytes or more and when reading fails; `out` is then empty, and `fault`, when not null,
/// tells the cause by a text that is never freed. There is room for one byte more, so that a
/// terminator copies nothing.
bool read_whole_file(const char* path, std::vector<unsigned char>& out,
                     const char** fault = nullptr);

/// Whether there is a plain file, which can be opened without waiting. `fault` as above.
bool is_plain_file(const char* path, const char** fault = nullptr);

}  // namespace orv::detail
