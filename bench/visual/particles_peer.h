// The work of a particle system, written by hand for one emitter, gravity and sizes.
#pragma once

#include <cstddef>
#include <vector>

namespace bench {

struct Float3 {
  float x, y, z;
};

struct Float4 {
  float x, y, z, w;
};

/// What both sides are told.
struct ParticleSettings {
  float lifetime = 10.0f;
  float gravity = -9.81f;
  float rate = 50000.0f;
  std::vector<float> sizes{0.0f, 4.0f, 3.0f, 1.0f, 2.0f};
};

/// Arrays of particles, stepped by loops that know all that is to be done.
class HandWrittenParticles {
 public:
  HandWrittenParticles(std::size_t count, const ParticleSettings& settings);

  /// One pass that takes each particle through the whole frame.
  void fused_frame(float dt);
  /// One pass for each step.
  void plain_frame(float dt);

  std::vector<Float3> positions, velocities;
  std::vector<float> lifetimes, sizes;
  std::vector<unsigned int> spawned_a, spawned_b;
  std::vector<Float4> drawn_positions, drawn_colors;
  std::size_t num_drawn = 0;
  unsigned int random_state = 1;

 private:
  float draw(float scale, float base) {
    random_state = random_state * 214013u + 2531011u;
    return static_cast<float>(static_cast<int>((random_state >> 16) & 0x7fffu)) * scale + base;
  }
  std::size_t count_due(float dt);
  void spawn(std::size_t i);
  float size_of(float left) const;

  struct SizeStep {
    float base, rise;
  };

  float lifetime_, gravity_, rate_;
  float carried_ = 0.0f;
  std::vector<SizeStep> table_;
  std::size_t num_spawned_ = 0;
};

}  // namespace bench
