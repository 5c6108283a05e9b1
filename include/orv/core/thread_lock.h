/// @file
/// Recursive lock.
#pragma once

#include <orv/core/api.h>

namespace orv {

struct ThreadLockData;

/// A lock that the same thread may acquire again without blocking; each acquire() wants a
/// release().
class ORV_API ThreadLock {
 public:
  /// An open lock.
  ThreadLock();
  ~ThreadLock();
  ThreadLock(const ThreadLock&) = delete;
  ThreadLock& operator=(const ThreadLock&) = delete;

  /// Waits until no other thread holds the lock.
  void acquire();
  /// Nothing when the calling thread does not hold the lock.
  void release();

 private:
  ThreadLockData* data_;
};

}  // namespace orv
