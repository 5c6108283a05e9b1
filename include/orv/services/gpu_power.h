/// @file
/// What a GPU draws.
#pragma once

#include <orv/core/api.h>

namespace orv {

/// Power of a GPU, in watts where not told otherwise. A monitor fills it; 0 stands for what it
/// cannot tell.
class ORV_API gpuPower {
 public:
  float current = 0.0f;               ///< drawn now
  float max_in_test = 0.0f;           ///< highest since the host set it to 0
  float limit = 0.0f;                 ///< may be drawn
  float limit_default = 0.0f;         ///< as the maker set it
  float limit_min = 0.0f;             ///< lowest limit that can be set
  float limit_max = 0.0f;             ///< highest limit that can be set
  float board = 0.0f;                 ///< drawn by the whole board
  float voltage = 0.0f;               ///< volts of the core
  float amperage = 0.0f;              ///< amperes of the core
  float energy = 0.0f;                ///< kilojoules since the driver was loaded
  unsigned int throttle_reasons = 0;  ///< bits of GPU_THROTTLE_REASON

  /// Raises the highest reading to the present one.
  void update_max_in_test() {
    if (current > max_in_test) max_in_test = current;
  }
};

}  // namespace orv
