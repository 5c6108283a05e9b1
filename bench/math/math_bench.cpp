// Products, inverse and rotation over arrays, beside GLM and Eigen.
#include <benchmark/benchmark.h>
#include <orv/math/mat4.h>
#include <orv/math/quat.h>

#include <Eigen/Geometry>
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

// Arrays of one side, known by their addresses alone, as most arrays are. They lie alike for all
// sides, and results half a page away from arguments: a processor may take a load for one of what
// was stored just before when the addresses differ by whole pages.
template <class Matrix, class Vector, class Turn, class Point>
struct Side {
  struct alignas(4096) Memory {
    Matrix matrices[COUNT];
    Vector vectors[COUNT];
    Turn turns[COUNT];
    Point points[COUNT];
    char gap[2048];
    Matrix products[COUNT];
    Vector moved[COUNT];
    Point turned[COUNT];
  };

  std::unique_ptr<Memory> memory = std::make_unique<Memory>();
  Matrix* matrices = memory->matrices;
  Vector* vectors = memory->vectors;
  Turn* turns = memory->turns;
  Point* points = memory->points;
  Matrix* products = memory->products;
  Vector* moved = memory->moved;
  Point* turned = memory->turned;
};

// The same random numbers for all sides.
struct Work {
  Side<orv::mat4, orv::vec4, orv::quat, orv::vec4> ours;
  Side<glm::mat4, glm::vec4, glm::quat, glm::vec4> glm;
  Side<Eigen::Matrix4f, Eigen::Vector4f, Eigen::Quaternionf, Eigen::Vector3f> eigen;

  Work() {
    std::mt19937 generator(7);
    std::uniform_real_distribution<float> number(-2.0f, 2.0f);
    for (std::size_t i = 0; i < COUNT; ++i) {
      float m[16];
      for (float& element : m) element = number(generator);
      ours.matrices[i] = orv::mat4(m);
      glm.matrices[i] = glm::make_mat4(m);
      eigen.matrices[i] = Eigen::Map<const Eigen::Matrix4f>(m);
      ours.vectors[i] = ours.points[i] = orv::vec4(m[0], m[1], m[2], m[3]);
      glm.vectors[i] = glm.points[i] = glm::vec4(m[0], m[1], m[2], m[3]);
      eigen.vectors[i] = Eigen::Vector4f(m[0], m[1], m[2], m[3]);
      eigen.points[i] = eigen.vectors[i].head<3>();
      orv::quat turn(m[4], m[5], m[6], m[7]);
      turn.normalize();
      ours.turns[i] = turn;
      glm.turns[i] = glm::quat(turn.w, turn.x, turn.y, turn.z);
      eigen.turns[i] = Eigen::Quaternionf(turn.w, turn.x, turn.y, turn.z);
    }
  }
};

Work& work() {
  static Work instance;
  return instance;
}

void invert(orv::mat4& result, const orv::mat4& matrix) {
  result = matrix;
  result.inverse();
}
void invert(glm::mat4& result, const glm::mat4& matrix) { result = glm::inverse(matrix); }
void invert(Eigen::Matrix4f& result, const Eigen::Matrix4f& matrix) { result = matrix.inverse(); }

// Matrices and vectors of all sides are floats in a row.
template <class Type>
const float* numbers(const Type& value) {
  return reinterpret_cast<const float*>(&value);
}

// ---- roads -------------------------------------------------------------------------------------

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
  over_array(state, s.turned, [&](std::size_t i) { s.turned[i] = s.turns[i] * s.points[i]; });
}

template <class OneSide>
void invert_all(benchmark::State& state, OneSide& s) {
  over_array(state, s.products, [&](std::size_t i) { invert(s.products[i], s.matrices[i]); });
}

// ---- the sides must agree ----------------------------------------------------------------------

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

template <class Peer>
void check_answers(Peer& theirs) {
  auto& ours = work().ours;
  for (std::size_t i = 0; i < COUNT; ++i) {
    ours.products[i] = ours.matrices[i] * ours.matrices[0];
    theirs.products[i] = theirs.matrices[i] * theirs.matrices[0];
    expect_equal("product", numbers(ours.products[i]), numbers(theirs.products[i]), 16);
    ours.moved[i] = ours.matrices[i] * ours.vectors[i];
    theirs.moved[i] = theirs.matrices[i] * theirs.vectors[i];
    expect_equal("transform", numbers(ours.moved[i]), numbers(theirs.moved[i]), 4);
    if (std::fabs(glm::determinant(work().glm.matrices[i])) > 0.5f) {
      invert(ours.products[i], ours.matrices[i]);
      invert(theirs.products[i], theirs.matrices[i]);
      expect_equal("inverse", numbers(ours.products[i]), numbers(theirs.products[i]), 16);
    }
    ours.turned[i] = ours.turns[i] * ours.points[i];
    theirs.turned[i] = theirs.turns[i] * theirs.points[i];
    expect_equal("rotation", numbers(ours.turned[i]), numbers(theirs.turned[i]), 3);
  }
}

}  // namespace

int main(int argc, char** argv) {
  check_answers(work().glm);
  check_answers(work().eigen);
  const auto add = [&](const char* name, auto run) {
    const std::string road = std::string(name) + " " + BENCH_FLAGS;
    const auto add_side = [&](const char* side_name, auto& side) {
      benchmark::RegisterBenchmark((road + side_name).c_str(),
                                   [=, &side](benchmark::State& state) { run(state, side); });
    };
    add_side("/ours", work().ours);
    add_side("/GLM", work().glm);
    add_side("/Eigen", work().eigen);
  };
  add("mat4 * mat4", [](benchmark::State& state, auto& side) { multiply(state, side); });
  add("mat4 * vec4", [](benchmark::State& state, auto& side) { transform(state, side); });
  add("mat4 inverse", [](benchmark::State& state, auto& side) { invert_all(state, side); });
  add("quat rotation", [](benchmark::State& state, auto& side) { rotate(state, side); });
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
