#include "viewer/log_tap.h"

#include <orv/core/core.h>

#include <algorithm>
#include <cstdio>

namespace viewer {

namespace {

void remove_all(std::string& text, const std::string& part) {
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at)) {
    text.erase(at, part.size());
  }
}

/// The first line of a message, without the plugin that it comes from and the file it is about.
std::string without_names(std::string line, const std::string& path) {
  line.erase(std::min(line.find_first_of("\r\n"), line.size()));
  const std::size_t end = line.find("] ");
  if (!line.empty() && line[0] == '[' && end != std::string::npos) line.erase(0, end + 2);
  const std::size_t behind = line.find(path + ": ");
  if (behind != std::string::npos) line.erase(0, behind + path.size() + 2);
  remove_all(line, ": " + path);
  remove_all(line, "error: ");
  return line;
}

}  // namespace

void LogTap::start(bool verbose) {
  verbose_ = verbose;
  orv::core::log_start(nullptr);
  orv::core::log_get_default()->set_trace_header_mode(2);
  set_threshold();
  orv::core::start(nullptr, true, receive, this);
}

// Debug lines are made only for somebody who reads them.
void LogTap::set_threshold() {
  orv::core::log_get_default()->set_trace_level_threshold(
      verbose_ || keeping_ ? orv::LOG_LEVEL_DEBUG : orv::LOG_LEVEL_ERROR);
}

void LogTap::begin_keeping() {
  keeping_ = true;
  lines_.clear();
  set_threshold();
}

std::string LogTap::end_keeping(const std::string& path) {
  keeping_ = false;
  set_threshold();
  for (auto line = lines_.rbegin(); line != lines_.rend(); ++line) {
    const bool is_error = line->find("] error: ") != std::string::npos;
    if (!is_error && line->find(path) == std::string::npos) continue;
    // The error itself stands before the line that tells of the failure.
    if (!is_error && line + 1 != lines_.rend() &&
        (line + 1)->find("] error: ") != std::string::npos) {
      continue;
    }
    return without_names(*line, path);
  }
  return {};
}

void LogTap::receive(const char* text, void* self) {
  LogTap& tap = *static_cast<LogTap*>(self);
  std::string line = text ? text : "";
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.pop_back();
  if (tap.verbose_) std::fprintf(stderr, "%s\n", line.c_str());
  if (tap.keeping_) tap.lines_.push_back(std::move(line));
}

}  // namespace viewer
