#include <orv/scene/tripod.h>

#include <orv/math/mat4.h>
#include <orv/math/quat.h>
#include <orv/math/vec4.h>

namespace orv {

struct TripodData {
  quat orientation;
  vec4 euler_angles;
  vec4 position;
  vec4 scale{1.0f, 1.0f, 1.0f, 1.0f};
  mat4 transform;
  bool transform_dirty = true;
  bool orientation_dirty = true;
  TRANSFORM_ORDER transform_order = TRANSFORM_ORDER_TRS;
};

Tripod::Tripod() : data_(new TripodData) {}

Tripod::~Tripod() { delete data_; }

// ---- position ---------------------------------------------------------------------------------

void Tripod::set_position(float x, float y, float z, float w) {
  data_->position.set(x, y, z, w);
  data_->transform_dirty = true;
}

void Tripod::set_position(const vec4& position) {
  data_->position = position;
  data_->transform_dirty = true;
}

const vec4& Tripod::get_position() const { return data_->position; }

float* Tripod::get_position_ptr() { return data_->position.ptr(); }

vec4* Tripod::get_position_vec4_ptr() { return &data_->position; }

// ---- orientation ------------------------------------------------------------------------------

void Tripod::set_orientation(const quat& orientation) {
  data_->orientation = orientation;
  data_->orientation_dirty = false;
  data_->transform_dirty = true;
}

const quat& Tripod::get_orientation() {
  update_orientation();
  return data_->orientation;
}

void Tripod::set_orientation_euler_angles(float x, float y, float z) {
  data_->euler_angles.set(x, y, z, 1.0f);
  data_->orientation_dirty = true;
  data_->transform_dirty = true;
}

const vec4& Tripod::get_orientation_euler_angles() const { return data_->euler_angles; }

void Tripod::get_orientation_vectors(vec4* x, vec4* y, vec4* z) {
  update_orientation();
  const quat& q = data_->orientation;
  if (x) *x = q * vec4::UNIT_X_AXIS;
  if (y) *y = q * vec4::UNIT_Y_AXIS;
  if (z) *z = q * vec4::UNIT_Z_AXIS;
}

void Tripod::update_orientation() {
  if (!data_->orientation_dirty) return;
  quat turn_x;
  quat turn_y;
  quat turn_z;
  turn_x.from_axis_angle(data_->euler_angles.x, vec4::UNIT_X_AXIS);
  turn_y.from_axis_angle(data_->euler_angles.y, vec4::UNIT_Y_AXIS);
  turn_z.from_axis_angle(data_->euler_angles.z, vec4::UNIT_Z_AXIS);
  data_->orientation = turn_x * turn_y * turn_z;
  data_->orientation_dirty = false;
}

// ---- scale ------------------------------------------------------------------------------------

void Tripod::set_scale(float x, float y, float z) { set_scale(vec4(x, y, z, 1.0f)); }

void Tripod::set_scale(const vec4& scale) {
  data_->scale = scale;
  data_->transform_dirty = true;
}

const vec4& Tripod::get_scale() const { return data_->scale; }

float* Tripod::get_scale_ptr() { return data_->scale.ptr(); }

vec4* Tripod::get_scale_vec4_ptr() { return &data_->scale; }

// ---- matrix -----------------------------------------------------------------------------------

void Tripod::set_transform(const mat4& transform) { set_transform(transform.ptr()); }

void Tripod::set_transform(const float* transform) {
  data_->transform.from_float_array(transform);
  data_->transform_dirty = false;
}

void Tripod::set_transform_v2(const mat4& transform, const vec4& position,
                              const quat& orientation) {
  data_->transform = transform;
  data_->position = position;
  data_->orientation = orientation;
  data_->scale.set(1.0f, 1.0f, 1.0f, 1.0f);
  data_->transform_dirty = false;
  // Angles set before and not used yet would turn away from what was just set.
  data_->orientation_dirty = false;
}

mat4& Tripod::get_transform() { return data_->transform; }

mat4* Tripod::get_transform_mat4_ptr() { return &data_->transform; }

float* Tripod::get_transform_ptr() { return data_->transform.ptr(); }

void Tripod::set_transform_order(TRANSFORM_ORDER order) { data_->transform_order = order; }

TRANSFORM_ORDER Tripod::get_transform_order() const { return data_->transform_order; }

void Tripod::update_transform() {
  if (!data_->transform_dirty) return;
  data_->transform_dirty = false;
  update_orientation();
  mat4 translation;
  mat4 rotation;
  mat4 scale;
  translation.init_translate(data_->position);
  rotation.from_quat(data_->orientation);
  scale.init_scale(data_->scale);
  switch (data_->transform_order) {
    case TRANSFORM_ORDER_TRS:
      data_->transform = translation * rotation * scale;
      break;
    case TRANSFORM_ORDER_RTS:
      data_->transform = rotation * translation * scale;
      break;
    case TRANSFORM_ORDER_TSR:
      data_->transform = translation * scale * rotation;
      break;
    case TRANSFORM_ORDER_RST:
      data_->transform = rotation * scale * translation;
      break;
  }
}

}  // namespace orv
