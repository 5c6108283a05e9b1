#include <orv/math/math.h>

#include <orv/math/vec3.h>
#include <orv/math/vec4.h>

#include <cmath>
#include <utility>

#include "math/random_state.h"

namespace orv {

// ---- random numbers ---------------------------------------------------------------------------

unsigned int& detail::random_state() {
  thread_local unsigned int state = 1;
  return state;
}

int Math::rand15() {
  unsigned int& state = detail::random_state();
  state = state * detail::RANDOM_FACTOR + detail::RANDOM_ADDEND;
  return detail::random_number(state);
}

void Math::srnd(unsigned int seed) { detail::random_state() = seed; }

float Math::rnd(float a) { return static_cast<float>(rand15()) * (a * detail::RANDOM_SCALE); }

float Math::rnd(float a, float b) {
  return static_cast<float>(rand15()) * ((b - a) * detail::RANDOM_SCALE) + a;
}

// ---- lines and rays ---------------------------------------------------------------------------

float Math::distance_point_line(const vec4& origin, const vec4& dir, const vec4& p) {
  const float t = (p - origin).dot(dir);
  return (p - (origin + dir * t)).length();
}

bool Math::ray_triangle_intersection(const vec4& origin, const vec4& dir, const vec4& p0,
                                     const vec4& p1, const vec4& p2, float* t_out) {
  // Cramer's rule. No test of the determinant: a division by 0 fails the tests below.
  const vec3 direction = dir.get_vec3();
  const vec3 a = p0.get_vec3() - p1.get_vec3();
  const vec3 b = p0.get_vec3() - p2.get_vec3();
  const vec3 s = p0.get_vec3() - origin.get_vec3();
  const vec3 p = b.cross(direction);
  const vec3 q = a.cross(s);
  const float determinant = p.dot(a);
  const float t = -q.dot(b) / determinant;
  const float u = q.dot(direction) / determinant;
  const float v = p.dot(s) / determinant;
  if (t_out) *t_out = t;
  return u >= 0.0f && v >= 0.0f && u <= 1.0f && v <= 1.0f && u + v <= 1.0f;
}

namespace {

// a*t*t + b*t + c = 0 where a line meets a sphere.
struct SphereEquation {
  float a;
  float b;
  float discriminant;

  SphereEquation(const vec4& origin, const vec4& dir, const vec4& centre, float radius) {
    const vec4 o = origin - centre;
    a = dir.dot(dir);
    b = 2.0f * o.dot(dir);
    const float c = o.dot(o) - radius * radius;
    discriminant = b * b - 4.0f * a * c;
  }
};

}  // namespace

bool Math::check_ray_sphere_intersection(const vec4& origin, const vec4& dir, const vec4& centre,
                                         float radius) {
  return !(SphereEquation(origin, dir, centre, radius).discriminant < 0.0f);
}

bool Math::ray_sphere_intersection(const vec4& origin, const vec4& dir, const vec4& centre,
                                   float radius, float* t_out, vec4* point_out) {
  const SphereEquation e(origin, dir, centre, radius);
  if (e.discriminant < 0.0f) return false;
  float t = 0.0f;
  if (e.discriminant > 0.0f) {
    // Without a place for it the root isn't taken, and the point below is the origin.
    if (t_out) {
      const float root = std::sqrt(e.discriminant);
      t = mini((-e.b - root) / (2.0f * e.a), (root - e.b) / (2.0f * e.a));
    }
  } else {
    t = e.b / (-2.0f * e.a);
  }
  if (t_out) *t_out = t;
  if (point_out) {
    point_out->x = origin.x + dir.x * t;
    point_out->y = origin.y + dir.y * t;
    point_out->z = origin.z + dir.z * t;
  }
  return true;
}

bool Math::check_ray_aabb_intersection(const vec4& origin, const vec4& dir, const vec4& box_min,
                                       const vec4& box_max) {
  float entry = 0.0f;
  float exit = 0.0f;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    // A direction of 0 along the axis gives infinities, which compare as they should.
    float near = (box_min[axis] - origin[axis]) / dir[axis];
    float far = (box_max[axis] - origin[axis]) / dir[axis];
    if (near > far) std::swap(near, far);
    if (axis == 0) {
      entry = near;
      exit = far;
      continue;
    }
    if (entry > far || near > exit) return false;
    if (near > entry) entry = near;
    if (far < exit) exit = far;
  }
  return !(entry > 1e30f || exit < 0.0f);
}

}  // namespace orv
