/// @file
/// Four-component vector of ints.
#pragma once

#include <orv/core/api.h>

namespace orv {

/// Four ints, all zero by default: storage and comparison only.
class ORV_API vec4i {
 public:
  int x;  ///< first lane
  int y;  ///< second lane
  int z;  ///< third lane
  int w;  ///< fourth lane

  /// (0, 0, 0, 0).
  constexpr vec4i() : x(0), y(0), z(0), w(0) {}
  /// The components.
  constexpr vec4i(int vx, int vy, int vz, int vw) : x(vx), y(vy), z(vz), w(vw) {}

  /// Equal on every lane.
  constexpr bool operator==(const vec4i& v) const {
    return x == v.x && y == v.y && z == v.z && w == v.w;
  }
  /// Opposite of `==`.
  constexpr bool operator!=(const vec4i& v) const { return !(*this == v); }
};

static_assert(sizeof(vec4i) == 16);

}  // namespace orv
