#pragma once

#include <orv/scene/camera.h>

namespace demo {

/// A point of view that turns around a target: angles in degrees, distance in scene units.
class Orbit {
 public:
  void turn(float yaw, float pitch);
  void zoom(float factor);
  /// Puts the camera there, looking at the target.
  void place(orv::Camera& camera) const;

 private:
  float yaw_ = 33.0f;
  float pitch_ = 14.0f;
  float distance_ = 7.0f;
};

}  // namespace demo
