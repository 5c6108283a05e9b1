#include <orv/math/mat4.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <type_traits>

#include <orv/math/math.h>
#include <orv/math/quat.h>

#include "support/near.h"

namespace orv {
namespace {

using test::near;
using test::same_rotation;

static_assert(std::is_trivially_copyable_v<mat4>);

const mat4 counted(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);

mat4 random_matrix() {
  mat4 m;
  for (float& element : m.m) element = Math::rnd(-2, 2);
  return m;
}

quat random_rotation() {
  quat q(Math::rnd(-1, 1), Math::rnd(-1, 1), Math::rnd(-1, 1), Math::rnd(-1, 1));
  q.normalize();
  return q;
}

bool same_bits(const mat4& a, const mat4& b) { return std::memcmp(a.m, b.m, sizeof(a.m)) == 0; }

// ---- construction and arrays ------------------------------------------------------------------

TEST(Mat4, DefaultIsIdentity) {
  const mat4 m;
  for (int i = 0; i < 16; ++i) EXPECT_EQ(m.m[i], i % 5 == 0 ? 1.0f : 0.0f) << i;
}

TEST(Mat4, SixteenValuesFillColumns) {
  for (int i = 0; i < 16; ++i) EXPECT_EQ(counted.m[i], static_cast<float>(i + 1));
  EXPECT_EQ(counted.ptr()[12], 13.0f);
}

TEST(Mat4, CopiesFromEveryForm) {
  EXPECT_EQ(mat4(counted), counted);
  EXPECT_EQ(mat4(counted.ptr()), counted);
  EXPECT_EQ(mat4(&counted), counted);
  mat4 m;
  m = counted.ptr();
  EXPECT_EQ(m, counted);
  m.identity();
  m = &counted;
  EXPECT_EQ(m, counted);
  m.identity();
  m.from_float_array(counted.ptr());
  EXPECT_EQ(m, counted);
  float out[16] = {};
  m.to_float_array(out);
  EXPECT_TRUE(counted == out);
}

TEST(Mat4, NullChangesNothing) {
  const float* no_floats = nullptr;
  const mat4* no_matrix = nullptr;
  EXPECT_EQ(mat4(no_floats), mat4());
  EXPECT_EQ(mat4(no_matrix), mat4());
  mat4 m = counted;
  m = no_floats;
  m = no_matrix;
  m.from_float_array(nullptr);
  m.to_float_array(nullptr);
  m.init_translate(static_cast<const vec4*>(nullptr));
  EXPECT_EQ(m, counted);
  EXPECT_FALSE(m == no_floats);
  EXPECT_TRUE(m != no_floats);
}

TEST(Mat4, EqualityIsExactOnAllElements) {
  for (int i = 0; i < 16; ++i) {
    mat4 other = counted;
    other.m[i] = std::nextafter(other.m[i], 100.0f);
    EXPECT_TRUE(other != counted) << i;
    EXPECT_FALSE(other == counted.ptr()) << i;
  }
  mat4 nan;
  nan.m[3] = NAN;
  EXPECT_FALSE(nan == nan);
}

TEST(Mat4, ZeroIdentityAndTranspose) {
  mat4 m = counted;
  m.transpose();
  EXPECT_EQ(m, mat4(1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15, 4, 8, 12, 16));
  m.zero();
  for (const float element : m.m) EXPECT_EQ(element, 0.0f);
  m.identity();
  EXPECT_EQ(m, mat4());
}

// ---- products ---------------------------------------------------------------------------------

TEST(Mat4, VectorProductTakesColumns) {
  EXPECT_EQ(counted * vec4(1, 10, 100, 1000), vec4(13951, 15062, 16173, 17284));
  mat4 shift;
  shift.init_translate(1, 2, 3);
  EXPECT_EQ(shift * vec4(10, 20, 30), vec4(11, 22, 33, 1));
  EXPECT_EQ(shift * vec4(10, 20, 30, 0), vec4(10, 20, 30, 0));
}

TEST(Mat4, VectorProductLeavesTheOperandAlone) {
  vec4 v(1, 2, 3, 1);
  mat4 m = counted;
  EXPECT_NE(m * v, v);
  EXPECT_EQ(v, vec4(1, 2, 3, 1));
}

TEST(Mat4, ProductAppliesTheRightOperandFirst) {
  mat4 shift;
  mat4 twice;
  shift.init_translate(1, 0, 0);
  twice.init_scale(2, 2, 2);
  EXPECT_EQ((shift * twice) * vec4(5, 0, 0), vec4(11, 0, 0, 1));
  EXPECT_EQ(shift.concat(twice), shift * twice);
  EXPECT_EQ((twice * shift) * vec4(5, 0, 0), vec4(12, 0, 0, 1));
}

TEST(Mat4, ProductsHaveTheBitsOfThePlainFormula) {
  Math::srnd(1);
  for (int round = 0; round < 1000; ++round) {
    const mat4 a = random_matrix();
    const mat4 b = random_matrix();
    mat4 plain;
    for (int c = 0; c < 4; ++c) {
      for (int r = 0; r < 4; ++r) {
        plain.m[c * 4 + r] = a.m[r] * b.m[c * 4] + a.m[4 + r] * b.m[c * 4 + 1] +
                             a.m[8 + r] * b.m[c * 4 + 2] + a.m[12 + r] * b.m[c * 4 + 3];
      }
    }
    ASSERT_TRUE(same_bits(a * b, plain));
    const vec4 column = a * vec4(b.m[0], b.m[1], b.m[2], b.m[3]);
    ASSERT_EQ(std::memcmp(column.ptr(), plain.m, sizeof(column)), 0);
  }
}

TEST(Mat4, MultiplyAssignMultipliesNothing) {
  mat4 a;
  const mat4 b = counted;
  a *= b;
  EXPECT_EQ(a, mat4());
  mat4 c = counted;
  EXPECT_EQ(&(c *= counted), &c);
  EXPECT_EQ(c, counted);
}

TEST(Mat4, ProductMayOverwriteItsOperand) {
  mat4 a = counted;
  const mat4 expected = counted * counted;
  a = a * a;
  EXPECT_EQ(a, expected);
}

// ---- translation and scale --------------------------------------------------------------------

TEST(Mat4, InitTranslateIsAnIdentityWithAFourthColumn) {
  const mat4 expected(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 7, 8, 9, 1);
  mat4 m = counted;
  m.init_translate(7, 8, 9);
  EXPECT_EQ(m, expected);
  const vec4 v(7, 8, 9, 5);
  m = counted;
  m.init_translate(v);
  EXPECT_EQ(m, expected);
  m = counted;
  m.init_translate(&v);
  EXPECT_EQ(m, expected);
}

TEST(Mat4, SetTranslateWritesTheColumnAndTheLastElementOnly) {
  mat4 m = counted;
  m.set_translate(-1, -2, -3);
  mat4 expected = counted;
  expected.m[12] = -1;
  expected.m[13] = -2;
  expected.m[14] = -3;
  expected.m[15] = 1;
  EXPECT_EQ(m, expected);
}

TEST(Mat4, InitScaleIsADiagonal) {
  mat4 m = counted;
  m.init_scale(2, 3, 4);
  EXPECT_EQ(m, mat4(2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4, 0, 0, 0, 0, 1));
  m = counted;
  m.init_scale(vec4(2, 3, 4, 9));
  EXPECT_EQ(m, mat4(2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4, 0, 0, 0, 0, 1));
}

TEST(Mat4, SetScaleWritesTheDiagonalOnly) {
  mat4 m = counted;
  m.set_scale(-1, -2, -3);
  mat4 expected = counted;
  expected.m[0] = -1;
  expected.m[5] = -2;
  expected.m[10] = -3;
  EXPECT_EQ(m, expected);
}

// ---- rotation ---------------------------------------------------------------------------------

TEST(Mat4, RotationsPlaceSineAndCosine) {
  const float c = static_cast<float>(std::cos(static_cast<double>(30 * 0.017453292f)));
  const float s = static_cast<float>(std::sin(static_cast<double>(30 * 0.017453292f)));
  mat4 m = counted;
  m.init_rotate_x(30);
  EXPECT_EQ(m, mat4(1, 0, 0, 0, 0, c, s, 0, 0, -s, c, 0, 0, 0, 0, 1));
  m = counted;
  m.init_rotate_y(30);
  EXPECT_EQ(m, mat4(c, 0, -s, 0, 0, 1, 0, 0, s, 0, c, 0, 0, 0, 0, 1));
  m = counted;
  m.init_rotate_z(30);
  EXPECT_EQ(m, mat4(c, s, 0, 0, -s, c, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1));
}

TEST(Mat4, RotationsAreCounterClockwiseLikeThoseOfVectors) {
  for (const float angle : {-200.0f, -33.0f, 10.0f, 90.0f, 271.0f}) {
    const vec4 v(1, 2, 3);
    mat4 m;
    vec4 turned = v;
    m.init_rotate_x(angle);
    turned.rotate_x(angle);
    EXPECT_TRUE(near(m * v, turned, 1e-5f)) << angle;
    turned = v;
    m.init_rotate_y(angle);
    turned.rotate_y(angle);
    EXPECT_TRUE(near(m * v, turned, 1e-5f)) << angle;
    turned = v;
    m.init_rotate_z(angle);
    turned.rotate_z(angle);
    EXPECT_TRUE(near(m * v, turned, 1e-5f)) << angle;
  }
}

TEST(Mat4, RotateAxisAgreesWithTheRotationsAboutTheAxes) {
  mat4 about_axis;
  mat4 expected;
  vec4 x(5, 0, 0);
  vec4 y(0, 5, 0);
  vec4 z(0, 0, 5);
  about_axis.init_rotate_axis(40, x);
  expected.init_rotate_x(40);
  EXPECT_TRUE(near(about_axis, expected, 1e-6f));
  about_axis.init_rotate_axis(40, y);
  expected.init_rotate_y(40);
  EXPECT_TRUE(near(about_axis, expected, 1e-6f));
  about_axis.init_rotate_axis(40, z);
  expected.init_rotate_z(40);
  EXPECT_TRUE(near(about_axis, expected, 1e-6f));
}

TEST(Mat4, RotateAxisAgreesWithTheQuaternion) {
  Math::srnd(5);
  for (int round = 0; round < 200; ++round) {
    vec4 axis(Math::rnd(-1, 1), Math::rnd(-1, 1), Math::rnd(-1, 1));
    const float angle = Math::rnd(-360, 360);
    mat4 m;
    m.init_rotate_axis(angle, axis);
    quat q;
    q.from_axis_angle(angle, axis);
    mat4 expected;
    expected.from_quat(q);
    EXPECT_TRUE(near(m, expected, 2e-6f));
  }
}

TEST(Mat4, RotateAxisNormalizesTheAxisOfTheCaller) {
  vec4 axis(0, 0, 4, 7);
  mat4 m;
  m.init_rotate_axis(10, axis);
  EXPECT_EQ(axis, vec4(0, 0, 1, 7));
  vec4 none(0, 0, 0, 3);
  m.init_rotate_axis(60, none);
  EXPECT_EQ(none, vec4(0, 0, 0, 3));
}

TEST(Mat4, EulerAnglesAreRzRxAndTheOppositeRy) {
  Math::srnd(3);
  for (int round = 0; round < 200; ++round) {
    const float x = Math::rnd(-180, 180);
    const float y = Math::rnd(-180, 180);
    const float z = Math::rnd(-180, 180);
    mat4 rx;
    mat4 ry;
    mat4 rz;
    rx.init_rotate_x(x);
    ry.init_rotate_y(-y);
    rz.init_rotate_z(z);
    mat4 m = counted;
    m.init_euler_angles(x, y, z);
    EXPECT_TRUE(near(m, rz * rx * ry, 1e-6f));
  }
}

TEST(Mat4, EulerAngleYTurnsOppositeToRotateY) {
  mat4 euler;
  mat4 rotate;
  euler.init_euler_angles(0, 25, 0);
  rotate.init_rotate_y(-25);
  EXPECT_TRUE(near(euler, rotate, 1e-7f));
}

// ---- axes and quaternions ---------------------------------------------------------------------

TEST(Mat4, FromAxesWritesColumns) {
  mat4 m = counted;
  m.from_axes(vec4(1, 2, 3, 9), vec4(4, 5, 6, 9), vec4(7, 8, 9, 9));
  EXPECT_EQ(m, mat4(1, 2, 3, 0, 4, 5, 6, 0, 7, 8, 9, 0, 0, 0, 0, 1));
}

TEST(Mat4, ToAxesKeepsTheFourthLane) {
  vec4 u(0, 0, 0, 21);
  vec4 v(0, 0, 0, 22);
  vec4 n(0, 0, 0, 23);
  counted.to_axes(u, v, n);
  EXPECT_EQ(u, vec4(1, 2, 3, 21));
  EXPECT_EQ(v, vec4(5, 6, 7, 22));
  EXPECT_EQ(n, vec4(9, 10, 11, 23));
}

TEST(Mat4, FromQuatWritesTheUpperLeftOnly) {
  mat4 m = counted;
  m.from_quat(quat());
  EXPECT_EQ(m, mat4(1, 0, 0, 4, 0, 1, 0, 8, 0, 0, 1, 12, 13, 14, 15, 16));
}

TEST(Mat4, FromQuatAgreesWithRotations) {
  quat q;
  mat4 m;
  mat4 expected;
  q.from_axis_angle(50, 0, 1, 0);
  m.from_quat(q);
  expected.init_rotate_y(50);
  EXPECT_TRUE(near(m, expected, 1e-6f));
}

TEST(Mat4, QuaternionsSurviveTheWayThroughAMatrix) {
  Math::srnd(11);
  for (int round = 0; round < 2000; ++round) {
    const quat q = random_rotation();
    mat4 m;
    m.from_quat(q);
    quat back;
    m.to_quat(back);
    ASSERT_TRUE(same_rotation(back, q, 5e-6f));
  }
}

TEST(Mat4, ToQuatTakesTheGreatestDiagonalElementWhenTheTraceIsNotPositive) {
  for (const quat& q : {quat(1, 0, 0, 0), quat(0, 1, 0, 0), quat(0, 0, 1, 0)}) {
    mat4 m;
    m.from_quat(q);
    quat back;
    m.to_quat(back);
    EXPECT_EQ(back, q);
  }
  // Equal diagonal elements: the earlier one wins.
  mat4 equal;
  equal.zero();
  quat q;
  equal.to_quat(q);
  EXPECT_EQ(q, quat(0.5f, 0, 0, 0));
}

TEST(Mat4, ToQuatOfAMatrixThatIsNoRotationFollowsTheFormula) {
  quat q;
  mat4 m;
  m.init_scale(-1, -1, -1);  // root of -1 + 2 + 1
  m.to_quat(q);
  EXPECT_EQ(q, quat(std::sqrt(2.0f) * 0.5f, 0, 0, 0));
  const mat4 skewed(-2, 3, 0, 0, 5, -2, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1);  // root of -1 + 4 + 1
  skewed.to_quat(q);
  EXPECT_EQ(q, quat(0, 0, 1, -0.5f));
}

TEST(Mat4, AxesToQuaternionChangesTheMatrixToo) {
  quat q;
  mat4 m = counted;
  m.from_axes_to_quaternion(vec4(0, 1, 0), vec4(-1, 0, 0), vec4(0, 0, 1), q);
  EXPECT_EQ(m, mat4(0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1));
  quat expected;
  expected.from_axis_angle(90, 0, 0, 1);
  EXPECT_TRUE(near(q, expected, 1e-6f));
}

TEST(Mat4, QuaternionToAxesKeepsTheRestOfTheMatrix) {
  mat4 m = counted;
  vec4 u;
  vec4 v;
  vec4 n;
  m.from_quaternion_to_axes(quat(0, 0, 1, 0), u, v, n);
  EXPECT_EQ(u, vec4(-1, 0, 0));
  EXPECT_EQ(v, vec4(0, -1, 0));
  EXPECT_EQ(n, vec4(0, 0, 1));
  EXPECT_EQ(m, mat4(-1, 0, 0, 4, 0, -1, 0, 8, 0, 0, 1, 12, 13, 14, 15, 16));
}

// ---- inverse ----------------------------------------------------------------------------------

TEST(Mat4, InverseOfTheZeroMatrixIsTheIdentity) {
  mat4 m;
  m.zero();
  m.inverse();
  EXPECT_EQ(m, mat4());
}

TEST(Mat4, InverseOfASingularMatrixIsTheIdentity) {
  mat4 m = counted;
  m.inverse();
  EXPECT_EQ(m, mat4());
  m.init_scale(1, 0, 1);
  m.inverse();
  EXPECT_EQ(m, mat4());
}

TEST(Mat4, InverseTimesTheMatrixIsTheIdentity) {
  Math::srnd(17);
  int tested = 0;
  while (tested < 1000) {
    const mat4 m = random_matrix();
    mat4 inverse = m;
    inverse.inverse();
    float greatest = 0;
    for (const float element : inverse.m) greatest = std::max(greatest, std::abs(element));
    if (greatest > 20) continue;  // next to singular
    ++tested;
    ASSERT_TRUE(near(m * inverse, mat4(), 2e-4f));
    ASSERT_TRUE(near(inverse * m, mat4(), 2e-4f));
  }
}

TEST(Mat4, InverseIsExactWhereTheValuesAre) {
  mat4 m(2, 0, 0, 0, 0, 4, 0, 0, 0, 0, 0.5f, 0, 3, 5, 7, 1);
  m.inverse();
  EXPECT_EQ(m, mat4(0.5f, 0, 0, 0, 0, 0.25f, 0, 0, 0, 0, 2, 0, -1.5f, -1.25f, -14, 1));
  mat4 identity;
  identity.inverse();
  EXPECT_TRUE(same_bits(identity, mat4())) << "without negative zeros";
}

TEST(Mat4, AdjointIsTheTransposedCofactorsWithoutDivision) {
  const mat4 m(2, 1, 0, 3, 0, 1, 4, 0, 5, 0, 1, 1, 1, 2, 0, 1);
  const auto minor = [&](int row, int column) {
    float sub[9];
    int n = 0;
    for (int c = 0; c < 4; ++c) {
      for (int r = 0; r < 4; ++r) {
        if (c != column && r != row) sub[n++] = m.m[c * 4 + r];
      }
    }
    return sub[0] * (sub[4] * sub[8] - sub[5] * sub[7]) -
           sub[3] * (sub[1] * sub[8] - sub[2] * sub[7]) +
           sub[6] * (sub[1] * sub[5] - sub[2] * sub[4]);
  };
  mat4 adjoint = m;
  adjoint.adjoint();
  for (int c = 0; c < 4; ++c) {
    for (int r = 0; r < 4; ++r) {
      const float sign = (r + c) % 2 == 0 ? 1.0f : -1.0f;
      EXPECT_EQ(adjoint.m[c * 4 + r], sign * minor(c, r)) << r << ", " << c;
    }
  }
  mat4 inverse = m;
  inverse.inverse();
  const mat4 product = m * adjoint;
  mat4 scaled = adjoint;
  for (float& element : scaled.m) element *= 1.0f / product.m[0];
  EXPECT_EQ(inverse, scaled);
}

TEST(Mat4, AdjointOfASingularMatrixStands) {
  mat4 m;
  m.init_scale(2, 3, 0);
  m.adjoint();
  EXPECT_EQ(m, mat4(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 6, 0, 0, 0, 0, 0));
}

// ---- reflection -------------------------------------------------------------------------------

TEST(Mat4, ReflectionInAPlaneThroughAPoint) {
  mat4 m = counted;
  m.build_reflection_matrix(vec4(9, 2, 9), vec4(0, 1, 0));
  EXPECT_EQ(m * vec4(1, 5, 3), vec4(1, -1, 3, 1));
  EXPECT_EQ(m * vec4(1, 2, 3), vec4(1, 2, 3, 1)) << "points of the plane stay";
  EXPECT_EQ(m, mat4(1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1, 0, 0, 4, 0, 1));
}

TEST(Mat4, ReflectionInAPlaneByItsEquation) {
  mat4 by_equation = counted;
  mat4 by_point;
  vec4 normal(1, 2, 2);
  normal.normalize();
  const vec4 point(3, -1, 2);
  by_point.build_reflection_matrix(point, normal);
  by_equation.build_reflection_matrix(vec4(normal.x, normal.y, normal.z, -normal.dot(point)));
  EXPECT_TRUE(near(by_equation, by_point, 1e-6f));
  const vec4 v(4, 5, 6);
  EXPECT_TRUE(near(by_point * (by_point * v), v, 1e-5f)) << "twice is nothing";
}

}  // namespace
}  // namespace orv
