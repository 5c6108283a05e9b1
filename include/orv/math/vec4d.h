/// @file
/// Four-component vector of doubles.
#pragma once

#include <orv/core/api.h>

namespace orv {

/// Four doubles, (0, 0, 0, 1) by default: storage and comparison only.
class ORV_API vec4d {
 public:
  double x;  ///< first lane
  double y;  ///< second lane
  double z;  ///< third lane
  double w;  ///< fourth lane

  /// (0, 0, 0, 1).
  constexpr vec4d() : x(0.0), y(0.0), z(0.0), w(1.0) {}
  /// The components.
  constexpr vec4d(double vx, double vy, double vz, double vw) : x(vx), y(vy), z(vz), w(vw) {}

  /// Exact on every lane; NaN is unequal to everything.
  constexpr bool operator==(const vec4d& v) const {
    return x == v.x && y == v.y && z == v.z && w == v.w;
  }
  /// Opposite of `==`.
  constexpr bool operator!=(const vec4d& v) const { return !(*this == v); }
};

static_assert(sizeof(vec4d) == 32);

}  // namespace orv
