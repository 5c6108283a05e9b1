/// @file
/// A node with a place in space that can be drawn.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/geometry/vertex.h>
#include <orv/gpu/gpu_program_model_view_params.h>
#include <orv/math/bounding_volume.h>
#include <orv/math/mat4.h>
#include <orv/math/quat.h>
#include <orv/math/vec3.h>
#include <orv/math/vec4.h>
#include <orv/scene/node.h>

namespace orv {

struct ObjectData;

/// A node with a local transform, a bounding volume, materials, a GPU program and the switches that
/// decide how its geometry reaches the renderer. All that is drawn derives from it.
///
/// Setters and editing operations take a `Node* node`. Null means this object alone. A node means:
/// act on this object, then on every child of `node` that is an Object, with the child as its own
/// `node`; so `obj->set_gpu_program(p, obj)` reaches the whole subtree. Children that are no
/// objects are skipped with everything below them.
///
/// Objects belong to the rendering thread; nothing here takes a lock. The order of the virtual
/// operations is a contract with plugins.
class ORV_API Object : public Node {
 public:
  /// At the origin, neither turned nor scaled, without materials.
  Object();
  /// Frees what the object owns. Materials and the program are released by _cleanup, not here.
  ~Object() override;
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  /// Removes all materials and gives up the reference to the GPU program. True.
  bool _cleanup(Renderer* renderer) override;
  /// Computes the bounding volume from the geometry, the first time only unless
  /// bounding_volume_update_from_geometry_set_state asks again, and brings its global part up to
  /// date. True.
  bool _build() override;
  /// Draws the grid and the tripod when they are switched on. Derived classes draw their geometry.
  void _render(Renderer* renderer) override;

  // ---- geometry; nothing in a plain object ----

  /// Draws the geometry in three steps: prepare, draw, finish.
  virtual void render_geometry(Renderer* renderer);
  /// First step: what is to be drawn is created where needed, refreshed and bound.
  virtual void render_geometry_prepare(Renderer* renderer);
  /// Second step: draws what is bound.
  virtual void render_geometry_draw(Renderer* renderer);
  /// Third step: unbinds it.
  virtual void render_geometry_finish(Renderer* renderer);

  // ---- rendering states ----

  /// Whether geometry goes to numbered vertex attributes. Fixed matrices are switched the other
  /// way.
  virtual void set_use_generic_vertex_attribs_state(bool state, Node* node);
  /// With `legacy` true: built-in vertex attributes and fixed matrices; with false the reverse.
  virtual void set_opengl_2_3_rendering_states(bool legacy, Node* node);
  /// The opposite of set_use_generic_vertex_attribs_state.
  virtual void set_use_gl2_vertex_array_state(bool state, Node* node);
  /// Whether the fixed pipeline's matrices are loaded at each draw.
  virtual void set_use_fixed_mvp_matrices_state(bool state, Node* node);
  /// Whether geometry is drawn as patches. A plain object only hands it to its children.
  virtual void set_tessellation_state(bool state, Node* node);

  // ---- engine uniforms ----

  /// Fills the engine uniforms and has the renderer send all uniforms of the program. Nothing for a
  /// null renderer and for an API that takes its uniforms from constant buffers.
  /// @param renderer  the renderer to draw with
  /// @param program   record of the bound program; null for the fixed pipeline
  /// @param fixed     load the fixed pipeline's matrices too
  virtual void bind_gpu_program_uniforms(Renderer* renderer, GpuProgramData* program, bool fixed);
  /// Sets the engine uniforms of `program` from this object's absolute transform and the renderer's
  /// matrices. Loads the fixed pipeline's matrices when `fixed` is true or `program` is null.
  /// Nothing for a null renderer.
  virtual void _update_automatic_uniforms(Renderer* renderer, GpuProgramData* program, bool fixed);
  /// The same for renderers that take the matrices from a buffer: fills
  /// get_gpu_program_model_view_params. Nothing for a null renderer.
  virtual void _update_automatic_uniforms_gpu_buffer(Renderer* renderer, GpuProgramData* program);

  // ---- tripod, the three axes of the object ----

  /// Draws the tripod with fixed matrices and puts the current program back. Nothing for a null
  /// renderer.
  virtual void display_tripod(Renderer* renderer, Node* node);
  /// Draws three lines from the origin: x red, y green, z blue. Nothing for a null renderer.
  /// @param renderer  the renderer to draw with
  /// @param size      length of each axis
  virtual void render_tripod(Renderer* renderer, const vec4& size);

  // ---- GPU program ----

  /// Releases the present program when it is another one, adds a reference to the new one (also
  /// when it is the same) and stores it. Null leaves none.
  virtual void set_gpu_program(GpuProgram* program, Node* node);

  // ---- vertices and faces ----

  /// Number of vertices of this object; 0 for a plain object.
  virtual unsigned int get_num_vertices(Node* node);
  /// Number of faces of this object; 0 for a plain object.
  virtual unsigned int get_num_faces(Node* node);
  /// Sum over this object and the objects below `node`, or below this object when null.
  virtual unsigned int get_num_vertices_v2(Node* node);
  /// Sum over this object and the objects below `node`, or below this object when null.
  virtual unsigned int get_num_faces_v2(Node* node);
  /// Interleaved vertex, owned by the geometry; null when there is none.
  virtual Vertex* get_vertex(unsigned int index);
  /// Copy of a vertex; a default vertex when there is none.
  virtual Vertex get_vertex_v2(unsigned int index);
  /// Normals of the faces. True for a plain object, whose children are asked for.
  virtual bool compute_faces_normal(Node* node);
  /// Vertex normals from the face normals.
  virtual bool compute_vertices_normal(Node* node);
  /// One normal for vertices at the same place, within `epsilon` on each axis.
  virtual bool average_vertices_normal(float epsilon, Node* node);

  // ---- materials ----

  /// Appends a material and takes a reference, unless one of its id is in the list. False for null.
  virtual bool add_material(Material* material, Node* node);
  /// Takes a material out and releases it. False when null or when this object does not hold it.
  virtual bool remove_material(Material* material, Node* node);

  // ---- editing; a plain object only hands these to its children ----

  /// @{
  /// Moves all vertices by `offset`, in the object's own space.
  virtual void translate_vertices_position(const vec4& offset, Node* node);
  virtual void translate_vertices_position(const vec3& offset, Node* node);
  /// @}

  /// Multiplies the positions by `factors`, axis by axis.
  virtual void scale_vertices_position(const vec4& factors, Node* node);
  /// Turns all vertices about the origin of the object.
  virtual void rotate_vertices_position(const quat& rotation, Node* node);
  /// Angles in degrees, as quat::from_euler takes them.
  virtual void rotate_vertices_position(float x, float y, float z, Node* node);

  /// @{
  /// Gives all vertices one colour, RGBA, usually in 0 to 1.
  virtual void set_vertices_color(float r, float g, float b, float a, Node* node);
  virtual void set_vertices_color(const vec4& color, Node* node);
  /// @}

  /// Turns the winding of all faces.
  virtual void flip_faces(Node* node);
  /// Turns the normals of all vertices round.
  virtual void flip_vertex_normals(Node* node);

  // ---- bounding volume from geometry ----

  /// Resets the global bounds, computes the object children of `node` (of this object when null)
  /// and merges their volumes into this one, without their transforms. True.
  virtual bool bounding_volume_compute(Node* node);
  /// True for a plain object; geometry computes its bounding volume.
  virtual bool update_bounding_sphere(Node* node);

  // ---- local transform ----

  /// @{
  /// Moves the object; w becomes 1.
  void set_position(float x, float y, float z);
  void set_position(const vec4& position);
  /// @}

  /// Place in the space of the parent; w is 1.
  const vec4& get_position() const;
  /// Angles in degrees about the three axes.
  void set_orientation_euler_xyz(float x, float y, float z);
  /// Turns the object; the Euler angles are not computed from it.
  void set_orientation(const quat& orientation);
  /// Rotation in the space of the parent.
  const quat& get_orientation() const;
  /// The angles set last, in degrees. Each pointer may be null.
  void get_orientation_euler_angles(float* x, float* y, float* z) const;
  /// The axes turned by the orientation; w is 3. Each pointer may be null.
  void get_orientation_vectors(vec4* x_axis, vec4* y_axis, vec4* z_axis) const;
  /// The same, three floats each. Each pointer may be null.
  void get_orientation_vectors_v2(float* x_axis, float* y_axis, float* z_axis) const;

  /// @{
  /// Factors along the object's own axes, 1 at first.
  void set_scale(float x, float y, float z);
  void set_scale(const vec4& scale);
  const vec4& get_scale() const;
  /// @}

  /// Replaces the matrix; the next setter of position, orientation or scale rebuilds it from those.
  void set_transform(const mat4& transform);
  /// Sixteen floats, column by column; null only stops a rebuild that is due.
  void set_transform(float* transform);
  /// Matrix, position and orientation at once, with a scale of 1.
  void set_transform_v2(const mat4& transform, const vec4& position, const quat& orientation);
  /// The matrix as it was built last; an absolute getter brings it up to date.
  mat4& get_transform() const;

  /// @{
  /// The same as a pointer into the object, never null; sixteen floats, column by column.
  float* get_transform_float_ptr() const;
  mat4* get_transform_mat4_ptr() const;
  /// @}

  /// The local transform, owned by the object.
  Tripod* get_tripod() const;

  // ---- absolute transform, through all parents ----

  /// Product of the local transforms of all ancestors and this object; ancestors that are no
  /// objects count as identity. The reference stays valid with the object; its value is that of
  /// this call.
  mat4& get_absolute_transform();

  /// @{
  /// The same as a pointer into the object, never null; sixteen floats, column by column.
  float* get_absolute_transform_float_ptr();
  mat4* get_absolute_transform_mat4_ptr();
  /// @}

  /// Translation of the absolute transform, with w 1.
  const vec4& get_absolute_position();
  /// Rotation of the absolute transform.
  void get_absolute_orientation(quat& orientation);
  /// In degrees. Each pointer may be null.
  void get_absolute_orientation_euler_angles(float* x, float* y, float* z);
  /// The axes turned by the absolute orientation; w is 3. Each pointer may be null.
  void get_absolute_orientation_vectors(vec4* x_axis, vec4* y_axis, vec4* z_axis);
  /// The same, three floats each. Each pointer may be null.
  void get_absolute_orientation_vectors_v2(float* x_axis, float* y_axis, float* z_axis);
  /// The object as a plane: normal (its absolute y axis) and distance, so that
  /// a*x + b*y + c*z + d = 0 on it. Writes four floats; null does nothing.
  void get_plane_equation(float* out);
  /// The same. Each pointer may be null.
  void get_plane_equation(float* a, float* b, float* c, float* d);

  // ---- matrices of its own ----

  /// @{
  /// Matrices that the object keeps for the host and hands to its children; drawing takes those of
  /// the renderer.
  void set_projection_matrix(const mat4& matrix, Node* node);
  const mat4& get_projection_matrix() const;
  void set_view_matrix(const mat4& matrix, Node* node);
  const mat4& get_view_matrix() const;
  /// @}

  // ---- states ----

  /// True marks the object's data as due to be built; derived classes clear it when they build.
  void update_build_state(bool state);
  /// Whether the data is due to be built.
  bool get_build_state() const;
  /// See set_use_generic_vertex_attribs_state.
  bool get_use_generic_vertex_attribs_state() const;
  /// See set_use_gl2_vertex_array_state.
  bool get_use_gl2_vertex_array_state() const;
  /// See set_use_fixed_mvp_matrices_state.
  bool get_use_fixed_mvp_matrices_state() const;
  /// The program in use, or null; no reference is taken.
  GpuProgram* get_gpu_program() const;
  /// Whether view, projection, view-projection and viewport are set with the model matrices.
  void automatic_uniform_send_camera_matrices(bool state);
  /// The matrices that _update_automatic_uniforms_gpu_buffer filled.
  const GpuProgramModelViewParams& get_gpu_program_model_view_params() const;

  /// @{
  /// Whether _render draws the tripod; off at first.
  void set_display_tripod_state(bool state, Node* node);
  bool get_display_tripod_state() const;
  /// @}

  /// @{
  /// Length of each axis of the tripod, in scene units.
  const vec4& get_tripod_size() const;
  void set_tripod_size(float x, float y, float z, Node* node);
  /// @}

  /// @{
  /// Whether _render draws the grid; off at first.
  void set_display_grid_state(bool state, Node* node);
  bool get_display_grid_state() const;
  /// @}

  /// What display_grid draws; see render_grid for the arguments.
  void set_grid_params(float width, float depth, int lines_x, int lines_z, bool show_axes,
                       bool show_lines);
  /// Draws the grid with fixed matrices and puts the current program back. Nothing for a null
  /// renderer.
  void display_grid(Renderer* renderer, Node* node);
  /// Draws a grid in the XZ plane around the origin. Nothing for a null renderer.
  /// @param renderer    the renderer to draw with
  /// @param width       size along x
  /// @param depth       size along z
  /// @param lines_x     cells along x, at most 4096
  /// @param lines_z     cells along z, at most 4096
  /// @param show_axes   draw the two axes through the origin, x red and z blue
  /// @param show_lines  draw the border lines and the lines between the cells
  void render_grid(Renderer* renderer, float width, float depth, int lines_x, int lines_z,
                   bool show_axes, bool show_lines);

  // ---- list of materials ----

  /// Materials in the list.
  unsigned int get_num_materials() const;
  /// Null past the end.
  Material* get_material_by_index(unsigned int index) const;
  /// Null when there is none of this id.
  Material* get_material(int id) const;
  /// Null for none and for a null name; 127 characters count.
  Material* get_material_by_name(const char* name) const;
  /// Releases all materials. A material that others hold stays alive, but loses its children. True.
  bool remove_all_materials(Renderer* renderer, Node* node);
  /// First texture unit of all materials.
  void set_all_materials_texture_unit_offset(unsigned int offset, Node* node);
  /// Loads the textures whose file names loaders left on the materials.
  /// @param renderer  uploads the textures; null only loads them
  /// @param dir       text put in front of each file name; may be null
  /// @param format    pixel format wanted
  /// @param flag      handed to the materials
  /// @param node      objects below to go on with
  /// @return how many were loaded for this object, without what the objects below add
  unsigned int async_texture_loading_process_all_materials(Renderer* renderer, const char* dir,
                                                           PIXEL_FORMAT format, bool flag,
                                                           Node* node);

  // ---- bounding volume ----

  /// The object's bounding volume, to read and write.
  BoundingVolume& bounding_volume_get() const;
  /// Brings the global part up to date, after computing the local part when `force` is true or when
  /// it is due.
  /// @param force      compute from the geometry
  /// @param transform  taken in place of the absolute transform; may be null
  void bounding_volume_update(bool force, mat4* transform);
  /// Whether the next build or update computes the volume from the geometry; cleared by it.
  void bounding_volume_update_from_geometry_set_state(bool state);
  /// Whether the next build or update computes the volume.
  bool bounding_volume_update_from_geometry_get_state() const;
  /// Whether a radius taken from a box is that of the inscribed sphere.
  bool bounding_sphere_inscribed_sphere() const;
  /// Takes the inscribed sphere of a box from now on (true) or the one around it.
  void bounding_sphere_use_inscribed_sphere(bool state);

  /// @{
  /// Local bounding sphere, in the object's own space.
  void set_bounding_sphere(const vec4& center, float radius);
  const vec4& get_bounding_sphere_center() const;
  float get_bounding_sphere_radius() const;
  /// @}

  /// @{
  /// Local bounding box, by its corners in the object's own space.
  void set_bounding_box(const vec4& min, const vec4& max);
  const vec4& get_bounding_box_size() const;
  const vec4& get_bounding_box_min() const;
  const vec4& get_bounding_box_max() const;
  /// @}

  /// Grows the global box by another one and takes size, centre and radius from the result.
  void update_global_bounding_volume(const vec4& min, const vec4& max);
  /// Size of the global box, in the space of the world.
  const vec4& get_global_bounding_box_size() const;
  /// Centre of the global sphere, in the space of the world.
  const vec4& get_global_bounding_sphere_center() const;
  /// Radius of the global sphere.
  float get_global_bounding_sphere_radius() const;

 protected:
  /// Takes over all that another object holds for itself: name, transform, states, bounds, program
  /// and materials, the last two with references of their own. Id, references, type and the place
  /// in the tree stay. For classes that can be copied.
  void copy_state(const Object& other);

 private:
  template <class Draw>
  void draw_with_fixed_matrices(Renderer* renderer, Draw draw);

  GpuProgramModelViewParams model_view_params_;
  ObjectData* data_;
};

}  // namespace orv
