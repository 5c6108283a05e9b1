/// @file
/// Three circles round a point.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/scene/object.h>

namespace orv {

/// Sphere shown by three circles, round the Z, the X and the Y axis. It is one Circle, a child,
/// drawn three times: as it is, turned by 90 degrees about Y, and about X. Programs get the engine
/// uniforms and nothing else.
class ORV_API Sphere : public Object {
 public:
  /// Radius 10 scene units, 10 segments, black.
  Sphere();
  /// Gives the circle up without a renderer.
  ~Sphere() override;

  /// @{
  /// Store the parameters for the next build. True.
  bool set_params(float radius, unsigned int num_segments, float r, float g, float b, float a);
  bool set_build_params(float radius, unsigned int num_segments, float r, float g, float b,
                        float a);
  /// @}

  float get_radius() const { return radius_; }                     ///< in scene units
  unsigned int get_num_segments() const { return num_segments_; }  ///< of each circle
  const vec4& get_color() const { return color_; }                 ///< RGBA
  /// The circle, null before the first build. Borrowed.
  Circle* get_circle() const { return circle_; }

  /// Releases the circle, the materials and the program. True.
  bool _cleanup(Renderer* renderer) override;
  /// Builds this sphere when it is due, and its circle, but no other child.
  bool build(Node* node) override;
  /// Makes the circle when there is none and builds it. False when that fails.
  bool _build() override;
  /// Draws the circles. Nothing before the first build and for a null renderer.
  void _render(Renderer* renderer) override;

  /// Stores the radius and gives it to the circle. True.
  bool update_radius(float radius);
  /// Stores the colour and gives it to the circle. True.
  bool update_color(float r, float g, float b, float a);
  /// With true the circle round X is drawn red, the one round Y green, the one round Z blue. False
  /// at first: all have the colour of the sphere.
  void enable_rgb_color(bool state);
  /// Whether the circle round `axis` (0 X, 1 Y, 2 Z) has the colour of its axis; false for any
  /// other number.
  bool get_rgb_color_state(int axis) const;

 private:
  void release_circle(Renderer* renderer);

  float radius_ = 10.0f;
  unsigned int num_segments_ = 10;
  vec4 color_;
  bool axis_color_[3] = {};
  Circle* circle_ = nullptr;
};

}  // namespace orv
