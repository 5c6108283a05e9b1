#pragma once

#include <orv/math/lanes.h>
#include <orv/math/vec3.h>
#include <orv/math/vec4.h>

#include <algorithm>
#include <cmath>

namespace orv {

// How far the rounded arithmetic of a ray and a triangle may be off. With a and b the edges from
// the first corner, s the way from the origin to it, d the direction, c the cosine between d and
// the normal, S = |s| + the longer edge: each of the three products and the determinant |a x b| |d|
// c is off by at most 16 rounding units (2^-24) of the product of its lengths. From this follows
// for an accepted triangle:
//
// - the exact hit of its plane lies within ERROR * factor * S / c of the triangle, and the rounded
//   distance along the ray is off by no more than that;
// - |c| and the origin's distance h from the plane obey |h| <= 1.1 S (|c| + 6e-6 * factor) up to
//   |c| = MAX_GRAZING.
//
// `factor` is (longer edge)^2 / |a x b|, the distance being one from the triangle, or |a| |b| /
// |a x b| with the distance from the parallelogram of a and b.

/// Largest error as a share of the distance, for a factor of 1 and a ray along the normal.
inline constexpr float RAY_ERROR = 1e-5f;
/// Cosine below which a ray may be treated as grazing.
inline constexpr float MAX_GRAZING = 0.4f;
/// Triangles with a greater factor are kept aside.
inline constexpr float MAX_FACTOR = 256.0f;
/// Coordinates and edges for which no product overflows or loses digits.
inline constexpr float MAX_COORDINATE = 1e9f;
inline constexpr float MIN_EDGE = 1e-9f;

/// Cosine from which on the box of a node is widened enough.
inline float grazing_limit(float factor) { return std::min(0.1f * factor, MAX_GRAZING); }

/// What boxes are widened by, as a share of S: 2 * RAY_ERROR * factor / grazing_limit(factor).
inline float box_margin(float factor) {
  return std::max(20.0f * RAY_ERROR, 2.0f * RAY_ERROR / MAX_GRAZING * factor);
}

/// What the tree has to know of a triangle.
struct TriangleShape {
  enum Kind { REGULAR, ASIDE, NEVER_HIT };

  TriangleShape() = default;
  TriangleShape(const vec4& p0, const vec4& p1, const vec4& p2) {
    const vec4 corners[3] = {p0, p1, p2};
    for (const vec4& p : corners) {
      for (const float x : {p.x, p.y, p.z}) {
        if (!(std::fabs(x) <= MAX_COORDINATE)) return;
      }
    }
    const vec3 a = p0.get_vec3() - p1.get_vec3();
    const vec3 b = p0.get_vec3() - p2.get_vec3();
    if (a == vec3() || b == vec3()) {
      kind = NEVER_HIT;  // the determinant and a numerator are exactly 0
      return;
    }
    const float aa = a.dot(a);
    const float bb = b.dot(b);
    normal = a.cross(b);
    const float area = normal.length();
    if (!(std::max(aa, bb) >= MIN_EDGE * MIN_EDGE) || !(area > 0.0f)) return;
    normal = normal * (1.0f / area);
    set_box(p0, p1, p2);
    edge = std::sqrt(std::max(aa, bb));
    factor = std::max(aa, bb) / area;
    const float of_parallelogram = std::sqrt(aa) * std::sqrt(bb) / area;
    if (factor > 8.0f && of_parallelogram < factor * 0.25f) {
      factor = of_parallelogram;
      widen_to(vec4(p1.get_vec3() - b));
    }
    factor = std::max(factor * 1.001f, 1.0f);
    if (factor <= MAX_FACTOR) kind = REGULAR;
  }

  /// How far the rounded normal may be off.
  float normal_error() const { return 2e-6f * factor; }

  Kind kind = ASIDE;
  float factor = 1.0f;
  float edge = 0.0f;  // the longer of a and b
  vec3 normal;
  lanes::float4 min = {};
  lanes::float4 max = {};

 private:
  void set_box(const vec4& p0, const vec4& p1, const vec4& p2) {
    min = max = lanes::load(p0.ptr());
    widen_to(p1);
    widen_to(p2);
  }
  void widen_to(const vec4& p) {
    const lanes::float4 v = lanes::load(p.ptr());
    min = v < min ? v : min;
    max = v > max ? v : max;
  }
};

}  // namespace orv
