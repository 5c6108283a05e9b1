#include <orv/geometry/mesh.h>
#include <orv/geometry/primitives/mesh_box.h>
#include <orv/geometry/primitives/mesh_sphere.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "geometry/mesh_support.h"
#include "support/held.h"
#include "support/near.h"

namespace orv {
namespace {

using test::give_triangles;
using test::Held;
using test::near;

/// Every face must look away from the cube it belongs to, as its stored normal tells.
void expect_facing_outwards(Mesh& mesh) {
  MeshData& data = *mesh.get_data();
  for (unsigned int i = 0; i < data.get_num_faces(); ++i) {
    unsigned int a = 0, b = 0, c = 0;
    mesh.get_face_indexes(i, &a, &b, &c);
    const vec3 pa = data.get_position(a);
    vec3 normal = (data.get_position(b) - pa).cross(data.get_position(c) - pa);
    normal.normalize();
    const vec4 stored = data.face_normals[i];
    ASSERT_TRUE(near(normal, stored.get_vec3(), 1e-5f)) << "face " << i;
    ASSERT_EQ(stored.w, 0.0f);
    ASSERT_EQ(data.get_normal_vec3(a), stored.get_vec3());
  }
}

TEST(MeshVoxelize, CubeOfOneVoxelHasSixSides) {
  const Held<MeshBox> box;
  box->set_build_params(1, 1, 1, 1, 1, 1);
  box->build(nullptr);
  EXPECT_TRUE(box->voxelize(1, 1, 1, 0));
  EXPECT_EQ(box->get_num_vertices(nullptr), 24u);
  EXPECT_EQ(box->get_num_faces(nullptr), 12u);
  expect_facing_outwards(*box);
  box->bounding_volume_compute(nullptr);
  EXPECT_EQ(box->get_bounding_box_min(), vec4(-0.5f, -0.5f, -0.5f, 1));
  EXPECT_EQ(box->get_bounding_box_max(), vec4(0.5f, 0.5f, 0.5f, 1));
}

TEST(MeshVoxelize, SidesBetweenVoxelsAreLeftOut) {
  const Held<MeshBox> box;
  box->set_build_params(2, 1, 1, 1, 1, 1);
  box->build(nullptr);
  EXPECT_TRUE(box->voxelize(1, 1, 1, 0));
  EXPECT_EQ(box->get_num_faces(nullptr), 20u) << "two cubes less the two sides that meet";
  EXPECT_EQ(box->get_num_vertices(nullptr), 40u);
}

TEST(MeshVoxelize, OnlyCellsAtTheSurfaceAreFilled) {
  const Held<MeshBox> box;
  box->set_build_params(5, 5, 5, 1, 1, 1);
  box->build(nullptr);
  EXPECT_TRUE(box->voxelize(1, 1, 1, 0));
  // Outside 5 x 5 on six sides, inside 3 x 3 on six sides around the hollow.
  EXPECT_EQ(box->get_num_faces(nullptr), (6u * 25 + 6u * 9) * 2);
  expect_facing_outwards(*box);
}

TEST(MeshVoxelize, DecimalSizesNeitherAddNorLoseALayer) {
  const Held<MeshBox> box;
  box->set_build_params(0.3f, 0.3f, 0.3f, 1, 1, 1);
  box->build(nullptr);
  EXPECT_TRUE(box->voxelize(0.1f, 0.1f, 0.1f, 0));
  EXPECT_EQ(box->get_num_faces(nullptr), (6u * 9 + 6u * 1) * 2);
}

TEST(MeshVoxelize, SphereKeepsItsExtent) {
  const Held<MeshSphere> sphere;
  sphere->set_build_params(2, 16, 16);
  sphere->build(nullptr);
  EXPECT_TRUE(sphere->voxelize(0.5f, 0.5f, 0.5f, 0));
  expect_facing_outwards(*sphere);
  sphere->bounding_volume_compute(nullptr);
  EXPECT_TRUE(near(sphere->get_bounding_box_min(), vec4(-2, -2, -2, 1), 1e-5f));
  EXPECT_TRUE(near(sphere->get_bounding_box_max(), vec4(2, 2, 2, 1), 1e-5f));
}

TEST(MeshVoxelize, PrecisionWidensWhatCounts) {
  const std::vector<vec3> slope = {vec3(0, 0, 0), vec3(8, 0, 0), vec3(8, 8, 0)};
  const Held<Mesh> narrow;
  const Held<Mesh> wide;
  give_triangles(*narrow, slope);
  give_triangles(*wide, slope);
  EXPECT_TRUE(narrow->voxelize(1, 1, 1, 0));
  EXPECT_TRUE(wide->voxelize(1, 1, 1, 20));
  // A flat triangle lies in one layer of cells.
  EXPECT_EQ(wide->get_num_faces(nullptr), (64u + 64 + 4 * 8) * 2) << "all cells";
  EXPECT_LT(narrow->get_num_faces(nullptr), wide->get_num_faces(nullptr));
}

TEST(MeshVoxelize, TextureCoordinatesAreThoseOfTheNearestCorner) {
  const Held<Mesh> mesh;
  give_triangles(*mesh, {vec3(0, 0, 0), vec3(10, 0, 0), vec3(0, 10, 0)});
  mesh->set_vertex_uv(0, vec4(0.25f, 0.5f, 9, 9), 0);
  mesh->set_vertex_uv(1, vec4(0.75f, 1.0f, 9, 9), 0);
  EXPECT_TRUE(mesh->voxelize(1, 1, 1, 0));
  bool seen_first = false;
  bool seen_second = false;
  for (unsigned int i = 0; i < mesh->get_num_vertices(nullptr); ++i) {
    const vec4 position = mesh->get_vertex_position(i);
    const vec4 uv = mesh->get_vertex_uv(i, 0);
    EXPECT_EQ(uv.z, 0.0f);
    EXPECT_EQ(uv.w, 1.0f);
    if (position.x <= 2 && position.y <= 2) seen_first |= uv == vec4(0.25f, 0.5f, 0, 1);
    if (position.x >= 9) seen_second |= uv == vec4(0.75f, 1.0f, 0, 1);
  }
  EXPECT_TRUE(seen_first);
  EXPECT_TRUE(seen_second);
}

TEST(MeshVoxelize, BadSizesKeepTheGeometry) {
  const Held<Mesh> mesh;
  give_triangles(*mesh, {vec3(0, 0, 0), vec3(10, 0, 0), vec3(0, 10, 5)});
  const float nan = std::numeric_limits<float>::quiet_NaN();
  for (const float size : {0.0f, -1.0f, nan, HUGE_VALF, 1e-6f}) {
    EXPECT_FALSE(mesh->voxelize(size, 1, 1, 0)) << size;
    EXPECT_FALSE(mesh->voxelize(1, 1, size, 0)) << size;
  }
  EXPECT_FALSE(mesh->voxelize(0.01f, 0.01f, 0.01f, 0)) << "more than 2^24 cells";
  EXPECT_EQ(mesh->get_num_vertices(nullptr), 3u);
  EXPECT_EQ(mesh->get_vertex_position(1), vec4(10, 0, 0, 1));
}

TEST(MeshVoxelize, NeedsFacesOfFiniteVertices) {
  const Held<Mesh> mesh;
  EXPECT_FALSE(mesh->voxelize(1, 1, 1, 0));
  mesh->set_vertex_alloc_params_num_vertices(3);
  mesh->alloc_vertex_data();
  EXPECT_FALSE(mesh->voxelize(1, 1, 1, 0)) << "no faces";
  mesh->alloc_face_data(1, false);
  mesh->set_face_indexes(0, 0, 1, 500);
  EXPECT_FALSE(mesh->voxelize(1, 1, 1, 0)) << "an index past the vertices";
  mesh->set_face_indexes(0, 0, 1, 2);
  mesh->set_vertex_position(1, vec4(HUGE_VALF, 0, 0, 1));
  EXPECT_FALSE(mesh->voxelize(1, 1, 1, 0)) << "not finite";
  EXPECT_EQ(mesh->get_num_vertices(nullptr), 3u);
}

TEST(MeshVoxelize, PointsAndLinesTouchCellsToo) {
  const Held<Mesh> mesh;
  give_triangles(*mesh, {vec3(0, 0, 0), vec3(0, 0, 0), vec3(0, 0, 0)});
  EXPECT_TRUE(mesh->voxelize(1, 1, 1, 0));
  EXPECT_EQ(mesh->get_num_faces(nullptr), 12u);
}

}  // namespace
}  // namespace orv
