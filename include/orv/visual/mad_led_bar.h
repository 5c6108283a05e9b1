/// @file
/// Row of coloured points.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/math/vec3.h>
#include <orv/scene/object.h>

namespace orv {

struct MadLedBarData;

/// A row of lights between two points, each a vertex of a pool with a colour of its own. Points are
/// drawn with whatever program is current, which decides how large they are.
class ORV_API MadLedBar : public Object {
 public:
  /// Without lights.
  MadLedBar();
  /// Releases the pool without a renderer: its GPU objects are leaked unless _cleanup or kill ran
  /// before.
  ~MadLedBar() override;
  MadLedBar(const MadLedBar&) = delete;
  MadLedBar& operator=(const MadLedBar&) = delete;

  /// Releases the pool; there are no lights then. True.
  bool _cleanup(Renderer* renderer) override;
  /// Draws the pool.
  void _render(Renderer* renderer) override;
  /// The same for the pool.
  void set_opengl_2_3_rendering_states(bool legacy, Node* node) override;
  /// Number of lights, whatever `node` is.
  unsigned int get_num_vertices(Node* node) override;
  /// Vertex of a light, borrowed; null when there is none.
  Vertex* get_vertex(unsigned int index) override;
  /// Vertex of a light by value, a default one when there is none.
  Vertex get_vertex_v2(unsigned int index) override;

  /// Makes `num_leds` dark grey lights in place of those before. Light i stands at
  /// start + (end - start) * i / num_leds: the last one a step short of `end`. False, with an error
  /// in the log, for 0 and for too little memory. A size given before is kept.
  bool initialize(const vec3& start, const vec3& end, unsigned int num_leds);
  /// The same with a size of the points in pixels, which drawing hands to the uniform "point_size"
  /// of the current program. Nothing is handed over for 0 or less.
  bool initialize(const vec3& start, const vec3& end, unsigned int num_leds, float size);
  unsigned int get_num_leds() const;  ///< as initialised last

  /// @{
  /// Colour of a light, RGBA. False when there is no such light.
  bool set_led_color(unsigned int led, const vec4& color);
  bool set_led_color(unsigned int led, float r, float g, float b, float a);
  /// @}

  /// The pool that is drawn, borrowed; null before initialize and after _cleanup.
  VertexPool* get_vertex_pool() const;

 private:
  void _vp_update_leds_positions();
  // Lights as planes are not made: false.
  bool _plane_set_led_color(unsigned int led, const vec4& color);
  bool _plane_set_led_normal(unsigned int led, const vec3& normal);

  MadLedBarData* data_;
};

}  // namespace orv
