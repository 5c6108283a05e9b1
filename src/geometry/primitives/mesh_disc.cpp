#include <orv/geometry/primitives/mesh_disc.h>

#include <orv/math/angles.h>

#include <algorithm>

#include "geometry/primitives/shape_build.h"

namespace orv {

MeshDisc::MeshDisc() : MeshDisc(VERTEX_FORMAT_DEFAULT) {}

MeshDisc::MeshDisc(VERTEX_FORMAT format) : Mesh(format) { set_type(NODE_TYPE_MESH_DISC); }

MeshDisc::MeshDisc(const MeshDisc& other) : MeshDisc() { *this = other; }

bool MeshDisc::set_build_params(float radius, float thickness, int slices) {
  radius_ = radius;
  thickness_ = thickness;
  slices_ = slices;
  update_build_state(true);
  return true;
}

bool MeshDisc::build(Node*) { return _build(); }

bool MeshDisc::_build() {
  return build_when_dirty(*this, [this] { return _build_disc(); });
}

bool MeshDisc::_build_disc() {
  slices_ = std::max(slices_, 4);
  const std::uint64_t sectors = static_cast<std::uint64_t>(slices_);
  if (!begin_shape(*this, sectors * 6, sectors * 2)) return false;
  MeshData& data = *get_mesh_data();

  const float inner = radius_ - thickness_;
  const float outer = radius_;
  const vec3 normal(0.0f, 1.0f, 0.0f);
  const auto place = [](float radius, float degrees) {
    const float radians = degrees * DEGREES_TO_RADIANS;
    return vec4(radius * cos_of(radians), 0.0f, radius * sin_of(radians), 1.0f);
  };
  ShapeVertices vertices(data);
  const float step = 360.0f / static_cast<float>(slices_);
  // The angle adds up its rounding errors; the round that these may add does not fit in.
  float angle = 0.0f;
  for (unsigned int sector = 0; angle < 360.0f && sector < sectors; ++sector, angle += step) {
    const unsigned int i = sector * 6;
    const float next = angle + step;
    vertices.write(i + 0, place(inner, angle), normal, 0.0f, 1.0f);
    vertices.write(i + 1, place(outer, angle), normal, 0.0f, 0.0f);
    vertices.write(i + 2, place(inner, next), normal, 1.0f, 1.0f);
    vertices.write(i + 3, place(outer, angle), normal, 0.0f, 0.0f);
    vertices.write(i + 4, place(outer, next), normal, 1.0f, 0.0f);
    vertices.write(i + 5, place(inner, next), normal, 1.0f, 1.0f);
  }

  FaceAccess faces(data);
  for (unsigned int i = 0; i < faces.size(); ++i) faces.set(i, 3 * i, 3 * i + 1, 3 * i + 2);
  return true;
}

}  // namespace orv
