#include <orv/core/thread_lock.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace orv {
namespace {

TEST(ThreadLock, KeepsOtherThreadsOut) {
  ThreadLock lock;
  int counter = 0;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 5000; ++i) {
        lock.acquire();
        ++counter;
        lock.release();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(counter, 20000);
}

TEST(ThreadLock, SameThreadMayAcquireAgain) {
  ThreadLock lock;
  lock.acquire();
  lock.acquire();
  std::atomic<bool> entered{false};
  std::thread other([&] {
    lock.acquire();
    entered = true;
    lock.release();
  });
  lock.release();
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_FALSE(entered);
  lock.release();
  other.join();
  EXPECT_TRUE(entered);
}

TEST(ThreadLock, ReleaseByAnotherThanTheOwnerIsIgnored) {
  ThreadLock lock;
  lock.release();
  lock.acquire();
  std::thread([&] { lock.release(); }).join();
  std::atomic<bool> entered{false};
  std::thread other([&] {
    lock.acquire();
    entered = true;
    lock.release();
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_FALSE(entered);
  lock.release();
  other.join();
}

}  // namespace
}  // namespace orv
