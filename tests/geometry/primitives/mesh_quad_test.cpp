#include <orv/geometry/primitives/mesh_quad.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "geometry/primitives/shape_support.h"

namespace orv {
namespace {

using test::face_of;
using test::facing_of;
using test::Held;
using testing::ElementsAre;

TEST(MeshQuad, HasNoGeometryUntilItsParametersAreSet) {
  const Held<MeshQuad> quad;
  EXPECT_FALSE(quad->get_build_state());
  EXPECT_TRUE(quad->build(nullptr));
  EXPECT_EQ(quad->get_num_vertices(nullptr), 0u);
  EXPECT_EQ(quad->get_type(), NODE_TYPE_MESH_QUAD);
  EXPECT_TRUE(quad->set_build_params(10, 10));
  EXPECT_TRUE(quad->build(nullptr));
  EXPECT_EQ(quad->get_num_vertices(nullptr), 4u);
}

TEST(MeshQuad, FacesTheViewerInTheXYPlane) {
  const Held<MeshQuad> quad;
  quad->set_build_params(4, 2);
  quad->build(nullptr);
  test::expect_well_formed(*quad);
  const vec4 places[4] = {vec4(-2, -1, 0, 1), vec4(-2, 1, 0, 1), vec4(2, 1, 0, 1),
                          vec4(2, -1, 0, 1)};
  const vec4 uvs[4] = {vec4(0, 0, 0, 1), vec4(0, 1, 0, 1), vec4(1, 1, 0, 1), vec4(1, 0, 0, 1)};
  for (unsigned int i = 0; i < 4; ++i) {
    EXPECT_EQ(quad->get_vertex_position(i), places[i]) << i;
    EXPECT_EQ(quad->get_vertex_uv(i, 0), uvs[i]) << i;
    EXPECT_EQ(quad->get_vertex_normal(i), vec4(0, 0, 1, 0)) << i;
  }
  EXPECT_THAT(face_of(*quad, 0), ElementsAre(0, 2, 1));
  EXPECT_THAT(face_of(*quad, 1), ElementsAre(0, 3, 2));
  EXPECT_EQ(facing_of(*quad, [](const vec3&) { return vec3(0, 0, 1); }).along, 2);
}

TEST(MeshQuad, NewSizeMovesTheCornersAtOnce) {
  const Held<MeshQuad> quad;
  EXPECT_FALSE(quad->update_params(4, 2)) << "nothing is built yet";
  quad->set_build_params(1, 1);
  quad->build(nullptr);
  EXPECT_TRUE(quad->update_params(8, 6));
  EXPECT_EQ(quad->get_vertex_position(2), vec4(4, 3, 0, 1));
}

}  // namespace
}  // namespace orv
