// A suite of tests on the physics module.
#pragma once

#include <orv/math/quat.h>
#include <orv/math/vec3.h>
#include <orv/services/physx.h>

#include "services/loaded_module.h"

namespace orv::test {

constexpr float STEP = 1.0f / 240.0f;
inline const quat UPRIGHT;

class PhysXModule : public LoadedModule<PhysX> {
 protected:
  PhysXModule() : LoadedModule("physx") {}

  void SetUp() override {
    LoadedModule::SetUp();
    ASSERT_NE(plugin_, nullptr);
    scene_ = plugin_->create_scene(vec3(0, -10, 0));
    ASSERT_GT(scene_, 0);
    ASSERT_TRUE(plugin_->set_fixed_step(scene_, STEP, 10000));
  }

  int add_ball(const vec3& position, float radius = 0.5f, float mass = 2.0f, int material = 0) {
    const int body = plugin_->create_dynamic_body(scene_, position, UPRIGHT, mass);
    EXPECT_GT(body, 0);
    const int shape = plugin_->create_sphere_shape(radius, material);
    EXPECT_TRUE(plugin_->attach_shape(body, shape));
    EXPECT_TRUE(plugin_->destroy_shape(shape)) << "the body keeps it";
    return body;
  }
  int add_ground(int material = 0) {
    const int body = plugin_->create_static_body(scene_, vec3(0, 0, 0), UPRIGHT);
    EXPECT_TRUE(plugin_->attach_shape(body, plugin_->create_plane_shape(material)));
    return body;
  }
  void go_on(float seconds) {
    EXPECT_TRUE(plugin_->simulate(scene_, seconds));
    EXPECT_TRUE(plugin_->fetch_results(scene_, true));
  }
  vec3 place(int body) {
    vec3 position;
    EXPECT_TRUE(plugin_->get_body_pose(body, &position, nullptr));
    return position;
  }
  vec3 velocity(int body) {
    vec3 value;
    EXPECT_TRUE(plugin_->get_linear_velocity(body, &value));
    return value;
  }
  PhysXHit cast(const vec3& origin, const vec3& direction, float distance = 100.0f) {
    PhysXHit hit;
    if (!plugin_->ray_cast(scene_, origin, direction, distance, PhysX::ALL_GROUPS, &hit)) return {};
    return hit;
  }

  int scene_ = 0;
};

}  // namespace orv::test
