#include <orv/geometry/primitives/mesh_triangle.h>

#include "geometry/primitives/shape_build.h"

namespace orv {

MeshTriangle::MeshTriangle() : MeshTriangle(VERTEX_FORMAT_DEFAULT) {}

MeshTriangle::MeshTriangle(VERTEX_FORMAT format)
    : Mesh(format),
      corners_{vec4(-5.0f, -5.0f, 0.0f, 1.0f), vec4(5.0f, -5.0f, 0.0f, 1.0f),
               vec4(0.0f, 5.0f, 0.0f, 1.0f)} {
  set_type(NODE_TYPE_MESH_TRIANGLE);
}

MeshTriangle::MeshTriangle(const MeshTriangle& other) : MeshTriangle() { *this = other; }

bool MeshTriangle::set_build_params(const vec4& corner_a, const vec4& corner_b,
                                    const vec4& corner_c) {
  corners_[0] = corner_a;
  corners_[1] = corner_b;
  corners_[2] = corner_c;
  update_build_state(true);
  return true;
}

bool MeshTriangle::build(Node*) { return _build(); }

bool MeshTriangle::_build() {
  return build_when_dirty(*this, [this] { return _build_triangle(); });
}

bool MeshTriangle::_build_triangle() {
  if (!begin_shape(*this, 3, 1)) return false;
  const vec3 a = corners_[0].get_vec3();
  const vec3 b = corners_[1].get_vec3();
  const vec3 c = corners_[2].get_vec3();
  vec3 normal = (c - b).cross(a - b);
  normal.normalize();
  ShapeVertices vertices(*get_mesh_data());
  vertices.write(0, corners_[0], normal, 0.0f, 0.0f);
  vertices.write(1, corners_[1], normal, 1.0f, 0.0f);
  vertices.write(2, corners_[2], normal, 0.5f, 1.0f);
  FaceAccess faces(*get_mesh_data());
  if (faces.size() > 0) faces.set(0, 0, 1, 2);
  return true;
}

}  // namespace orv
