#pragma once

#include <orv/geometry/geometry_core.h>

namespace orv {

// In a scene of many meshes each one's record has left the processor's caches since the frame
// before. It is asked for early, and comes in while the program and its uniforms are being set.

/// Asks for the memory from `first` to `last`.
inline void prefetch_range(const void* first, const void* last) {
  constexpr int LINE = 64;
  for (const char* p = static_cast<const char*>(first); p < last; p += LINE) __builtin_prefetch(p);
  __builtin_prefetch(last);
}

/// Asks for the fields of a geometry that binding and drawing read.
inline void prefetch_record(const GeometryCore& geometry) {
  prefetch_range(&geometry.primitive_type, &geometry.tessellation);
  prefetch_range(&geometry.update_interleaved_needed, &geometry.gpu_state.cpu_released);
}

}  // namespace orv
