/// @file
/// One text sink for messages: a file, the standard output and a callback.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>

namespace orv {

/// Severity of a message; a lower number is more severe. Other numbers are allowed: they pass the
/// threshold by value and are written without a tag.
enum LOG_LEVEL : int {
  LOG_LEVEL_ERROR = 1,
  LOG_LEVEL_WARNING = 2,
  LOG_LEVEL_INFO = 3,
  LOG_LEVEL_DEBUG = 4
};

/// The host's outlet. The text belongs to the log and is valid during the call.
using LogCallback = void (*)(const char* text, void* user_data);

struct LogData;

/// A text sink with three outlets: a file, the standard output and a callback of the host.
///
/// A log starts disabled, with the threshold at LOG_LEVEL_INFO and writing to its file. Failures
/// are silent: a file that cannot be opened or written drops the text.
///
/// The four trace operations may be called from any thread unless use_thread_lock(false) was
/// called. The callback runs on the caller's thread with the log's lock held; it may trace to the
/// same log.
class ORV_API Log {
 public:
  /// Disabled, without a file name.
  Log();
  ~Log();
  Log(const Log&) = delete;
  Log& operator=(const Log&) = delete;

  /// Stores the name and the append flag and opens the file, unless the log is open already: then
  /// the present file stays in use until close(). A null name keeps the present one; with an empty
  /// name there is no file. Always true.
  bool open(const char* filename, bool append);
  /// Closes the file. The next line opens it again and, unless appending, truncates it. Always
  /// true.
  bool close();

  /// @{
  /// Name of the file; null is ignored. Takes effect when the file is next opened.
  void set_filename(const char* filename);
  const char* get_filename() const;
  /// @}

  /// @{
  /// Master switch of all outlets.
  void enable();
  void disable();
  bool is_enabled() const;
  /// @}

  /// Whether lines are printed to the standard output (off at first).
  void send_to_terminal(bool state);
  /// Whether lines are written to the file (on at first). The file is created all the same.
  void write_to_file(bool state);
  /// Whether the file is appended to when it is opened, not truncated (off at first).
  void set_append_mode(bool state);
  /// Whether the trace operations take the log's lock (on at first).
  void use_thread_lock(bool state);

  /// @{
  /// Lines of a larger level are dropped.
  void set_trace_level_threshold(LOG_LEVEL level);
  LOG_LEVEL get_trace_level_threshold() const;
  /// @}

  /// 0: date, time, line number and a tag of the level; 1: the time in parentheses; other: nothing.
  void set_trace_header_mode(int mode);
  /// The host's outlet and the pointer handed to it; a null callback switches it off.
  void set_trace_callback(LogCallback callback, void* user_data);

  /// Writes a headed line. The callback receives the text alone.
  void trace(LOG_LEVEL level, const char* text);
  /// Formats at most 65,535 bytes and writes a headed line. The callback receives the whole line.
  void tracef(LOG_LEVEL level, const char* format, ...) ORV_PRINTF_LIKE(3, 4);
  /// Writes the text as a line without a header. The callback receives it with its end of line.
  void simple_trace(LOG_LEVEL level, const char* text);
  /// simple_trace() of at most 65,535 formatted bytes.
  void simple_tracef(LOG_LEVEL level, const char* format, ...) ORV_PRINTF_LIKE(3, 4);

 private:
  friend class LogMgr;
  LogData* data_;
};

}  // namespace orv
