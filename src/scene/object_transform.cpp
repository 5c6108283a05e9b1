// Object: its place in space, and the matrices of its own.
#include <orv/scene/object.h>

#include <orv/math/angles.h>

#include "scene/object_data.h"
#include "scene/object_walk.h"

#include <cstring>

namespace orv {

namespace {

/// Links of a chain that are kept. Objects below that many others multiply the rest each time:
/// every object of a deep tree keeps a chain of its own.
constexpr std::size_t MAX_KEPT_LINKS = 64;

/// Puts `matrix` at position `i` of a chain. False when it stood there already, to the byte.
bool store_link(std::vector<mat4>& chain, std::size_t i, const mat4& matrix) {
  if (i >= chain.size()) {
    chain.push_back(matrix);
    return true;
  }
  // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): bytes are what is meant.
  if (std::memcmp(chain[i].ptr(), matrix.ptr(), 16 * sizeof(float)) == 0) return false;
  chain[i] = matrix;
  return true;
}

void write3(const vec4& v, float* out) {
  if (!out) return;
  out[0] = v.x;
  out[1] = v.y;
  out[2] = v.z;
}

void write(float value, float* out) {
  if (out) *out = value;
}

}  // namespace

// ---- local transform ------------------------------------------------------------------------

void Object::set_position(float x, float y, float z) { data_->tripod.set_position(x, y, z, 1.0f); }

void Object::set_position(const vec4& position) { data_->tripod.set_position(position); }

const vec4& Object::get_position() const { return data_->tripod.get_position(); }

void Object::set_orientation_euler_xyz(float x, float y, float z) {
  data_->tripod.set_orientation_euler_angles(x, y, z);
}

void Object::set_orientation(const quat& orientation) {
  data_->tripod.set_orientation(orientation);
}

const quat& Object::get_orientation() const { return data_->tripod.get_orientation(); }

void Object::get_orientation_euler_angles(float* x, float* y, float* z) const {
  const vec4 angles = data_->tripod.get_orientation_euler_angles();
  write(angles.x, x);
  write(angles.y, y);
  write(angles.z, z);
}

void Object::get_orientation_vectors(vec4* x_axis, vec4* y_axis, vec4* z_axis) const {
  data_->tripod.get_orientation_vectors(x_axis, y_axis, z_axis);
}

void Object::get_orientation_vectors_v2(float* x_axis, float* y_axis, float* z_axis) const {
  vec4 x, y, z;
  data_->tripod.get_orientation_vectors(&x, &y, &z);
  write3(x, x_axis);
  write3(y, y_axis);
  write3(z, z_axis);
}

void Object::set_scale(float x, float y, float z) { data_->tripod.set_scale(x, y, z); }

void Object::set_scale(const vec4& scale) { data_->tripod.set_scale(scale); }

const vec4& Object::get_scale() const { return data_->tripod.get_scale(); }

void Object::set_transform(const mat4& transform) { data_->tripod.set_transform(transform); }

void Object::set_transform(float* transform) { data_->tripod.set_transform(transform); }

void Object::set_transform_v2(const mat4& transform, const vec4& position,
                              const quat& orientation) {
  data_->tripod.set_transform_v2(transform, position, orientation);
}

mat4& Object::get_transform() const { return *data_->tripod.get_transform_mat4_ptr(); }

float* Object::get_transform_float_ptr() const { return data_->tripod.get_transform_ptr(); }

mat4* Object::get_transform_mat4_ptr() const { return data_->tripod.get_transform_mat4_ptr(); }

Tripod* Object::get_tripod() const { return &data_->tripod; }

// ---- absolute transform ---------------------------------------------------------------------

mat4& Object::get_absolute_transform() {
  const auto updated_transform = [](Node* object) -> const mat4& {
    Tripod& tripod = static_cast<Object*>(object)->data_->tripod;
    tripod.update_transform();
    return *tripod.get_transform_mat4_ptr();
  };
  const mat4& local = updated_transform(this);
  if (!get_parent()) return data_->absolute_transform = local;

  std::vector<mat4>& chain = data_->chain;
  bool changed = store_link(chain, 0, local);
  std::size_t length = 1;
  Node* node = get_parent();
  for (; node && length < MAX_KEPT_LINKS; node = node->get_parent()) {
    if (!node->is_type_of(NODE_TYPE_OBJECT)) continue;
    changed |= store_link(chain, length++, updated_transform(node));
  }
  if (length < chain.size()) {
    chain.resize(length);
    changed = true;
  }
  if (changed) {
    data_->chain_product = chain[0];
    for (std::size_t i = 1; i < length; ++i) {
      data_->chain_product = chain[i] * data_->chain_product;
    }
  }
  data_->absolute_transform = data_->chain_product;
  for (; node; node = node->get_parent()) {
    if (!node->is_type_of(NODE_TYPE_OBJECT)) continue;
    data_->absolute_transform = updated_transform(node) * data_->absolute_transform;
  }
  return data_->absolute_transform;
}

float* Object::get_absolute_transform_float_ptr() { return get_absolute_transform().ptr(); }

mat4* Object::get_absolute_transform_mat4_ptr() { return &get_absolute_transform(); }

const vec4& Object::get_absolute_position() {
  const float* m = get_absolute_transform().ptr();
  return data_->absolute_position = vec4(m[12], m[13], m[14], 1.0f);
}

void Object::get_absolute_orientation(quat& orientation) {
  mat4 rotation = get_absolute_transform();
  rotation.set_translate(0.0f, 0.0f, 0.0f);
  rotation.to_quat(orientation);
}

void Object::get_absolute_orientation_euler_angles(float* x, float* y, float* z) {
  quat orientation;
  get_absolute_orientation(orientation);
  vec4 radians;
  orientation.to_euler(&radians.x, &radians.y, &radians.z);
  write(radians.x * RADIANS_TO_DEGREES, x);
  write(radians.y * RADIANS_TO_DEGREES, y);
  write(radians.z * RADIANS_TO_DEGREES, z);
}

void Object::get_absolute_orientation_vectors(vec4* x_axis, vec4* y_axis, vec4* z_axis) {
  quat orientation;
  get_absolute_orientation(orientation);
  if (x_axis) *x_axis = orientation * vec4::UNIT_X_AXIS;
  if (y_axis) *y_axis = orientation * vec4::UNIT_Y_AXIS;
  if (z_axis) *z_axis = orientation * vec4::UNIT_Z_AXIS;
}

void Object::get_absolute_orientation_vectors_v2(float* x_axis, float* y_axis, float* z_axis) {
  vec4 x, y, z;
  get_absolute_orientation_vectors(&x, &y, &z);
  write3(x, x_axis);
  write3(y, y_axis);
  write3(z, z_axis);
}

void Object::get_plane_equation(float* out) {
  if (!out) return;
  vec4 normal;
  get_absolute_orientation_vectors(nullptr, &normal, nullptr);
  write3(normal, out);
  out[3] = -normal.dot(get_absolute_position());
}

void Object::get_plane_equation(float* a, float* b, float* c, float* d) {
  float plane[4];
  get_plane_equation(plane);
  write(plane[0], a);
  write(plane[1], b);
  write(plane[2], c);
  write(plane[3], d);
}

// ---- matrices of its own --------------------------------------------------------------------

void Object::set_projection_matrix(const mat4& matrix, Node* node) {
  data_->projection_matrix = matrix;
  visit_object_children(node, [&](Object* child) { child->set_projection_matrix(matrix, child); });
}

const mat4& Object::get_projection_matrix() const { return data_->projection_matrix; }

void Object::set_view_matrix(const mat4& matrix, Node* node) {
  data_->view_matrix = matrix;
  visit_object_children(node, [&](Object* child) { child->set_view_matrix(matrix, child); });
}

const mat4& Object::get_view_matrix() const { return data_->view_matrix; }

}  // namespace orv
