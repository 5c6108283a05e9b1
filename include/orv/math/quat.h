/// @file
/// Quaternion of floats.
#pragma once

#include <orv/core/api.h>
#include <orv/math/lanes.h>
#include <orv/math/vec3.h>
#include <orv/math/vec4.h>

#include <cmath>

namespace orv {

/// Rotation as a quaternion (x, y, z, w), w being the scalar part; identity by default.
///
/// `q * r` applies r first. Angles are degrees everywhere but in `to_euler`, which gives radians.
class ORV_API quat {
 public:
  float x;  ///< first of the vector part
  float y;  ///< second of the vector part
  float z;  ///< third of the vector part
  float w;  ///< scalar part

  /// The identity, (0, 0, 0, 1).
  constexpr quat() : x(0.0f), y(0.0f), z(0.0f), w(1.0f) {}
  /// The components.
  constexpr quat(float qx, float qy, float qz, float qw) : x(qx), y(qy), z(qz), w(qw) {}
  /// The components of `v` as they are.
  constexpr explicit quat(const vec4& v) : x(v.x), y(v.y), z(v.z), w(v.w) {}

  /// Takes the components of `v` as they are.
  constexpr quat& operator=(const vec4& v) { return *this = quat(v); }

  /// Sets the components.
  constexpr void set(float qx, float qy, float qz, float qw) { *this = quat(qx, qy, qz, qw); }
  /// Copies another quaternion.
  constexpr void set(const quat& q) { *this = q; }
  /// Takes the components of `v` as they are.
  constexpr void set(const vec4& v) { *this = quat(v); }

  /// Exact on all four components.
  constexpr bool operator==(const quat& q) const {
    return x == q.x && y == q.y && z == q.z && w == q.w;
  }
  /// Opposite of `==`.
  constexpr bool operator!=(const quat& q) const { return !(*this == q); }

  /// Becomes (0, 0, 0, 1).
  constexpr void identity() { *this = quat(); }
  /// Negates all four components: the same rotation.
  constexpr void negate() { *this = quat(-x, -y, -z, -w); }
  /// Negates x, y, z: the inverse of a unit quaternion.
  constexpr void conjugate() { *this = quat(-x, -y, -z, w); }
  /// Scales to length 1, in place; a length of exactly 1 or below 1e-7 changes nothing.
  quat& normalize() {
    const float length = std::sqrt(x * x + y * y + z * z + w * w);
    if (length == 1.0f || length < 1e-7f) return *this;
    const float scale = 1.0f / length;
    return *this = quat(x * scale, y * scale, z * scale, w * scale);
  }

  /// Hamilton product: rotates by `r` first.
  constexpr quat operator*(const quat& r) const {
    return quat(w * r.x + x * r.w + y * r.z - z * r.y, w * r.y + y * r.w + z * r.x - x * r.z,
                w * r.z + z * r.w + x * r.y - y * r.x, w * r.w - x * r.x - y * r.y - z * r.z);
  }
  /// Leaves this quaternion alone and returns the Hamilton product this * r in another layout:
  /// x holds the scalar part, y, z, w hold the vector part. Use `*` for an ordinary product.
  constexpr quat operator*=(const quat& r) const {
    const quat product = *this * r;
    return quat(product.w, product.x, product.y, product.z);
  }

  /// Rotates x, y, z of a vector by this unit quaternion; w of the result is always 3.
  vec4 operator*(const vec4& v) const {
    const lanes::float4 u = lanes::load(&x);
    const lanes::float4 p = lanes::load(v.ptr());
    const lanes::float4 c = lanes::cross(u, p);
    const lanes::float4 e = lanes::cross(u, c);
    vec4 rotated;
    lanes::store(rotated.ptr(), p + lanes::splat(2.0f * w) * c + (e + e));
    rotated.w = 3.0f;
    return rotated;
  }
  /// Rotates a vector: the vector part of q * (v, 0) * conjugate(q).
  constexpr vec3 operator*(const vec3& v) const {
    const quat left = *this * quat(v.x, v.y, v.z, 0.0f);
    const quat both = left * quat(-x, -y, -z, w);
    return vec3(both.x, both.y, both.z);
  }

  /// Becomes the rotation about an axis, normalised at the end.
  /// @param axis of unit length; it isn't normalised first
  void from_axis_angle(float degrees, const vec4& axis, bool = true) {
    from_axis_angle(degrees, axis.x, axis.y, axis.z);
  }
  /// Becomes the rotation about the axis (ax, ay, az), normalised at the end. The flag has no
  /// effect.
  void from_axis_angle(float degrees, float ax, float ay, float az, bool = true);
  /// Becomes the rotation qy * qx * qz of the three turns in degrees about the axes.
  void from_euler(float ex, float ey, float ez);
  /// Reads the rotation as Z-Y-X angles in radians. This isn't the inverse of `from_euler`.
  /// Each pointer may be null.
  void to_euler(float* px, float* py, float* pz) const;
  /// Becomes the shortest rotation from `a` to `b`, both of unit length. Opposite vectors, which
  /// have no shortest one, give components that aren't finite.
  void from_vector_rotation(const vec4& a, const vec4& b);
};

static_assert(sizeof(quat) == 16 && alignof(quat) == 4);

}  // namespace orv
