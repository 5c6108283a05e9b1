#include <orv/core/timer.h>

#include "core/platform/platform.h"
#include "core/timer_clocks.h"

#include <algorithm>

namespace orv {

namespace {

constexpr std::uint64_t FREQUENCY = platform::COUNTER_FREQUENCY;

std::uint64_t to_milliseconds(std::uint64_t ticks) { return ticks / (FREQUENCY / 1000); }

}  // namespace

TimerClocks& timer_clocks() {
  static TimerClocks clocks{platform::read_counter, platform::read_tick, platform::read_cpu_clock};
  return clocks;
}

Timer::Timer() { reset(); }

Timer::~Timer() = default;

void Timer::reset() {
  const TimerClocks& clocks = timer_clocks();
  start_clock_ = clocks.cpu_clock();
  start_time_ = clocks.counter();
  start_tick_ = clocks.tick();
  last_time_ = 0;
}

unsigned long long Timer::read_elapsed() {
  const TimerClocks& clocks = timer_clocks();
  std::uint64_t elapsed = clocks.counter() - start_time_;
  const auto ms = static_cast<std::uint32_t>(to_milliseconds(elapsed));
  const auto drift = static_cast<std::int32_t>(start_tick_ + ms - clocks.tick());
  if (drift < -100 || drift > 100) {
    // The counter ran away from the coarse clock, which is believed.
    const std::int64_t surplus = std::int64_t{drift} * static_cast<std::int64_t>(FREQUENCY / 1000);
    const std::int64_t adjust = std::min(surplus, static_cast<std::int64_t>(elapsed - last_time_));
    start_time_ += static_cast<std::uint64_t>(adjust);
    elapsed -= static_cast<std::uint64_t>(adjust);
  }
  last_time_ = elapsed;
  return elapsed;
}

unsigned int Timer::getMilliseconds() {
  return static_cast<unsigned int>(to_milliseconds(read_elapsed()));
}

unsigned int Timer::getMicroseconds() {
  return static_cast<unsigned int>(read_elapsed() / (FREQUENCY / 1'000'000));
}

unsigned int Timer::getMillisecondsCPU() const {
  return static_cast<unsigned int>(static_cast<float>(timer_clocks().cpu_clock() - start_clock_));
}

unsigned int Timer::getMicrosecondsCPU() const {
  const auto ms = static_cast<float>(timer_clocks().cpu_clock() - start_clock_);
  const double us = static_cast<double>(ms) / 0.001;
  return us < 4294967296.0 ? static_cast<unsigned int>(us) : 0xFFFFFFFFu;
}

}  // namespace orv
