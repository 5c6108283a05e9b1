#include <orv/geometry/shapes/pyramid.h>

#include "geometry/shapes/line_shapes.h"

namespace orv {

namespace {

constexpr unsigned int NUM_VERTICES = 16;

}  // namespace

Pyramid::Pyramid() { set_type(NODE_TYPE_PYRAMID); }

bool Pyramid::set_params(float base_size, float length, float r, float g, float b, float a) {
  return set_params_v2(base_size, length, 0.0f, r, g, b, a);
}

bool Pyramid::set_build_params(float base_size, float length, float r, float g, float b, float a) {
  return set_params(base_size, length, r, g, b, a);
}

bool Pyramid::set_params_v2(float base_size, float length, float base_offset, float r, float g,
                            float b, float a) {
  base_size_ = base_size;
  length_ = length;
  base_offset_ = base_offset;
  color_ = vec4(r, g, b, a);
  update_build_state(true);
  return true;
}

bool Pyramid::set_build_params_v2(float base_size, float length, float base_offset, float r,
                                  float g, float b, float a) {
  return set_params_v2(base_size, length, base_offset, r, g, b, a);
}

bool Pyramid::build(Node*) { return build_line_shape(*this); }

bool Pyramid::_build() {
  if (!start_shape(NUM_VERTICES, PRIMITIVE_LINES)) return false;
  write_positions();
  set_vertices_color(color_, nullptr);
  return Polyline::_build();
}

bool Pyramid::update_length(float length) {
  length_ = length;
  write_positions();
  return true;
}

bool Pyramid::update_color(float r, float g, float b, float a) {
  color_ = vec4(r, g, b, a);
  set_vertices_color(color_, nullptr);
  return true;
}

void Pyramid::write_positions() {
  if (get_num_vertices(nullptr) != NUM_VERTICES) return;
  const float half = base_size_ * 0.5f;
  const vec3 corners[4] = {vec3(-half, base_offset_, -half), vec3(half, base_offset_, -half),
                           vec3(half, base_offset_, half), vec3(-half, base_offset_, half)};
  const vec3 tip(0.0f, base_offset_ + length_, 0.0f);
  for (unsigned int i = 0; i < 4; ++i) {
    set_vertex_position(2 * i, corners[i]);
    set_vertex_position(2 * i + 1, corners[(i + 1) % 4]);
    set_vertex_position(8 + 2 * i, corners[i]);
    set_vertex_position(8 + 2 * i + 1, tip);
  }
}

}  // namespace orv
