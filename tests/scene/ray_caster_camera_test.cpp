// RayCaster: rays through pixels, and places in the viewport.
#include <orv/scene/ray_caster.h>

#include <orv/geometry/mesh.h>
#include <orv/geometry/primitives/mesh_plane.h>
#include <orv/math/ray.h>
#include <orv/scene/camera.h>
#include <orv/scene/ray_object_intersection.h>
#include <orv/scene/viewport.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/held.h"
#include "support/near.h"

namespace orv {
namespace {

using test::Held;
using test::near;

// ---- rays through pixels ----

class RayCasterCamera : public ::testing::Test {
 protected:
  RayCasterCamera() {
    camera->set_viewport(0, 0, 200, 100);
    camera->build_projection_persp(90, 2, 1, 101, true);
    camera->set_position(0, 0, 10);
  }
  Held<Camera> camera;
  Ray ray;
};

TEST_F(RayCasterCamera, NeedsACamera) {
  EXPECT_FALSE(RayCaster::get_ray(nullptr, 0, 0, ray));
  EXPECT_FALSE(RayCaster::get_ray_ortho_cam(nullptr, 0, 0, ray));
}

TEST_F(RayCasterCamera, MiddleOfTheViewportLooksAhead) {
  ASSERT_TRUE(RayCaster::get_ray(camera, 100, 50, ray));
  EXPECT_TRUE(near(ray.origin, vec4(0, 0, 9, 1), 1e-5f));
  EXPECT_TRUE(near(ray.direction, vec4(0, 0, -1, 0), 1e-6f));
}

TEST_F(RayCasterCamera, RowsCountFromTheTop) {
  ASSERT_TRUE(RayCaster::get_ray(camera, 0, 0, ray));
  EXPECT_TRUE(near(ray.origin, vec4(-2, 1, 9, 1), 1e-5f));
  vec4 way(-2, 1, -1, 0);
  way.normalize();
  EXPECT_TRUE(near(ray.direction, way, 1e-5f));
}

TEST_F(RayCasterCamera, DirectionHasTheDifferenceOfTheWs) {
  RayCaster::get_ray(camera, 30, 20, ray);
  EXPECT_EQ(ray.direction.w, 0.0f);
  EXPECT_EQ(ray.origin.w, 1.0f);
}

TEST_F(RayCasterCamera, ViewportMayStandAnywhereAndHalvesAreWhole) {
  camera->set_viewport(50, 30, 201, 101);
  RayCaster::get_ray(camera, 150, 80, ray);
  EXPECT_TRUE(near(ray.direction, vec4(0, 0, -1, 0), 1e-6f));
}

TEST_F(RayCasterCamera, ViewportWithoutSizeGivesWhatIsNotFinite) {
  for (const int size : {0, 1, -1}) {
    camera->set_viewport(0, 0, size, size);
    EXPECT_TRUE(RayCaster::get_ray(camera, 3, 3, ray));
    EXPECT_FALSE(std::isfinite(ray.direction.x));
    EXPECT_TRUE(RayCaster::get_ray_ortho_cam(camera, 3, 3, ray));
  }
  RayCaster::get_ray(camera, std::numeric_limits<int>::min(), std::numeric_limits<int>::max(), ray);
}

TEST_F(RayCasterCamera, OrthographicRaysAreParallel) {
  camera->build_projection_ortho(-4, 4, -2, 2, 1, 101, true);
  ASSERT_TRUE(RayCaster::get_ray_ortho_cam(camera, 0, 0, ray));
  EXPECT_TRUE(near(ray.origin, vec4(-4, 2, 9, 1), 1e-4f));
  EXPECT_TRUE(near(ray.direction, vec4(0, 0, -1, 0), 1e-5f));
  RayCaster::get_ray_ortho_cam(camera, 150, 75, ray);
  EXPECT_TRUE(near(ray.origin, vec4(2, -1, 9, 1), 1e-4f));
  EXPECT_TRUE(near(ray.direction, vec4(0, 0, -1, 0), 1e-5f));
}

TEST_F(RayCasterCamera, RayThroughAPixelHitsWhatIsSeenThere) {
  const Held<MeshPlane> plane;
  plane->set_build_params_v2(10, 10, 1, 1, 90, 0, 0);
  plane->build(nullptr);
  RayCaster::get_ray(camera, 120, 40, ray);
  RayObjectIntersection result;
  ASSERT_TRUE(RayCaster::cast_ray_object(ray, plane, result));
  EXPECT_TRUE(near(result.point, vec4(4, 2, 0, 1), 1e-4f));
}

// ---- places in the viewport ----

TEST_F(RayCasterCamera, ProjectionNeedsBoth) {
  const Held<Object> object;
  vec4 out;
  EXPECT_FALSE(RayCaster::project_object_position_into_viewport(nullptr, object, out));
  EXPECT_FALSE(RayCaster::project_object_position_into_viewport(camera, nullptr, out));
}

TEST_F(RayCasterCamera, ProjectionAppliesThePositionTwice) {
  camera->build_projection_ortho(-10, 10, -10, 10, 0, 100, true);
  const Held<Object> object;
  object->set_position(2, 1, 0);
  vec4 out(0, 0, 0, 7);
  ASSERT_TRUE(RayCaster::project_object_position_into_viewport(camera, object, out));
  // Twice (2, 1) of 10.
  EXPECT_NEAR(out.x, 1.4f * 200 * 0.5f, 1e-4f);
  EXPECT_NEAR(out.y, 1.2f * 100 * 0.5f, 1e-4f);
  EXPECT_EQ(out.w, 7.0f);
}

TEST(RayCasterProjection, DoesNotDivideByW) {
  mat4 projection;
  projection.m[11] = -1;  // w becomes -z
  projection.m[15] = 0;
  vec4 out;
  Viewport viewport;
  viewport.set(10, 20, 100, 200);
  ASSERT_TRUE(RayCaster::project_object_position_into_viewport_v2(
      projection, mat4(), viewport, mat4(), vec4(0.5f, -0.5f, -4, 1), out));
  EXPECT_EQ(out.x, 85.0f);
  EXPECT_EQ(out.y, 70.0f);
  EXPECT_EQ(out.z, -1.5f);
}

}  // namespace
}  // namespace orv
