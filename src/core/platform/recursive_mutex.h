#pragma once

#include <pthread.h>

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

  void lock() { pthread_mutex_lock(&mutex_); }
  void unlock() { pthread_mutex_unlock(&mutex_); }

 private:
  pthread_mutex_t mutex_;
};

}  // namespace orv::platform
