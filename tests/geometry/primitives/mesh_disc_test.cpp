#include <orv/geometry/primitives/mesh_disc.h>

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

TEST(MeshDisc, SectorsHaveSixVerticesOfTheirOwn) {
  const Held<MeshDisc> disc;
  disc->set_build_params(10, 4, 4);
  ASSERT_TRUE(disc->build(nullptr));
  test::expect_well_formed(*disc);
  EXPECT_EQ(disc->get_num_vertices(nullptr), 24u);
  const vec4 places[6] = {vec4(6, 0, 0, 1),  vec4(10, 0, 0, 1), vec4(0, 0, 6, 1),
                          vec4(10, 0, 0, 1), vec4(0, 0, 10, 1), vec4(0, 0, 6, 1)};
  const vec4 uvs[6] = {vec4(0, 1, 0, 1), vec4(0, 0, 0, 1), vec4(1, 1, 0, 1),
                       vec4(0, 0, 0, 1), vec4(1, 0, 0, 1), vec4(1, 1, 0, 1)};
  for (unsigned int i = 0; i < 6; ++i) {
    EXPECT_TRUE(near(disc->get_vertex_position(i), places[i], 1e-5f)) << i;
    EXPECT_EQ(disc->get_vertex_uv(i, 0), uvs[i]) << i;
    EXPECT_EQ(disc->get_vertex_uv(i + 6, 0), uvs[i]) << "the texture repeats in every sector";
  }
  EXPECT_THAT(face_of(*disc, 7), ElementsAre(21, 22, 23));
}

TEST(MeshDisc, NormalsPointUpAndTrianglesDown) {
  const Held<MeshDisc> disc;
  disc->build(nullptr);
  EXPECT_EQ(disc->get_vertex_normal(5), vec4(0, 1, 0, 0));
  const auto facing = facing_of(*disc, [](const vec3&) { return vec3(0, 1, 0); });
  EXPECT_EQ(facing.along, 0);
  EXPECT_EQ(facing.against, 40);
}

TEST(MeshDisc, HasAtLeastFourSlices) {
  const Held<MeshDisc> disc;
  disc->set_build_params(10, 4, 1);
  disc->build(nullptr);
  EXPECT_EQ(disc->get_num_faces(nullptr), 8u);
}

TEST(MeshDisc, RoundThatRoundingAddsDoesNotFitIn) {
  // The accumulated angle is a hair below 360 degrees behind the last sector.
  for (const int slices : {7, 11, 19, 21, 23, 25, 29}) {
    float angle = 0.0f;
    for (int i = 0; i < slices; ++i) angle += 360.0f / static_cast<float>(slices);
    ASSERT_LT(angle, 360.0f) << slices;
    const Held<MeshDisc> disc;
    disc->set_build_params(10, 4, slices);
    EXPECT_TRUE(disc->build(nullptr));
    EXPECT_EQ(disc->get_num_vertices(nullptr), static_cast<unsigned int>(slices) * 6);
    test::expect_well_formed(*disc);
  }
}

TEST(MeshDisc, SectorsThatRoundingDropsKeepTheirDefaults) {
  const Held<MeshDisc> disc;
  disc->set_build_params(10, 4, 20000);
  EXPECT_TRUE(disc->build(nullptr));
  unsigned int written = 0;
  for (unsigned int i = 0; i < 20000; ++i) {
    if (disc->get_vertex_color(i * 6) == vec4(1, 1, 1, 1)) ++written;
  }
  EXPECT_EQ(written, 19997u);
  EXPECT_EQ(disc->get_vertex_position(19999 * 6), vec4(0, 0, 0, 1));
}

}  // namespace
}  // namespace orv
