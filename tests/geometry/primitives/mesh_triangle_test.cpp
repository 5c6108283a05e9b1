#include <orv/geometry/primitives/mesh_triangle.h>

#include <gtest/gtest.h>

#include "geometry/primitives/shape_support.h"

namespace orv {
namespace {

using test::Held;

TEST(MeshTriangle, DefaultFacesTheViewer) {
  const Held<MeshTriangle> triangle;
  ASSERT_TRUE(triangle->build(nullptr));
  test::expect_well_formed(*triangle);
  EXPECT_EQ(triangle->get_vertex_position(0), vec4(-5, -5, 0, 1));
  EXPECT_EQ(triangle->get_vertex_position(1), vec4(5, -5, 0, 1));
  EXPECT_EQ(triangle->get_vertex_position(2), vec4(0, 5, 0, 1));
  EXPECT_EQ(triangle->get_vertex_normal(0), vec4(0, 0, 1, 0));
  EXPECT_EQ(triangle->get_vertex_uv(1, 0), vec4(1, 0, 0, 1));
  EXPECT_EQ(triangle->get_vertex_uv(2, 0), vec4(0.5f, 1, 0, 1));
  EXPECT_EQ(test::face_of(*triangle, 0), (std::vector<unsigned int>{0, 1, 2}));
}

TEST(MeshTriangle, CornersAreStoredAsTheyAre) {
  const Held<MeshTriangle> triangle;
  EXPECT_TRUE(triangle->set_build_params(vec4(1, 0, 0, 7), vec4(0, 0, -1, 1), vec4(0, 0, 1, 1)));
  triangle->build(nullptr);
  EXPECT_EQ(triangle->get_data()->get_position_4f(0), vec4(1, 0, 0, 7));
  EXPECT_EQ(triangle->get_vertex_normal(0), vec4(0, 1, 0, 0));
}

TEST(MeshTriangle, DegenerateCornersHaveNoNormal) {
  const Held<MeshTriangle> triangle;
  triangle->set_build_params(vec4(), vec4(), vec4());
  EXPECT_TRUE(triangle->build(nullptr));
  EXPECT_EQ(triangle->get_vertex_normal(0), vec4(0, 0, 0, 0));
}

}  // namespace
}  // namespace orv
