/// @file
/// The clocks that a GPU reaches by itself.
#pragma once

#include <orv/core/api.h>

namespace orv {

/// How a GPU raises its clock while temperature and power allow, and its curve of voltage and
/// clock. A monitor fills it.
class ORV_API gpuBoostv2 {
 public:
  /// Points of the curve, at most.
  static constexpr unsigned int MAX_POINTS = 128;

  /// A point of the curve.
  class Point {
   public:
    unsigned int voltage = 0;  ///< microvolts
    unsigned int clock = 0;    ///< kHz as the maker set it
    int offset = 0;            ///< kHz that are added to it
  };

  unsigned int base_clock = 0;      ///< MHz that are always reached
  unsigned int boost_clock = 0;     ///< MHz that are usually reached
  unsigned int max_clock = 0;       ///< MHz that are never exceeded
  float temperature_target = 0.0f;  ///< degrees Celsius above which the clock falls
  float power_target = 0.0f;        ///< percent of the default power limit above which it falls
  float voltage_boost = 0.0f;       ///< percent of the additional voltage, 0 to 100
  bool temperature_first = false;   ///< temperature decides before power
  unsigned int num_points = 0;      ///< points in use
  Point points[MAX_POINTS];         ///< by rising voltage
};

}  // namespace orv
