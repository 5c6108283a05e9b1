#include <orv/math/vec3.h>

#include <gtest/gtest.h>

#include <cmath>
#include <type_traits>

#include "support/near.h"

namespace orv {
namespace {

using test::near;

static_assert(std::is_trivially_copyable_v<vec3>);

TEST(Vec3, DefaultAndConstructAreZero) {
  EXPECT_EQ(vec3(), vec3(0, 0, 0));
  vec3 v(1, 2, 3);
  v._construct();
  EXPECT_EQ(v, vec3(0, 0, 0));
}

TEST(Vec3, SetsFromComponentsReferenceAndPointers) {
  const vec3 source(4, 5, 6);
  const float floats[] = {7, 8, 9};
  vec3 v;
  v.set(1, 2, 3);
  EXPECT_EQ(v, vec3(1, 2, 3));
  v.set(source);
  EXPECT_EQ(v, source);
  v.set(floats);
  EXPECT_EQ(v, vec3(7, 8, 9));
  v.set(&source);
  EXPECT_EQ(v, source);
  v.set(static_cast<const vec3*>(nullptr));
  v.set(static_cast<const float*>(nullptr));
  EXPECT_EQ(v, source);
}

TEST(Vec3, TakesTwoLanesAndZero) {
  vec3 v(1, 2, 3);
  v = vec2(8, 9);
  EXPECT_EQ(v, vec3(8, 9, 0));
}

TEST(Vec3, LanesByPointerAndIndex) {
  vec3 v(1, 2, 3);
  EXPECT_EQ(v.ptr()[2], 3.0f);
  v[1] = 7;
  EXPECT_EQ(v.y, 7.0f);
  EXPECT_EQ(v[3], 3.0f) << "an index past the end names the last lane";
}

TEST(Vec3, EqualityIsExactAndNanIsUnequal) {
  EXPECT_TRUE(vec3(1, 2, 3) != vec3(1, 2, std::nextafter(3.0f, 4.0f)));
  const vec3 nan(0, NAN, 0);
  EXPECT_FALSE(nan == nan);
}

TEST(Vec3, IsEqualIncludesBothEnds) {
  const vec3 v(1, 2, 3);
  EXPECT_TRUE(vec3(1.5f, 1.5f, 3.5f).is_equal(v, 0.5f));
  EXPECT_FALSE(vec3(std::nextafter(1.5f, 2.0f), 2, 3).is_equal(v, 0.5f));
  EXPECT_FALSE(vec3(1, std::nextafter(1.5f, 0.0f), 3).is_equal(v, 0.5f));
  EXPECT_FALSE(vec3(1, 2, NAN).is_equal(v, 0.5f));
}

TEST(Vec3, ArithmeticIsLaneWise) {
  const vec3 a(6, 8, 9);
  const vec3 b(2, 4, 3);
  EXPECT_EQ(a + b, vec3(8, 12, 12));
  EXPECT_EQ(a - b, vec3(4, 4, 6));
  EXPECT_EQ(a * b, vec3(12, 32, 27));
  EXPECT_EQ(a / b, vec3(3, 2, 3));
  EXPECT_EQ(a * 0.5f, vec3(3, 4, 4.5f));
  EXPECT_EQ(-a, vec3(-6, -8, -9));
  vec3 c = a;
  EXPECT_EQ(c += b, vec3(8, 12, 12));
  EXPECT_EQ(c -= b, a);
  EXPECT_EQ(c *= b, vec3(12, 32, 27));
  EXPECT_EQ(c *= 2.0f, vec3(24, 64, 54));
  c.make_vec(a, b);
  EXPECT_EQ(c, vec3(4, 4, 6));
}

TEST(Vec3, DotLengthAndNormalize) {
  vec3 v(2, 3, 6);
  EXPECT_EQ(v.dot(vec3(1, 10, 100)), 632.0f);
  EXPECT_EQ(v.magnitude_squared(), 49.0f);
  EXPECT_EQ(v.length(), 7.0f);
  EXPECT_EQ(v.magnitude(), 7.0f);
  v.normalize();
  EXPECT_TRUE(near(v, vec3(2 / 7.0f, 3 / 7.0f, 6 / 7.0f), 1e-7f));
  vec3 none;
  EXPECT_EQ(none.normalize(), vec3());
}

TEST(Vec3, CrossIsRightHanded) {
  EXPECT_EQ(vec3(1, 0, 0).cross(vec3(0, 1, 0)), vec3(0, 0, 1));
  EXPECT_EQ(vec3(1, 2, 3).cross(vec3(4, 5, 6)), vec3(-3, 6, -3));
  vec3 v;
  v.cross(vec3(0, 1, 0), vec3(1, 0, 0));
  EXPECT_EQ(v, vec3(0, 0, -1));
  v.cross(v, vec3(1, 0, 0));
  EXPECT_EQ(v, vec3(0, -1, 0)) << "an operand may be the result";
}

TEST(Vec3, TurnsCounterClockwiseInDegrees) {
  vec3 v(0, 1, 0);
  v.rotate_x(90);
  EXPECT_TRUE(near(v, vec3(0, 0, 1), 1e-6f));
  v.rotate_y(90);
  EXPECT_TRUE(near(v, vec3(1, 0, 0), 1e-6f));
  v.rotate_z(90);
  EXPECT_TRUE(near(v, vec3(0, 1, 0), 1e-6f));
}

}  // namespace
}  // namespace orv
