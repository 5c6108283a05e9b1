#pragma once

#include <cstdint>
#include <string>

/// The system as the core needs it. Each system has files of its own that implement this.
namespace orv::platform {

// ---- threads and clocks ----

unsigned int current_thread_id();
unsigned long current_thread_handle();
void sleep_milliseconds(unsigned int ms);
[[noreturn]] void exit_thread();

/// Ticks of the fine counter per second.
constexpr std::uint64_t COUNTER_FREQUENCY = 10'000'000;
/// Fine counter, which never goes back.
std::uint64_t read_counter();
/// Coarse millisecond clock, wrapping at 32 bits.
std::uint32_t read_tick();
/// Processor time of the process in milliseconds.
std::uint64_t read_cpu_clock();

struct LocalTime {
  int year, month, day, hour, minute, second, millisecond;
};
LocalTime read_local_time();

// ---- dynamic libraries ----

/// Suffix of modules: architecture and file type.
constexpr const char* MODULE_SUFFIX = "_x64.so";

/// Null when the library cannot be loaded; `error`, when not null, then tells the cause.
void* open_library(const char* path, std::string* error = nullptr);
/// Null when the library has no such symbol.
void* find_symbol(void* library, const char* name);
void close_library(void* library);

/// Loads a module, which may stand relative to the working directory or to `directory`. The working
/// directory is `directory` while the module loads.
void* open_module(const char* filename, const char* directory, std::string* error);

// ---- files and the desktop ----

/// Path of the running program, "" when unknown.
std::string executable_path();
/// Hands a URL to the desktop without waiting.
void open_url(const char* url);

// ---- system ----

struct SystemInformation {
  std::string os_name;
  int version_major = 0;
  int version_minor = 0;
  int version_build = 0;
  std::string sysname;
  std::string release;
  std::string version;
  std::string machine;
};
SystemInformation read_system_information();

/// The first three numbers of a kernel release such as "6.1.0-13-amd64".
void parse_release(const char* release, int& major_version, int& minor_version, int& build);
/// The value of NAME in the text of an os-release file, "" when there is none.
std::string parse_os_release(const std::string& text);

}  // namespace orv::platform
