#include <orv/geometry/primitives/mesh_quad.h>

#include "geometry/primitives/quad_corners.h"

namespace orv {

MeshQuad::MeshQuad() : MeshQuad(VERTEX_FORMAT_DEFAULT) {}

MeshQuad::MeshQuad(VERTEX_FORMAT format) : Mesh(format) {
  set_type(NODE_TYPE_MESH_QUAD);
  update_build_state(false);
}

MeshQuad::MeshQuad(const MeshQuad& other) : MeshQuad() { *this = other; }

bool MeshQuad::set_build_params(float width, float height) {
  width_ = width;
  height_ = height;
  update_build_state(true);
  return true;
}

bool MeshQuad::update_params(float width, float height) {
  width_ = width;
  height_ = height;
  if (!has_shape_vertices(*this, 4)) return false;
  AttribAccess positions(*get_mesh_data(), VERTEX_ATTRIB_POSITION);
  for (unsigned int i = 0; i < 4; ++i) {
    const QuadCorner& corner = QUAD_CORNERS[i];
    positions.set(i, vec4(corner.x * width_ - width_ * 0.5f, corner.y * height_ - height_ * 0.5f,
                          0.0f, 1.0f));
  }
  return true;
}

bool MeshQuad::build(Node*) { return _build(); }

bool MeshQuad::_build() {
  return build_when_dirty(*this, [this] { return _build_quad(); });
}

bool MeshQuad::_build_quad() {
  return build_quad(*this, -width_ * 0.5f, -height_ * 0.5f, width_, height_);
}

}  // namespace orv
