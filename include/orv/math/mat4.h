/// @file
/// 4x4 matrix of floats.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/math/lanes.h>
#include <orv/math/vec4.h>

namespace orv {

/// 4x4 matrix of floats, column-major, identity by default.
///
/// The element of row r, column c is `m[c * 4 + r]`, the order that graphics interfaces take
/// without transposing; the translation lies at 12, 13, 14. Vectors are columns: `a * b` applies b
/// first. Angles are degrees. Rotations are counter-clockwise seen from the positive axis.
class ORV_API mat4 {
 public:
  float m[16];  ///< column after column

  /// Identity.
  constexpr mat4() : m{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1} {}
  /// Sixteen values in storage order: the first four are the first column.
  constexpr mat4(float m0, float m1, float m2, float m3, float m4, float m5, float m6, float m7,
                 float m8, float m9, float m10, float m11, float m12, float m13, float m14,
                 float m15)
      : m{m0, m1, m2, m3, m4, m5, m6, m7, m8, m9, m10, m11, m12, m13, m14, m15} {}
  /// Sixteen floats in storage order; identity when null.
  explicit mat4(const float* p) : mat4() { from_float_array(p); }
  /// Copy of another matrix; identity when null.
  explicit mat4(const mat4* other) : mat4() { *this = other; }

  /// Reads sixteen floats in storage order; null changes nothing.
  mat4& operator=(const float* p) {
    from_float_array(p);
    return *this;
  }
  /// Copies another matrix; null changes nothing.
  mat4& operator=(const mat4* other) {
    if (other) *this = *other;
    return *this;
  }

  /// Exact on all sixteen elements.
  bool operator==(const mat4& other) const { return equals(other.m); }
  /// Opposite of `==`.
  bool operator!=(const mat4& other) const { return !equals(other.m); }
  /// Exact comparison with sixteen floats; false when null.
  bool operator==(const float* p) const { return p && equals(p); }
  /// Opposite of `==`.
  bool operator!=(const float* p) const { return !(*this == p); }

  /// The sixteen elements.
  float* ptr() { return m; }
  /// The sixteen elements.
  const float* ptr() const { return m; }
  /// Reads sixteen floats in storage order; null changes nothing.
  void from_float_array(const float* p);
  /// Writes sixteen floats in storage order; null writes nothing.
  void to_float_array(float* p) const;

  /// Becomes the identity.
  void identity() { *this = mat4(); }
  /// Sets all elements to 0.
  void zero();
  /// Swaps rows and columns.
  void transpose();

  /// The product this * b: b is applied to a vector first.
  mat4 operator*(const mat4& b) const {
    return mat4(combine(b.m), combine(b.m + 4), combine(b.m + 8), combine(b.m + 12));
  }
  /// The product this * b, like `*`.
  mat4 concat(const mat4& b) const { return *this * b; }
  /// Multiplies nothing: the matrix stays as it is. Use `*` or `concat` for a product.
  mat4& operator*=(const mat4&) { return *this; }

  /// The matrix applied to a column vector, all four lanes.
  vec4 operator*(const vec4& v) const {
    vec4 product;
    lanes::store(product.ptr(), combine(v.ptr()));
    return product;
  }

  /// Becomes a translation.
  void init_translate(float x, float y, float z);
  /// Becomes a translation by x, y, z of `v`.
  void init_translate(const vec4& v) { init_translate(v.x, v.y, v.z); }
  /// Becomes a translation by x, y, z of `v`; null changes nothing.
  void init_translate(const vec4* v) {
    if (v) init_translate(*v);
  }
  /// Writes the translation and m[15] = 1; the rest stays.
  void set_translate(float x, float y, float z);
  /// Becomes a scaling.
  void init_scale(float x, float y, float z);
  /// Becomes a scaling by x, y, z of `v`.
  void init_scale(const vec4& v) { init_scale(v.x, v.y, v.z); }
  /// Writes m[0], m[5], m[10]; the rest stays.
  void set_scale(float x, float y, float z);

  /// Becomes a rotation about the X axis, in degrees.
  void init_rotate_x(float degrees);
  /// Becomes a rotation about the Y axis, in degrees.
  void init_rotate_y(float degrees);
  /// Becomes a rotation about the Z axis, in degrees.
  void init_rotate_z(float degrees);
  /// Becomes a rotation about `axis`, in degrees.
  /// @param axis normalised in place by the call; a zero axis stays zero
  void init_rotate_axis(float degrees, vec4& axis);
  /// Becomes Rz(z) * Rx(x) * Ry(-y), in degrees: y turns opposite to `init_rotate_y`.
  void init_euler_angles(float x, float y, float z);

  /// Becomes the rotation with the columns u, v, n (x, y, z of each).
  void from_axes(const vec4& u, const vec4& v, const vec4& n);
  /// Reads the first three columns into x, y, z of the vectors; their w stays.
  void to_axes(vec4& u, vec4& v, vec4& n) const;
  /// Writes the rotation of a unit quaternion into the upper-left 3x3; the rest stays.
  void from_quat(const quat& q);
  /// Reads the rotation of the upper-left 3x3 as a quaternion.
  void to_quat(quat& q) const;
  /// `from_axes`, then `to_quat`: the matrix itself changes too.
  void from_axes_to_quaternion(const vec4& u, const vec4& v, const vec4& n, quat& q);
  /// `from_quat`, then `to_axes`: the upper-left 3x3 changes too.
  void from_quaternion_to_axes(const quat& q, vec4& u, vec4& v, vec4& n);

  /// Inverts in place; a matrix whose determinant is exactly 0 becomes the identity.
  void inverse();
  /// Becomes its transposed cofactors, with no division.
  void adjoint();

  /// Becomes the reflection in the plane through `point` with the unit normal `normal`.
  void build_reflection_matrix(const vec4& point, const vec4& normal);
  /// Becomes the reflection in the plane (a, b, c, d) with a unit normal (a, b, c).
  void build_reflection_matrix(const vec4& plane);

  /// Right-handed perspective with a vertical field of view; see the `_v2` form.
  void buildRHPerspectiveProjectionMatrix(float fov, float aspect, float znear, float zfar,
                                          float epsilon = 0.00001f);
  /// Right-handed perspective, clip depth -1 to 1.
  /// @param fov whole angle of view in degrees
  /// @param fov_is_vertical true when `fov` spans the height, false when it spans the width
  /// @param aspect width divided by height
  /// @param zfar distance of the far plane; exactly -1 puts it at infinity
  /// @param epsilon nudge that keeps depth at infinity inside the clip range; read only then
  void buildRHPerspectiveProjectionMatrix_v2(float fov, bool fov_is_vertical, float aspect,
                                             float znear, float zfar, float epsilon = 0.00001f);
  /// Right-handed perspective with both angles of view in degrees; `aspect` isn't read.
  void buildRHTwoFovPerspectiveProjectionMatrix(float fov_x, float fov_y, float aspect, float znear,
                                                float zfar, float epsilon = 0.00001f);
  /// Left-handed perspective. The opening is that of half of `fov`, and the far plane is finite.
  void buildLHPerspectiveProjectionMatrix(float fov, float aspect, float znear, float zfar);
  /// Orthographic projection; the same matrix as the right-handed form.
  void buildLHOrthographicProjectionMatrix(float left, float right, float bottom, float top,
                                           float znear, float zfar);
  /// Orthographic projection, clip depth -1 to 1.
  void buildRHOrthographicProjectionMatrix(float left, float right, float bottom, float top,
                                           float znear, float zfar);
  /// View matrix of a camera at `eye` that looks along -Z at `target`.
  void buildRHUVNCameraMatrix(const vec4& eye, const vec4& target, const vec4& up);
  /// View matrix of a camera at `eye` that looks along +Z at `target`.
  void buildLHUVNCameraMatrix(const vec4& eye, const vec4& target, const vec4& up);

 private:
  mat4(lanes::float4 c0, lanes::float4 c1, lanes::float4 c2, lanes::float4 c3) {
    lanes::store(m, c0);
    lanes::store(m + 4, c1);
    lanes::store(m + 8, c2);
    lanes::store(m + 12, c3);
  }

  // Sum of the columns, each times its factor.
  lanes::float4 combine(const float* factors) const {
    const lanes::float4 f = lanes::load(factors);
    return lanes::load(m) * lanes::spread<0>(f) + lanes::load(m + 4) * lanes::spread<1>(f) +
           lanes::load(m + 8) * lanes::spread<2>(f) + lanes::load(m + 12) * lanes::spread<3>(f);
  }

  bool equals(const float* p) const;
};

static_assert(sizeof(mat4) == 64 && alignof(mat4) == 4);

}  // namespace orv
