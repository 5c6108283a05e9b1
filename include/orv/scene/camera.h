/// @file
/// A camera: projection, view and viewport.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/math/mat4.h>
#include <orv/math/quat.h>
#include <orv/math/vec3.h>
#include <orv/math/vec4.h>
#include <orv/scene/object.h>
#include <orv/scene/viewport.h>

namespace orv {

struct CameraData;

/// An object that makes the projection and view matrices and the viewport of a renderer.
///
/// A new camera stands at (0, 0, 10) and looks down -Z, with a vertical field of view of 60
/// degrees, an aspect of 16:9, and planes at 1 and 1000. Setters only mark what is due; bind and
/// the getters rebuild the matrices.
///
/// The camera keeps its position and orientation beside those of its Tripod. Its own setters keep
/// both in step; Object's setters, reached through an Object reference, do not move the view.
class ORV_API Camera : public Object {
 public:
  /// At (0, 0, 10), looking along -Z, with a field of view of 60 degrees, an aspect of 16:9 and
  /// planes at 1 and 1000.
  Camera();
  ~Camera() override;
  Camera(const Camera&) = delete;
  Camera& operator=(const Camera&) = delete;

  // ---- viewport ----

  /// @{
  /// The rectangle to draw to, in pixels from the lower left corner. Stored only: bind sets it.
  void set_viewport(int x, int y, int width, int height);
  void set_viewport(const Viewport& viewport);
  /// @}

  /// The rectangle set last.
  const Viewport& get_viewport() const;
  /// The camera's own viewport, to read and write.
  Viewport* get_viewport_ptr();

  // ---- projection ----

  /// Orthographic projection; both kinds of `rh` give the same matrix.
  void build_projection_ortho(float left, float right, float bottom, float top, float znear,
                              float zfar, bool rh);
  /// Perspective projection.
  /// @param fov     field of view in degrees, vertical when right-handed
  /// @param aspect  width over height
  /// @param znear   distance of the near plane
  /// @param zfar    distance of the far plane; -1 puts it at infinity when right-handed
  /// @param rh      right-handed
  void build_projection_persp(float fov, float aspect, float znear, float zfar, bool rh);
  /// The same with the choice of a vertical or a horizontal field of view when right-handed. A
  /// later setter rebuilds with a vertical one.
  void build_projection_persp_v2(float fov, bool fov_is_vertical, float aspect, float znear,
                                 float zfar, bool rh);
  /// Perspective projection from two fields of view in degrees; `aspect` is only stored when
  /// right-handed, and a left-handed one takes `fov_y`.
  void build_projection_persp_v3(float fov_x, float fov_y, float aspect, float znear, float zfar,
                                 bool rh);
  /// Field of view in degrees. This and the three below make the camera a perspective one.
  void set_fov(float degrees);
  /// Distance of the near plane in scene units.
  void set_znear(float distance);
  /// Distance of the far plane in scene units.
  void set_zfar(float distance);
  /// Width over height.
  void set_aspect(float aspect);
  /// Field of view in degrees.
  float get_fov() const;
  /// Tangent of half the field of view.
  float get_tanfovdiv2() const;
  /// Distance of the near plane in scene units.
  float get_znear() const;
  /// Distance of the far plane in scene units.
  float get_zfar() const;
  /// Width over height.
  float get_aspect() const;
  /// Whether the projection built or set last is a perspective one.
  bool is_perspective_projection() const;
  /// The opposite of is_perspective_projection.
  bool is_ortho_projection() const;
  /// Handedness of the next rebuild.
  void set_proj_rh_state(bool rh);
  /// Rebuilds a perspective matrix that is due. False when there was nothing to do.
  bool update_projection_matrix();
  /// Sets the matrix as it stands; the next setter of a projection value discards it. The inverse
  /// and the product with the view are not renewed by it.
  void set_projection_matrix(const mat4& matrix);
  /// Up to date.
  const mat4& get_projection_matrix();

  /// @{
  /// The matrix as it was built last.
  mat4* get_projection_matrix_ptr();
  float* get_projection_matrix_float_ptr();
  /// @}

  /// Inverse of the projection matrix, up to date.
  const mat4& get_inv_projection_matrix();

  // ---- view ----

  /// @{
  /// Moves the camera and keeps its orientation.
  void set_position(float x, float y, float z);
  void set_position(const vec4& position);
  /// @}

  /// Upward direction and axis of yaw, (0, 1, 0) at first; acts at the next turn.
  void set_up(const vec4& up);
  /// The upward direction set last.
  const vec4& get_up() const;
  /// Turns the camera; the target set last is kept.
  void set_orientation(const quat& orientation);
  /// Rotation from the camera's axes to those of the world.
  const quat& get_orientation() const;
  /// Turns towards a point (w 1) or along a direction (w 0). Any other w is only stored.
  void set_lookat(const vec4& target);
  /// Turns towards a point.
  void set_lookat(float x, float y, float z);
  /// The same as set_lookat of a vector.
  void set_lookat(float x, float y, float z, float w);
  /// The target set last.
  const vec4& get_lookat() const;
  /// Position and target, then the up vector, which acts at the next turn only.
  /// @param position  where the camera stands
  /// @param target    as set_lookat takes it
  /// @param up        up vector and axis of yaw from now on
  /// @param rh        stored; right-handed
  void set_view_params(const vec4& position, const vec4& target, const vec4& up, bool rh);
  /// Stored: whether the view is right-handed.
  void set_view_rh_state(bool rh);
  /// Turns the camera to look along a direction. (0, 0, 0, 1) does nothing; a zero direction leaves
  /// an orientation of no use.
  void update_direction(const vec4& direction);
  /// Aims at a face of a cube map, in the order of CUBEMAP_FACE; other numbers do nothing.
  void set_orientation_cubemap(int face);

  /// @{
  /// Rebuilds a view matrix that is due. False when there was nothing to do.
  bool update_view_matrix();
  bool update_view_matrix_v2();
  /// @}

  /// Sets the matrix as it stands and takes the position from its inverse. The orientation is that
  /// of the matrix itself, so later turns start from the inverse rotation.
  void set_view_matrix(const mat4& matrix);
  /// Up to date.
  const mat4& get_view_matrix();

  /// @{
  /// The matrix as it was built last.
  mat4* get_view_matrix_ptr();
  float* get_view_matrix_float_ptr();
  /// @}

  /// Inverse of the view matrix, up to date.
  const mat4& get_inv_view_matrix();
  /// Product of projection and view. After a build_projection_* it is renewed only with the next
  /// change of the view or the next setter of a projection value.
  const mat4& get_view_projection_matrix();
  /// A matrix applied before the view, identity at first.
  void set_reflection_matrix(const mat4& matrix);
  /// Mirror in a plane (a, b, c, d) with a unit normal.
  void set_reflection_matrix(const vec4& plane);
  /// Mirror in the plane through `point` with a unit `normal`.
  void set_reflection_matrix(const vec4& point, const vec4& normal);
  /// The matrix set last.
  const mat4& get_reflection_matrix() const;

  // ---- turning ----

  /// @{
  /// Whether yaw turns about the up vector (true) or about the camera's own y axis.
  void set_rotate_around_fixed_yaw_axis(bool state);
  bool get_rotate_around_fixed_yaw_axis() const;
  /// @}

  /// Turns by a rotation applied after the present one.
  void rotate(const quat& rotation);
  /// The same by an angle and an axis of length 1.
  void rotate(float degrees, const vec4& axis);
  /// Turns further about the yaw axis (the up vector or the camera's own y axis).
  void set_yaw(float degrees);
  /// Turns further about the camera's x axis; without limits.
  void set_pitch(float degrees);
  /// Turns further about the camera's z axis.
  void set_roll(float degrees);

  /// @{
  /// The angle of the last set_yaw; the two below likewise.
  float get_yaw() const;
  float get_pitch() const;
  float get_roll() const;
  /// @}

  /// set_yaw, then set_pitch.
  void rotate_view(float pitch, float yaw);

  // ---- moving ----

  /// Direction of view, with w 1.
  vec4 get_view_vector() const;
  /// Upward direction of the camera, with w 1.
  vec4 get_up_vector() const;
  /// Moves by `distance` scene units in the direction of view.
  void move_along_view(float distance);
  /// Keeps the height.
  void move_along_view_xz(float distance);
  /// Moves sideways, to the camera's left for positive distances.
  void strafe_h(float distance, bool move_lookat);
  /// Moves along the camera's upward direction.
  void strafe_v(float distance, bool move_lookat);

  // ---- orbit by mouse ----

  /// Start angles in degrees and the mouse point that the next call is compared with.
  void init_rotate_position_around_point(float pitch, float yaw, int mouse_x, int mouse_y);
  /// Gathers the motion of the mouse into two angles and turns by both; at a limit of the pitch it
  /// does not turn.
  /// @param point    not used
  /// @param mouse_x  present mouse point
  /// @param mouse_y  present mouse point
  /// @param speed    degrees per pixel
  void rotate_position_around_point_by_mouse(const vec4& point, int mouse_x, int mouse_y,
                                             float speed);
  /// Limits of the orbit, 80 and -80 degrees at first.
  void set_pitch_angle_limits(float max, float min);

  // ---- use ----

  /// Hands viewport, scissor and matrices to a renderer. Nothing for a null renderer.
  /// @param renderer    the renderer
  /// @param viewport    set the viewport
  /// @param scissor     set the scissor rectangle to the viewport
  /// @param projection  set the projection matrix
  /// @param view        set the view matrix
  /// @param flag        load the matrices into the fixed pipeline too
  void bind(Renderer* renderer, bool viewport, bool scissor, bool projection, bool view, bool flag);
  /// Takes the planes of the frustum from two matrices; null means the camera's own.
  void frustum_update(mat4* projection, mat4* view);

  /// @{
  /// Whether the point is on the inner side of any one plane.
  bool frustum_check_point(float x, float y, float z) const;
  bool frustum_check_point(const vec3& point) const;
  bool frustum_check_point(const vec4& point) const;
  /// @}

  /// @{
  /// Whether the global sphere of a volume is at least partly inside all planes.
  bool frustum_check_sphere(const BoundingVolume& volume) const;
  bool frustum_check_sphere(const vec4& center, float radius) const;
  /// @}

  /// Whether the global box of a volume is at least partly inside every plane.
  bool frustum_check_aa_box(const BoundingVolume& volume) const;

 private:
  void projection_built();
  void mark_projection_dirty();
  void store_position(const vec4& position);
  void strafe(const vec4& delta, bool move_lookat);

  friend struct CameraData;

  CameraData* data_;
};

}  // namespace orv
