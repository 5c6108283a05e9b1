// Frames of a million particles: emitted, moved, sized, aged and packed for drawing, beside loops
// written by hand for just this work.
#include <benchmark/benchmark.h>
#include <orv/core/core.h>
#include <orv/geometry/vertex_pool.h>
#include <orv/math/math.h>
#include <orv/math/vec3.h>
#include <orv/math/vec4.h>
#include <orv/visual/particle_action.h>
#include <orv/visual/particle_emitter.h>
#include <orv/visual/particle_pool.h>
#include <orv/visual/particle_system.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "particles_peer.h"

namespace {

using orv::vec3;

constexpr unsigned int COUNT = 1000000;
constexpr float DT = 1.0f / 60.0f;
/// Frames between two restarts: the state of a road would wear off with time.
constexpr int FRAMES = 16;

enum State { ALL_ALIVE, HALF_DEAD, ALL_DEAD };

struct Road {
  const char* name;
  State state;
  float rate;
};

// Half of the slots are dead in no order, and as many particles are born as die.
constexpr Road ROADS[] = {{"1 M particles, all alive", ALL_ALIVE, 50000.0f},
                          {"1 M particles, half dead", HALF_DEAD, 50000.0f},
                          {"1 M particles, all born", ALL_DEAD, 1e9f}};

/// Where a road starts.
struct Start {
  std::vector<vec3> positions, velocities;
  std::vector<float> lifetimes;

  explicit Start(State state) {
    std::mt19937 generator(5);
    std::uniform_real_distribution<float> number(-10.0f, 10.0f), left(1.0f, 10.0f);
    for (unsigned int i = 0; i < COUNT; ++i) {
      positions.emplace_back(number(generator), number(generator), number(generator));
      velocities.emplace_back(number(generator), number(generator), number(generator));
      const bool alive = state == ALL_ALIVE || (state == HALF_DEAD && generator() % 2 == 0);
      lifetimes.push_back(alive ? left(generator) - (state == HALF_DEAD ? 1.0f : 0.0f) : -1.0f);
    }
  }

  template <class Vector3>
  void restore(Vector3* to_positions, Vector3* to_velocities, float* to_lifetimes) const {
    std::memcpy(static_cast<void*>(to_positions), positions.data(), COUNT * sizeof(vec3));
    std::memcpy(static_cast<void*>(to_velocities), velocities.data(), COUNT * sizeof(vec3));
    std::memcpy(to_lifetimes, lifetimes.data(), COUNT * sizeof(float));
  }
};

/// Ours: what a host would write.
class Ours {
 public:
  explicit Ours(const bench::ParticleSettings& settings) : system_(new orv::ParticleSystem) {
    system_->add_ref();
    system_->initialize(COUNT);
    system_->set_particle_lifetime(settings.lifetime);
    system_->create_emitter()->set_particle_rate(settings.rate);
    system_->create_action()->set_gravity(0.0f, settings.gravity, 0.0f);
    orv::ParticleAction* size = system_->create_action();
    size->set_action_type(orv::PARTICLE_ACTION_SIZE);
    for (const float entry : settings.sizes) size->add_size(entry);
  }
  ~Ours() { system_->release(nullptr, nullptr); }
  Ours(const Ours&) = delete;
  Ours& operator=(const Ours&) = delete;

  void restart(const Start& start) {
    orv::ParticlePool& p = pool();
    start.restore(p.positions, p.velocities, p.lifetimes);
  }
  void frame() {
    system_->update(DT, nullptr);
    system_->vertex_pool_prepare_render();
  }
  orv::ParticlePool& pool() { return *system_->get_particle_pool(); }

 private:
  orv::ParticleSystem* system_;
};

bench::ParticleSettings settings_of(const Road& road) {
  bench::ParticleSettings settings;
  settings.rate = road.rate;
  return settings;
}

/// Theirs: one of the two loops.
class Theirs {
 public:
  using Frame = void (bench::HandWrittenParticles::*)(float);

  Theirs(const bench::ParticleSettings& settings, Frame run)
      : particles_(COUNT, settings), frame_(run) {
    std::fill(particles_.sizes.begin(), particles_.sizes.end(), 1.0f);
  }
  void restart(const Start& start) {
    start.restore(particles_.positions.data(), particles_.velocities.data(),
                  particles_.lifetimes.data());
  }
  void frame() { (particles_.*frame_)(DT); }
  bench::HandWrittenParticles& particles() { return particles_; }

 private:
  bench::HandWrittenParticles particles_;
  Frame frame_;
};

template <class Side>
void run_frames(benchmark::State& state, Side& side, const Road& road) {
  const Start start(road.state);
  // A million are born in one frame only.
  const int frames = road.state == ALL_DEAD ? 1 : FRAMES;
  int left = 0;
  for (auto _ : state) {
    if (left == 0) {
      state.PauseTiming();
      side.restart(start);
      left = frames;
      state.ResumeTiming();
    }
    side.frame();
    benchmark::ClobberMemory();
    --left;
  }
}

void ours(benchmark::State& state, const Road& road) {
  Ours side(settings_of(road));
  run_frames(state, side, road);
}

template <Theirs::Frame FRAME>
void theirs(benchmark::State& state, const Road& road) {
  Theirs side(settings_of(road), FRAME);
  run_frames(state, side, road);
}

constexpr Theirs::Frame FUSED = &bench::HandWrittenParticles::fused_frame;
constexpr Theirs::Frame PLAIN = &bench::HandWrittenParticles::plain_frame;

// ---- both sides must agree ----------------------------------------------------------------------

void expect_equal(const char* what, const void* ours, const void* theirs, std::size_t bytes) {
  if (std::memcmp(ours, theirs, bytes) == 0) return;
  std::fprintf(stderr, "%s differ\n", what);
  std::exit(1);
}

void check_answers(const Road& road, Theirs::Frame frame) {
  const Start start(road.state);
  Ours mine(settings_of(road));
  Theirs other(settings_of(road), frame);
  mine.restart(start);
  other.restart(start);
  orv::Math::srnd(1);
  for (int i = 0; i < FRAMES; ++i) {
    mine.frame();
    other.frame();
  }
  const orv::ParticlePool& pool = mine.pool();
  const bench::HandWrittenParticles& hand = other.particles();
  expect_equal("positions", pool.positions, hand.positions.data(), COUNT * sizeof(vec3));
  expect_equal("velocities", pool.velocities, hand.velocities.data(), COUNT * sizeof(vec3));
  expect_equal("lifetimes", pool.lifetimes, hand.lifetimes.data(), COUNT * sizeof(float));
  expect_equal("sizes", pool.sizes, hand.sizes.data(), COUNT * sizeof(float));
  orv::VertexPoolData& drawn = *pool.vertex_pool->get_pool_data();
  if (drawn.get_draw_count() != static_cast<int>(hand.num_drawn) || hand.num_drawn == 0) {
    std::fprintf(stderr, "%d particles drawn, not %zu\n", drawn.get_draw_count(), hand.num_drawn);
    std::exit(1);
  }
  const std::size_t bytes = hand.num_drawn * sizeof(orv::vec4);
  expect_equal("drawn positions", drawn.get_position_ptr(), hand.drawn_positions.data(), bytes);
  expect_equal("drawn colours", drawn.get_color_ptr(), hand.drawn_colors.data(), bytes);
}

void add(const Road& road, const char* side, void (*run)(benchmark::State&, const Road&)) {
  const std::string name = std::string(road.name) + "/" + side;
  benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
    run(state, road);
  })->Unit(benchmark::kMillisecond);
}

}  // namespace

int main(int argc, char** argv) {
  orv::core::start(nullptr, false, nullptr, nullptr);
  for (const Road& road : ROADS) {
    check_answers(road, FUSED);
    check_answers(road, PLAIN);
    add(road, "ours", ours);
    add(road, "fused loop", theirs<FUSED>);
    add(road, "plain loops", theirs<PLAIN>);
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  orv::core::stop(nullptr);
  return 0;
}
