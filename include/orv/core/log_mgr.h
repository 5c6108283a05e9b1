/// @file
/// The owner of all logs.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>

namespace orv {

struct LogMgrData;

/// The singleton that owns the logs by file name and the default log, through which every message
/// of the library goes.
///
/// start(), stop(), create_log() and kill_log() belong to one thread. The ten trace operations may
/// be called from any thread and do nothing for a null argument or without a default log; formatted
/// text is cut at 65,535 bytes. A line that no outlet would receive is not formatted at all.
class ORV_API LogMgr {
 public:
  /// @{
  /// The one instance, made by the first call and never destroyed.
  static LogMgr& get();
  static LogMgr* getptr();
  /// @}

  LogMgr(const LogMgr&) = delete;
  LogMgr& operator=(const LogMgr&) = delete;

  /// Creates the default log. With a null name it has no file, but a callback and a terminal
  /// outlet. A second call keeps the first log and its name. True when there is a default log.
  bool start(const char* filename, bool enabled);
  /// Closes and destroys all logs. Always true.
  bool stop();
  /// Whether start() was called and stop() was not.
  bool is_started() const;

  /// Makes a log that stays the manager's. It takes the place of an earlier log of the same name,
  /// which is then nobody's. A null name returns the default log, which may be null.
  Log* create_log(const char* filename, bool enabled);
  /// Takes the entry of this log's file name out and destroys the log. False for null and when no
  /// log of that name was made.
  bool kill_log(Log* log);
  /// Null while the manager is stopped.
  Log* get_default_log() const;

  /// @{
  /// A headed line in the default log at info, warning, error or debug level.
  void trace(const char* text);
  void trace_warning(const char* text);
  void trace_error(const char* text);
  void trace_debug(const char* text);
  void tracef(const char* format, ...) ORV_PRINTF_LIKE(2, 3);
  void tracef_warning(const char* format, ...) ORV_PRINTF_LIKE(2, 3);
  void tracef_error(const char* format, ...) ORV_PRINTF_LIKE(2, 3);
  void tracef_debug(const char* format, ...) ORV_PRINTF_LIKE(2, 3);
  /// @}

  /// @{
  /// A line without a header in the default log, at info level.
  void simple_trace(const char* text);
  void simple_tracef(const char* format, ...) ORV_PRINTF_LIKE(2, 3);
  /// @}

 private:
  LogMgr();
  ~LogMgr() = delete;

  LogMgrData* data_;
};

}  // namespace orv
