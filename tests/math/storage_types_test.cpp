// The types that only hold values: vec4d, vec4i, vec2u8 to vec4u8, mat4d.
#include <orv/math/mat4d.h>
#include <orv/math/vec4d.h>
#include <orv/math/vec4i.h>
#include <orv/math/vec_u8.h>

#include <gtest/gtest.h>

#include <cmath>

namespace orv {
namespace {

TEST(Vec4d, HoldsAndCompares) {
  EXPECT_TRUE(vec4d() == vec4d(0, 0, 0, 1));
  EXPECT_TRUE(vec4d(1, 2, 3, 4) != vec4d(1, 2, 3, 5));
  const vec4d nan(NAN, 0, 0, 0);
  EXPECT_FALSE(nan == nan);
}

TEST(Vec4i, HoldsAndCompares) {
  EXPECT_TRUE(vec4i() == vec4i(0, 0, 0, 0));
  EXPECT_TRUE(vec4i(1, 2, 3, 4) == vec4i(1, 2, 3, 4));
  EXPECT_TRUE(vec4i(1, 2, 3, 4) != vec4i(0, 2, 3, 4));
}

TEST(VecU8, HoldAndCompare) {
  EXPECT_TRUE(vec2u8() == vec2u8(0, 0));
  EXPECT_TRUE(vec2u8(1, 2) != vec2u8(1, 3));
  EXPECT_TRUE(vec3u8() == vec3u8(0, 0, 0));
  EXPECT_TRUE(vec3u8(1, 2, 255) != vec3u8(1, 2, 0));
  EXPECT_TRUE(vec4u8() == vec4u8(0, 0, 0, 0));
  EXPECT_TRUE(vec4u8(1, 2, 3, 4) != vec4u8(1, 2, 3, 5));
}

class Mat4d : public ::testing::Test {
 protected:
  const mat4d counted_{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};

  static void expect_identity(const mat4d& m) {
    for (int i = 0; i < 16; ++i) EXPECT_EQ(m.m[i], i % 5 == 0 ? 1.0 : 0.0) << i;
  }
  static void expect_counted(const mat4d& m) {
    for (int i = 0; i < 16; ++i) EXPECT_EQ(m.ptr()[i], i + 1.0);
  }
};

TEST_F(Mat4d, DefaultIsIdentity) {
  expect_identity(mat4d());
  mat4d m = counted_;
  m.identity();
  expect_identity(m);
}

TEST_F(Mat4d, CopiesFromEveryForm) {
  expect_counted(counted_);
  expect_counted(mat4d(counted_));
  expect_counted(mat4d(&counted_));
  mat4d m;
  m = counted_;
  expect_counted(m);
  m = mat4d();
  m = counted_.ptr();
  expect_counted(m);
  m = mat4d();
  m = &counted_;
  expect_counted(m);
}

TEST_F(Mat4d, NullChangesNothing) {
  expect_identity(mat4d(static_cast<const mat4d*>(nullptr)));
  mat4d m = counted_;
  m = static_cast<const double*>(nullptr);
  m = static_cast<const mat4d*>(nullptr);
  expect_counted(m);
}

}  // namespace
}  // namespace orv
