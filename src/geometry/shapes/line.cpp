#include <orv/geometry/shapes/line.h>

#include "geometry/shapes/line_shapes.h"

namespace orv {

Line::Line() : Line(vec3(), vec3()) {}

Line::Line(const vec3& start, const vec3& end) : start_(start), end_(end) {
  set_type(NODE_TYPE_LINE);
  initialize_v2(2, PRIMITIVE_LINES);
  set_vertex_position(0, start_);
  set_vertex_position(1, end_);
  Polyline::set_vertices_color(vec4(1.0f, 1.0f, 1.0f, 1.0f), nullptr);
}

bool Line::set_params(const vec3& start, const vec3& end) {
  start_ = start;
  end_ = end;
  update_build_state(true);
  return true;
}

bool Line::set_build_params(const vec3& start, const vec3& end) { return set_params(start, end); }

bool Line::build(Node*) { return build_line_shape(*this); }

bool Line::_build() {
  // The vertices may have been freed since the construction.
  if (get_num_vertices(nullptr) != 2) {
    if (!start_shape(2, PRIMITIVE_LINES)) return false;
    set_vertices_color(vec4(1.0f, 1.0f, 1.0f, 1.0f), nullptr);
  }
  set_start_position(start_);
  set_end_position(end_);
  return Polyline::_build();
}

// ---- ends ----

void Line::set_start_position(const vec3& position) {
  start_ = position;
  set_vertex_position(0, position);
}

void Line::set_start_position(float x, float y, float z) { set_start_position(vec3(x, y, z)); }

void Line::set_end_position(const vec3& position) {
  end_ = position;
  set_vertex_position(1, position);
}

void Line::set_end_position(float x, float y, float z) { set_end_position(vec3(x, y, z)); }

void Line::set_start_color(const vec4& color) { set_vertex_color(0, color); }

void Line::set_start_color(float r, float g, float b, float a) {
  set_start_color(vec4(r, g, b, a));
}

void Line::set_end_color(const vec4& color) { set_vertex_color(1, color); }

void Line::set_end_color(float r, float g, float b, float a) { set_end_color(vec4(r, g, b, a)); }

void Line::set_start_factor(float t) { set_vertex_position(0, start_ + (end_ - start_) * t); }

void Line::set_end_factor(float t) { set_vertex_position(1, start_ + (end_ - start_) * t); }

}  // namespace orv
