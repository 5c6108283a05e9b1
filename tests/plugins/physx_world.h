// The world of the physics module: spheres and planes that fall, touch and bounce, and ropes.
#pragma once

#include <orv/math/quat.h>
#include <orv/math/vec3.h>
#include <orv/services/physx.h>

#include <cmath>

#include "module_support.h"

namespace orv::test {

constexpr float DEGREES = 57.29577951f;  ///< in a radian

inline bool is_number(float value) { return std::isfinite(value); }
inline bool is_number(const vec3& v) { return is_number(v.x) && is_number(v.y) && is_number(v.z); }

/// A direction brought to length 1; false when it has none.
inline bool unit(const vec3& from, vec3* to) {
  if (!is_number(from) || !(from.magnitude_squared() > 1e-12f)) return false;
  *to = from;
  to->normalize();
  return true;
}

/// A rotation brought to length 1; false when it is none.
inline bool unit(const quat& from, quat* to) {
  const float squared = from.x * from.x + from.y * from.y + from.z * from.z + from.w * from.w;
  if (!is_number(squared) || !(squared > 1e-12f)) return false;
  *to = from;
  to->normalize();
  return true;
}

struct Pose {
  vec3 position;
  quat rotation;

  vec3 place(const vec3& local) const { return position + rotation * local; }
};

struct Surface {
  float friction = 0.5f;
  float restitution = 0.0f;
  int num_users = 0;  ///< shapes of it
  bool is_let_go = false;
};

struct Shape {
  float radius = 0.0f;  ///< of a sphere; 0 for the plane y = 0
  int material = 0;     ///< 0 for the usual one
  unsigned int group = 0;
  bool is_trigger = false;
  Pose local;
  int num_users = 0;  ///< bodies with it
  bool is_let_go = false;

  bool is_plane() const { return radius == 0.0f; }
};

enum class Kind { STATIC, DYNAMIC, KINEMATIC };

struct Body {
  int scene = 0;
  Kind kind = Kind::STATIC;
  Pose pose;
  Pose target;  ///< of a kinematic body
  bool has_target = false;
  float mass = 0.0f;
  vec3 velocity;
  vec3 turning;  ///< axis times radians a second
  vec3 force;
  vec3 torque;
  float damping = 0.0f, turning_damping = 0.0f;
  bool has_gravity = true;
  unsigned int locks = 0;
  void* user_data = nullptr;
  std::vector<int> shapes;

  bool is_dynamic() const { return kind == Kind::DYNAMIC; }
  float inverse_mass() const { return is_dynamic() ? 1.0f / mass : 0.0f; }
  vec3 shape_center(const Shape& shape) const { return pose.place(shape.local.position); }
  vec3 plane_normal(const Shape& shape) const {
    return pose.rotation * (shape.local.rotation * vec3(0, 1, 0));
  }

  void lock(vec3& moving, vec3& turning_about) const {
    if (locks & PHYSX_LOCK_MOVE_X) moving.x = 0.0f;
    if (locks & PHYSX_LOCK_MOVE_Y) moving.y = 0.0f;
    if (locks & PHYSX_LOCK_MOVE_Z) moving.z = 0.0f;
    if (locks & PHYSX_LOCK_TURN_X) turning_about.x = 0.0f;
    if (locks & PHYSX_LOCK_TURN_Y) turning_about.y = 0.0f;
    if (locks & PHYSX_LOCK_TURN_Z) turning_about.z = 0.0f;
  }
  void turn(float seconds) {
    const float angle = turning.length() * seconds;
    if (angle < 1e-9f) return;
    vec3 axis = turning;
    axis.normalize();
    axis *= std::sin(angle / 2.0f);
    pose.rotation = quat(axis.x, axis.y, axis.z, std::cos(angle / 2.0f)) * pose.rotation;
    pose.rotation.normalize();
  }
};

/// Keeps two places within distances; body 0 is the world.
struct Rope {
  int scene = 0;
  int bodies[2] = {};
  vec3 places[2];  ///< in the frames of the bodies
  float minimum = 0.0f, maximum = 0.0f;
};

/// How two surfaces stand to one another.
struct Gap {
  vec3 position;
  vec3 normal;  ///< from the second to the first
  float separation = 0.0f;
};

/// The gap between two shapes; false for two planes, which do not meet.
inline bool find_gap(const Body& a, const Shape& shape_a, const Body& b, const Shape& shape_b,
                     Gap* gap) {
  if (shape_a.is_plane()) {
    if (shape_b.is_plane() || !find_gap(b, shape_b, a, shape_a, gap)) return false;
    gap->normal = -gap->normal;
    return true;
  }
  const vec3 center = a.shape_center(shape_a);
  const vec3 other = b.shape_center(shape_b);
  if (shape_b.is_plane()) {
    gap->normal = b.plane_normal(shape_b);
    gap->separation = gap->normal.dot(center - other) - shape_a.radius;
  } else {
    if (!unit(center - other, &gap->normal)) gap->normal = vec3(0, 1, 0);
    gap->separation = (center - other).length() - shape_a.radius - shape_b.radius;
  }
  gap->position = center - gap->normal * shape_a.radius;
  return true;
}

/// Where a sphere of a radius, 0 for a ray, first meets a shape on its way.
inline bool meet(const Body& body, const Shape& shape, const vec3& origin, const vec3& direction,
                 float distance, float radius, PhysXHit* hit) {
  const vec3 center = body.shape_center(shape);
  float at = 0.0f;
  if (shape.is_plane()) {
    const vec3 normal = body.plane_normal(shape);
    const float height = normal.dot(origin - center) - radius;
    const float sinking = -normal.dot(direction);
    if (height > 0.0f && sinking <= 0.0f) return false;
    at = height > 0.0f ? height / sinking : 0.0f;
    hit->normal = normal;
  } else {
    const vec3 to_center = center - origin;
    const float reach = shape.radius + radius;
    const float along = to_center.dot(direction);
    const float squared = to_center.magnitude_squared() - reach * reach;
    const float inside = along * along - squared;
    if (squared > 0.0f && (along <= 0.0f || inside < 0.0f)) return false;
    at = squared > 0.0f ? along - std::sqrt(inside) : 0.0f;
    if (!unit(origin + direction * at - center, &hit->normal)) hit->normal = -direction;
  }
  hit->distance = at;
  hit->position = origin + direction * at - hit->normal * radius;
  return at <= distance;
}

/// Pushes two bodies apart, or holds them together, along a normal by an impulse and a distance.
inline void push(Body& a, Body& b, const vec3& normal, float impulse, float distance) {
  const float sum = a.inverse_mass() + b.inverse_mass();
  a.velocity += normal * (impulse * a.inverse_mass());
  b.velocity -= normal * (impulse * b.inverse_mass());
  a.pose.position += normal * (distance * a.inverse_mass() / sum);
  b.pose.position -= normal * (distance * b.inverse_mass() / sum);
}

/// Ends the approach of two bodies that overlap; gives the impulse.
inline float separate(Body& a, Body& b, const Gap& gap, const Surface& surface, float rest_speed) {
  const float sum = a.inverse_mass() + b.inverse_mass();
  if (sum == 0.0f) return 0.0f;
  const vec3 relative = a.velocity - b.velocity;
  const float approach = -relative.dot(gap.normal);
  float impulse = 0.0f;
  if (approach > 0.0f) {
    const float bounce = approach > rest_speed ? surface.restitution : 0.0f;
    impulse = approach * (1.0f + bounce) / sum;
    vec3 sliding = relative + gap.normal * approach;
    const float speed = sliding.length();
    if (speed > 1e-6f) {
      sliding.normalize();
      push(a, b, sliding, -std::min(speed / sum, surface.friction * impulse), 0.0f);
    }
  }
  push(a, b, gap.normal, impulse, -gap.separation);
  return impulse;
}

/// Shortens or stretches what a rope ties together.
inline void pull(const Rope& rope, Body& a, Body& b) {
  const vec3 between = a.pose.place(rope.places[0]) - b.pose.place(rope.places[1]);
  const float length = between.length();
  const float wished = std::clamp(length, rope.minimum, rope.maximum);
  const float sum = a.inverse_mass() + b.inverse_mass();
  vec3 normal;
  if (wished == length || sum == 0.0f || !unit(between, &normal)) return;
  const float speed = (a.velocity - b.velocity).dot(normal);
  const bool goes_on = length > wished ? speed > 0.0f : speed < 0.0f;
  push(a, b, normal, goes_on ? -speed / sum : 0.0f, wished - length);
}

}  // namespace orv::test
