#include "geometry/shapes/par_shape.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/near.h"

namespace orv::detail {
namespace {

/// Two triangles of a square that share no point.
ParShape square() {
  ParShape shape;
  shape.points = {vec3(0, 0, 0), vec3(1, 0, 0), vec3(0, 1, 0),
                  vec3(1, 0, 0), vec3(1, 1, 0), vec3(0, 1, 0)};
  shape.triangles = {{0, 1, 2}, {3, 4, 5}};
  return shape;
}

TEST(ParShape, WeldKeepsTheLowestIndex) {
  ParShape shape = square();
  weld(shape, 0.01f);
  ASSERT_EQ(shape.points.size(), 4u);
  EXPECT_EQ(shape.points[3], vec3(1, 1, 0));
  ASSERT_EQ(shape.triangles.size(), 2u);
  EXPECT_EQ(shape.triangles[1].a, 1u);
  EXPECT_EQ(shape.triangles[1].b, 3u);
  EXPECT_EQ(shape.triangles[1].c, 2u);
}

TEST(ParShape, WeldReachesOverTheCellsOfItsGrid) {
  ParShape shape;
  shape.points = {vec3(0, 0, 0), vec3(0.0999f, 0.0999f, 0), vec3(0.1001f, 0.1001f, 0),
                  vec3(1, 0, 0), vec3(0.5f, 1, 0)};
  shape.triangles = {{1, 3, 4}, {2, 3, 4}};
  weld(shape, 0.1f);
  EXPECT_EQ(shape.points.size(), 4u);
  EXPECT_EQ(shape.triangles[1].a, 1u);
}

TEST(ParShape, WeldDropsTrianglesThatLoseACorner) {
  ParShape shape = square();
  shape.points[1] = vec3(0.001f, 0, 0);
  weld(shape, 0.01f);
  EXPECT_EQ(shape.triangles.size(), 1u);
}

TEST(ParShape, TooLargeAnEpsilonIsReportedAndChangesNothing) {
  ParShape shape = square();
  testing::internal::CaptureStdout();
  weld(shape, 0.51f);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "Epsilon value is too large.\n");
  EXPECT_EQ(shape.points.size(), 6u);
  testing::internal::CaptureStdout();
  weld(shape, 0.5f);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(ParShape, UnweldGivesEveryTriangleItsOwnPoints) {
  ParShape shape = square();
  weld(shape, 0.01f);
  shape.normals.resize(4);
  unweld(shape);
  EXPECT_EQ(shape.points.size(), 6u);
  EXPECT_TRUE(shape.normals.empty());
  EXPECT_EQ(shape.triangles[1].c, 5u);
  EXPECT_EQ(shape.points[4], vec3(1, 1, 0));
}

TEST(ParShape, TubeIsAnOpenCylinder) {
  ParShape tube;
  ASSERT_TRUE(make_tube(6, 1, tube));
  ASSERT_EQ(tube.points.size(), 14u);
  EXPECT_EQ(tube.triangles.size(), 12u);
  for (std::size_t i = 0; i < 14; ++i) {
    const vec3& p = tube.points[i];
    EXPECT_NEAR(p.x * p.x + p.y * p.y, 1.0f, 1e-6f);
    EXPECT_EQ(p.z, i < 7 ? 0.0f : 1.0f);
    EXPECT_TRUE(test::near(tube.normals[i], vec3(p.x, p.y, 0), 1e-5f));
  }
  EXPECT_FALSE(make_tube(0, 1, tube));
  EXPECT_FALSE(make_tube(65536, 1, tube));
}

TEST(ParShape, UnknownSolidsAreRefused) {
  ParShape shape;
  EXPECT_FALSE(make_solid("octahedron", shape));
  EXPECT_FALSE(make_solid("", shape));
  EXPECT_TRUE(make_solid("cube", shape));
  EXPECT_EQ(shape.points.size(), 8u);
}

}  // namespace
}  // namespace orv::detail
