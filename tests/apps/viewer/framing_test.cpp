#include "viewer/framing.h"

#include <gtest/gtest.h>
#include <orv/orv.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "viewer/viewer_scene.h"

namespace viewer {
namespace {

using orv::vec4;

Box make_box(float x, float y, float z, float half) {
  return {vec4(x - half, y - half, z - half), vec4(x + half, y + half, z + half)};
}

TEST(Box, IsUnusableUntilSomethingIsAdded) {
  Box box;
  EXPECT_FALSE(box.is_usable());
  box.add(make_box(1.0f, 2.0f, 3.0f, 0.5f));
  EXPECT_TRUE(box.is_usable());
  box.add(make_box(-1.0f, 2.0f, 3.0f, 0.5f));
  EXPECT_FLOAT_EQ(box.get_center().x, 0.0f);
  EXPECT_FLOAT_EQ(box.get_half_size().x, 1.5f);
  EXPECT_FLOAT_EQ(box.get_half_size().z, 0.5f);
}

TEST(Box, WithoutFiniteSidesIsUnusable) {
  Box box = make_box(0.0f, 0.0f, 0.0f, 1.0f);
  box.max.y = std::numeric_limits<float>::infinity();
  EXPECT_FALSE(box.is_usable());
  box.max.y = std::numeric_limits<float>::quiet_NaN();
  EXPECT_FALSE(box.is_usable());
}

TEST(UnitPlacement, BringsEverySizeToAHalfDiagonalOfOne) {
  for (float half : {1e-18f, 1e-3f, 1.0f, 4e4f, 1e18f}) {
    const UnitPlacement placement = place_in_unit(make_box(half * 3.0f, 0.0f, -half, half));
    EXPECT_NEAR(placement.half_size.length(), 1.0f, 1e-4f) << half;
    EXPECT_NEAR(placement.offset.x, -3.0f / std::sqrt(3.0f), 1e-3f) << half;
  }
}

TEST(UnitPlacement, OfAPointKeepsTheScale) {
  const UnitPlacement placement = place_in_unit(make_box(7.0f, 0.0f, 0.0f, 0.0f));
  EXPECT_EQ(placement.scale, 1.0f);
  EXPECT_EQ(placement.offset.x, -7.0f);
}

struct Share {
  float x = 0.0f;
  float y = 0.0f;
};

// Farthest corner from the middle of the picture, as a share of its half sides, from all yaws.
Share project(const vec4& half, float pitch, float fov, float aspect, float distance) {
  Share share;
  orv::Camera camera;
  camera.build_projection_persp(fov, aspect, 0.001f, 1000.0f, true);
  for (float yaw = 0.0f; yaw < 360.0f; yaw += 7.0f) {
    orv_app::Orbit::Setup setup;
    setup.yaw = yaw;
    setup.pitch = pitch;
    orv_app::Orbit(setup).place(camera, distance);
    const orv::mat4 matrix = camera.get_projection_matrix() * camera.get_view_matrix();
    for (int i = 0; i < 8; ++i) {
      const vec4 corner(i & 1 ? half.x : -half.x, i & 2 ? half.y : -half.y,
                        i & 4 ? half.z : -half.z, 1.0f);
      const vec4 p = matrix * corner;
      EXPECT_GT(p.w, 0.0f);
      share.x = std::max(share.x, std::fabs(p.x / p.w));
      share.y = std::max(share.y, std::fabs(p.y / p.w));
    }
  }
  return share;
}

TEST(FitDistance, KeepsTheBoxInThePictureFromEverySideAndFillsIt) {
  const vec4 boxes[] = {vec4(1, 1, 1, 0), vec4(1, 0, 1, 0),       vec4(0, 1, 0, 0),
                        vec4(1, 0, 0, 0), vec4(0.1f, 1, 0.3f, 0), vec4(0.9f, 0.2f, 0.1f, 0)};
  for (const vec4& half : boxes) {
    for (float aspect : {0.4f, 1.0f, 1.78f, 3.0f}) {
      const float distance = fit_distance(half, 22.0f, 35.0f, aspect);
      const Share share = project(half, 22.0f, 35.0f, aspect, distance);
      EXPECT_LE(std::max(share.x, share.y), 0.925f);
      EXPECT_GE(std::max(share.x, share.y), 0.9f) << aspect;
    }
  }
}

TEST(FitDistance, OfAPointIsNotZero) {
  EXPECT_GT(fit_distance(vec4(0, 0, 0, 0), 22.0f, 35.0f, 1.5f), 0.1f);
}

TEST(RoundStep, IsARoundNumberNearATenth) {
  EXPECT_FLOAT_EQ(round_step(10.0f), 1.0f);
  EXPECT_FLOAT_EQ(round_step(22.0f), 2.0f);
  EXPECT_FLOAT_EQ(round_step(0.04f), 0.005f);
  EXPECT_FLOAT_EQ(round_step(98.0f), 10.0f);
  EXPECT_FLOAT_EQ(round_step(5e6f), 5e5f);
  EXPECT_EQ(round_step(0.0f), 1.0f);
  EXPECT_EQ(round_step(-3.0f), 1.0f);
}

}  // namespace
}  // namespace viewer
