/// @file
/// Six planes of a view, for culling.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>

namespace orv {

/// The six planes of a camera's view: 0 right, 1 left, 2 bottom, 3 top, 4 near, 5 far.
///
/// A plane (a, b, c, d) gives the signed distance a*x + b*y + c*z + d, positive inside. In all
/// checks `skip_far` leaves the far plane out.
class ORV_API Frustum {
 public:
  float planes[6][4] = {};  ///< a, b, c, d of each plane
  float clip[16] = {};      ///< product of projection and view

  /// Takes the planes from a projection and a view matrix; null changes nothing.
  void update(const mat4* projection, const mat4* view);

  /// Whether the point lies inside of any ONE of the planes; `check_sphere` with radius 0 asks for
  /// all of them.
  bool check_point(float x, float y, float z, bool skip_far) const;
  /// Whether the point lies inside of any one of the planes.
  bool check_point(const vec3& point, bool skip_far) const;
  /// Whether the point (x, y, z) lies inside of any one of the planes.
  bool check_point(const vec4& point, bool skip_far) const;

  /// Whether no plane has the whole sphere outside; a sphere that touches from outside passes.
  bool check_sphere(const vec4& center, float radius, bool skip_far) const;
  /// Whether no plane has the whole global sphere of the volume outside.
  bool check_sphere(const BoundingVolume& volume, bool skip_far) const;
  /// Whether no plane has the whole global box of the volume outside.
  bool check_axis_aligned_box(const BoundingVolume& volume, bool skip_far) const;
};

}  // namespace orv
