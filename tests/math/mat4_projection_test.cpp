#include <orv/math/mat4.h>

#include <gtest/gtest.h>

#include <cmath>

#include "support/near.h"

namespace orv {
namespace {

using test::near;

const mat4 counted(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);

float tangent(double degrees) {
  return static_cast<float>(std::tan(degrees * 3.14159265358979 / 180));
}

// x, y, z after the division by w.
vec3 project(const mat4& m, const vec4& v) {
  const vec4 clip = m * v;
  return vec3(clip.x / clip.w, clip.y / clip.w, clip.z / clip.w);
}

// ---- right-handed perspective -----------------------------------------------------------------

TEST(Mat4Projection, PerspectiveMapsTheDepthRange) {
  mat4 m = counted;
  m.buildRHPerspectiveProjectionMatrix(60, 1.5f, 0.5f, 100);
  EXPECT_TRUE(near(project(m, vec4(0, 0, -0.5f)), vec3(0, 0, -1), 1e-5f));
  EXPECT_TRUE(near(project(m, vec4(0, 0, -100)), vec3(0, 0, 1), 1e-4f));
  const float half_height = 10 * tangent(30);
  const vec3 corner = project(m, vec4(half_height * 1.5f, half_height, -10));
  EXPECT_NEAR(corner.x, 1.0f, 1e-5f);
  EXPECT_NEAR(corner.y, 1.0f, 1e-5f);
}

TEST(Mat4Projection, PerspectiveWritesTheWholeMatrix) {
  mat4 m = counted;
  m.buildRHPerspectiveProjectionMatrix(90, 2, 1, 3);
  EXPECT_TRUE(near(m, mat4(0.5f, 0, 0, 0, 0, 1, 0, 0, 0, 0, -2, -1, 0, 0, -3, 0), 1e-6f));
}

TEST(Mat4Projection, FovSpansHeightOrWidth) {
  mat4 vertical;
  mat4 horizontal;
  mat4 plain;
  vertical.buildRHPerspectiveProjectionMatrix_v2(60, true, 2, 1, 10);
  horizontal.buildRHPerspectiveProjectionMatrix_v2(60, false, 2, 1, 10);
  plain.buildRHPerspectiveProjectionMatrix(60, 2, 1, 10);
  const float k = 1 / tangent(30);
  EXPECT_NEAR(vertical.m[0], k / 2, 1e-5f);
  EXPECT_NEAR(vertical.m[5], k, 1e-5f);
  EXPECT_NEAR(horizontal.m[0], k, 1e-5f);
  EXPECT_NEAR(horizontal.m[5], k * 2, 1e-5f);
  EXPECT_EQ(plain, vertical);
}

TEST(Mat4Projection, FarPlaneOfMinusOneIsAtInfinity) {
  const float epsilon = 1e-5f;
  mat4 m;
  m.buildRHPerspectiveProjectionMatrix(60, 1, 0.25f, -1, epsilon);
  EXPECT_EQ(m.m[10], epsilon - 1.0f);
  EXPECT_EQ(m.m[14], (epsilon - 2.0f) * 0.25f);
  mat4 by_default;
  by_default.buildRHPerspectiveProjectionMatrix_v2(60, true, 1, 0.25f, -1);
  EXPECT_EQ(by_default, m) << "the nudge is 0.00001 by default";
  mat4 two_fov;
  two_fov.buildRHTwoFovPerspectiveProjectionMatrix(60, 60, 1, 0.25f, -1, epsilon);
  EXPECT_EQ(two_fov.m[10], epsilon - 1.0f);
}

TEST(Mat4Projection, EpsilonIsReadAtInfinityOnly) {
  mat4 a;
  mat4 b;
  a.buildRHPerspectiveProjectionMatrix(60, 1, 1, 10, 0.5f);
  b.buildRHPerspectiveProjectionMatrix(60, 1, 1, 10, 0.0f);
  EXPECT_EQ(a, b);
}

TEST(Mat4Projection, TwoFovPerspectiveNeverReadsTheAspect) {
  mat4 a;
  mat4 b;
  a.buildRHTwoFovPerspectiveProjectionMatrix(90, 60, 1, 1, 3);
  b.buildRHTwoFovPerspectiveProjectionMatrix(90, 60, NAN, 1, 3);
  EXPECT_EQ(a, b);
  EXPECT_NEAR(a.m[0], 1.0f, 1e-6f);
  EXPECT_NEAR(a.m[5], 1 / tangent(30), 1e-5f);
  EXPECT_EQ(a.m[10], -2.0f);
  EXPECT_EQ(a.m[11], -1.0f);
  EXPECT_EQ(a.m[14], -3.0f);
  EXPECT_EQ(a.m[15], 0.0f);
}

// ---- left-handed perspective ------------------------------------------------------------------

TEST(Mat4Projection, LeftHandedPerspectiveTakesAQuarterOfTheFov) {
  mat4 m = counted;
  m.buildLHPerspectiveProjectionMatrix(90, 2, 1, 3);
  const float k = 1 / tangent(22.5);
  EXPECT_TRUE(near(m, mat4(k / 2, 0, 0, 0, 0, k, 0, 0, 0, 0, -2, 1, 0, 0, -3, 0), 1e-5f));
}

TEST(Mat4Projection, LeftHandedPerspectiveHasNoInfiniteFarPlane) {
  mat4 m;
  m.buildLHPerspectiveProjectionMatrix(90, 1, 1, -1);
  EXPECT_EQ(m.m[10], 0.0f);   // -(zfar + znear) / (zfar - znear)
  EXPECT_EQ(m.m[14], -1.0f);  // -2 * zfar * znear / (zfar - znear)
}

// ---- orthographic -----------------------------------------------------------------------------

TEST(Mat4Projection, OrthographicMapsTheBoxToTheClipCube) {
  mat4 m = counted;
  m.buildRHOrthographicProjectionMatrix(-2, 6, 1, 5, 10, 20);
  EXPECT_TRUE(near(m * vec4(-2, 1, -10), vec4(-1, -1, -1), 1e-6f));
  EXPECT_TRUE(near(m * vec4(6, 5, -20), vec4(1, 1, 1), 1e-6f));
  EXPECT_EQ(m, mat4(0.25f, 0, 0, 0, 0, 0.5f, 0, 0, 0, 0, -0.2f, 0, -0.5f, -1.5f, -3, 1));
}

TEST(Mat4Projection, LeftHandedOrthographicIsTheSame) {
  mat4 left;
  mat4 right;
  left.buildLHOrthographicProjectionMatrix(-2, 6, 1, 5, 10, 20);
  right.buildRHOrthographicProjectionMatrix(-2, 6, 1, 5, 10, 20);
  EXPECT_EQ(left, right);
}

// ---- camera -----------------------------------------------------------------------------------

TEST(Mat4Projection, RightHandedCameraLooksAlongMinusZ) {
  mat4 view = counted;
  view.buildRHUVNCameraMatrix(vec4(0, 0, 5), vec4(0, 0, 0), vec4(0, 1, 0));
  mat4 expected;
  expected.init_translate(0, 0, -5);
  EXPECT_EQ(view, expected);
  view.buildRHUVNCameraMatrix(vec4(1, 2, 3), vec4(4, 6, 8), vec4(0, 1, 0));
  EXPECT_TRUE(near(view * vec4(1, 2, 3), vec4(0, 0, 0), 1e-5f)) << "the eye is the origin";
  const vec4 seen = view * vec4(4, 6, 8);
  EXPECT_TRUE(near(seen, vec4(0, 0, -std::sqrt(50.0f)), 1e-5f)) << "the target lies ahead";
  EXPECT_GT((view * vec4(1, 3, 3)).y, 0.0f) << "up is up";
}

TEST(Mat4Projection, LeftHandedCameraLooksAlongPlusZ) {
  mat4 view = counted;
  view.buildLHUVNCameraMatrix(vec4(1, 2, 3), vec4(4, 6, 8), vec4(0, 1, 0));
  EXPECT_TRUE(near(view * vec4(1, 2, 3), vec4(0, 0, 0), 1e-5f));
  EXPECT_TRUE(near(view * vec4(4, 6, 8), vec4(0, 0, std::sqrt(50.0f)), 1e-5f));
}

TEST(Mat4Projection, CameraWithoutDirectionHasZeroAxes) {
  mat4 view;
  view.buildRHUVNCameraMatrix(vec4(1, 2, 3), vec4(1, 2, 3), vec4(0, 1, 0));
  EXPECT_EQ(view, mat4(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1));
  view.buildRHUVNCameraMatrix(vec4(0, 4, 0), vec4(0, 0, 0), vec4(0, 1, 0));
  EXPECT_EQ(view, mat4(0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, -4, 1)) << "looking along up";
}

}  // namespace
}  // namespace orv
