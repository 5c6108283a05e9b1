// Camera: turning, aiming and moving.
#include <orv/scene/camera.h>

#include <orv/scene/tripod.h>

#include "scene/camera_data.h"

namespace orv {

namespace {

/// One side of a cube map: a direction to look along, and what is up then.
struct CubeFace {
  vec4 target;
  vec4 up;
};

constexpr CubeFace CUBE_FACES[] = {
    {vec4(1.0f, 0.0f, 0.0f, 0.0f), vec4(0.0f, -1.0f, 0.0f, 0.0f)},
    {vec4(-1.0f, 0.0f, 0.0f, 0.0f), vec4(0.0f, -1.0f, 0.0f, 0.0f)},
    {vec4(0.0f, 1.0f, 0.0f, 0.0f), vec4(0.0f, 0.0f, 1.0f, 0.0f)},
    {vec4(0.0f, -1.0f, 0.0f, 0.0f), vec4(0.0f, 0.0f, -1.0f, 0.0f)},
    {vec4(0.0f, 0.0f, 1.0f, 0.0f), vec4(0.0f, -1.0f, 0.0f, 0.0f)},
    {vec4(0.0f, 0.0f, -1.0f, 0.0f), vec4(0.0f, -1.0f, 0.0f, 0.0f)},
};

/// A vector turned by a rotation, with w 1.
vec4 turned(const quat& rotation, const vec4& v) {
  vec4 result = rotation * v;
  result.w = 1.0f;
  return result;
}

/// Rotation from one unit axis to another; half a turn about `half_turn_axis` when they are
/// opposite as far as floats can tell, since the shortest rotation is not defined then.
quat rotation_between(const vec4& from, const vec4& to, const vec4& half_turn_axis) {
  quat rotation;
  if (1.0f + from.dot(to) <= 0.0f || (from.x == -to.x && from.y == -to.y && from.z == -to.z)) {
    rotation.from_axis_angle(180.0f, half_turn_axis);
  } else {
    rotation.from_vector_rotation(from, to);
  }
  return rotation;
}

}  // namespace

// ---- position and aim -----------------------------------------------------------------------

void Camera::store_position(const vec4& position) {
  data_->position = position;
  get_tripod()->set_position(position);
  data_->view_dirty = true;
}

void Camera::set_position(float x, float y, float z) { store_position(vec4(x, y, z, 1.0f)); }

void Camera::set_position(const vec4& position) { store_position(position); }

void Camera::set_up(const vec4& up) {
  data_->up = up;
  data_->fixed_yaw_axis = up;
  data_->view_dirty = true;
}

const vec4& Camera::get_up() const { return data_->up; }

void Camera::set_orientation(const quat& orientation) {
  data_->orientation = orientation;
  get_tripod()->set_orientation(orientation);
  data_->view_dirty = true;
}

const quat& Camera::get_orientation() const { return data_->orientation; }

void Camera::set_lookat(const vec4& target) {
  data_->lookat = target;
  vec4 direction;
  if (target.w == 1.0f) direction = target - data_->position;
  if (target.w == 0.0f) direction = target;
  update_direction(direction);
}

void Camera::set_lookat(float x, float y, float z) { set_lookat(vec4(x, y, z, 1.0f)); }

void Camera::set_lookat(float x, float y, float z, float w) { set_lookat(vec4(x, y, z, w)); }

const vec4& Camera::get_lookat() const { return data_->lookat; }

void Camera::set_view_params(const vec4& position, const vec4& target, const vec4& up, bool rh) {
  // The arguments may be the camera's own vectors.
  const vec4 new_target = target;
  const vec4 new_up = up;
  set_position(position);
  set_lookat(new_target);
  data_->up = new_up;
  data_->fixed_yaw_axis = new_up;
  data_->view_rh = rh;
  data_->view_dirty = true;
}

void Camera::set_view_rh_state(bool rh) { data_->view_rh = rh; }

void Camera::update_direction(const vec4& direction) {
  const CameraData& d = *data_;
  if (direction == vec4(0.0f, 0.0f, 0.0f, 1.0f)) return;
  vec4 z_axis = -direction;
  z_axis.normalize();

  quat orientation;
  mat4 axes;
  if (d.rotate_around_fixed_yaw_axis) {
    vec4 x_axis = d.fixed_yaw_axis.cross(z_axis);
    x_axis.normalize();
    vec4 y_axis = z_axis.cross(x_axis);
    y_axis.normalize();
    axes.from_axes_to_quaternion(x_axis, y_axis, z_axis, orientation);
    set_orientation(orientation);
    return;
  }
  // Axes of the matrix, not of a product with the quaternion, whose w is 3.
  vec4 x_now, y_now, z_now;
  axes.from_quat(d.orientation);
  axes.to_axes(x_now, y_now, z_now);
  set_orientation(rotation_between(z_now, z_axis, y_now) * d.orientation);
}

void Camera::set_orientation_cubemap(int face) {
  if (face < 0 || face > 5) return;
  set_up(CUBE_FACES[face].up);
  set_lookat(CUBE_FACES[face].target);
}

// ---- turning --------------------------------------------------------------------------------

void Camera::set_rotate_around_fixed_yaw_axis(bool state) {
  data_->rotate_around_fixed_yaw_axis = state;
}

bool Camera::get_rotate_around_fixed_yaw_axis() const {
  return data_->rotate_around_fixed_yaw_axis;
}

void Camera::rotate(const quat& rotation) { set_orientation(rotation * data_->orientation); }

void Camera::rotate(float degrees, const vec4& axis) {
  quat rotation;
  rotation.from_axis_angle(degrees, axis);
  rotate(rotation);
}

void Camera::set_yaw(float degrees) {
  rotate(degrees, data_->rotate_around_fixed_yaw_axis
                      ? data_->fixed_yaw_axis
                      : turned(data_->orientation, vec4::UNIT_Y_AXIS));
  data_->yaw = degrees;
}

void Camera::set_pitch(float degrees) {
  rotate(degrees, turned(data_->orientation, vec4::UNIT_X_AXIS));
  data_->pitch = degrees;
}

void Camera::set_roll(float degrees) {
  rotate(degrees, turned(data_->orientation, vec4::UNIT_Z_AXIS));
  data_->roll = degrees;
}

float Camera::get_yaw() const { return data_->yaw; }

float Camera::get_pitch() const { return data_->pitch; }

float Camera::get_roll() const { return data_->roll; }

void Camera::rotate_view(float pitch, float yaw) {
  set_yaw(yaw);
  set_pitch(pitch);
}

// ---- moving ---------------------------------------------------------------------------------

vec4 Camera::get_view_vector() const {
  return turned(data_->orientation, vec4(0.0f, 0.0f, -1.0f, 1.0f));
}

vec4 Camera::get_up_vector() const { return turned(data_->orientation, vec4::UNIT_Y_AXIS); }

void Camera::move_along_view(float distance) {
  const vec4 step = get_view_vector() * distance;
  const vec4& p = data_->position;
  store_position(vec4(p.x + step.x, p.y + step.y, p.z + step.z, 1.0f));
}

void Camera::move_along_view_xz(float distance) {
  const vec4 step = get_view_vector() * distance;
  const vec4& p = data_->position;
  store_position(vec4(p.x + step.x, p.y, p.z + step.z, p.w));
}

void Camera::strafe(const vec4& delta, bool move_lookat) {
  const vec4& p = data_->position;
  store_position(vec4(p.x + delta.x, p.y + delta.y, p.z + delta.z, 1.0f));
  if (!move_lookat) return;
  const vec4& target = data_->lookat;
  set_lookat(vec4(target.x + delta.x, target.y + delta.y, target.z + delta.z, 1.0f));
}

void Camera::strafe_h(float distance, bool move_lookat) {
  strafe((get_view_vector() * -1.0f).cross(get_up_vector()) * distance, move_lookat);
}

void Camera::strafe_v(float distance, bool move_lookat) {
  strafe(get_up_vector() * distance, move_lookat);
}

// ---- orbit by mouse -------------------------------------------------------------------------

void Camera::init_rotate_position_around_point(float pitch, float yaw, int mouse_x, int mouse_y) {
  data_->orbit_pitch = pitch;
  data_->orbit_yaw = yaw;
  data_->orbit_mouse_x = mouse_x;
  data_->orbit_mouse_y = mouse_y;
}

void Camera::rotate_position_around_point_by_mouse(const vec4&, int mouse_x, int mouse_y,
                                                   float speed) {
  CameraData& d = *data_;
  // 64 bits: two ints may lie further apart than an int can tell.
  const float dx = static_cast<float>(static_cast<long long>(mouse_x) - d.orbit_mouse_x);
  const float dy = static_cast<float>(static_cast<long long>(mouse_y) - d.orbit_mouse_y);
  d.orbit_mouse_x = mouse_x;
  d.orbit_mouse_y = mouse_y;
  d.orbit_yaw -= dy * speed;
  d.orbit_pitch += dx * speed;
  if (d.orbit_pitch >= d.pitch_limit_max) {
    d.orbit_pitch = d.pitch_limit_max;
    return;
  }
  if (d.orbit_pitch <= d.pitch_limit_min) {
    d.orbit_pitch = d.pitch_limit_min;
    return;
  }
  set_yaw(d.orbit_yaw);
  set_pitch(d.orbit_pitch);
}

void Camera::set_pitch_angle_limits(float max, float min) {
  data_->pitch_limit_max = max;
  data_->pitch_limit_min = min;
}

}  // namespace orv
