// Both OBJ loaders, beside tinyobjloader.
#include <benchmark/benchmark.h>
#include <orv/core/core.h>
#include <orv/loaders/loader3d_obj.h>
#include <orv/loaders/loader3d_obj_v2.h>
#include <tiny_obj_loader.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "loaders/loaded_model.h"

namespace {

namespace fs = std::filesystem;

/// What tinyobjloader makes of a file.
struct Parsed {
  tinyobj::attrib_t attrib;
  std::vector<tinyobj::shape_t> shapes;
  std::vector<tinyobj::material_t> materials;

  bool read(const std::string& path) {
    std::string warnings, errors;
    const std::string folder = fs::path(path).parent_path().string() + "/";
    return tinyobj::LoadObj(&attrib, &shapes, &materials, &warnings, &errors, path.c_str(),
                            folder.c_str());
  }
};

void count_bytes(benchmark::State& state, const std::string& name) {
  const auto size = static_cast<std::int64_t>(fs::file_size(bench::model_folder() + name));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * size);
}

template <class Loader>
void load_ours(benchmark::State& state, const std::string& name) {
  Loader loader;
  for (auto _ : state) {
    auto model = std::make_unique<bench::LoadedModel>();
    model->load(loader, name);
    state.PauseTiming();
    model.reset();
    state.ResumeTiming();
  }
  count_bytes(state, name);
}

void load_tinyobj(benchmark::State& state, const std::string& name) {
  for (auto _ : state) {
    auto parsed = std::make_unique<Parsed>();
    if (!parsed->read(bench::model_folder() + name)) state.SkipWithError("not loaded");
    state.PauseTiming();
    parsed.reset();
    state.ResumeTiming();
  }
  count_bytes(state, name);
}

void require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "the loaders differ: %s\n", what);
  std::exit(1);
}

/// Our triangles are those that tinyobjloader sees, in the same order.
void check_answers(const std::string& name) {
  Parsed parsed;
  orv::Loader3D_OBJ loader;
  bench::LoadedModel model;
  model.load(loader, name);
  require(parsed.read(bench::model_folder() + name) && parsed.shapes.size() == 1, "shapes");
  require(model.num_meshes() == 1, "meshes");
  const std::vector<tinyobj::index_t>& corners = parsed.shapes[0].mesh.indices;
  orv::MeshData& data = model.mesh(0);
  require(data.get_num_vertices() == corners.size(), "number of corners");
  for (unsigned int i = 0; i < data.get_num_vertices(); ++i) {
    const tinyobj::real_t* p =
        &parsed.attrib.vertices[static_cast<std::size_t>(corners[i].vertex_index) * 3];
    const tinyobj::real_t* n =
        &parsed.attrib.normals[static_cast<std::size_t>(corners[i].normal_index) * 3];
    require(data.get_position_4f(i) == orv::vec4(p[0], p[1], p[2]), "a position");
    require(data.get_normal(i) == orv::vec4(n[0], n[1], n[2], 1.0f), "a normal");
  }
}

void add(const std::string& road, const std::string& name,
         void (*ours)(benchmark::State&, const std::string&)) {
  benchmark::RegisterBenchmark((road + "/ours").c_str(), ours, name)->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark((road + "/tinyobjloader").c_str(), load_tinyobj, name)
      ->Unit(benchmark::kMillisecond);
}

}  // namespace

int main(int argc, char** argv) {
  orv::core::start(nullptr, false, nullptr, nullptr);
  check_answers(bench::obj_file(2));
  for (const std::size_t megabytes : {2, 20, 100}) {
    const std::string size = std::to_string(megabytes) + " MB";
    const std::string name = bench::obj_file(megabytes);
    add("ObjLoaderV1, " + size, name, load_ours<orv::Loader3D_OBJ>);
    add("ObjLoaderV2, " + size, name, load_ours<orv::Loader3D_OBJ_V2>);
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  orv::core::stop(nullptr);
  return 0;
}
