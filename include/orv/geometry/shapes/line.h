/// @file
/// One line.
#pragma once

#include <orv/core/api.h>
#include <orv/geometry/polyline.h>
#include <orv/math/vec3.h>

namespace orv {

/// A line between two points, white at first. Changes show at once.
class ORV_API Line : public Polyline {
 public:
  /// Both ends at the origin.
  Line();
  /// The ends, in scene units.
  Line(const vec3& start, const vec3& end);

  /// @{
  /// Store the ends for the next build. True.
  bool set_params(const vec3& start, const vec3& end);
  bool set_build_params(const vec3& start, const vec3& end);
  /// @}

  /// Builds this line alone when it is due, not its children.
  bool build(Node* node) override;
  /// Puts the vertices to the ends; their colours stay. False without memory for them.
  bool _build() override;

  /// @{
  /// Store an end and move its vertex.
  void set_start_position(const vec3& position);
  void set_start_position(float x, float y, float z);
  void set_end_position(const vec3& position);
  void set_end_position(float x, float y, float z);
  const vec3& get_start_position() const { return start_; }
  const vec3& get_end_position() const { return end_; }
  /// @}

  /// @{
  /// Colour of an end, RGBA.
  void set_start_color(const vec4& color);
  void set_start_color(float r, float g, float b, float a);
  void set_end_color(const vec4& color);
  void set_end_color(float r, float g, float b, float a);
  /// @}

  /// @{
  /// Move the vertex of an end to the place `t` of the way from the start to the end, 0 to 1 and
  /// beyond. The stored ends stay.
  void set_start_factor(float t);
  void set_end_factor(float t);
  /// @}

 private:
  vec3 start_;
  vec3 end_;
};

}  // namespace orv
