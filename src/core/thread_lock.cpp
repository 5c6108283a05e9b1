#include <orv/core/thread_lock.h>

#include "core/platform/recursive_mutex.h"

namespace orv {

struct ThreadLockData {
  platform::RecursiveMutex mutex;
};

ThreadLock::ThreadLock() : data_(new ThreadLockData) {}

ThreadLock::~ThreadLock() { delete data_; }

void ThreadLock::acquire() { data_->mutex.lock(); }

void ThreadLock::release() { data_->mutex.unlock(); }

}  // namespace orv
