#include <orv/geometry/primitives/mesh_ellipse.h>

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

TEST(MeshEllipse, RingsLieAroundACentre) {
  const Held<MeshEllipse> ellipse;
  ellipse->set_build_params(6, 3, 4, 3, 360);
  ASSERT_TRUE(ellipse->build(nullptr));
  test::expect_well_formed(*ellipse);
  EXPECT_EQ(ellipse->get_num_vertices(nullptr), 16u);
  EXPECT_EQ(ellipse->get_num_faces(nullptr), 20u);
  EXPECT_EQ(ellipse->get_vertex_position(0), vec4(0, 0, 0, 1));
  EXPECT_EQ(ellipse->get_vertex_uv(0, 0), vec4(0.5f, 0.5f, 0, 1));
  EXPECT_EQ(ellipse->get_vertex_position(1), vec4(2, 0, 0, 1));
  EXPECT_EQ(ellipse->get_vertex_position(3), vec4(6, 0, 0, 1));
  EXPECT_TRUE(near(ellipse->get_vertex_position(6), vec4(0, 0, 3, 1), 1e-5f));
  EXPECT_EQ(ellipse->get_vertex_normal(9), vec4(0, 1, 0, 0));
}

TEST(MeshEllipse, TextureCoordinatesReachBeyondTheTextureAndIgnoreTheRing) {
  const Held<MeshEllipse> ellipse;
  ellipse->set_build_params(6, 3, 4, 3, 360);
  ellipse->build(nullptr);
  for (unsigned int ring = 0; ring < 3; ++ring) {
    EXPECT_TRUE(near(ellipse->get_vertex_uv(1 + ring, 0), vec4(1.5f, 0.5f, 0, 1), 1e-6f));
    EXPECT_TRUE(near(ellipse->get_vertex_uv(7 + ring, 0), vec4(-0.5f, 0.5f, 0, 1), 1e-6f));
  }
}

TEST(MeshEllipse, SpokesAreJoinedByACentreTriangleAndQuads) {
  const Held<MeshEllipse> ellipse;
  ellipse->build(nullptr);
  EXPECT_THAT(face_of(*ellipse, 0), ElementsAre(0, 3, 1));
  EXPECT_THAT(face_of(*ellipse, 1), ElementsAre(1, 3, 4));
  EXPECT_THAT(face_of(*ellipse, 2), ElementsAre(1, 4, 2));
  EXPECT_THAT(face_of(*ellipse, 27), ElementsAre(0, 21, 19));
}

TEST(MeshEllipse, AllTrianglesLookUp) {
  const Held<MeshEllipse> ellipse;
  ellipse->set_build_params(6, 3, 16, 4, 360);
  ellipse->build(nullptr);
  const auto facing = facing_of(*ellipse, [](const vec3&) { return vec3(0, 1, 0); });
  EXPECT_EQ(facing.along, 16 * 7);
  EXPECT_EQ(facing.against, 0);
}

TEST(MeshEllipse, SweepCoversAPart) {
  const Held<MeshEllipse> ellipse;
  ellipse->set_build_params(4, 4, 3, 1, 90);
  ellipse->build(nullptr);
  EXPECT_TRUE(near(ellipse->get_vertex_position(4), vec4(0, 0, 4, 1), 1e-5f));
}

TEST(MeshEllipse, SlicesAndRingsHaveALeastNumber) {
  const Held<MeshEllipse> ellipse;
  ellipse->set_build_params(4, 4, 0, 0, 360);
  ellipse->build(nullptr);
  EXPECT_EQ(ellipse->get_num_vertices(nullptr), 5u);
  EXPECT_EQ(ellipse->get_num_faces(nullptr), 3u);
}

}  // namespace
}  // namespace orv
