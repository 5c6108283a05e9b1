#pragma once

#include <orv/core/log.h>
#include <orv/core/log_mgr.h>

#include <algorithm>
#include <string>
#include <vector>

namespace orv::test {

/// Collects what the default log's callback receives while it lives: messages of all levels,
/// without headers. Starts the log manager (without a file) when it is stopped, and stops it again
/// then. Nothing is written to files or to the terminal by it.
class LogCapture {
 public:
  explicit LogCapture(LOG_LEVEL threshold = LOG_LEVEL_DEBUG) {
    LogMgr& manager = LogMgr::get();
    started_here_ = !manager.is_started();
    manager.start(nullptr, false);
    Log* log = manager.get_default_log();
    was_enabled_ = log->is_enabled();
    old_threshold_ = log->get_trace_level_threshold();
    log->set_trace_level_threshold(threshold);
    log->set_trace_callback(&LogCapture::receive, this);
    log->enable();
  }
  ~LogCapture() {
    LogMgr& manager = LogMgr::get();
    if (started_here_) {
      manager.stop();
      return;
    }
    Log* log = manager.get_default_log();
    if (!log) return;
    log->set_trace_callback(nullptr, nullptr);
    log->set_trace_level_threshold(old_threshold_);
    if (!was_enabled_) log->disable();
  }
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  const std::vector<std::string>& lines() const { return lines_; }
  void clear() { lines_.clear(); }
  /// Whether a line holds `text`.
  bool contains(const std::string& text) const { return count(text) > 0; }
  /// How many lines hold `text`.
  int count(const std::string& text) const {
    return static_cast<int>(std::count_if(lines_.begin(), lines_.end(), [&](const auto& line) {
      return line.find(text) != std::string::npos;
    }));
  }
  /// All lines, each with an end of line.
  std::string text() const {
    std::string all;
    for (const std::string& line : lines_) all += line + "\n";
    return all;
  }

 private:
  static void receive(const char* text, void* user_data) {
    static_cast<LogCapture*>(user_data)->lines_.emplace_back(text);
  }

  std::vector<std::string> lines_;
  LOG_LEVEL old_threshold_ = LOG_LEVEL_INFO;
  bool was_enabled_ = false;
  bool started_here_ = false;
};

}  // namespace orv::test
