/// @file
/// Records and enumerations of PhysX plugins.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/math/vec3.h>

namespace orv {

/// What the number given to a PhysX plugin's forces and torques is.
enum PHYSX_FORCE_MODE : int {
  PHYSX_FORCE = 1,            ///< newtons, or newton metres, over the next step
  PHYSX_IMPULSE = 2,          ///< newton seconds, or newton metre seconds, at once
  PHYSX_VELOCITY_CHANGE = 3,  ///< metres a second, or degrees a second, at once
  PHYSX_ACCELERATION = 4      ///< metres, or degrees, a second squared over the next step
};

/// Bits of movements that PhysX::set_axis_lock() forbids, in the world's axes.
enum PHYSX_AXIS_LOCK : unsigned int {
  PHYSX_LOCK_MOVE_X = 1,   ///< along x
  PHYSX_LOCK_MOVE_Y = 2,   ///< along y
  PHYSX_LOCK_MOVE_Z = 4,   ///< along z
  PHYSX_LOCK_TURN_X = 8,   ///< about x
  PHYSX_LOCK_TURN_Y = 16,  ///< about y
  PHYSX_LOCK_TURN_Z = 32   ///< about z
};

/// Bits that tell where a character met something.
enum PHYSX_CHARACTER_TOUCH : unsigned int {
  PHYSX_TOUCH_SIDES = 1,  ///< a wall
  PHYSX_TOUCH_ABOVE = 2,  ///< a ceiling
  PHYSX_TOUCH_BELOW = 4   ///< the ground
};

/// What a ray or a swept shape meets.
class ORV_API PhysXHit {
 public:
  int body = 0;           ///< the body that was met
  int shape = 0;          ///< its shape
  float distance = 0.0f;  ///< metres along the direction; 0 when it begins inside
  vec3 position;          ///< the point that was met, in the world
  vec3 normal;            ///< of the surface there, of length 1; towards the origin when inside
};

/// Two bodies that touch.
class ORV_API PhysXContact {
 public:
  int body_a = 0;           ///< the one with the smaller number
  int body_b = 0;           ///< the other one
  bool is_new = false;      ///< they did not touch a step before
  vec3 position;            ///< the deepest point, in the world
  vec3 normal;              ///< from b towards a, of length 1
  float separation = 0.0f;  ///< metres between the surfaces, below 0 where they overlap
  float impulse = 0.0f;     ///< newton seconds that kept them apart
};

/// A body that entered or left a trigger shape.
class ORV_API PhysXTriggerEvent {
 public:
  int trigger_shape = 0;  ///< the shape
  int trigger_body = 0;   ///< the body that it belongs to
  int other_body = 0;     ///< the body that came or went
  bool entered = false;   ///< it came; else it went
};

/// A wheel of a vehicle. Places are in the frame of the chassis: x to the right, y up, and the
/// vehicle drives along negative z.
class ORV_API PhysXWheel {
 public:
  vec3 center;                        ///< with the suspension at rest
  float radius = 0.3f;                ///< metres
  float width = 0.2f;                 ///< metres
  float mass = 20.0f;                 ///< kilograms
  float suspension_travel = 0.2f;     ///< metres from the highest place to the lowest
  float suspension_stiffness = 3e4f;  ///< newtons a metre
  float suspension_damping = 4e3f;    ///< newton seconds a metre
  float friction = 1.0f;              ///< of the tyre
  float max_steer = 0.0f;             ///< degrees to each side, 0 for a wheel that does not turn
  float max_drive_torque = 0.0f;      ///< newton metres, 0 for a wheel without drive
  float max_brake_torque = 1500.0f;   ///< newton metres
};

/// Told of each contact of PhysX::get_contacts() while PhysX::fetch_results() runs, on its thread.
/// It may read, but make and end nothing.
/// @param scene      where it happened
/// @param contact    good during the call
/// @param user_data  as given to PhysX::set_contact_callback()
using PhysXContactCallback = void (*)(int scene, const PhysXContact* contact, void* user_data);

}  // namespace orv
