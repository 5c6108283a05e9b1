#pragma once

#include <orv/core/log.h>
#include <orv/core/thread_lock.h>

#include "core/format_message.h"
#include "core/platform/platform.h"

#include <atomic>
#include <cstdio>
#include <string>

namespace orv {

/// Bytes of one formatted message with its terminator.
constexpr size_t MAX_MESSAGE_BYTES = 65536;

/// The switches are atomic, since a line is tested against them before the lock is taken.
struct LogData {
  std::FILE* file = nullptr;
  std::string filename;
  bool file_open = false;  // a file was asked for, whether or not it could be opened
  bool opened = false;     // the opening step has run
  std::atomic<bool> enabled{false};
  std::atomic<bool> append_mode{false};
  std::atomic<bool> to_terminal{false};
  std::atomic<bool> to_file{true};
  unsigned int trace_count = 0;
  std::atomic<LOG_LEVEL> trace_level_threshold{LOG_LEVEL_INFO};
  ThreadLock lock;
  std::atomic<bool> use_thread_lock{true};
  LogCallback trace_callback = nullptr;
  void* trace_callback_user_data = nullptr;
  std::atomic<int> trace_header_mode{0};

  /// Whether a line of this level is wanted.
  bool passes(LOG_LEVEL level) const;
};

}  // namespace orv
