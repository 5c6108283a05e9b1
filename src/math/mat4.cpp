#include <orv/math/mat4.h>

#include <orv/math/quat.h>

#include <cmath>
#include <utility>

#include "math/turn.h"

namespace orv {

using lanes::float4;
using lanes::load;
using lanes::splat;
using lanes::store;

// ---- arrays -----------------------------------------------------------------------------------

bool mat4::equals(const float* p) const {
  for (int i = 0; i < 16; ++i) {
    if (m[i] != p[i]) return false;
  }
  return true;
}

void mat4::from_float_array(const float* p) {
  if (!p) return;
  for (int i = 0; i < 16; ++i) m[i] = p[i];
}

void mat4::to_float_array(float* p) const {
  if (!p) return;
  for (int i = 0; i < 16; ++i) p[i] = m[i];
}

void mat4::zero() {
  for (float& element : m) element = 0.0f;
}

void mat4::transpose() {
  for (int c = 0; c < 4; ++c) {
    for (int r = c + 1; r < 4; ++r) std::swap(m[c * 4 + r], m[r * 4 + c]);
  }
}

// ---- translation and scale --------------------------------------------------------------------

void mat4::init_translate(float x, float y, float z) {
  identity();
  set_translate(x, y, z);
}

void mat4::set_translate(float x, float y, float z) {
  m[12] = x;
  m[13] = y;
  m[14] = z;
  m[15] = 1.0f;
}

void mat4::init_scale(float x, float y, float z) {
  identity();
  set_scale(x, y, z);
}

void mat4::set_scale(float x, float y, float z) {
  m[0] = x;
  m[5] = y;
  m[10] = z;
}

// ---- rotation ---------------------------------------------------------------------------------

void mat4::init_rotate_x(float degrees) {
  const Turn t = Turn::of_degrees(degrees);
  identity();
  m[5] = t.c;
  m[6] = t.s;
  m[9] = -t.s;
  m[10] = t.c;
}

void mat4::init_rotate_y(float degrees) {
  const Turn t = Turn::of_degrees(degrees);
  identity();
  m[0] = t.c;
  m[2] = -t.s;
  m[8] = t.s;
  m[10] = t.c;
}

void mat4::init_rotate_z(float degrees) {
  const Turn t = Turn::of_degrees(degrees);
  identity();
  m[0] = t.c;
  m[1] = t.s;
  m[4] = -t.s;
  m[5] = t.c;
}

void mat4::init_rotate_axis(float degrees, vec4& axis) {
  axis.normalize();
  const Turn t = Turn::of_degrees(degrees);
  const float k = 1.0f - t.c;
  const float x = axis.x;
  const float y = axis.y;
  const float z = axis.z;
  identity();
  m[0] = k * x * x + t.c;
  m[1] = k * x * y + t.s * z;
  m[2] = k * x * z - t.s * y;
  m[4] = k * x * y - t.s * z;
  m[5] = k * y * y + t.c;
  m[6] = k * y * z + t.s * x;
  m[8] = k * x * z + t.s * y;
  m[9] = k * y * z - t.s * x;
  m[10] = k * z * z + t.c;
}

void mat4::init_euler_angles(float x, float y, float z) {
  const Turn tx = Turn::of_degrees(x);
  const Turn ty = Turn::of_degrees(y);
  const Turn tz = Turn::of_degrees(z);
  identity();
  m[0] = tz.c * ty.c + ty.s * tx.s * tz.s;
  m[1] = tz.s * ty.c - ty.s * tx.s * tz.c;
  m[2] = ty.s * tx.c;
  m[4] = -(tz.s * tx.c);
  m[5] = tz.c * tx.c;
  m[6] = tx.s;
  m[8] = ty.c * tx.s * tz.s - tz.c * ty.s;
  m[9] = -(tz.s * ty.s) - ty.c * tx.s * tz.c;
  m[10] = ty.c * tx.c;
}

// ---- axes and quaternions ---------------------------------------------------------------------

void mat4::from_axes(const vec4& u, const vec4& v, const vec4& n) {
  *this =
      mat4(u.x, u.y, u.z, 0.0f, v.x, v.y, v.z, 0.0f, n.x, n.y, n.z, 0.0f, 0.0f, 0.0f, 0.0f, 1.0f);
}

void mat4::to_axes(vec4& u, vec4& v, vec4& n) const {
  u.set(m[0], m[1], m[2], u.w);
  v.set(m[4], m[5], m[6], v.w);
  n.set(m[8], m[9], m[10], n.w);
}

void mat4::from_quat(const quat& q) {
  m[0] = 1.0f - 2.0f * (q.y * q.y + q.z * q.z);
  m[1] = 2.0f * (q.w * q.z + q.x * q.y);
  m[2] = 2.0f * (q.x * q.z - q.w * q.y);
  m[4] = 2.0f * (q.x * q.y - q.w * q.z);
  m[5] = 1.0f - 2.0f * (q.x * q.x + q.z * q.z);
  m[6] = 2.0f * (q.w * q.x + q.y * q.z);
  m[8] = 2.0f * (q.w * q.y + q.x * q.z);
  m[9] = 2.0f * (q.y * q.z - q.w * q.x);
  m[10] = 1.0f - 2.0f * (q.x * q.x + q.y * q.y);
}

void mat4::to_quat(quat& q) const {
  const float trace = m[0] + m[5] + m[10];
  if (trace > 0.0f) {
    const float s = std::sqrt(trace + 1.0f);
    const float k = 0.5f / s;
    q.set((m[6] - m[9]) * k, (m[8] - m[2]) * k, (m[1] - m[4]) * k, s * 0.5f);
    return;
  }
  // The greatest diagonal element keeps the root away from 0.
  int i = 0;
  if (m[5] > m[0]) i = 1;
  if (m[10] > m[i * 5]) i = 2;
  const int j = (i + 1) % 3;
  const int k = (j + 1) % 3;
  const float s = std::sqrt(m[i * 5] - (m[j * 5] + m[k * 5]) + 1.0f);
  const float f = s != 0.0f ? 0.5f / s : s;
  float vector_part[3];
  vector_part[i] = s * 0.5f;
  vector_part[j] = (m[i * 4 + j] + m[j * 4 + i]) * f;
  vector_part[k] = (m[i * 4 + k] + m[k * 4 + i]) * f;
  q.set(vector_part[0], vector_part[1], vector_part[2], (m[j * 4 + k] - m[k * 4 + j]) * f);
}

void mat4::from_axes_to_quaternion(const vec4& u, const vec4& v, const vec4& n, quat& q) {
  from_axes(u, v, n);
  to_quat(q);
}

void mat4::from_quaternion_to_axes(const quat& q, vec4& u, vec4& v, vec4& n) {
  from_quat(q);
  to_axes(u, v, n);
}

// ---- inverse ----------------------------------------------------------------------------------

namespace {

struct Columns {
  float4 column[4];
};

// Row `Row` of the source in the three arrangements that the expansion below needs.
template <int Row>
inline void gather_row(const float4* column, float4& low, float4& high, float4& cross) {
  low = __builtin_shufflevector(column[2], column[0], Row, Row, 4 + Row, 4 + Row);
  high = __builtin_shufflevector(column[3], column[1], Row, Row, 4 + Row, 4 + Row);
  cross = __builtin_shufflevector(high, low, 2, 6, 0, 4);
}

// Transposed cofactors by expansion over the 2x2 sub-determinants of the column pairs (0, 1) and
// (2, 3). Each lane of a column needs the pair that its own column isn't in, with signs + - + -.
// Row i of the source serves as `low` (columns 2 and 0), `high` (columns 3 and 1), and `cross`, the
// factors that meet the sub-determinants, with the signs already in.
inline Columns transposed_cofactors(const float* m) {
  const float4 column[4] = {load(m), load(m + 4), load(m + 8), load(m + 12)};
  const float4 signs = {1.0f, -1.0f, 1.0f, -1.0f};
  float4 low[4];
  float4 high[4];
  float4 cross[4];
  gather_row<0>(column, low[0], high[0], cross[0]);
  gather_row<1>(column, low[1], high[1], cross[1]);
  gather_row<2>(column, low[2], high[2], cross[2]);
  gather_row<3>(column, low[3], high[3], cross[3]);
  for (float4& factors : cross) factors *= signs;
  const float4 d01 = low[0] * high[1] - high[0] * low[1];
  const float4 d02 = low[0] * high[2] - high[0] * low[2];
  const float4 d03 = low[0] * high[3] - high[0] * low[3];
  const float4 d12 = low[1] * high[2] - high[1] * low[2];
  const float4 d13 = low[1] * high[3] - high[1] * low[3];
  const float4 d23 = low[2] * high[3] - high[2] * low[3];
  return Columns{{cross[1] * d23 - cross[2] * d13 + cross[3] * d12,
                  cross[2] * d03 - cross[0] * d23 - cross[3] * d02,
                  cross[0] * d13 - cross[1] * d03 + cross[3] * d01,
                  cross[1] * d02 - cross[0] * d12 - cross[2] * d01}};
}

}  // namespace

void mat4::inverse() {
  const Columns adjugate = transposed_cofactors(m);
  const float determinant = m[0] * adjugate.column[0][0] + m[1] * adjugate.column[1][0] +
                            m[2] * adjugate.column[2][0] + m[3] * adjugate.column[3][0];
  if (determinant == 0.0f) {
    identity();
    return;
  }
  const float4 scale = splat(1.0f / determinant);
  for (int c = 0; c < 4; ++c) store(m + c * 4, adjugate.column[c] * scale);
}

void mat4::adjoint() {
  const Columns adjugate = transposed_cofactors(m);
  for (int c = 0; c < 4; ++c) store(m + c * 4, adjugate.column[c]);
}

// ---- reflection -------------------------------------------------------------------------------

namespace {

// Reflection in a plane with the unit normal `n`; `distance` is twice that of the plane from the
// origin along `n`.
mat4 reflection(const vec4& n, float distance) {
  return mat4(1.0f - 2.0f * n.x * n.x, -2.0f * n.x * n.y, -2.0f * n.x * n.z, 0.0f,
              -2.0f * n.x * n.y, 1.0f - 2.0f * n.y * n.y, -2.0f * n.y * n.z, 0.0f,
              -2.0f * n.x * n.z, -2.0f * n.y * n.z, 1.0f - 2.0f * n.z * n.z, 0.0f, distance * n.x,
              distance * n.y, distance * n.z, 1.0f);
}

}  // namespace

void mat4::build_reflection_matrix(const vec4& point, const vec4& normal) {
  *this = reflection(normal, 2.0f * point.dot(normal));
}

void mat4::build_reflection_matrix(const vec4& plane) {
  *this = reflection(plane, -2.0f * plane.w);
}

// ---- projection -------------------------------------------------------------------------------

namespace {

float tangent(float radians) { return static_cast<float>(std::tan(static_cast<double>(radians))); }

// Right-handed perspective with the given scales of x and y.
mat4 right_handed_perspective(float scale_x, float scale_y, float znear, float zfar,
                              float epsilon) {
  mat4 p;
  p.zero();
  p.m[0] = scale_x;
  p.m[5] = scale_y;
  p.m[11] = -1.0f;
  if (zfar == -1.0f) {
    p.m[10] = epsilon - 1.0f;
    p.m[14] = (epsilon - 2.0f) * znear;
  } else {
    p.m[10] = -(zfar + znear) / (zfar - znear);
    p.m[14] = -2.0f * znear * zfar / (zfar - znear);
  }
  return p;
}

}  // namespace

void mat4::buildRHPerspectiveProjectionMatrix(float fov, float aspect, float znear, float zfar,
                                              float epsilon) {
  buildRHPerspectiveProjectionMatrix_v2(fov, true, aspect, znear, zfar, epsilon);
}

void mat4::buildRHPerspectiveProjectionMatrix_v2(float fov, bool fov_is_vertical, float aspect,
                                                 float znear, float zfar, float epsilon) {
  const float t = tangent(fov * FOV_TO_HALF_RADIANS);
  const float k = 2.0f * znear / (2.0f * t * znear);
  *this = fov_is_vertical ? right_handed_perspective(k / aspect, k, znear, zfar, epsilon)
                          : right_handed_perspective(k, k * aspect, znear, zfar, epsilon);
}

void mat4::buildRHTwoFovPerspectiveProjectionMatrix(float fov_x, float fov_y, float /*aspect*/,
                                                    float znear, float zfar, float epsilon) {
  *this =
      right_handed_perspective(1.0f / tangent(fov_x * FOV_TO_HALF_RADIANS),
                               1.0f / tangent(fov_y * FOV_TO_HALF_RADIANS), znear, zfar, epsilon);
}

void mat4::buildLHPerspectiveProjectionMatrix(float fov, float aspect, float znear, float zfar) {
  // The half is taken twice: the opening is half of `fov`. Hosts rely on the picture it gives.
  const float top = tangent(fov * 0.5f * FOV_TO_HALF_RADIANS) * znear;
  const float right = top * aspect;
  zero();
  m[0] = znear / right;
  m[5] = znear / top;
  m[10] = -(zfar + znear) / (zfar - znear);
  m[11] = 1.0f;
  m[14] = -2.0f * zfar * znear / (zfar - znear);
}

void mat4::buildLHOrthographicProjectionMatrix(float left, float right, float bottom, float top,
                                               float znear, float zfar) {
  buildRHOrthographicProjectionMatrix(left, right, bottom, top, znear, zfar);
}

void mat4::buildRHOrthographicProjectionMatrix(float left, float right, float bottom, float top,
                                               float znear, float zfar) {
  identity();
  m[0] = 2.0f / (right - left);
  m[5] = 2.0f / (top - bottom);
  m[10] = -2.0f / (zfar - znear);
  m[12] = -(right + left) / (right - left);
  m[13] = -(top + bottom) / (top - bottom);
  m[14] = -(zfar + znear) / (zfar - znear);
}

// ---- camera -----------------------------------------------------------------------------------

namespace {

// View matrix of a camera at `eye` whose third axis is the direction `n`.
mat4 view_along(const vec4& eye, vec4 n, const vec4& up) {
  n.normalize();
  vec4 u = up.cross(n);
  u.normalize();
  const vec4 v = n.cross(u);
  return mat4(u.x, v.x, n.x, 0.0f, u.y, v.y, n.y, 0.0f, u.z, v.z, n.z, 0.0f, -eye.dot(u),
              -eye.dot(v), -eye.dot(n), 1.0f);
}

}  // namespace

void mat4::buildRHUVNCameraMatrix(const vec4& eye, const vec4& target, const vec4& up) {
  *this = view_along(eye, eye - target, up);
}

void mat4::buildLHUVNCameraMatrix(const vec4& eye, const vec4& target, const vec4& up) {
  *this = view_along(eye, target - eye, up);
}

}  // namespace orv
