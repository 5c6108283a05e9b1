/// @file
/// Particles in the scene tree.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/scene/object.h>

namespace orv {

struct ParticleSystemData;

/// A pool of particles, the emitters that fill it and the actions that move them.
///
/// Everything is computed by the processor, in `_update`; `_render` hands the living particles to
/// a VertexPool, which draws them as points with the current program: place in x, y, z, size in w,
/// and white with an alpha that falls from 1 at birth to 0 at death. The program must not take the
/// size for a part of the place: it draws at (x, y, z, 1). The points have a transform of their
/// own, so that moving the system moves nothing; move the emitters.
///
/// Emitters, actions and setters work at all times. What concerns particles needs `initialize`
/// first, and without it does nothing, with 0 as its result.
class ORV_API ParticleSystem : public Object {
 public:
  /// Without particles, emitters and actions; a lifetime of 1 second.
  ParticleSystem();
  /// `terminate` without a renderer.
  ~ParticleSystem() override;

  /// `terminate`, then lets go of the materials and the program. True.
  bool _cleanup(Renderer* renderer) override;
  /// One frame: emitters, actions, ageing. True.
  bool _update(float dt) override;
  /// vertex_pool_prepare_render and vertex_pool_render.
  void _render(Renderer* renderer) override;
  /// Also for the drawn points.
  void set_opengl_2_3_rendering_states(bool legacy, Node* node) override;

  // ---- life ----

  /// Makes a pool of `max_particles` slots, unless there is one already. Always true; see
  /// ParticlePool::alloc for more than fit in memory.
  bool initialize(unsigned int max_particles);
  /// Releases the emitters, the actions and their children, and frees the pool. Afterwards it can
  /// be initialised again. True.
  bool terminate(Renderer* renderer);

  // ---- emitters and actions ----

  /// @{
  /// A new one with the defaults, at the end of the list; owned by the system.
  ParticleEmitter* create_emitter();
  ParticleAction* create_action();
  /// @}

  /// @{
  /// Appends one that the host made with `new`, which the system owns from now on. False for null,
  /// for one that is in the list and for one that the system stands below.
  bool add_emitter(ParticleEmitter* emitter);
  bool add_action(ParticleAction* action);
  /// @}

  /// @{
  /// By the identifier of the node; null when there is none.
  ParticleEmitter* get_emitter(int id) const;
  ParticleAction* get_action(int id) const;
  /// @}

  /// @{
  /// By the place in the list; null past either end.
  ParticleEmitter* get_emitter_by_index(int index) const;
  ParticleAction* get_action_by_index(int index) const;
  /// @}

  int get_num_emitters() const;  ///< length of the list
  int get_num_actions() const;   ///< length of the list

  /// @{
  /// Takes one out of the list and releases it. False when there is none of this identifier.
  bool kill_emitter(Renderer* renderer, int id);
  bool kill_action(Renderer* renderer, int id);
  /// @}

  // ---- particles ----

  /// Particles whose time left is above 0.
  unsigned int get_num_alive_particles() const;
  /// Seconds that new particles live, 1 at first. Those alive keep the time they have left.
  void set_particle_lifetime(float seconds);
  float get_particle_lifetime() const;  ///< see set_particle_lifetime
  /// Null before `initialize`. Borrowed.
  ParticlePool* get_particle_pool() const;

  // ---- steps of a frame ----

  /// Starts a frame: runs all emitters in the order of their list. Returns the particles spawned.
  int process_particle_emitters(float dt);
  /// Runs all actions in the order of their list.
  void process_particle_actions(float dt);
  /// Takes `dt` off the time left of every slot, the dead ones too.
  void update_particles_lifetime(float dt);
  /// Fills the lowest free slots that no emitter has looked at in this frame with what the emitter
  /// has due, and returns how many; what finds no slot is lost.
  int spawn_particles_emitter(ParticleEmitter& emitter, float dt);
  /// Packs the living particles, in the order of their slots, at the front of the drawn points and
  /// sets the drawn range to them.
  void vertex_pool_prepare_render();
  /// Draws the points as they were packed last. Nothing for a null renderer.
  void vertex_pool_render(Renderer* renderer);

 private:
  bool has_plain_actions_only() const;
  void update_by_tiles(float dt);

  ParticleSystemData* data_;
  ParticlePool* pool_;
};

}  // namespace orv
