#include <orv/geometry/primitives/mesh_torus.h>

#include <orv/math/angles.h>

#include <vector>

#include "geometry/primitives/shape_build.h"

namespace orv {

MeshTorus::MeshTorus() : MeshTorus(VERTEX_FORMAT_DEFAULT) {}

MeshTorus::MeshTorus(VERTEX_FORMAT format) : Mesh(format) { set_type(NODE_TYPE_MESH_TORUS); }

MeshTorus::MeshTorus(const MeshTorus& other) : MeshTorus() { *this = other; }

bool MeshTorus::set_build_params(float radius, float tube_radius, int slices) {
  radius_ = radius;
  tube_radius_ = tube_radius;
  slices_ = slices;
  update_build_state(true);
  return true;
}

bool MeshTorus::_build() {
  return build_when_dirty(*this, [this] { return _build_torus(); });
}

bool MeshTorus::_build_torus() {
  if (slices_ < 0) return begin_shape(*this, 0);
  const std::uint64_t slices = static_cast<std::uint64_t>(slices_);
  if (!begin_shape(*this, (slices + 1) * (slices + 1), slices * slices * 2)) return false;
  MeshData& data = *get_mesh_data();

  // Without slices there is one vertex, at the start of everything.
  const float parts = slices_ > 0 ? static_cast<float>(slices_) : 1.0f;
  std::vector<vec2> profile;
  std::vector<vec3> profile_normals;
  for (int i = 0; i <= slices_; ++i) {
    const float t = static_cast<float>(i) / parts * 360.0f * DEGREES_TO_RADIANS;
    const float c = cos_of(t);
    const float s = sin_of(t);
    profile.emplace_back((radius_ - tube_radius_) + c * tube_radius_, s * tube_radius_);
    vec3 normal(c, s, 0.0f);
    profile_normals.push_back(normal.normalize());
  }

  ShapeVertices vertices(data);
  const float step = 360.0f / parts;
  unsigned int vertex = 0;
  for (int ring = 0; ring <= slices_; ++ring) {
    const float turn = static_cast<float>(ring) * step * DEGREES_TO_RADIANS;
    const float c = cos_of(turn);
    const float s = sin_of(turn);
    for (std::size_t i = 0; i < profile.size(); ++i) {
      const vec2& p = profile[i];
      const vec3& n = profile_normals[i];
      // The profile lies at z 0, so that turning about Y is a product alone.
      vertices.write(vertex++, vec4(c * p.x, p.y, -(s * p.x), 1.0f), vec3(c * n.x, n.y, -(s * n.x)),
                     static_cast<float>(i) / parts, static_cast<float>(ring) / parts);
    }
  }

  FaceAccess faces(data);
  unsigned int face = 0;
  for_each_cell(slices_, slices_, [&](unsigned int a, unsigned int c) {
    faces.set(face++, a, c, a + 1);
    faces.set(face++, a + 1, c, c + 1);
  });
  write_quad_edges(data, slices_, slices_, QuadEdgeOrder::DOWN_FIRST);
  return true;
}

}  // namespace orv
