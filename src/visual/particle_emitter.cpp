#include <orv/visual/particle_emitter.h>

#include <orv/math/math.h>
#include <orv/math/vec3.h>
#include <orv/visual/particle_pool.h>

#include <climits>
#include <cmath>
#include <typeinfo>

#include "math/random_state.h"
#include "visual/particle_passes.h"

namespace orv {

struct ParticleEmitterData {
  float accumulator = 0.0f;  // fractions of particles carried on
  PARTICLE_EMITTER_TYPE emitter_type = PARTICLE_EMITTER_POINT;
  float particle_rate = 50.0f;
  float particle_speed = 2.0f;
  float particle_speed_variance = 1.0f;
  vec3 position_min{-0.5f, -0.5f, -0.5f};
  vec3 position_max{0.5f, 0.5f, 0.5f};
  vec3 direction_min{-1.0f, -1.0f, -1.0f};
  vec3 direction_max{1.0f, 1.0f, 1.0f};
};

ParticleEmitter::ParticleEmitter() : data_(new ParticleEmitterData) {
  set_type(NODE_TYPE_PARTICLE_EMITTER);
}

ParticleEmitter::~ParticleEmitter() { delete data_; }

// ---- spawning ---------------------------------------------------------------------------------

void ParticleEmitter::spawn_particle(ParticlePool& pool, unsigned int index) {
  if (data_->emitter_type != PARTICLE_EMITTER_POINT || index >= pool.num_particles) return;
  const vec4& centre = get_position();
  const vec3 &low = data_->position_min, &high = data_->position_max;
  vec3& position = pool.positions[index];
  position.x = Math::rnd(low.x, high.x) + centre.x;
  position.y = Math::rnd(low.y, high.y) + centre.y;
  position.z = Math::rnd(low.z, high.z) + centre.z;
  const vec3 &from = data_->direction_min, &to = data_->direction_max;
  const float x = Math::rnd(from.x, to.x);
  const float y = Math::rnd(from.y, to.y);
  const float z = Math::rnd(from.z, to.z);
  const float variance = data_->particle_speed_variance;
  const float speed = data_->particle_speed + Math::rnd(-variance, variance);
  pool.velocities[index] = vec3(x, y, z) * speed;
}

namespace {

// Places particles as ParticleEmitter::spawn_particle does, with all draws of one at a time.
class PointSpawner {
 public:
  PointSpawner(const ParticleEmitterData& data, const vec4& centre)
      : position_(data.position_min, data.position_max),
        direction_(data.direction_min, data.direction_max),
        centre_(centre.get_vec3()),
        speed_(data.particle_speed),
        speed_scale_(scale(-data.particle_speed_variance, data.particle_speed_variance)),
        speed_base_(-data.particle_speed_variance),
        state_(detail::random_state()) {}
  ~PointSpawner() { detail::random_state() = state_; }
  PointSpawner(const PointSpawner&) = delete;
  PointSpawner& operator=(const PointSpawner&) = delete;

  void place(vec3& position, vec3& velocity) {
    position.x = draw<1>() * position_.scale.x + position_.base.x + centre_.x;
    position.y = draw<2>() * position_.scale.y + position_.base.y + centre_.y;
    position.z = draw<3>() * position_.scale.z + position_.base.z + centre_.z;
    const float x = draw<4>() * direction_.scale.x + direction_.base.x;
    const float y = draw<5>() * direction_.scale.y + direction_.base.y;
    const float z = draw<6>() * direction_.scale.z + direction_.base.z;
    const float speed = speed_ + (draw<7>() * speed_scale_ + speed_base_);
    velocity = vec3(x, y, z) * speed;
    state_ = step<7>()(state_);
  }

 private:
  static float scale(float from, float to) { return (to - from) * detail::RANDOM_SCALE; }

  struct Box {
    Box(const vec3& low, const vec3& high)
        : scale(PointSpawner::scale(low.x, high.x), PointSpawner::scale(low.y, high.y),
                PointSpawner::scale(low.z, high.z)),
          base(low) {}
    vec3 scale;
    vec3 base;
  };

  template <unsigned int N>
  static constexpr detail::RandomStep step() {
    constexpr detail::RandomStep STEP(N);
    return STEP;
  }
  // The draw after `N` - 1 others; the draws of a particle don't wait for one another.
  template <unsigned int N>
  float draw() const {
    return static_cast<float>(detail::random_number(step<N>()(state_)));
  }

  Box position_;
  Box direction_;
  vec3 centre_;
  float speed_;
  float speed_scale_;
  float speed_base_;
  unsigned int state_;
};

}  // namespace

unsigned int ParticleEmitter::fill_slots(ParticlePool& pool, unsigned int count, float lifetime) {
  using detail::fill_free_slots;
  if (typeid(*this) != typeid(ParticleEmitter)) {
    return fill_free_slots(pool, count, lifetime,
                           [&](unsigned int slot) { spawn_particle(pool, slot); });
  }
  if (data_->emitter_type != PARTICLE_EMITTER_POINT) {
    return fill_free_slots(pool, count, lifetime, [](unsigned int) {});
  }
  PointSpawner spawner(*data_, get_position());
  return fill_free_slots(pool, count, lifetime, [&](unsigned int slot) {
    spawner.place(pool.positions[slot], pool.velocities[slot]);
  });
}

namespace {

int to_count(float particles) {
  if (particles >= 2147483648.0f) return INT_MAX;
  if (particles < -2147483648.0f) return INT_MIN;
  return static_cast<int>(particles);
}

}  // namespace

int ParticleEmitter::get_num_particles_to_spawn(float dt) {
  const float due = data_->particle_rate * dt;
  if (std::isnan(due)) return 0;
  const float whole = std::floor(due);
  if (std::isinf(due)) return to_count(whole);
  data_->accumulator += due - whole;
  if (!(data_->accumulator >= 1.0f)) return to_count(whole);
  const float carried = std::floor(data_->accumulator);
  data_->accumulator -= carried;
  return to_count(carried + whole);
}

// ---- settings ---------------------------------------------------------------------------------

void ParticleEmitter::set_emitter_type(PARTICLE_EMITTER_TYPE type) { data_->emitter_type = type; }

PARTICLE_EMITTER_TYPE ParticleEmitter::get_emitter_type() const { return data_->emitter_type; }

void ParticleEmitter::set_particle_rate(float rate) { data_->particle_rate = rate; }

float ParticleEmitter::get_particle_rate() const { return data_->particle_rate; }

void ParticleEmitter::set_particle_speed(float speed) { data_->particle_speed = speed; }

float ParticleEmitter::get_particle_speed() const { return data_->particle_speed; }

void ParticleEmitter::set_particle_speed_variance(float variance) {
  data_->particle_speed_variance = variance;
}

float ParticleEmitter::get_particle_speed_variance() const {
  return data_->particle_speed_variance;
}

void ParticleEmitter::set_spawn_positions(const vec3& min, const vec3& max) {
  const vec3 high = max;  // `max` may be the old minimum
  data_->position_min = min;
  data_->position_max = high;
}

const vec3& ParticleEmitter::get_spawn_position_min() const { return data_->position_min; }

const vec3& ParticleEmitter::get_spawn_position_max() const { return data_->position_max; }

void ParticleEmitter::set_spawn_directions(const vec3& min, const vec3& max) {
  const vec3 high = max;
  data_->direction_min = min;
  data_->direction_max = high;
}

const vec3& ParticleEmitter::get_spawn_direction_min() const { return data_->direction_min; }

const vec3& ParticleEmitter::get_spawn_direction_max() const { return data_->direction_max; }

}  // namespace orv
