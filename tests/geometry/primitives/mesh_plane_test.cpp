#include <orv/geometry/primitives/mesh_plane.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "geometry/primitives/shape_support.h"

namespace orv {
namespace {

using test::face_of;
using test::facing_of;
using test::Held;
using test::near;
using testing::ElementsAre;

TEST(MeshPlane, LiesInTheGroundPlane) {
  const Held<MeshPlane> plane;
  ASSERT_TRUE(plane->build(nullptr));
  test::expect_well_formed(*plane);
  EXPECT_EQ(plane->get_vertex_position(0), vec4(-5, 0, -5, 1));
  EXPECT_EQ(plane->get_vertex_position(1), vec4(-2.5f, 0, -5, 1));
  EXPECT_EQ(plane->get_vertex_position(24), vec4(5, 0, 5, 1));
  EXPECT_EQ(plane->get_vertex_normal(7), vec4(0, 1, 0, 0));
}

TEST(MeshPlane, SecondTextureCoordinateRunsDownTheRows) {
  const Held<MeshPlane> plane;
  plane->build(nullptr);
  EXPECT_EQ(plane->get_vertex_uv(0, 0), vec4(0, 1, 0, 1));
  EXPECT_EQ(plane->get_vertex_uv(4, 0), vec4(1, 1, 0, 1));
  EXPECT_EQ(plane->get_vertex_uv(21, 0), vec4(0.25f, 0, 0, 1));
}

TEST(MeshPlane, NarrowFacesLookUp) {
  const Held<MeshPlane> plane;
  plane->build(nullptr);
  ASSERT_EQ(plane->get_data()->get_index_bits(), 16);
  EXPECT_THAT(face_of(*plane, 0), ElementsAre(0, 5, 1));
  EXPECT_THAT(face_of(*plane, 1), ElementsAre(1, 5, 6));
  const auto facing = facing_of(*plane, [](const vec3&) { return vec3(0, 1, 0); });
  EXPECT_EQ(facing.along, 32);
}

TEST(MeshPlane, WideFacesTurnTheFirstTriangleOfACell) {
  const Held<MeshPlane> plane;
  plane->set_build_params(10, 10, 255, 255);
  plane->build(nullptr);
  ASSERT_EQ(plane->get_num_vertices(nullptr), 65536u);
  ASSERT_EQ(plane->get_data()->get_index_bits(), 32);
  EXPECT_THAT(face_of(*plane, 0), ElementsAre(0, 1, 256));
  EXPECT_THAT(face_of(*plane, 1), ElementsAre(1, 256, 257));
  const auto facing = facing_of(*plane, [](const vec3&) { return vec3(0, 1, 0); });
  EXPECT_EQ(facing.along, 255 * 255);
  EXPECT_EQ(facing.against, 255 * 255);
}

TEST(MeshPlane, QuadEdgesGoRoundEachCell) {
  const Held<MeshPlane> plane;
  plane->build(nullptr);
  EXPECT_EQ(plane->get_data()->get_num_quad_edges(), 16u * 8);
  EXPECT_THAT(test::quad_edges_of(*plane, 0), ElementsAre(0, 1, 1, 6, 6, 5, 5, 0));
  EXPECT_THAT(test::quad_edges_of(*plane, 15), ElementsAre(18, 19, 19, 24, 24, 23, 23, 18));
}

TEST(MeshPlane, SegmentsBelowOneCountAsOne) {
  const Held<MeshPlane> plane;
  plane->set_build_params(2, 4, 0, -3);
  plane->build(nullptr);
  EXPECT_EQ(plane->get_num_vertices(nullptr), 4u) << "one column wide";
  EXPECT_EQ(plane->get_num_faces(nullptr), 2u);
  EXPECT_EQ(plane->get_vertex_position(3), vec4(1, 0, 2, 1));
}

TEST(MeshPlane, RotationTurnsPositionsAndNormals) {
  const Held<MeshPlane> plane;
  EXPECT_TRUE(plane->set_build_params_v2(2, 2, 1, 1, 90, 0, 0));
  plane->build(nullptr);
  EXPECT_TRUE(near(plane->get_vertex_normal(0), vec4(0, 0, 1, 0), 1e-6f));
  EXPECT_TRUE(near(plane->get_vertex_position(0), vec4(-1, 1, 0, 1), 1e-6f));
  EXPECT_TRUE(plane->set_build_params(4, 4, 1, 1)) << "keeps the rotation";
  plane->build(nullptr);
  EXPECT_TRUE(near(plane->get_vertex_position(0), vec4(-2, 2, 0, 1), 1e-6f));
}

TEST(MeshPlane, NewSizeMovesTheVerticesAtOnce) {
  const Held<MeshPlane> plane;
  EXPECT_FALSE(plane->update_size(20, 4)) << "nothing is built yet";
  plane->build(nullptr);
  EXPECT_EQ(plane->get_vertex_position(0), vec4(-10, 0, -2, 1)) << "the size was stored";
  const unsigned int serial = plane->get_data()->layout_serial;
  EXPECT_TRUE(plane->update_size(4, 8));
  EXPECT_EQ(plane->get_vertex_position(0), vec4(-2, 0, -4, 1));
  EXPECT_EQ(plane->get_vertex_position(24), vec4(2, 0, 4, 1));
  EXPECT_EQ(plane->get_data()->layout_serial, serial) << "no rebuild";
  EXPECT_FALSE(plane->get_build_state());
  EXPECT_EQ(plane->get_width(), 4.0f);
  EXPECT_EQ(plane->get_height(), 8.0f);
}

TEST(MeshPlane, NewSizeDoesNotTouchVerticesOfAnotherGrid) {
  const Held<MeshPlane> plane;
  plane->build(nullptr);
  plane->set_build_params(10, 10, 2, 2);
  EXPECT_FALSE(plane->update_size(4, 4));
  EXPECT_EQ(plane->get_vertex_position(0), vec4(-5, 0, -5, 1));
}

TEST(MeshPlane, HasItsDefaults) {
  const Held<MeshPlane> plane;
  EXPECT_EQ(plane->get_width(), 10.0f);
  EXPECT_EQ(plane->get_height(), 10.0f);
  EXPECT_EQ(plane->get_wsegs(), 4);
  EXPECT_EQ(plane->get_hsegs(), 4);
}

}  // namespace
}  // namespace orv
