#include <orv/math/quat.h>

#include <gtest/gtest.h>

#include <cmath>
#include <type_traits>

#include <orv/math/angles.h>
#include <orv/math/mat4.h>
#include <orv/math/math.h>

#include "support/near.h"

namespace orv {
namespace {

using test::near;
using test::same_rotation;

static_assert(std::is_trivially_copyable_v<quat>);

quat turn(float degrees, float x, float y, float z) {
  quat q;
  q.from_axis_angle(degrees, x, y, z);
  return q;
}

// ---- values -----------------------------------------------------------------------------------

TEST(Quat, DefaultAndIdentity) {
  EXPECT_EQ(quat(), quat(0, 0, 0, 1));
  quat q(1, 2, 3, 4);
  q.identity();
  EXPECT_EQ(q, quat(0, 0, 0, 1));
}

TEST(Quat, TakesComponentsAsTheyAre) {
  const vec4 v(1, 2, 3, 4);
  EXPECT_EQ(quat(v), quat(1, 2, 3, 4));
  quat q;
  q = v;
  EXPECT_EQ(q, quat(1, 2, 3, 4));
  q.set(5, 6, 7, 8);
  EXPECT_EQ(q, quat(5, 6, 7, 8));
  q.set(v);
  EXPECT_EQ(q, quat(1, 2, 3, 4));
  q.set(quat());
  EXPECT_EQ(q, quat());
}

TEST(Quat, NegateAndConjugate) {
  quat q(1, -2, 3, 4);
  q.negate();
  EXPECT_EQ(q, quat(-1, 2, -3, -4));
  q.conjugate();
  EXPECT_EQ(q, quat(1, -2, 3, -4));
}

TEST(Quat, NormalizeScalesToLength1) {
  quat q(2, 0, 0, 0);
  EXPECT_EQ(&q.normalize(), &q);
  EXPECT_EQ(q, quat(1, 0, 0, 0));
  q.set(1, 1, 1, 1);
  q.normalize();
  EXPECT_EQ(q, quat(0.5f, 0.5f, 0.5f, 0.5f));
}

TEST(Quat, NormalizeLeavesTinyQuaternions) {
  quat q(9e-8f, 0, 0, 0);
  q.normalize();
  EXPECT_EQ(q, quat(9e-8f, 0, 0, 0));
  q.set(0, 0, 0, 0);
  q.normalize();
  EXPECT_EQ(q, quat(0, 0, 0, 0));
  q.set(2e-7f, 0, 0, 0);
  q.normalize();
  EXPECT_FLOAT_EQ(q.x, 1.0f);
}

// ---- products ---------------------------------------------------------------------------------

TEST(Quat, HamiltonProduct) {
  const quat i(1, 0, 0, 0);
  const quat j(0, 1, 0, 0);
  const quat k(0, 0, 1, 0);
  EXPECT_EQ(i * j, k);
  EXPECT_EQ(j * k, i);
  EXPECT_EQ(k * i, j);
  EXPECT_EQ(j * i, quat(0, 0, -1, 0));
  EXPECT_EQ(i * i, quat(0, 0, 0, -1));
  EXPECT_EQ(quat(1, 2, 3, 4) * quat(5, 6, 7, 8), quat(24, 48, 48, -6));
}

TEST(Quat, ProductRotatesByTheRightOperandFirst) {
  const quat first = turn(90, 0, 0, 1);
  const quat second = turn(90, 1, 0, 0);
  EXPECT_TRUE(near((second * first) * vec3(1, 0, 0), vec3(0, 0, 1), 1e-6f));
  EXPECT_TRUE(near((first * second) * vec3(1, 0, 0), vec3(0, 1, 0), 1e-6f));
}

TEST(Quat, MultiplyAssignIsConstAndMovesTheScalarToX) {
  const quat q(1, 2, 3, 4);
  const quat result = q *= quat(5, 6, 7, 8);
  EXPECT_EQ(result, quat(-6, 24, 48, 48));
  EXPECT_EQ(q, quat(1, 2, 3, 4));
}

// ---- vectors ----------------------------------------------------------------------------------

TEST(Quat, RotatedVec4HasW3WhateverTheOperand) {
  for (const float w : {-5.0f, 0.0f, 1.0f, 3.0f}) {
    EXPECT_EQ((turn(30, 0, 1, 0) * vec4(1, 2, 3, w)).w, 3.0f);
    EXPECT_EQ((quat() * vec4(1, 2, 3, w)), vec4(1, 2, 3, 3));
  }
}

TEST(Quat, RotatesCounterClockwise) {
  EXPECT_TRUE(near(turn(90, 0, 0, 1) * vec4(1, 0, 0), vec4(0, 1, 0, 3), 1e-6f));
  EXPECT_TRUE(near(turn(90, 1, 0, 0) * vec4(0, 1, 0), vec4(0, 0, 1, 3), 1e-6f));
  EXPECT_TRUE(near(turn(90, 0, 1, 0) * vec3(0, 0, 1), vec3(1, 0, 0), 1e-6f));
}

TEST(Quat, RotationAgreesWithTheMatrixForBothVectors) {
  Math::srnd(2);
  for (int round = 0; round < 1000; ++round) {
    quat q(Math::rnd(-1, 1), Math::rnd(-1, 1), Math::rnd(-1, 1), Math::rnd(-1, 1));
    q.normalize();
    const vec4 v(Math::rnd(-3, 3), Math::rnd(-3, 3), Math::rnd(-3, 3));
    mat4 m;
    m.from_quat(q);
    const vec3 expected = (m * v).get_vec3();
    ASSERT_TRUE(near((q * v).get_vec3(), expected, 5e-6f));
    ASSERT_TRUE(near(q * v.get_vec3(), expected, 5e-6f));
  }
}

TEST(Quat, RotationHasTheBitsOfThePlainFormula) {
  Math::srnd(6);
  for (int round = 0; round < 1000; ++round) {
    const quat q(Math::rnd(-1, 1), Math::rnd(-1, 1), Math::rnd(-1, 1), Math::rnd(-1, 1));
    const vec4 v(Math::rnd(-3, 3), Math::rnd(-3, 3), Math::rnd(-3, 3));
    const vec3 u(q.x, q.y, q.z);
    const vec3 c = u.cross(v.get_vec3());
    const vec3 e = u.cross(c);
    ASSERT_EQ((q * v).get_vec3(), v.get_vec3() + c * (2.0f * q.w) + e * 2.0f);
  }
}

TEST(Quat, ConjugateTurnsBack) {
  const quat q = turn(77, 0.6f, 0, 0.8f);
  quat back = q;
  back.conjugate();
  EXPECT_TRUE(near(back * (q * vec3(1, 2, 3)), vec3(1, 2, 3), 1e-5f));
}

// ---- from angles ------------------------------------------------------------------------------

TEST(Quat, FromAxisAngle) {
  const float half = std::sqrt(0.5f);
  EXPECT_TRUE(near(turn(90, 0, 1, 0), quat(0, half, 0, half), 1e-6f));
  EXPECT_EQ(turn(0, 0, 1, 0), quat());
}

TEST(Quat, FromAxisAngleIgnoresItsFlag) {
  quat with;
  quat without;
  with.from_axis_angle(33, vec4(0, 1, 0), true);
  without.from_axis_angle(33, vec4(0, 1, 0), false);
  EXPECT_EQ(with, without);
  with.from_axis_angle(33, 0, 2, 0, true);
  without.from_axis_angle(33, 0, 2, 0, false);
  EXPECT_EQ(with, without);
}

TEST(Quat, FromAxisAngleDoesNotNormalizeTheAxisFirst) {
  vec4 axis(0, 2, 0);
  quat q;
  q.from_axis_angle(90, axis);
  EXPECT_EQ(axis, vec4(0, 2, 0));
  // (2 sin 45, cos 45) scaled to length 1 is a wider turn than 90 degrees.
  EXPECT_TRUE(near(q, quat(0, 2 / std::sqrt(5.0f), 0, 1 / std::sqrt(5.0f)), 1e-6f));
}

TEST(Quat, FromEulerIsYThenXThenZAsAProduct) {
  quat q;
  q.from_euler(20, 30, 40);
  const quat expected = turn(30, 0, 1, 0) * turn(20, 1, 0, 0) * turn(40, 0, 0, 1);
  EXPECT_TRUE(near(q, expected, 1e-6f));
  q.from_euler(0, 0, 0);
  EXPECT_EQ(q, quat());
}

// ---- to angles --------------------------------------------------------------------------------

TEST(Quat, ToEulerGivesRadians) {
  float x = 0;
  float y = 0;
  float z = 0;
  turn(90, 0, 0, 1).to_euler(&x, &y, &z);
  EXPECT_NEAR(z, 1.5708f, 1e-4f);
  EXPECT_NEAR(x, 0.0f, 1e-6f);
  turn(90, 1, 0, 0).to_euler(&x, &y, &z);
  EXPECT_NEAR(x, 1.5708f, 1e-4f);
  turn(90, 0, 1, 0).to_euler(&x, &y, &z);
  EXPECT_NEAR(y, 1.5708f, 1e-3f);
}

TEST(Quat, ToEulerOfAQuarterTurnAboutYIsANumberWhateverTheRounding) {
  // About one in ten of these rounds to a sine just past 1.
  Math::srnd(4);
  int past = 0;
  for (int round = 0; round < 2000; ++round) {
    const quat q = turn(Math::rnd(-180, 180), 0, 0, 1) * turn(90, 0, 1, 0) *
                   turn(Math::rnd(-180, 180), 1, 0, 0);
    if (-2.0f * (q.x * q.z - q.y * q.w) > 1.0f) ++past;
    float y = 0;
    q.to_euler(nullptr, &y, nullptr);
    ASSERT_NEAR(y, 1.5708f, 2e-3f);
  }
  EXPECT_GT(past, 0);
}

TEST(Quat, ToEulerTakesNullPointers) {
  float y = 0;
  turn(30, 0, 1, 0).to_euler(nullptr, &y, nullptr);
  EXPECT_NEAR(y * RADIANS_TO_DEGREES, 30.0f, 1e-4f);
  turn(30, 0, 1, 0).to_euler(nullptr, nullptr, nullptr);
}

TEST(Quat, ToEulerReadsTheZYXOrder) {
  float x = 0;
  float y = 0;
  float z = 0;
  const quat q = turn(40, 0, 0, 1) * turn(30, 0, 1, 0) * turn(20, 1, 0, 0);
  q.to_euler(&x, &y, &z);
  EXPECT_NEAR(x * RADIANS_TO_DEGREES, 20.0f, 1e-4f);
  EXPECT_NEAR(y * RADIANS_TO_DEGREES, 30.0f, 1e-4f);
  EXPECT_NEAR(z * RADIANS_TO_DEGREES, 40.0f, 1e-4f);
}

TEST(Quat, ToEulerIsNotTheInverseOfFromEuler) {
  quat q;
  q.from_euler(20, 30, 40);
  float x = 0;
  float y = 0;
  float z = 0;
  q.to_euler(&x, &y, &z);
  EXPECT_GT(std::abs(x * RADIANS_TO_DEGREES - 20.0f), 1.0f);
  quat back;
  back.from_euler(x * RADIANS_TO_DEGREES, y * RADIANS_TO_DEGREES, z * RADIANS_TO_DEGREES);
  EXPECT_FALSE(same_rotation(back, q, 1e-2f));
}

TEST(Quat, TheThreeEulerOrdersDiffer) {
  quat q;
  q.from_euler(20, 30, 40);
  mat4 from_quaternion;
  from_quaternion.from_quat(q);
  mat4 from_matrix;
  from_matrix.init_euler_angles(20, 30, 40);
  const quat axes = turn(20, 1, 0, 0) * turn(30, 0, 1, 0) * turn(40, 0, 0, 1);
  EXPECT_FALSE(near(from_quaternion, from_matrix, 1e-2f));
  EXPECT_FALSE(same_rotation(axes, q, 1e-2f));
}

// ---- between two vectors ----------------------------------------------------------------------

TEST(Quat, RotationBetweenVectors) {
  Math::srnd(8);
  for (int round = 0; round < 500; ++round) {
    vec4 a(Math::rnd(-1, 1), Math::rnd(-1, 1), Math::rnd(-1, 1));
    vec4 b(Math::rnd(-1, 1), Math::rnd(-1, 1), Math::rnd(-1, 1));
    a.normalize();
    b.normalize();
    if (a.dot(b) < -0.9f) continue;
    quat q;
    q.from_vector_rotation(a, b);
    ASSERT_TRUE(near(q * a.get_vec3(), b.get_vec3(), 5e-6f));
  }
}

TEST(Quat, RotationFromAVectorToItselfIsTheIdentity) {
  quat q(1, 2, 3, 4);
  q.from_vector_rotation(vec4(0, 1, 0), vec4(0, 1, 0));
  EXPECT_EQ(q, quat());
}

TEST(Quat, RotationBetweenOppositeVectorsIsNotFinite) {
  quat q;
  q.from_vector_rotation(vec4(0, 1, 0), vec4(0, -1, 0));
  EXPECT_FALSE(std::isfinite(q.x) && std::isfinite(q.y) && std::isfinite(q.z) &&
               std::isfinite(q.w));
}

}  // namespace
}  // namespace orv
