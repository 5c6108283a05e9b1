// Any bytes as the file of a plugin: what passes the check lies within the file.
#include "core/platform/module_check.h"

#include <elf.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

bool check(const std::uint8_t* data, std::size_t head, std::size_t file) {
  std::string error;
  const bool is_good = orv::platform::check_module_head(data, head, file, error);
  if (is_good != error.empty()) std::abort();
  return is_good;
}

/// Reads the program headers once more, in the plainest way.
void expect_segments_within(const std::uint8_t* data, std::size_t size) {
  Elf64_Ehdr header;
  std::memcpy(&header, data, sizeof header);
  bool loads = false;
  for (std::size_t i = 0; i < header.e_phnum; ++i) {
    const std::size_t at = header.e_phoff + i * sizeof(Elf64_Phdr);
    if (at > size || size - at < sizeof(Elf64_Phdr)) std::abort();
    Elf64_Phdr segment;
    std::memcpy(&segment, data + at, sizeof segment);
    if (segment.p_type != PT_LOAD && segment.p_type != PT_DYNAMIC) continue;
    loads = loads || segment.p_type == PT_LOAD;
    if (segment.p_offset > size || segment.p_filesz > size - segment.p_offset) std::abort();
  }
  if (!loads) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const bool is_good = check(data, size, size);
  if (is_good) expect_segments_within(data, size);
  // A part of the head, or of the file, is never better than the whole.
  const std::size_t part = size > 0 ? data[size - 1] % size : 0;
  if (check(data, part, size) && !is_good) std::abort();
  if (check(data, part, part) && !is_good) std::abort();
  return 0;
}
