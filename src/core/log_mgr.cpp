#include <orv/core/log_mgr.h>

#include "core/log_data.h"

#include <cstdarg>
#include <map>
#include <vector>

namespace orv {

struct LogMgrData {
  bool started = false;
  std::string default_log_name;
  std::atomic<Log*> default_log{nullptr};
  std::map<std::string, Log*> logs;
  /// Logs whose name was taken by another one. They are the host's to use and nobody's to destroy.
  std::vector<Log*> nameless;
};

// ---- life --------------------------------------------------------------------------------------

LogMgr::LogMgr() : data_(new LogMgrData) {}

LogMgr* LogMgr::getptr() {
  static LogMgr* const manager = new LogMgr;
  return manager;
}

LogMgr& LogMgr::get() { return *getptr(); }

bool LogMgr::start(const char* filename, bool enabled) {
  if (data_->started) return true;
  if (filename) data_->default_log_name = filename;
  if (!data_->default_log) {
    Log* log = create_log(data_->default_log_name.c_str(), enabled);
    if (!filename) log->write_to_file(false);
    data_->default_log = log;
  }
  data_->started = true;
  return true;
}

bool LogMgr::stop() {
  if (!data_->started) return true;
  data_->default_log = nullptr;
  for (auto& [name, log] : data_->logs) delete log;
  data_->logs.clear();
  data_->default_log_name.clear();
  data_->started = false;
  return true;
}

bool LogMgr::is_started() const { return data_->started; }

// ---- logs --------------------------------------------------------------------------------------

Log* LogMgr::create_log(const char* filename, bool enabled) {
  if (!filename) return get_default_log();
  Log* log = new Log;
  if (enabled) log->enable();
  log->set_filename(filename);
  Log*& entry = data_->logs[filename];
  if (entry) data_->nameless.push_back(entry);
  entry = log;
  return log;
}

bool LogMgr::kill_log(Log* log) {
  if (!log) return false;
  const auto found = data_->logs.find(log->get_filename());
  if (found == data_->logs.end()) return false;
  if (found->second != log) data_->nameless.push_back(found->second);
  data_->logs.erase(found);
  // After set_filename the log may stand under another name, too.
  for (auto entry = data_->logs.begin(); entry != data_->logs.end();) {
    entry = entry->second == log ? data_->logs.erase(entry) : std::next(entry);
  }
  std::erase(data_->nameless, log);
  if (data_->default_log == log) data_->default_log = nullptr;
  delete log;
  return true;
}

Log* LogMgr::get_default_log() const { return data_->default_log; }

// ---- lines of the default log ------------------------------------------------------------------

namespace {

void trace_to(Log* log, LOG_LEVEL level, const char* text) {
  if (log) log->trace(level, text);
}

}  // namespace

void LogMgr::trace(const char* text) { trace_to(data_->default_log, LOG_LEVEL_INFO, text); }

void LogMgr::trace_warning(const char* text) {
  trace_to(data_->default_log, LOG_LEVEL_WARNING, text);
}

void LogMgr::trace_error(const char* text) { trace_to(data_->default_log, LOG_LEVEL_ERROR, text); }

void LogMgr::trace_debug(const char* text) { trace_to(data_->default_log, LOG_LEVEL_DEBUG, text); }

// Lines that no outlet wants cost no formatting: drawing traces at debug level.
#define ORV_TRACEF(level, operation)                          \
  Log* const log = data_->default_log;                        \
  if (!log || !format || !log->data_->passes(level)) return;  \
  char message[MAX_MESSAGE_BYTES];                            \
  va_list arguments;                                          \
  va_start(arguments, format);                                \
  format_message(message, sizeof message, format, arguments); \
  va_end(arguments);                                          \
  log->operation(level, message)

void LogMgr::tracef(const char* format, ...) { ORV_TRACEF(LOG_LEVEL_INFO, trace); }

void LogMgr::tracef_warning(const char* format, ...) { ORV_TRACEF(LOG_LEVEL_WARNING, trace); }

void LogMgr::tracef_error(const char* format, ...) { ORV_TRACEF(LOG_LEVEL_ERROR, trace); }

void LogMgr::tracef_debug(const char* format, ...) { ORV_TRACEF(LOG_LEVEL_DEBUG, trace); }

void LogMgr::simple_trace(const char* text) {
  if (Log* log = data_->default_log) log->simple_trace(LOG_LEVEL_INFO, text);
}

void LogMgr::simple_tracef(const char* format, ...) { ORV_TRACEF(LOG_LEVEL_INFO, simple_trace); }

#undef ORV_TRACEF

}  // namespace orv
