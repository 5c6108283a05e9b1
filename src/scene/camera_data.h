#pragma once

#include <orv/math/angles.h>
#include <orv/math/frustum.h>
#include <orv/math/mat4.h>
#include <orv/math/quat.h>
#include <orv/math/vec4.h>
#include <orv/scene/camera.h>
#include <orv/scene/viewport.h>

#include <cmath>

namespace orv {

/// Tangent of half an angle in degrees.
inline float tan_half(float degrees) {
  return static_cast<float>(std::tan(static_cast<double>(degrees * 0.5f * DEGREES_TO_RADIANS)));
}

/// The private block of a Camera.
struct CameraData {
  static CameraData& of(Camera& camera) { return *camera.data_; }

  /// The planes as the projection is built from them.
  struct Planes {
    float znear;
    float zfar;
  };
  Planes usable_planes() const {
    return planes_from_file ? usable_file_planes(znear, zfar) : Planes{znear, zfar};
  }
  static Planes usable_file_planes(float z_near, float z_far) {
    return z_near > 0.0f && z_far > z_near ? Planes{z_near, z_far} : Planes{1.0f, 1000.0f};
  }

  Viewport viewport;

  float fov = 60.0f;
  float tan_fov_div_2 = tan_half(60.0f);
  float aspect = 1.7777778f;
  float znear = 1.0f;
  float zfar = 1000.0f;
  bool planes_from_file = false;  // files may leave both planes at 0
  bool fov_is_vertical = true;
  bool perspective = true;
  bool projection_dirty = true;
  mat4 projection_matrix;
  bool proj_rh = true;

  mat4 view_matrix;
  mat4 reflection_matrix;
  mat4 inv_view_matrix;
  mat4 inv_projection_matrix;
  bool view_rh = true;  // kept for the host; no matrix depends on it
  mat4 view_projection_matrix;
  bool view_projection_dirty = true;

  bool rotate_around_fixed_yaw_axis = true;
  vec4 fixed_yaw_axis{0.0f, 1.0f, 0.0f, 1.0f};
  quat orientation;
  float pitch = 0.0f;
  float yaw = 0.0f;
  float roll = 0.0f;
  float orbit_yaw = 0.0f;
  float orbit_pitch = 0.0f;
  int orbit_mouse_x = 0;
  int orbit_mouse_y = 0;
  float pitch_limit_max = 80.0f;
  float pitch_limit_min = -80.0f;
  vec4 position{0.0f, 0.0f, 10.0f, 1.0f};
  vec4 lookat{0.0f, 0.0f, 0.0f, 1.0f};
  vec4 up{0.0f, 1.0f, 0.0f, 0.0f};
  bool view_dirty = true;
  bool inv_view_dirty = true;
  bool inv_projection_dirty = true;

  Frustum frustum;
};

}  // namespace orv
