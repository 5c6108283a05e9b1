/// @file
/// Smooth interpolation of keyframes.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/scene/object.h>

namespace orv {

struct MiniSplineData;

/// Keyframes of three values in time and a smooth curve (Catmull-Rom) through them. Keyframes are
/// given in the order of their times. The object can draw the curve that its values describe as
/// points in space.
class ORV_API MiniSpline : public Object {
 public:
  /// Without keyframes.
  MiniSpline();
  /// Releases the line without a renderer: its GPU objects are leaked unless _cleanup or kill ran
  /// before.
  ~MiniSpline() override;
  MiniSpline(const MiniSpline&) = delete;
  MiniSpline& operator=(const MiniSpline&) = delete;

  /// Releases the line that was drawn; keyframes stay. True.
  bool _cleanup(Renderer* renderer) override;
  /// Draws the curve as a line strip of 1000 points at even times from the first keyframe to the
  /// last, with whatever program is current. The render state is not looked at: it draws always.
  void render(Renderer* renderer, Node* node) override;

  using Object::set_vertices_color;
  /// Colour of the line, RGBA, white at first.
  void set_vertices_color(const vec4& color, Node* node) override;
  /// The same.
  void set_vertices_color(float r, float g, float b, float a, Node* node) override;

  /// Appends a keyframe and gives its index.
  unsigned int add_keyframe(float time, float x, float y, float z);
  /// Changes a keyframe. False when there is none of this index.
  bool set_keyframe(unsigned int index, float time, float x, float y, float z);
  unsigned int get_num_keyframes() const;  ///< keyframes added

  /// Writes the three values at time `t`, which is limited to the time of the keyframes. At the
  /// time of a keyframe these are its values. Zeros without keyframes; nothing for null.
  void get_value(float t, float* out3);

 private:
  static void eval_spline(const float* keys, int num_keys, int dim, float t, float* out);
  void pack_keys();
  bool update_line();

  friend struct MiniSplineData;

  MiniSplineData* data_;
};

}  // namespace orv
