#include <orv/core/log.h>

#include "core/lock_guard.h"
#include "core/log_data.h"

#include <cstdarg>
#include <cstring>

namespace orv {

namespace {

using platform::LocalTime;

/// Tags of one of the two forms of headed lines, by level.
using Tags = const char* const[5];
constexpr Tags SQUARE_TAGS = {"", "[*]", "[!]", "[ ]", "[d]"};
constexpr Tags ANGLE_TAGS = {"", " <*> ", " <!> ", " < > ", " <d> "};

const char* tag_of(const Tags& tags, LOG_LEVEL level) {
  return level >= LOG_LEVEL_ERROR && level <= LOG_LEVEL_DEBUG ? tags[level] : "";
}

/// The log's lock, when the log uses it.
ThreadLock* lock_of(LogData& data) { return data.use_thread_lock ? &data.lock : nullptr; }

/// The opening is not reported: an open that failed drops all text.
void open_when_needed(LogData& data) {
  if (data.opened) return;
  if (!data.filename.empty()) {
    data.file = std::fopen(data.filename.c_str(), data.append_mode ? "ae" : "we");
    data.file_open = true;
  }
  data.opened = true;
}

void close_file(LogData& data) {
  if (data.file) std::fclose(data.file);
  data.file = nullptr;
  data.file_open = false;
  data.opened = false;
}

bool writes_to_file(const LogData& data) { return data.file && data.file_open && data.to_file; }

/// Room for every header and tag.
constexpr size_t HEAD_BYTES = 160;

/// Counts a line and writes its header and tag into `head`. Returns their length.
size_t begin_line(LogData& data, const Tags& tags, LOG_LEVEL level, LocalTime& now,
                  char (&head)[HEAD_BYTES]) {
  const int number = static_cast<int>(++data.trace_count);
  now = platform::read_local_time();
  int length = 0;
  if (data.trace_header_mode == 0) {
    length = std::snprintf(head, sizeof head, "%i/%i/%i@%.2i:%.2i:%.2i:%.3i(%010d)%s", now.year,
                           now.month, now.day, now.hour, now.minute, now.second, now.millisecond,
                           number, tag_of(tags, level));
  } else if (data.trace_header_mode == 1) {
    length = std::snprintf(head, sizeof head, "(%.2i:%.2i:%.2i:%.3i)", now.hour, now.minute,
                           now.second, now.millisecond);
  }
  head[length] = 0;
  return static_cast<size_t>(length);
}

void write_line(LogData& data, const char* head, size_t head_length, const char* text) {
  if (!writes_to_file(data)) return;
  std::fwrite(head, 1, head_length, data.file);
  std::fwrite(text, 1, std::strlen(text), data.file);
  std::fputc('\n', data.file);
  std::fflush(data.file);
}

}  // namespace

bool LogData::passes(LOG_LEVEL level) const { return level <= trace_level_threshold && enabled; }

// ---- life --------------------------------------------------------------------------------------

Log::Log() : data_(new LogData) {}

Log::~Log() {
  close_file(*data_);
  delete data_;
}

bool Log::open(const char* filename, bool append) {
  const detail::LockGuard guard(lock_of(*data_));
  set_filename(filename);
  data_->append_mode = append;
  open_when_needed(*data_);
  return true;
}

bool Log::close() {
  const detail::LockGuard guard(lock_of(*data_));
  if (data_->file_open || data_->opened) close_file(*data_);
  return true;
}

// ---- settings ----------------------------------------------------------------------------------

void Log::set_filename(const char* filename) {
  if (filename) data_->filename = filename;
}

const char* Log::get_filename() const { return data_->filename.c_str(); }

void Log::enable() { data_->enabled = true; }

void Log::disable() { data_->enabled = false; }

bool Log::is_enabled() const { return data_->enabled; }

void Log::send_to_terminal(bool state) { data_->to_terminal = state; }

void Log::write_to_file(bool state) { data_->to_file = state; }

void Log::set_append_mode(bool state) { data_->append_mode = state; }

void Log::use_thread_lock(bool state) { data_->use_thread_lock = state; }

void Log::set_trace_level_threshold(LOG_LEVEL level) { data_->trace_level_threshold = level; }

LOG_LEVEL Log::get_trace_level_threshold() const { return data_->trace_level_threshold; }

void Log::set_trace_header_mode(int mode) { data_->trace_header_mode = mode; }

void Log::set_trace_callback(LogCallback callback, void* user_data) {
  const detail::LockGuard guard(lock_of(*data_));
  data_->trace_callback = callback;
  data_->trace_callback_user_data = user_data;
}

// ---- lines with a header -----------------------------------------------------------------------

void Log::trace(LOG_LEVEL level, const char* text) {
  if (!text || !data_->passes(level)) return;
  const detail::LockGuard guard(lock_of(*data_));
  open_when_needed(*data_);
  char head[HEAD_BYTES];
  LocalTime now{};
  const size_t length = begin_line(*data_, SQUARE_TAGS, level, now, head);
  if (data_->trace_callback) data_->trace_callback(text, data_->trace_callback_user_data);
  write_line(*data_, head, length, text);
  if (data_->to_terminal) {
    std::printf("\n(%.2i:%.2i:%.2i:%.3i) %s", now.hour, now.minute, now.second, now.millisecond,
                text);
  }
}

void Log::tracef(LOG_LEVEL level, const char* format, ...) {
  if (!format || !data_->passes(level)) return;
  const detail::LockGuard guard(lock_of(*data_));
  open_when_needed(*data_);
  char head[HEAD_BYTES];
  LocalTime now{};
  const size_t length = begin_line(*data_, ANGLE_TAGS, level, now, head);

  char line[HEAD_BYTES + MAX_MESSAGE_BYTES];
  std::memcpy(line, head, length);
  char* message = line + length;
  va_list arguments;
  va_start(arguments, format);
  format_message(message, MAX_MESSAGE_BYTES, format, arguments);
  va_end(arguments);

  if (data_->trace_callback) data_->trace_callback(line, data_->trace_callback_user_data);
  write_line(*data_, head, length, message);
  if (data_->to_terminal) {
    std::printf("\n[%.2i:%.2i:%.2i] %s", now.hour, now.minute, now.second, message);
  }
}

// ---- lines without -----------------------------------------------------------------------------

void Log::simple_trace(LOG_LEVEL level, const char* text) {
  if (!text || !data_->passes(level)) return;
  const detail::LockGuard guard(lock_of(*data_));
  open_when_needed(*data_);
  if (data_->trace_callback) {
    const std::string line = std::string(text) + "\n";
    data_->trace_callback(line.c_str(), data_->trace_callback_user_data);
  }
  write_line(*data_, "", 0, text);
  if (data_->to_terminal) std::printf("\n%s", text);
}

void Log::simple_tracef(LOG_LEVEL level, const char* format, ...) {
  if (!format || !data_->passes(level)) return;
  char message[MAX_MESSAGE_BYTES];
  va_list arguments;
  va_start(arguments, format);
  format_message(message, sizeof message, format, arguments);
  va_end(arguments);
  simple_trace(level, message);
}

}  // namespace orv
