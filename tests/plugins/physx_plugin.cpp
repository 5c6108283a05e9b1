// Physics of spheres, planes, ropes and cloth. It has no other shapes and joints, no vehicles and
// no characters, and its bodies never sleep.

#include <orv/math/mat4.h>

#include "physx_simulation.h"

namespace {

using namespace orv;  // NOLINT: half of the names are its
using namespace orv::test;

constexpr unsigned int MAX_STEPS = 100000;

class BallPhysics : public Module<PhysX>, private Simulation {
 public:
  BallPhysics() : Module("test physics"), Simulation(last_number()) {}

  bool terminate() override {
    clear();
    return PhysX::terminate();
  }

  // ---- scenes ----

  int create_scene(const vec3& gravity) override {
    if (!is_initialized() || !is_number(gravity)) return 0;
    PhysicsScene scene;
    scene.gravity = gravity;
    for (unsigned int& mask : scene.collides) mask = ALL_GROUPS;
    return scenes_.add(std::move(scene));
  }
  bool destroy_scene(int number) override {
    const PhysicsScene* scene = scenes_.find(number);
    if (!scene || scene->pending > 0.0f) return false;
    const auto belongs = [number](int, const auto& thing) { return thing.scene == number; };
    cloths_.remove_if(belongs);
    ropes_.remove_if(belongs);
    std::vector<int> bodies;
    bodies_.for_each([&](int body, const Body& thing) {
      if (thing.scene == number) bodies.push_back(body);
    });
    for (const int body : bodies) destroy_body(body);
    return scenes_.remove(number);
  }
  bool set_gravity(int number, const vec3& gravity) override {
    PhysicsScene* scene = scenes_.find(number);
    if (!scene || !is_number(gravity)) return false;
    scene->gravity = gravity;
    return true;
  }
  bool get_gravity(int number, vec3* gravity) override {
    const PhysicsScene* scene = scenes_.find(number);
    if (!scene || !gravity) return false;
    *gravity = scene->gravity;
    return true;
  }
  bool set_fixed_step(int number, float seconds, unsigned int max_steps) override {
    PhysicsScene* scene = scenes_.find(number);
    if (!scene || !is_number(seconds) || seconds < 0.0f) return false;
    if (max_steps == 0 || max_steps > MAX_STEPS) return false;
    scene->fixed_step = seconds;
    scene->max_steps = max_steps;
    scene->left_over = 0.0f;
    return true;
  }
  bool simulate(int number, float seconds) override {
    PhysicsScene* scene = scenes_.find(number);
    if (!scene || scene->pending > 0.0f || !is_number(seconds) || seconds <= 0.0f) return false;
    scene->pending = seconds;
    return true;
  }
  bool fetch_results(int number, bool) override {
    PhysicsScene* scene = scenes_.find(number);
    if (!scene || scene->pending <= 0.0f) return false;
    scene->events.clear();
    if (scene->fixed_step <= 0.0f) {
      step(number, *scene, scene->pending);
    } else {
      const float wanted = (scene->left_over + scene->pending) / scene->fixed_step;
      const auto num_steps =
          static_cast<unsigned int>(std::min(wanted + 1e-4f, static_cast<float>(scene->max_steps)));
      scene->left_over =
          std::max(0.0f, std::fmod(wanted + 1e-4f, 1.0f) - 1e-4f) * scene->fixed_step;
      for (unsigned int i = 0; i < num_steps; ++i) step(number, *scene, scene->fixed_step);
    }
    scene->pending = 0.0f;
    if (!scene->callback) return true;
    for (const PhysXContact& contact : scene->contacts) {
      scene->callback(number, &contact, scene->callback_data);
    }
    return true;
  }
  unsigned int get_num_bodies(int scene) override {
    unsigned int count = 0;
    bodies_.for_each([&](int, const Body& body) { count += body.scene == scene ? 1 : 0; });
    return count;
  }
  int get_body(int scene, unsigned int index) override {
    int found = 0;
    bodies_.for_each([&](int number, const Body& body) {
      if (body.scene == scene && index-- == 0) found = number;
    });
    return found;
  }
  bool set_group_collision(int number, unsigned int group_a, unsigned int group_b,
                           bool state) override {
    PhysicsScene* scene = scenes_.find(number);
    if (!scene || group_a >= NUM_GROUPS || group_b >= NUM_GROUPS) return false;
    const unsigned int bits[2] = {1u << group_b, 1u << group_a};
    unsigned int* masks[2] = {&scene->collides[group_a], &scene->collides[group_b]};
    for (int i = 0; i < 2; ++i) *masks[i] = state ? *masks[i] | bits[i] : *masks[i] & ~bits[i];
    return true;
  }

  // ---- materials and shapes ----

  int create_material(float static_friction, float dynamic_friction, float restitution) override {
    if (!is_surface(static_friction, dynamic_friction, restitution)) return 0;
    return materials_.add({dynamic_friction, restitution});
  }
  bool set_material(int number, float static_friction, float dynamic_friction,
                    float restitution) override {
    Surface* material = find_kept(materials_, number);
    if (!material || !is_surface(static_friction, dynamic_friction, restitution)) return false;
    material->friction = dynamic_friction;
    material->restitution = restitution;
    return true;
  }
  bool destroy_material(int number) override {
    Surface* material = find_kept(materials_, number);
    if (!material) return false;
    material->is_let_go = true;
    end_if_unused(materials_, number);
    return true;
  }
  int create_sphere_shape(float radius, int material) override {
    return is_number(radius) && radius > 0.0f ? add_shape(radius, material) : 0;
  }
  int create_plane_shape(int material) override { return add_shape(0.0f, material); }
  int create_box_shape(const vec3&, int) override { return 0; }
  int create_capsule_shape(float, float, int) override { return 0; }
  int create_convex_shape(const vec3*, unsigned int, int) override { return 0; }
  int create_mesh_shape(const vec3*, unsigned int, const unsigned int*, unsigned int,
                        int) override {
    return 0;
  }
  int create_height_field_shape(const float*, unsigned int, unsigned int, const vec3&,
                                int) override {
    return 0;
  }
  bool set_shape_pose(int number, const vec3& position, const quat& rotation) override {
    Shape* shape = find_kept(shapes_, number);
    Pose pose{position, quat()};
    if (!shape || shape->num_users || !is_number(position)) return false;
    if (!unit(rotation, &pose.rotation)) return false;
    shape->local = pose;
    return true;
  }
  bool set_shape_trigger(int shape, bool state) override {
    return find_kept(shapes_, shape) && set(shapes_, shape, &Shape::is_trigger, state);
  }
  bool set_shape_group(int shape, unsigned int group) override {
    return group < NUM_GROUPS && find_kept(shapes_, shape) &&
           set(shapes_, shape, &Shape::group, group);
  }
  bool destroy_shape(int number) override {
    Shape* shape = find_kept(shapes_, number);
    if (!shape) return false;
    shape->is_let_go = true;
    end_shape_if_unused(number);
    return true;
  }

  // ---- bodies ----

  int create_static_body(int scene, const vec3& position, const quat& rotation) override {
    return add_body(scene, Kind::STATIC, position, rotation, 0.0f);
  }
  int create_dynamic_body(int scene, const vec3& position, const quat& rotation,
                          float mass) override {
    if (!is_number(mass) || mass <= 0.0f) return 0;
    return add_body(scene, Kind::DYNAMIC, position, rotation, mass);
  }
  int create_kinematic_body(int scene, const vec3& position, const quat& rotation) override {
    return add_body(scene, Kind::KINEMATIC, position, rotation, 0.0f);
  }
  bool destroy_body(int number) override {
    Body* body = bodies_.find(number);
    if (!body) return false;
    while (!body->shapes.empty()) detach_shape(number, body->shapes.back());
    ropes_.remove_if([number](int, const Rope& rope) {
      return rope.bodies[0] == number || rope.bodies[1] == number;
    });
    cloths_.for_each([number](int, Cloth& cloth) { erase(cloth.colliders, number); });
    return bodies_.remove(number);
  }
  bool attach_shape(int number, int shape_number) override {
    Body* body = bodies_.find(number);
    Shape* shape = find_kept(shapes_, shape_number);
    if (!body || !shape || contains(body->shapes, shape_number)) return false;
    if (shape->is_plane() && body->kind != Kind::STATIC) return false;
    body->shapes.push_back(shape_number);
    ++shape->num_users;
    return true;
  }
  bool detach_shape(int number, int shape_number) override {
    Body* body = bodies_.find(number);
    if (!body || !erase(body->shapes, shape_number)) return false;
    --shapes_.find(shape_number)->num_users;
    end_shape_if_unused(shape_number);
    return true;
  }
  bool set_body_pose(int number, const vec3& position, const quat& rotation) override {
    Body* body = bodies_.find(number);
    return body && make_pose(position, rotation, &body->pose);
  }
  bool get_body_pose(int number, vec3* position, quat* rotation) override {
    const Body* body = bodies_.find(number);
    if (!body) return false;
    tell(position, body->pose.position);
    tell(rotation, body->pose.rotation);
    return true;
  }
  bool get_body_matrix(int number, mat4* matrix) override {
    const Body* body = bodies_.find(number);
    if (!body || !matrix) return false;
    const vec3 axes[4] = {body->pose.rotation * vec3(1, 0, 0), body->pose.rotation * vec3(0, 1, 0),
                          body->pose.rotation * vec3(0, 0, 1), body->pose.position};
    for (int column = 0; column < 4; ++column) {
      matrix->m[column * 4] = axes[column].x;
      matrix->m[column * 4 + 1] = axes[column].y;
      matrix->m[column * 4 + 2] = axes[column].z;
      matrix->m[column * 4 + 3] = column == 3 ? 1.0f : 0.0f;
    }
    return true;
  }
  bool set_kinematic_target(int number, const vec3& position, const quat& rotation) override {
    Body* body = bodies_.find(number);
    if (!body || body->kind != Kind::KINEMATIC) return false;
    if (!make_pose(position, rotation, &body->target)) return false;
    body->has_target = true;
    return true;
  }
  bool set_linear_velocity(int body, const vec3& velocity) override {
    return is_number(velocity) && set_dynamic(body, &Body::velocity, velocity);
  }
  bool get_linear_velocity(int number, vec3* velocity) override {
    const Body* body = bodies_.find(number);
    if (!body || !velocity) return false;
    *velocity = body->velocity;
    return true;
  }
  bool set_angular_velocity(int body, const vec3& velocity) override {
    return is_number(velocity) && set_dynamic(body, &Body::turning, velocity * (1.0f / DEGREES));
  }
  bool get_angular_velocity(int number, vec3* velocity) override {
    const Body* body = bodies_.find(number);
    if (!body || !velocity) return false;
    *velocity = body->turning * DEGREES;
    return true;
  }
  bool add_force(int number, const vec3& force, PHYSX_FORCE_MODE mode) override {
    Body* body = find_dynamic(number);
    return body && is_number(force) &&
           add_push(force, mode, body->mass, 1.0f, &body->force, &body->velocity);
  }
  bool add_force_at(int number, const vec3& force, const vec3& position,
                    PHYSX_FORCE_MODE mode) override {
    Body* body = find_dynamic(number);
    if (!body || !is_number(force) || !is_number(position)) return false;
    if (mode != PHYSX_FORCE && mode != PHYSX_IMPULSE) return false;
    return add_force(number, force, mode) &&
           add_torque(number, (position - body->pose.position).cross(force), mode);
  }
  bool add_torque(int number, const vec3& torque, PHYSX_FORCE_MODE mode) override {
    Body* body = find_dynamic(number);
    return body && is_number(torque) &&
           add_push(torque, mode, inertia(*body), DEGREES, &body->torque, &body->turning);
  }
  bool set_mass(int body, float kilograms) override {
    return is_number(kilograms) && kilograms > 0.0f && set_dynamic(body, &Body::mass, kilograms);
  }
  bool get_mass(int number, float* kilograms) override {
    const Body* body = find_dynamic(number);
    if (!body || !kilograms) return false;
    *kilograms = body->mass;
    return true;
  }
  bool set_damping(int body, float linear, float angular) override {
    if (!is_number(linear) || !is_number(angular) || linear < 0.0f || angular < 0.0f) return false;
    return set_dynamic(body, &Body::damping, linear) &&
           set_dynamic(body, &Body::turning_damping, angular);
  }
  bool set_body_gravity(int body, bool state) override {
    return set_dynamic(body, &Body::has_gravity, state);
  }
  bool set_axis_lock(int body, unsigned int locks) override {
    return locks < 64 && set_dynamic(body, &Body::locks, locks);
  }
  bool set_continuous_collision(int body, bool state) override {
    return !state && find_dynamic(body);
  }
  bool wake_body(int body) override { return find_dynamic(body); }
  bool is_body_sleeping(int) override { return false; }
  bool set_body_user_data(int body, void* user_data) override {
    return set(bodies_, body, &Body::user_data, user_data);
  }
  void* get_body_user_data(int number) override {
    const Body* body = bodies_.find(number);
    return body ? body->user_data : nullptr;
  }

  // ---- joints ----

  int create_fixed_joint(int, int) override { return 0; }
  int create_hinge_joint(int, int, const vec3&, const vec3&) override { return 0; }
  int create_slider_joint(int, int, const vec3&) override { return 0; }
  int create_ball_joint(int, int, const vec3&) override { return 0; }
  int create_distance_joint(int body_a, int body_b, const vec3& position_a, const vec3& position_b,
                            float minimum, float maximum) override {
    const Body* a = bodies_.find(body_a);
    const Body* b = bodies_.find(body_b);
    if ((body_a && !a) || (body_b && !b) || body_a == body_b) return 0;
    if (!((a && a->is_dynamic()) || (b && b->is_dynamic()))) return 0;
    if (a && b && a->scene != b->scene) return 0;
    if (!is_number(position_a) || !is_number(position_b) || !is_range(minimum, maximum)) return 0;
    return ropes_.add({a ? a->scene : b->scene,
                       {body_a, body_b},
                       {to_local(a, position_a), to_local(b, position_b)},
                       minimum,
                       maximum});
  }
  bool set_joint_limits(int joint, float lower, float upper) override {
    Rope* rope = ropes_.find(joint);
    if (!rope || !is_range(lower, upper)) return false;
    rope->minimum = lower;
    rope->maximum = upper;
    return true;
  }
  bool set_joint_motor(int, float, float) override { return false; }
  bool set_joint_break_force(int joint, float force, float torque) override {
    return ropes_.find(joint) && force == 0.0f && torque == 0.0f;
  }
  bool is_joint_broken(int) override { return false; }
  bool destroy_joint(int joint) override { return ropes_.remove(joint); }

  // ---- queries ----

  bool ray_cast(int scene, const vec3& origin, const vec3& direction, float distance,
                unsigned int groups, PhysXHit* hit) override {
    const std::vector<PhysXHit> hits = find_hits(scene, origin, direction, distance, 0.0f, groups);
    if (hits.empty()) return false;
    tell(hit, hits[0]);
    return true;
  }
  unsigned int ray_cast_all(int scene, const vec3& origin, const vec3& direction, float distance,
                            unsigned int groups, PhysXHit* hits, unsigned int max_hits) override {
    if (!hits) return 0;
    const std::vector<PhysXHit> found = find_hits(scene, origin, direction, distance, 0.0f, groups);
    const std::size_t count = std::min<std::size_t>(found.size(), max_hits);
    std::copy_n(found.begin(), count, hits);
    return static_cast<unsigned int>(count);
  }
  bool sweep(int scene, int number, const vec3& position, const quat& rotation,
             const vec3& direction, float distance, unsigned int groups, PhysXHit* hit) override {
    const Shape* shape = find_kept(shapes_, number);
    Pose pose;
    if (!shape || shape->is_plane() || !make_pose(position, rotation, &pose)) return false;
    const std::vector<PhysXHit> hits = find_hits(scene, pose.place(shape->local.position),
                                                 direction, distance, shape->radius, groups);
    if (hits.empty()) return false;
    tell(hit, hits[0]);
    return true;
  }
  unsigned int overlap(int scene, int number, const vec3& position, const quat& rotation,
                       unsigned int groups, int* bodies, unsigned int max_bodies) override {
    const Shape* shape = find_kept(shapes_, number);
    Body probe;
    if (!shape || !bodies || !make_pose(position, rotation, &probe.pose)) return 0;
    unsigned int count = 0;
    for_each_shape(scene, [&](int other, Body& body, int, const Shape& candidate) {
      Gap gap;
      if (candidate.is_trigger || !(groups & 1u << candidate.group)) return;
      if (!find_gap(probe, *shape, body, candidate, &gap) || gap.separation >= 0.0f) return;
      if (count == max_bodies || (count && bodies[count - 1] == other)) return;
      bodies[count++] = other;
    });
    return count;
  }

  // ---- contacts ----

  unsigned int get_contacts(int number, PhysXContact* contacts,
                            unsigned int max_contacts) override {
    const PhysicsScene* scene = scenes_.find(number);
    return scene ? copy_out(scene->contacts, contacts, max_contacts) : 0;
  }
  unsigned int get_trigger_events(int number, PhysXTriggerEvent* events,
                                  unsigned int max_events) override {
    const PhysicsScene* scene = scenes_.find(number);
    return scene ? copy_out(scene->events, events, max_events) : 0;
  }
  bool set_contact_callback(int number, PhysXContactCallback callback, void* user_data) override {
    return set(scenes_, number, &PhysicsScene::callback, callback) &&
           set(scenes_, number, &PhysicsScene::callback_data, user_data);
  }

  // ---- cloth ----

  int create_cloth(int scene, const Vertex_PhysXCloth* vertices, unsigned int num_vertices,
                   const unsigned int* indices, unsigned int num_triangles) override {
    if (!scenes_.find(scene) || !vertices || !indices) return 0;
    if (num_vertices < 3 || num_vertices > 65536) return 0;
    if (num_triangles < 1 || num_triangles > 131072) return 0;
    const auto end = indices + std::size_t{num_triangles} * 3;
    if (std::any_of(indices, end, [=](unsigned int i) { return i >= num_vertices; })) return 0;
    return cloths_.add(Cloth(scene, vertices, num_vertices, indices, num_triangles));
  }
  bool destroy_cloth(int cloth) override { return cloths_.remove(cloth); }
  bool read_cloth(int number, Vertex_PhysXCloth* vertices, unsigned int num_vertices) override {
    const Cloth* cloth = cloths_.find(number);
    if (!cloth || !vertices || num_vertices != cloth->num_points()) return false;
    cloth->read(vertices);
    return true;
  }
  bool pin_cloth_vertex(int number, unsigned int index, const vec3* position) override {
    Cloth* cloth = cloths_.find(number);
    if (!cloth || index >= cloth->num_points() || (position && !is_number(*position))) return false;
    cloth->pin(index, position);
    return true;
  }
  bool set_cloth_stiffness(int cloth, float stretch, float bend) override {
    if (!(stretch >= 0.0f && stretch <= 1.0f) || !(bend >= 0.0f && bend <= 1.0f)) return false;
    return set(cloths_, cloth, &Cloth::stretch, stretch);
  }
  bool set_cloth_damping(int cloth, float damping) override {
    return is_number(damping) && damping >= 0.0f && set(cloths_, cloth, &Cloth::damping, damping);
  }
  bool set_cloth_wind(int cloth, const vec3& velocity) override {
    return is_number(velocity) && set(cloths_, cloth, &Cloth::wind, velocity);
  }
  bool set_cloth_collision(int number, int body_number, bool state) override {
    Cloth* cloth = cloths_.find(number);
    const Body* body = bodies_.find(body_number);
    if (!cloth || !body || body->scene != cloth->scene) return false;
    erase(cloth->colliders, body_number);
    if (state) cloth->colliders.push_back(body_number);
    return true;
  }

  // ---- vehicles and characters: none ----

  int create_vehicle(int, const PhysXWheel*, unsigned int) override { return 0; }
  bool destroy_vehicle(int) override { return false; }
  bool drive_vehicle(int, float, float, float) override { return false; }
  bool get_wheel_pose(int, unsigned int, vec3*, quat*) override { return false; }
  int create_character(int, const vec3&, float, float) override { return 0; }
  bool destroy_character(int) override { return false; }
  bool move_character(int, const vec3&, float, unsigned int*) override { return false; }
  bool set_character_position(int, const vec3&) override { return false; }
  bool get_character_position(int, vec3*) override { return false; }

 private:
  // ---- tables ----

  template <class Thing, class Value>
  static bool set(const Numbered<Thing>& things, int number, Value Thing::*field,
                  const std::common_type_t<Value>& value) {
    Thing* thing = things.find(number);
    if (!thing) return false;
    thing->*field = value;
    return true;
  }
  template <class Value>
  bool set_dynamic(int body, Value Body::*field, const std::common_type_t<Value>& value) {
    return find_dynamic(body) && set(bodies_, body, field, value);
  }
  template <class Thing>
  static unsigned int copy_out(const std::vector<Thing>& from, Thing* to, unsigned int max) {
    if (!to) return static_cast<unsigned int>(from.size());
    const std::size_t count = std::min<std::size_t>(from.size(), max);
    std::copy_n(from.begin(), count, to);
    return static_cast<unsigned int>(count);
  }

  // ---- making ----

  static bool is_surface(float static_friction, float dynamic_friction, float restitution) {
    return is_number(static_friction) && static_friction >= 0.0f && is_number(dynamic_friction) &&
           dynamic_friction >= 0.0f && restitution >= 0.0f && restitution <= 1.0f;
  }
  static bool is_range(float lower, float upper) {
    return is_number(lower) && is_number(upper) && lower >= 0.0f && lower <= upper;
  }
  static bool make_pose(const vec3& position, const quat& rotation, Pose* pose) {
    if (!is_number(position) || !unit(rotation, &pose->rotation)) return false;
    pose->position = position;
    return true;
  }
  int add_shape(float radius, int number) {
    Surface* material = find_kept(materials_, number);
    if (!is_initialized() || (number && !material)) return 0;
    Shape shape;
    shape.radius = radius;
    shape.material = number;
    if (material) ++material->num_users;
    return shapes_.add(shape);
  }
  int add_body(int scene, Kind kind, const vec3& position, const quat& rotation, float mass) {
    Body body;
    if (!scenes_.find(scene) || !make_pose(position, rotation, &body.pose)) return 0;
    body.scene = scene;
    body.kind = kind;
    body.mass = mass;
    return bodies_.add(std::move(body));
  }
  static vec3 to_local(const Body* body, const vec3& position) {
    if (!body) return position;
    quat back = body->pose.rotation;
    back.conjugate();
    return back * (position - body->pose.position);
  }
  /// Adds to a force or, at once, to a velocity, which is kept in units of which `scale` make one
  /// of the host's.
  static bool add_push(const vec3& push, PHYSX_FORCE_MODE mode, float inertia, float scale,
                       vec3* force, vec3* velocity) {
    switch (mode) {
      case PHYSX_FORCE:
        *force += push;
        return true;
      case PHYSX_IMPULSE:
        *velocity += push * (1.0f / inertia);
        return true;
      case PHYSX_VELOCITY_CHANGE:
        *velocity += push * (1.0f / scale);
        return true;
      case PHYSX_ACCELERATION:
        *force += push * (inertia / scale);
        return true;
    }
    return false;
  }
};

}  // namespace

ORV_TEST_MODULE(BallPhysics)
