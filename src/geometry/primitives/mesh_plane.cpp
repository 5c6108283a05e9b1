#include <orv/geometry/primitives/mesh_plane.h>

#include <orv/math/quat.h>

#include <algorithm>

#include "geometry/primitives/shape_build.h"

namespace orv {

namespace {

std::uint64_t grid_size(int wsegs, int hsegs) {
  return (static_cast<std::uint64_t>(wsegs) + 1) * (static_cast<std::uint64_t>(hsegs) + 1);
}

/// Places of a plane's vertices.
class PlaneGrid {
 public:
  PlaneGrid(float width, float height, int wsegs, int hsegs, const quat& rotation)
      : width_(width), height_(height), wsegs_(wsegs), hsegs_(hsegs), rotation_(rotation) {}

  vec4 position(int column, int row) const {
    const float x =
        width_ / static_cast<float>(wsegs_) * static_cast<float>(column) - width_ / 2.0f;
    const float z = height_ / static_cast<float>(hsegs_) * static_cast<float>(row) - height_ / 2.0f;
    return vec4(rotation_ * vec3(x, 0.0f, z));
  }

 private:
  float width_;
  float height_;
  int wsegs_;
  int hsegs_;
  quat rotation_;
};

quat rotation_of(float rx, float ry, float rz) {
  quat rotation;
  rotation.from_euler(rx, ry, rz);
  return rotation;
}

}  // namespace

MeshPlane::MeshPlane() : MeshPlane(VERTEX_FORMAT_DEFAULT) {}

MeshPlane::MeshPlane(VERTEX_FORMAT format) : Mesh(format) { set_type(NODE_TYPE_MESH_PLANE); }

MeshPlane::MeshPlane(const MeshPlane& other) : MeshPlane() { *this = other; }

// ---- parameters ----

bool MeshPlane::set_build_params(float width, float height, int wsegs, int hsegs) {
  return set_build_params_v2(width, height, wsegs, hsegs, rx_, ry_, rz_);
}

bool MeshPlane::set_build_params_v2(float width, float height, int wsegs, int hsegs, float rx,
                                    float ry, float rz) {
  width_ = width;
  height_ = height;
  wsegs_ = wsegs;
  hsegs_ = hsegs;
  rx_ = rx;
  ry_ = ry;
  rz_ = rz;
  update_build_state(true);
  return true;
}

bool MeshPlane::update_size(float width, float height) {
  width_ = width;
  height_ = height;
  return _update_vertices_position();
}

bool MeshPlane::_update_vertices_position() {
  const int wsegs = std::max(wsegs_, 1);
  const int hsegs = std::max(hsegs_, 1);
  if (!has_shape_vertices(*this, grid_size(wsegs, hsegs))) return false;
  const PlaneGrid grid(width_, height_, wsegs, hsegs, rotation_of(rx_, ry_, rz_));
  AttribAccess positions(*get_mesh_data(), VERTEX_ATTRIB_POSITION);
  unsigned int i = 0;
  for (int row = 0; row <= hsegs; ++row) {
    for (int column = 0; column <= wsegs; ++column) {
      positions.set(i++, grid.position(column, row));
    }
  }
  return true;
}

// ---- building ----

bool MeshPlane::build(Node*) { return _build(); }

bool MeshPlane::_build() {
  return build_when_dirty(*this, [this] { return _build_plane(); });
}

bool MeshPlane::_build_plane() {
  wsegs_ = std::max(wsegs_, 1);
  hsegs_ = std::max(hsegs_, 1);
  const std::uint64_t cells =
      static_cast<std::uint64_t>(wsegs_) * static_cast<std::uint64_t>(hsegs_);
  if (!begin_shape(*this, grid_size(wsegs_, hsegs_), cells * 2)) return false;
  MeshData& data = *get_mesh_data();

  const quat rotation = rotation_of(rx_, ry_, rz_);
  const PlaneGrid grid(width_, height_, wsegs_, hsegs_, rotation);
  const vec3 normal = rotation * vec3(0.0f, 1.0f, 0.0f);
  ShapeVertices vertices(data);
  unsigned int i = 0;
  for (int row = 0; row <= hsegs_; ++row) {
    const float v = static_cast<float>(hsegs_ - row) / static_cast<float>(hsegs_);
    for (int column = 0; column <= wsegs_; ++column) {
      const float u = static_cast<float>(column) / static_cast<float>(wsegs_);
      vertices.write(i++, grid.position(column, row), normal, u, v);
    }
  }

  // With 32-bit indices the first triangle of a cell is wound the other way round.
  FaceAccess faces(data);
  const bool narrow = data.get_index_bits() == 16;
  unsigned int face = 0;
  for_each_cell(hsegs_, wsegs_, [&](unsigned int a, unsigned int c) {
    if (narrow) {
      faces.set(face++, a, c, a + 1);
    } else {
      faces.set(face++, a, a + 1, c);
    }
    faces.set(face++, a + 1, c, c + 1);
  });
  write_quad_edges(data, hsegs_, wsegs_, QuadEdgeOrder::ACROSS_FIRST);
  return true;
}

}  // namespace orv
