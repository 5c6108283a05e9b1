#include <orv/geometry/primitives/mesh_box_8v.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "geometry/primitives/shape_support.h"

namespace orv {
namespace {

using test::face_of;
using test::facing_of;
using test::Held;
using test::near;
using testing::ElementsAreArray;

const vec4 CORNERS[8] = {vec4(-1, -2, 3, 1), vec4(-1, 2, 3, 1),  vec4(1, 2, 3, 1),
                         vec4(1, -2, 3, 1),  vec4(1, -2, -3, 1), vec4(1, 2, -3, 1),
                         vec4(-1, 2, -3, 1), vec4(-1, -2, -3, 1)};

const unsigned int FACES[12][3] = {{0, 1, 2}, {2, 3, 0}, {4, 5, 6}, {6, 7, 4},
                                   {3, 2, 5}, {5, 4, 3}, {7, 6, 1}, {1, 0, 7},
                                   {1, 6, 5}, {5, 2, 1}, {7, 0, 3}, {3, 4, 7}};

TEST(MeshBox8v, SharesEightCorners) {
  const Held<MeshBox8v> box;
  box->set_build_params(2, 4, 6);
  ASSERT_TRUE(box->build(nullptr));
  test::expect_well_formed(*box);
  for (unsigned int i = 0; i < 8; ++i) {
    EXPECT_EQ(box->get_vertex_position(i), CORNERS[i]) << i;
    vec3 normal = CORNERS[i].get_vec3();
    normal.normalize();
    EXPECT_TRUE(near(box->get_vertex_normal(i).get_vec3(), normal, 1e-6f)) << i;
  }
  for (unsigned int i = 0; i < 12; ++i) {
    EXPECT_THAT(face_of(*box, i), ElementsAreArray(FACES[i])) << i;
  }
}

TEST(MeshBox8v, AllFacesAreClockwiseSeenFromOutside) {
  const Held<MeshBox8v> box;
  box->build(nullptr);
  const auto facing = facing_of(*box, [](const vec3& center) { return center; });
  EXPECT_EQ(facing.along, 0);
  EXPECT_EQ(facing.against, 12);
}

TEST(MeshBox8v, FrontAndBackCarryAWholeTexture) {
  const Held<MeshBox8v> box;
  box->build(nullptr);
  const vec4 uvs[4] = {vec4(0, 0, 0, 1), vec4(0, 1, 0, 1), vec4(1, 1, 0, 1), vec4(1, 0, 0, 1)};
  for (unsigned int i = 0; i < 8; ++i) EXPECT_EQ(box->get_vertex_uv(i, 0), uvs[i % 4]) << i;
}

TEST(MeshBox8v, NewSizeMovesTheCornersAtOnce) {
  const Held<MeshBox8v> box;
  EXPECT_FALSE(box->update_params(2, 4, 6)) << "nothing is built yet";
  box->build(nullptr);
  EXPECT_EQ(box->get_vertex_position(0), CORNERS[0]) << "the size was stored";
  EXPECT_TRUE(box->update_params(4, 8, 12));
  EXPECT_EQ(box->get_vertex_position(6), vec4(-2, 4, -6, 1));
}

}  // namespace
}  // namespace orv
