#include "particles_peer.h"

#include <cmath>

namespace bench {

HandWrittenParticles::HandWrittenParticles(std::size_t count, const ParticleSettings& settings)
    : positions(count),
      velocities(count),
      lifetimes(count),
      sizes(count),
      spawned_a(count),
      spawned_b(count),
      drawn_positions(count),
      drawn_colors(count),
      lifetime_(settings.lifetime),
      gravity_(settings.gravity),
      rate_(settings.rate) {
  for (std::size_t i = 0; i < settings.sizes.size(); ++i) {
    const float size = settings.sizes[i];
    const float next = i + 1 < settings.sizes.size() ? settings.sizes[i + 1] : size;
    table_.push_back({size, next - size});
  }
}

std::size_t HandWrittenParticles::count_due(float dt) {
  const float due = rate_ * dt;
  const float whole = std::floor(due);
  carried_ += due - whole;
  const float extra = std::floor(carried_);
  carried_ -= extra;
  return static_cast<std::size_t>(whole + extra);
}

// The box, the range of directions and the speed that an emitter starts with.
inline void HandWrittenParticles::spawn(std::size_t i) {
  constexpr float UNIT = 1.0f / 32768.0f, TWO = 2.0f / 32768.0f;
  Float3& p = positions[i];
  p.x = draw(UNIT, -0.5f);
  p.y = draw(UNIT, -0.5f);
  p.z = draw(UNIT, -0.5f);
  const float x = draw(TWO, -1.0f), y = draw(TWO, -1.0f), z = draw(TWO, -1.0f);
  const float speed = 2.0f + draw(TWO, -1.0f);
  velocities[i] = {x * speed, y * speed, z * speed};
  spawned_a[num_spawned_] = static_cast<unsigned int>(i);
  spawned_b[num_spawned_] = static_cast<unsigned int>(i);
  ++num_spawned_;
}

inline float HandWrittenParticles::size_of(float left) const {
  const float place = left / lifetime_ * static_cast<float>(table_.size() - 1);
  if (!(place >= 0.0f && place < static_cast<float>(table_.size()))) return 100.0f;
  const int entry = static_cast<int>(place);
  const SizeStep& step = table_[static_cast<std::size_t>(entry)];
  return step.base + step.rise * (place - static_cast<float>(entry));
}

void HandWrittenParticles::fused_frame(float dt) {
  std::size_t due = count_due(dt);
  num_spawned_ = 0;
  const float pull = gravity_ * dt, life = lifetime_;
  const std::size_t count = lifetimes.size();
  Float3* const __restrict place = positions.data();
  Float3* const __restrict velocity = velocities.data();
  float* const __restrict time_left = lifetimes.data();
  float* const __restrict size = sizes.data();
  Float4* __restrict drawn = drawn_positions.data();
  Float4* __restrict color = drawn_colors.data();
  for (std::size_t i = 0; i < count; ++i) {
    float left = time_left[i];
    if (left <= 0.0f && due > 0) {
      spawn(i);
      left = life;
      --due;
    }
    if (!(left > 0.0f)) {
      time_left[i] = left - dt;
      continue;
    }
    Float3 v = velocity[i];
    v.y += pull;
    velocity[i].y = v.y;
    Float3 p = place[i];
    p.x += v.x * dt;
    p.y += v.y * dt;
    p.z += v.z * dt;
    place[i] = p;
    const float s = size_of(left);
    size[i] = s;
    left -= dt;
    time_left[i] = left;
    if (!(left > 0.0f)) continue;
    *drawn++ = {p.x, p.y, p.z, s};
    *color++ = {1.0f, 1.0f, 1.0f, 1.0f - (life - left) / life};
  }
  num_drawn = static_cast<std::size_t>(drawn - drawn_positions.data());
}

void HandWrittenParticles::plain_frame(float dt) {
  std::size_t due = count_due(dt);
  num_spawned_ = 0;
  const std::size_t count = lifetimes.size();
  for (std::size_t i = 0; i < count && due > 0; ++i) {
    if (lifetimes[i] > 0.0f) continue;
    spawn(i);
    lifetimes[i] = lifetime_;
    --due;
  }
  const float pull = gravity_ * dt;
  for (std::size_t i = 0; i < count; ++i) {
    if (!(lifetimes[i] > 0.0f)) continue;
    Float3& v = velocities[i];
    v.y += pull;
    Float3& p = positions[i];
    p.x += v.x * dt;
    p.y += v.y * dt;
    p.z += v.z * dt;
  }
  for (std::size_t i = 0; i < count; ++i) {
    if (lifetimes[i] > 0.0f) sizes[i] = size_of(lifetimes[i]);
  }
  for (std::size_t i = 0; i < count; ++i) lifetimes[i] -= dt;
  std::size_t drawn = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const float left = lifetimes[i];
    if (!(left > 0.0f)) continue;
    const Float3& p = positions[i];
    drawn_positions[drawn] = {p.x, p.y, p.z, sizes[i]};
    drawn_colors[drawn] = {1.0f, 1.0f, 1.0f, 1.0f - (lifetime_ - left) / lifetime_};
    ++drawn;
  }
  num_drawn = drawn;
}

}  // namespace bench
