#include <orv/math/vec2.h>

#include <gtest/gtest.h>

#include <cmath>
#include <type_traits>

namespace orv {
namespace {

static_assert(std::is_trivially_copyable_v<vec2>);

TEST(Vec2, DefaultAndConstructAreZero) {
  EXPECT_EQ(vec2().x, 0.0f);
  EXPECT_EQ(vec2().y, 0.0f);
  vec2 v(1, 2);
  v._construct();
  EXPECT_TRUE(v == vec2(0, 0));
}

TEST(Vec2, SetsFromComponentsReferenceAndPointers) {
  const vec2 source(3, 4);
  const float floats[] = {5, 6};
  vec2 v;
  v.set(1, 2);
  EXPECT_TRUE(v == vec2(1, 2));
  v.set(source);
  EXPECT_TRUE(v == source);
  v.set(floats);
  EXPECT_TRUE(v == vec2(5, 6));
  v.set(&source);
  EXPECT_TRUE(v == source);
  v.set(static_cast<const vec2*>(nullptr));
  v.set(static_cast<const float*>(nullptr));
  EXPECT_TRUE(v == source);
}

TEST(Vec2, LanesByPointerAndIndex) {
  vec2 v(1, 2);
  EXPECT_EQ(v.ptr()[1], 2.0f);
  v[0] = 7;
  EXPECT_EQ(v.x, 7.0f);
  EXPECT_EQ(v[1], 2.0f);
  EXPECT_EQ(v[99], 2.0f) << "an index past the end names the last lane";
}

TEST(Vec2, EqualityIsExactAndNanIsUnequal) {
  EXPECT_TRUE(vec2(1, 2) == vec2(1, 2));
  EXPECT_TRUE(vec2(1, 2) != vec2(1, std::nextafter(2.0f, 3.0f)));
  const vec2 nan(NAN, 0);
  EXPECT_TRUE(nan != nan);
}

TEST(Vec2, ArithmeticIsLaneWise) {
  const vec2 a(6, 8);
  const vec2 b(2, 4);
  EXPECT_TRUE(a + b == vec2(8, 12));
  EXPECT_TRUE(a - b == vec2(4, 4));
  EXPECT_TRUE(a * b == vec2(12, 32));
  EXPECT_TRUE(a / b == vec2(3, 2));
  EXPECT_TRUE(a * 0.5f == vec2(3, 4));
  vec2 c = a;
  EXPECT_TRUE((c += b) == vec2(8, 12));
  EXPECT_TRUE((c -= b) == a);
  EXPECT_TRUE((c *= b) == vec2(12, 32));
  EXPECT_TRUE((c *= 0.5f) == vec2(6, 16));
  c.make_vec(a, b);
  EXPECT_TRUE(c == vec2(4, 4));
}

TEST(Vec2, LengthAndNormalize) {
  vec2 v(3, 4);
  EXPECT_EQ(v.magnitude_squared(), 25.0f);
  EXPECT_EQ(v.magnitude(), 5.0f);
  EXPECT_EQ(v.length(), 5.0f);
  EXPECT_EQ(v.dot(vec2(1, 2)), 11.0f);
  v.normalize();
  EXPECT_TRUE(v == vec2(3 * 0.2f, 4 * 0.2f));
  vec2 none;
  EXPECT_TRUE(none.normalize() == vec2());
}

}  // namespace
}  // namespace orv
