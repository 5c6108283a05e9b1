#include <orv/geometry/primitives/mesh_cylinder.h>

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

TEST(MeshCylinder, StandsOnTheZAxis) {
  const Held<MeshCylinder> cylinder;
  ASSERT_TRUE(cylinder->build(nullptr));
  test::expect_well_formed(*cylinder);
  EXPECT_EQ(cylinder->get_vertex_position(0), vec4(0, 5, -5, 1));
  EXPECT_TRUE(near(cylinder->get_vertex_position(20 * 21 + 5), vec4(5, 0, 5, 1), 1e-5f));
  EXPECT_TRUE(near(cylinder->get_vertex_normal(20 * 21 + 5), vec4(1, 0, 0, 0), 1e-5f));
}

TEST(MeshCylinder, FacesAreWoundAgainstThoseOfTheSphere) {
  const Held<MeshCylinder> cylinder;
  cylinder->build(nullptr);
  EXPECT_THAT(face_of(*cylinder, 0), ElementsAre(21, 1, 0));
  EXPECT_THAT(face_of(*cylinder, 1), ElementsAre(22, 1, 21));
  EXPECT_THAT(test::quad_edges_of(*cylinder, 0), ElementsAre(0, 21, 21, 22, 22, 1, 1, 0));
}

TEST(MeshCylinder, IsOpenAtBothEnds) {
  const Held<MeshCylinder> cylinder;
  cylinder->build(nullptr);
  const auto ends = facing_of(*cylinder, [](const vec3&) { return vec3(0, 0, 1); });
  EXPECT_EQ(ends.along + ends.against, 0);
  const auto sides = facing_of(*cylinder, [](const vec3& p) { return vec3(p.x, p.y, 0); });
  EXPECT_EQ(sides.along, 800);
  EXPECT_EQ(sides.against, 0);
}

TEST(MeshCylinder, NegativeRadiusIsOne) {
  const Held<MeshCylinder> cylinder;
  cylinder->set_build_params(-3, 2, 1, 1);
  cylinder->build(nullptr);
  EXPECT_EQ(cylinder->get_num_vertices(nullptr), 16u) << "three stacks and slices at the least";
  EXPECT_EQ(cylinder->get_vertex_position(0), vec4(0, 1, -1, 1));
}

}  // namespace
}  // namespace orv
