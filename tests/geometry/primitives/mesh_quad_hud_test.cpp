#include <orv/geometry/primitives/mesh_quad_hud.h>

#include <gtest/gtest.h>

#include "geometry/primitives/shape_support.h"

namespace orv {
namespace {

using test::facing_of;
using test::Held;

TEST(MeshQuadHud, PositionsAreTextureCoordinates) {
  const Held<MeshQuadHud> quad;
  ASSERT_TRUE(quad->build(nullptr));
  test::expect_well_formed(*quad);
  const vec4 places[4] = {vec4(0, 0, 0, 1), vec4(0, 1, 0, 1), vec4(1, 1, 0, 1), vec4(1, 0, 0, 1)};
  for (unsigned int i = 0; i < 4; ++i) {
    EXPECT_EQ(quad->get_vertex_position(i), places[i]);
    EXPECT_EQ(quad->get_vertex_uv(i, 0), places[i]);
    EXPECT_EQ(quad->get_vertex_normal(i), vec4(0, 0, 1, 0));
    EXPECT_EQ(quad->get_vertex_color(i), vec4(1, 1, 1, 1));
  }
  EXPECT_EQ(facing_of(*quad, [](const vec3&) { return vec3(0, 0, 1); }).along, 2);
}

TEST(MeshQuadHud, CanBeMarkedForBuildingAgain) {
  const Held<MeshQuadHud> quad;
  quad->build(nullptr);
  quad->free_mesh_data();
  EXPECT_TRUE(quad->set_build_params());
  quad->build(nullptr);
  EXPECT_EQ(quad->get_num_vertices(nullptr), 4u);
}

}  // namespace
}  // namespace orv
