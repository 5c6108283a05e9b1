/// @file
/// Scalar helpers, the random generator and simple ray tests.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>

namespace orv {

/// Static functions only; holds no state but the random generator of each thread.
class ORV_API Math {
 public:
  Math() = delete;

  /// Greatest number that `rand15` gives.
  static constexpr int RANDOM_MAX = 32767;

  /// The library's random generator: 0 to `RANDOM_MAX`, the same series on every machine.
  /// Each thread has its own, which starts as after `srnd(1)`.
  static int rand15();
  /// Sets the seed of the calling thread's generator.
  static void srnd(unsigned int seed);
  /// Random number from 0 to just under `a`.
  static float rnd(float a);
  /// Random number from `a` to just under `b`.
  static float rnd(float a, float b);

  /// From `a` at t = 0 to `b` at t = 1.
  static constexpr float lerp(float a, float b, float t) { return (b - a) * t + a; }

  /// The smaller of two.
  static constexpr int mini(int a, int b) { return a < b ? a : b; }
  /// The smaller of two.
  static constexpr unsigned int mini(unsigned int a, unsigned int b) { return a < b ? a : b; }
  /// The smaller of two.
  static constexpr float mini(float a, float b) { return a < b ? a : b; }
  /// The greater of two.
  static constexpr int maxi(int a, int b) { return a > b ? a : b; }
  /// The greater of two.
  static constexpr unsigned int maxi(unsigned int a, unsigned int b) { return a > b ? a : b; }
  /// The greater of two.
  static constexpr float maxi(float a, float b) { return a > b ? a : b; }

  /// Whether exactly one bit is set.
  static constexpr bool is_power_of_two(unsigned int v) { return v != 0 && (v & (v - 1)) == 0; }
  /// The smallest power of two strictly greater than `v`: 8 gives 16, 0 gives 1. From 0x80000000 on
  /// there is none, and the result is 0.
  static constexpr unsigned int next_power_of_two(unsigned int v) {
    v |= v >> 1;
    v |= v >> 2;
    v |= v >> 4;
    v |= v >> 8;
    v |= v >> 16;
    return v + 1;
  }
  /// `size` rounded up; `mask` is the alignment minus one.
  static constexpr unsigned int get_aligned_size(unsigned int size, unsigned int mask) {
    return (size + mask) & ~mask;
  }

  /// Distance of `p` from the line through `origin` with the unit direction `dir`.
  static float distance_point_line(const vec4& origin, const vec4& dir, const vec4& p);

  /// Ray against a triangle, both sides, also behind the origin.
  /// @param t_out if not null, gets the parameter along the ray, also on a miss, where it may not
  /// be finite; negative for a triangle behind the origin
  static bool ray_triangle_intersection(const vec4& origin, const vec4& dir, const vec4& p0,
                                        const vec4& p1, const vec4& p2, float* t_out);

  /// Whether the whole line through `origin` along `dir` meets the sphere, also behind the origin.
  static bool check_ray_sphere_intersection(const vec4& origin, const vec4& dir, const vec4& centre,
                                            float radius);

  /// Line against a sphere. A miss touches neither output.
  /// @param t_out if not null, gets the smaller root
  /// @param point_out if not null, gets x, y, z of the point met; its w stays. With a null `t_out`
  /// and two roots it gets the origin
  static bool ray_sphere_intersection(const vec4& origin, const vec4& dir, const vec4& centre,
                                      float radius, float* t_out, vec4* point_out);

  /// Ray against an axis-aligned box; false when the box lies wholly behind the origin.
  static bool check_ray_aabb_intersection(const vec4& origin, const vec4& dir, const vec4& box_min,
                                          const vec4& box_max);
};

}  // namespace orv
