#include "common/orbit.h"

#include <algorithm>
#include <cmath>

namespace orv_app {

void Orbit::turn(float yaw, float pitch) {
  setup_.yaw = std::remainder(setup_.yaw + yaw, 360.0f);
  setup_.pitch = std::clamp(setup_.pitch + pitch, setup_.pitches.min, setup_.pitches.max);
}

void Orbit::zoom(float factor) {
  setup_.distance =
      std::clamp(setup_.distance * factor, setup_.distances.min, setup_.distances.max);
}

orv::vec4 Orbit::get_position(float unit) const {
  constexpr float radians = 0.017453292f;
  const float distance = setup_.distance * unit;
  const float flat = std::cos(setup_.pitch * radians) * distance;
  return orv::vec4(setup_.target.x + std::sin(setup_.yaw * radians) * flat,
                   setup_.target.y + std::sin(setup_.pitch * radians) * distance,
                   setup_.target.z + std::cos(setup_.yaw * radians) * flat, 1.0f);
}

void Orbit::place(orv::Camera& camera, float unit) const {
  camera.set_position(get_position(unit));
  camera.set_lookat(setup_.target);
}

}  // namespace orv_app
