#include <orv/math/frustum.h>

#include <gtest/gtest.h>

#include <cmath>

#include <orv/math/bounding_volume.h>
#include <orv/math/mat4.h>
#include <orv/math/math.h>

#include "support/near.h"

namespace orv {
namespace {

using test::floats_near;

enum Plane { RIGHT, LEFT, BOTTOM, TOP, NEAR_PLANE, FAR_PLANE };

Frustum camera_at_origin() {
  mat4 projection;
  mat4 view;
  projection.buildRHPerspectiveProjectionMatrix(90, 1, 1, 100);
  Frustum frustum;
  frustum.update(&projection, &view);
  return frustum;
}

BoundingVolume box_at(const vec4& center, float half) {
  BoundingVolume volume;
  volume.set_box(vec4(-half, -half, -half), vec4(half, half, half));
  mat4 shift;
  shift.init_translate(center);
  volume.update(shift);
  return volume;
}

// The test written out: all eight corners against each plane.
bool check_eight_corners(const Frustum& frustum, const BoundingVolume& volume, bool skip_far) {
  const vec4 c = volume.global_sphere_center;
  const vec4 h = volume.global_box_size * 0.5f;
  for (int i = 0; i < (skip_far ? 5 : 6); ++i) {
    const float* p = frustum.planes[i];
    int outside = 0;
    for (int corner = 0; corner < 8; ++corner) {
      const float x = corner & 1 ? c.x + h.x : c.x - h.x;
      const float y = corner & 2 ? c.y + h.y : c.y - h.y;
      const float z = corner & 4 ? c.z + h.z : c.z - h.z;
      if (p[0] * x + p[1] * y + p[2] * z + p[3] < 0.0f) ++outside;
    }
    if (outside == 8) return false;
  }
  return true;
}

TEST(Frustum, NewOneIsAllZero) {
  const Frustum frustum;
  for (const auto& plane : frustum.planes) {
    for (const float value : plane) EXPECT_EQ(value, 0.0f);
  }
  for (const float value : frustum.clip) EXPECT_EQ(value, 0.0f);
}

TEST(Frustum, IdentityGivesAxisAlignedPlanesAtDistance1) {
  const mat4 identity;
  Frustum frustum;
  frustum.update(&identity, &identity);
  const float expected[6][4] = {{-1, 0, 0, 1}, {1, 0, 0, 1}, {0, 1, 0, 1},
                                {0, -1, 0, 1}, {0, 0, 1, 1}, {0, 0, -1, 1}};
  for (int i = 0; i < 6; ++i) EXPECT_TRUE(floats_near(frustum.planes[i], expected[i], 4, 0)) << i;
  EXPECT_TRUE(identity == frustum.clip);
}

TEST(Frustum, ClipIsTheProductOfProjectionAndView) {
  mat4 projection;
  mat4 view;
  projection.buildRHPerspectiveProjectionMatrix(60, 1.5f, 1, 10);
  view.buildRHUVNCameraMatrix(vec4(1, 2, 3), vec4(), vec4(0, 1, 0));
  Frustum frustum;
  frustum.update(&projection, &view);
  EXPECT_TRUE(projection * view == frustum.clip);
}

TEST(Frustum, PlanesHaveUnitNormalsAndStandInOrder) {
  const Frustum frustum = camera_at_origin();
  const float half = std::sqrt(0.5f);
  const float expected[6][4] = {{-half, 0, -half, 0}, {half, 0, -half, 0}, {0, half, -half, 0},
                                {0, -half, -half, 0}, {0, 0, -1, -1},      {0, 0, 1, 100}};
  for (int i = 0; i < 6; ++i) {
    EXPECT_TRUE(floats_near(frustum.planes[i], expected[i], 4, i == FAR_PLANE ? 0.02f : 1e-5f))
        << i;
  }
}

TEST(Frustum, NullMatricesChangeNothing) {
  Frustum frustum = camera_at_origin();
  const mat4 identity;
  const float before = frustum.planes[0][0];
  frustum.update(nullptr, &identity);
  frustum.update(&identity, nullptr);
  EXPECT_EQ(frustum.planes[0][0], before);
}

TEST(Frustum, PlaneOfZeroLengthIsNotFinite) {
  mat4 zero;
  zero.zero();
  const mat4 identity;
  Frustum frustum;
  frustum.update(&zero, &identity);
  EXPECT_FALSE(std::isfinite(frustum.planes[0][0]));
}

// ---- points -----------------------------------------------------------------------------------

TEST(Frustum, PointPassesOnTheInnerSideOfAnyOnePlane) {
  const Frustum frustum = camera_at_origin();
  EXPECT_TRUE(frustum.check_point(0, 0, -10, false));
  EXPECT_TRUE(frustum.check_point(0, 0, 10, false)) << "behind the camera, before the far plane";
  EXPECT_TRUE(frustum.check_point(50, 0, 1, false)) << "beside the camera, right of the left plane";
}

TEST(Frustum, PointOutsideOfAllPlanesFails) {
  Frustum frustum;
  for (auto& plane : frustum.planes) plane[3] = -1;
  EXPECT_FALSE(frustum.check_point(0, 0, 0, false));
  frustum.planes[FAR_PLANE][3] = 1;
  EXPECT_TRUE(frustum.check_point(0, 0, 0, false));
  EXPECT_FALSE(frustum.check_point(0, 0, 0, true)) << "without the far plane";
  frustum.planes[FAR_PLANE][3] = 0;
  EXPECT_FALSE(frustum.check_point(0, 0, 0, false)) << "on a plane isn't inside";
}

TEST(Frustum, PointFormsAgree) {
  Frustum frustum;
  for (auto& plane : frustum.planes) {
    plane[0] = 1;
    plane[3] = -5;
  }
  EXPECT_TRUE(frustum.check_point(vec3(6, 0, 0), false));
  EXPECT_TRUE(frustum.check_point(vec4(6, 0, 0, 0), false));
  EXPECT_FALSE(frustum.check_point(vec3(4, 0, 0), false));
  EXPECT_FALSE(frustum.check_point(vec4(4, 0, 0, 0), false));
}

// ---- spheres ----------------------------------------------------------------------------------

TEST(Frustum, SphereMustNotLieOutsideOfAPlane) {
  const Frustum frustum = camera_at_origin();
  EXPECT_TRUE(frustum.check_sphere(vec4(0, 0, -10), 1, false));
  EXPECT_FALSE(frustum.check_sphere(vec4(0, 0, 10), 1, false));
  EXPECT_FALSE(frustum.check_sphere(vec4(20, 0, -10), 1, false));
  EXPECT_TRUE(frustum.check_sphere(vec4(10.5f, 0, -10), 1, false)) << "across the right plane";
}

TEST(Frustum, SphereThatTouchesFromOutsidePasses) {
  const mat4 identity;
  Frustum frustum;
  frustum.update(&identity, &identity);
  EXPECT_TRUE(frustum.check_sphere(vec4(3, 0, 0), 2, false));
  EXPECT_FALSE(frustum.check_sphere(vec4(std::nextafter(3.0f, 4.0f), 0, 0), 2, false));
}

TEST(Frustum, SphereBeyondTheFarPlanePassesWhenItIsSkipped) {
  const Frustum frustum = camera_at_origin();
  EXPECT_FALSE(frustum.check_sphere(vec4(0, 0, -200), 1, false));
  EXPECT_TRUE(frustum.check_sphere(vec4(0, 0, -200), 1, true));
}

TEST(Frustum, SphereOfAVolumeIsTheGlobalOne) {
  const Frustum frustum = camera_at_origin();
  BoundingVolume volume = box_at(vec4(0, 0, -10), 1);
  volume.set_sphere(vec4(0, 0, 500), 0);
  EXPECT_TRUE(frustum.check_sphere(volume, false));
  EXPECT_FALSE(frustum.check_sphere(box_at(vec4(0, 0, -200), 1), false));
  EXPECT_TRUE(frustum.check_sphere(box_at(vec4(0, 0, -200), 1), true));
}

// ---- boxes ------------------------------------------------------------------------------------

TEST(Frustum, BoxFailsWithAllCornersOutsideOfAPlane) {
  const Frustum frustum = camera_at_origin();
  EXPECT_TRUE(frustum.check_axis_aligned_box(box_at(vec4(0, 0, -10), 1), false));
  EXPECT_FALSE(frustum.check_axis_aligned_box(box_at(vec4(0, 0, 10), 1), false));
  EXPECT_FALSE(frustum.check_axis_aligned_box(box_at(vec4(20, 0, -10), 1), false));
  EXPECT_TRUE(frustum.check_axis_aligned_box(box_at(vec4(11, 0, -10), 1), false));
  EXPECT_TRUE(frustum.check_axis_aligned_box(box_at(vec4(0, 0, 0), 1000), false))
      << "a box round the camera";
}

TEST(Frustum, BoxBeyondTheFarPlanePassesWhenItIsSkipped) {
  const Frustum frustum = camera_at_origin();
  EXPECT_FALSE(frustum.check_axis_aligned_box(box_at(vec4(0, 0, -200), 1), false));
  EXPECT_TRUE(frustum.check_axis_aligned_box(box_at(vec4(0, 0, -200), 1), true));
}

TEST(Frustum, BoxThatTouchesFromOutsidePasses) {
  const mat4 identity;
  Frustum frustum;
  frustum.update(&identity, &identity);
  EXPECT_TRUE(frustum.check_axis_aligned_box(box_at(vec4(2, 0, 0), 1), false));
  EXPECT_FALSE(frustum.check_axis_aligned_box(box_at(vec4(2.001f, 0, 0), 1), false));
}

TEST(Frustum, BoxAnswersAsItsEightCornersDo) {
  Math::srnd(21);
  int inside = 0;
  for (int round = 0; round < 20000; ++round) {
    mat4 projection;
    mat4 view;
    projection.buildRHPerspectiveProjectionMatrix(Math::rnd(10, 120), 1.5f, 0.1f, 20);
    view.buildRHUVNCameraMatrix(vec4(Math::rnd(-5, 5), 2, Math::rnd(-5, 5)), vec4(), vec4(0, 1, 0));
    Frustum frustum;
    frustum.update(&projection, &view);
    BoundingVolume volume;
    volume.global_sphere_center.set(Math::rnd(-9, 9), Math::rnd(-9, 9), Math::rnd(-9, 9));
    volume.global_box_size.set(Math::rnd(-1, 5), Math::rnd(0, 5), Math::rnd(0, 5));
    const bool skip_far = round % 2 == 0;
    const bool expected = check_eight_corners(frustum, volume, skip_far);
    inside += expected;
    ASSERT_EQ(frustum.check_axis_aligned_box(volume, skip_far), expected) << round;
  }
  EXPECT_GT(inside, 2000);
  EXPECT_LT(inside, 18000);
}

TEST(Frustum, BoxWithNumbersThatAreNotFiniteAnswersAsItsEightCornersDo) {
  const float values[] = {0, 1, -1, INFINITY, -INFINITY, NAN, 1e30f, -2e30f};
  Math::srnd(22);
  const auto pick = [&] { return values[static_cast<int>(Math::rnd(8))]; };
  for (int round = 0; round < 50000; ++round) {
    Frustum frustum;
    for (auto& plane : frustum.planes) {
      for (float& value : plane) value = pick();
    }
    BoundingVolume volume;
    volume.global_sphere_center.set(pick(), pick(), pick());
    volume.global_box_size.set(pick(), pick(), pick());
    ASSERT_EQ(frustum.check_axis_aligned_box(volume, false),
              check_eight_corners(frustum, volume, false))
        << round;
  }
}

}  // namespace
}  // namespace orv
