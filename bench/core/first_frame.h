/// @file
/// What a process says of itself after its first frame.
#pragma once

#include <sys/resource.h>

#include <cstdio>
#include <cstring>

namespace bench {

/// Number behind a word in a file of /proc, in bytes; 0 without it.
inline long read_kilobytes(const char* path, const char* word) {
  long kilobytes = 0;
  char line[256];
  std::FILE* file = std::fopen(path, "r");
  while (file && std::fgets(line, sizeof(line), file)) {
    if (std::strncmp(line, word, std::strlen(word)) != 0) continue;
    std::sscanf(line + std::strlen(word), "%ld", &kilobytes);
    break;
  }
  if (file) std::fclose(file);
  return kilobytes * 1024;
}

/// Prints the CPU time in seconds, and the largest heap and anonymous mappings in bytes: the
/// largest size in memory without the pages of files that are there now.
inline void report_first_frame() {
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
  };
  constexpr const char* MAPS = "/proc/self/smaps_rollup";
  const long files = read_kilobytes(MAPS, "Rss:") - read_kilobytes(MAPS, "Anonymous:");
  const long peak = read_kilobytes("/proc/self/status", "VmHWM:") - files;
  std::printf("%.6f %ld\n", seconds(usage.ru_utime) + seconds(usage.ru_stime), peak);
}

}  // namespace bench
