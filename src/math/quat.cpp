#include <orv/math/quat.h>

#include <algorithm>
#include <cmath>

#include "math/turn.h"

namespace orv {

void quat::from_axis_angle(float degrees, float ax, float ay, float az, bool /*unused*/) {
  const Turn half = Turn::of_radians(degrees * (DEGREES_TO_RADIANS * 0.5f));
  set(ax * half.s, ay * half.s, az * half.s, half.c);
  normalize();
}

void quat::from_euler(float ex, float ey, float ez) {
  quat qx;
  quat qy;
  quat qz;
  qx.from_axis_angle(ex, vec4::UNIT_X_AXIS);
  qy.from_axis_angle(ey, vec4::UNIT_Y_AXIS);
  qz.from_axis_angle(ez, vec4::UNIT_Z_AXIS);
  *this = qy * qx * qz;
  normalize();
}

void quat::to_euler(float* px, float* py, float* pz) const {
  const float sine = -2.0f * (x * z - y * w);
  if (py) {
    // Rounding may take the sine of a quarter turn past 1, where there is no angle.
    const float limit = std::abs(sine) < 1.00001f ? std::clamp(sine, -1.0f, 1.0f) : sine;
    *py = static_cast<float>(std::asin(static_cast<double>(limit)));
  }
  if (pz) {
    *pz = static_cast<float>(std::atan2(static_cast<double>(2.0f * (x * y + z * w)),
                                        static_cast<double>(x * x - y * y - z * z + w * w)));
  }
  if (px) {
    *px = static_cast<float>(std::atan2(static_cast<double>(2.0f * (y * z + x * w)),
                                        static_cast<double>(z * z - (x * x + y * y) + w * w)));
  }
}

void quat::from_vector_rotation(const vec4& a, const vec4& b) {
  const float d = a.dot(b);
  if (d == 1.0f) {
    identity();
    return;
  }
  const float s = std::sqrt((1.0f + d) * 2.0f);
  const vec4 c = a.cross(b);
  set(c.x / s, c.y / s, c.z / s, s * 0.5f);
  normalize();
}

}  // namespace orv
