#pragma once

#include <orv/core/thread_lock.h>

namespace orv::detail {

/// Holds a lock while it lives; null holds none.
class LockGuard {
 public:
  explicit LockGuard(ThreadLock* lock) : lock_(lock) {
    if (lock_) lock_->acquire();
  }
  ~LockGuard() {
    if (lock_) lock_->release();
  }
  LockGuard(const LockGuard&) = delete;
  LockGuard& operator=(const LockGuard&) = delete;

 private:
  ThreadLock* lock_;
};

}  // namespace orv::detail
