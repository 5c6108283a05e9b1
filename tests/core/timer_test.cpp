#include <orv/core/timer.h>

#include "core/platform/platform.h"
#include "core/timer_clocks.h"

#include <gtest/gtest.h>

#include <thread>

namespace orv {
namespace {

constexpr std::uint64_t MILLISECOND = platform::COUNTER_FREQUENCY / 1000;

std::uint64_t counter_now;
std::uint32_t tick_now;
std::uint64_t cpu_now;

/// Timers that read clocks which the test sets.
class TimerTest : public testing::Test {
 protected:
  TimerTest() : real_(timer_clocks()) {
    counter_now = 5'000'000'000;
    tick_now = 4'294'967'290u;  // wraps six milliseconds later
    cpu_now = 1234;
    timer_clocks() = {[] { return counter_now; }, [] { return tick_now; }, [] { return cpu_now; }};
  }
  ~TimerTest() override { timer_clocks() = real_; }

  static void advance(std::uint64_t ms) {
    counter_now += ms * MILLISECOND;
    tick_now += static_cast<std::uint32_t>(ms);
  }

 private:
  TimerClocks real_;
};

TEST_F(TimerTest, CountsFromResetInWholeUnits) {
  Timer timer;
  EXPECT_EQ(timer.getMilliseconds(), 0u);
  advance(250);
  counter_now += MILLISECOND / 2;
  EXPECT_EQ(timer.getMilliseconds(), 250u);
  EXPECT_EQ(timer.getMicroseconds(), 250500u);
  timer.reset();
  EXPECT_EQ(timer.getMicroseconds(), 0u);
}

TEST_F(TimerTest, ForwardJumpOfMoreThanAHundredMillisecondsIsTakenOut) {
  Timer timer;
  advance(50);
  EXPECT_EQ(timer.getMilliseconds(), 50u);
  counter_now += 10'000 * MILLISECOND;
  EXPECT_EQ(timer.getMilliseconds(), 50u);
  advance(30);
  EXPECT_EQ(timer.getMilliseconds(), 80u);
  EXPECT_EQ(timer.getMicroseconds(), 80'000u);
}

TEST_F(TimerTest, JumpIsTakenOutOfMicrosecondsToo) {
  Timer timer;
  advance(50);
  counter_now += 500 * MILLISECOND;
  EXPECT_EQ(timer.getMicroseconds(), 50'000u);
}

TEST_F(TimerTest, TimeNeverGoesBackThroughAJump) {
  Timer timer;
  advance(50);
  counter_now += 80 * MILLISECOND;  // small enough to be believed
  EXPECT_EQ(timer.getMilliseconds(), 130u);
  counter_now += 60 * MILLISECOND;  // the drift is 140 now, of which 60 are new
  EXPECT_EQ(timer.getMilliseconds(), 130u);
}

TEST_F(TimerTest, JumpOfAHundredMillisecondsIsBelieved) {
  Timer timer;
  counter_now += 100 * MILLISECOND;
  EXPECT_EQ(timer.getMilliseconds(), 100u);
  Timer other;
  counter_now += 101 * MILLISECOND;
  EXPECT_EQ(other.getMilliseconds(), 0u);
}

TEST_F(TimerTest, CounterThatFallsBehindIsPushedForward) {
  Timer timer;
  tick_now += 100;
  EXPECT_EQ(timer.getMilliseconds(), 0u);
  tick_now += 200;
  EXPECT_EQ(timer.getMilliseconds(), 300u);
}

TEST_F(TimerTest, MicrosecondsSurviveLongRuns) {
  Timer timer;
  const std::uint64_t days = 400ull * 24 * 3600 * 1000;
  advance(days);
  EXPECT_EQ(timer.getMicroseconds(), static_cast<unsigned int>(days * 1000));
  EXPECT_EQ(timer.getMilliseconds(), static_cast<unsigned int>(days));
}

TEST_F(TimerTest, ProcessorTimeCountsFromReset) {
  Timer timer;
  EXPECT_EQ(timer.getMillisecondsCPU(), 0u);
  cpu_now += 321;
  EXPECT_EQ(timer.getMillisecondsCPU(), 321u);
  EXPECT_EQ(timer.getMicrosecondsCPU(), 321000u);
  cpu_now += 1ull << 40;
  EXPECT_EQ(timer.getMicrosecondsCPU(), 0xFFFFFFFFu);
}

TEST(Timer, MeasuresRealTime) {
  Timer timer;
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  const unsigned int us = timer.getMicroseconds();
  EXPECT_GE(us, 20000u);
  EXPECT_GE(timer.getMilliseconds(), us / 1000);
}

}  // namespace
}  // namespace orv
