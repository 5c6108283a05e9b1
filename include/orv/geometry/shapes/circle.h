/// @file
/// Circle of lines.
#pragma once

#include <orv/core/api.h>
#include <orv/geometry/polyline.h>

namespace orv {

/// Circle round the origin in the XY plane, a pair of vertices for each segment.
///
/// Degrees are converted with a factor of its own, 0.01745328: the last segment ends some
/// millionths of a radian before the first begins.
class ORV_API Circle : public Polyline {
 public:
  /// Radius 10 scene units, 10 segments, black.
  Circle();

  /// @{
  /// Store the parameters for the next build. True.
  bool set_params(float radius, unsigned int num_segments, float r, float g, float b, float a);
  bool set_build_params(float radius, unsigned int num_segments, float r, float g, float b,
                        float a);
  /// @}

  float get_radius() const { return radius_; }                     ///< in scene units
  unsigned int get_num_segments() const { return num_segments_; }  ///< as set
  const vec4& get_color() const { return color_; }                 ///< RGBA

  /// Builds this circle alone when it is due, not its children.
  bool build(Node* node) override;
  /// False, without vertices, for no segments and for more than fit in memory.
  bool _build() override;

  /// Stores the radius and moves the vertices. True.
  bool update_radius(float radius);
  /// Stores the colour and gives it to all vertices. True.
  bool update_color(float r, float g, float b, float a);

  /// Writes the positions; nothing while the vertices are not those of the present segments.
  void _update_radius();

 private:
  float radius_ = 10.0f;
  unsigned int num_segments_ = 10;
  vec4 color_;
};

}  // namespace orv
