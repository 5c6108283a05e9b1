#pragma once

#include <orv/geometry/polyline.h>

#include <cmath>

namespace orv {

/// What all line shapes do when they are asked to build: their own step through its slot, when they
/// are due.
template <class Shape>
bool build_line_shape(Shape& shape) {
  if (!shape.get_build_state()) return true;
  shape.update_build_state(false);
  return shape._build();
}

/// Calls write(i, c, s) for the `n` * 2 vertices of a circle's segments, c and s being cosine and
/// sine of the angle.
template <class Write>
void for_each_circle_vertex(unsigned int n, Write write) {
  // Circles convert degrees with a factor of their own.
  constexpr float CIRCLE_RADIANS = 0.01745328f;
  const float step = 360.0f / static_cast<float>(n) * CIRCLE_RADIANS;
  for (unsigned int i = 0; i < n; ++i) {
    for (unsigned int end = 0; end < 2; ++end) {
      const double angle = static_cast<double>(static_cast<float>(i + end) * step);
      write(2 * i + end, static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle)));
    }
  }
}

}  // namespace orv
