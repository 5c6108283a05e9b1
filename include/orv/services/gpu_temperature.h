/// @file
/// A temperature of a GPU with its extremes.
#pragma once

#include <orv/core/api.h>

namespace orv {

/// A temperature in degrees Celsius and the lowest and highest that were read.
class ORV_API gpuTemperature {
 public:
  float current = 0.0f;  ///< read last
  float min = 1000.0f;   ///< lowest, above all readings at first
  float max = -1000.0f;  ///< highest, below all readings at first

  /// Both extremes become the present reading.
  void init_min_max_from_current() { min = max = current; }

  /// Widens the extremes to the present reading.
  void update_min_max() {
    if (current < min) min = current;
    if (current > max) max = current;
  }
};

}  // namespace orv
