/// @file
/// Box and sphere around an object, in its own space and in the world.
#pragma once

#include <orv/core/api.h>
#include <orv/math/mat4.h>
#include <orv/math/vec4.h>

namespace orv {

/// Box and sphere of an object: local, and global as rebuilt from a matrix by `update`.
///
/// A new volume is empty: its minimum lies above its maximum, so it takes whatever is added.
class ORV_API BoundingVolume {
 public:
  /// Distance of the bounds of an empty volume from the origin.
  static constexpr float FAR_AWAY = 1e30f;

  bool inscribed_sphere = true;  ///< a radius taken from a box is divided by 1.732
  bool enabled = true;           ///< bounds are still to be taken from the geometry
  vec4 sphere_center;            ///< local
  float sphere_radius = 0.0f;    ///< local
  vec4 box_min{FAR_AWAY, FAR_AWAY, FAR_AWAY, 1.0f};            ///< local
  vec4 box_max{-FAR_AWAY, -FAR_AWAY, -FAR_AWAY, 1.0f};         ///< local
  vec4 box_size;                                               ///< local, maximum - minimum
  vec4 global_sphere_center;                                   ///< in the world
  float global_sphere_radius = 0.0f;                           ///< in the world
  vec4 global_box_min{FAR_AWAY, FAR_AWAY, FAR_AWAY, 1.0f};     ///< in the world
  vec4 global_box_max{-FAR_AWAY, -FAR_AWAY, -FAR_AWAY, 1.0f};  ///< in the world
  vec4 global_box_size;                                        ///< in the world
  vec4 aabb_min{FAR_AWAY, FAR_AWAY, FAR_AWAY, 1.0f};     ///< `global_box_min` of the last `update`
  vec4 aabb_max{-FAR_AWAY, -FAR_AWAY, -FAR_AWAY, 1.0f};  ///< `global_box_max` of the last `update`
  vec4 aabb_size;                                        ///< `global_box_size` of the last `update`
  vec4 corners[8];                                       ///< corners of the local box in the world
  vec4 aabb_corners[8];  ///< corners of the box along the world's axes

  /// Puts the local fields back to those of an empty volume.
  void reset_locals();
  /// Puts the global and `aabb_` fields back to those of an empty volume; `corners` stay.
  void reset_globals();

  /// Whether a radius taken from a box is divided by 1.732.
  bool is_inscribed_sphere() const { return inscribed_sphere; }
  /// Sets whether a radius taken from a box is divided by 1.732.
  void use_inscribed_sphere(bool state) { inscribed_sphere = state; }

  /// Sets the local box, w included, and the local sphere round its middle.
  void set_box(const vec4& min, const vec4& max);
  /// Sets the local sphere; the box stays.
  void set_sphere(const vec4& center, float radius);
  /// Grows the global box to hold another, and takes the global sphere from it.
  void update_globals(const vec4& min, const vec4& max);
  /// Rebuilds all global fields from the local box round `sphere_center`. The global radius is the
  /// largest half size, whatever `inscribed_sphere` says.
  void update(const mat4& matrix);
  /// Grows the local box to hold the local box of `other` and centres the sphere; its radius stays.
  /// Writes one info line to the log.
  void merge(const BoundingVolume& other);

  /// Local minimum.
  const vec4& get_box_min() const { return box_min; }
  /// Local maximum.
  const vec4& get_box_max() const { return box_max; }
  /// Local size.
  const vec4& get_box_size() const { return box_size; }
  /// Local centre.
  const vec4& get_sphere_center() const { return sphere_center; }
  /// Local radius.
  float get_sphere_radius() const { return sphere_radius; }
  /// Size in the world.
  const vec4& get_global_box_size() const { return global_box_size; }
  /// Centre in the world.
  const vec4& get_global_sphere_center() const { return global_sphere_center; }
  /// Radius in the world.
  float get_global_sphere_radius() const { return global_sphere_radius; }

  /// Writes x, y, z of the eight corners of a box; their w stays.
  /// @param out eight vectors; null writes nothing
  static void _update_corners(vec4* out, const vec4& center, const vec4& size);
};

}  // namespace orv
