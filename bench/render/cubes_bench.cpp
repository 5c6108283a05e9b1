// A frame of 10,000 cubes, each with its own buffers, transform and material, on Mesa's driver that
// draws nothing: what is timed is the way to the driver.
#include <benchmark/benchmark.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

#include "cubes.h"

namespace {

struct Sides {
  bench::CubeField field;
  std::vector<std::pair<std::string, std::unique_ptr<bench::CubeSide>>> list;

  Sides() {
    list.emplace_back("ours", bench::make_our_cubes(&field));
    list.emplace_back("raw OpenGL 3.3", bench::make_raw_cubes(field, false));
    list.emplace_back("raw, left bound", bench::make_raw_cubes(field, true));
    list.emplace_back("OpenSceneGraph", bench::make_osg_cubes(field));
  }
};

// All sides must draw all triangles, and the same picture but for the rounding at edges.
int compare_pictures() {
  Sides sides;
  bench::DrawnFrame first;
  for (auto& [name, side] : sides.list) {
    side->make_current();
    side->draw();  // uploads
    const auto frame = bench::look_at(bench::CubeField::WIDTH, bench::CubeField::HEIGHT,
                                      [&side = side] { side->draw(); });
    if (first.pixels.empty()) first = frame;
    const double differing = bench::differing_share(frame, first);
    if (frame.triangles != 12u * bench::CubeField::NUM_CUBES || differing > 0.005 ||
        bench::raw_gl().glGetError() != GL_NO_ERROR) {
      std::fprintf(stderr, "%s: %u triangles, %.2f%% of the pixels differ\n", name.c_str(),
                   frame.triangles, differing * 100.0);
      return 1;
    }
  }
  return 0;
}

// In a process of its own: the driver is chosen once for each.
void check_answers() {
  const pid_t child = fork();
  if (child == 0) {
    unsetenv("GALLIUM_NOOP");
    _exit(compare_pictures());
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child || status != 0) {
    std::fprintf(stderr, "the sides don't draw the same\n");
    std::exit(1);
  }
}

}  // namespace

int main(int argc, char** argv) {
  check_answers();
  setenv("GALLIUM_NOOP", "1", 1);
  Sides sides;
  for (auto& [name, side] : sides.list) {
    benchmark::RegisterBenchmark(("frame of 10,000 cubes/" + name).c_str(),
                                 [&side = *side](benchmark::State& state) {
                                   side.make_current();
                                   side.draw();
                                   for (auto _ : state) side.draw();
                                 })
        ->Unit(benchmark::kMillisecond);
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  // The contexts go with the process: drivers differ in what they want ended first.
  std::fflush(nullptr);
  _exit(0);
}
