#include <orv/geometry/point.h>

#include <gtest/gtest.h>

#include "support/held.h"

namespace orv {
namespace {

using test::Held;

TEST(Point, HasOneWhiteVertexAtTheGivenPlace) {
  const Held<Point> point(vec3(1, 2, 3));
  EXPECT_EQ(point->get_type(), NODE_TYPE_POINT);
  EXPECT_TRUE(point->is_type_of(NODE_TYPE_VERTEX_POOL));
  EXPECT_EQ(point->get_pool_size(), 1u);
  EXPECT_EQ(point->get_vertex_position(0), vec4(1, 2, 3, 1));
  EXPECT_EQ(point->get_vertex_color(0), vec4(1, 1, 1, 1));
  EXPECT_EQ(point->get_pool_data()->get_primitive_type(), PRIMITIVE_POINTS);
  EXPECT_FALSE(point->get_pool_data()->has_separate_vertex_arrays());
}

TEST(Point, DefaultStandsAtTheOrigin) {
  const Held<Point> point;
  EXPECT_EQ(point->get_vertex_position(0), vec4(0, 0, 0, 1));
  EXPECT_EQ(point->get_vertex_color(0), vec4(1, 1, 1, 1));
}

TEST(Point, SettersWriteTheVertexAndNotTheTransform) {
  const Held<Point> point;
  point->set_position(vec3(4, 5, 6));
  EXPECT_EQ(point->get_vertex_position(0), vec4(4, 5, 6, 1));
  point->set_position(7, 8, 9);
  EXPECT_EQ(point->get_vertex_position(0), vec4(7, 8, 9, 1));
  EXPECT_EQ(point->get_position(), vec4(0, 0, 0, 1));
  point->set_color(vec4(1, 0, 0, 0.5f));
  EXPECT_EQ(point->get_vertex_color(0), vec4(1, 0, 0, 0.5f));
  point->set_color(0, 1, 0, 1);
  EXPECT_EQ(point->get_vertex_color(0), vec4(0, 1, 0, 1));
}

}  // namespace
}  // namespace orv
