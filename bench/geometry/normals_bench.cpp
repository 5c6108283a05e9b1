// Averaged normals of vertices that lie together, beside comparing every pair, and how the time
// grows with the number of vertices.
#include <benchmark/benchmark.h>
#include <orv/core/core.h>
#include <orv/geometry/mesh.h>
#include <orv/geometry/mesh_data.h>
#include <orv/math/vec3.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

using orv::vec3;

constexpr float EPS = 1e-4f;

/// A wavy surface of triangles that share no vertices, as files are loaded: up to six corners stand
/// together, not quite in the same place, each with a normal of its own.
struct Corners {
  std::vector<vec3> positions;
  std::vector<vec3> normals;

  explicit Corners(unsigned int count) {
    const auto side = static_cast<unsigned int>(std::sqrt(count / 6.0)) + 1;
    for (unsigned int quad = 0; positions.size() < count; ++quad) {
      const unsigned int x = quad % side, y = quad / side;
      add_triangle(x, y, x, y + 1, x + 1, y);
      if (positions.size() < count) add_triangle(x + 1, y, x, y + 1, x + 1, y + 1);
    }
  }

 private:
  void add_triangle(unsigned int ax, unsigned int ay, unsigned int bx, unsigned int by,
                    unsigned int cx, unsigned int cy) {
    add_corner(ax, ay);
    add_corner(bx, by);
    add_corner(cx, cy);
  }
  void add_corner(unsigned int column, unsigned int row) {
    const float x = static_cast<float>(column) * 0.1f, y = static_cast<float>(row) * 0.1f;
    positions.emplace_back(x + shake_(generator_), y + shake_(generator_),
                           std::sin(x) * std::cos(y) + shake_(generator_));
    const float a = component_(generator_), b = component_(generator_);
    normals.push_back(vec3(a, b, component_(generator_)).normalize());
  }

  std::mt19937 generator_{11};
  std::uniform_real_distribution<float> shake_{-0.4f * EPS, 0.4f * EPS};
  std::uniform_real_distribution<float> component_{-1.0f, 1.0f};
};

/// A mesh of such corners, released at the end.
class CornerMesh {
 public:
  explicit CornerMesh(const Corners& corners) : mesh_(new orv::Mesh) {
    mesh_->add_ref();
    const auto count = static_cast<unsigned int>(corners.positions.size());
    mesh_->set_vertex_alloc_params_num_vertices(count);
    if (!mesh_->alloc_vertex_data() || !mesh_->alloc_face_data(count / 3, false)) std::exit(1);
    for (unsigned int i = 0; i < count; ++i) {
      data().set_position(i, corners.positions[i]);
      data().set_normal(i, corners.normals[i]);
    }
  }
  ~CornerMesh() { mesh_->release(nullptr, nullptr); }
  CornerMesh(const CornerMesh&) = delete;
  CornerMesh& operator=(const CornerMesh&) = delete;

  orv::MeshData& data() { return *mesh_->get_mesh_data(); }
  void average() {
    if (!mesh_->average_vertices_normal(EPS, nullptr)) std::exit(1);
  }

 private:
  orv::Mesh* mesh_;
};

bool within(float a, float b) { return a >= b - EPS && a <= b + EPS; }

/// Each vertex and the later ones that lie beside it get the average of their normals.
void average_pairs(const std::vector<vec3>& positions, std::vector<vec3>& normals) {
  std::vector<std::size_t> near;
  for (std::size_t i = 0; i < positions.size(); ++i) {
    near.clear();
    vec3 sum = normals[i];
    for (std::size_t j = i + 1; j < positions.size(); ++j) {
      const vec3& a = positions[i];
      const vec3& b = positions[j];
      if (!within(a.x, b.x) || !within(a.y, b.y) || !within(a.z, b.z)) continue;
      near.push_back(j);
      sum += normals[j];
    }
    if (near.empty()) continue;
    const float count = static_cast<float>(near.size() + 1);
    vec3 normal(sum.x / count, sum.y / count, sum.z / count);
    normal.normalize();
    normals[i] = normal;
    for (const std::size_t j : near) normals[j] = normal;
  }
}

void ours(benchmark::State& state, unsigned int count) {
  CornerMesh mesh((Corners(count)));
  for (auto _ : state) {
    mesh.average();
    benchmark::ClobberMemory();
  }
}

void every_pair(benchmark::State& state, unsigned int count) {
  Corners corners(count);
  for (auto _ : state) {
    average_pairs(corners.positions, corners.normals);
    benchmark::DoNotOptimize(corners.normals.data());
    benchmark::ClobberMemory();
  }
}

/// Ten times the work on a tenth of the vertices: what linear growth would take.
void ten_tenths(benchmark::State& state, unsigned int count) {
  CornerMesh mesh((Corners(count / 10)));
  for (auto _ : state) {
    for (int i = 0; i < 10; ++i) mesh.average();
    benchmark::ClobberMemory();
  }
}

void check_answers(unsigned int count) {
  Corners corners(count);
  CornerMesh mesh(corners);
  mesh.average();
  average_pairs(corners.positions, corners.normals);
  for (unsigned int i = 0; i < count; ++i) {
    const vec3 normal = mesh.data().get_normal(i).get_vec3();
    if (std::memcmp(&normal, &corners.normals[i], sizeof(normal)) == 0) continue;
    std::fprintf(stderr, "normal %u differs\n", i);
    std::exit(1);
  }
}

void add(const std::string& road, const char* side, void (*run)(benchmark::State&, unsigned int),
         unsigned int count) {
  benchmark::RegisterBenchmark((road + "/" + side).c_str(), run, count);
}

}  // namespace

int main(int argc, char** argv) {
  orv::core::start(nullptr, false, nullptr, nullptr);
  check_answers(999);
  check_answers(9999);
  for (const unsigned int count : {300u, 3000u}) {
    const std::string road = "welded normals, " + std::to_string(count) + " vertices";
    add(road, "ours", ours, count);
    add(road, "every pair", every_pair, count);
  }
  for (const unsigned int count : {10000u, 100000u, 1000000u}) {
    const std::string road = "welded normals, " + std::to_string(count) + " vertices";
    add(road, "ours", ours, count);
    add(road, "ten times a tenth", ten_tenths, count);
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  orv::core::stop(nullptr);
  return 0;
}
