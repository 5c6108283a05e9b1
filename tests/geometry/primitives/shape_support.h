#pragma once

#include <orv/geometry/mesh.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "support/held.h"
#include "support/near.h"

namespace orv::test {

/// Corners of a face as positions.
struct FaceCorners {
  vec3 a, b, c;
  vec3 normal() const {
    vec3 n = (b - a).cross(c - a);
    return n;
  }
  vec3 center() const { return (a + b + c) * (1.0f / 3.0f); }
};

inline FaceCorners corners_of(const Mesh& mesh, unsigned int face) {
  unsigned int a = 0, b = 0, c = 0;
  mesh.get_face_indexes(face, &a, &b, &c);
  MeshData& data = *mesh.get_data();
  return {data.get_position(a), data.get_position(b), data.get_position(c)};
}

/// How many faces with an area look along `outwards(center of the face)`, and how many against it.
struct Facing {
  int along = 0;
  int against = 0;
};
template <class Outwards>
Facing facing_of(const Mesh& mesh, Outwards outwards) {
  Facing facing;
  for (unsigned int i = 0; i < mesh.get_data()->get_num_faces(); ++i) {
    const FaceCorners face = corners_of(mesh, i);
    const float along = face.normal().dot(outwards(face.center()));
    if (std::fabs(along) < 1e-5f) continue;
    ++(along > 0 ? facing.along : facing.against);
  }
  return facing;
}

/// What every generated shape has: white vertices, unit normals with w 1, and indices in range.
inline void expect_well_formed(Mesh& mesh) {
  MeshData& data = *mesh.get_data();
  for (unsigned int i = 0; i < data.get_num_vertices(); ++i) {
    ASSERT_EQ(data.get_color(i), vec4(1, 1, 1, 1)) << "vertex " << i;
    ASSERT_EQ(data.get_normal(i).w, 1.0f) << "vertex " << i;
    ASSERT_NEAR(data.get_normal_vec3(i).length(), 1.0f, 1e-5f) << "vertex " << i;
    ASSERT_EQ(data.get_position_4f(i).w, 1.0f) << "vertex " << i;
    ASSERT_EQ(data.get_uv0(i).z, 0.0f) << "vertex " << i;
    ASSERT_EQ(data.get_uv0(i).w, 1.0f) << "vertex " << i;
  }
  for (unsigned int i = 0; i < data.get_num_faces() && !data.indices; ++i) {
    unsigned int a = 0xFFFFFFFFu, b = 0xFFFFFFFFu, c = 0xFFFFFFFFu;
    mesh.get_face_indexes(i, &a, &b, &c);
    ASSERT_LT(a, data.get_num_vertices()) << "face " << i;
    ASSERT_LT(b, data.get_num_vertices()) << "face " << i;
    ASSERT_LT(c, data.get_num_vertices()) << "face " << i;
  }
}

inline std::vector<unsigned int> face_of(const Mesh& mesh, unsigned int face) {
  unsigned int a = 0, b = 0, c = 0;
  mesh.get_face_indexes(face, &a, &b, &c);
  return {a, b, c};
}

inline std::vector<unsigned int> quad_edges_of(const Mesh& mesh, unsigned int cell) {
  const unsigned int* edges = mesh.get_data()->get_quad_edges_ptr() + cell * 8;
  return {edges, edges + 8};
}

}  // namespace orv::test
