// Products, inverse and rotation over arrays, beside GLM.
#include <benchmark/benchmark.h>
#include <orv/math/mat4.h>
#include <orv/math/quat.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <glm/glm.hpp>
#include <glm/gtc/quaternion.hpp>
#include <glm/gtc/type_ptr.hpp>
#include <memory>
#include <random>
#include <string>

namespace {

constexpr std::size_t COUNT = 256;  // stays in the first-level cache

// Arrays of one side, known by their addresses alone, as most arrays are. They lie alike for both
// sides, and results half a page away from arguments: a processor may take a load for one of what
// was stored just before when the addresses differ by whole pages.
template <class Matrix, class Vector, class Turn>
struct Side {
  struct alignas(4096) Memory {
    Matrix matrices[COUNT];
    Vector vectors[COUNT];
    Turn turns[COUNT];
    char gap[2048];
    Matrix products[COUNT];
    Vector moved[COUNT];
  };

  std::unique_ptr<Memory> memory = std::make_unique<Memory>();
  Matrix* matrices = memory->matrices;
  Vector* vectors = memory->vectors;
  Turn* turns = memory->turns;
  Matrix* products = memory->products;
  Vector* moved = memory->moved;
};

// The same random numbers for both sides.
struct Work {
  Side<orv::mat4, orv::vec4, orv::quat> ours;
  Side<glm::mat4, glm::vec4, glm::quat> theirs;

  Work() {
    std::mt19937 generator(7);
    std::uniform_real_distribution<float> number(-2.0f, 2.0f);
    for (std::size_t i = 0; i < COUNT; ++i) {
      float m[16];
      for (float& element : m) element = number(generator);
      ours.matrices[i] = orv::mat4(m);
      theirs.matrices[i] = glm::make_mat4(m);
      ours.vectors[i] = orv::vec4(m[0], m[1], m[2], m[3]);
      theirs.vectors[i] = glm::vec4(m[0], m[1], m[2], m[3]);
      orv::quat turn(m[4], m[5], m[6], m[7]);
      turn.normalize();
      ours.turns[i] = turn;
      theirs.turns[i] = glm::quat(turn.w, turn.x, turn.y, turn.z);
    }
  }
};

Work& work() {
  static Work instance;
  return instance;
}

void count_items(benchmark::State& state) {
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) *
                          static_cast<std::int64_t>(COUNT));
}

// Runs `one(i)` over the whole array and keeps `result` from being optimised away.
template <class One, class Result>
void over_array(benchmark::State& state, Result* result, One one) {
  for (auto _ : state) {
    for (std::size_t i = 0; i < COUNT; ++i) one(i);
    benchmark::DoNotOptimize(result);
    benchmark::ClobberMemory();
  }
  count_items(state);
}

template <class OneSide>
void multiply(benchmark::State& state, OneSide& s) {
  over_array(state, s.products,
             [&](std::size_t i) { s.products[i] = s.matrices[i] * s.matrices[COUNT - 1 - i]; });
}

template <class OneSide>
void transform(benchmark::State& state, OneSide& s) {
  over_array(state, s.moved, [&](std::size_t i) { s.moved[i] = s.matrices[0] * s.vectors[i]; });
}

template <class OneSide>
void rotate(benchmark::State& state, OneSide& s) {
  over_array(state, s.moved, [&](std::size_t i) { s.moved[i] = s.turns[i] * s.vectors[i]; });
}

void invert_ours(benchmark::State& state) {
  auto& s = work().ours;
  over_array(state, s.products, [&](std::size_t i) {
    s.products[i] = s.matrices[i];
    s.products[i].inverse();
  });
}

void invert_theirs(benchmark::State& state) {
  auto& s = work().theirs;
  over_array(state, s.products,
             [&](std::size_t i) { s.products[i] = glm::inverse(s.matrices[i]); });
}

// ---- both sides must agree ----------------------------------------------------------------------

void expect_equal(const char* what, const float* ours, const float* theirs, int count) {
  for (int i = 0; i < count; ++i) {
    const float limit = 1e-3f * std::fmax(1.0f, std::fabs(theirs[i]));
    if (!(std::fabs(ours[i] - theirs[i]) <= limit)) {
      std::fprintf(stderr, "%s differs: %g, not %g\n", what, static_cast<double>(ours[i]),
                   static_cast<double>(theirs[i]));
      std::exit(1);
    }
  }
}

void check_answers() {
  const auto& ours = work().ours;
  const auto& theirs = work().theirs;
  for (std::size_t i = 0; i < COUNT; ++i) {
    const orv::mat4 product = ours.matrices[i] * ours.matrices[0];
    expect_equal("product", product.m, glm::value_ptr(theirs.matrices[i] * theirs.matrices[0]), 16);
    const orv::vec4 moved = ours.matrices[i] * ours.vectors[i];
    expect_equal("transform", &moved.x, glm::value_ptr(theirs.matrices[i] * theirs.vectors[i]), 4);
    orv::mat4 inverse = ours.matrices[i];
    inverse.inverse();
    if (std::fabs(glm::determinant(theirs.matrices[i])) > 0.5f) {
      expect_equal("inverse", inverse.m, glm::value_ptr(glm::inverse(theirs.matrices[i])), 16);
    }
    const orv::vec4 turned = ours.turns[i] * ours.vectors[i];
    expect_equal("rotation", &turned.x, glm::value_ptr(theirs.turns[i] * theirs.vectors[i]), 3);
  }
}

}  // namespace

int main(int argc, char** argv) {
  check_answers();
  const std::string flags = std::string(" ") + BENCH_FLAGS;
  const auto add = [&](const char* road, auto ours, auto theirs) {
    benchmark::RegisterBenchmark((road + flags + "/ours").c_str(), ours);
    benchmark::RegisterBenchmark((road + flags + "/GLM").c_str(), theirs);
  };
  const auto add_alike = [&](const char* road, auto run) {
    add(
        road, [=](benchmark::State& state) { run(state, work().ours); },
        [=](benchmark::State& state) { run(state, work().theirs); });
  };
  add_alike("mat4 * mat4", [](benchmark::State& state, auto& side) { multiply(state, side); });
  add_alike("mat4 * vec4", [](benchmark::State& state, auto& side) { transform(state, side); });
  add("mat4 inverse", invert_ours, invert_theirs);
  add_alike("quat rotation", [](benchmark::State& state, auto& side) { rotate(state, side); });
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
