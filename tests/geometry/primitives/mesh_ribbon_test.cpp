#include <orv/geometry/primitives/mesh_ribbon.h>

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

/// Points along x, 1 and 3 scene units apart.
class MeshRibbonShape : public ::testing::Test {
 protected:
  MeshRibbonShape() {
    ribbon->add_point(vec4(0, 0, 0, 1));
    ribbon->add_point(vec4(1, 0, 0, 1));
    ribbon->add_point(vec4(4, 0, 0, 1));
  }
  vec4 position(unsigned int i) const { return ribbon->get_vertex_position(i); }

  Held<MeshRibbon> ribbon;
};

TEST(MeshRibbon, StartsWithoutPoints) {
  const Held<MeshRibbon> ribbon;
  EXPECT_EQ(ribbon->get_thickness(), 2.0f);
  EXPECT_EQ(ribbon->get_cross_vector(), vec4(0, 1, 0, 0));
  EXPECT_EQ(ribbon->get_type(), NODE_TYPE_MESH_RIBBON);
  EXPECT_TRUE(ribbon->is_type_of(NODE_TYPE_MESH));
  EXPECT_FALSE(ribbon->build(nullptr));
}

TEST(MeshRibbon, CountsItsPoints) {
  const Held<MeshRibbon> ribbon;
  EXPECT_EQ(ribbon->add_point(vec4(1, 2, 3, 4)), 1u);
  EXPECT_EQ(ribbon->add_point(vec4()), 2u);
  EXPECT_TRUE(ribbon->clear_points_list());
  EXPECT_EQ(ribbon->add_point(vec4()), 1u);
}

TEST_F(MeshRibbonShape, LiesWithItsMiddleOnThePoints) {
  ASSERT_TRUE(ribbon->build(nullptr));
  ASSERT_EQ(ribbon->get_num_vertices(nullptr), 6u);
  ASSERT_EQ(ribbon->get_num_faces(nullptr), 4u);
  test::expect_well_formed(*ribbon);
  EXPECT_EQ(position(0), vec4(0, -1, 0, 1));
  EXPECT_EQ(position(1), vec4(0, 1, 0, 1));
  EXPECT_EQ(position(4), vec4(4, -1, 0, 1));
  EXPECT_EQ(position(5), vec4(4, 1, 0, 1));
}

TEST_F(MeshRibbonShape, FirstFormLaysOneEdgeOnThePoints) {
  ASSERT_TRUE(ribbon->build_ribbon_v1());
  test::expect_well_formed(*ribbon);
  EXPECT_EQ(position(2), vec4(1, 0, 0, 1));
  EXPECT_EQ(position(3), vec4(1, 2, 0, 1));
}

TEST_F(MeshRibbonShape, PlainFormIsTheSecond) {
  ASSERT_TRUE(ribbon->build_ribbon_v1());
  ASSERT_TRUE(ribbon->build_ribbon());
  EXPECT_EQ(position(2), vec4(1, -1, 0, 1));
}

TEST_F(MeshRibbonShape, TextureRunsWithTheLength) {
  ribbon->build(nullptr);
  EXPECT_EQ(ribbon->get_vertex_uv(0, 0), vec4(0, 0, 0, 1));
  EXPECT_EQ(ribbon->get_vertex_uv(1, 0), vec4(1, 0, 0, 1));
  EXPECT_EQ(ribbon->get_vertex_uv(2, 0), vec4(0, 0.25f, 0, 1));
  EXPECT_EQ(ribbon->get_vertex_uv(5, 0), vec4(1, 1, 0, 1));
}

TEST_F(MeshRibbonShape, FacesLookAlongTheNormals) {
  ribbon->build(nullptr);
  EXPECT_THAT(face_of(*ribbon, 0), ElementsAre(0, 1, 2));
  EXPECT_THAT(face_of(*ribbon, 3), ElementsAre(3, 5, 4));
  EXPECT_EQ(ribbon->get_vertex_normal(3), vec4(0, 0, -1, 0));
  EXPECT_EQ(facing_of(*ribbon, [](const vec3&) { return vec3(0, 0, -1); }).along, 4);
}

TEST_F(MeshRibbonShape, CrossVectorOfAnyLengthGivesTheSide) {
  ribbon->set_cross_vector(vec4(0, 0, 5, 0));
  ribbon->set_thickness(4);
  ribbon->update_build_state(true);
  ribbon->build(nullptr);
  EXPECT_EQ(position(0), vec4(0, 0, -2, 1));
  EXPECT_EQ(position(1), vec4(0, 0, 2, 1));
  EXPECT_EQ(ribbon->get_vertex_normal(0), vec4(0, 1, 0, 0));
}

TEST_F(MeshRibbonShape, NormalsFollowABend) {
  ribbon->clear_points_list();
  ribbon->add_point(vec4(0, 0, 0, 1));
  ribbon->add_point(vec4(1, 0, 0, 1));
  ribbon->add_point(vec4(1, 0, 1, 1));
  ribbon->build(nullptr);
  EXPECT_TRUE(near(ribbon->get_vertex_normal(0), vec4(0, 0, -1, 0), 1e-6f));
  EXPECT_TRUE(near(ribbon->get_vertex_normal(2), vec4(0.70710678f, 0, -0.70710678f, 0), 1e-6f));
  EXPECT_TRUE(near(ribbon->get_vertex_normal(5), vec4(1, 0, 0, 0), 1e-6f));
}

TEST_F(MeshRibbonShape, AddingAPointAfterABuildAsksForARebuild) {
  ribbon->build(nullptr);
  EXPECT_FALSE(ribbon->get_build_state());
  ribbon->add_point(vec4(5, 0, 0, 1));
  EXPECT_TRUE(ribbon->get_build_state());
  ribbon->build(nullptr);
  EXPECT_EQ(ribbon->get_num_vertices(nullptr), 8u);
}

TEST_F(MeshRibbonShape, SettersDontAskForARebuild) {
  ribbon->build(nullptr);
  ribbon->set_thickness(9);
  ribbon->set_cross_vector(vec4(0, 0, 1, 0));
  EXPECT_FALSE(ribbon->get_build_state());
  ribbon->build(nullptr);
  EXPECT_EQ(position(1), vec4(0, 1, 0, 1));
}

TEST_F(MeshRibbonShape, FewerThanTwoPointsFreeTheOldGeometry) {
  ribbon->build(nullptr);
  ribbon->clear_points_list();
  EXPECT_EQ(ribbon->get_num_vertices(nullptr), 6u);
  ribbon->add_point(vec4());
  EXPECT_FALSE(ribbon->build(nullptr));
  EXPECT_EQ(ribbon->get_num_vertices(nullptr), 0u);
  EXPECT_FALSE(ribbon->build_ribbon_v1());
}

TEST_F(MeshRibbonShape, ClearAllFreesTheGeometryToo) {
  ribbon->build(nullptr);
  EXPECT_TRUE(ribbon->clear_all());
  EXPECT_EQ(ribbon->get_num_vertices(nullptr), 0u);
  EXPECT_EQ(ribbon->get_num_faces(nullptr), 0u);
}

TEST_F(MeshRibbonShape, EqualPointsGiveAnEmptyBand) {
  ribbon->clear_points_list();
  ribbon->add_point(vec4(1, 1, 1, 1));
  ribbon->add_point(vec4(1, 1, 1, 1));
  ASSERT_TRUE(ribbon->build(nullptr));
  EXPECT_EQ(ribbon->get_vertex_uv(3, 0), vec4(1, 0, 0, 1));
  EXPECT_EQ(ribbon->get_vertex_normal(0), vec4(0, 0, 0, 0));
}

TEST_F(MeshRibbonShape, BuildsItselfThroughEitherRoad) {
  ASSERT_TRUE(ribbon->_build());
  EXPECT_EQ(ribbon->get_num_vertices(nullptr), 6u);
}

TEST_F(MeshRibbonShape, CleanupDropsThePoints) {
  ribbon->build(nullptr);
  EXPECT_TRUE(ribbon->_cleanup(nullptr));
  EXPECT_EQ(ribbon->get_mesh_data(), nullptr);
  EXPECT_EQ(ribbon->add_point(vec4()), 1u);
  EXPECT_FALSE(ribbon->build(nullptr));
  EXPECT_FALSE(ribbon->build_ribbon());
  EXPECT_TRUE(ribbon->clear_all());
}

TEST_F(MeshRibbonShape, CopiesHavePointsOfTheirOwn) {
  ribbon->set_thickness(6);
  const Held<MeshRibbon> copy(*ribbon);
  copy->add_point(vec4(9, 0, 0, 1));
  EXPECT_EQ(ribbon->add_point(vec4(8, 0, 0, 1)), 4u);
  EXPECT_EQ(copy->get_thickness(), 6.0f);
  EXPECT_EQ(copy->get_mesh_data(), ribbon->get_mesh_data());
}

TEST(MeshRibbon, OtherFormatsHaveNoData) {
  const Held<MeshRibbon> ribbon(static_cast<VERTEX_FORMAT>(3));
  ribbon->add_point(vec4());
  ribbon->add_point(vec4(1, 0, 0, 1));
  EXPECT_FALSE(ribbon->build(nullptr));
  EXPECT_FALSE(ribbon->build_ribbon_v2());
}

TEST(MeshRibbon, ManyPointsUseWideFaces) {
  const Held<MeshRibbon> ribbon;
  for (int i = 0; i < 40000; ++i) ribbon->add_point(vec4(static_cast<float>(i), 0, 0, 1));
  ASSERT_TRUE(ribbon->build(nullptr));
  EXPECT_EQ(ribbon->get_data()->get_index_bits(), 32);
  EXPECT_THAT(face_of(*ribbon, 79997), ElementsAre(79997, 79999, 79998));
}

}  // namespace
}  // namespace orv
