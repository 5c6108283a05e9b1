#include <orv/visual/particle_system.h>

#include <orv/gpu/gpu_program.h>
#include <orv/gpu/material.h>
#include <orv/visual/particle_action.h>
#include <orv/visual/particle_emitter.h>
#include <orv/visual/particle_pool.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>

#include "support/held.h"
#include "support/recording_renderer.h"

namespace orv {
namespace {

using test::Held;
using test::RecordingRenderer;
using testing::ElementsAre;

// Marks when it is destroyed.
template <class Base>
class Watched : public Base {
 public:
  explicit Watched(int* destroyed) : destroyed_(destroyed) {}
  ~Watched() override { ++*destroyed_; }

 private:
  int* destroyed_;
};

// ---- life ----

TEST(ParticleSystem, StartsWithoutAnything) {
  const Held<ParticleSystem> system;
  EXPECT_EQ(system->get_type(), NODE_TYPE_PARTICLE_SYSTEM);
  EXPECT_EQ(static_cast<int>(system->get_type()), 32);
  EXPECT_TRUE(system->is_type_of(NODE_TYPE_OBJECT));
  EXPECT_EQ(system->get_particle_pool(), nullptr);
  EXPECT_EQ(system->get_num_emitters(), 0);
  EXPECT_EQ(system->get_num_actions(), 0);
  EXPECT_EQ(system->get_particle_lifetime(), 1.0f);
}

TEST(ParticleSystem, DoesNothingWithoutAPool) {
  RecordingRenderer renderer;
  const Held<ParticleSystem> system;
  ParticleEmitter* emitter = system->create_emitter();
  system->create_action();
  EXPECT_TRUE(system->update(1.0f, nullptr));
  EXPECT_EQ(system->process_particle_emitters(1.0f), 0);
  EXPECT_EQ(system->spawn_particles_emitter(*emitter, 1.0f), 0);
  system->process_particle_actions(1.0f);
  system->update_particles_lifetime(1.0f);
  EXPECT_EQ(system->get_num_alive_particles(), 0u);
  system->vertex_pool_prepare_render();
  system->vertex_pool_render(&renderer);
  system->render(&renderer, nullptr);
  EXPECT_THAT(renderer.calls(), ElementsAre());
}

TEST(ParticleSystem, SecondInitializeChangesNothing) {
  const Held<ParticleSystem> system;
  system->set_particle_lifetime(3.0f);
  EXPECT_TRUE(system->initialize(10));
  ParticlePool* pool = system->get_particle_pool();
  ASSERT_NE(pool, nullptr);
  EXPECT_EQ(pool->particle_lifetime, 3.0f);
  EXPECT_TRUE(system->initialize(20));
  EXPECT_EQ(system->get_particle_pool(), pool);
  EXPECT_EQ(pool->num_particles, 10u);
}

TEST(ParticleSystem, LifetimeGoesToThePoolToo) {
  const Held<ParticleSystem> system;
  system->initialize(1);
  system->set_particle_lifetime(5.0f);
  EXPECT_EQ(system->get_particle_lifetime(), 5.0f);
  EXPECT_EQ(system->get_particle_pool()->particle_lifetime, 5.0f);
}

TEST(ParticleSystem, SystemWithoutSlotsRuns) {
  RecordingRenderer renderer;
  const Held<ParticleSystem> system;
  EXPECT_TRUE(system->initialize(0));
  system->create_emitter()->set_particle_rate(1e9f);
  system->create_action();
  system->update(1.0f, nullptr);
  system->render(&renderer, nullptr);
  EXPECT_EQ(system->get_num_alive_particles(), 0u);
}

TEST(ParticleSystem, TerminateEmptiesItForAnotherStart) {
  RecordingRenderer renderer;
  const Held<ParticleSystem> system;
  system->initialize(10);
  system->create_emitter();
  system->create_action();
  EXPECT_TRUE(system->terminate(&renderer));
  EXPECT_EQ(renderer.count("geometry_vbo_destroy"), 1);
  EXPECT_EQ(system->get_particle_pool(), nullptr);
  EXPECT_EQ(system->get_num_emitters(), 0);
  EXPECT_EQ(system->get_num_actions(), 0);
  EXPECT_TRUE(system->terminate(&renderer));
  EXPECT_TRUE(system->initialize(20));
  EXPECT_EQ(system->get_particle_pool()->num_particles, 20u);
}

TEST(ParticleSystem, TerminateReleasesChildrenOfEmittersAndActions) {
  int destroyed = 0;
  const Held<ParticleSystem> system;
  system->create_emitter()->add_child(new Watched<Object>(&destroyed));
  system->create_action()->add_child(new Watched<Object>(&destroyed));
  auto* held = new Watched<Object>(&destroyed);
  held->add_ref();
  system->get_emitter_by_index(0)->add_child(held);
  system->terminate(nullptr);
  EXPECT_EQ(destroyed, 2);
  EXPECT_EQ(held->get_ref(), 1);
  held->release(nullptr, nullptr);
  EXPECT_EQ(destroyed, 3);
}

TEST(ParticleSystem, TerminateEndsWhoseCountFallsBelowOne) {
  int destroyed = 0;
  const Held<ParticleSystem> system;
  auto* owned = new Watched<ParticleEmitter>(&destroyed);
  auto* held = new Watched<ParticleEmitter>(&destroyed);
  held->add_ref();
  held->add_ref();
  EXPECT_TRUE(system->add_emitter(owned));
  EXPECT_TRUE(system->add_emitter(held));
  system->terminate(nullptr);
  EXPECT_EQ(destroyed, 1);
  EXPECT_EQ(held->get_ref(), 1);
  held->release(nullptr, nullptr);
  EXPECT_EQ(destroyed, 2);
}

TEST(ParticleSystem, DestructorTerminates) {
  int destroyed = 0;
  auto* system = new ParticleSystem;
  system->initialize(10);
  system->add_emitter(new Watched<ParticleEmitter>(&destroyed));
  system->add_action(new Watched<ParticleAction>(&destroyed));
  delete system;
  EXPECT_EQ(destroyed, 2);
}

TEST(ParticleSystem, CleanupTerminatesAndLetsGoOfMaterialsAndProgram) {
  RecordingRenderer renderer;
  const Held<GpuProgram> program;
  const Held<ParticleSystem> system;
  system->initialize(10);
  system->create_emitter();
  system->add_material(new Material, nullptr);
  system->set_gpu_program(program, nullptr);
  EXPECT_TRUE(system->_cleanup(&renderer));
  EXPECT_EQ(renderer.count("geometry_vbo_destroy"), 1);
  EXPECT_EQ(system->get_particle_pool(), nullptr);
  EXPECT_EQ(system->get_num_emitters(), 0);
  EXPECT_EQ(system->get_num_materials(), 0u);
  EXPECT_EQ(program->get_ref(), 1);
}

// ---- emitters and actions ----

TEST(ParticleSystem, EmittersAreFoundByIdAndPlace) {
  const Held<ParticleSystem> system;
  ParticleEmitter* a = system->create_emitter();
  ParticleEmitter* b = system->create_emitter();
  EXPECT_EQ(system->get_num_emitters(), 2);
  EXPECT_EQ(system->get_emitter_by_index(0), a);
  EXPECT_EQ(system->get_emitter_by_index(1), b);
  EXPECT_EQ(system->get_emitter_by_index(2), nullptr);
  EXPECT_EQ(system->get_emitter_by_index(-1), nullptr);
  EXPECT_EQ(system->get_emitter_by_index(INT_MIN), nullptr);
  EXPECT_EQ(system->get_emitter(b->get_id()), b);
  EXPECT_EQ(system->get_emitter(system->get_id()), nullptr);
}

TEST(ParticleSystem, ActionsAreFoundByIdAndPlace) {
  const Held<ParticleSystem> system;
  ParticleAction* a = system->create_action();
  ParticleAction* b = system->create_action();
  EXPECT_EQ(system->get_num_actions(), 2);
  EXPECT_EQ(system->get_action_by_index(0), a);
  EXPECT_EQ(system->get_action_by_index(1), b);
  EXPECT_EQ(system->get_action_by_index(2), nullptr);
  EXPECT_EQ(system->get_action_by_index(-1), nullptr);
  EXPECT_EQ(system->get_action(a->get_id()), a);
  EXPECT_EQ(system->get_action(system->get_id()), nullptr);
}

TEST(ParticleSystem, KillKeepsTheOrderOfTheOthers) {
  const Held<ParticleSystem> system;
  ParticleEmitter* first = system->create_emitter();
  const int middle = system->create_emitter()->get_id();
  ParticleEmitter* last = system->create_emitter();
  EXPECT_TRUE(system->kill_emitter(nullptr, middle));
  EXPECT_EQ(system->get_num_emitters(), 2);
  EXPECT_EQ(system->get_emitter_by_index(0), first);
  EXPECT_EQ(system->get_emitter_by_index(1), last);
  EXPECT_FALSE(system->kill_emitter(nullptr, middle));
}

TEST(ParticleSystem, KillOfAnUnknownIdKeepsTheList) {
  const Held<ParticleSystem> system;
  ParticleAction* action = system->create_action();
  EXPECT_FALSE(system->kill_action(nullptr, system->get_id()));
  EXPECT_EQ(system->get_num_actions(), 1);
  EXPECT_TRUE(system->kill_action(nullptr, action->get_id()));
  EXPECT_EQ(system->get_num_actions(), 0);
  EXPECT_FALSE(system->kill_emitter(nullptr, 0));
}

TEST(ParticleSystem, WhatAHostEndsLeavesTheList) {
  const Held<ParticleSystem> system;
  system->initialize(10);
  system->create_emitter()->kill(nullptr, nullptr);
  system->create_action()->kill(nullptr, nullptr);
  EXPECT_EQ(system->get_num_emitters(), 0);
  EXPECT_EQ(system->get_num_actions(), 0);
  system->update(1.0f, nullptr);
}

TEST(ParticleSystem, NullDoublesAndRingsAreNotAdded) {
  const Held<ParticleSystem> system;
  EXPECT_FALSE(system->add_emitter(nullptr));
  EXPECT_FALSE(system->add_action(nullptr));
  auto* emitter = new ParticleEmitter;
  EXPECT_TRUE(system->add_emitter(emitter));
  EXPECT_FALSE(system->add_emitter(emitter));
  EXPECT_FALSE(emitter->add_child(system)) << "it would be released by its own end";
  const Held<ParticleAction> above;
  above->add_child(system);
  EXPECT_FALSE(system->add_action(above));
  EXPECT_EQ(system->get_num_actions(), 0);
  system->add_ref();
  above->remove_child(system);
  system->remove_ref();
}

}  // namespace
}  // namespace orv
