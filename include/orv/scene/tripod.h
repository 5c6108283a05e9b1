/// @file
/// Local transform: position, orientation and scale, and the matrix they make.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>

namespace orv {

/// How the matrix of a `Tripod` is composed. The rightmost is applied first.
enum TRANSFORM_ORDER : int {
  TRANSFORM_ORDER_TRS = 0,  ///< translation * rotation * scale
  TRANSFORM_ORDER_RTS = 1,  ///< rotation * translation * scale
  TRANSFORM_ORDER_TSR = 2,  ///< translation * scale * rotation
  TRANSFORM_ORDER_RST = 3,  ///< rotation * scale * translation
};

struct TripodData;

/// Position, orientation and scale, and the matrix they make, which is computed late.
///
/// The setters only mark the matrix as out of date: `get_transform` shows what was computed last.
/// `Object` brings it up to date when it asks for an absolute transform.
class ORV_API Tripod {
 public:
  /// At the origin, not turned, scale 1.
  Tripod();
  virtual ~Tripod();
  Tripod(const Tripod&) = delete;
  Tripod& operator=(const Tripod&) = delete;

  /// Sets the position; w is stored and not used by the matrix.
  void set_position(float x, float y, float z, float w = 1.0f);
  /// Sets the position, all four lanes.
  void set_position(const vec4& position);
  /// Position.
  const vec4& get_position() const;
  /// The four floats of the position. Writing through it doesn't mark the matrix as out of date.
  float* get_position_ptr();
  /// The position. Writing through it doesn't mark the matrix as out of date.
  vec4* get_position_vec4_ptr();

  /// Sets the orientation; Euler angles set before and not used yet are dropped.
  void set_orientation(const quat& orientation);
  /// Orientation, with Euler angles set before taken in.
  const quat& get_orientation();
  /// Sets the orientation by turns in degrees: x * y * z as quaternions, z being applied first.
  void set_orientation_euler_angles(float x, float y, float z);
  /// The angles set last, with w = 1; not changed by `set_orientation`.
  const vec4& get_orientation_euler_angles() const;
  /// The turned X, Y and Z axis in x, y, z; w of each is 3. Each pointer may be null.
  void get_orientation_vectors(vec4* x, vec4* y, vec4* z);

  /// Sets the scale.
  void set_scale(float x, float y, float z);
  /// Sets the scale, all four lanes.
  void set_scale(const vec4& scale);
  /// Scale.
  const vec4& get_scale() const;
  /// The four floats of the scale. Writing through it doesn't mark the matrix as out of date.
  float* get_scale_ptr();
  /// The scale. Writing through it doesn't mark the matrix as out of date.
  vec4* get_scale_vec4_ptr();

  /// Sets the matrix itself. Position, orientation and scale stay as they were and are out of use
  /// until the next of their setters, which loses this matrix.
  void set_transform(const mat4& transform);
  /// Sets the matrix from sixteen floats. Null leaves it, and only marks it as up to date.
  void set_transform(const float* transform);
  /// Sets matrix, position and orientation, which the caller vouches to agree, and scale 1.
  void set_transform_v2(const mat4& transform, const vec4& position, const quat& orientation);
  /// The matrix as computed or set last.
  mat4& get_transform();
  /// The matrix as computed or set last.
  mat4* get_transform_mat4_ptr();
  /// The sixteen floats of the matrix as computed or set last.
  float* get_transform_ptr();

  /// Sets how the matrix is composed, from the next change on. An unknown order leaves the matrix
  /// as it is.
  void set_transform_order(TRANSFORM_ORDER order);
  /// How the matrix is composed.
  TRANSFORM_ORDER get_transform_order() const;

 private:
  friend class Object;
  friend class Camera;

  void update_orientation();
  void update_transform();

  TripodData* data_;
};

}  // namespace orv
