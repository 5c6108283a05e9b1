#include <orv/geometry/primitives/mesh_sphere.h>

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

TEST(MeshSphere, PolesLieOnTheZAxis) {
  const Held<MeshSphere> sphere;
  ASSERT_TRUE(sphere->build(nullptr));
  test::expect_well_formed(*sphere);
  EXPECT_EQ(sphere->get_vertex_position(0), vec4(0, 0, 4, 1));
  EXPECT_TRUE(near(sphere->get_vertex_position(440), vec4(0, 0, -4, 1), 1e-5f));
  EXPECT_TRUE(near(sphere->get_vertex_position(10 * 21), vec4(0, 4, 0, 1), 1e-5f));
  EXPECT_TRUE(near(sphere->get_vertex_position(10 * 21 + 5), vec4(4, 0, 0, 1), 1e-5f));
  EXPECT_TRUE(near(sphere->get_vertex_normal(10 * 21 + 5), vec4(1, 0, 0, 0), 1e-5f));
}

TEST(MeshSphere, TextureGoesOnceAround) {
  const Held<MeshSphere> sphere;
  sphere->build(nullptr);
  EXPECT_EQ(sphere->get_vertex_uv(0, 0), vec4(0, 0, 0, 1));
  EXPECT_EQ(sphere->get_vertex_uv(10 * 21 + 5, 0), vec4(0.25f, 0.5f, 0, 1));
  EXPECT_EQ(sphere->get_vertex_uv(440, 0), vec4(1, 1, 0, 1));
}

TEST(MeshSphere, FacesFollowTheStacks) {
  const Held<MeshSphere> sphere;
  sphere->build(nullptr);
  EXPECT_THAT(face_of(*sphere, 0), ElementsAre(0, 1, 21));
  EXPECT_THAT(face_of(*sphere, 1), ElementsAre(21, 1, 22));
  EXPECT_THAT(test::quad_edges_of(*sphere, 0), ElementsAre(0, 21, 21, 22, 22, 1, 1, 0));
  const auto facing = facing_of(*sphere, [](const vec3& center) { return center; });
  EXPECT_EQ(facing.along + facing.against, 800 - 2 * 20) << "two faces in each slice have no area";
  EXPECT_EQ(facing.against, 0) << "all look outwards";
}

TEST(MeshSphere, StacksAndSlicesHaveALeastNumber) {
  const Held<MeshSphere> sphere;
  sphere->set_build_params(1, 1, 2);
  sphere->build(nullptr);
  EXPECT_EQ(sphere->get_num_vertices(nullptr), 12u);
  EXPECT_EQ(sphere->get_num_faces(nullptr), 12u);
  EXPECT_EQ(sphere->get_stacks(), 2);
  EXPECT_EQ(sphere->get_slices(), 3);
}

}  // namespace
}  // namespace orv
