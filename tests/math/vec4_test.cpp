#include <orv/math/vec4.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include <orv/math/angles.h>

#include "support/near.h"

namespace orv {
namespace {

using test::near;

static_assert(std::is_trivially_copyable_v<vec4>);
// Evaluated by the compiler, so globals of any file may read them before main.
static_assert(vec4::ZERO.w == 1.0f && vec4::UNIT_Z_AXIS.z == 1.0f);
constinit vec4 global_copy = vec4::UNIT_X_AXIS;

struct Packed {
  vec3 before;
  vec4 color;
};
static_assert(sizeof(Packed) == 28, "a vec4 packs behind three floats");

std::uint32_t bits(float f) {
  std::uint32_t u;
  std::memcpy(&u, &f, sizeof(u));
  return u;
}

TEST(Vec4, ConversionConstantsHaveTheirBits) {
  EXPECT_EQ(bits(DEGREES_TO_RADIANS), 0x3C8EFA35u);
  EXPECT_EQ(bits(RADIANS_TO_DEGREES), 0x42652EE1u);
  EXPECT_EQ(bits(FOV_TO_HALF_RADIANS), 0x3C0EFA35u);
}

TEST(Vec4, DefaultIsThePointAtTheOrigin) {
  EXPECT_EQ(vec4(), vec4(0, 0, 0, 1));
  vec4 v(1, 2, 3, 4);
  v._construct();
  EXPECT_EQ(v, vec4(0, 0, 0, 1));
}

TEST(Vec4, ConstantsArePoints) {
  EXPECT_EQ(vec4::ZERO, vec4(0, 0, 0, 1));
  EXPECT_EQ(vec4::ONE, vec4(1, 1, 1, 1));
  EXPECT_EQ(vec4::UNIT_X_AXIS, vec4(1, 0, 0, 1));
  EXPECT_EQ(vec4::UNIT_Y_AXIS, vec4(0, 1, 0, 1));
  EXPECT_EQ(vec4::UNIT_Z_AXIS, vec4(0, 0, 1, 1));
  EXPECT_EQ(global_copy, vec4::UNIT_X_AXIS);
}

TEST(Vec4, TakesOtherTypes) {
  EXPECT_EQ(vec4(vec3(1, 2, 3)), vec4(1, 2, 3, 1));
  vec4 v(9, 9, 9, 9);
  v = vec2(1, 2);
  EXPECT_EQ(v, vec4(1, 2, 0, 1));
  v.w = 9;
  v = vec3(1, 2, 3);
  EXPECT_EQ(v, vec4(1, 2, 3, 1));
}

TEST(Vec4, FloatFillsAllFourLanes) {
  vec4 v;
  v = 0.25f;
  EXPECT_EQ(v, vec4(0.25f, 0.25f, 0.25f, 0.25f));
}

TEST(Vec4, SetsAndArrays) {
  const vec4 source(5, 6, 7, 8);
  const float floats[] = {1, 2, 3, 4};
  vec4 v;
  v.set(4, 3, 2, 0);
  EXPECT_EQ(v, vec4(4, 3, 2, 0));
  v.set(source);
  EXPECT_EQ(v, source);
  v.set(floats);
  EXPECT_EQ(v, vec4(1, 2, 3, 4));
  v.set(&source);
  EXPECT_EQ(v, source);
  v.from_float_array(floats);
  EXPECT_EQ(v, vec4(1, 2, 3, 4));
  float out[4] = {};
  v.to_float_array(out);
  EXPECT_EQ(std::memcmp(out, floats, sizeof(out)), 0);
}

TEST(Vec4, NullArraysChangeNothing) {
  vec4 v(1, 2, 3, 4);
  v.from_float_array(nullptr);
  v.to_float_array(nullptr);
  v.set(static_cast<const vec4*>(nullptr));
  v.set(static_cast<const float*>(nullptr));
  EXPECT_EQ(v, vec4(1, 2, 3, 4));
}

TEST(Vec4, LanesByPointerIndexAndShorterVectors) {
  vec4 v(1, 2, 3, 4);
  EXPECT_EQ(v.ptr()[3], 4.0f);
  v[3] = 5;
  EXPECT_EQ(v.w, 5.0f);
  EXPECT_EQ(v[4], 5.0f) << "an index past the end names the last lane";
  EXPECT_TRUE(v.get_vec2() == vec2(1, 2));
  EXPECT_EQ(v.get_vec3(), vec3(1, 2, 3));
}

TEST(Vec4, EqualityIsExactOnFourLanes) {
  EXPECT_TRUE(vec4(1, 2, 3, 4) != vec4(1, 2, 3, 5));
  const vec4 nan(0, 0, 0, NAN);
  EXPECT_FALSE(nan == nan);
  EXPECT_TRUE(vec4(1, 2, 3, 4).is_equal(1, 2, 3, 4));
  EXPECT_FALSE(vec4(1, 2, 3, 4).is_equal(1, 2, 3, std::nextafter(4.0f, 5.0f)));
}

TEST(Vec4, IsEqualWithToleranceIgnoresWAndIncludesBothEnds) {
  const vec4 v(1, 2, 3, 4);
  EXPECT_TRUE(vec4(1.5f, 1.5f, 3.5f, -100).is_equal(v, 0.5f));
  EXPECT_FALSE(vec4(std::nextafter(1.5f, 2.0f), 2, 3, 4).is_equal(v, 0.5f));
  EXPECT_FALSE(vec4(1, 2, NAN, 4).is_equal(v, 0.5f));
}

TEST(Vec4, SumOfTwoPointsHasW2) {
  EXPECT_EQ((vec4() + vec4()).w, 2.0f);
  EXPECT_EQ((vec4(1, 2, 3) - vec4()).w, 0.0f);
  EXPECT_EQ((vec4(1, 2, 3) * 5.0f).w, 5.0f);
}

TEST(Vec4, ArithmeticCoversAllLanes) {
  const vec4 a(6, 8, 9, 10);
  const vec4 b(2, 4, 3, 5);
  EXPECT_EQ(a + b, vec4(8, 12, 12, 15));
  EXPECT_EQ(a - b, vec4(4, 4, 6, 5));
  EXPECT_EQ(a * b, vec4(12, 32, 27, 50));
  EXPECT_EQ(a / b, vec4(3, 2, 3, 2));
  vec4 c = a;
  EXPECT_EQ(c += b, vec4(8, 12, 12, 15));
  EXPECT_EQ(c -= b, a);
  EXPECT_EQ(c *= b, vec4(12, 32, 27, 50));
  EXPECT_EQ(c *= 0.5f, vec4(6, 16, 13.5f, 25));
  EXPECT_EQ((a / vec4(0, 1, 1, 1)).x, INFINITY);
}

TEST(Vec4, MinusAndCrossGiveW1) {
  EXPECT_EQ(-vec4(1, -2, 3, 7), vec4(-1, 2, -3, 1));
  EXPECT_EQ(vec4(1, 0, 0, 7).cross(vec4(0, 1, 0, 8)), vec4(0, 0, 1, 1));
  vec4 v(0, 0, 0, 9);
  v.cross(vec4(1, 2, 3), vec4(4, 5, 6));
  EXPECT_EQ(v, vec4(-3, 6, -3, 1));
  v.cross(v, vec4(1, 0, 0));
  EXPECT_EQ(v, vec4(0, -3, -6, 1)) << "an operand may be the result";
}

TEST(Vec4, MakeVecIsFirstMinusSecondWithW0) {
  vec4 v;
  v.make_vec(vec4(5, 7, 9, 3), vec4(1, 2, 3, 1));
  EXPECT_EQ(v, vec4(4, 5, 6, 0));
}

TEST(Vec4, DotAndLengthReadThreeLanes) {
  const vec4 v(2, 3, 6, 1000);
  EXPECT_EQ(v.dot(vec4(1, 10, 100, 1000)), 632.0f);
  EXPECT_EQ(v.magnitude_squared(), 49.0f);
  EXPECT_EQ(v.magnitude(), 7.0f);
  EXPECT_EQ(v.length(), 7.0f);
}

TEST(Vec4, NormalizeKeepsW) {
  vec4 v(1, 2, 3, 7);
  EXPECT_EQ(&v.normalize(), &v);
  EXPECT_EQ(v.w, 7.0f);
  EXPECT_NEAR(v.length(), 1.0f, 1e-6f);
  EXPECT_NEAR(v.y / v.x, 2.0f, 1e-6f);
}

TEST(Vec4, ZeroVectorNormalizesToZero) {
  vec4 v(0, 0, 0, 7);
  v.normalize();
  EXPECT_EQ(v, vec4(0, 0, 0, 7));
  // The square of a tiny length is exactly 0 in single precision.
  vec4 tiny(1e-30f, 0, 0, 2);
  tiny.normalize();
  EXPECT_EQ(tiny, vec4(0, 0, 0, 2));
}

TEST(Vec4, ClampRaisesThenLowersEveryLane) {
  vec4 v(-5, 0.5f, 5, 9);
  v.clamp(0, 1);
  EXPECT_EQ(v, vec4(0, 0.5f, 1, 1));
  v.set(-5, 0.5f, 5, 9);
  v.clamp(vec4(-1, 1, 0, 10), vec4(1, 2, 3, 20));
  EXPECT_EQ(v, vec4(-1, 1, 3, 10));
  v.set(5, 5, 5, 5);
  v.clamp(9, 2);
  EXPECT_EQ(v, vec4(2, 2, 2, 2)) << "raised to 9 first, then lowered to 2";
}

TEST(Vec4, TurnsKeepWAndAreCounterClockwise) {
  vec4 v(0, 1, 0, 7);
  v.rotate_x(90);
  EXPECT_TRUE(near(v, vec4(0, 0, 1, 7), 1e-6f));
  v.rotate_y(90);
  EXPECT_TRUE(near(v, vec4(1, 0, 0, 7), 1e-6f));
  v.rotate_z(90);
  EXPECT_TRUE(near(v, vec4(0, 1, 0, 7), 1e-6f));
}

TEST(Vec4, PitchYawAndRollAreDegrees) {
  EXPECT_EQ(vec4(0, 0, -1).pitch(), 0.0f);
  EXPECT_NEAR(vec4(0, 1, -1).pitch(), 45.0f, 1e-5f);
  EXPECT_NEAR(vec4(0, 1, 0).pitch(), 90.0f, 1e-5f);
  EXPECT_EQ(vec4(0, 0, -1).yaw(), 0.0f);
  EXPECT_NEAR(vec4(1, 0, -1).yaw(), 45.0f, 1e-5f);
  EXPECT_NEAR(vec4(-1, 0, 0).yaw(), -90.0f, 1e-5f);
  EXPECT_EQ(vec4(0, -1, 0).roll(), 0.0f);
  EXPECT_NEAR(vec4(1, -1, 0).roll(), 45.0f, 1e-5f);
  EXPECT_NEAR(vec4(1, 0, 0).roll(), 90.0f, 1e-5f);
}

TEST(Vec4, AngleToIsDegreesWithGuardsAtBothEnds) {
  EXPECT_NEAR(vec4(1, 0, 0).angle_to(vec4(0, 5, 0)), 90.0f, 1e-5f);
  EXPECT_NEAR(vec4(1, 0, 0).angle_to(vec4(1, 1, 0)), 45.0f, 1e-5f);
  EXPECT_EQ(vec4(1, 2, 3).angle_to(vec4(1, 2, 3)), 0.0f);
  EXPECT_EQ(vec4(2, 0, 0).angle_to(vec4(-3, 0, 0)), 180.0f);
  EXPECT_EQ(vec4(0, 0, 0).angle_to(vec4(1, 0, 0)), 0.0f);
  // Product of the squared lengths 1e-8: too short for an angle.
  EXPECT_EQ(vec4(0.01f, 0, 0).angle_to(vec4(0, 0.01f, 0)), 0.0f);
  EXPECT_NEAR(vec4(0.1f, 0, 0).angle_to(vec4(0, 0.1f, 0)), 90.0f, 1e-5f);
}

TEST(Vec4, ProjectOnPlaneCoversAllFourLanes) {
  const vec4 v(1, 2, 3, 5);
  EXPECT_EQ(v.project_on_plane(vec4(0, 1, 0, 1)), vec4(1, 0, 3, 3));
  EXPECT_EQ(v.project_on_plane(vec4(0, 0, 1, 0)), vec4(1, 2, 0, 5));
}

}  // namespace
}  // namespace orv
