#pragma once

#include <orv/math/lanes.h>
#include <orv/math/vec3.h>
#include <orv/math/vec4.h>

#include <algorithm>
#include <cmath>

namespace orv {

// How far the rounded arithmetic of a ray and a triangle may be off, and what follows for a
// triangle that it accepts. With the unit u = 2^-24, the edges a and b from the first corner, the
// way s from the origin to it, the direction d of length |d|, and
//
//   g = |a| |b| / |a x b|,   S = |s| + max(|a|, |b|),
//   c = cosine between d and the normal,   h = distance of the origin from the plane,
//
// each of the three numerators and the determinant |a x b| |d| c is a triple product. Its rounding
// is below 6u times the product of the three lengths: 5u for the operations times at most 1.155 for
// the permanent of the absolute values (Carlen, Lieb and Loss). Dividing by the determinant, and
// with 4u S for the differences a, b and s themselves, this gives:
//
// 1. The exact hit of the plane lies within 16u g S / |c| of the triangle.
// 2. So a point of the ray from which the triangle, seen along the ray, is no farther than r has a
//    height over the plane of at most |c| r + 16u g S.
// 3. Where |c| >= 64u g, the point at the rounded distance along the ray lies within 40u g S / |c|.
//
// Thus a triangle whose box, widened by some margin, is missed by the ray up to the best hit is
// accepted only if its plane nearly holds the ray: RayTree finds the others, PlaneTree finds these.

/// 2^-24, half the distance from 1 to the next float.
inline constexpr float ROUNDING = 5.9604645e-8f;
/// Number 3 above.
inline constexpr float HIT_REACH = 40.0f * ROUNDING;
/// Cosine per g below which number 3 says nothing.
inline constexpr float LEAST_COSINE = 64.0f * ROUNDING;
/// What boxes are widened by as a share of S. A tenth of it is left to the rounding of the box
/// test.
inline constexpr float BOX_MARGIN = 1e-4f;
inline constexpr float USABLE_MARGIN = 0.9f * BOX_MARGIN;
/// From this g on boxes are widened more, in proportion.
inline constexpr float COMMON_FACTOR = 2.0f;
/// Triangles with a greater g are kept aside.
inline constexpr float MAX_FACTOR = 256.0f;
/// Coordinates and edges for which no product overflows or loses digits.
inline constexpr float MAX_COORDINATE = 1e9f;
inline constexpr float MIN_EDGE = 1e-8f;

/// What the trees have to know of a triangle.
struct TriangleShape {
  enum Kind { REGULAR, ASIDE, NEVER_HIT };

  TriangleShape(const vec4& p0, const vec4& p1, const vec4& p2) {
    const lanes::float4 q0 = lanes::load(p0.ptr());
    const lanes::float4 q1 = lanes::load(p1.ptr());
    const lanes::float4 q2 = lanes::load(p2.ptr());
    // An infinity or what is not a number makes the sum fail, whatever the comparisons take.
    min = q1 < q0 ? q1 : q0;
    min = q2 < min ? q2 : min;
    max = q1 > q0 ? q1 : q0;
    max = q2 > max ? q2 : max;
    const lanes::float4 zero = lanes::splat(0.0f);
    const lanes::float4 sum = q0 * zero + q1 * zero + q2 * zero;
    if (!(sum[0] + sum[1] + sum[2] == 0.0f)) return;
    for (int axis = 0; axis < 3; ++axis) {
      if (!(min[axis] >= -MAX_COORDINATE && max[axis] <= MAX_COORDINATE)) return;
    }
    const vec3 a = p0.get_vec3() - p1.get_vec3();
    const vec3 b = p0.get_vec3() - p2.get_vec3();
    if (a == vec3() || b == vec3()) {
      kind = NEVER_HIT;  // the determinant and a numerator are exactly 0
      return;
    }
    const float aa = a.dot(a);
    const float bb = b.dot(b);
    if (!(std::min(aa, bb) >= MIN_EDGE * MIN_EDGE)) return;
    const vec3 normal = a.cross(b);
    factor = std::sqrt(aa) * std::sqrt(bb) / std::sqrt(normal.dot(normal)) * 1.001f;
    longest_edge_squared = std::max(aa, bb);
    if (factor <= MAX_FACTOR) kind = REGULAR;
  }

  Kind kind = ASIDE;
  float factor = 0.0f;  // g, a little more than it is
  float longest_edge_squared = 0.0f;
  lanes::float4 min;
  lanes::float4 max;
};

}  // namespace orv
