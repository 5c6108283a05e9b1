#include <orv/geometry/shapes/box.h>

#include <orv/math/bounding_volume.h>

#include "geometry/shapes/line_shapes.h"

namespace orv {

namespace {

constexpr unsigned int NUM_VERTICES = 24;

// Corners by bits: 1 for +x, 2 for +y, 4 for +z.
constexpr unsigned char EDGES[NUM_VERTICES] = {0, 1, 1, 5, 5, 4, 4, 0,   // bottom
                                               2, 3, 3, 7, 7, 6, 6, 2,   // top
                                               0, 2, 1, 3, 5, 7, 4, 6};  // upright

}  // namespace

Box::Box() { set_type(NODE_TYPE_BOX); }

bool Box::set_params(float width, float height, float depth, float r, float g, float b, float a) {
  width_ = width;
  height_ = height;
  depth_ = depth;
  color_ = vec4(r, g, b, a);
  update_build_state(true);
  return true;
}

bool Box::set_build_params(float width, float height, float depth, float r, float g, float b,
                           float a) {
  return set_params(width, height, depth, r, g, b, a);
}

bool Box::build(Node*) { return build_line_shape(*this); }

bool Box::_build() {
  if (!start_shape(NUM_VERTICES, PRIMITIVE_LINES)) return false;
  _update_geometry_v2(vec4());
  set_vertices_color(color_, nullptr);
  return Polyline::_build();
}

bool Box::update_size(float width, float height, float depth) {
  width_ = width;
  height_ = height;
  depth_ = depth;
  _update_geometry_v2(vec4());
  return true;
}

bool Box::update_size_from_bv(const BoundingVolume& volume) {
  const vec4& min = volume.get_box_min();
  const vec4& max = volume.get_box_max();
  width_ = max.x - min.x;
  height_ = max.y - min.y;
  depth_ = max.z - min.z;
  center_ = vec4(min.x + width_ * 0.5f, min.y + height_ * 0.5f, min.z + depth_ * 0.5f, 1.0f);
  _update_geometry();
  return true;
}

bool Box::update_color(float r, float g, float b, float a) {
  color_ = vec4(r, g, b, a);
  set_vertices_color(color_, nullptr);
  return true;
}

bool Box::_update_geometry() { return _update_geometry_v2(center_); }

bool Box::_update_geometry_v2(const vec4& center) {
  if (get_num_vertices(nullptr) != NUM_VERTICES) return false;
  const float x = width_ * 0.5f;
  const float y = height_ * 0.5f;
  const float z = depth_ * 0.5f;
  for (unsigned int i = 0; i < NUM_VERTICES; ++i) {
    const unsigned int corner = EDGES[i];
    set_vertex_position(i, center.x + (corner & 1u ? x : -x), center.y + (corner & 2u ? y : -y),
                        center.z + (corner & 4u ? z : -z));
  }
  return true;
}

}  // namespace orv
