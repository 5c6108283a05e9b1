#include <orv/geometry/shapes/bone.h>

#include <algorithm>

#include "geometry/shapes/line_shapes.h"

namespace orv {

namespace {

// Behind the circles: the square, then a pair of corner and tip for each corner.
constexpr unsigned int SQUARE_VERTICES = 8;
constexpr unsigned int PYRAMID_VERTICES = 16;

}  // namespace

Bone::Bone() { set_type(NODE_TYPE_BONE); }

bool Bone::set_params(float radius, unsigned int num_segments, float length, float r, float g,
                      float b, float a) {
  radius_ = radius;
  num_segments_ = num_segments;
  length_ = length;
  color_ = vec4(r, g, b, a);
  update_build_state(true);
  return true;
}

bool Bone::set_build_params(float radius, unsigned int num_segments, float length, float r, float g,
                            float b, float a) {
  return set_params(radius, num_segments, length, r, g, b, a);
}

bool Bone::build(Node*) { return build_line_shape(*this); }

bool Bone::_build() {
  num_segments_ = std::max(num_segments_, 3u);
  const unsigned int pyramid = length_ != 0.0f ? PYRAMID_VERTICES : 0;
  if (!start_shape(6ull * num_segments_ + pyramid, PRIMITIVE_LINES)) return false;
  _update_bone();
  set_vertices_color(color_, nullptr);
  return Polyline::_build();
}

bool Bone::update_bone_length(float length) {
  if (length_ == 0.0f) return false;
  length_ = length;
  const unsigned int first = num_segments_ * 6 + SQUARE_VERTICES;
  if (get_num_vertices(nullptr) != num_segments_ * 6ull + PYRAMID_VERTICES) return true;
  for (unsigned int i = first + 1; i < first + 8; i += 2) {
    set_vertex_position(i, 0.0f, radius_ + length_, 0.0f);
  }
  return true;
}

bool Bone::update_color(float r, float g, float b, float a) {
  color_ = vec4(r, g, b, a);
  set_vertices_color(color_, nullptr);
  return true;
}

void Bone::_update_bone() {
  const unsigned int pyramid = length_ != 0.0f ? PYRAMID_VERTICES : 0;
  if (get_num_vertices(nullptr) != 6ull * num_segments_ + pyramid) return;
  const unsigned int circle = num_segments_ * 2;
  for_each_circle_vertex(num_segments_, [&](unsigned int i, float c, float s) {
    set_vertex_position(i, radius_ * c, radius_ * s, 0.0f);
    set_vertex_position(circle + i, radius_ * c, 0.0f, radius_ * s);
    set_vertex_position(2 * circle + i, 0.0f, radius_ * c, radius_ * s);
  });
  if (length_ == 0.0f) return;
  const float half = radius_ * 0.5f;
  const vec3 corners[4] = {vec3(-half, radius_, -half), vec3(half, radius_, -half),
                           vec3(half, radius_, half), vec3(-half, radius_, half)};
  const unsigned int square = 3 * circle;
  for (unsigned int i = 0; i < 4; ++i) {
    set_vertex_position(square + 2 * i, corners[i]);
    set_vertex_position(square + 2 * i + 1, corners[(i + 1) % 4]);
    set_vertex_position(square + SQUARE_VERTICES + 2 * i, corners[i]);
  }
  update_bone_length(length_);
}

}  // namespace orv
