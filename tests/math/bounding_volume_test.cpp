#include <orv/math/bounding_volume.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>

#include "support/log_capture.h"
#include "support/near.h"

namespace orv {
namespace {

using test::near;

const vec4 empty_min(1e30f, 1e30f, 1e30f, 1);
const vec4 empty_max(-1e30f, -1e30f, -1e30f, 1);

void expect_empty_locals(const BoundingVolume& v) {
  EXPECT_EQ(v.sphere_center, vec4(0, 0, 0, 1));
  EXPECT_EQ(v.sphere_radius, 0.0f);
  EXPECT_EQ(v.box_min, empty_min);
  EXPECT_EQ(v.box_max, empty_max);
  EXPECT_EQ(v.box_size, vec4(0, 0, 0, 1));
}

void expect_empty_globals(const BoundingVolume& v) {
  EXPECT_EQ(v.global_sphere_center, vec4(0, 0, 0, 1));
  EXPECT_EQ(v.global_sphere_radius, 0.0f);
  EXPECT_EQ(v.global_box_min, empty_min);
  EXPECT_EQ(v.global_box_max, empty_max);
  EXPECT_EQ(v.global_box_size, vec4(0, 0, 0, 1));
  EXPECT_EQ(v.aabb_min, empty_min);
  EXPECT_EQ(v.aabb_max, empty_max);
  EXPECT_EQ(v.aabb_size, vec4(0, 0, 0, 1));
}

TEST(BoundingVolume, NewOneIsEmpty) {
  const BoundingVolume v;
  EXPECT_TRUE(v.inscribed_sphere);
  EXPECT_TRUE(v.enabled);
  expect_empty_locals(v);
  expect_empty_globals(v);
  for (int i = 0; i < 8; ++i) {
    EXPECT_EQ(v.corners[i], vec4());
    EXPECT_EQ(v.aabb_corners[i], vec4());
  }
  std::uint32_t bits = 0;
  std::memcpy(&bits, &v.box_min.x, sizeof(bits));
  EXPECT_EQ(bits, 0x7149F2CAu);
  std::memcpy(&bits, &v.box_max.x, sizeof(bits));
  EXPECT_EQ(bits, 0xF149F2CAu);
}

TEST(BoundingVolume, BoxOfSize2HasARadiusByItsFlag) {
  BoundingVolume v;
  EXPECT_TRUE(v.is_inscribed_sphere());
  v.set_box(vec4(-1, -1, -1), vec4(1, 1, 1));
  EXPECT_NEAR(v.get_sphere_radius(), 1.0f, 1e-4f);
  EXPECT_EQ(v.get_sphere_radius(), std::sqrt(12.0f) * 0.5f / 1.732f);
  v.use_inscribed_sphere(false);
  EXPECT_FALSE(v.is_inscribed_sphere());
  v.set_box(vec4(-1, -1, -1), vec4(1, 1, 1));
  EXPECT_NEAR(v.get_sphere_radius(), 1.732f, 1e-4f);
}

TEST(BoundingVolume, RadiusDivisorIs1732AndNotTheRoot) {
  BoundingVolume v;
  v.set_box(vec4(-1000, -1000, -1000), vec4(1000, 1000, 1000));
  EXPECT_GT(v.get_sphere_radius(), 1000.02f);
}

TEST(BoundingVolume, SetBoxKeepsWAndCentresTheSphere) {
  BoundingVolume v;
  v.set_box(vec4(1, 2, 3, 5), vec4(3, 6, 9, 7));
  EXPECT_EQ(v.get_box_min(), vec4(1, 2, 3, 5));
  EXPECT_EQ(v.get_box_max(), vec4(3, 6, 9, 7));
  EXPECT_EQ(v.get_box_size().get_vec3(), vec3(2, 4, 6));
  EXPECT_EQ(v.get_sphere_center(), vec4(2, 4, 6, 1));
}

TEST(BoundingVolume, SetSphereTakesAllLanesAndLeavesTheBox) {
  BoundingVolume v;
  v.set_sphere(vec4(1, 2, 3, 4), 5);
  EXPECT_EQ(v.get_sphere_center(), vec4(1, 2, 3, 4));
  EXPECT_EQ(v.get_sphere_radius(), 5.0f);
  EXPECT_EQ(v.get_box_min(), empty_min);
}

TEST(BoundingVolume, NewOneTakesTheFirstBoxAtOnce) {
  BoundingVolume v;
  EXPECT_GT(v.box_min.x, v.box_max.x);
  v.update_globals(vec4(5, 6, 7), vec4(7, 8, 9));
  EXPECT_EQ(v.global_box_min, vec4(5, 6, 7, 1));
  EXPECT_EQ(v.global_box_max, vec4(7, 8, 9, 1));
  EXPECT_EQ(v.get_global_box_size().get_vec3(), vec3(2, 2, 2));
  EXPECT_EQ(v.get_global_sphere_center(), vec4(6, 7, 8, 1));
  EXPECT_EQ(v.get_global_sphere_radius(), std::sqrt(12.0f) * 0.5f / 1.732f);
}

TEST(BoundingVolume, UpdateGlobalsGrowsOnly) {
  BoundingVolume v;
  v.use_inscribed_sphere(false);
  v.update_globals(vec4(0, 0, 0), vec4(1, 1, 1));
  v.update_globals(vec4(0.25f, -1, 0.25f), vec4(0.5f, 0.5f, 3));
  EXPECT_EQ(v.global_box_min, vec4(0, -1, 0, 1));
  EXPECT_EQ(v.global_box_max, vec4(1, 1, 3, 1));
  EXPECT_FLOAT_EQ(v.global_sphere_radius, std::sqrt(1.0f + 4 + 9) / 2);
}

TEST(BoundingVolume, UpdateWithTheIdentityKeepsAUnitBox) {
  BoundingVolume v;
  v.set_box(vec4(-0.5f, -0.5f, -0.5f), vec4(0.5f, 0.5f, 0.5f));
  v.update(mat4());
  EXPECT_EQ(v.global_sphere_radius, 0.5f);
  EXPECT_EQ(v.global_box_min, v.box_min);
  EXPECT_EQ(v.global_box_max, v.box_max);
  EXPECT_EQ(v.global_box_size.get_vec3(), v.box_size.get_vec3());
  EXPECT_EQ(v.aabb_min, v.global_box_min);
  EXPECT_EQ(v.aabb_max, v.global_box_max);
  EXPECT_EQ(v.aabb_size, v.global_box_size);
}

TEST(BoundingVolume, GlobalRadiusIsTheLargestHalfSizeWhateverTheFlag) {
  for (const bool inscribed : {false, true}) {
    BoundingVolume v;
    v.use_inscribed_sphere(inscribed);
    v.set_box(vec4(-1, -2, -4), vec4(1, 2, 4));
    v.update(mat4());
    EXPECT_EQ(v.global_sphere_radius, 4.0f);
  }
}

TEST(BoundingVolume, UpdateMovesAndTurnsTheCorners) {
  BoundingVolume v;
  v.set_box(vec4(-1, -1, -1), vec4(1, 1, 1));
  mat4 turn;
  mat4 shift;
  turn.init_rotate_z(45);
  shift.init_translate(10, 0, 0);
  v.update(shift * turn);
  const float reach = std::sqrt(2.0f);
  EXPECT_TRUE(near(v.global_box_min, vec4(10 - reach, -reach, -1), 1e-5f));
  EXPECT_TRUE(near(v.global_box_max, vec4(10 + reach, reach, 1), 1e-5f));
  EXPECT_TRUE(near(v.global_sphere_center, vec4(10, 0, 0), 1e-6f));
  EXPECT_TRUE(near(v.corners[0], vec4(10, -reach, -1), 1e-5f));
  EXPECT_TRUE(near(v.aabb_corners[0], vec4(10 - reach, -reach, -1), 1e-5f));
  EXPECT_TRUE(near(v.aabb_corners[4], vec4(10 + reach, reach, 1), 1e-5f));
}

TEST(BoundingVolume, CornersGoRoundTheSphereCentreAndNotTheBox) {
  BoundingVolume v;
  v.set_box(vec4(-1, -1, -1), vec4(1, 1, 1));
  v.set_sphere(vec4(100, 0, 0), 1);
  v.update(mat4());
  EXPECT_EQ(v.global_box_min, vec4(99, -1, -1, 1));
  EXPECT_EQ(v.global_box_max, vec4(101, 1, 1, 1));
}

TEST(BoundingVolume, UpdateTurnsTheCentreWithItsOwnW) {
  BoundingVolume v;
  v.set_box(vec4(-1, -1, -1), vec4(1, 1, 1));
  v.set_sphere(vec4(0, 0, 0, 0), 1);
  mat4 shift;
  shift.init_translate(5, 0, 0);
  v.update(shift);
  EXPECT_EQ(v.global_sphere_center, vec4(0, 0, 0, 0));
  EXPECT_EQ(v.global_box_min, vec4(4, -1, -1, 1)) << "corners are points";
}

TEST(BoundingVolume, ResetsKeepTheCorners) {
  BoundingVolume v;
  v.set_box(vec4(-1, -1, -1), vec4(1, 1, 1));
  v.update(mat4());
  const vec4 corner = v.corners[4];
  const vec4 aabb_corner = v.aabb_corners[4];
  EXPECT_EQ(corner, vec4(1, 1, 1, 1));
  v.reset_globals();
  expect_empty_globals(v);
  EXPECT_EQ(v.box_max, vec4(1, 1, 1, 1)) << "locals stay";
  v.reset_locals();
  expect_empty_locals(v);
  EXPECT_EQ(v.corners[4], corner);
  EXPECT_EQ(v.aabb_corners[4], aabb_corner);
}

TEST(BoundingVolume, CornersStandInOrderAndKeepW) {
  vec4 out[8];
  for (vec4& corner : out) corner.set(0, 0, 0, 9);
  BoundingVolume::_update_corners(out, vec4(10, 20, 30), vec4(2, 4, 6));
  const vec4 expected[8] = {vec4(9, 18, 27, 9),  vec4(9, 22, 27, 9),  vec4(11, 22, 27, 9),
                            vec4(11, 18, 27, 9), vec4(11, 22, 33, 9), vec4(9, 22, 33, 9),
                            vec4(9, 18, 33, 9),  vec4(11, 18, 33, 9)};
  for (int i = 0; i < 8; ++i) EXPECT_EQ(out[i], expected[i]) << i;
  BoundingVolume::_update_corners(nullptr, vec4(), vec4());
}

TEST(BoundingVolume, MergeGrowsTheLocalBoxAndKeepsTheRadius) {
  test::LogCapture log;
  BoundingVolume a;
  BoundingVolume b;
  a.set_box(vec4(0, 0, 0), vec4(2, 2, 2));
  b.set_box(vec4(-2, 1, 1), vec4(1, 8, 1.5f));
  const float radius = a.sphere_radius;
  a.sphere_center.w = 6;
  a.merge(b);
  EXPECT_EQ(a.box_min, vec4(-2, 0, 0, 1));
  EXPECT_EQ(a.box_max, vec4(2, 8, 2, 1));
  EXPECT_EQ(a.box_size.get_vec3(), vec3(4, 8, 2));
  EXPECT_EQ(a.sphere_center, vec4(0, 4, 1, 6));
  EXPECT_EQ(a.sphere_radius, radius);
}

TEST(BoundingVolume, MergeWritesAnInfoLineEachTime) {
  test::LogCapture log(LOG_LEVEL_INFO);
  BoundingVolume a;
  BoundingVolume b;
  a.set_box(vec4(0, 0, 0), vec4(1, 2, 3));
  b.set_box(vec4(0, 0, 0), vec4(0.5f, 0.5f, 0.5f));
  a.merge(b);
  a.merge(b);
  EXPECT_EQ(log.count("BoundingVolume::merge() - box size:<1.00;2.00;3.00> - sphere "
                      "center:<0.50;1.00;1.50>"),
            2);
}

TEST(BoundingVolume, MergeOfEmptyVolumesStaysEmpty) {
  test::LogCapture log;
  BoundingVolume a;
  a.merge(BoundingVolume());
  EXPECT_EQ(a.box_min, empty_min);
  EXPECT_EQ(a.box_max, empty_max);
  a.merge(a);
  EXPECT_EQ(a.box_min, empty_min);
}

}  // namespace
}  // namespace orv
