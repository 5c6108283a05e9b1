// Camera: turning, aiming and moving.
#include <orv/scene/camera.h>

#include <orv/scene/tripod.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>

namespace orv {
namespace {

constexpr float TOLERANCE = 1e-5f;

#define EXPECT_VEC_NEAR(a, b) \
  EXPECT_TRUE((a).is_equal(b, TOLERANCE)) << (a).x << " " << (a).y << " " << (a).z

bool finite(const quat& q) {
  return std::isfinite(q.x) && std::isfinite(q.y) && std::isfinite(q.z) && std::isfinite(q.w);
}

/// Signed angle about +y from the default view direction, in degrees.
float heading(const Camera& camera) {
  const vec4 v = camera.get_view_vector();
  return std::atan2(-v.x, -v.z) * 57.29578f;
}

// ---- aim ------------------------------------------------------------------------------------

TEST(CameraMotion, LookingAtTheOriginFromTheDefaultPlaceIsTheIdentity) {
  Camera camera;
  camera.set_lookat(vec4(0, 0, 0, 1));
  EXPECT_EQ(camera.get_orientation(), quat());
}

TEST(CameraMotion, PointAndDirectionOfTheSameSightGiveTheSameTurn) {
  Camera by_point, by_direction;
  by_point.set_lookat(vec4(0, 0, 0, 1));
  by_direction.set_lookat(vec4(0, 0, -1, 0));
  EXPECT_EQ(by_point.get_orientation(), by_direction.get_orientation());
  by_point.set_lookat(3, 4, 5);
  by_direction.set_lookat(3, 4, -5, 0);
  EXPECT_VEC_NEAR(by_point.get_view_vector(), by_direction.get_view_vector());
}

TEST(CameraMotion, LooksAtTheTarget) {
  Camera camera;
  camera.set_position(1, 2, 3);
  camera.set_lookat(4, 6, 3);
  EXPECT_VEC_NEAR(camera.get_view_vector(), vec4(0.6f, 0.8f, 0, 1));
  EXPECT_EQ(camera.get_view_vector().w, 1.0f);
  EXPECT_EQ(camera.get_up_vector().w, 1.0f);
  EXPECT_EQ(camera.get_tripod()->get_orientation(), camera.get_orientation());
}

TEST(CameraMotion, AnyOtherWOnlyStoresTheTarget) {
  Camera camera;
  camera.set_lookat(5, 5, 5);
  const quat before = camera.get_orientation();
  camera.get_view_matrix();
  camera.set_lookat(vec4(1, 2, 3, 0.5f));
  EXPECT_EQ(camera.get_lookat(), vec4(1, 2, 3, 0.5f));
  EXPECT_EQ(camera.get_orientation(), before);
  EXPECT_FALSE(camera.update_view_matrix());
}

TEST(CameraMotion, OnlyExactlyTheOriginPointAsDirectionReturnsEarly) {
  Camera camera;
  camera.get_view_matrix();
  camera.update_direction(vec4(0, 0, 0, 1));
  EXPECT_FALSE(camera.update_view_matrix());
  camera.update_direction(vec4(0, 0, -1, 1));
  EXPECT_TRUE(camera.update_view_matrix());
  EXPECT_EQ(camera.get_orientation(), quat());
}

TEST(CameraMotion, ZeroDirectionLeavesAnUnnormalisedFiniteQuaternion) {
  Camera camera;
  camera.set_lookat(0, 0, 10);
  EXPECT_EQ(camera.get_orientation(), quat(0.5f, 0, 0, 0));
  camera.update_direction(vec4(0, 0, 0, 0));
  EXPECT_EQ(camera.get_orientation(), quat(0.5f, 0, 0, 0));
}

TEST(CameraMotion, LookingAlongTheUpAxisStaysFinite) {
  for (float y : {1.0f, -1.0f}) {
    Camera camera;
    camera.set_lookat(0, y, 0, 0);
    EXPECT_TRUE(finite(camera.get_orientation()));
    const quat q = camera.get_orientation();
    EXPECT_NE(q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w, 1.0f);
  }
}

TEST(CameraMotion, ViewParamsLookWithTheOldUpVector) {
  Camera camera;
  camera.set_view_params(vec4(0, 0, 5, 1), vec4(0, 0, 0, 1), vec4(1, 0, 0, 0), true);
  EXPECT_EQ(camera.get_position(), vec4(0, 0, 5, 1));
  EXPECT_VEC_NEAR(camera.get_up_vector(), vec4(0, 1, 0, 1));
  EXPECT_EQ(camera.get_up(), vec4(1, 0, 0, 0));
  camera.set_lookat(0, 0, 0);
  EXPECT_VEC_NEAR(camera.get_up_vector(), vec4(1, 0, 0, 1));
}

TEST(CameraMotion, ViewParamsTakeTheCamerasOwnVectors) {
  Camera camera;
  camera.set_view_params(camera.get_lookat(), camera.get_lookat(), camera.get_up(), true);
  EXPECT_EQ(camera.get_position(), vec4(0, 0, 0, 1));
  EXPECT_EQ(camera.get_up(), vec4(0, 1, 0, 0));
}

TEST(CameraMotion, CubeMapFacesLookAlongTheirAxes) {
  const struct {
    vec4 view, up;
  } faces[] = {{vec4(1, 0, 0, 1), vec4(0, -1, 0, 1)}, {vec4(-1, 0, 0, 1), vec4(0, -1, 0, 1)},
               {vec4(0, 1, 0, 1), vec4(0, 0, 1, 1)},  {vec4(0, -1, 0, 1), vec4(0, 0, -1, 1)},
               {vec4(0, 0, 1, 1), vec4(0, -1, 0, 1)}, {vec4(0, 0, -1, 1), vec4(0, -1, 0, 1)}};
  for (int face = 0; face < 6; ++face) {
    Camera camera;
    camera.set_orientation_cubemap(face);
    EXPECT_VEC_NEAR(camera.get_view_vector(), faces[face].view) << "face " << face;
    EXPECT_VEC_NEAR(camera.get_up_vector(), faces[face].up) << "face " << face;
    EXPECT_TRUE(camera.get_up().is_equal(faces[face].up, 0));
    EXPECT_EQ(camera.get_lookat().w, 0.0f);
  }
}

TEST(CameraMotion, UnknownCubeMapFacesDoNothing) {
  Camera camera;
  camera.get_view_matrix();
  camera.set_orientation_cubemap(-1);
  camera.set_orientation_cubemap(6);
  EXPECT_FALSE(camera.update_view_matrix());
}

// ---- aim without a fixed yaw axis -----------------------------------------------------------

TEST(CameraMotion, FreeTurnTakesTheShortestWay) {
  Camera camera;
  camera.set_rotate_around_fixed_yaw_axis(false);
  EXPECT_FALSE(camera.get_rotate_around_fixed_yaw_axis());
  camera.set_roll(30);
  const vec4 up = camera.get_up_vector();
  camera.set_lookat(1, 0, 0, 0);
  EXPECT_VEC_NEAR(camera.get_view_vector(), vec4(1, 0, 0, 1));
  // The axis of the turn from -z to +x is -y: height is kept.
  EXPECT_NEAR(camera.get_up_vector().y, up.y, TOLERANCE);
}

TEST(CameraMotion, FreeTurnToWhereItLooksChangesNothing) {
  Camera camera;
  camera.set_rotate_around_fixed_yaw_axis(false);
  camera.set_lookat(0, 0, -1, 0);
  EXPECT_EQ(camera.get_orientation(), quat());
}

TEST(CameraMotion, FreeTurnBackwardsGoesRoundTheOwnYAxis) {
  Camera camera;
  camera.set_rotate_around_fixed_yaw_axis(false);
  camera.set_lookat(0, 0, 1, 0);
  EXPECT_TRUE(finite(camera.get_orientation()));
  EXPECT_VEC_NEAR(camera.get_view_vector(), vec4(0, 0, 1, 1));
  EXPECT_VEC_NEAR(camera.get_up_vector(), vec4(0, 1, 0, 1));
}

TEST(CameraMotion, FreeTurnsToAndFroNeverLoseTheOrientation) {
  Camera camera;
  camera.set_rotate_around_fixed_yaw_axis(false);
  for (int i = 0; i < 2000; ++i) {
    const float f = static_cast<float>(i);
    const vec4 direction(std::sin(f), std::cos(3 * f), std::sin(7 * f), 0);
    camera.update_direction(direction);
    const vec4 back = camera.get_view_vector() * -1.0f;
    camera.update_direction(vec4(back.x, back.y, back.z, 0));
    ASSERT_TRUE(finite(camera.get_orientation())) << i;
  }
}

// ---- turning --------------------------------------------------------------------------------

TEST(CameraMotion, TwoYawsAddUpAndTheGetterGivesTheLastAngle) {
  Camera camera;
  camera.set_yaw(10);
  camera.set_yaw(10);
  EXPECT_NEAR(heading(camera), 20.0f, 1e-3f);
  EXPECT_EQ(camera.get_yaw(), 10.0f);
}

TEST(CameraMotion, PitchAndRollTurnAboutTheOwnAxes) {
  Camera camera;
  camera.set_yaw(90);
  camera.set_pitch(90);
  EXPECT_VEC_NEAR(camera.get_view_vector(), vec4(0, 1, 0, 1));
  EXPECT_EQ(camera.get_pitch(), 90.0f);
  Camera rolled;
  rolled.set_roll(90);
  EXPECT_VEC_NEAR(rolled.get_up_vector(), vec4(-1, 0, 0, 1));
  EXPECT_VEC_NEAR(rolled.get_view_vector(), vec4(0, 0, -1, 1));
  EXPECT_EQ(rolled.get_roll(), 90.0f);
}

TEST(CameraMotion, YawGoesRoundTheFixedAxisOrTheOwnOne) {
  Camera fixed, own;
  own.set_rotate_around_fixed_yaw_axis(false);
  for (Camera* camera : {&fixed, &own}) {
    camera->set_roll(90);
    camera->set_yaw(90);
  }
  EXPECT_VEC_NEAR(fixed.get_view_vector(), vec4(-1, 0, 0, 1));
  EXPECT_VEC_NEAR(own.get_view_vector(), vec4(0, -1, 0, 1));
}

TEST(CameraMotion, PitchLimitsDoNotActInSetPitch) {
  Camera camera;
  camera.set_pitch_angle_limits(10, -10);
  camera.set_pitch(90);
  EXPECT_VEC_NEAR(camera.get_view_vector(), vec4(0, 1, 0, 1));
}

TEST(CameraMotion, RotateViewYawsThenPitches) {
  Camera one, other;
  one.rotate_view(20, 30);
  other.set_yaw(30);
  other.set_pitch(20);
  EXPECT_EQ(one.get_orientation(), other.get_orientation());
  EXPECT_EQ(one.get_yaw(), 30.0f);
  EXPECT_EQ(one.get_pitch(), 20.0f);
}

TEST(CameraMotion, RotatePutsTheNewTurnBehindThePresentOne) {
  quat first, second;
  first.from_axis_angle(30, 1, 0, 0);
  second.from_axis_angle(40, 0, 1, 0);
  Camera camera;
  camera.rotate(first);
  camera.rotate(40, vec4(0, 1, 0, 0));
  EXPECT_EQ(camera.get_orientation(), second * first);
}

// ---- moving ---------------------------------------------------------------------------------

TEST(CameraMotion, MovesAlongTheView) {
  Camera camera;
  camera.set_position(vec4(1, 2, 3, 5));
  camera.move_along_view(4);
  EXPECT_EQ(camera.get_position(), vec4(1, 2, -1, 1));
  EXPECT_EQ(camera.get_view_matrix().m[14], 1.0f);
}

TEST(CameraMotion, MovingInThePlaneKeepsHeightAndW) {
  Camera camera;
  camera.set_pitch(30);
  camera.set_position(vec4(1, 2, 3, 5));
  camera.move_along_view_xz(2);
  EXPECT_EQ(camera.get_position().y, 2.0f);
  EXPECT_EQ(camera.get_position().w, 5.0f);
  EXPECT_NEAR(camera.get_position().z, 3 - std::sqrt(3.0f), TOLERANCE);
}

TEST(CameraMotion, StrafingByOneMovesToMinusX) {
  Camera camera;
  camera.strafe_h(1, false);
  EXPECT_EQ(camera.get_position(), vec4(-1, 0, 10, 1));
  EXPECT_EQ(camera.get_lookat(), vec4(0, 0, 0, 1));
  EXPECT_EQ(camera.get_orientation(), quat());
}

TEST(CameraMotion, StrafingMayTakeTheTargetAlong) {
  Camera camera;
  camera.strafe_h(1, true);
  EXPECT_EQ(camera.get_lookat(), vec4(-1, 0, 0, 1));
  EXPECT_VEC_NEAR(camera.get_view_vector(), vec4(0, 0, -1, 1));
  camera.strafe_v(2, true);
  EXPECT_EQ(camera.get_position(), vec4(-1, 2, 10, 1));
  EXPECT_EQ(camera.get_lookat(), vec4(-1, 2, 0, 1));
  camera.strafe_v(-2, false);
  EXPECT_EQ(camera.get_position(), vec4(-1, 0, 10, 1));
  EXPECT_EQ(camera.get_lookat(), vec4(-1, 2, 0, 1));
}

// ---- orbit ----------------------------------------------------------------------------------

TEST(CameraMotion, OrbitGathersTheMouseAndAppliesBothAngles) {
  Camera camera, expected;
  camera.init_rotate_position_around_point(5, 7, 100, 100);
  camera.rotate_position_around_point_by_mouse(vec4(9, 9, 9, 1), 104, 102, 0.5f);
  // dx 4 drives the pitch, dy 2 the yaw.
  expected.set_yaw(7 - 1);
  expected.set_pitch(5 + 2);
  EXPECT_EQ(camera.get_orientation(), expected.get_orientation());
  EXPECT_EQ(camera.get_position(), vec4(0, 0, 10, 1));
  // The gathered angles are applied again, not their change.
  camera.rotate_position_around_point_by_mouse(vec4(), 104, 102, 0.5f);
  expected.set_yaw(6);
  expected.set_pitch(7);
  EXPECT_EQ(camera.get_orientation(), expected.get_orientation());
}

TEST(CameraMotion, OrbitDoesNotTurnAtALimit) {
  const struct {
    int mouse_x;
    float back;
  } cases[] = {{1000, 79}, {-1000, -79}};
  for (const auto& c : cases) {
    Camera camera;
    camera.init_rotate_position_around_point(0, 0, 0, 0);
    camera.rotate_position_around_point_by_mouse(vec4(), c.mouse_x, 3, 1);
    EXPECT_EQ(camera.get_orientation(), quat());
    // Clamped to the limit: one step back from it turns again.
    camera.rotate_position_around_point_by_mouse(vec4(), c.mouse_x + (c.back > 0 ? -1 : 1), 3, 1);
    EXPECT_EQ(camera.get_pitch(), c.back);
    EXPECT_EQ(camera.get_yaw(), -3.0f);
  }
}

TEST(CameraMotion, OrbitLimitsCanBeSet) {
  Camera camera;
  camera.set_pitch_angle_limits(10, -5);
  camera.init_rotate_position_around_point(0, 0, 0, 0);
  camera.rotate_position_around_point_by_mouse(vec4(), 10, 0, 1);
  EXPECT_EQ(camera.get_orientation(), quat());
  camera.rotate_position_around_point_by_mouse(vec4(), 9, 0, 1);
  EXPECT_EQ(camera.get_pitch(), 9.0f);
  camera.rotate_position_around_point_by_mouse(vec4(), -20, 0, 1);
  EXPECT_EQ(camera.get_pitch(), 9.0f);
}

TEST(CameraMotion, OrbitTakesTheWidestMouseMotion) {
  Camera camera;
  camera.init_rotate_position_around_point(0, 0, INT_MIN, INT_MIN);
  camera.rotate_position_around_point_by_mouse(vec4(), INT_MAX, INT_MAX, 1e-9f);
  EXPECT_NEAR(camera.get_pitch(), 4.294967f, 1e-4f);
  EXPECT_NEAR(camera.get_yaw(), -4.294967f, 1e-4f);
}

}  // namespace
}  // namespace orv
