// A system at work: what a frame does to its particles, and what of them is drawn.
#include <orv/visual/particle_system.h>

#include <orv/geometry/vertex_pool.h>
#include <orv/gpu/gpu_program.h>
#include <orv/math/math.h>
#include <orv/math/vec3.h>
#include <orv/visual/particle_action.h>
#include <orv/visual/particle_emitter.h>
#include <orv/visual/particle_pool.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "support/held.h"
#include "support/recording_renderer.h"

namespace orv {
namespace {

using test::Held;
using test::RecordingRenderer;
using testing::ElementsAre;

// ---- spawning ----

class ParticleSystemFrame : public testing::Test {
 protected:
  void SetUp() override { Math::srnd(21); }

  ParticlePool& start(unsigned int slots) {
    system->initialize(slots);
    return *system->get_particle_pool();
  }
  ParticleEmitter* add_emitter(float rate) {
    ParticleEmitter* emitter = system->create_emitter();
    emitter->set_particle_rate(rate);
    return emitter;
  }
  std::vector<unsigned int> spawned_a() {
    const ParticlePool& pool = *system->get_particle_pool();
    return {pool.spawned_a, pool.spawned_a + pool.num_spawned_a};
  }
  std::vector<unsigned int> spawned_b() {
    const ParticlePool& pool = *system->get_particle_pool();
    return {pool.spawned_b, pool.spawned_b + pool.num_spawned_b};
  }
  VertexPool& drawn() { return *system->get_particle_pool()->vertex_pool; }
  int draw_count() { return drawn().get_pool_data()->get_draw_count(); }

  Held<ParticleSystem> system;
};

TEST_F(ParticleSystemFrame, SurplusParticlesAreLost) {
  const ParticlePool& pool = start(10);
  add_emitter(100.0f);
  add_emitter(100.0f);
  EXPECT_EQ(system->process_particle_emitters(1.0f), 10);
  EXPECT_EQ(pool.spawn_cursor, 10u);
  EXPECT_EQ(pool.num_spawned_a, 10u);
  EXPECT_EQ(pool.num_spawned_b, 10u);
  EXPECT_EQ(system->get_num_alive_particles(), 10u);
  for (unsigned int i = 0; i < 10; ++i) pool.lifetimes[i] = 0.0f;
  system->get_emitter_by_index(0)->set_particle_rate(0.0f);
  system->get_emitter_by_index(1)->set_particle_rate(3.0f);
  EXPECT_EQ(system->process_particle_emitters(1.0f), 3) << "nothing was carried over";
}

TEST_F(ParticleSystemFrame, SecondEmitterGoesOnWhereTheFirstStopped) {
  const ParticlePool& pool = start(10);
  for (const unsigned int taken : {1u, 5u, 6u}) pool.lifetimes[taken] = 9.0f;
  ParticleEmitter* first = add_emitter(3.0f);
  ParticleEmitter* second = add_emitter(2.0f);
  first->set_spawn_positions(vec3(1, 1, 1), vec3(1, 1, 1));
  second->set_spawn_positions(vec3(2, 2, 2), vec3(2, 2, 2));
  EXPECT_EQ(system->process_particle_emitters(1.0f), 5);
  EXPECT_THAT(spawned_a(), ElementsAre(0, 2, 3, 4, 7));
  EXPECT_EQ(spawned_b(), spawned_a());
  EXPECT_EQ(pool.spawn_cursor, 8u) << "slots looked at";
  EXPECT_EQ(pool.positions[3], vec3(1, 1, 1));
  EXPECT_EQ(pool.positions[4], vec3(2, 2, 2));
  EXPECT_EQ(pool.positions[7], vec3(2, 2, 2));
  EXPECT_EQ(pool.lifetimes[5], 9.0f);
}

TEST_F(ParticleSystemFrame, EachFrameBeginsAtTheFirstSlot) {
  const ParticlePool& pool = start(40);
  add_emitter(30.0f);
  system->process_particle_emitters(1.0f);
  pool.lifetimes[4] = 0.0f;
  pool.lifetimes[17] = -2.0f;
  system->process_particle_emitters(0.1f);
  EXPECT_THAT(spawned_a(), ElementsAre(4, 17, 30));
  EXPECT_EQ(pool.spawn_cursor, 31u);
}

TEST_F(ParticleSystemFrame, NoSlotIsLookedAtWhenNothingIsDue) {
  const ParticlePool& pool = start(10);
  ParticleEmitter* emitter = add_emitter(0.0f);
  EXPECT_EQ(system->spawn_particles_emitter(*emitter, 1.0f), 0);
  emitter->set_particle_rate(-5.0f);
  EXPECT_EQ(system->spawn_particles_emitter(*emitter, 1.0f), 0);
  EXPECT_EQ(pool.spawn_cursor, 0u);
}

TEST_F(ParticleSystemFrame, NewParticlesGetTheLifetimeOfTheSystem) {
  const ParticlePool& pool = start(3);
  system->set_particle_lifetime(4.0f);
  add_emitter(2.0f);
  system->process_particle_emitters(1.0f);
  EXPECT_EQ(pool.lifetimes[0], 4.0f);
  EXPECT_EQ(pool.lifetimes[1], 4.0f);
  EXPECT_EQ(pool.lifetimes[2], 0.0f);
}

TEST_F(ParticleSystemFrame, ListsOfTheSpawnedEndAtTheNumberOfSlots) {
  ParticlePool& pool = start(5);
  ParticleEmitter* emitter = add_emitter(5.0f);
  for (int round = 0; round < 4; ++round) {
    EXPECT_EQ(system->spawn_particles_emitter(*emitter, 1.0f), 5);
    for (unsigned int i = 0; i < 5; ++i) pool.lifetimes[i] = 0.0f;
    pool.spawn_cursor = 0;
    EXPECT_EQ(pool.num_spawned_a, 5u);
    EXPECT_EQ(pool.num_spawned_b, 5u);
  }
}

TEST_F(ParticleSystemFrame, OtherTypesOfEmittersLeaveParticlesInPlace) {
  const ParticlePool& pool = start(4);
  const vec3 place = pool.positions[0];
  add_emitter(1.0f)->set_emitter_type(static_cast<PARTICLE_EMITTER_TYPE>(5));
  EXPECT_EQ(system->process_particle_emitters(1.0f), 1);
  EXPECT_EQ(pool.positions[0], place);
  EXPECT_EQ(pool.velocities[0], vec3());
  EXPECT_EQ(pool.lifetimes[0], 1.0f);
}

// Fields of all slots, bit by bit.
void expect_same_slots(const ParticlePool& a, const ParticlePool& b) {
  const std::size_t n = a.num_particles;
  EXPECT_EQ(std::memcmp(a.positions, b.positions, n * sizeof(vec3)), 0);
  EXPECT_EQ(std::memcmp(a.velocities, b.velocities, n * sizeof(vec3)), 0);
  EXPECT_EQ(std::memcmp(a.lifetimes, b.lifetimes, n * sizeof(float)), 0);
  EXPECT_EQ(std::memcmp(a.sizes, b.sizes, n * sizeof(float)), 0);
}

// Spawns in the plain way, since no shorter one is known for it.
class DerivedEmitter : public ParticleEmitter {
 public:
  void spawn_particle(ParticlePool& pool, unsigned int index) override {
    slots.push_back(index);
    ParticleEmitter::spawn_particle(pool, index);
  }
  std::vector<unsigned int> slots;
};

TEST_F(ParticleSystemFrame, BulkSpawningGivesTheBitsOfOneByOne) {
  const auto configure = [](ParticleEmitter* emitter) {
    emitter->set_particle_rate(777.0f);
    emitter->set_position(0.3f, -7.7f, 100.1f);
    emitter->set_spawn_positions(vec3(-1.1f, 2.2f, 3.3f), vec3(4.7f, 5.1f, -6.9f));
    emitter->set_spawn_directions(vec3(-0.1f, 0.2f, 1.3f), vec3(0.4f, 9.5f, -0.6f));
    emitter->set_particle_speed(3.7f);
    emitter->set_particle_speed_variance(0.9f);
  };
  const ParticlePool& pool = start(1000);
  configure(system->create_emitter());
  const Held<ParticleSystem> other;
  other->initialize(1000);
  const ParticlePool& other_pool = *other->get_particle_pool();
  std::memcpy(static_cast<void*>(other_pool.positions), pool.positions, 1000 * sizeof(vec3));
  auto* derived = new DerivedEmitter;
  configure(derived);
  EXPECT_TRUE(other->add_emitter(derived));

  Math::srnd(4);
  EXPECT_EQ(system->process_particle_emitters(1.0f), 777);
  const int next = Math::rand15();
  Math::srnd(4);
  EXPECT_EQ(other->process_particle_emitters(1.0f), 777);
  EXPECT_EQ(Math::rand15(), next);
  EXPECT_EQ(derived->slots.size(), 777u);
  expect_same_slots(pool, other_pool);
}

// ---- a whole frame ----

class CountingAction : public ParticleAction {
 public:
  void update_particle_pool(ParticlePool& pool, float dt) override {
    seen = pool.lifetimes[0];
    passed += dt;
  }
  float seen = 0.0f;
  float passed = 0.0f;
};

TEST_F(ParticleSystemFrame, EmittersComeBeforeActionsAndAgeingLast) {
  const ParticlePool& pool = start(3);
  add_emitter(1.0f);
  auto* action = new CountingAction;
  EXPECT_TRUE(system->add_action(action));
  EXPECT_TRUE(system->update(1.0f, nullptr));
  EXPECT_EQ(action->seen, 1.0f) << "born, not aged";
  EXPECT_EQ(action->passed, 1.0f);
  EXPECT_EQ(pool.lifetimes[0], 0.0f);
}

// Two emitters that keep about half of the slots alive, and actions of which one sees what another
// did.
void furnish(ParticleSystem& system, unsigned int slots) {
  Math::srnd(31);
  system.initialize(slots);
  system.set_particle_lifetime(0.7f);
  for (int i = 0; i < 2; ++i) {
    system.create_emitter()->set_particle_rate(0.4f * static_cast<float>(slots) + 3.0f);
  }
  system.create_action();
  for (int i = 0; i < 2; ++i) {
    ParticleAction* size = system.create_action();
    size->set_action_type(PARTICLE_ACTION_SIZE);
    for (int entry = 0; entry < 3 - 2 * i; ++entry) size->add_size(static_cast<float>(entry) + 1);
  }
  system.create_action()->set_gravity(0.3f, 0, -1.7f);
}

TEST_F(ParticleSystemFrame, UpdateGivesTheBitsOfItsThreeSteps) {
  for (const unsigned int slots : {1u, 5u, 16u, 127u, 128u, 129u, 1000u}) {
    const Held<ParticleSystem> whole, steps;
    furnish(*whole, slots);
    for (int i = 0; i < 30; ++i) whole->update(0.06f, nullptr);
    furnish(*steps, slots);
    for (int i = 0; i < 30; ++i) {
      steps->process_particle_emitters(0.06f);
      steps->process_particle_actions(0.06f);
      steps->update_particles_lifetime(0.06f);
    }
    expect_same_slots(*whole->get_particle_pool(), *steps->get_particle_pool());
    EXPECT_GT(whole->get_num_alive_particles(), 0u);
  }
}

TEST_F(ParticleSystemFrame, ParticlesAgeInTheFrameOfTheirBirth) {
  const ParticlePool& pool = start(3);
  ParticleEmitter* emitter = add_emitter(2.0f);
  system->update(0.5f, nullptr);
  emitter->set_particle_rate(0.0f);
  system->vertex_pool_prepare_render();
  EXPECT_EQ(draw_count(), 1);
  EXPECT_EQ(drawn().get_vertex_color(0), vec4(1, 1, 1, 0.5f));
  system->update(0.5f, nullptr);
  EXPECT_EQ(pool.lifetimes[0], 0.0f);
  EXPECT_EQ(system->get_num_alive_particles(), 0u);
  system->vertex_pool_prepare_render();
  EXPECT_EQ(draw_count(), 0);
}

TEST_F(ParticleSystemFrame, DeadSlotsGoOnFalling) {
  const ParticlePool& pool = start(2);
  pool.lifetimes[0] = 0.25f;
  system->update(0.5f, nullptr);
  EXPECT_EQ(pool.lifetimes[0], -0.25f);
  EXPECT_EQ(pool.lifetimes[1], -0.5f);
  system->update(0.5f, nullptr);
  EXPECT_EQ(pool.lifetimes[1], -1.0f);
}

TEST_F(ParticleSystemFrame, ParticlesStayWhereTheyWereBornWithoutGravity) {
  const ParticlePool& pool = start(1);
  add_emitter(1.0f);
  system->set_particle_lifetime(9.0f);
  system->update(1.0f, nullptr);
  const vec3 place = pool.positions[0];
  EXPECT_NE(pool.velocities[0], vec3());
  system->update(0.5f, nullptr);
  EXPECT_EQ(pool.positions[0], place);
  system->create_action()->set_gravity(0, 0, 0);
  system->update(0.5f, nullptr);
  EXPECT_EQ(pool.positions[0], place + pool.velocities[0] * 0.5f);
}

TEST_F(ParticleSystemFrame, ShorterLifetimeLeavesOlderParticlesAtSizeOneHundred) {
  const ParticlePool& pool = start(1);
  system->set_particle_lifetime(8.0f);
  add_emitter(1.0f);
  system->process_particle_emitters(1.0f);
  ParticleAction* action = system->create_action();
  action->set_action_type(PARTICLE_ACTION_SIZE);
  action->add_size(2.0f);
  action->add_size(4.0f);
  system->set_particle_lifetime(2.0f);
  std::vector<float> sizes;
  for (int i = 0; i < 7; ++i) {
    system->process_particle_actions(1.0f);
    system->update_particles_lifetime(1.0f);
    sizes.push_back(pool.sizes[0]);
  }
  EXPECT_THAT(sizes, ElementsAre(100, 100, 100, 100, 100, 4, 4)) << "8, 7 ... 2 seconds left";
  system->process_particle_actions(1.0f);
  EXPECT_EQ(pool.sizes[0], 3.0f);
}

TEST_F(ParticleSystemFrame, AliveAreThoseWithTimeLeft) {
  const ParticlePool& pool = start(21);
  for (unsigned int i = 0; i < 21; ++i) pool.lifetimes[i] = i % 3 == 0 ? 0.1f : i % 3 == 1 ? 0 : -1;
  EXPECT_EQ(system->get_num_alive_particles(), 7u);
}

TEST_F(ParticleSystemFrame, TimeThatRunsBackwardsWakesNobodyBehindTheSlots) {
  start(5);
  add_emitter(0.0f);
  system->create_action();
  system->update(-1.0f, nullptr);
  EXPECT_EQ(system->get_num_alive_particles(), 5u);
  system->vertex_pool_prepare_render();
  EXPECT_EQ(draw_count(), 5);
}

// ---- packing ----

TEST_F(ParticleSystemFrame, WithoutEmittersNothingIsDrawn) {
  start(10);
  system->update(0.1f, nullptr);
  system->vertex_pool_prepare_render();
  EXPECT_EQ(drawn().get_pool_data()->get_draw_start(), 0);
  EXPECT_EQ(draw_count(), 0);
}

// What the packed points have to be, one after the other.
void expect_packed(const ParticlePool& pool, float lifetime) {
  unsigned int k = 0;
  for (unsigned int i = 0; i < pool.num_particles; ++i) {
    const float left = pool.lifetimes[i];
    if (!(left > 0.0f)) continue;
    const vec3& p = pool.positions[i];
    EXPECT_EQ(pool.vertex_pool->get_vertex_position(k), vec4(p.x, p.y, p.z, pool.sizes[i])) << i;
    const vec4 color(1.0f, 1.0f, 1.0f, 1.0f - (lifetime - left) / lifetime);
    EXPECT_EQ(pool.vertex_pool->get_vertex_color(k), color) << i;
    ++k;
  }
  EXPECT_EQ(pool.vertex_pool->get_pool_data()->get_draw_start(), 0);
  EXPECT_EQ(pool.vertex_pool->get_pool_data()->get_draw_count(), static_cast<int>(k));
}

TEST_F(ParticleSystemFrame, LivingArePackedInOrderWhateverThePattern) {
  const ParticlePool& pool = start(53);
  system->set_particle_lifetime(3.0f);
  const unsigned int patterns = 200;
  for (unsigned int pattern = 0; pattern < patterns; ++pattern) {
    const int share = Math::rand15() % 5;  // none alive to all alive
    for (unsigned int i = 0; i < 53; ++i) {
      const bool alive = Math::rand15() % 4 < share;
      pool.lifetimes[i] = alive ? 0.01f + Math::rnd(3.0f) : -Math::rnd(2.0f);
      pool.sizes[i] = Math::rnd(9.0f);
    }
    const vec4 behind(7, 7, 7, 7);
    for (unsigned int i = 0; i < 53; ++i) {
      drawn().set_vertex_position(i, behind);
      drawn().set_vertex_color(i, behind);
    }
    system->vertex_pool_prepare_render();
    expect_packed(pool, 3.0f);
    for (unsigned int k = system->get_num_alive_particles(); k < 53; ++k) {
      EXPECT_EQ(drawn().get_vertex_position(k), behind) << "not written";
      EXPECT_EQ(drawn().get_vertex_color(k), behind);
    }
  }
}

TEST_F(ParticleSystemFrame, PackingFitsPoolsOfEverySize) {
  for (unsigned int slots = 1; slots <= 40; ++slots) {
    ParticlePool& pool = start(slots);
    for (unsigned int i = 0; i < slots; ++i) pool.lifetimes[i] = 0.5f;
    system->vertex_pool_prepare_render();
    expect_packed(pool, 1.0f);
    system->terminate(nullptr);
  }
}

TEST_F(ParticleSystemFrame, OnlyThePackedVerticesAreMarkedForUpload) {
  const ParticlePool& pool = start(20);
  VertexPoolData& data = *drawn().get_pool_data();
  for (unsigned int i = 0; i < 4; ++i) data.get_vertex_attrib_array(i)->update_needed(false);
  system->vertex_pool_prepare_render();
  EXPECT_FALSE(data.is_update_vertex_buffer_needed()) << "nobody alive";
  for (const unsigned int i : {3u, 9u, 19u}) pool.lifetimes[i] = 1.0f;
  system->vertex_pool_prepare_render();
  for (const unsigned int array : {0u, 3u}) {
    unsigned int begin = 9, end = 9;
    data.get_vertex_attrib_array(array)->get_dirty_elements(&begin, &end);
    EXPECT_EQ(begin, 0u) << array;
    EXPECT_EQ(end, 3u) << array;
  }
  EXPECT_FALSE(data.get_vertex_attrib_array(1)->is_update_needed());
  EXPECT_FALSE(data.get_vertex_attrib_array(2)->is_update_needed());
}

TEST_F(ParticleSystemFrame, PointsThatAHostLaidOutAnewAreFilledToo) {
  const ParticlePool& pool = start(20);
  for (const unsigned int i : {3u, 9u, 19u}) pool.lifetimes[i] = 0.75f;
  ASSERT_TRUE(drawn().init_pool(20, false));
  system->vertex_pool_prepare_render();
  expect_packed(pool, 1.0f);
  ASSERT_TRUE(drawn().init_pool(2, false));
  system->vertex_pool_prepare_render();
  EXPECT_EQ(draw_count(), 3) << "the renderer draws what there is";
  const vec3& p = pool.positions[9];
  EXPECT_EQ(drawn().get_vertex_position(1), vec4(p.x, p.y, p.z, 1));
  drawn()._cleanup(nullptr);
  system->vertex_pool_prepare_render();
}

// ---- drawing ----

TEST_F(ParticleSystemFrame, RenderPacksAndDrawsThePoints) {
  RecordingRenderer renderer;
  start(4).lifetimes[1] = 1.0f;
  system->render(nullptr, nullptr);
  EXPECT_EQ(draw_count(), 4) << "not packed without a renderer";
  system->render(&renderer, nullptr);
  EXPECT_EQ(draw_count(), 1);
  EXPECT_EQ(renderer.count("geometry_vbo_draw"), 1);
  renderer.clear();
  system->get_particle_pool()->lifetimes[2] = 1.0f;
  system->vertex_pool_render(&renderer);
  EXPECT_EQ(renderer.count("geometry_vbo_draw"), 1);
  EXPECT_EQ(draw_count(), 1) << "as packed last";
  renderer.clear();
  system->set_render_state(false, nullptr);
  system->render(&renderer, nullptr);
  EXPECT_THAT(renderer.calls(), ElementsAre());
}

TEST_F(ParticleSystemFrame, MovingTheSystemMovesNoPoint) {
  RecordingRenderer renderer;
  const Held<GpuProgram> program;
  renderer.set_current_program(program->get_data_ptr());
  const ParticlePool& pool = start(1);
  add_emitter(1.0f)->set_spawn_positions(vec3(1, 2, 3), vec3(1, 2, 3));
  system->set_position(100, 0, 0);
  system->set_particle_lifetime(9.0f);
  system->update(1.0f, nullptr);
  system->render(&renderer, nullptr);
  EXPECT_EQ(pool.positions[0], vec3(1, 2, 3));
  EXPECT_EQ(drawn().get_vertex_position(0), vec4(1, 2, 3, 1));
  EXPECT_EQ(drawn().get_absolute_transform(), mat4());
}

TEST_F(ParticleSystemFrame, RenderingStatesReachThePoints) {
  start(1);
  auto* child = new Object;
  system->add_child(child);
  for (const bool legacy : {true, false}) {
    system->set_opengl_2_3_rendering_states(legacy, system);
    for (const Object* object :
         {static_cast<Object*>(system), child, static_cast<Object*>(&drawn())}) {
      EXPECT_EQ(object->get_use_fixed_mvp_matrices_state(), legacy);
      EXPECT_EQ(object->get_use_generic_vertex_attribs_state(), !legacy);
    }
  }
}

}  // namespace
}  // namespace orv
