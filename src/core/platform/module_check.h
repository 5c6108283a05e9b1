#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace orv::platform {

/// Whether the head of a file describes a shared library of this machine whose contents are all
/// there. The system's loader maps what the head promises and dies of a truncated file.
///
/// @param head first bytes of the file
/// @param size number of them
/// @param file_size size of the whole file
/// @param error receives the cause when the answer is false
bool check_module_head(const unsigned char* head, size_t size, std::uint64_t file_size,
                       std::string& error);

/// The same for a file. False also for what is no plain file.
bool check_module_file(const char* path, std::string& error);

}  // namespace orv::platform
