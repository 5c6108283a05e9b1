#pragma once

#include <cstdint>

namespace orv {

/// Where timers read the time; a test may put clocks of its own here.
struct TimerClocks {
  std::uint64_t (*counter)();    ///< fine counter, platform::COUNTER_FREQUENCY ticks a second
  std::uint32_t (*tick)();       ///< coarse clock in milliseconds
  std::uint64_t (*cpu_clock)();  ///< processor time in milliseconds
};

TimerClocks& timer_clocks();

}  // namespace orv
