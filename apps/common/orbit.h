#pragma once

#include <orv/math/vec4.h>
#include <orv/scene/camera.h>

namespace orv_app {

/// A point of view that turns around a target: angles in degrees, distance in scene units.
class Orbit {
 public:
  struct Range {
    float min;
    float max;
  };
  /// Where the orbit starts, and how far it goes.
  struct Setup {
    orv::vec4 target;
    float yaw = 0.0f;
    float pitch = 0.0f;
    float distance = 1.0f;
    Range pitches = {-89.0f, 89.0f};
    Range distances = {0.01f, 100.0f};
  };

  explicit Orbit(const Setup& setup) : setup_(setup) {}

  /// Turns by degrees, to the right and up; the pitch stays within its range.
  void turn(float yaw, float pitch);
  /// Multiplies the distance, within its range.
  void zoom(float factor);

  float get_yaw() const { return setup_.yaw; }
  float get_pitch() const { return setup_.pitch; }
  float get_distance() const { return setup_.distance; }

  /// The point of view, `unit` scene units standing for one unit of distance.
  orv::vec4 get_position(float unit = 1.0f) const;
  /// Puts the camera there, looking at the target.
  void place(orv::Camera& camera, float unit = 1.0f) const;

 private:
  Setup setup_;
};

}  // namespace orv_app
