#include <orv/scene/camera.h>

#include <orv/math/bounding_volume.h>
#include <orv/render/renderer.h>
#include <orv/scene/tripod.h>

#include "scene/camera_data.h"

namespace orv {

namespace {

/// Keeps an infinite far plane just inside the clip volume.
constexpr float INFINITE_FAR_EPSILON = 0.00001f;

}  // namespace

// ---- life -----------------------------------------------------------------------------------

Camera::Camera() : data_(new CameraData) {
  set_type(NODE_TYPE_CAMERA);
  get_tripod()->set_position(data_->position);
}

Camera::~Camera() { delete data_; }

// ---- viewport -------------------------------------------------------------------------------

void Camera::set_viewport(int x, int y, int width, int height) {
  data_->viewport.set(x, y, width, height);
}

void Camera::set_viewport(const Viewport& viewport) { data_->viewport = viewport; }

const Viewport& Camera::get_viewport() const { return data_->viewport; }

Viewport* Camera::get_viewport_ptr() { return &data_->viewport; }

// ---- projection -----------------------------------------------------------------------------

void Camera::projection_built() {
  data_->projection_dirty = false;
  data_->inv_projection_dirty = true;
  // The product with the view is left as it is: only update_projection_matrix and
  // update_view_matrix mark it. Drawing and the frustum do not go through the product.
}

void Camera::build_projection_ortho(float left, float right, float bottom, float top, float znear,
                                    float zfar, bool rh) {
  CameraData& d = *data_;
  if (rh) {
    d.projection_matrix.buildRHOrthographicProjectionMatrix(left, right, bottom, top, znear, zfar);
  } else {
    d.projection_matrix.buildLHOrthographicProjectionMatrix(left, right, bottom, top, znear, zfar);
  }
  d.znear = znear;
  d.zfar = zfar;
  d.proj_rh = rh;
  d.perspective = false;
  projection_built();
}

void Camera::build_projection_persp(float fov, float aspect, float znear, float zfar, bool rh) {
  build_projection_persp_v2(fov, true, aspect, znear, zfar, rh);
}

void Camera::build_projection_persp_v2(float fov, bool fov_is_vertical, float aspect, float znear,
                                       float zfar, bool rh) {
  CameraData& d = *data_;
  if (rh) {
    d.projection_matrix.buildRHPerspectiveProjectionMatrix_v2(fov, fov_is_vertical, aspect, znear,
                                                              zfar, INFINITE_FAR_EPSILON);
  } else {
    d.projection_matrix.buildLHPerspectiveProjectionMatrix(fov, aspect, znear, zfar);
  }
  d.planes_from_file = false;
  d.fov = fov;
  d.tan_fov_div_2 = tan_half(fov);
  d.fov_is_vertical = fov_is_vertical;
  d.aspect = aspect;
  d.znear = znear;
  d.zfar = zfar;
  d.proj_rh = rh;
  d.perspective = true;
  projection_built();
}

void Camera::build_projection_persp_v3(float fov_x, float fov_y, float aspect, float znear,
                                       float zfar, bool rh) {
  build_projection_persp_v2(fov_y, false, aspect, znear, zfar, rh);
  if (!rh) return;
  data_->projection_matrix.buildRHTwoFovPerspectiveProjectionMatrix(fov_x, fov_y, aspect, znear,
                                                                    zfar, INFINITE_FAR_EPSILON);
}

void Camera::mark_projection_dirty() {
  data_->perspective = true;
  data_->projection_dirty = true;
}

void Camera::set_fov(float degrees) {
  data_->fov = degrees;
  data_->tan_fov_div_2 = tan_half(degrees);
  mark_projection_dirty();
}

void Camera::set_znear(float distance) {
  data_->znear = distance;
  mark_projection_dirty();
}

void Camera::set_zfar(float distance) {
  data_->zfar = distance;
  mark_projection_dirty();
}

void Camera::set_aspect(float aspect) {
  data_->aspect = aspect;
  mark_projection_dirty();
}

float Camera::get_fov() const { return data_->fov; }

float Camera::get_tanfovdiv2() const { return data_->tan_fov_div_2; }

float Camera::get_znear() const { return data_->znear; }

float Camera::get_zfar() const { return data_->zfar; }

float Camera::get_aspect() const { return data_->aspect; }

bool Camera::is_perspective_projection() const { return data_->perspective; }

bool Camera::is_ortho_projection() const { return !data_->perspective; }

void Camera::set_proj_rh_state(bool rh) { data_->proj_rh = rh; }

bool Camera::update_projection_matrix() {
  CameraData& d = *data_;
  if (!d.projection_dirty || !d.perspective) return false;
  // Setters speak of a vertical field of view, whatever the last build was given.
  const CameraData::Planes planes = d.usable_planes();
  if (d.proj_rh) {
    d.projection_matrix.buildRHPerspectiveProjectionMatrix(d.fov, d.aspect, planes.znear,
                                                           planes.zfar, INFINITE_FAR_EPSILON);
  } else {
    d.projection_matrix.buildLHPerspectiveProjectionMatrix(d.fov, d.aspect, planes.znear,
                                                           planes.zfar);
  }
  projection_built();
  d.view_projection_dirty = true;
  return true;
}

void Camera::set_projection_matrix(const mat4& matrix) {
  data_->projection_matrix = matrix;
  data_->projection_dirty = false;
}

const mat4& Camera::get_projection_matrix() {
  update_projection_matrix();
  return data_->projection_matrix;
}

mat4* Camera::get_projection_matrix_ptr() { return &data_->projection_matrix; }

float* Camera::get_projection_matrix_float_ptr() { return data_->projection_matrix.ptr(); }

const mat4& Camera::get_inv_projection_matrix() {
  CameraData& d = *data_;
  update_projection_matrix();
  if (d.inv_projection_dirty) {
    d.inv_projection_matrix = d.projection_matrix;
    d.inv_projection_matrix.inverse();
    d.inv_projection_dirty = false;
  }
  return d.inv_projection_matrix;
}

// ---- view -----------------------------------------------------------------------------------

bool Camera::update_view_matrix() {
  CameraData& d = *data_;
  if (!d.view_dirty) return false;
  mat4 view;
  view.from_quat(d.orientation);
  view.transpose();
  const float* m = view.ptr();
  const vec4& p = d.position;
  view.set_translate(-(m[0] * p.x + m[4] * p.y + m[8] * p.z),
                     -(m[1] * p.x + m[5] * p.y + m[9] * p.z),
                     -(m[2] * p.x + m[6] * p.y + m[10] * p.z));
  d.view_matrix = view * d.reflection_matrix;
  d.view_dirty = false;
  d.inv_view_dirty = true;
  d.view_projection_dirty = true;
  return true;
}

bool Camera::update_view_matrix_v2() { return update_view_matrix(); }

void Camera::set_view_matrix(const mat4& matrix) {
  CameraData& d = *data_;
  d.view_matrix = matrix;
  matrix.to_quat(d.orientation);
  mat4 inverse = matrix;
  inverse.inverse();
  const float* m = inverse.ptr();
  d.position = vec4(m[12], m[13], m[14], 1.0f);
  get_tripod()->set_position(d.position);
  get_tripod()->set_orientation(d.orientation);
  d.view_dirty = false;
  d.inv_view_dirty = true;
  d.view_projection_dirty = true;
}

const mat4& Camera::get_view_matrix() {
  update_view_matrix_v2();
  return data_->view_matrix;
}

mat4* Camera::get_view_matrix_ptr() { return &data_->view_matrix; }

float* Camera::get_view_matrix_float_ptr() { return data_->view_matrix.ptr(); }

const mat4& Camera::get_inv_view_matrix() {
  CameraData& d = *data_;
  update_view_matrix_v2();
  if (d.inv_view_dirty) {
    d.inv_view_matrix = d.view_matrix;
    d.inv_view_matrix.inverse();
    d.inv_view_dirty = false;
  }
  return d.inv_view_matrix;
}

const mat4& Camera::get_view_projection_matrix() {
  CameraData& d = *data_;
  update_projection_matrix();
  update_view_matrix_v2();
  if (d.view_projection_dirty) {
    d.view_projection_matrix = d.projection_matrix * d.view_matrix;
    d.view_projection_dirty = false;
  }
  return d.view_projection_matrix;
}

void Camera::set_reflection_matrix(const mat4& matrix) {
  data_->reflection_matrix = matrix;
  data_->view_dirty = true;
}

void Camera::set_reflection_matrix(const vec4& plane) {
  mat4 mirror;
  mirror.build_reflection_matrix(plane);
  set_reflection_matrix(mirror);
}

void Camera::set_reflection_matrix(const vec4& point, const vec4& normal) {
  mat4 mirror;
  mirror.build_reflection_matrix(point, normal);
  set_reflection_matrix(mirror);
}

const mat4& Camera::get_reflection_matrix() const { return data_->reflection_matrix; }

// ---- use ------------------------------------------------------------------------------------

void Camera::bind(Renderer* renderer, bool viewport, bool scissor, bool projection, bool view,
                  bool flag) {
  if (!renderer) return;
  const Viewport v = data_->viewport;
  if (viewport) renderer->set_viewport(0, v.x, v.y, v.width, v.height);
  if (scissor) renderer->set_scissor(0, v.x, v.y, v.width, v.height);
  if (projection) {
    update_projection_matrix();
    renderer->set_projection_matrix(data_->projection_matrix, flag);
  }
  if (view) {
    update_view_matrix_v2();
    renderer->set_modelview_matrix(data_->view_matrix, flag);
  }
}

void Camera::frustum_update(mat4* projection, mat4* view) {
  if (!projection) {
    update_projection_matrix();
    projection = &data_->projection_matrix;
  }
  if (!view) {
    update_view_matrix_v2();
    view = &data_->view_matrix;
  }
  data_->frustum.update(projection, view);
}

bool Camera::frustum_check_point(float x, float y, float z) const {
  return data_->frustum.check_point(x, y, z, false);
}

bool Camera::frustum_check_point(const vec3& point) const {
  return data_->frustum.check_point(point, false);
}

bool Camera::frustum_check_point(const vec4& point) const {
  return data_->frustum.check_point(point, false);
}

bool Camera::frustum_check_sphere(const BoundingVolume& volume) const {
  return data_->frustum.check_sphere(volume, false);
}

bool Camera::frustum_check_sphere(const vec4& center, float radius) const {
  return data_->frustum.check_sphere(center, radius, false);
}

bool Camera::frustum_check_aa_box(const BoundingVolume& volume) const {
  return data_->frustum.check_axis_aligned_box(volume, false);
}

}  // namespace orv
