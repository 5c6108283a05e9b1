#include <orv/core/thread.h>

#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <thread>

namespace orv {
namespace {

TEST(Thread, CapturesTheCallingThread) {
  Thread record;
  EXPECT_EQ(record.get_thread_id_win32(), static_cast<unsigned int>(gettid()));
  EXPECT_EQ(record.get_thread_handle(), static_cast<unsigned long>(pthread_self()));
  EXPECT_EQ(record, Thread());
}

TEST(Thread, RecordsOfDifferentThreadsDiffer) {
  const Thread here;
  Thread there;
  Thread updated;
  std::thread([&] {
    there.set(Thread());
    updated.update();
  }).join();
  EXPECT_NE(here, there);
  EXPECT_FALSE(here.is_equal(there));
  EXPECT_TRUE(there.is_equal(updated));
  there.set(here);
  EXPECT_EQ(here, there);
  EXPECT_EQ(here.get_thread_handle(), there.get_thread_handle());
}

}  // namespace
}  // namespace orv
