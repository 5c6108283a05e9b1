// Sine and cosine of an angle in degrees, rounded in the same way for all types.
#pragma once

#include <orv/math/angles.h>

#include <cmath>

namespace orv {

struct Turn {
  float c;
  float s;

  // The angle is rounded to float first, the functions run in double: equal bits on every machine.
  static Turn of_radians(float radians) {
    return Turn{static_cast<float>(std::cos(static_cast<double>(radians))),
                static_cast<float>(std::sin(static_cast<double>(radians)))};
  }
  static Turn of_degrees(float degrees) { return of_radians(degrees * DEGREES_TO_RADIANS); }
};

inline float degrees_of(double radians) { return static_cast<float>(radians) * RADIANS_TO_DEGREES; }

}  // namespace orv
