/// @file
/// Stopwatch.
#pragma once

#include <orv/core/api.h>

namespace orv {

/// Measures the time and the processor time since reset(). Results wrap at 32 bits.
class ORV_API Timer {
 public:
  /// Starts at zero.
  Timer();
  ~Timer();

  /// Starts again at zero.
  void reset();

  /// Elapsed time. A jump of the fine counter of more than 100 ms against the coarse clock is taken
  /// out.
  unsigned int getMilliseconds();
  /// The same in microseconds.
  unsigned int getMicroseconds();

  /// Processor time that the process used, in the granularity of a float.
  unsigned int getMillisecondsCPU() const;
  /// The same in microseconds.
  unsigned int getMicrosecondsCPU() const;

 private:
  unsigned long long read_elapsed();

  unsigned long long start_clock_;
  unsigned int start_tick_;
  unsigned long long last_time_;
  unsigned long long start_time_;
};

}  // namespace orv
