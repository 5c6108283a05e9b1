#include <orv/math/vec4.h>

#include <cmath>

#include "math/turn.h"

namespace orv {

// ---- turns ------------------------------------------------------------------------------------

void vec4::rotate_x(float degrees) {
  const Turn t = Turn::of_degrees(degrees);
  *this = vec4(x, t.c * y - t.s * z, t.s * y + t.c * z, w);
}

void vec4::rotate_y(float degrees) {
  const Turn t = Turn::of_degrees(degrees);
  *this = vec4(t.c * x + t.s * z, y, t.c * z - t.s * x, w);
}

void vec4::rotate_z(float degrees) {
  const Turn t = Turn::of_degrees(degrees);
  *this = vec4(t.c * x - t.s * y, t.s * x + t.c * y, z, w);
}

// ---- angles -----------------------------------------------------------------------------------

float vec4::pitch() const {
  return degrees_of(std::atan2(static_cast<double>(y), static_cast<double>(-z)));
}

float vec4::yaw() const {
  return degrees_of(std::atan2(static_cast<double>(x), static_cast<double>(-z)));
}

float vec4::roll() const {
  return degrees_of(std::atan2(static_cast<double>(x), static_cast<double>(-y)));
}

float vec4::angle_to(const vec4& v) const {
  const float product = magnitude_squared() * v.magnitude_squared();
  if (product <= 1.1920929e-7f) return 0.0f;
  const float cosine = dot(v) / std::sqrt(product);
  if (cosine >= 1.0f) return 0.0f;
  if (cosine <= -1.0f) return 180.0f;
  return degrees_of(std::acos(static_cast<double>(cosine)));
}

}  // namespace orv
