/// @file
/// One point.
#pragma once

#include <orv/core/api.h>
#include <orv/geometry/vertex_pool.h>
#include <orv/math/vec3.h>

namespace orv {

/// A vertex pool of one interleaved vertex, white at first. Its setters of position and colour
/// write the vertex; the object's own transform is reached through Object.
class ORV_API Point : public VertexPool {
 public:
  /// At the origin.
  Point();
  /// In scene units.
  explicit Point(const vec3& position);

  /// @{
  /// Moves the vertex; its w is 1.
  void set_position(const vec3& position);
  void set_position(float x, float y, float z);
  /// @}

  /// @{
  /// Colours the vertex, RGBA.
  void set_color(const vec4& color);
  void set_color(float r, float g, float b, float a);
  /// @}
};

}  // namespace orv
