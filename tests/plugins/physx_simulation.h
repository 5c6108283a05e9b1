// The tables of the physics module, and how they change in a step.
#pragma once

#include "physx_cloth.h"
#include "physx_world.h"

namespace orv::test {

using Pair = std::pair<int, int>;

struct PhysicsScene {
  vec3 gravity;
  float fixed_step = 0.0f;
  unsigned int max_steps = 1;
  float left_over = 0.0f;
  float pending = 0.0f;  ///< seconds that simulate() was given and fetch_results() is to do
  unsigned int collides[PhysX::NUM_GROUPS];
  std::vector<PhysXContact> contacts;
  std::vector<PhysXTriggerEvent> events;
  std::set<Pair> touching;  ///< bodies
  std::set<Pair> inside;    ///< trigger shapes and bodies
  PhysXContactCallback callback = nullptr;
  void* callback_data = nullptr;
};

inline bool contains(const std::vector<int>& numbers, int number) {
  return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
}

inline bool erase(std::vector<int>& numbers, int number) {
  const auto found = std::find(numbers.begin(), numbers.end(), number);
  if (found == numbers.end()) return false;
  numbers.erase(found);
  return true;
}

class Simulation {
 protected:
  explicit Simulation(int& last_number)
      : scenes_(last_number),
        materials_(last_number),
        shapes_(last_number),
        bodies_(last_number),
        ropes_(last_number),
        cloths_(last_number) {}

  void clear() {
    cloths_.clear();
    ropes_.clear();
    bodies_.clear();
    shapes_.clear();
    materials_.clear();
    scenes_.clear();
  }

  /// A thing that the host has not let go.
  template <class Thing>
  static Thing* find_kept(const Numbered<Thing>& things, int number) {
    Thing* thing = things.find(number);
    return thing && !thing->is_let_go ? thing : nullptr;
  }
  /// Ends a thing when the host has let it go and nobody uses it.
  template <class Thing>
  static bool end_if_unused(Numbered<Thing>& things, int number) {
    const Thing* thing = things.find(number);
    return thing && thing->is_let_go && thing->num_users == 0 && things.remove(number);
  }
  void end_shape_if_unused(int number) {
    const Shape* shape = shapes_.find(number);
    const int material = shape ? shape->material : 0;
    if (!end_if_unused(shapes_, number) || !material) return;
    --materials_.find(material)->num_users;
    end_if_unused(materials_, material);
  }
  Body* find_dynamic(int number) const {
    Body* body = bodies_.find(number);
    return body && body->is_dynamic() ? body : nullptr;
  }
  /// Work on each shape of each body of a scene.
  template <class Work>
  void for_each_shape(int scene, Work work) const {
    bodies_.for_each([&](int number, Body& body) {
      if (body.scene != scene) return;
      for (const int shape : body.shapes) work(number, body, shape, *shapes_.find(shape));
    });
  }
  /// That of a solid sphere as large as the body's first shape.
  float inertia(const Body& body) const {
    const float radius = body.shapes.empty() ? 1.0f : shapes_.find(body.shapes[0])->radius;
    return 0.4f * body.mass * radius * radius;
  }

  /// Moves all of a scene on.
  void step(int number, PhysicsScene& scene, float seconds) {
    bodies_.for_each([&](int, Body& body) {
      if (body.scene == number) move(body, scene.gravity, seconds);
    });
    ropes_.for_each([&](int, const Rope& rope) {
      Body world;
      if (rope.scene != number) return;
      Body* a = bodies_.find(rope.bodies[0]);
      Body* b = bodies_.find(rope.bodies[1]);
      pull(rope, a ? *a : world, b ? *b : world);
    });
    scene.contacts.clear();
    collide(number, scene, seconds);
    cloths_.for_each([&](int, Cloth& cloth) {
      if (cloth.scene != number) return;
      cloth.step(scene.gravity, seconds, [&](vec3* place) { keep_out(cloth.colliders, place); });
    });
  }

  /// What a sphere of a radius, 0 for a ray, meets on its way, the nearest first.
  std::vector<PhysXHit> find_hits(int scene, const vec3& origin, const vec3& along, float distance,
                                  float radius, unsigned int groups) const {
    std::vector<PhysXHit> hits;
    vec3 direction;
    if (!is_number(origin) || !unit(along, &direction)) return hits;
    if (!is_number(distance) || distance <= 0.0f) return hits;
    for_each_shape(scene, [&](int number, Body& body, int shape_number, const Shape& shape) {
      PhysXHit hit;
      if (shape.is_trigger || !(groups & 1u << shape.group)) return;
      if (!meet(body, shape, origin, direction, distance, radius, &hit)) return;
      hit.body = number;
      hit.shape = shape_number;
      hits.push_back(hit);
    });
    std::stable_sort(hits.begin(), hits.end(),
                     [](const PhysXHit& a, const PhysXHit& b) { return a.distance < b.distance; });
    return hits;
  }

  Numbered<PhysicsScene> scenes_;
  Numbered<Surface> materials_;
  Numbered<Shape> shapes_;
  Numbered<Body> bodies_;
  Numbered<Rope> ropes_;
  Numbered<Cloth> cloths_;

 private:
  void move(Body& body, const vec3& gravity, float seconds) const {
    if (body.kind == Kind::KINEMATIC) {
      body.velocity = vec3();
      if (!body.has_target) return;
      body.velocity = (body.target.position - body.pose.position) * (1.0f / seconds);
      body.pose = body.target;
      body.has_target = false;
    }
    if (!body.is_dynamic()) return;
    const vec3 pulled = body.has_gravity ? gravity : vec3();
    body.velocity += (pulled + body.force * body.inverse_mass()) * seconds;
    body.turning += body.torque * (seconds / inertia(body));
    body.velocity *= std::max(0.0f, 1.0f - body.damping * seconds);
    body.turning *= std::max(0.0f, 1.0f - body.turning_damping * seconds);
    body.lock(body.velocity, body.turning);
    body.force = body.torque = vec3();
    body.pose.position += body.velocity * seconds;
    body.turn(seconds);
  }

  void collide(int number, PhysicsScene& scene, float seconds) {
    std::set<Pair> touching, inside;
    for_each_shape(number, [&](int a, Body& body_a, int shape_a, const Shape& first) {
      for_each_shape(number, [&](int b, Body& body_b, int shape_b, const Shape& second) {
        Gap gap;
        if (a >= b || !find_gap(body_a, first, body_b, second, &gap)) return;
        if (gap.separation >= 0.0f) return;
        if (first.is_trigger) inside.insert({shape_a, b});
        if (second.is_trigger) inside.insert({shape_b, a});
        if (first.is_trigger || second.is_trigger) return;
        if (!(scene.collides[first.group] & 1u << second.group)) return;
        const float rest_speed = 2.0f * scene.gravity.length() * seconds;
        PhysXContact contact;
        contact.body_a = a;
        contact.body_b = b;
        contact.is_new = !scene.touching.count({a, b});
        contact.position = gap.position;
        contact.normal = gap.normal;
        contact.separation = gap.separation;
        contact.impulse = separate(body_a, body_b, gap, surface(first, second), rest_speed);
        scene.contacts.push_back(contact);
        touching.insert({a, b});
      });
    });
    tell_changes(scene, inside, scene.inside, true);
    tell_changes(scene, scene.inside, inside, false);
    scene.touching.swap(touching);
    scene.inside.swap(inside);
  }
  /// Events for what is in one set and not in the other.
  void tell_changes(PhysicsScene& scene, const std::set<Pair>& in, const std::set<Pair>& not_in,
                    bool entered) const {
    for (const Pair& pair : in) {
      if (not_in.count(pair)) continue;
      int owner = 0;
      bodies_.for_each([&](int body, const Body& candidate) {
        if (contains(candidate.shapes, pair.first)) owner = body;
      });
      PhysXTriggerEvent event;
      event.trigger_shape = pair.first;
      event.trigger_body = owner;
      event.other_body = pair.second;
      event.entered = entered;
      scene.events.push_back(event);
    }
  }
  Surface surface(const Shape& a, const Shape& b) const {
    const Surface usual;
    const Surface& first = a.material ? *materials_.find(a.material) : usual;
    const Surface& second = b.material ? *materials_.find(b.material) : usual;
    return {(first.friction + second.friction) / 2.0f,
            std::max(first.restitution, second.restitution)};
  }
  void keep_out(const std::vector<int>& colliders, vec3* place) const {
    for (const int number : colliders) {
      const Body* body = bodies_.find(number);
      for (const int shape_number : body->shapes) {
        const Shape& shape = *shapes_.find(shape_number);
        const vec3 from_center = *place - body->shape_center(shape);
        vec3 normal;
        float depth;
        if (shape.is_plane()) {
          normal = body->plane_normal(shape);
          depth = -normal.dot(from_center);
        } else {
          if (!unit(from_center, &normal)) continue;
          depth = shape.radius - from_center.length();
        }
        if (depth > 0.0f) *place += normal * depth;
      }
    }
  }
};

}  // namespace orv::test
