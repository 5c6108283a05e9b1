#pragma once

#include "geometry/primitives/shape_build.h"

namespace orv {

/// Corners of a unit square, which are its texture coordinates too.
struct QuadCorner {
  float x;
  float y;
};
inline constexpr QuadCorner QUAD_CORNERS[4] = {{0, 0}, {0, 1}, {1, 1}, {1, 0}};

/// Builds a rectangle in the XY plane from (x0, y0), facing +Z.
inline bool build_quad(Mesh& mesh, float x0, float y0, float width, float height) {
  if (!begin_shape(mesh, 4, 2)) return false;
  ShapeVertices vertices(*mesh.get_mesh_data());
  for (unsigned int i = 0; i < 4; ++i) {
    const QuadCorner& corner = QUAD_CORNERS[i];
    vertices.write(i, vec4(x0 + corner.x * width, y0 + corner.y * height, 0.0f, 1.0f),
                   vec3(0.0f, 0.0f, 1.0f), corner.x, corner.y);
  }
  FaceAccess faces(*mesh.get_mesh_data());
  if (faces.size() < 2) return false;
  faces.set(0, 0, 2, 1);
  faces.set(1, 0, 3, 2);
  return true;
}

}  // namespace orv
