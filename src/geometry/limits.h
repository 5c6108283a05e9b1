#pragma once

#include <cstdint>
#include <new>

namespace orv {

/// Largest array and largest vertex buffer, in bytes: sizes are handed about as int.
inline constexpr std::uint64_t MAX_GEOMETRY_BYTES = 0x7FFFFFFF;

/// Throws what an exhausted allocator throws when `count` elements exceed the limit. Without it the
/// system would promise more memory than it has and end the process later.
inline void check_geometry_bytes(std::uint64_t count, std::uint64_t element_size) {
  if (element_size != 0 && count > MAX_GEOMETRY_BYTES / element_size) throw std::bad_alloc();
}

}  // namespace orv
