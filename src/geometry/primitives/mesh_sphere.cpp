#include <orv/geometry/primitives/mesh_sphere.h>

#include <algorithm>
#include <vector>

#include "geometry/primitives/shape_build.h"

namespace orv {

MeshSphere::MeshSphere() : MeshSphere(VERTEX_FORMAT_DEFAULT) {}

MeshSphere::MeshSphere(VERTEX_FORMAT format) : Mesh(format) { set_type(NODE_TYPE_MESH_SPHERE); }

MeshSphere::MeshSphere(const MeshSphere& other) : MeshSphere() { *this = other; }

bool MeshSphere::set_build_params(float radius, int stacks, int slices) {
  radius_ = radius;
  stacks_ = stacks;
  slices_ = slices;
  update_build_state(true);
  return true;
}

bool MeshSphere::_build() {
  return build_when_dirty(*this, [this] { return _build_sphere(); });
}

bool MeshSphere::_build_sphere() {
  stacks_ = std::max(stacks_, 2);
  slices_ = std::max(slices_, 3);
  const std::uint64_t rows = static_cast<std::uint64_t>(stacks_);
  const std::uint64_t columns = static_cast<std::uint64_t>(slices_);
  if (!begin_shape(*this, (rows + 1) * (columns + 1), rows * columns * 2)) return false;
  MeshData& data = *get_mesh_data();

  std::vector<vec2> directions;  // of the slices
  for (int j = 0; j <= slices_; ++j) {
    const float theta = static_cast<float>(j) * TWO_PI / static_cast<float>(slices_);
    directions.emplace_back(sin_of(theta), cos_of(theta));
  }
  ShapeVertices vertices(data);
  unsigned int vertex = 0;
  for (int i = 0; i <= stacks_; ++i) {
    const float v = static_cast<float>(i) / static_cast<float>(stacks_);
    const float sin_phi = sin_of(v * PI);
    const float cos_phi = cos_of(v * PI);
    for (int j = 0; j <= slices_; ++j) {
      const vec2& direction = directions[static_cast<std::size_t>(j)];
      const vec3 normal(sin_phi * direction.x, sin_phi * direction.y, cos_phi);
      const vec4 position(radius_ * normal.x, radius_ * normal.y, radius_ * normal.z, 1.0f);
      const float u = static_cast<float>(j) / static_cast<float>(slices_);
      vertices.write(vertex++, position, normal, u, v);
    }
  }

  FaceAccess faces(data);
  unsigned int face = 0;
  for_each_cell(stacks_, slices_, [&](unsigned int t, unsigned int b) {
    faces.set(face++, t, t + 1, b);
    faces.set(face++, b, t + 1, b + 1);
  });
  write_quad_edges(data, stacks_, slices_, QuadEdgeOrder::DOWN_FIRST);
  return true;
}

}  // namespace orv
