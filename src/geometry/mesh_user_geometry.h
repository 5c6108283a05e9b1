#pragma once

#include <orv/geometry/face.h>
#include <orv/geometry/vertex.h>

#include <vector>

namespace orv {

/// Vertices and faces gathered one by one until the next build makes them the mesh's geometry.
struct MeshUserGeometry {
  std::vector<Vertex> vertices;
  std::vector<FaceU32> faces;
  std::vector<FaceU16> faces_u16;  ///< never filled: all faces are gathered with 32 bits
};

}  // namespace orv
