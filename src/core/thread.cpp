#include <orv/core/thread.h>

#include "core/platform/platform.h"

namespace orv {

Thread::Thread() : id_(platform::current_thread_id()), handle_(platform::current_thread_handle()) {}

void Thread::update() { *this = Thread(); }

void Thread::set(const Thread& other) { *this = other; }

bool Thread::is_equal(const Thread& other) const { return id_ == other.id_; }

}  // namespace orv
