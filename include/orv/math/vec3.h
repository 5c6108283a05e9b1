/// @file
/// Three-component vector of floats.
#pragma once

#include <orv/core/api.h>
#include <orv/math/vec2.h>

#include <cmath>
#include <cstddef>

namespace orv {

/// Three floats, (0, 0, 0) by default. A plain value: 12 bytes, copied as memory.
class ORV_API vec3 {
 public:
  float x;  ///< first lane
  float y;  ///< second lane
  float z;  ///< third lane

  /// (0, 0, 0).
  constexpr vec3() : x(0.0f), y(0.0f), z(0.0f) {}
  /// The three components.
  constexpr vec3(float vx, float vy, float vz) : x(vx), y(vy), z(vz) {}

  /// Becomes (v.x, v.y, 0).
  constexpr vec3& operator=(const vec2& v) { return *this = vec3(v.x, v.y, 0.0f); }

  /// Sets all lanes to zero.
  constexpr void _construct() { *this = vec3(); }

  /// Sets the components.
  constexpr void set(float vx, float vy, float vz) { *this = vec3(vx, vy, vz); }
  /// Copies another vector.
  constexpr void set(const vec3& v) { *this = v; }
  /// Copies another vector; null changes nothing.
  constexpr void set(const vec3* v) {
    if (v) *this = *v;
  }
  /// Reads three floats; null changes nothing.
  constexpr void set(const float* p) {
    if (p) *this = vec3(p[0], p[1], p[2]);
  }

  /// The lanes as an array of three.
  float* ptr() { return &x; }
  /// The lanes as an array of three.
  const float* ptr() const { return &x; }

  /// Lane `i`; an index past the end names the last lane.
  constexpr float& operator[](std::size_t i) { return i == 0 ? x : i == 1 ? y : z; }
  /// Lane `i`; an index past the end names the last lane.
  constexpr float operator[](std::size_t i) const { return i == 0 ? x : i == 1 ? y : z; }

  /// Exact on every lane; NaN is unequal to everything.
  constexpr bool operator==(const vec3& v) const { return x == v.x && y == v.y && z == v.z; }
  /// Opposite of `==`.
  constexpr bool operator!=(const vec3& v) const { return !(*this == v); }
  /// Whether each lane lies inside [v - eps, v + eps], both ends included.
  constexpr bool is_equal(const vec3& v, float eps) const {
    return x >= v.x - eps && x <= v.x + eps && y >= v.y - eps && y <= v.y + eps && z >= v.z - eps &&
           z <= v.z + eps;
  }

  /// Adds lane by lane.
  constexpr vec3& operator+=(const vec3& v) { return *this = vec3(x + v.x, y + v.y, z + v.z); }
  /// Subtracts lane by lane.
  constexpr vec3& operator-=(const vec3& v) { return *this = vec3(x - v.x, y - v.y, z - v.z); }
  /// Multiplies lane by lane.
  constexpr vec3& operator*=(const vec3& v) { return *this = vec3(x * v.x, y * v.y, z * v.z); }
  /// Scales every lane.
  constexpr vec3& operator*=(float s) { return *this = vec3(x * s, y * s, z * s); }
  /// Every lane negated.
  constexpr vec3 operator-() const { return vec3(-x, -y, -z); }

  /// Becomes `a - b`.
  constexpr void make_vec(const vec3& a, const vec3& b) {
    *this = vec3(a.x - b.x, a.y - b.y, a.z - b.z);
  }

  /// Dot product.
  constexpr float dot(const vec3& v) const { return x * v.x + y * v.y + z * v.z; }
  /// Squared length.
  constexpr float magnitude_squared() const { return dot(*this); }
  /// Length.
  float magnitude() const { return std::sqrt(magnitude_squared()); }
  /// Length; the same as `magnitude`.
  float length() const { return magnitude(); }
  /// Scales to length 1, in place; a vector of squared length 0 becomes zero.
  vec3& normalize() {
    const float squared = magnitude_squared();
    if (squared == 0.0f) return *this = vec3();
    return *this *= 1.0f / std::sqrt(squared);
  }

  /// Right-handed cross product, this x v.
  constexpr vec3 cross(const vec3& v) const {
    return vec3(y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x);
  }
  /// Becomes the right-handed cross product a x b.
  constexpr void cross(const vec3& a, const vec3& b) { *this = a.cross(b); }

  /// Turns in place about the X axis, in degrees, counter-clockwise seen from +X.
  void rotate_x(float degrees);
  /// Turns in place about the Y axis, in degrees, counter-clockwise seen from +Y.
  void rotate_y(float degrees);
  /// Turns in place about the Z axis, in degrees, counter-clockwise seen from +Z.
  void rotate_z(float degrees);
};

/// Sum, lane by lane.
constexpr vec3 operator+(const vec3& a, const vec3& b) {
  return vec3(a.x + b.x, a.y + b.y, a.z + b.z);
}
/// Difference, lane by lane.
constexpr vec3 operator-(const vec3& a, const vec3& b) {
  return vec3(a.x - b.x, a.y - b.y, a.z - b.z);
}
/// Product, lane by lane.
constexpr vec3 operator*(const vec3& a, const vec3& b) {
  return vec3(a.x * b.x, a.y * b.y, a.z * b.z);
}
/// Quotient, lane by lane; a zero divisor gives what IEEE division gives.
constexpr vec3 operator/(const vec3& a, const vec3& b) {
  return vec3(a.x / b.x, a.y / b.y, a.z / b.z);
}
/// Every lane times `s`.
constexpr vec3 operator*(const vec3& a, float s) { return vec3(a.x * s, a.y * s, a.z * s); }

static_assert(sizeof(vec3) == 12 && alignof(vec3) == 4);

}  // namespace orv
