#pragma once

#include <pthread.h>

#include <atomic>

namespace orv::platform {

/// Lock of the system that its owner may take again. Unlike std::recursive_mutex it may be released
/// by anyone: the call is ignored unless the caller is the owner.
class RecursiveMutex {
 public:
  RecursiveMutex() {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&mutex_, &attributes);
    pthread_mutexattr_destroy(&attributes);
  }
  ~RecursiveMutex() { pthread_mutex_destroy(&mutex_); }
  RecursiveMutex(const RecursiveMutex&) = delete;
  RecursiveMutex& operator=(const RecursiveMutex&) = delete;

  void lock() {
    pthread_mutex_lock(&mutex_);
    owner_.store(pthread_self(), std::memory_order_relaxed);
    ++depth_;
  }
  void unlock() {
    // Only the owner can find itself here, so this needs no order.
    if (owner_.load(std::memory_order_relaxed) != pthread_self()) return;
    if (--depth_ == 0) owner_.store(pthread_t{}, std::memory_order_relaxed);
    pthread_mutex_unlock(&mutex_);
  }

 private:
  pthread_mutex_t mutex_;
  std::atomic<pthread_t> owner_{};
  int depth_ = 0;  // times that the owner has locked it
};

}  // namespace orv::platform
