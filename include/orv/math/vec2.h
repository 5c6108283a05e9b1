/// @file
/// Two-component vector of floats.
#pragma once

#include <orv/core/api.h>

#include <cmath>
#include <cstddef>

namespace orv {

/// Two floats, (0, 0) by default. A plain value: 8 bytes, copied as memory.
class ORV_API vec2 {
 public:
  float x;  ///< first lane
  float y;  ///< second lane

  /// (0, 0).
  constexpr vec2() : x(0.0f), y(0.0f) {}
  /// The two components.
  constexpr vec2(float vx, float vy) : x(vx), y(vy) {}

  /// Sets all lanes to zero.
  constexpr void _construct() { *this = vec2(); }

  /// Sets both components.
  constexpr void set(float vx, float vy) { *this = vec2(vx, vy); }
  /// Copies another vector.
  constexpr void set(const vec2& v) { *this = v; }
  /// Copies another vector; null changes nothing.
  constexpr void set(const vec2* v) {
    if (v) *this = *v;
  }
  /// Reads two floats; null changes nothing.
  constexpr void set(const float* p) {
    if (p) *this = vec2(p[0], p[1]);
  }

  /// The lanes as an array of two.
  float* ptr() { return &x; }
  /// The lanes as an array of two.
  const float* ptr() const { return &x; }

  /// Lane `i`; an index past the end names the last lane.
  constexpr float& operator[](std::size_t i) { return i == 0 ? x : y; }
  /// Lane `i`; an index past the end names the last lane.
  constexpr float operator[](std::size_t i) const { return i == 0 ? x : y; }

  /// Exact on every lane; NaN is unequal to everything.
  constexpr bool operator==(const vec2& v) const { return x == v.x && y == v.y; }
  /// Opposite of `==`.
  constexpr bool operator!=(const vec2& v) const { return !(*this == v); }

  /// Adds lane by lane.
  constexpr vec2& operator+=(const vec2& v) { return *this = vec2(x + v.x, y + v.y); }
  /// Subtracts lane by lane.
  constexpr vec2& operator-=(const vec2& v) { return *this = vec2(x - v.x, y - v.y); }
  /// Multiplies lane by lane.
  constexpr vec2& operator*=(const vec2& v) { return *this = vec2(x * v.x, y * v.y); }
  /// Scales every lane.
  constexpr vec2& operator*=(float s) { return *this = vec2(x * s, y * s); }

  /// Becomes `a - b`.
  constexpr void make_vec(const vec2& a, const vec2& b) { *this = vec2(a.x - b.x, a.y - b.y); }

  /// Dot product.
  constexpr float dot(const vec2& v) const { return x * v.x + y * v.y; }
  /// Squared length.
  constexpr float magnitude_squared() const { return dot(*this); }
  /// Length.
  float magnitude() const { return std::sqrt(magnitude_squared()); }
  /// Length; the same as `magnitude`.
  float length() const { return magnitude(); }
  /// Scales to length 1, in place; a vector of squared length 0 becomes zero.
  vec2& normalize() {
    const float squared = magnitude_squared();
    if (squared == 0.0f) return *this = vec2();
    return *this *= 1.0f / std::sqrt(squared);
  }
};

/// Sum, lane by lane.
constexpr vec2 operator+(const vec2& a, const vec2& b) { return vec2(a.x + b.x, a.y + b.y); }
/// Difference, lane by lane.
constexpr vec2 operator-(const vec2& a, const vec2& b) { return vec2(a.x - b.x, a.y - b.y); }
/// Product, lane by lane.
constexpr vec2 operator*(const vec2& a, const vec2& b) { return vec2(a.x * b.x, a.y * b.y); }
/// Quotient, lane by lane; a zero divisor gives what IEEE division gives.
constexpr vec2 operator/(const vec2& a, const vec2& b) { return vec2(a.x / b.x, a.y / b.y); }
/// Every lane times `s`.
constexpr vec2 operator*(const vec2& a, float s) { return vec2(a.x * s, a.y * s); }

static_assert(sizeof(vec2) == 8 && alignof(vec2) == 4);

}  // namespace orv
