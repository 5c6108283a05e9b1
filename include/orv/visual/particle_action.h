/// @file
/// What happens to particles.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/math/vec3.h>
#include <orv/scene/object.h>

namespace orv {

/// What an action does.
enum PARTICLE_ACTION_TYPE : int {
  PARTICLE_ACTION_GRAVITY = 0,  ///< moves particles under a constant acceleration
  PARTICLE_ACTION_SIZE = 1,     ///< sets the size from a table along a particle's life
};

struct ParticleActionData;

/// Changes the living particles of a pool in each frame. Made by ParticleSystem::create_action, or
/// derived by a host, whose action is taken by ParticleSystem::add_action.
class ORV_API ParticleAction : public Object {
 public:
  /// Gravity of 9.81 units per second squared, downwards.
  ParticleAction();
  ~ParticleAction() override;

  /// For derived classes; does nothing and is called by nobody.
  virtual void update_particle(ParticlePool& pool, unsigned int index, float dt);
  /// Acts on all living particles; types other than those named do nothing.
  ///
  /// Gravity changes the velocity, then moves the particle by the new velocity. Particles move by
  /// this action alone: for free motion take one with zero gravity.
  ///
  /// Size goes linearly through the table, from its last entry at birth to its first one at death;
  /// an empty table does nothing, and a single entry is the size of all. With n entries and a time
  /// left of t lifetimes the place in the table is t * (n - 1). From n on, and where that is no
  /// number, the size is 100; between n - 1 and n, for particles that are older than the lifetime
  /// in force, it is the last entry.
  virtual void update_particle_pool(ParticlePool& pool, float dt);

  /// @{
  /// Gravity at first.
  void set_action_type(PARTICLE_ACTION_TYPE type);
  PARTICLE_ACTION_TYPE get_action_type() const;
  /// @}

  /// @{
  /// Acceleration in units per second squared, (0, -9.81, 0) at first.
  void set_gravity(const vec3& gravity);
  void set_gravity(float x, float y, float z);
  vec3 get_gravity() const;
  /// @}

  /// Appends an entry to the table of sizes. Entries past 2^24 are left out.
  void add_size(float size);
  /// Entries of the table.
  unsigned int get_num_sizes() const;
  /// 0 past the end.
  float get_size(unsigned int index) const;

 private:
  friend class ParticleSystem;

  // update_particle_pool for the slots `begin`, the first of a block, to `end` - 1.
  void update_slots(ParticlePool& pool, unsigned int begin, unsigned int end, float dt) const;

  ParticleActionData* data_;
};

}  // namespace orv
