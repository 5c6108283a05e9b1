/// @file
/// What casting a ray at an object gives.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/math/ray.h>
#include <orv/math/vec4.h>

namespace orv {

/// Input and output of RayCaster::cast_ray_object.
class ORV_API RayObjectIntersection {
 public:
  Ray ray;                      ///< for the caller; not read, not written
  Object* object = nullptr;     ///< the mesh hit, borrowed; written by a hit alone
  vec4 point;                   ///< where it was hit: x, y, z written by a hit alone
  float distance = 0.0f;        ///< parameter along the ray; 1e13 when no face was hit
  unsigned int face = 0;        ///< index of the face hit; 0 when none was
  bool first_hit_only = false;  ///< input: take the first face that is hit, not the nearest
  bool intersected = false;     ///< whether a face was hit
};

}  // namespace orv
