#include <orv/geometry/shapes/circle.h>

#include "geometry/shapes/line_shapes.h"

namespace orv {

Circle::Circle() { set_type(NODE_TYPE_CIRCLE); }

bool Circle::set_params(float radius, unsigned int num_segments, float r, float g, float b,
                        float a) {
  radius_ = radius;
  num_segments_ = num_segments;
  color_ = vec4(r, g, b, a);
  update_build_state(true);
  return true;
}

bool Circle::set_build_params(float radius, unsigned int num_segments, float r, float g, float b,
                              float a) {
  return set_params(radius, num_segments, r, g, b, a);
}

bool Circle::build(Node*) { return build_line_shape(*this); }

bool Circle::_build() {
  if (!start_shape(2ull * num_segments_, PRIMITIVE_LINES)) return false;
  _update_radius();
  set_vertices_color(color_, nullptr);
  return Polyline::_build();
}

bool Circle::update_radius(float radius) {
  radius_ = radius;
  _update_radius();
  return true;
}

bool Circle::update_color(float r, float g, float b, float a) {
  color_ = vec4(r, g, b, a);
  set_vertices_color(color_, nullptr);
  return true;
}

void Circle::_update_radius() {
  // Of segments set since the last build there are no vertices yet.
  if (get_num_vertices(nullptr) != 2ull * num_segments_) return;
  for_each_circle_vertex(num_segments_, [this](unsigned int i, float c, float s) {
    set_vertex_position(i, radius_ * c, radius_ * s, 0.0f);
  });
}

}  // namespace orv
