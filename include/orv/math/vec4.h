/// @file
/// Four-component vector of floats: a point by default.
#pragma once

#include <orv/core/api.h>
#include <orv/math/vec2.h>
#include <orv/math/vec3.h>

#include <cmath>
#include <cstddef>

namespace orv {

/// Four floats, a point by default: (0, 0, 0, 1).
///
/// Lane-wise arithmetic covers all four lanes, so the sum of two points has w = 2. Length, dot
/// product and normalisation read only x, y, z. A plain value: 16 bytes, aligned as a float so that
/// records of packed vertices may hold it anywhere; arrays made by the geometry code are 16-byte
/// aligned.
class ORV_API vec4 {
 public:
  float x;  ///< first lane
  float y;  ///< second lane
  float z;  ///< third lane
  float w;  ///< fourth lane, 1 for a point

  static const vec4 ZERO;         ///< (0, 0, 0, 1): the origin, not the null vector
  static const vec4 ONE;          ///< (1, 1, 1, 1)
  static const vec4 UNIT_X_AXIS;  ///< (1, 0, 0, 1)
  static const vec4 UNIT_Y_AXIS;  ///< (0, 1, 0, 1)
  static const vec4 UNIT_Z_AXIS;  ///< (0, 0, 1, 1)

  /// (0, 0, 0, 1).
  constexpr vec4() : x(0.0f), y(0.0f), z(0.0f), w(1.0f) {}
  /// The components.
  constexpr vec4(float vx, float vy, float vz, float vw = 1.0f) : x(vx), y(vy), z(vz), w(vw) {}
  /// (v.x, v.y, v.z, 1).
  constexpr vec4(const vec3& v) : x(v.x), y(v.y), z(v.z), w(1.0f) {}

  /// Becomes (v.x, v.y, 0, 1).
  constexpr vec4& operator=(const vec2& v) { return *this = vec4(v.x, v.y, 0.0f, 1.0f); }
  /// Becomes (v.x, v.y, v.z, 1).
  constexpr vec4& operator=(const vec3& v) { return *this = vec4(v.x, v.y, v.z, 1.0f); }
  /// Puts `s` into all four lanes, w included.
  constexpr vec4& operator=(float s) { return *this = vec4(s, s, s, s); }

  /// Becomes (0, 0, 0, 1).
  constexpr void _construct() { *this = vec4(); }

  /// Sets the components.
  constexpr void set(float vx, float vy, float vz, float vw = 1.0f) {
    *this = vec4(vx, vy, vz, vw);
  }
  /// Copies another vector.
  constexpr void set(const vec4& v) { *this = v; }
  /// Copies another vector; null changes nothing.
  constexpr void set(const vec4* v) {
    if (v) *this = *v;
  }
  /// Reads four floats; null changes nothing.
  constexpr void set(const float* p) { from_float_array(p); }

  /// The lanes as an array of four.
  float* ptr() { return &x; }
  /// The lanes as an array of four.
  const float* ptr() const { return &x; }
  /// Reads four floats; null changes nothing.
  constexpr void from_float_array(const float* p) {
    if (p) *this = vec4(p[0], p[1], p[2], p[3]);
  }
  /// Writes four floats; null writes nothing.
  constexpr void to_float_array(float* p) const {
    if (!p) return;
    p[0] = x;
    p[1] = y;
    p[2] = z;
    p[3] = w;
  }
  /// The first two lanes.
  constexpr vec2 get_vec2() const { return vec2(x, y); }
  /// The first three lanes.
  constexpr vec3 get_vec3() const { return vec3(x, y, z); }

  /// Lane `i`; an index past the end names the last lane.
  constexpr float& operator[](std::size_t i) { return i == 0 ? x : i == 1 ? y : i == 2 ? z : w; }
  /// Lane `i`; an index past the end names the last lane.
  constexpr float operator[](std::size_t i) const {
    return i == 0 ? x : i == 1 ? y : i == 2 ? z : w;
  }

  /// Exact on all four lanes; NaN is unequal to everything.
  constexpr bool operator==(const vec4& v) const {
    return x == v.x && y == v.y && z == v.z && w == v.w;
  }
  /// Opposite of `==`.
  constexpr bool operator!=(const vec4& v) const { return !(*this == v); }
  /// Whether x, y, z each lie inside [v - eps, v + eps], both ends included; w is not looked at.
  constexpr bool is_equal(const vec4& v, float eps) const {
    return x >= v.x - eps && x <= v.x + eps && y >= v.y - eps && y <= v.y + eps && z >= v.z - eps &&
           z <= v.z + eps;
  }
  /// Exact comparison with four components.
  constexpr bool is_equal(float vx, float vy, float vz, float vw) const {
    return x == vx && y == vy && z == vz && w == vw;
  }

  /// Adds lane by lane, w included.
  constexpr vec4& operator+=(const vec4& v) {
    return *this = vec4(x + v.x, y + v.y, z + v.z, w + v.w);
  }
  /// Subtracts lane by lane, w included.
  constexpr vec4& operator-=(const vec4& v) {
    return *this = vec4(x - v.x, y - v.y, z - v.z, w - v.w);
  }
  /// Multiplies lane by lane, w included.
  constexpr vec4& operator*=(const vec4& v) {
    return *this = vec4(x * v.x, y * v.y, z * v.z, w * v.w);
  }
  /// Scales every lane, w included.
  constexpr vec4& operator*=(float s) { return *this = vec4(x * s, y * s, z * s, w * s); }
  /// The opposite point: (-x, -y, -z, 1).
  constexpr vec4 operator-() const { return vec4(-x, -y, -z, 1.0f); }

  /// Becomes the vector from `b` to `a`: a - b with w = 0.
  constexpr void make_vec(const vec4& a, const vec4& b) {
    *this = vec4(a.x - b.x, a.y - b.y, a.z - b.z, 0.0f);
  }

  /// Dot product of x, y, z.
  constexpr float dot(const vec4& v) const { return x * v.x + y * v.y + z * v.z; }
  /// Squared length of x, y, z.
  constexpr float magnitude_squared() const { return dot(*this); }
  /// Length of x, y, z.
  float magnitude() const { return std::sqrt(magnitude_squared()); }
  /// Length of x, y, z; the same as `magnitude`.
  float length() const { return magnitude(); }
  /// Scales x, y, z to length 1, in place, and keeps w; a squared length of 0 makes them zero.
  vec4& normalize() {
    const float squared = magnitude_squared();
    if (squared == 0.0f) return *this = vec4(0.0f, 0.0f, 0.0f, w);
    const float scale = 1.0f / std::sqrt(squared);
    return *this = vec4(x * scale, y * scale, z * scale, w);
  }

  /// Right-handed cross product, this x v, with w = 1.
  constexpr vec4 cross(const vec4& v) const {
    return vec4(y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x, 1.0f);
  }
  /// Becomes the right-handed cross product a x b, with w = 1.
  constexpr void cross(const vec4& a, const vec4& b) { *this = a.cross(b); }

  /// Raises every lane, w included, to `lo`, then lowers it to `hi`.
  constexpr void clamp(float lo, float hi) { clamp(vec4(lo, lo, lo, lo), vec4(hi, hi, hi, hi)); }
  /// Raises every lane, w included, to the one of `lo`, then lowers it to the one of `hi`.
  constexpr void clamp(const vec4& lo, const vec4& hi) {
    *this = vec4(clamp_lane(x, lo.x, hi.x), clamp_lane(y, lo.y, hi.y), clamp_lane(z, lo.z, hi.z),
                 clamp_lane(w, lo.w, hi.w));
  }

  /// Projects on the plane through the origin with the unit normal `n`, over all four lanes.
  constexpr vec4 project_on_plane(const vec4& n) const {
    const float d = dot(n);
    return vec4(x - n.x * d, y - n.y * d, z - n.z * d, w - n.w * d);
  }

  /// Turns in place about the X axis, in degrees, counter-clockwise seen from +X.
  void rotate_x(float degrees);
  /// Turns in place about the Y axis, in degrees, counter-clockwise seen from +Y.
  void rotate_y(float degrees);
  /// Turns in place about the Z axis, in degrees, counter-clockwise seen from +Z.
  void rotate_z(float degrees);

  /// Angle above the view direction -Z towards +Y, in degrees.
  float pitch() const;
  /// Angle from the view direction -Z towards +X, in degrees.
  float yaw() const;
  /// Angle from -Y towards +X, in degrees.
  float roll() const;
  /// Angle to `v` in degrees, 0 to 180; 0 when either length is next to nothing.
  float angle_to(const vec4& v) const;

 private:
  static constexpr float clamp_lane(float v, float lo, float hi) {
    const float raised = v < lo ? lo : v;
    return raised > hi ? hi : raised;
  }
};

/// Sum, lane by lane, w included.
constexpr vec4 operator+(const vec4& a, const vec4& b) {
  return vec4(a.x + b.x, a.y + b.y, a.z + b.z, a.w + b.w);
}
/// Difference, lane by lane, w included.
constexpr vec4 operator-(const vec4& a, const vec4& b) {
  return vec4(a.x - b.x, a.y - b.y, a.z - b.z, a.w - b.w);
}
/// Product, lane by lane, w included.
constexpr vec4 operator*(const vec4& a, const vec4& b) {
  return vec4(a.x * b.x, a.y * b.y, a.z * b.z, a.w * b.w);
}
/// Quotient, lane by lane, w included; a zero divisor gives what IEEE division gives.
constexpr vec4 operator/(const vec4& a, const vec4& b) {
  return vec4(a.x / b.x, a.y / b.y, a.z / b.z, a.w / b.w);
}
/// Every lane times `s`, w included.
constexpr vec4 operator*(const vec4& a, float s) {
  return vec4(a.x * s, a.y * s, a.z * s, a.w * s);
}

// Constants of the program image: globals of a host may use them before main.
inline constexpr vec4 vec4::ZERO{0.0f, 0.0f, 0.0f, 1.0f};
inline constexpr vec4 vec4::ONE{1.0f, 1.0f, 1.0f, 1.0f};
inline constexpr vec4 vec4::UNIT_X_AXIS{1.0f, 0.0f, 0.0f, 1.0f};
inline constexpr vec4 vec4::UNIT_Y_AXIS{0.0f, 1.0f, 0.0f, 1.0f};
inline constexpr vec4 vec4::UNIT_Z_AXIS{0.0f, 0.0f, 1.0f, 1.0f};

// Packed vertex records hold vec4 at offsets that are multiples of 4 only.
static_assert(sizeof(vec4) == 16 && alignof(vec4) == 4);

}  // namespace orv
