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
#include <random>
#include <string>
#include <vector>

namespace {

constexpr std::size_t COUNT = 256;  // stays in the first-level cache

// The same random numbers for both sides.
struct Work {
  std::vector<orv::mat4> matrices, products;
  std::vector<glm::mat4> glm_matrices, glm_products;
  std::vector<orv::vec4> vectors, moved;
  std::vector<glm::vec4> glm_vectors, glm_moved;
  std::vector<orv::quat> turns;
  std::vector<glm::quat> glm_turns;

  Work() : products(COUNT), glm_products(COUNT), moved(COUNT), glm_moved(COUNT) {
    std::mt19937 generator(7);
    std::uniform_real_distribution<float> number(-2.0f, 2.0f);
    for (std::size_t i = 0; i < COUNT; ++i) {
      float m[16];
      for (float& element : m) element = number(generator);
      matrices.emplace_back(m);
      glm_matrices.push_back(glm::make_mat4(m));
      vectors.emplace_back(m[0], m[1], m[2], m[3]);
      glm_vectors.emplace_back(m[0], m[1], m[2], m[3]);
      orv::quat turn(m[4], m[5], m[6], m[7]);
      turn.normalize();
      turns.push_back(turn);
      glm_turns.emplace_back(turn.w, turn.x, turn.y, turn.z);
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
void over_array(benchmark::State& state, Result& result, One one) {
  for (auto _ : state) {
    for (std::size_t i = 0; i < COUNT; ++i) one(i);
    benchmark::DoNotOptimize(result.data());
    benchmark::ClobberMemory();
  }
  count_items(state);
}

void product_ours(benchmark::State& state) {
  Work& w = work();
  over_array(state, w.products,
             [&](std::size_t i) { w.products[i] = w.matrices[i] * w.matrices[COUNT - 1 - i]; });
}

void product_glm(benchmark::State& state) {
  Work& w = work();
  over_array(state, w.glm_products, [&](std::size_t i) {
    w.glm_products[i] = w.glm_matrices[i] * w.glm_matrices[COUNT - 1 - i];
  });
}

void transform_ours(benchmark::State& state) {
  Work& w = work();
  over_array(state, w.moved, [&](std::size_t i) { w.moved[i] = w.matrices[0] * w.vectors[i]; });
}

void transform_glm(benchmark::State& state) {
  Work& w = work();
  over_array(state, w.glm_moved,
             [&](std::size_t i) { w.glm_moved[i] = w.glm_matrices[0] * w.glm_vectors[i]; });
}

void inverse_ours(benchmark::State& state) {
  Work& w = work();
  over_array(state, w.products, [&](std::size_t i) {
    w.products[i] = w.matrices[i];
    w.products[i].inverse();
  });
}

void inverse_glm(benchmark::State& state) {
  Work& w = work();
  over_array(state, w.glm_products,
             [&](std::size_t i) { w.glm_products[i] = glm::inverse(w.glm_matrices[i]); });
}

void rotation_ours(benchmark::State& state) {
  Work& w = work();
  over_array(state, w.moved, [&](std::size_t i) { w.moved[i] = w.turns[i] * w.vectors[i]; });
}

void rotation_glm(benchmark::State& state) {
  Work& w = work();
  over_array(state, w.glm_moved,
             [&](std::size_t i) { w.glm_moved[i] = w.glm_turns[i] * w.glm_vectors[i]; });
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
  const Work& w = work();
  for (std::size_t i = 0; i < COUNT; ++i) {
    const orv::mat4 product = w.matrices[i] * w.matrices[0];
    expect_equal("product", product.m, glm::value_ptr(w.glm_matrices[i] * w.glm_matrices[0]), 16);
    const orv::vec4 moved = w.matrices[i] * w.vectors[i];
    expect_equal("transform", &moved.x, glm::value_ptr(w.glm_matrices[i] * w.glm_vectors[i]), 4);
    orv::mat4 inverse = w.matrices[i];
    inverse.inverse();
    if (std::fabs(glm::determinant(w.glm_matrices[i])) > 0.5f) {
      expect_equal("inverse", inverse.m, glm::value_ptr(glm::inverse(w.glm_matrices[i])), 16);
    }
    const orv::vec4 turned = w.turns[i] * w.vectors[i];
    expect_equal("rotation", &turned.x, glm::value_ptr(w.glm_turns[i] * w.glm_vectors[i]), 3);
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
  add("mat4 * mat4", product_ours, product_glm);
  add("mat4 * vec4", transform_ours, transform_glm);
  add("mat4 inverse", inverse_ours, inverse_glm);
  add("quat rotation", rotation_ours, rotation_glm);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
