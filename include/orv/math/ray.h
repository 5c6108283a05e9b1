/// @file
/// A ray in space.
#pragma once

#include <orv/core/api.h>
#include <orv/math/vec4.h>

namespace orv {

/// A point and a direction. Operations on rays say where the direction has to be of length 1.
class ORV_API Ray {
 public:
  /// Both (0, 0, 0, 1).
  constexpr Ray() = default;
  /// Copies both.
  constexpr Ray(const vec4& ray_origin, const vec4& ray_direction)
      : origin(ray_origin), direction(ray_direction) {}

  vec4 origin;     ///< where the ray starts
  vec4 direction;  ///< where it goes; w means nothing
};

}  // namespace orv
