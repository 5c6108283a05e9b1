/// @file
/// Small vectors of bytes: pixels of two, three and four channels.
#pragma once

#include <orv/core/api.h>

namespace orv {

/// Two bytes, zero by default: storage and comparison only.
class ORV_API vec2u8 {
 public:
  unsigned char x;  ///< first lane
  unsigned char y;  ///< second lane

  /// (0, 0).
  constexpr vec2u8() : x(0), y(0) {}
  /// The components.
  constexpr vec2u8(unsigned char vx, unsigned char vy) : x(vx), y(vy) {}

  /// Equal on every lane.
  constexpr bool operator==(const vec2u8& v) const { return x == v.x && y == v.y; }
  /// Opposite of `==`.
  constexpr bool operator!=(const vec2u8& v) const { return !(*this == v); }
};

/// Three bytes, zero by default: storage and comparison only.
class ORV_API vec3u8 {
 public:
  unsigned char x;  ///< first lane
  unsigned char y;  ///< second lane
  unsigned char z;  ///< third lane

  /// (0, 0, 0).
  constexpr vec3u8() : x(0), y(0), z(0) {}
  /// The components.
  constexpr vec3u8(unsigned char vx, unsigned char vy, unsigned char vz) : x(vx), y(vy), z(vz) {}

  /// Equal on every lane.
  constexpr bool operator==(const vec3u8& v) const { return x == v.x && y == v.y && z == v.z; }
  /// Opposite of `==`.
  constexpr bool operator!=(const vec3u8& v) const { return !(*this == v); }
};

/// Four bytes, zero by default: storage and comparison only.
class ORV_API vec4u8 {
 public:
  unsigned char x;  ///< first lane
  unsigned char y;  ///< second lane
  unsigned char z;  ///< third lane
  unsigned char w;  ///< fourth lane

  /// (0, 0, 0, 0).
  constexpr vec4u8() : x(0), y(0), z(0), w(0) {}
  /// The components.
  constexpr vec4u8(unsigned char vx, unsigned char vy, unsigned char vz, unsigned char vw)
      : x(vx), y(vy), z(vz), w(vw) {}

  /// Equal on every lane.
  constexpr bool operator==(const vec4u8& v) const {
    return x == v.x && y == v.y && z == v.z && w == v.w;
  }
  /// Opposite of `==`.
  constexpr bool operator!=(const vec4u8& v) const { return !(*this == v); }
};

static_assert(sizeof(vec2u8) == 2 && sizeof(vec3u8) == 3 && sizeof(vec4u8) == 4);

}  // namespace orv
