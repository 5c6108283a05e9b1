/// @file
/// Source of particles.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/scene/object.h>

namespace orv {

/// How an emitter places new particles.
enum PARTICLE_EMITTER_TYPE : int {
  PARTICLE_EMITTER_POINT = 0,  ///< in a box around the emitter's position
};

struct ParticleEmitterData;

/// Fills free slots of a particle pool at a steady rate. Made by ParticleSystem::create_emitter, or
/// derived by a host, whose emitter is taken by ParticleSystem::add_emitter.
class ORV_API ParticleEmitter : public Object {
 public:
  /// 50 particles a second from a cube of 1 unit, in all directions, at a speed of 1 to 3.
  ParticleEmitter();
  ~ParticleEmitter() override;

  /// Places the particle of slot `index`; its size stays. A point emitter draws x, y, z of the
  /// position, x, y, z of the direction and the speed, in this order, each by Math::rnd. The
  /// position is relative to the emitter's local one; the velocity is the direction, which isn't
  /// normalised, times the speed. Other types, and slots out of range, change nothing.
  virtual void spawn_particle(ParticlePool& pool, unsigned int index);
  /// Particles due in the next `dt` seconds, 0 or less for none. Fractions add up from call to
  /// call. A rate that is no finite number leaves that sum alone.
  virtual int get_num_particles_to_spawn(float dt);

  /// @{
  /// Types other than those named make particles that stay in their slots' places.
  void set_emitter_type(PARTICLE_EMITTER_TYPE type);
  PARTICLE_EMITTER_TYPE get_emitter_type() const;
  /// @}

  /// @{
  /// Particles a second, 50 at first.
  void set_particle_rate(float rate);
  float get_particle_rate() const;
  /// @}

  /// @{
  /// Factor of the direction, 2 at first.
  void set_particle_speed(float speed);
  float get_particle_speed() const;
  /// @}

  /// @{
  /// Largest random change of the speed, up or down; 1 at first.
  void set_particle_speed_variance(float variance);
  float get_particle_speed_variance() const;
  /// @}

  /// @{
  /// Box of the new particles, relative to the emitter; -0.5 to 0.5 on each axis at first.
  void set_spawn_positions(const vec3& min, const vec3& max);
  const vec3& get_spawn_position_min() const;
  const vec3& get_spawn_position_max() const;
  /// @}

  /// @{
  /// Range of the direction, -1 to 1 on each axis at first.
  void set_spawn_directions(const vec3& min, const vec3& max);
  const vec3& get_spawn_direction_min() const;
  const vec3& get_spawn_direction_max() const;
  /// @}

 private:
  friend class ParticleSystem;

  // Fills the lowest free slots from the pool's cursor on, `count` of them at most. Gives how many.
  unsigned int fill_slots(ParticlePool& pool, unsigned int count, float lifetime);

  ParticleEmitterData* data_;
};

}  // namespace orv
