#include <orv/geometry/primitives/mesh_ellipse.h>

#include <orv/math/angles.h>

#include <algorithm>

#include "geometry/primitives/shape_build.h"

namespace orv {

MeshEllipse::MeshEllipse() : MeshEllipse(VERTEX_FORMAT_DEFAULT) {}

MeshEllipse::MeshEllipse(VERTEX_FORMAT format) : Mesh(format) { set_type(NODE_TYPE_MESH_ELLIPSE); }

MeshEllipse::MeshEllipse(const MeshEllipse& other) : MeshEllipse() { *this = other; }

bool MeshEllipse::set_build_params(float radius_x, float radius_y, int slices, int rings,
                                   float sweep) {
  radius_x_ = radius_x;
  radius_y_ = radius_y;
  slices_ = slices;
  rings_ = rings;
  sweep_ = sweep;
  update_build_state(true);
  return true;
}

bool MeshEllipse::build(Node*) { return _build(); }

bool MeshEllipse::_build() {
  return build_when_dirty(*this, [this] { return _build_ellipse(); });
}

bool MeshEllipse::_build_ellipse() {
  slices_ = std::max(slices_, 3);
  rings_ = std::max(rings_, 1);
  const std::uint64_t slices = static_cast<std::uint64_t>(slices_);
  const std::uint64_t all_rings = static_cast<std::uint64_t>(rings_);
  const std::uint64_t num_vertices = (slices + 1) * all_rings + 1;
  if (!begin_shape(*this, num_vertices, slices * (all_rings * 2 - 1))) return false;
  MeshData& data = *get_mesh_data();

  const unsigned int rings = static_cast<unsigned int>(rings_);
  const vec3 normal(0.0f, 1.0f, 0.0f);
  ShapeVertices vertices(data);
  vertices.write(0, vec4(0.0f, 0.0f, 0.0f, 1.0f), normal, 0.5f, 0.5f);
  const float step = sweep_ / static_cast<float>(slices_);
  float angle = 0.0f;
  for (unsigned int spoke = 0; spoke <= slices; ++spoke, angle += step) {
    const float radians = angle * DEGREES_TO_RADIANS;
    const float c = cos_of(radians);
    const float s = sin_of(radians);
    for (unsigned int ring = 1; ring <= rings; ++ring) {
      const float k = static_cast<float>(ring);
      const vec4 position(c * k * radius_x_ / static_cast<float>(rings_), 0.0f,
                          s * k * radius_y_ / static_cast<float>(rings_), 1.0f);
      vertices.write(1 + spoke * rings + (ring - 1), position, normal, c + 0.5f, s + 0.5f);
    }
  }

  FaceAccess faces(data);
  unsigned int face = 0;
  for (unsigned int spoke = 0; spoke < slices; ++spoke) {
    const unsigned int near = spoke * rings;
    const unsigned int next = near + rings;
    faces.set(face++, 0, next + 1, near + 1);
    for (unsigned int k = 1; k < rings; ++k) {
      faces.set(face++, near + k, next + k, next + k + 1);
      faces.set(face++, near + k, next + k + 1, near + k + 1);
    }
  }
  return true;
}

}  // namespace orv
