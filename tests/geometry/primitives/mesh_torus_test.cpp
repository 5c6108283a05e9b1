#include <orv/geometry/primitives/mesh_torus.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "geometry/primitives/shape_support.h"
#include "support/log_capture.h"

namespace orv {
namespace {

using test::face_of;
using test::facing_of;
using test::Held;
using test::near;
using testing::ElementsAre;

TEST(MeshTorus, OuterEdgeLiesAtTheRadius) {
  const Held<MeshTorus> torus;
  ASSERT_TRUE(torus->build(nullptr));
  test::expect_well_formed(*torus);
  float nearest = 1e9f;
  float farthest = 0.0f;
  for (unsigned int i = 0; i < torus->get_num_vertices(nullptr); ++i) {
    const vec4 p = torus->get_vertex_position(i);
    const float distance = std::sqrt(p.x * p.x + p.z * p.z);
    nearest = std::min(nearest, distance);
    farthest = std::max(farthest, distance);
  }
  EXPECT_NEAR(farthest, 5.0f, 1e-5f);
  EXPECT_NEAR(nearest, 1.0f, 1e-5f);
}

TEST(MeshTorus, FirstRingIsTheProfileAndTurnsTowardsMinusZ) {
  const Held<MeshTorus> torus;
  torus->build(nullptr);
  EXPECT_EQ(torus->get_vertex_position(0), vec4(5, 0, 0, 1));
  EXPECT_TRUE(near(torus->get_vertex_position(5), vec4(3, 2, 0, 1), 1e-5f));
  EXPECT_TRUE(near(torus->get_vertex_normal(5), vec4(0, 1, 0, 0), 1e-5f));
  EXPECT_TRUE(near(torus->get_vertex_position(5 * 21), vec4(0, 0, -5, 1), 1e-5f));
  EXPECT_TRUE(near(torus->get_vertex_normal(5 * 21), vec4(0, 0, -1, 0), 1e-5f));
  EXPECT_EQ(torus->get_vertex_uv(5 * 21 + 10, 0), vec4(0.5f, 0.25f, 0, 1));
}

TEST(MeshTorus, AllFacesLookOutOfTheTube) {
  const Held<MeshTorus> torus;
  torus->build(nullptr);
  EXPECT_THAT(face_of(*torus, 0), ElementsAre(0, 21, 1));
  EXPECT_THAT(face_of(*torus, 1), ElementsAre(1, 21, 22));
  EXPECT_THAT(test::quad_edges_of(*torus, 0), ElementsAre(0, 21, 21, 22, 22, 1, 1, 0));
  const auto facing = facing_of(*torus, [](const vec3& p) {
    const float length = std::sqrt(p.x * p.x + p.z * p.z);
    return p - vec3(p.x / length * 3.0f, 0, p.z / length * 3.0f);
  });
  EXPECT_EQ(facing.along, 800);
  EXPECT_EQ(facing.against, 0);
}

TEST(MeshTorus, SlicesAreNotClamped) {
  const Held<MeshTorus> torus;
  torus->set_build_params(5, 2, 1);
  EXPECT_TRUE(torus->build(nullptr));
  EXPECT_EQ(torus->get_num_vertices(nullptr), 4u);
  EXPECT_EQ(torus->get_num_faces(nullptr), 2u);
  torus->set_build_params(5, 2, 0);
  EXPECT_TRUE(torus->build(nullptr));
  EXPECT_EQ(torus->get_num_vertices(nullptr), 1u);
  EXPECT_EQ(torus->get_num_faces(nullptr), 0u);
  EXPECT_EQ(torus->get_vertex_position(0), vec4(5, 0, 0, 1));
}

TEST(MeshTorus, NegativeSlicesLeaveNoGeometry) {
  const test::LogCapture log(LOG_LEVEL_ERROR);
  for (const int slices : {-1, -4, -2147483647 - 1}) {
    const Held<MeshTorus> torus;
    ASSERT_TRUE(torus->_build());
    torus->set_build_params(5, 2, slices);
    EXPECT_FALSE(torus->_build());
    EXPECT_EQ(torus->get_num_vertices(nullptr), 0u);
    EXPECT_EQ(torus->get_num_faces(nullptr), 0u);
    EXPECT_EQ(torus->get_slices(), slices);
    EXPECT_FALSE(torus->get_build_state());
  }
  EXPECT_EQ(log.count("number of vertices is 0."), 3);
}

}  // namespace
}  // namespace orv
