#include <orv/geometry/primitives/mesh_cylinder.h>

#include <algorithm>
#include <vector>

#include "geometry/primitives/shape_build.h"

namespace orv {

MeshCylinder::MeshCylinder() : MeshCylinder(VERTEX_FORMAT_DEFAULT) {}

MeshCylinder::MeshCylinder(VERTEX_FORMAT format) : Mesh(format) {
  set_type(NODE_TYPE_MESH_CYLINDER);
}

MeshCylinder::MeshCylinder(const MeshCylinder& other) : MeshCylinder() { *this = other; }

bool MeshCylinder::set_build_params(float radius, float height, int stacks, int slices) {
  radius_ = radius;
  height_ = height;
  stacks_ = stacks;
  slices_ = slices;
  update_build_state(true);
  return true;
}

bool MeshCylinder::build(Node*) { return _build(); }

bool MeshCylinder::_build() {
  return build_when_dirty(*this, [this] { return _build_cylinder(); });
}

bool MeshCylinder::_build_cylinder() {
  if (radius_ < 0.0f) radius_ = 1.0f;
  stacks_ = std::max(stacks_, 3);
  slices_ = std::max(slices_, 3);
  const std::uint64_t rows = static_cast<std::uint64_t>(stacks_);
  const std::uint64_t columns = static_cast<std::uint64_t>(slices_);
  if (!begin_shape(*this, (rows + 1) * (columns + 1), rows * columns * 2)) return false;
  MeshData& data = *get_mesh_data();

  std::vector<vec3> directions;  // of the slices
  for (int j = 0; j <= slices_; ++j) {
    const float theta = static_cast<float>(j) * TWO_PI / static_cast<float>(slices_);
    directions.emplace_back(sin_of(theta), cos_of(theta), 0.0f);
  }
  ShapeVertices vertices(data);
  unsigned int vertex = 0;
  for (int i = 0; i <= stacks_; ++i) {
    const float z = height_ / static_cast<float>(stacks_) * static_cast<float>(i) - height_ / 2.0f;
    const float v = static_cast<float>(i) / static_cast<float>(stacks_);
    for (int j = 0; j <= slices_; ++j) {
      const vec3& normal = directions[static_cast<std::size_t>(j)];
      const float u = static_cast<float>(j) / static_cast<float>(slices_);
      vertices.write(vertex++, vec4(radius_ * normal.x, radius_ * normal.y, z, 1.0f), normal, u, v);
    }
  }

  FaceAccess faces(data);
  unsigned int face = 0;
  for_each_cell(stacks_, slices_, [&](unsigned int t, unsigned int b) {
    faces.set(face++, b, t + 1, t);
    faces.set(face++, b + 1, t + 1, b);
  });
  write_quad_edges(data, stacks_, slices_, QuadEdgeOrder::DOWN_FIRST);
  return true;
}

}  // namespace orv
