#include "common/orbit.h"

#include <gtest/gtest.h>
#include <orv/orv.h>

#include <cmath>

namespace orv_app {
namespace {

Orbit::Setup make_setup() {
  Orbit::Setup setup;
  setup.target = orv::vec4(1.0f, 2.0f, 3.0f, 1.0f);
  setup.distance = 5.0f;
  setup.pitches = {-80.0f, 85.0f};
  setup.distances = {2.0f, 10.0f};
  return setup;
}

void expect_near(const orv::vec4& actual, float x, float y, float z) {
  EXPECT_NEAR(actual.x, x, 1e-4f);
  EXPECT_NEAR(actual.y, y, 1e-4f);
  EXPECT_NEAR(actual.z, z, 1e-4f);
}

TEST(Orbit, StartsInFrontOfTheTarget) {
  expect_near(Orbit(make_setup()).get_position(), 1.0f, 2.0f, 8.0f);
}

TEST(Orbit, YawTurnsToTheRightAroundTheTarget) {
  Orbit orbit(make_setup());
  orbit.turn(90.0f, 0.0f);
  expect_near(orbit.get_position(), 6.0f, 2.0f, 3.0f);
  orbit.turn(270.0f, 0.0f);
  expect_near(orbit.get_position(), 1.0f, 2.0f, 8.0f);
}

TEST(Orbit, YawOfManyTurnsStaysSmall) {
  Orbit orbit(make_setup());
  for (int i = 0; i < 10000; ++i) orbit.turn(359.0f, 0.0f);
  EXPECT_LE(std::abs(orbit.get_yaw()), 180.0f);
}

TEST(Orbit, PitchStaysInItsRange) {
  Orbit orbit(make_setup());
  orbit.turn(0.0f, 500.0f);
  EXPECT_EQ(orbit.get_pitch(), 85.0f);
  orbit.turn(0.0f, -500.0f);
  EXPECT_EQ(orbit.get_pitch(), -80.0f);
}

TEST(Orbit, ZoomStaysInItsRange) {
  Orbit orbit(make_setup());
  orbit.zoom(0.5f);
  EXPECT_FLOAT_EQ(orbit.get_distance(), 2.5f);
  orbit.zoom(0.1f);
  EXPECT_FLOAT_EQ(orbit.get_distance(), 2.0f);
  orbit.zoom(1000.0f);
  EXPECT_FLOAT_EQ(orbit.get_distance(), 10.0f);
}

TEST(Orbit, UnitScalesTheDistance) {
  expect_near(Orbit(make_setup()).get_position(2.0f), 1.0f, 2.0f, 13.0f);
}

TEST(Orbit, PlacedCameraLooksAtTheTarget) {
  Orbit orbit(make_setup());
  orbit.turn(40.0f, 30.0f);
  orv::Camera camera;
  orbit.place(camera);
  const orv::vec4 seen = camera.get_view_matrix() * orv::vec4(1.0f, 2.0f, 3.0f, 1.0f);
  expect_near(seen, 0.0f, 0.0f, -5.0f);
}

}  // namespace
}  // namespace orv_app
