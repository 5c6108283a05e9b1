// Camera: projection, view matrix, use.
#include <orv/scene/camera.h>

#include <orv/math/bounding_volume.h>
#include <orv/scene/tripod.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "support/recording_renderer.h"

namespace orv {
namespace {

using test::RecordingRenderer;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr float EPSILON = 0.00001f;

mat4 rh_perspective(float fov, bool vertical, float aspect, float znear, float zfar) {
  mat4 m;
  m.buildRHPerspectiveProjectionMatrix_v2(fov, vertical, aspect, znear, zfar, EPSILON);
  return m;
}

mat4 lh_perspective(float fov, float aspect, float znear, float zfar) {
  mat4 m;
  m.buildLHPerspectiveProjectionMatrix(fov, aspect, znear, zfar);
  return m;
}

void expect_near(const mat4& a, const mat4& b, float tolerance) {
  for (int i = 0; i < 16; ++i) EXPECT_NEAR(a.m[i], b.m[i], tolerance) << "element " << i;
}

// ---- defaults -------------------------------------------------------------------------------

TEST(Camera, StartsTenUnitsInFrontWithAFieldOfViewOfSixtyDegrees) {
  Camera camera;
  EXPECT_EQ(camera.get_type(), NODE_TYPE_CAMERA);
  EXPECT_TRUE(camera.is_type_of(NODE_TYPE_OBJECT));
  EXPECT_EQ(camera.get_position(), vec4(0, 0, 10, 1));
  EXPECT_EQ(camera.get_fov(), 60.0f);
  EXPECT_EQ(camera.get_aspect(), 1.7777778f);
  EXPECT_EQ(camera.get_znear(), 1.0f);
  EXPECT_EQ(camera.get_zfar(), 1000.0f);
  EXPECT_FLOAT_EQ(camera.get_tanfovdiv2(), std::tan(3.14159265f / 6));
  EXPECT_TRUE(camera.is_perspective_projection());
  EXPECT_FALSE(camera.is_ortho_projection());
  EXPECT_TRUE(camera.get_rotate_around_fixed_yaw_axis());
  EXPECT_EQ(camera.get_orientation(), quat());
  EXPECT_EQ(camera.get_lookat(), vec4(0, 0, 0, 1));
  EXPECT_EQ(camera.get_up(), vec4(0, 1, 0, 0));
  EXPECT_EQ(camera.get_yaw(), 0.0f);
  EXPECT_EQ(camera.get_pitch(), 0.0f);
  EXPECT_EQ(camera.get_roll(), 0.0f);
  EXPECT_EQ(camera.get_viewport().width, 0);
  EXPECT_EQ(camera.get_reflection_matrix(), mat4());
}

TEST(Camera, ViewportIsSetByNumbersByCopyAndByPointer) {
  Camera camera;
  camera.set_viewport(1, 2, 3, 4);
  EXPECT_EQ(camera.get_viewport().height, 4);
  Viewport other;
  other.set(5, 6, 7, 8);
  camera.set_viewport(other);
  EXPECT_EQ(camera.get_viewport().x, 5);
  camera.get_viewport_ptr()->width = 9;
  EXPECT_EQ(camera.get_viewport().width, 9);
}

// ---- projection -----------------------------------------------------------------------------

TEST(Camera, FirstUpdateBuildsAVerticalRightHandedPerspective) {
  Camera camera;
  EXPECT_TRUE(camera.update_projection_matrix());
  EXPECT_FALSE(camera.update_projection_matrix());
  EXPECT_EQ(camera.get_projection_matrix(), rh_perspective(60, true, 1.7777778f, 1, 1000));
}

TEST(Camera, PerspectiveBuildersStoreTheirArguments) {
  Camera camera;
  camera.build_projection_persp(90, 1.5f, 2, 50, true);
  EXPECT_EQ(*camera.get_projection_matrix_ptr(), rh_perspective(90, true, 1.5f, 2, 50));
  EXPECT_EQ(camera.get_fov(), 90.0f);
  EXPECT_FLOAT_EQ(camera.get_tanfovdiv2(), 1.0f);
  EXPECT_EQ(camera.get_aspect(), 1.5f);
  EXPECT_EQ(camera.get_znear(), 2.0f);
  EXPECT_EQ(camera.get_zfar(), 50.0f);
  EXPECT_FALSE(camera.update_projection_matrix());

  camera.build_projection_persp(70, 1.25f, 3, 60, false);
  EXPECT_EQ(camera.get_projection_matrix(), lh_perspective(70, 1.25f, 3, 60));
  camera.build_projection_persp_v2(80, false, 1.25f, 3, 60, true);
  EXPECT_EQ(camera.get_projection_matrix(), rh_perspective(80, false, 1.25f, 3, 60));
  camera.build_projection_persp_v2(80, false, 1.25f, 3, 60, false);
  EXPECT_EQ(camera.get_projection_matrix(), lh_perspective(80, 1.25f, 3, 60));
}

TEST(Camera, PerspectiveOfTwoAnglesStoresTheVerticalOne) {
  Camera camera;
  mat4 expected;
  expected.buildRHTwoFovPerspectiveProjectionMatrix(90, 45, 2, 1, 10, EPSILON);
  camera.build_projection_persp_v3(90, 45, 2, 1, 10, true);
  EXPECT_EQ(camera.get_projection_matrix(), expected);
  EXPECT_EQ(camera.get_fov(), 45.0f);
  EXPECT_FLOAT_EQ(camera.get_tanfovdiv2(), std::tan(3.14159265f / 8));
  camera.build_projection_persp_v3(90, 45, 2, 1, 10, false);
  EXPECT_EQ(camera.get_projection_matrix(), lh_perspective(45, 2, 1, 10));
}

TEST(Camera, InfiniteFarPlaneStaysJustInside) {
  Camera camera;
  camera.build_projection_persp(60, 1, 1, -1, true);
  EXPECT_FLOAT_EQ(camera.get_projection_matrix().m[10], EPSILON - 1);
}

TEST(Camera, OrthographicProjectionIsTheSameForBothHands) {
  mat4 expected;
  expected.buildRHOrthographicProjectionMatrix(-2, 4, -3, 5, 0.5f, 20);
  Camera camera;
  for (bool rh : {true, false}) {
    camera.build_projection_ortho(-2, 4, -3, 5, 0.5f, 20, rh);
    EXPECT_EQ(camera.get_projection_matrix(), expected);
    EXPECT_TRUE(camera.is_ortho_projection());
    EXPECT_FALSE(camera.is_perspective_projection());
    EXPECT_EQ(camera.get_znear(), 0.5f);
    EXPECT_EQ(camera.get_zfar(), 20.0f);
  }
}

TEST(Camera, AnySetterTurnsAnOrthographicCameraIntoAPerspectiveOne) {
  const auto setters = {+[](Camera& c) { c.set_fov(60); }, +[](Camera& c) { c.set_znear(1); },
                        +[](Camera& c) { c.set_zfar(1000); }, +[](Camera& c) { c.set_aspect(2); }};
  for (const auto& set : setters) {
    Camera camera;
    camera.build_projection_ortho(-1, 1, -1, 1, 1, 1000, true);
    set(camera);
    EXPECT_TRUE(camera.is_perspective_projection());
    EXPECT_EQ(camera.get_projection_matrix(),
              rh_perspective(60, true, camera.get_aspect(), 1, 1000));
  }
}

TEST(Camera, RebuildTakesAVerticalAngleWhateverTheLastBuildWas) {
  Camera camera;
  camera.build_projection_persp_v2(80, false, 2, 1, 10, true);
  camera.set_zfar(20);
  EXPECT_EQ(camera.get_projection_matrix(), rh_perspective(80, true, 2, 1, 20));
}

TEST(Camera, RebuildFollowsTheHandedness) {
  Camera camera;
  camera.set_proj_rh_state(false);
  camera.set_fov(50);
  EXPECT_EQ(camera.get_projection_matrix(), lh_perspective(50, 1.7777778f, 1, 1000));
}

TEST(Camera, AGivenProjectionLastsUntilASetter) {
  const mat4 given(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);
  Camera camera;
  camera.set_projection_matrix(given);
  EXPECT_EQ(camera.get_projection_matrix(), given);
  EXPECT_EQ(camera.get_projection_matrix_float_ptr()[4], 5.0f);
  camera.set_znear(2);
  EXPECT_EQ(camera.get_projection_matrix(), rh_perspective(60, true, 1.7777778f, 2, 1000));
}

TEST(Camera, AGivenProjectionLeavesInverseAndProductAsTheyWere) {
  Camera camera;
  const mat4 inverse = camera.get_inv_projection_matrix();
  const mat4 product = camera.get_view_projection_matrix();
  mat4 given;
  given.init_scale(2, 4, 8);
  camera.set_projection_matrix(given);
  EXPECT_EQ(camera.get_inv_projection_matrix(), inverse);
  EXPECT_EQ(camera.get_view_projection_matrix(), product);
}

TEST(Camera, InverseProjectionFollowsABuild) {
  Camera camera;
  camera.get_inv_projection_matrix();
  camera.build_projection_ortho(-2, 2, -4, 4, 1, 3, true);
  expect_near(camera.get_inv_projection_matrix() * camera.get_projection_matrix(), mat4(), 1e-5f);
}

TEST(Camera, ProductWithACleanViewStaysAsItWasAfterABuild) {
  Camera camera;
  const mat4 product = camera.get_view_projection_matrix();
  camera.build_projection_ortho(-2, 2, -4, 4, 1, 3, true);
  EXPECT_EQ(camera.get_view_projection_matrix(), product);
  camera.set_position(0, 0, 10);
  EXPECT_EQ(camera.get_view_projection_matrix(),
            camera.get_projection_matrix() * camera.get_view_matrix());
}

TEST(Camera, ProductFollowsProjectionSetters) {
  Camera camera;
  camera.get_view_projection_matrix();
  camera.set_fov(30);
  EXPECT_EQ(camera.get_view_projection_matrix(),
            camera.get_projection_matrix() * camera.get_view_matrix());
}

// ---- view -----------------------------------------------------------------------------------

TEST(Camera, ViewMovesTheWorldByMinusThePosition) {
  mat4 expected;
  expected.init_translate(-1, -2, -3);
  Camera camera;
  camera.set_position(1, 2, 3);
  EXPECT_EQ(camera.get_view_matrix(), expected);
  camera.set_position(vec4(4, 5, 6, 1));
  EXPECT_EQ(camera.get_view_matrix().m[12], -4.0f);
  EXPECT_EQ(camera.get_tripod()->get_position(), vec4(4, 5, 6, 1));
}

TEST(Camera, UpdateOfTheViewTellsWhetherThereWasAnythingToDo) {
  Camera camera;
  EXPECT_TRUE(camera.update_view_matrix());
  EXPECT_FALSE(camera.update_view_matrix());
  camera.set_up(vec4(0, 1, 0, 0));
  EXPECT_TRUE(camera.update_view_matrix_v2());
  EXPECT_FALSE(camera.update_view_matrix_v2());
}

TEST(Camera, RowsOfTheViewAreTheCamerasAxes) {
  Camera camera;
  quat q;
  q.from_axis_angle(90, 0, 1, 0);
  camera.set_position(1, 2, 3);
  camera.set_orientation(q);
  // Turned left by 90 degrees: x axis -z, z axis x.
  const vec4 in_view = camera.get_view_matrix() * vec4(-4, 2, 3, 1);
  EXPECT_TRUE(in_view.is_equal(vec4(0, 0, -5, 1), 1e-5f));
  EXPECT_EQ(camera.get_tripod()->get_orientation(), q);
}

TEST(Camera, ObjectsSetPositionDoesNotMoveTheView) {
  Camera camera;
  const mat4 view = camera.get_view_matrix();
  Object& object = camera;
  object.set_position(7, 8, 9);
  EXPECT_EQ(camera.get_view_matrix(), view);
  EXPECT_EQ(camera.get_position(), vec4(7, 8, 9, 1));
}

TEST(Camera, HandednessOfTheViewChangesNothing) {
  Camera camera;
  const mat4 view = camera.get_view_matrix();
  camera.set_view_rh_state(false);
  camera.set_up(vec4(0, 1, 0, 0));
  EXPECT_EQ(camera.get_view_matrix(), view);
}

TEST(Camera, AGivenViewLeadsToPositionAndInverse) {
  mat4 given;
  given.init_translate(-4, -5, -6);
  Camera camera;
  camera.get_inv_view_matrix();
  camera.get_view_projection_matrix();
  camera.set_view_matrix(given);
  EXPECT_EQ(camera.get_view_matrix(), given);
  EXPECT_EQ(camera.get_view_matrix_float_ptr()[12], -4.0f);
  EXPECT_EQ(*camera.get_view_matrix_ptr(), given);
  EXPECT_EQ(camera.get_position(), vec4(4, 5, 6, 1));
  EXPECT_FALSE(camera.update_view_matrix());
  mat4 inverse;
  inverse.init_translate(4, 5, 6);
  EXPECT_EQ(camera.get_inv_view_matrix(), inverse);
  EXPECT_EQ(camera.get_view_projection_matrix(), camera.get_projection_matrix() * given);
}

TEST(Camera, OrientationOfAGivenViewIsThatOfTheMatrixItself) {
  Camera camera;
  mat4 given;
  given.init_rotate_y(40);
  camera.set_view_matrix(given);
  quat q;
  q.from_axis_angle(40, 0, 1, 0);
  EXPECT_NEAR(camera.get_orientation().y, q.y, 1e-6f);
  EXPECT_NEAR(camera.get_orientation().w, q.w, 1e-6f);
  EXPECT_EQ(camera.get_tripod()->get_orientation(), camera.get_orientation());
  // The next rebuild starts from that orientation, which is the inverse turn.
  camera.set_up(vec4(0, 1, 0, 0));
  mat4 inverse;
  inverse.init_rotate_y(-40);
  expect_near(camera.get_view_matrix(), inverse, 1e-5f);
}

TEST(Camera, InverseViewFollowsTheView) {
  Camera camera;
  camera.set_position(1, 2, 3);
  camera.set_lookat(5, -1, 2);
  expect_near(camera.get_inv_view_matrix() * camera.get_view_matrix(), mat4(), 1e-5f);
  camera.set_position(-3, 0, 1);
  expect_near(camera.get_inv_view_matrix() * camera.get_view_matrix(), mat4(), 1e-5f);
}

TEST(Camera, ReflectionIsAppliedBeforeTheView) {
  Camera camera;
  camera.set_position(1, 2, 3);
  const mat4 view = camera.get_view_matrix();
  mat4 mirror;
  mirror.build_reflection_matrix(vec4(0, 1, 0, -2));
  camera.set_reflection_matrix(mirror);
  EXPECT_EQ(camera.get_view_matrix(), view * mirror);
  camera.set_reflection_matrix(mat4());
  camera.set_reflection_matrix(vec4(0, 1, 0, -2));
  EXPECT_EQ(camera.get_reflection_matrix(), mirror);
  EXPECT_EQ(camera.get_view_matrix(), view * mirror);
}

TEST(Camera, ReflectionInAPlaneThroughAPoint) {
  Camera camera;
  camera.get_view_matrix();
  camera.set_reflection_matrix(vec4(5, 2, 7, 1), vec4(0, 1, 0, 0));
  const mat4 mirror = camera.get_reflection_matrix();
  EXPECT_EQ(mirror * vec4(1, 3, 4, 1), vec4(1, 1, 4, 1));
  EXPECT_EQ(mirror.m[5], -1.0f);
  EXPECT_EQ(mirror.m[13], 4.0f);
  EXPECT_EQ(mirror.m[15], 1.0f);
  EXPECT_TRUE(camera.update_view_matrix());
}

// ---- use ------------------------------------------------------------------------------------

TEST(Camera, BindHandsOverWhatIsAskedForInOrder) {
  RecordingRenderer renderer;
  Camera camera;
  camera.set_viewport(1, 2, 30, 40);
  camera.bind(&renderer, true, true, true, true, true);
  EXPECT_THAT(renderer.calls(),
              ElementsAre("set_viewport(0, 1, 2, 30, 40)", "set_scissor(0, 1, 2, 30, 40)",
                          "set_projection_matrix(mat4, true)", "set_modelview_matrix(mat4, true)"));
  EXPECT_EQ(renderer.get_projection_matrix(), camera.get_projection_matrix());
  EXPECT_EQ(renderer.get_modelview_matrix(), camera.get_view_matrix());
  EXPECT_FALSE(camera.update_projection_matrix());
  EXPECT_FALSE(camera.update_view_matrix());
}

TEST(Camera, BindLeavesOutWhatIsSwitchedOff) {
  RecordingRenderer renderer;
  Camera camera;
  camera.bind(&renderer, false, false, false, false, true);
  EXPECT_THAT(renderer.calls(), IsEmpty());
  camera.bind(&renderer, false, true, false, true, false);
  EXPECT_THAT(renderer.calls(),
              ElementsAre("set_scissor(0, 0, 0, 0, 0)", "set_modelview_matrix(mat4, false)"));
  camera.bind(nullptr, true, true, true, true, true);
}

TEST(Camera, FrustumComesFromTheCamerasOwnMatricesForNullPointers) {
  Camera camera;
  camera.frustum_update(nullptr, nullptr);
  EXPECT_TRUE(camera.frustum_check_sphere(vec4(0, 0, 0, 1), 0.5f));
  EXPECT_FALSE(camera.frustum_check_sphere(vec4(0, 0, 20, 1), 0.5f));
  BoundingVolume volume;
  volume.set_box(vec4(-1, -1, -1, 1), vec4(1, 1, 1, 1));
  volume.update(mat4());
  EXPECT_TRUE(camera.frustum_check_sphere(volume));
  EXPECT_TRUE(camera.frustum_check_aa_box(volume));
  mat4 far_left;
  far_left.init_translate(-100, 0, 0);
  volume.update(far_left);
  EXPECT_FALSE(camera.frustum_check_sphere(volume));
  EXPECT_FALSE(camera.frustum_check_aa_box(volume));
}

TEST(Camera, FrustumComesFromTheMatricesGiven) {
  Camera camera;
  mat4 projection, view;
  projection.buildRHOrthographicProjectionMatrix(-1, 1, -1, 1, -1, 1);
  camera.frustum_update(&projection, &view);
  EXPECT_TRUE(camera.frustum_check_sphere(vec4(0.9f, 0, 0, 1), 0));
  EXPECT_FALSE(camera.frustum_check_sphere(vec4(1.1f, 0, 0, 1), 0));
  EXPECT_TRUE(camera.frustum_check_sphere(vec4(1.1f, 0, 0, 1), 0.2f));
}

TEST(Camera, APointPassesOnTheInnerSideOfAnyOnePlane) {
  Camera camera;
  camera.frustum_update(nullptr, nullptr);
  EXPECT_TRUE(camera.frustum_check_point(0, 0, 0));
  EXPECT_TRUE(camera.frustum_check_point(0, 0, 500));
  EXPECT_TRUE(camera.frustum_check_point(vec3(0, 0, 500)));
  EXPECT_TRUE(camera.frustum_check_point(vec4(0, 0, 500, 1)));
}

TEST(Camera, APointPassesNoPlaneOfAFrustumThatWasNeverUpdated) {
  Camera camera;
  EXPECT_FALSE(camera.frustum_check_point(0, 0, 0));
}

}  // namespace
}  // namespace orv
