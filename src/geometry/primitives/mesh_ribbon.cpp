#include <orv/geometry/primitives/mesh_ribbon.h>

#include <algorithm>
#include <climits>
#include <vector>

#include "geometry/primitives/shape_build.h"

namespace orv {

struct MeshRibbonData {
  std::vector<vec4> points;
  float thickness = 2.0f;
  vec4 cross_vector{0.0f, 1.0f, 0.0f, 0.0f};
};

// ---- life ----

MeshRibbon::MeshRibbon() : MeshRibbon(VERTEX_FORMAT_DEFAULT) {}

MeshRibbon::MeshRibbon(VERTEX_FORMAT format) : Mesh(format), ribbon_(new MeshRibbonData) {
  set_type(NODE_TYPE_MESH_RIBBON);
}

MeshRibbon::~MeshRibbon() { delete ribbon_; }

MeshRibbon::MeshRibbon(const MeshRibbon& other) : MeshRibbon() { *this = other; }

MeshRibbon& MeshRibbon::operator=(const MeshRibbon& other) {
  if (this == &other) return *this;
  Mesh::operator=(other);
  *ribbon_ = *other.ribbon_;
  return *this;
}

bool MeshRibbon::_cleanup(Renderer* renderer) {
  clear_points_list();
  return Mesh::_cleanup(renderer);
}

// ---- parameters ----

unsigned int MeshRibbon::add_point(const vec4& point) {
  std::vector<vec4>& points = ribbon_->points;
  if (points.size() < INT_MAX) points.push_back(point);
  update_build_state(true);
  return static_cast<unsigned int>(points.size());
}

bool MeshRibbon::clear_points_list() {
  std::vector<vec4>().swap(ribbon_->points);
  return true;
}

bool MeshRibbon::clear_all() {
  clear_points_list();
  free_mesh_data();
  return true;
}

void MeshRibbon::set_cross_vector(const vec4& direction) { ribbon_->cross_vector = direction; }

const vec4& MeshRibbon::get_cross_vector() const { return ribbon_->cross_vector; }

void MeshRibbon::set_thickness(float thickness) { ribbon_->thickness = thickness; }

float MeshRibbon::get_thickness() const { return ribbon_->thickness; }

// ---- building ----

bool MeshRibbon::build(Node*) { return _build(); }

bool MeshRibbon::_build() {
  return build_when_dirty(*this, [this] { return build_ribbon_v2(); });
}

bool MeshRibbon::build_ribbon() { return build_ribbon_v2(); }

bool MeshRibbon::build_ribbon_v1() { return build_band(0.0f, ribbon_->thickness); }

bool MeshRibbon::build_ribbon_v2() {
  const float half = ribbon_->thickness * 0.5f;
  return build_band(-half, half);
}

namespace {

vec3 place(const std::vector<vec4>& points, std::size_t i) { return points[i].get_vec3(); }

/// Direction of the band at a point: between its neighbours, at the ends from or to the point.
vec3 tangent_at(const std::vector<vec4>& points, std::size_t i) {
  const std::size_t before = i > 0 ? i - 1 : 0;
  const std::size_t after = std::min(i + 1, points.size() - 1);
  return place(points, after) - place(points, before);
}

float length_of(const std::vector<vec4>& points) {
  float length = 0.0f;
  for (std::size_t i = 1; i < points.size(); ++i) {
    length += (place(points, i) - place(points, i - 1)).length();
  }
  return length;
}

}  // namespace

/// @param first_edge   how far the edge with u 0 is from the points, along the cross vector
/// @param second_edge  the same for the edge with u 1
bool MeshRibbon::build_band(float first_edge, float second_edge) {
  const std::vector<vec4>& points = ribbon_->points;
  if (points.size() < 2) {
    free_mesh_data();
    return false;
  }
  const std::uint64_t count = points.size();
  if (!begin_shape(*this, count * 2, (count - 1) * 2)) return false;
  MeshData& data = *get_mesh_data();

  vec3 side = ribbon_->cross_vector.get_vec3();
  side.normalize();
  const float length = length_of(points);
  float run = 0.0f;
  ShapeVertices vertices(data);
  for (std::size_t i = 0; i < points.size(); ++i) {
    const vec3 p = place(points, i);
    if (i > 0) run += (p - place(points, i - 1)).length();
    const float v = length > 0.0f ? run / length : 0.0f;
    vec3 normal = side.cross(tangent_at(points, i));
    normal.normalize();
    const auto vertex = static_cast<unsigned int>(i) * 2;
    vertices.write(vertex, vec4(p + side * first_edge), normal, 0.0f, v);
    vertices.write(vertex + 1, vec4(p + side * second_edge), normal, 1.0f, v);
  }

  FaceAccess faces(data);
  for (unsigned int face = 0; face + 1 < faces.size(); face += 2) {
    // Two faces and two vertices to a span, so that both count alike.
    faces.set(face, face, face + 1, face + 2);
    faces.set(face + 1, face + 1, face + 3, face + 2);
  }
  return true;
}

}  // namespace orv
