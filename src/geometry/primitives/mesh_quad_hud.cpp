#include <orv/geometry/primitives/mesh_quad_hud.h>

#include "geometry/primitives/quad_corners.h"

namespace orv {

MeshQuadHud::MeshQuadHud() : MeshQuadHud(VERTEX_FORMAT_DEFAULT) {}

MeshQuadHud::MeshQuadHud(VERTEX_FORMAT format) : Mesh(format) { set_type(NODE_TYPE_MESH_QUAD_HUD); }

MeshQuadHud::MeshQuadHud(const MeshQuadHud& other) : MeshQuadHud() { *this = other; }

bool MeshQuadHud::set_build_params() {
  update_build_state(true);
  return true;
}

bool MeshQuadHud::build(Node*) { return _build(); }

bool MeshQuadHud::_build() {
  return build_when_dirty(*this, [this] { return _build_quad_hud(); });
}

bool MeshQuadHud::_build_quad_hud() { return build_quad(*this, 0.0f, 0.0f, 1.0f, 1.0f); }

}  // namespace orv
