#include <orv/visual/particle_emitter.h>

#include <orv/math/math.h>
#include <orv/math/vec3.h>
#include <orv/visual/particle_pool.h>

#include <gtest/gtest.h>

#include <climits>
#include <limits>
#include <vector>

#include "support/held.h"
#include "support/near.h"
#include "support/vtable_slot.h"

namespace orv {
namespace {

using test::Held;

constexpr float INF = std::numeric_limits<float>::infinity();
constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

TEST(ParticleEmitter, StartsWithItsDefaults) {
  const Held<ParticleEmitter> emitter;
  EXPECT_EQ(emitter->get_type(), NODE_TYPE_PARTICLE_EMITTER);
  EXPECT_EQ(static_cast<int>(emitter->get_type()), 33);
  EXPECT_TRUE(emitter->is_type_of(NODE_TYPE_OBJECT));
  EXPECT_EQ(emitter->get_emitter_type(), PARTICLE_EMITTER_POINT);
  EXPECT_EQ(static_cast<int>(PARTICLE_EMITTER_POINT), 0);
  EXPECT_EQ(emitter->get_particle_rate(), 50.0f);
  EXPECT_EQ(emitter->get_particle_speed(), 2.0f);
  EXPECT_EQ(emitter->get_particle_speed_variance(), 1.0f);
  EXPECT_EQ(emitter->get_spawn_position_min(), vec3(-0.5f, -0.5f, -0.5f));
  EXPECT_EQ(emitter->get_spawn_position_max(), vec3(0.5f, 0.5f, 0.5f));
  EXPECT_EQ(emitter->get_spawn_direction_min(), vec3(-1, -1, -1));
  EXPECT_EQ(emitter->get_spawn_direction_max(), vec3(1, 1, 1));
}

TEST(ParticleEmitter, OwnOperationsFollowThoseOfObject) {
  const std::size_t last = test::vtable_slot(&Object::update_bounding_sphere);
  EXPECT_EQ(test::vtable_slot(&ParticleEmitter::spawn_particle), last + 1);
  EXPECT_EQ(test::vtable_slot(&ParticleEmitter::get_num_particles_to_spawn), last + 2);
}

TEST(ParticleEmitter, SettingsAreKept) {
  const Held<ParticleEmitter> emitter;
  emitter->set_particle_rate(3.0f);
  emitter->set_particle_speed(4.0f);
  emitter->set_particle_speed_variance(5.0f);
  emitter->set_emitter_type(static_cast<PARTICLE_EMITTER_TYPE>(7));
  emitter->set_spawn_positions(vec3(1, 2, 3), vec3(4, 5, 6));
  emitter->set_spawn_directions(vec3(7, 8, 9), vec3(10, 11, 12));
  EXPECT_EQ(emitter->get_particle_rate(), 3.0f);
  EXPECT_EQ(emitter->get_particle_speed(), 4.0f);
  EXPECT_EQ(emitter->get_particle_speed_variance(), 5.0f);
  EXPECT_EQ(static_cast<int>(emitter->get_emitter_type()), 7);
  EXPECT_EQ(emitter->get_spawn_position_min(), vec3(1, 2, 3));
  EXPECT_EQ(emitter->get_spawn_position_max(), vec3(4, 5, 6));
  EXPECT_EQ(emitter->get_spawn_direction_min(), vec3(7, 8, 9));
  EXPECT_EQ(emitter->get_spawn_direction_max(), vec3(10, 11, 12));
}

TEST(ParticleEmitter, CornersCanBeSwapped) {
  const Held<ParticleEmitter> emitter;
  emitter->set_spawn_positions(emitter->get_spawn_position_max(),
                               emitter->get_spawn_position_min());
  EXPECT_EQ(emitter->get_spawn_position_min(), vec3(0.5f, 0.5f, 0.5f));
  EXPECT_EQ(emitter->get_spawn_position_max(), vec3(-0.5f, -0.5f, -0.5f));
  emitter->set_spawn_directions(emitter->get_spawn_direction_max(),
                                emitter->get_spawn_direction_min());
  EXPECT_EQ(emitter->get_spawn_direction_max(), vec3(-1, -1, -1));
}

// ---- how many ----

std::vector<int> counts(ParticleEmitter& emitter, float dt, int frames) {
  std::vector<int> result;
  for (int i = 0; i < frames; ++i) result.push_back(emitter.get_num_particles_to_spawn(dt));
  return result;
}

TEST(ParticleEmitter, FractionsOfParticlesAddUp) {
  const Held<ParticleEmitter> emitter;
  EXPECT_EQ(counts(*emitter, 0.01f, 6), (std::vector<int>{0, 1, 0, 1, 0, 1}));
  emitter->set_particle_rate(5.5f);
  EXPECT_EQ(counts(*emitter, 0.5f, 4), (std::vector<int>{2, 3, 3, 3})) << "2.75 a frame";
}

TEST(ParticleEmitter, NothingIsDueWithoutTimeOrRate) {
  const Held<ParticleEmitter> emitter;
  EXPECT_EQ(emitter->get_num_particles_to_spawn(0.0f), 0);
  EXPECT_LE(emitter->get_num_particles_to_spawn(-1.0f), 0);
  emitter->set_particle_rate(0.0f);
  EXPECT_EQ(emitter->get_num_particles_to_spawn(1.0f), 0);
}

TEST(ParticleEmitter, CountsThatNoIntegerHoldsAreCutOff) {
  const Held<ParticleEmitter> emitter;
  for (const float rate : {1e30f, INF, 2147483648.0f}) {
    emitter->set_particle_rate(rate);
    EXPECT_EQ(emitter->get_num_particles_to_spawn(1.0f), INT_MAX) << rate;
  }
  for (const float rate : {-1e30f, -INF}) {
    emitter->set_particle_rate(rate);
    EXPECT_EQ(emitter->get_num_particles_to_spawn(1.0f), INT_MIN) << rate;
  }
  emitter->set_particle_rate(NOT_A_NUMBER);
  EXPECT_EQ(emitter->get_num_particles_to_spawn(1.0f), 0);
  emitter->set_particle_rate(50.0f);
  EXPECT_EQ(counts(*emitter, 0.01f, 4), (std::vector<int>{0, 1, 0, 1})) << "the sum is unharmed";
}

// ---- placing ----

TEST(ParticleEmitter, DrawsPlaceThenDirectionThenSpeed) {
  ParticlePool pool;
  pool.alloc(3);
  pool.sizes[1] = 5.0f;
  const vec3 untouched = pool.positions[0];
  const Held<ParticleEmitter> emitter;
  emitter->set_position(10, 20, 30);
  emitter->set_spawn_positions(vec3(1, 2, 3), vec3(4, 6, 8));
  emitter->set_spawn_directions(vec3(-3, 0, 5), vec3(3, 1, 5));
  emitter->set_particle_speed(8.0f);
  emitter->set_particle_speed_variance(4.0f);
  Math::srnd(99);
  emitter->spawn_particle(pool, 1);
  const int next = Math::rand15();

  Math::srnd(99);
  const float x = Math::rnd(1, 4) + 10, y = Math::rnd(2, 6) + 20, z = Math::rnd(3, 8) + 30;
  EXPECT_EQ(pool.positions[1], vec3(x, y, z));
  const float dx = Math::rnd(-3, 3), dy = Math::rnd(0, 1), dz = Math::rnd(5, 5);
  const float speed = 8.0f + Math::rnd(-4, 4);
  EXPECT_EQ(pool.velocities[1], vec3(speed * dx, speed * dy, speed * dz)) << "not normalised";
  EXPECT_EQ(Math::rand15(), next) << "seven numbers";
  EXPECT_EQ(pool.sizes[1], 5.0f);
  EXPECT_EQ(pool.lifetimes[1], 0.0f) << "given by the system";
  EXPECT_EQ(pool.positions[0], untouched);
}

TEST(ParticleEmitter, PlaceIsThatInTheSpaceOfTheParent) {
  ParticlePool pool;
  pool.alloc(1);
  const Held<Object> parent;
  parent->set_position(100, 0, 0);
  auto* emitter = new ParticleEmitter;
  parent->add_child(emitter);
  emitter->set_position(1, 2, 3);
  emitter->set_spawn_positions(vec3(), vec3());
  emitter->spawn_particle(pool, 0);
  EXPECT_EQ(pool.positions[0], vec3(1, 2, 3));
}

TEST(ParticleEmitter, OtherTypesAndSlotsOutOfRangeChangeNothing) {
  ParticlePool pool;
  const Held<ParticleEmitter> emitter;
  emitter->spawn_particle(pool, 0);
  pool.alloc(1);
  const vec3 before = pool.positions[0];
  Math::srnd(5);
  emitter->spawn_particle(pool, 1);
  emitter->spawn_particle(pool, UINT_MAX);
  emitter->set_emitter_type(static_cast<PARTICLE_EMITTER_TYPE>(1));
  emitter->spawn_particle(pool, 0);
  EXPECT_EQ(pool.positions[0], before);
  EXPECT_EQ(pool.velocities[0], vec3());
  const int next = Math::rand15();
  Math::srnd(5);
  EXPECT_EQ(Math::rand15(), next) << "no number drawn";
}

}  // namespace
}  // namespace orv
