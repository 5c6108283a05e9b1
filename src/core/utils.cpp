#include <orv/core/utils.h>

#include <orv/core/log_mgr.h>
#include <orv/gpu/gpu_enums.h>
#include <orv/image/pixel_format.h>

#include "core/platform/platform.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <mutex>

namespace orv {

namespace utils {

// ---- identifiers -------------------------------------------------------------------------------

int gen_id() {
  static std::atomic<int> last{1};
  return last.fetch_add(1, std::memory_order_relaxed) + 1;
}

unsigned int gen_index() {
  static std::atomic<unsigned int> last{0};
  return last.fetch_add(1, std::memory_order_relaxed) + 1;
}

// ---- threads and clocks ------------------------------------------------------------------------

void thread_sleep(unsigned int ms) { platform::sleep_milliseconds(ms); }

void thread_sleep_micro(unsigned int) {}

void thread_sleep_nano(unsigned int) {}

void thread_exit() { platform::exit_thread(); }

float cpu_clock_get_sec() {
  return static_cast<float>(static_cast<double>(platform::read_cpu_clock()) / 1000.0);
}

float cpu_clock_get_msec() { return static_cast<float>(platform::read_cpu_clock()); }

// ---- platform ----------------------------------------------------------------------------------

namespace {

/// Never destroyed: its texts are handed out to the host.
struct PlatformRecord {
  std::once_flag gathered;
  std::mutex app_directory_lock;
  const char* name = "";
  platform::SystemInformation system;
  std::string app_directory;
};

PlatformRecord& record() {
  static auto* const instance = new PlatformRecord;
  return *instance;
}

const platform::SystemInformation& gathered_system() {
  init_platform_information();
  return record().system;
}

}  // namespace

bool init_platform_information() {
  std::call_once(record().gathered, [] {
    record().name = "Linux";
    record().system = platform::read_system_information();
    get_app_directory();
  });
  return true;
}

const char* get_platform_name() { return record().name; }

int get_platform_bitness() { return static_cast<int>(8 * sizeof(void*)); }

bool is_64_bit_app() { return sizeof(void*) == 8; }

ORV_PLATFORM_TYPE get_platform_type() { return ORV_PLATFORM_TYPE_LINUX; }

const char* get_os_name() { return gathered_system().os_name.c_str(); }

int get_os_version_major() { return gathered_system().version_major; }

int get_os_version_minor() { return gathered_system().version_minor; }

int get_os_version_build() { return gathered_system().version_build; }

const char* get_osx_codename() { return ""; }

const char* get_osx_kern_osrelease() { return ""; }

const char* get_linux_sysname() { return record().system.sysname.c_str(); }

const char* get_linux_release() { return record().system.release.c_str(); }

const char* get_linux_version() { return record().system.version.c_str(); }

const char* get_linux_machine() { return record().system.machine.c_str(); }

const char* get_app_directory() {
  PlatformRecord& r = record();
  const std::lock_guard lock(r.app_directory_lock);
  if (r.app_directory.empty()) {
    const std::string path = platform::executable_path();
    r.app_directory = path.substr(0, path.rfind('/') + 1);
  }
  return r.app_directory.c_str();
}

bool check_opencl_dylib() {
  std::string cause;
  for (const char* name : {"libOpenCL.so.1", "libOpenCL.so"}) {
    if (void* library = platform::open_library(name, &cause)) {
      platform::close_library(library);
      return true;
    }
  }
  LogMgr::get().tracef_debug("OpenCL: %s", cause.c_str());
  return false;
}

bool open_url(const char* url) {
  if (!url || !*url) return false;
  platform::open_url(url);
  return true;
}

// ---- texts -------------------------------------------------------------------------------------

namespace {

void clean_up(char* text, char unwanted) {
  if (!text) return;
  for (char* c = text; *c; ++c) {
    if (*c != unwanted) continue;
    *c = ' ';
    if (c > text && c[-1] == '\\') std::swap(c[-1], c[0]);
  }
}

}  // namespace

void cleanup_crlf(char* text) { clean_up(text, '\r'); }

void cleanup_lf(char* text) { clean_up(text, '\n'); }

}  // namespace utils

int GenId() { return utils::gen_id(); }

void ThreadSleep(unsigned int ms) { utils::thread_sleep(ms); }

void ThreadSleep_micro(unsigned int us) { utils::thread_sleep_micro(us); }

void ThreadSleep_nano(unsigned int ns) { utils::thread_sleep_nano(ns); }

bool Is64BitApp() { return utils::is_64_bit_app(); }

bool ExtractFilenameFromPath(const char* path, char* dir, unsigned int dir_size, char* name,
                             unsigned int name_size) {
  if (!path) return true;
  const size_t length = std::strlen(path);
  size_t behind = length;
  while (behind > 0 && path[behind - 1] != '/' && path[behind - 1] != '\\') --behind;
  if (behind == 0) return false;
  if (name) {
    const size_t copied = std::min<size_t>(length - behind, name_size);
    std::memcpy(name, path + behind, copied);
    std::memset(name + copied, 0, name_size - copied);
  }
  if (dir && behind < dir_size) std::memcpy(dir, path, behind);
  return true;
}

PIXEL_FORMAT ConvertInt2Pf(int value) {
  return value >= PF_RGB_U8 && value <= PF_RG_U8 ? static_cast<PIXEL_FORMAT>(value) : PF_UNKNOWN;
}

const char* Shader_Type_To_String(GPU_SHADER_TYPE type, bool capital) {
  static constexpr const char* NAMES[][2] = {
      {"vertex", "Vertex"},       {"pixel", "Pixel"},
      {"geometry", "Geometry"},   {"tess control", "Tess control"},
      {"tess eval", "Tess eval"}, {"compute", "Compute"}};
  if (type < GPU_SHADER_VERTEX || type > GPU_SHADER_COMPUTE) return "";
  return NAMES[type][capital ? 1 : 0];
}

}  // namespace orv
