#include <orv/math/mat4.h>
#include <orv/math/quat.h>
#include <orv/services/physx.h>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <vector>

#include "services/physx_module.h"

namespace orv::test {
namespace {

using testing::ElementsAre;

// ---- falling and touching ----

TEST_F(PhysXModule, BodiesFallAsGravityTells) {
  const int ball = add_ball(vec3(1, 100, 2));
  go_on(1.0f);
  EXPECT_NEAR(velocity(ball).y, -10.0f, 1e-3f);
  // Velocity first, then place: n steps of h fall g h^2 n (n + 1) / 2.
  EXPECT_NEAR(place(ball).y, 100.0f - 10.0f * STEP * STEP * 240 * 241 / 2, 2e-3f);
  EXPECT_EQ(place(ball).x, 1.0f);
  EXPECT_EQ(place(ball).z, 2.0f);
}

TEST_F(PhysXModule, GravityCanBeChangedAndSwitchedOff) {
  const int heavy = add_ball(vec3(0, 10, 0)), light = add_ball(vec3(5, 10, 0));
  EXPECT_TRUE(plugin_->set_gravity(scene_, vec3(3, 0, 0)));
  vec3 gravity;
  EXPECT_TRUE(plugin_->get_gravity(scene_, &gravity));
  EXPECT_EQ(gravity, vec3(3, 0, 0));
  EXPECT_TRUE(plugin_->set_body_gravity(light, false));
  go_on(1.0f);
  EXPECT_NEAR(velocity(heavy).x, 3.0f, 1e-3f);
  EXPECT_EQ(place(light), vec3(5, 10, 0));
}

TEST_F(PhysXModule, LeftOverTimeIsKept) {
  const int ball = add_ball(vec3(0, 10, 0));
  go_on(STEP * 0.5f);
  EXPECT_EQ(place(ball).y, 10.0f);
  go_on(STEP * 0.5f);
  EXPECT_LT(place(ball).y, 10.0f);
  EXPECT_NEAR(velocity(ball).y, -10.0f * STEP, 1e-5f) << "one step";
}

TEST_F(PhysXModule, LeftOverTimeDoesNotDrift) {
  EXPECT_TRUE(plugin_->set_fixed_step(scene_, 1.0f, 10));
  const int ball = add_ball(vec3(0, 0, 0));
  for (int i = 0; i < 32000; ++i) go_on(0.03125f);
  EXPECT_EQ(velocity(ball).y, -10000.0f) << "1000 steps of a second";
}

TEST_F(PhysXModule, StepsOfOneCallAreBounded) {
  const int ball = add_ball(vec3(0, 10, 0));
  EXPECT_TRUE(plugin_->set_fixed_step(scene_, STEP, 3));
  go_on(1.0f);
  EXPECT_NEAR(velocity(ball).y, -30.0f * STEP, 1e-5f);
}

TEST_F(PhysXModule, StepRunsBetweenTwoCalls) {
  EXPECT_FALSE(plugin_->fetch_results(scene_, true)) << "nothing was begun";
  EXPECT_TRUE(plugin_->simulate(scene_, 0.1f));
  EXPECT_FALSE(plugin_->simulate(scene_, 0.1f));
  EXPECT_FALSE(plugin_->destroy_scene(scene_));
  EXPECT_TRUE(plugin_->fetch_results(scene_, true));
  EXPECT_FALSE(plugin_->fetch_results(scene_, true)) << "it was ended";
  EXPECT_FALSE(plugin_->simulate(scene_, 0.0f));
  EXPECT_FALSE(plugin_->simulate(scene_, std::numeric_limits<float>::quiet_NaN()));
}

TEST_F(PhysXModule, BodiesAreMadeAndEndedWhileAStepRuns) {
  add_ground();
  const int touching = add_ball(vec3(0, 0.4f, 0));
  go_on(STEP);
  EXPECT_TRUE(plugin_->simulate(scene_, STEP));
  EXPECT_TRUE(plugin_->destroy_body(touching));
  const int ball = add_ball(vec3(5, 5, 0));
  EXPECT_TRUE(plugin_->set_linear_velocity(ball, vec3(1, 0, 0)));
  EXPECT_TRUE(plugin_->fetch_results(scene_, true));
  EXPECT_EQ(plugin_->get_num_bodies(scene_), 2u);
  EXPECT_EQ(velocity(ball).x, 1.0f);
  go_on(STEP);
  EXPECT_EQ(plugin_->get_contacts(scene_, nullptr, 0), 0u);
}

TEST_F(PhysXModule, BallComesToRestOnTheGround) {
  const int ground = add_ground();
  const int ball = add_ball(vec3(0, 2, 0));
  go_on(3.0f);
  EXPECT_NEAR(place(ball).y, 0.5f, 0.01f);
  EXPECT_NEAR(velocity(ball).y, 0.0f, 0.1f);
  PhysXContact contact;
  ASSERT_EQ(plugin_->get_contacts(scene_, nullptr, 0), 1u);
  ASSERT_EQ(plugin_->get_contacts(scene_, &contact, 1), 1u);
  EXPECT_EQ(contact.body_a, ground);
  EXPECT_EQ(contact.body_b, ball);
  EXPECT_FALSE(contact.is_new);
  EXPECT_EQ(contact.normal, vec3(0, -1, 0)) << "from the ball to the ground";
  EXPECT_NEAR(contact.position.y, 0.0f, 0.01f);
  EXPECT_NEAR(contact.impulse, 2.0f * 10.0f * STEP, 1e-3f) << "mass times gravity";
}

TEST_F(PhysXModule, BallBouncesByItsMaterial) {
  const int rubber = plugin_->create_material(0.5f, 0.5f, 0.5f);
  add_ground();
  const int ball = add_ball(vec3(0, 5.5f, 0), 0.5f, 1.0f, rubber);
  go_on(1.0f);  // it has fallen 5 metres and arrives with 10 metres a second
  go_on(0.02f);
  EXPECT_NEAR(velocity(ball).y, 5.0f, 0.3f) << "half of it";
  EXPECT_TRUE(plugin_->set_material(rubber, 0.5f, 0.5f, 0.0f));
  go_on(3.0f);
  EXPECT_NEAR(place(ball).y, 0.5f, 0.01f);
  EXPECT_FALSE(plugin_->set_material(rubber, 0.5f, 0.5f, 1.5f));
}

TEST_F(PhysXModule, MaterialsAndShapesLastAsLongAsTheirUsers) {
  add_ground();
  const int rubber = plugin_->create_material(0.5f, 0.5f, 1.0f);
  const int ball = add_ball(vec3(0, 1.75f, 0), 0.5f, 1.0f, rubber);
  EXPECT_TRUE(plugin_->destroy_material(rubber));
  EXPECT_FALSE(plugin_->destroy_material(rubber));
  EXPECT_FALSE(plugin_->set_material(rubber, 0, 0, 0));
  EXPECT_EQ(plugin_->create_sphere_shape(1.0f, rubber), 0);
  go_on(0.6f);  // it arrives after half a second
  EXPECT_GT(velocity(ball).y, 3.0f) << "still of rubber";
  EXPECT_TRUE(plugin_->destroy_body(ball));
}

TEST_F(PhysXModule, FrictionStopsWhatSlides) {
  const int smooth = plugin_->create_material(0.0f, 0.0f, 0.0f);
  const int rough = plugin_->create_material(0.8f, 0.8f, 0.0f);
  add_ground(smooth);
  const int sliding = add_ball(vec3(0, 0.5f, 0), 0.5f, 1.0f, smooth);
  const int braking = add_ball(vec3(0, 0.5f, 5), 0.5f, 1.0f, rough);
  EXPECT_TRUE(plugin_->set_linear_velocity(sliding, vec3(3, 0, 0)));
  EXPECT_TRUE(plugin_->set_linear_velocity(braking, vec3(3, 0, 0)));
  go_on(2.0f);
  EXPECT_NEAR(velocity(sliding).x, 3.0f, 1e-3f);
  EXPECT_NEAR(velocity(braking).x, 0.0f, 0.05f);
  EXPECT_GT(place(braking).x, 0.5f);
}

TEST_F(PhysXModule, EqualBallsExchangeTheirVelocities) {
  const int elastic = plugin_->create_material(0.0f, 0.0f, 1.0f);
  plugin_->set_gravity(scene_, vec3(0, 0, 0));
  const int left = add_ball(vec3(-2, 0, 0), 0.5f, 1.0f, elastic);
  const int right = add_ball(vec3(2, 0, 0), 0.5f, 1.0f, elastic);
  plugin_->set_linear_velocity(left, vec3(4, 0, 0));
  go_on(1.5f);
  EXPECT_NEAR(velocity(left).x, 0.0f, 1e-4f);
  EXPECT_NEAR(velocity(right).x, 4.0f, 1e-4f);
}

TEST_F(PhysXModule, GroupsMayPassOneAnother) {
  add_ground();
  const int ball = plugin_->create_dynamic_body(scene_, vec3(0, 2, 0), UPRIGHT, 1.0f);
  const int shape = plugin_->create_sphere_shape(0.5f, 0);
  EXPECT_TRUE(plugin_->set_shape_group(shape, 7));
  EXPECT_FALSE(plugin_->set_shape_group(shape, 32));
  EXPECT_TRUE(plugin_->attach_shape(ball, shape));
  EXPECT_TRUE(plugin_->set_group_collision(scene_, 0, 7, false));
  EXPECT_FALSE(plugin_->set_group_collision(scene_, 32, 7, false));
  go_on(1.0f);
  EXPECT_LT(place(ball).y, -2.0f);
  PhysXHit hit;
  EXPECT_FALSE(
      plugin_->ray_cast(scene_, place(ball) + vec3(0, 0, 9), vec3(0, 0, -1), 5, ~(1u << 0), &hit));
  EXPECT_TRUE(
      plugin_->ray_cast(scene_, place(ball) + vec3(0, 0, 9), vec3(0, 0, -1), 50, 1u << 7, &hit));
  EXPECT_EQ(hit.body, ball);
}

TEST_F(PhysXModule, TriggersTellWhoComesAndGoes) {
  const int gate = plugin_->create_static_body(scene_, vec3(0, 5, 0), UPRIGHT);
  const int shape = plugin_->create_sphere_shape(1.0f, 0);
  plugin_->set_shape_trigger(shape, true);
  plugin_->attach_shape(gate, shape);
  const int ball = add_ball(vec3(0, 8, 0));
  std::vector<PhysXTriggerEvent> events;
  for (int i = 0; i < 30; ++i) {
    go_on(0.05f);
    PhysXTriggerEvent event;
    if (plugin_->get_trigger_events(scene_, &event, 1)) events.push_back(event);
  }
  ASSERT_EQ(events.size(), 2u);
  EXPECT_TRUE(events[0].entered);
  EXPECT_FALSE(events[1].entered);
  for (const PhysXTriggerEvent& event : events) {
    EXPECT_EQ(event.trigger_shape, shape);
    EXPECT_EQ(event.trigger_body, gate);
    EXPECT_EQ(event.other_body, ball);
  }
  EXPECT_NEAR(velocity(ball).x, 0.0f, 1e-6f) << "nothing pushed it";
  EXPECT_NEAR(velocity(ball).y, -15.0f, 0.1f);
}

TEST_F(PhysXModule, CallbackIsToldOfContacts) {
  struct Told {
    int scene = 0, count = 0, last_body = 0;
  } told;
  const auto note = [](int scene, const PhysXContact* contact, void* user_data) {
    auto* notes = static_cast<Told*>(user_data);
    notes->scene = scene;
    notes->last_body = contact->body_b;
    ++notes->count;
  };
  add_ground();
  const int ball = add_ball(vec3(0, 0.45f, 0));
  EXPECT_TRUE(plugin_->set_contact_callback(scene_, note, &told));
  go_on(STEP);
  EXPECT_EQ(told.count, 1);
  EXPECT_EQ(told.scene, scene_);
  EXPECT_EQ(told.last_body, ball);
  EXPECT_TRUE(plugin_->set_contact_callback(scene_, nullptr, nullptr));
  go_on(STEP);
  EXPECT_EQ(told.count, 1);
}

// ---- bodies ----

TEST_F(PhysXModule, ForcesPushByMass) {
  plugin_->set_gravity(scene_, vec3(0, 0, 0));
  const int ball = add_ball(vec3(0, 0, 0), 0.5f, 4.0f);
  EXPECT_TRUE(plugin_->add_force(ball, vec3(8, 0, 0), PHYSX_IMPULSE));
  EXPECT_EQ(velocity(ball), vec3(2, 0, 0));
  EXPECT_TRUE(plugin_->add_force(ball, vec3(0, 1, 0), PHYSX_VELOCITY_CHANGE));
  EXPECT_EQ(velocity(ball), vec3(2, 1, 0));
  EXPECT_TRUE(plugin_->add_force(ball, vec3(0, 0, 960), PHYSX_FORCE));
  EXPECT_TRUE(plugin_->add_force(ball, vec3(0, 0, 240), PHYSX_ACCELERATION));
  go_on(STEP);
  EXPECT_NEAR(velocity(ball).z, 2.0f, 1e-4f) << "1 of each, in one step of 1 / 240";
  go_on(STEP);
  EXPECT_NEAR(velocity(ball).z, 2.0f, 1e-4f) << "a force lasts one step";
  EXPECT_FALSE(plugin_->add_force(ball, vec3(1, 0, 0), static_cast<PHYSX_FORCE_MODE>(9)));
}

TEST_F(PhysXModule, PushBesideTheCentreTurns) {
  plugin_->set_gravity(scene_, vec3(0, 0, 0));
  const int ball = add_ball(vec3(0, 0, 0), 0.5f, 4.0f);  // inertia 0.4
  EXPECT_TRUE(plugin_->add_force_at(ball, vec3(0, 2, 0), vec3(0.5f, 0, 0), PHYSX_IMPULSE));
  EXPECT_EQ(velocity(ball), vec3(0, 0.5f, 0));
  vec3 turning;
  EXPECT_TRUE(plugin_->get_angular_velocity(ball, &turning));
  EXPECT_NEAR(turning.z, 2.5f * 57.29578f, 1e-2f) << "a torque of 1 about z";
  EXPECT_EQ(turning.x, 0.0f);
}

TEST_F(PhysXModule, TorqueTurnsByInertia) {
  plugin_->set_gravity(scene_, vec3(0, 0, 0));
  const int ball = add_ball(vec3(0, 0, 0), 0.5f, 4.0f);  // inertia 0.4
  EXPECT_TRUE(plugin_->add_torque(ball, vec3(0, 0.8f, 0), PHYSX_IMPULSE));
  EXPECT_TRUE(plugin_->add_torque(ball, vec3(30, 0, 0), PHYSX_VELOCITY_CHANGE));
  EXPECT_TRUE(plugin_->add_torque(ball, vec3(0, 0, 240.0f * 45.0f), PHYSX_ACCELERATION));
  go_on(STEP);
  vec3 turning;
  EXPECT_TRUE(plugin_->get_angular_velocity(ball, &turning));
  EXPECT_NEAR(turning.y, 2.0f * 57.29578f, 1e-2f);
  EXPECT_NEAR(turning.x, 30.0f, 1e-3f) << "degrees a second";
  EXPECT_NEAR(turning.z, 45.0f, 1e-2f) << "degrees a second squared, in one step of 1 / 240";
  EXPECT_EQ(velocity(ball), vec3(0, 0, 0));
}

TEST_F(PhysXModule, TurningIsToldInDegrees) {
  plugin_->set_gravity(scene_, vec3(0, 0, 0));
  const int ball = add_ball(vec3(1, 2, 3));
  EXPECT_TRUE(plugin_->set_angular_velocity(ball, vec3(0, 90, 0)));
  go_on(1.0f);
  mat4 matrix;
  ASSERT_TRUE(plugin_->get_body_matrix(ball, &matrix));
  EXPECT_NEAR(matrix.m[0], 0.0f, 1e-3f);
  EXPECT_NEAR(matrix.m[2], -1.0f, 1e-3f) << "x became -z";
  EXPECT_NEAR(matrix.m[5], 1.0f, 1e-3f);
  EXPECT_EQ(matrix.m[12], 1.0f);
  EXPECT_EQ(matrix.m[13], 2.0f);
  EXPECT_EQ(matrix.m[14], 3.0f);
  EXPECT_EQ(matrix.m[15], 1.0f);
}

TEST_F(PhysXModule, DampingAndLocksSlowDown) {
  plugin_->set_gravity(scene_, vec3(0, 0, 0));
  const int ball = add_ball(vec3(0, 0, 0));
  EXPECT_TRUE(plugin_->set_damping(ball, 1.0f, 0.0f));
  EXPECT_TRUE(plugin_->set_axis_lock(ball, PHYSX_LOCK_MOVE_Y | PHYSX_LOCK_TURN_X));
  plugin_->set_linear_velocity(ball, vec3(2, 2, 0));
  plugin_->set_angular_velocity(ball, vec3(50, 60, 0));
  go_on(1.0f);
  EXPECT_NEAR(velocity(ball).x, 2.0f * std::exp(-1.0f), 0.01f);
  EXPECT_EQ(place(ball).y, 0.0f);
  vec3 turning;
  plugin_->get_angular_velocity(ball, &turning);
  EXPECT_EQ(turning.x, 0.0f);
  EXPECT_NEAR(turning.y, 60.0f, 1e-3f);
}

TEST_F(PhysXModule, KinematicBodyPushesOthers) {
  plugin_->set_gravity(scene_, vec3(0, 0, 0));
  const int piston = plugin_->create_kinematic_body(scene_, vec3(0, 0, 0), UPRIGHT);
  plugin_->attach_shape(piston, plugin_->create_sphere_shape(0.5f, 0));
  const int ball = add_ball(vec3(1.2f, 0, 0));
  for (int i = 1; i <= 60; ++i) {
    EXPECT_TRUE(
        plugin_->set_kinematic_target(piston, vec3(static_cast<float>(i) / 60.0f, 0, 0), UPRIGHT));
    go_on(STEP);
  }
  EXPECT_EQ(place(piston), vec3(1, 0, 0));
  EXPECT_NEAR(velocity(ball).x, 4.0f, 0.1f) << "as fast as the piston";
  EXPECT_GE(place(ball).x, 2.0f - 1e-3f);
  EXPECT_FALSE(plugin_->set_kinematic_target(ball, vec3(0, 0, 0), UPRIGHT));
  EXPECT_FALSE(plugin_->set_linear_velocity(piston, vec3(0, 0, 0)));
}

TEST_F(PhysXModule, ShapesStandBesideTheirBody) {
  const int body = plugin_->create_static_body(scene_, vec3(0, 5, 0), UPRIGHT);
  const int shape = plugin_->create_sphere_shape(1.0f, 0);
  EXPECT_TRUE(plugin_->set_shape_pose(shape, vec3(3, 0, 0), UPRIGHT));
  EXPECT_TRUE(plugin_->attach_shape(body, shape));
  EXPECT_FALSE(plugin_->attach_shape(body, shape)) << "it has it";
  EXPECT_FALSE(plugin_->set_shape_pose(shape, vec3(0, 0, 0), UPRIGHT)) << "in use";
  EXPECT_EQ(cast(vec3(3, 5, 10), vec3(0, 0, -1)).distance, 9.0f);
  EXPECT_EQ(cast(vec3(0, 5, 10), vec3(0, 0, -1)).body, 0);
  EXPECT_TRUE(plugin_->detach_shape(body, shape));
  EXPECT_FALSE(plugin_->detach_shape(body, shape));
  EXPECT_EQ(cast(vec3(3, 5, 10), vec3(0, 0, -1)).body, 0);
}

TEST_F(PhysXModule, BodiesAreCountedAndCarryAPointer) {
  const int ground = add_ground(), ball = add_ball(vec3(0, 3, 0));
  EXPECT_EQ(plugin_->get_num_bodies(scene_), 2u);
  EXPECT_EQ(plugin_->get_body(scene_, 0), ground);
  EXPECT_EQ(plugin_->get_body(scene_, 1), ball);
  EXPECT_EQ(plugin_->get_body(scene_, 2), 0);
  int mark = 0;
  EXPECT_EQ(plugin_->get_body_user_data(ball), nullptr);
  EXPECT_TRUE(plugin_->set_body_user_data(ball, &mark));
  EXPECT_EQ(plugin_->get_body_user_data(ball), &mark);
  float mass = 0;
  EXPECT_TRUE(plugin_->get_mass(ball, &mass));
  EXPECT_EQ(mass, 2.0f);
  EXPECT_TRUE(plugin_->set_mass(ball, 3.0f));
  EXPECT_FALSE(plugin_->set_mass(ball, 0.0f));
  EXPECT_FALSE(plugin_->get_mass(ground, &mass));
  EXPECT_TRUE(plugin_->destroy_body(ground));
  EXPECT_EQ(plugin_->get_body(scene_, 0), ball);
}

TEST_F(PhysXModule, BodyIsPutElsewhere) {
  const int ball = add_ball(vec3(0, 3, 0));
  EXPECT_TRUE(plugin_->set_body_pose(ball, vec3(7, 8, 9), quat(0, 0, 0, 2)));
  quat rotation;
  EXPECT_TRUE(plugin_->get_body_pose(ball, nullptr, &rotation));
  EXPECT_EQ(place(ball), vec3(7, 8, 9));
  EXPECT_EQ(rotation, UPRIGHT) << "brought to length 1";
  EXPECT_FALSE(plugin_->set_body_pose(ball, vec3(0, NAN, 0), UPRIGHT));
  EXPECT_FALSE(plugin_->set_body_pose(ball, vec3(0, 0, 0), quat(0, 0, 0, 0)));
  EXPECT_EQ(place(ball), vec3(7, 8, 9));
}

// ---- joints ----

TEST_F(PhysXModule, RopeHoldsAPendulum) {
  const int ball = add_ball(vec3(2, 0, 0));
  const int rope =
      plugin_->create_distance_joint(ball, 0, vec3(2, 0, 0), vec3(0, 0, 0), 0.0f, 2.0f);
  ASSERT_GT(rope, 0);
  float lowest = 0.0f;
  for (int i = 0; i < 120; ++i) {
    go_on(1.0f / 60.0f);
    EXPECT_LE(place(ball).length(), 2.01f);
    lowest = std::min(lowest, place(ball).y);
  }
  EXPECT_NEAR(lowest, -2.0f, 0.02f);
  EXPECT_FALSE(plugin_->is_joint_broken(rope));
  EXPECT_TRUE(plugin_->destroy_joint(rope));
  go_on(2.0f);
  EXPECT_GT(place(ball).length(), 5.0f) << "nothing holds it";
}

TEST_F(PhysXModule, JointsNeedBodiesThatMove) {
  const int ground = add_ground(), ball = add_ball(vec3(0, 3, 0));
  const vec3 zero;
  EXPECT_EQ(plugin_->create_distance_joint(0, 0, zero, zero, 0, 1), 0);
  EXPECT_EQ(plugin_->create_distance_joint(ground, 0, zero, zero, 0, 1), 0);
  EXPECT_EQ(plugin_->create_distance_joint(ball, ball, zero, zero, 0, 1), 0);
  EXPECT_EQ(plugin_->create_distance_joint(ball, 999, zero, zero, 0, 1), 0);
  EXPECT_EQ(plugin_->create_distance_joint(ball, ground, zero, zero, 2, 1), 0);
  const int rope = plugin_->create_distance_joint(ball, ground, zero, zero, 0, 1);
  EXPECT_GT(rope, 0);
  EXPECT_TRUE(plugin_->set_joint_limits(rope, 1, 2));
  EXPECT_FALSE(plugin_->set_joint_limits(rope, 3, 2));
  EXPECT_TRUE(plugin_->destroy_body(ball));
  EXPECT_FALSE(plugin_->destroy_joint(rope)) << "it ended with the ball";
}

// ---- queries ----

TEST_F(PhysXModule, RaysMeetTheNearest) {
  const int ground = add_ground();
  const int near_ball = add_ball(vec3(0, 2, 0)), far_ball = add_ball(vec3(0, 2, -5), 1.0f);
  const PhysXHit hit = cast(vec3(0, 2, 10), vec3(0, 0, -3));
  EXPECT_EQ(hit.body, near_ball);
  EXPECT_NEAR(hit.distance, 9.5f, 1e-5f);
  EXPECT_TRUE(hit.position.is_equal(vec3(0, 2, 0.5f), 1e-5f));
  EXPECT_TRUE(hit.normal.is_equal(vec3(0, 0, 1), 1e-5f));
  const PhysXHit down = cast(vec3(7, 4, 0), vec3(0, -1, 0));
  EXPECT_EQ(down.body, ground);
  EXPECT_NEAR(down.distance, 4.0f, 1e-5f);
  EXPECT_EQ(down.normal, vec3(0, 1, 0));
  EXPECT_EQ(cast(vec3(7, 4, 0), vec3(0, 1, 0)).body, 0);
  EXPECT_EQ(cast(vec3(0, 2, 10), vec3(0, 0, -1), 9.0f).body, 0) << "too short";
  EXPECT_EQ(cast(vec3(0, 2, 0), vec3(1, 0, 0)).distance, 0.0f) << "from inside";
  PhysXHit all[8];
  ASSERT_EQ(
      plugin_->ray_cast_all(scene_, vec3(0, 2, 10), vec3(0, 0, -1), 100, PhysX::ALL_GROUPS, all, 8),
      2u);
  EXPECT_EQ(all[0].body, near_ball);
  EXPECT_EQ(all[1].body, far_ball);
  EXPECT_NEAR(all[1].distance, 14.0f, 1e-5f);
  EXPECT_EQ(
      plugin_->ray_cast_all(scene_, vec3(0, 2, 10), vec3(0, 0, -1), 100, PhysX::ALL_GROUPS, all, 1),
      1u);
}

TEST_F(PhysXModule, QueriesRefuseWhatIsNoDirection) {
  add_ground();
  EXPECT_FALSE(plugin_->ray_cast(scene_, vec3(0, 2, 0), vec3(0, 0, 0), 10, ~0u, nullptr));
  EXPECT_FALSE(plugin_->ray_cast(scene_, vec3(0, 2, 0), vec3(0, NAN, 0), 10, ~0u, nullptr));
  EXPECT_FALSE(plugin_->ray_cast(scene_, vec3(0, 2, 0), vec3(0, -1, 0), 0, ~0u, nullptr));
  EXPECT_FALSE(plugin_->ray_cast(999, vec3(0, 2, 0), vec3(0, -1, 0), 10, ~0u, nullptr));
  EXPECT_TRUE(plugin_->ray_cast(scene_, vec3(0, 2, 0), vec3(0, -1, 0), 10, ~0u, nullptr));
}

TEST_F(PhysXModule, SweepStopsAtTheSurface) {
  const int ground = add_ground(), ball = add_ball(vec3(5, 2, 0));
  const int probe = plugin_->create_sphere_shape(0.25f, 0);
  PhysXHit hit;
  EXPECT_TRUE(plugin_->sweep(scene_, probe, vec3(0, 3, 0), UPRIGHT, vec3(0, -1, 0), 10, ~0u, &hit));
  EXPECT_EQ(hit.body, ground);
  EXPECT_NEAR(hit.distance, 2.75f, 1e-5f);
  EXPECT_TRUE(hit.position.is_equal(vec3(0, 0, 0), 1e-5f));
  EXPECT_TRUE(plugin_->sweep(scene_, probe, vec3(0, 2, 0), UPRIGHT, vec3(1, 0, 0), 10, ~0u, &hit));
  EXPECT_EQ(hit.body, ball);
  EXPECT_NEAR(hit.distance, 4.25f, 1e-5f);
  EXPECT_NEAR(hit.position.x, 4.5f, 1e-5f);
  const int plane = plugin_->create_plane_shape(0);
  EXPECT_FALSE(
      plugin_->sweep(scene_, plane, vec3(0, 3, 0), UPRIGHT, vec3(0, -1, 0), 10, ~0u, &hit));
}

TEST_F(PhysXModule, OverlapFindsEachBodyOnce) {
  const int ground = add_ground();
  const int first = add_ball(vec3(0, 0.9f, 0)), second = add_ball(vec3(1, 0.9f, 0));
  add_ball(vec3(9, 0.9f, 0));
  const int probe = plugin_->create_sphere_shape(1.0f, 0);
  std::vector<int> bodies(8, -1);
  ASSERT_EQ(plugin_->overlap(scene_, probe, vec3(0.5f, 0.9f, 0), UPRIGHT, PhysX::ALL_GROUPS,
                             bodies.data(), 8),
            3u);
  bodies.resize(3);
  EXPECT_THAT(bodies, ElementsAre(ground, first, second));
  EXPECT_EQ(
      plugin_->overlap(scene_, probe, vec3(0, 50, 0), UPRIGHT, PhysX::ALL_GROUPS, bodies.data(), 3),
      0u);
  EXPECT_EQ(plugin_->overlap(scene_, probe, vec3(0.5f, 0.9f, 0), UPRIGHT, PhysX::ALL_GROUPS,
                             bodies.data(), 2),
            2u);
}

// ---- what it cannot do ----

TEST_F(PhysXModule, ShapesThatItLacksAreRefused) {
  const vec3 corners[] = {vec3(0, 0, 0), vec3(1, 0, 0), vec3(0, 1, 0), vec3(0, 0, 1)};
  const unsigned int indices[] = {0, 1, 2};
  const float heights[] = {0, 0, 0, 0};
  EXPECT_EQ(plugin_->create_box_shape(vec3(1, 1, 1), 0), 0);
  EXPECT_EQ(plugin_->create_capsule_shape(1, 1, 0), 0);
  EXPECT_EQ(plugin_->create_convex_shape(corners, 4, 0), 0);
  EXPECT_EQ(plugin_->create_mesh_shape(corners, 4, indices, 1, 0), 0);
  EXPECT_EQ(plugin_->create_height_field_shape(heights, 2, 2, vec3(1, 1, 1), 0), 0);
}

TEST_F(PhysXModule, JointsThatItLacksAreRefused) {
  const int ball = add_ball(vec3(0, 0, 0)), other = add_ball(vec3(5, 0, 0));
  const vec3 zero, up(0, 1, 0);
  EXPECT_EQ(plugin_->create_fixed_joint(ball, other), 0);
  EXPECT_EQ(plugin_->create_hinge_joint(ball, other, zero, up), 0);
  EXPECT_EQ(plugin_->create_slider_joint(ball, other, up), 0);
  EXPECT_EQ(plugin_->create_ball_joint(ball, other, zero), 0);
  const int rope = plugin_->create_distance_joint(ball, other, zero, zero, 0, 9);
  EXPECT_FALSE(plugin_->set_joint_motor(rope, 1, 1)) << "no hinge and no slider";
  EXPECT_FALSE(plugin_->set_joint_break_force(rope, 1, 0)) << "its ropes never break";
  EXPECT_TRUE(plugin_->set_joint_break_force(rope, 0, 0));
}

TEST_F(PhysXModule, VehiclesAndCharactersAreRefused) {
  const int ball = add_ball(vec3(0, 0, 0));
  const PhysXWheel wheels[4];
  vec3 position(1, 2, 3);
  quat rotation;
  unsigned int touches = 77;
  EXPECT_EQ(plugin_->create_vehicle(ball, wheels, 4), 0);
  EXPECT_FALSE(plugin_->drive_vehicle(ball, 1, 0, 0));
  EXPECT_FALSE(plugin_->get_wheel_pose(ball, 0, &position, &rotation));
  EXPECT_FALSE(plugin_->destroy_vehicle(ball));
  EXPECT_EQ(plugin_->create_character(scene_, vec3(0, 0, 0), 0.5f, 1.8f), 0);
  EXPECT_FALSE(plugin_->move_character(ball, vec3(1, 0, 0), 0.1f, &touches));
  EXPECT_FALSE(plugin_->set_character_position(ball, vec3(0, 0, 0)));
  EXPECT_FALSE(plugin_->get_character_position(ball, &position));
  EXPECT_FALSE(plugin_->destroy_character(ball));
  EXPECT_EQ(position, vec3(1, 2, 3));
  EXPECT_EQ(touches, 77u);
  EXPECT_FALSE(plugin_->set_continuous_collision(ball, true));
  EXPECT_FALSE(plugin_->is_body_sleeping(ball));
  EXPECT_EQ(plugin_->get_num_bodies(scene_), 1u);
}

TEST_F(PhysXModule, UnknownNumbersDoNothing) {
  const int ball = add_ball(vec3(0, 0, 0));
  vec3 result(1, 2, 3);
  for (const int unknown : {0, -1, scene_, 999}) {
    EXPECT_FALSE(plugin_->get_linear_velocity(unknown, &result));
    EXPECT_FALSE(plugin_->add_force(unknown, vec3(1, 0, 0), PHYSX_FORCE));
    EXPECT_FALSE(plugin_->destroy_body(unknown));
    EXPECT_FALSE(plugin_->destroy_shape(unknown));
  }
  EXPECT_EQ(result, vec3(1, 2, 3));
  EXPECT_FALSE(plugin_->simulate(ball, 1.0f)) << "a body is no scene";
  EXPECT_FALSE(plugin_->get_body_matrix(ball, nullptr));
  EXPECT_EQ(plugin_->create_dynamic_body(scene_, vec3(0, 0, 0), UPRIGHT, 0.0f), 0);
  EXPECT_EQ(plugin_->create_sphere_shape(-1.0f, 0), 0);
  EXPECT_EQ(plugin_->create_sphere_shape(1.0f, 999), 0) << "no such material";
  EXPECT_FALSE(plugin_->attach_shape(ball, plugin_->create_plane_shape(0))) << "it would fall";
}

}  // namespace
}  // namespace orv::test
