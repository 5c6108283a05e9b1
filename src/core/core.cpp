#include <orv/core/core.h>

#include <orv/core/kernel.h>
#include <orv/core/log_mgr.h>

namespace orv::core {

bool start(const char* log_filename, bool log_enabled, LogCallback log_callback,
           void* log_user_data) {
  LogMgr::get().start(log_filename, false);
  log_set_callback(log_callback, log_user_data);
  log_enable(log_enabled);
  return Kernel::get()->start();
}

bool stop(const char* last_message) {
  Kernel::get()->stop();
  log_trace(last_message);
  return LogMgr::get().stop();
}

const char* get_engine_codename() { return Kernel::get()->get_codename(); }

const char* get_platform_name() { return Kernel::get()->get_platform_name(); }

int get_platform_bitness() { return Kernel::get()->get_platform_bitness(); }

bool log_start(const char* filename) { return LogMgr::get().start(filename, false); }

bool log_stop() { return LogMgr::get().stop(); }

Log* log_get_default() { return LogMgr::get().get_default_log(); }

void log_enable(bool state) {
  Log* log = log_get_default();
  if (!log) return;
  if (state) {
    log->enable();
  } else {
    log->disable();
  }
}

void log_set_callback(LogCallback callback, void* user_data) {
  if (Log* log = log_get_default()) log->set_trace_callback(callback, user_data);
}

void log_trace(const char* text) { LogMgr::get().trace(text); }

void log_trace_warning(const char* text) { LogMgr::get().trace_warning(text); }

void log_trace_error(const char* text) { LogMgr::get().trace_error(text); }

void log_trace_debug(const char* text) { LogMgr::get().trace_debug(text); }

}  // namespace orv::core
