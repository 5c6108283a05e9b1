// Peak memory of loading an OBJ file, beside the vertex arrays that remain.
#include <benchmark/benchmark.h>
#include <orv/core/core.h>
#include <orv/loaders/loader3d_obj.h>

#include <string>

#include "common/heap_peak.h"
#include "loaders/loaded_model.h"

namespace {

void peak_ours(benchmark::State& state, const std::string& name) {
  orv::Loader3D_OBJ loader;
  for (auto _ : state) {
    const bench::HeapPeak heap;
    bench::LoadedModel model;
    model.load(loader, name);
    state.counters["bytes"] = static_cast<double>(heap.peak());
  }
}

void vertex_arrays(benchmark::State& state, const std::string& name) {
  orv::Loader3D_OBJ loader;
  for (auto _ : state) {
    bench::LoadedModel model;
    model.load(loader, name);
    state.counters["bytes"] = static_cast<double>(model.vertex_bytes());
  }
}

}  // namespace

int main(int argc, char** argv) {
  orv::core::start(nullptr, false, nullptr, nullptr);
  for (const std::size_t megabytes : {2, 20, 100}) {
    const std::string road = "ObjLoaderV1 peak memory, " + std::to_string(megabytes) + " MB";
    const std::string name = bench::obj_file(megabytes);
    benchmark::RegisterBenchmark((road + "/ours").c_str(), peak_ours, name)->Iterations(1);
    benchmark::RegisterBenchmark((road + "/finished vertex arrays").c_str(), vertex_arrays, name)
        ->Iterations(1);
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  orv::core::stop(nullptr);
  return 0;
}
