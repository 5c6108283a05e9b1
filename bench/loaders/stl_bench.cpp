// Loading a binary STL file, beside one read() and one pass of the same writes.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <orv/core/core.h>
#include <orv/loaders/loader3d_stl.h>
#include <orv/math/vec4.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "loaders/loaded_model.h"

namespace {

using orv::vec4;

constexpr std::size_t TRIANGLES = 1000000;
constexpr std::size_t VERTICES = TRIANGLES * 3;
constexpr std::size_t RECORD_SIZE = 50;

struct Free {
  void operator()(void* block) const { std::free(block); }
};
template <class T>
using Block = std::unique_ptr<T[], Free>;

template <class T>
Block<T> new_block(std::size_t count) {
  Block<T> block(static_cast<T*>(std::malloc(count * sizeof(T))));
  if (!block) std::exit(1);
  return block;
}

/// The arrays of a mesh: five of four floats for each vertex, the last one being of particles.
struct PlainMesh {
  Block<vec4> positions = new_block<vec4>(VERTICES);
  Block<vec4> texcoords = new_block<vec4>(VERTICES);
  Block<vec4> normals = new_block<vec4>(VERTICES);
  Block<vec4> colors = new_block<vec4>(VERTICES);
  Block<vec4> particles = new_block<vec4>(VERTICES);
};

Block<unsigned char> read_bytes(const std::string& path) {
  const int file = open(path.c_str(), O_RDONLY);
  struct stat status {};
  if (file < 0 || fstat(file, &status) != 0) std::exit(1);
  const auto size = static_cast<std::size_t>(status.st_size);
  Block<unsigned char> bytes = new_block<unsigned char>(size);
  if (read(file, bytes.get(), size) != status.st_size) std::exit(1);
  close(file);
  return bytes;
}

vec4 read_vector(const unsigned char* p, float w) {
  float xyz[3];
  std::memcpy(xyz, p, sizeof(xyz));
  return vec4(xyz[0], -xyz[2], xyz[1], w);
}

void write_mesh(const unsigned char* bytes, PlainMesh& mesh) {
  const unsigned char* record = bytes + 84;
  for (std::size_t v = 0; v < VERTICES; v += 3, record += RECORD_SIZE) {
    const vec4 normal = read_vector(record, 0.0f);
    for (std::size_t i = 0; i < 3; ++i) {
      mesh.positions[v + i] = read_vector(record + 12 + i * 12, 1.0f);
      mesh.normals[v + i] = normal;
      mesh.colors[v + i] = vec4(1.0f, 1.0f, 1.0f, 1.0f);
      mesh.texcoords[v + i] = mesh.particles[v + i] = vec4();
    }
  }
}

void load_ours(benchmark::State& state) {
  orv::Loader3D_STL loader;
  for (auto _ : state) {
    auto model = std::make_unique<bench::LoadedModel>();
    model->load(loader, bench::stl_file(TRIANGLES));
    state.PauseTiming();
    model.reset();
    state.ResumeTiming();
  }
}

void load_plain(benchmark::State& state) {
  const std::string path = bench::model_folder() + bench::stl_file(TRIANGLES);
  for (auto _ : state) {
    auto mesh = std::make_unique<PlainMesh>();
    write_mesh(read_bytes(path).get(), *mesh);
    benchmark::DoNotOptimize(mesh.get());
    benchmark::ClobberMemory();
    state.PauseTiming();
    mesh.reset();
    state.ResumeTiming();
  }
}

void check_answers() {
  const std::string name = bench::stl_file(TRIANGLES);
  PlainMesh plain;
  write_mesh(read_bytes(bench::model_folder() + name).get(), plain);
  orv::Loader3D_STL loader;
  bench::LoadedModel model;
  model.load(loader, name);
  orv::MeshData& data = model.mesh(0);
  for (unsigned int i = 0; i < VERTICES; ++i) {
    if (data.get_position_4f(i) == plain.positions[i] && data.get_normal(i) == plain.normals[i] &&
        data.get_color(i) == plain.colors[i] && data.get_uv0(i) == plain.texcoords[i]) {
      continue;
    }
    std::fprintf(stderr, "vertex %u differs\n", i);
    std::exit(1);
  }
}

}  // namespace

BENCHMARK(load_ours)->Name("STL, 1 M triangles/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(load_plain)->Name("STL, 1 M triangles/read and write")->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
  orv::core::start(nullptr, false, nullptr, nullptr);
  check_answers();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  orv::core::stop(nullptr);
  return 0;
}
