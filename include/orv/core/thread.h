/// @file
/// Record of a thread.
#pragma once

#include <orv/core/api.h>

namespace orv {

/// Identifier and handle of the thread that made or last updated the record.
class ORV_API Thread {
 public:
  /// Captures the calling thread.
  Thread();

  /// Captures the calling thread again.
  void update();
  /// Copies both values of another record.
  void set(const Thread& other);

  /// @{
  /// Whether both records name the same thread; handles are not compared.
  bool is_equal(const Thread& other) const;
  bool operator==(const Thread& other) const { return is_equal(other); }
  /// @}

  /// Whether the two name different threads.
  bool operator!=(const Thread& other) const { return !is_equal(other); }

  /// Identifier of the thread within the system. The name is that of the first platform.
  unsigned int get_thread_id_win32() const { return id_; }
  /// The system's handle of the thread.
  unsigned long get_thread_handle() const { return handle_; }

 private:
  unsigned int id_;
  unsigned long handle_;
};

}  // namespace orv
