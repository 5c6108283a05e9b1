#include "orbit.h"

#include <algorithm>
#include <cmath>

namespace demo {

void Orbit::turn(float yaw, float pitch) {
  yaw_ += yaw;
  pitch_ = std::clamp(pitch_ + pitch, 2.0f, 85.0f);
}

void Orbit::zoom(float factor) { distance_ = std::clamp(distance_ * factor, 2.5f, 20.0f); }

void Orbit::place(orv::Camera& camera) const {
  constexpr float radians = 0.017453292f;
  const orv::vec4 target(0.1f, 0.85f, 0.0f, 1.0f);
  const float flat = std::cos(pitch_ * radians) * distance_;
  camera.set_position(target.x + std::sin(yaw_ * radians) * flat,
                      target.y + std::sin(pitch_ * radians) * distance_,
                      target.z + std::cos(yaw_ * radians) * flat);
  camera.set_lookat(target);
}

}  // namespace demo
