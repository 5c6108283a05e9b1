// From the start of a process to its first frame, with the library and by EGL alone; and the size
// of the library.
#include <benchmark/benchmark.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

struct FirstFrame {
  double cpu_seconds = 0.0;
  double wall_seconds = 0.0;
  double peak_bytes = 0.0;
};

/// Runs a program to its end; false when it failed.
bool run(const std::string& command, FirstFrame* frame) {
  const auto begin = std::chrono::steady_clock::now();
  std::FILE* output = popen(("exec " + command).c_str(), "r");
  if (!output) return false;
  const bool read = std::fscanf(output, "%lf %lf", &frame->cpu_seconds, &frame->peak_bytes) == 2;
  frame->wall_seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  return pclose(output) == 0 && read;
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

/// The counter is the median of one figure over a few processes.
void measure(benchmark::State& state, const std::string& command, double FirstFrame::*figure,
             const char* counter) {
  std::vector<double> values;
  for (auto _ : state) {
    FirstFrame frame;
    if (!run(command, &frame)) {
      state.SkipWithError("the program failed");
      return;
    }
    values.push_back(frame.*figure);
  }
  state.counters[counter] = median(values);
}

void add_pair(const std::string& road, const std::string& argument, double FirstFrame::*figure,
              const char* counter) {
  const auto add = [&](const char* side, const std::string& program) {
    benchmark::RegisterBenchmark((road + side).c_str(), [=](benchmark::State& state) {
      measure(state, program + argument, figure, counter);
    })->Iterations(7);
  };
  add("/ours", START_OURS);
  add("/raw EGL", START_RAW);
}

double size_of(const std::string& path) {
  struct stat status = {};
  return stat(path.c_str(), &status) == 0 ? static_cast<double>(status.st_size) : 0.0;
}

void library_size(benchmark::State& state) {
  const std::string stripped = "/tmp/bench_stripped_" + std::to_string(getpid());
  const std::string command =
      std::string(STRIP_PROGRAM) + " -o " + stripped + " '" + LIBRARY_FILE + "'";
  for (auto _ : state) {
    if (std::system(command.c_str()) != 0) state.SkipWithError("strip failed");
  }
  state.counters["bytes"] = size_of(stripped);
  std::remove(stripped.c_str());
}

void wanted_size(benchmark::State& state) {
  for (auto _ : state) {
  }
  state.counters["bytes"] = 2e6;
}

}  // namespace

int main(int argc, char** argv) {
  add_pair("first frame, CPU time", "", &FirstFrame::cpu_seconds, "seconds");
  add_pair("first frame, wall time", "", &FirstFrame::wall_seconds, "seconds");
  add_pair("first frame, memory", "", &FirstFrame::peak_bytes, "bytes");
  add_pair("first core frame, CPU time", " core", &FirstFrame::cpu_seconds, "seconds");
  add_pair("first core frame, wall time", " core", &FirstFrame::wall_seconds, "seconds");
  add_pair("first core frame, memory", " core", &FirstFrame::peak_bytes, "bytes");
  benchmark::RegisterBenchmark("stripped library/ours", library_size)->Iterations(1);
  benchmark::RegisterBenchmark("stripped library/2 MB", wanted_size)->Iterations(1);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
