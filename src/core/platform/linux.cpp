#include "core/platform/platform.h"

#include "core/read_file.h"

#include <pthread.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <ctime>
#include <vector>

extern char** environ;

namespace orv::platform {

namespace {

std::uint64_t nanoseconds(clockid_t clock) {
  timespec now{};
  clock_gettime(clock, &now);
  return static_cast<std::uint64_t>(now.tv_sec) * 1'000'000'000u +
         static_cast<std::uint64_t>(now.tv_nsec);
}

}  // namespace

// ---- threads and clocks ------------------------------------------------------------------------

unsigned int current_thread_id() {
  // Every node records its thread, so the system is asked once per thread.
  thread_local const auto id = static_cast<unsigned int>(syscall(SYS_gettid));
  return id;
}

unsigned long current_thread_handle() { return static_cast<unsigned long>(pthread_self()); }

void sleep_milliseconds(unsigned int ms) {
  timespec left{static_cast<time_t>(ms / 1000), static_cast<long>(ms % 1000) * 1'000'000};
  while (nanosleep(&left, &left) != 0 && errno == EINTR) {
  }
}

void exit_thread() { pthread_exit(nullptr); }

std::uint64_t read_counter() { return nanoseconds(CLOCK_MONOTONIC) / 100; }

std::uint32_t read_tick() {
  return static_cast<std::uint32_t>(nanoseconds(CLOCK_MONOTONIC) / 1'000'000);
}

std::uint64_t read_cpu_clock() {
  const clock_t clocks = std::clock();
  if (clocks < 0) return 0;
  return static_cast<std::uint64_t>(clocks) * 1000 / CLOCKS_PER_SEC;
}

LocalTime read_local_time() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  tm parts{};
  localtime_r(&now.tv_sec, &parts);
  return {parts.tm_year + 1900,
          parts.tm_mon + 1,
          parts.tm_mday,
          parts.tm_hour,
          parts.tm_min,
          parts.tm_sec,
          static_cast<int>(now.tv_nsec / 1'000'000)};
}

// ---- files and the desktop ---------------------------------------------------------------------

std::string executable_path() {
  char path[PATH_MAX];
  const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
  if (length <= 0 || static_cast<size_t>(length) >= sizeof path) return {};
  return {path, static_cast<size_t>(length)};
}

void open_url(const char* url) {
  char program[] = "xdg-open";
  std::string argument = url;
  char* arguments[] = {program, argument.data(), nullptr};
  // A child of a child is nobody's to wait for: no zombie is left, and the host's own handling of
  // its children is not disturbed.
  const pid_t child = fork();
  if (child == 0) {
    pid_t grandchild = 0;
    posix_spawnp(&grandchild, program, nullptr, nullptr, arguments, environ);
    _exit(0);
  }
  while (child > 0 && waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
  }
}

// ---- system ------------------------------------------------------------------------------------

void parse_release(const char* release, int& major_version, int& minor_version, int& build) {
  int numbers[3] = {0, 0, 0};
  const char* cursor = release;
  for (int& number : numbers) {
    char* end = nullptr;
    if (*cursor < '0' || *cursor > '9') break;
    number = static_cast<int>(std::min(std::strtol(cursor, &end, 10), static_cast<long>(INT_MAX)));
    if (*end != '.') break;
    cursor = end + 1;
  }
  major_version = numbers[0];
  minor_version = numbers[1];
  build = numbers[2];
}

std::string parse_os_release(const std::string& text) {
  size_t start = 0;
  while (start < text.size()) {
    size_t end = std::min(text.find('\n', start), text.size());
    if (text.compare(start, 5, "NAME=") == 0) {
      std::string value = text.substr(start + 5, end - start - 5);
      const bool quoted = value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
                          value.back() == value.front();
      return quoted ? value.substr(1, value.size() - 2) : value;
    }
    start = end + 1;
  }
  return {};
}

SystemInformation read_system_information() {
  SystemInformation information;
  utsname names{};
  if (uname(&names) == 0) {
    information.sysname = names.sysname;
    information.release = names.release;
    information.version = names.version;
    information.machine = names.machine;
    parse_release(names.release, information.version_major, information.version_minor,
                  information.version_build);
  }
  std::vector<unsigned char> text;
  if (!detail::read_whole_file("/etc/os-release", text)) {
    detail::read_whole_file("/usr/lib/os-release", text);
  }
  information.os_name = parse_os_release({text.begin(), text.end()});
  if (information.os_name.empty()) information.os_name = information.sysname;
  return information;
}

}  // namespace orv::platform
