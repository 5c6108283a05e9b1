/// @file
/// Plugins that simulate physics.
#pragma once

#include <orv/core/api.h>
#include <orv/core/plugin.h>
#include <orv/fwd.h>
#include <orv/services/physx_types.h>

namespace orv {

/// A plugin that moves bodies as physics wants it: scenes with rigid bodies of shapes and
/// materials, joints, cloth, vehicles and characters. The library has none itself; a module fills
/// every operation.
///
/// A host makes a scene, bodies in it and shapes on them, then calls simulate() and fetch_results()
/// once a frame and copies the poses of bodies to its Objects (get_body_matrix()).
///
/// **Numbers.** Everything is named by numbers above 0 that are not given twice within the plugin,
/// whatever they name; 0 is nothing. What a plugin cannot do, unknown numbers, null where not told
/// otherwise, values out of range and values that are no numbers give false or 0 and change
/// nothing. Results through pointers are written on success alone.
///
/// **Units.** Metres, kilograms, seconds, newtons; angles in degrees and their velocities in
/// degrees a second. Places and directions are those of the world, y up, except where they are
/// called local. Directions need not have length 1, rotations are brought to it; a direction of
/// length 0 is out of range.
///
/// **Owning.** A scene owns its bodies, joints, cloth, vehicles and characters: they end with it.
/// Materials and shapes belong to the plugin and may be used by many; destroying one lets it go
/// once its last user has ended. Arrays are copied. terminate() ends all.
///
/// **Threads.** One scene, one thread at a time. The step runs between simulate() and
/// fetch_results(), maybe on threads of the plugin. Every operation may be called meanwhile, but
/// whether it counts and reads before or after the step is left to the plugin.
///
/// The order of the operations is a contract with modules built apart.
class ORV_API PhysX : public Plugin {
 public:
  /// Groups of shapes: numbers from 0 below this.
  static constexpr unsigned int NUM_GROUPS = 32;
  /// Mask of queries that takes all groups: bit n stands for group n.
  static constexpr unsigned int ALL_GROUPS = 0xFFFFFFFFu;

  /// A plugin of unknown type, for a module's class to name.
  PhysX() = default;
  ~PhysX() override;
  PhysX(const PhysX&) = delete;
  PhysX& operator=(const PhysX&) = delete;

  // ---- scenes ----

  /// Makes an empty scene.
  /// @param gravity  metres a second squared, such as (0, -9.81, 0)
  virtual int create_scene(const vec3& gravity) = 0;
  /// Ends a scene with all that it owns. False while its step runs.
  virtual bool destroy_scene(int scene) = 0;
  /// Another gravity; it wakes all bodies.
  virtual bool set_gravity(int scene, const vec3& gravity) = 0;
  /// The gravity of a scene.
  virtual bool get_gravity(int scene, vec3* gravity) = 0;
  /// Cuts what simulate() is given into equal steps; what is left over is kept for the next call.
  /// @param seconds    length of a step; 0 takes each call as one step, as at first
  /// @param max_steps  of one call, above 0; time beyond is dropped
  virtual bool set_fixed_step(int scene, float seconds, unsigned int max_steps) = 0;
  /// Begins to move a scene on by a time above 0. False while its step runs.
  virtual bool simulate(int scene, float seconds) = 0;
  /// Ends what simulate() began: new poses can be read, contacts and triggers are told.
  /// @param wait  wait for it; else false when it is not done
  virtual bool fetch_results(int scene, bool wait) = 0;
  /// Bodies of all three kinds in a scene.
  virtual unsigned int get_num_bodies(int scene) = 0;
  /// A body of a scene in order of making; 0 past the last.
  virtual int get_body(int scene, unsigned int index) = 0;
  /// Whether shapes of two groups, each below NUM_GROUPS, push one another; all do at first.
  virtual bool set_group_collision(int scene, unsigned int group_a, unsigned int group_b,
                                   bool state) = 0;

  // ---- materials ----

  /// Makes a material of a surface.
  /// @param static_friction   of bodies at rest, 0 or more
  /// @param dynamic_friction  of bodies that slide, 0 or more
  /// @param restitution       0 for no bounce to 1 for a full one
  virtual int create_material(float static_friction, float dynamic_friction, float restitution) = 0;
  /// Other values for all that is made of it.
  virtual bool set_material(int material, float static_friction, float dynamic_friction,
                            float restitution) = 0;
  /// Lets go of a material.
  virtual bool destroy_material(int material) = 0;

  // ---- shapes ----

  /// @{
  /// Make a shape about the origin, of a material or, with 0, of the plugin's usual one. Sizes are
  /// above 0.
  virtual int create_box_shape(const vec3& half_sizes, int material) = 0;
  virtual int create_sphere_shape(float radius, int material) = 0;
  /// @}
  /// Makes a cylinder along y with a half sphere at each end.
  /// @param half_height  from the middle to the centre of a half sphere, above 0
  virtual int create_capsule_shape(float radius, float half_height, int material) = 0;
  /// Makes everything below y = 0; for static bodies.
  virtual int create_plane_shape(int material) = 0;
  /// Makes the convex hull of at least four points that are not in one plane.
  virtual int create_convex_shape(const vec3* points, unsigned int num_points, int material) = 0;
  /// Makes a surface of triangles, counter-clockwise seen from outside; for static and kinematic
  /// bodies.
  /// @param indices  three for each triangle, each below num_points
  virtual int create_mesh_shape(const vec3* points, unsigned int num_points,
                                const unsigned int* indices, unsigned int num_triangles,
                                int material) = 0;
  /// Makes a ground of heights, row after row along z, from the origin on; for static bodies.
  /// @param columns  heights of a row, at least 2
  /// @param rows     at least 2
  /// @param spacing  metres between columns, of one unit of height, and between rows
  virtual int create_height_field_shape(const float* heights, unsigned int columns,
                                        unsigned int rows, const vec3& spacing, int material) = 0;
  /// Place of a shape in its bodies; the origin at first. False once a body has it.
  virtual bool set_shape_pose(int shape, const vec3& local_position,
                              const quat& local_rotation) = 0;
  /// Whether a shape lets everything through and tells of it by get_trigger_events().
  virtual bool set_shape_trigger(int shape, bool state) = 0;
  /// Group of a shape, below NUM_GROUPS; 0 at first.
  virtual bool set_shape_group(int shape, unsigned int group) = 0;
  /// Lets go of a shape.
  virtual bool destroy_shape(int shape) = 0;

  // ---- bodies ----

  /// Makes a body that never moves by itself and that nothing moves, without a shape yet.
  virtual int create_static_body(int scene, const vec3& position, const quat& rotation) = 0;
  /// Makes a body that forces move, without a shape yet, at rest.
  /// @param mass  kilograms, above 0; the inertia follows from the shapes
  virtual int create_dynamic_body(int scene, const vec3& position, const quat& rotation,
                                  float mass) = 0;
  /// Makes a body that goes where set_kinematic_target() says and pushes others away, without a
  /// shape yet.
  virtual int create_kinematic_body(int scene, const vec3& position, const quat& rotation) = 0;
  /// Ends a body with its joints, and with the vehicle whose chassis it is.
  virtual bool destroy_body(int body) = 0;
  /// Gives a body one more shape. False for a shape of which such a body cannot be.
  virtual bool attach_shape(int body, int shape) = 0;
  /// Takes a shape off a body.
  virtual bool detach_shape(int body, int shape) = 0;
  /// Puts a body of any kind to another place at once. Velocities stay.
  virtual bool set_body_pose(int body, const vec3& position, const quat& rotation) = 0;
  /// Where a body is. Either pointer may be null.
  virtual bool get_body_pose(int body, vec3* position, quat* rotation) = 0;
  /// The same as a transform, for Object::set_transform() and its kin.
  virtual bool get_body_matrix(int body, mat4* matrix) = 0;
  /// Where a kinematic body is to be after the next step. False for other bodies.
  virtual bool set_kinematic_target(int body, const vec3& position, const quat& rotation) = 0;
  /// Velocity of the centre of mass. False for bodies that are not dynamic.
  virtual bool set_linear_velocity(int body, const vec3& velocity) = 0;
  /// Velocity of the centre of mass; 0 for a static body.
  virtual bool get_linear_velocity(int body, vec3* velocity) = 0;
  /// Turning about an axis, by that axis times degrees a second. False for bodies that are not
  /// dynamic.
  virtual bool set_angular_velocity(int body, const vec3& velocity) = 0;
  /// Turning about an axis; 0 for a static body.
  virtual bool get_angular_velocity(int body, vec3* velocity) = 0;

  /// @{
  /// Push or turn a dynamic body and wake it; several calls add up. The first pushes at the centre
  /// of mass, the second at a place, which turns it too.
  virtual bool add_force(int body, const vec3& force, PHYSX_FORCE_MODE mode) = 0;
  virtual bool add_force_at(int body, const vec3& force, const vec3& position,
                            PHYSX_FORCE_MODE mode) = 0;
  virtual bool add_torque(int body, const vec3& torque, PHYSX_FORCE_MODE mode) = 0;
  /// @}

  /// Another mass, above 0, of a dynamic body.
  virtual bool set_mass(int body, float kilograms) = 0;
  /// Mass of a dynamic body.
  virtual bool get_mass(int body, float* kilograms) = 0;
  /// Part of its velocity that a dynamic body loses in a second, 0 or more; 0 at first.
  virtual bool set_damping(int body, float linear, float angular) = 0;
  /// Whether gravity pulls a dynamic body; it does at first.
  virtual bool set_body_gravity(int body, bool state) = 0;
  /// Movements that a dynamic body does not make.
  /// @param locks  bits of PHYSX_AXIS_LOCK, 0 for none
  virtual bool set_axis_lock(int body, unsigned int locks) = 0;
  /// Whether a dynamic body that is fast stops at thin things; costly, off at first.
  virtual bool set_continuous_collision(int body, bool state) = 0;
  /// Wakes a dynamic body.
  virtual bool wake_body(int body) = 0;
  /// Whether a dynamic body rests and is left out of steps until something touches it.
  virtual bool is_body_sleeping(int body) = 0;
  /// Pointer that a host ties to a body, such as its Object; never read by the plugin.
  virtual bool set_body_user_data(int body, void* user_data) = 0;
  /// That pointer, null at first.
  virtual void* get_body_user_data(int body) = 0;

  // ---- joints ----

  /// @{
  /// Tie two bodies of one scene, as they stand to one another now; one of them may be 0 for the
  /// world, and at least one is dynamic. Fixed: nothing moves. Hinge: they turn about an axis
  /// through a place. Slider: they move along an axis. Ball: they turn about a place.
  virtual int create_fixed_joint(int body_a, int body_b) = 0;
  virtual int create_hinge_joint(int body_a, int body_b, const vec3& position,
                                 const vec3& axis) = 0;
  virtual int create_slider_joint(int body_a, int body_b, const vec3& axis) = 0;
  virtual int create_ball_joint(int body_a, int body_b, const vec3& position) = 0;
  /// @}
  /// Keeps a place of one body, and a place of the other, within distances of one another.
  /// @param position_a  moves with body a
  /// @param position_b  moves with body b
  /// @param minimum     metres, 0 or more
  /// @param maximum     metres, not below the minimum
  virtual int create_distance_joint(int body_a, int body_b, const vec3& position_a,
                                    const vec3& position_b, float minimum, float maximum) = 0;
  /// How far a joint goes from where it was made: degrees of a hinge, metres of a slider, degrees
  /// from the axis of a ball (`upper` alone), the distances of a distance joint. False for fixed
  /// ones and when `lower` is above `upper`.
  virtual bool set_joint_limits(int joint, float lower, float upper) = 0;
  /// Drives a hinge (degrees a second) or a slider (metres a second).
  /// @param max_force  newton metres or newtons; 0 switches the drive off
  virtual bool set_joint_motor(int joint, float velocity, float max_force) = 0;
  /// Newtons and newton metres from which a joint breaks; 0 for never, as at first.
  virtual bool set_joint_break_force(int joint, float force, float torque) = 0;
  /// Whether a joint broke. It ties nothing then.
  virtual bool is_joint_broken(int joint) = 0;
  /// Unties two bodies.
  virtual bool destroy_joint(int joint) = 0;

  // ---- queries ----

  /// The first thing that a ray meets.
  /// @param distance  metres that the ray goes, above 0
  /// @param groups    bits of the groups that it sees
  /// @param hit       may be null
  /// @return whether it meets anything; triggers are never met
  virtual bool ray_cast(int scene, const vec3& origin, const vec3& direction, float distance,
                        unsigned int groups, PhysXHit* hit) = 0;
  /// All that a ray meets, one hit a shape, the nearest first.
  /// @param hits  room for max_hits of them
  /// @return hits that were written
  virtual unsigned int ray_cast_all(int scene, const vec3& origin, const vec3& direction,
                                    float distance, unsigned int groups, PhysXHit* hits,
                                    unsigned int max_hits) = 0;
  /// The first thing that a shape meets which moves from a place along a direction. Planes, meshes
  /// and height fields cannot move so.
  virtual bool sweep(int scene, int shape, const vec3& position, const quat& rotation,
                     const vec3& direction, float distance, unsigned int groups, PhysXHit* hit) = 0;
  /// Bodies that a shape at a place overlaps, each once, in order of making.
  /// @param bodies  room for max_bodies of them
  /// @return bodies that were written
  virtual unsigned int overlap(int scene, int shape, const vec3& position, const quat& rotation,
                               unsigned int groups, int* bodies, unsigned int max_bodies) = 0;

  // ---- contacts ----

  /// Contacts as they stood when fetch_results() ended. With null their number, else as many as
  /// were written.
  virtual unsigned int get_contacts(int scene, PhysXContact* contacts,
                                    unsigned int max_contacts) = 0;
  /// What entered and left triggers between the last simulate() and fetch_results(), in order. With
  /// null their number, else as many as were written.
  virtual unsigned int get_trigger_events(int scene, PhysXTriggerEvent* events,
                                          unsigned int max_events) = 0;
  /// Function that is told of contacts, in place of the one before; null for none.
  virtual bool set_contact_callback(int scene, PhysXContactCallback callback, void* user_data) = 0;

  // ---- cloth ----

  /// Makes a cloth of triangles, at rest as the vertices stand.
  /// @param vertices  positions are in the world; their w is the inverse mass in 1 / kilograms,
  ///                  0 for a vertex that does not move
  /// @param indices   three for each triangle, each below num_vertices
  virtual int create_cloth(int scene, const Vertex_PhysXCloth* vertices, unsigned int num_vertices,
                           const unsigned int* indices, unsigned int num_triangles) = 0;
  /// Ends a cloth.
  virtual bool destroy_cloth(int cloth) = 0;
  /// Writes positions (w 1), normals and tangents of a cloth; other fields are left.
  /// @param num_vertices  as given to create_cloth(); false for another number
  virtual bool read_cloth(int cloth, Vertex_PhysXCloth* vertices, unsigned int num_vertices) = 0;
  /// Holds a vertex at a place, to which it goes at once; null lets it go again.
  virtual bool pin_cloth_vertex(int cloth, unsigned int index, const vec3* position) = 0;
  /// How strongly a cloth keeps its lengths and its creases, each 0 to 1; 1 and 0.5 at first.
  virtual bool set_cloth_stiffness(int cloth, float stretch, float bend) = 0;
  /// Part of its velocity that a cloth loses in a second, 0 or more; 0 at first.
  virtual bool set_cloth_damping(int cloth, float damping) = 0;
  /// Velocity of the air about a cloth, metres a second; 0 at first.
  virtual bool set_cloth_wind(int cloth, const vec3& velocity) = 0;
  /// Whether a cloth is kept out of a body of spheres, capsules, boxes and planes; out of none at
  /// first.
  virtual bool set_cloth_collision(int cloth, int body, bool state) = 0;

  // ---- vehicles ----

  /// Puts wheels under a dynamic body, which becomes a chassis.
  /// @param num_wheels  2 to 20
  virtual int create_vehicle(int chassis, const PhysXWheel* wheels, unsigned int num_wheels) = 0;
  /// Takes the wheels off; the chassis stays.
  virtual bool destroy_vehicle(int vehicle) = 0;
  /// Pedals and steering wheel until the next call.
  /// @param throttle  -1 (full backwards) to 1 (full ahead)
  /// @param brake     0 to 1
  /// @param steer     -1 (left) to 1 (right)
  virtual bool drive_vehicle(int vehicle, float throttle, float brake, float steer) = 0;
  /// Where a wheel is, turned and steered, its axle along x. Either pointer may be null.
  virtual bool get_wheel_pose(int vehicle, unsigned int wheel, vec3* position, quat* rotation) = 0;

  // ---- characters ----

  /// Makes a character, an upright capsule that a host moves by hand and that slides along what it
  /// meets. Rays, bodies and triggers meet it as a kinematic body of group 0 that is not among
  /// those of the scene: in hits, contacts and events its number stands for the body, and 0 for its
  /// shape.
  /// @param position  of its feet
  /// @param radius    metres, above 0
  /// @param height    metres from feet to head, at least twice the radius
  virtual int create_character(int scene, const vec3& position, float radius, float height) = 0;
  /// Ends a character.
  virtual bool destroy_character(int character) = 0;
  /// Moves a character as far as it can go. Gravity is the host's to add.
  /// @param displacement  metres
  /// @param seconds       that it takes, above 0: how hard bodies are pushed
  /// @param touches       receives bits of PHYSX_CHARACTER_TOUCH; may be null
  virtual bool move_character(int character, const vec3& displacement, float seconds,
                              unsigned int* touches) = 0;
  /// Puts the feet of a character to another place at once.
  virtual bool set_character_position(int character, const vec3& position) = 0;
  /// Where the feet are.
  virtual bool get_character_position(int character, vec3* position) = 0;
};

}  // namespace orv
