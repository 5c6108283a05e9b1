/// @file
/// The renderable triangle object.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/geometry/geometry_core_alloc_params.h>
#include <orv/geometry/geometry_enums.h>
#include <orv/geometry/mesh_data.h>
#include <orv/scene/object.h>

namespace orv {

class MeshRayCache;
struct MeshUserGeometry;

/// An Object drawn from a MeshData, which several meshes may share by reference count.
///
/// Without data, as after `Mesh(format)` with a format other than VERTEX_FORMAT_DEFAULT, every
/// operation answers false, 0, null or a default value. A null Renderer never crashes.
///
/// A `node` argument is handed on to the Object operation of the same name: null means this mesh
/// alone, a node its Object children too.
class ORV_API Mesh : public Object {
 public:
  /// A node with data of its own, without vertices and faces.
  Mesh();
  /// Has data of its own for VERTEX_FORMAT_DEFAULT and none for any other format.
  explicit Mesh(VERTEX_FORMAT format);
  /// Releases the data without a renderer: GPU objects of data that nobody else uses are leaked
  /// unless cleanup_mesh_data or kill ran before.
  ~Mesh() override;
  /// A new node that shares the data; user geometry is copied.
  Mesh(const Mesh& other);
  /// Shares the data of `other` and takes over its state; this node's identity and place in the
  /// tree stay.
  Mesh& operator=(const Mesh& other);

  // ---- data ----

  /// Attaches `data` and counts a reference on it. The data held before loses one and, when it was
  /// the last, is deleted, its GPU objects with it if there is a renderer. True; also when `data`
  /// is attached already.
  bool _set_mesh_data(Renderer* renderer, MeshData* data);
  /// Shares the data of `other`. False for null.
  bool share_mesh_data(Renderer* renderer, Mesh* other);
  /// Attaches new data, or none for a format other than VERTEX_FORMAT_DEFAULT. True.
  bool init_mesh_data(Renderer* renderer, VERTEX_FORMAT format);
  /// Lets go of the data. True.
  bool cleanup_mesh_data(Renderer* renderer);
  /// Destroys the GPU objects (`clear_gpu`, needs a renderer) and frees the arrays (`clear_cpu`);
  /// the data itself stays attached. With the arrays freed alone, drawing goes on from the GPU
  /// copy. False without data.
  bool clear_cpu_gpu_data(Renderer* renderer, bool clear_cpu, bool clear_gpu);
  /// The data, null for none. Borrowed.
  MeshData* get_data() const { return mesh_data_; }
  /// The same as get_data.
  MeshData* get_mesh_data() const { return mesh_data_; }
  /// Frees vertices, faces, quad edges and subsets; the MeshData stays. Nothing is drawn then.
  bool free_mesh_data();
  /// Frees the storage of attribute array `array`. False without it.
  bool free_vertex_attrib_array(unsigned int array);

  /// @{
  /// What alloc_vertex_data will allocate. False, defaults or nothing without data.
  bool set_vertex_alloc_params(const MeshDataVertexAttribsAllocParams& params);
  MeshDataVertexAttribsAllocParams get_vertex_alloc_params() const;
  void set_vertex_alloc_params_num_vertices(unsigned int n);
  void set_vertex_alloc_params_num_user_attribs(unsigned int n);
  /// @}

  /// Allocates what the alloc params say. False, with an error in the log, for 0 vertices or too
  /// little memory.
  bool alloc_vertex_data();
  /// As GeometryCore::alloc_face_data; a failure is logged with the mesh's name.
  bool alloc_face_data(unsigned int count, bool force_32);
  /// As GeometryCore::alloc_face_data_v2; a failure is logged with the mesh's name.
  bool alloc_face_data_v2(unsigned int count, MESH_FACE_TRIANGLE_TYPE type);
  /// Draws the vertices `start` to `end` - 1 when there are no faces.
  void set_draw_start_end_vertex(int start, int end);

  // ---- life and drawing ----

  /// Lets go of the data, the materials and the program. True.
  bool _cleanup(Renderer* renderer) override;
  /// Builds gathered user geometry when the mesh is dirty, then bounds. False when that fails.
  bool _build() override;
  /// Binds the material of the current subset, else the first one, and draws the geometry with it.
  void _render(Renderer* renderer) override;
  /// Id of the renderer that allocated the vertex buffer.
  int get_renderer_id() override;
  /// Prepares, draws and finishes: creates, updates and binds the buffers, draws, unbinds them.
  void render_geometry(Renderer* renderer) override;
  void render_geometry_prepare(Renderer* renderer) override;
  void render_geometry_draw(Renderer* renderer) override;
  void render_geometry_finish(Renderer* renderer) override;
  /// Draws as patches.
  void set_tessellation_state(bool state, Node* node) override;

  /// @{
  /// Kept for renderers that draw the quad edges of shapes; false without data.
  void set_render_wireframe_quad_state(bool state);
  bool get_render_wireframe_quad_state() const;
  /// @}

  // ---- material subsets ----

  /// Gives the faces to the material. False for a null material or a face out of range.
  bool set_face_material(Material* material, unsigned int face);
  /// Gives all faces to the material. False for null and without data.
  bool set_material_to_all_faces(Material* material);
  /// Makes one subset per material of the object, spanning its first to its last face. A material
  /// on fewer than two faces gets an empty subset, which draws nothing. False without data.
  bool init_subsets();
  unsigned int get_num_subsets() const;  ///< 0 before init_subsets

  /// @{
  /// Draw, or run the geometry steps, for subset `i` alone. False for an index out of range.
  bool render_subset(Renderer* renderer, unsigned int i);
  bool render_subset_geometry(Renderer* renderer, unsigned int i);
  bool render_subset_geometry_draw(Renderer* renderer, unsigned int i);
  /// @}

  // ---- buffers ----

  /// @{
  /// Numbers of the buffers in the graphics API, 0 while there are none.
  unsigned int get_vertex_buffer_opengl_id() const;
  unsigned int get_index_buffer_opengl_id() const;
  /// @}

  /// Maps the vertex buffer for writing; null without a renderer.
  Vertex* map_vertex_buffer(Renderer* renderer);
  /// The same for separate arrays; null unless the data has these.
  vec4* map_vertex_buffer_vec4(Renderer* renderer);
  /// Ends the mapping; false without a renderer.
  bool unmap_vertex_buffer(Renderer* renderer);
  /// Address of the last mapping, null while unmapped.
  void* get_map_vertex_buffer() const;

  // ---- vertices ----

  /// Counts of this mesh alone, whatever `node` is.
  unsigned int get_num_vertices(Node* node) override;
  unsigned int get_num_faces(Node* node) override;
  /// Vertex `i` of interleaved data, borrowed; null for separate arrays and out of range.
  Vertex* get_vertex(unsigned int i) override;
  /// Vertex `i` by value, a default one out of range.
  Vertex get_vertex_v2(unsigned int i) override;

  /// Stores as many components as the attribute has. This and the setters below are false, and
  /// getters give (0, 0, 0, 1), out of range and without the attribute.
  bool set_vertex_position(unsigned int i, const vec4& v);
  /// x, y, z and w 1.
  vec4 get_vertex_position(unsigned int i) const;
  /// Changes w alone.
  bool set_vertex_position_w(unsigned int i, float w);
  /// The position under the absolute transform. False for null or out of range.
  bool get_vertex_absolute_position(unsigned int i, vec4* out);
  /// Stores w 1.
  bool set_vertex_normal(unsigned int i, const vec4& v);
  /// The normal with w 0.
  vec4 get_vertex_normal(unsigned int i) const;

  /// @{
  /// Tangents belong to derived kinds of geometry: false and (0, 0, 0, 1) with that of plain
  /// meshes.
  bool set_vertex_tangent(unsigned int i, const vec4& v);
  vec4 get_vertex_tangent(unsigned int i) const;
  /// @}

  /// Stores RGBA, usually in 0 to 1. False when out of range.
  bool set_vertex_color(unsigned int i, const vec4& v);
  /// (0, 0, 0, 1) when out of range.
  vec4 get_vertex_color(unsigned int i) const;
  /// Layer 0 is uv0, layer 1 uv1; another layer does nothing.
  void set_vertex_uv(unsigned int i, const vec4& uv, int layer);
  /// Layer 1 is uv1, any other uv0.
  vec4 get_vertex_uv(unsigned int i, int layer) const;

  /// @{
  /// Element `i` of attribute array `array`; as the setters and getters above.
  void set_vertex_attrib_element(unsigned int array, unsigned int i, const vec4& v);
  vec4 get_vertex_attrib_element(unsigned int array, unsigned int i) const;
  /// @}

  /// @{
  /// Copies vec4s into the named attribute, as GeometryCore::update_position_buffer and its kin.
  /// False for an unknown attribute.
  bool update_vertex_attrib_buffer(VERTEX_ATTRIB_TYPE type, const void* data);
  bool update_vertex_attrib_sub_buffer(VERTEX_ATTRIB_TYPE type, const void* data,
                                       unsigned int start, unsigned int count);
  /// @}

  // ---- faces ----

  /// Ignored for a generic index list and for a face out of range. 16-bit faces truncate.
  void set_face_indexes(unsigned int face, unsigned int a, unsigned int b, unsigned int c);
  /// Each pointer may be null; nothing is written where set_face_indexes would do nothing.
  void get_face_indexes(unsigned int face, unsigned int* a, unsigned int* b, unsigned int* c) const;

  // ---- normals ----

  /// Flat normals. Without faces the vertices are taken as a triangle list and get faces. False for
  /// a generic index list and for a vertex count that makes no triangles.
  bool compute_faces_normal(Node* node) override;
  /// Each vertex gets the average of the stored normals of its faces: compute_faces_normal comes
  /// first. False for a generic index list and without vertices or faces.
  bool compute_vertices_normal(Node* node) override;
  /// Vertices within `eps` on all three axes get their average normal.
  bool average_vertices_normal(float eps, Node* node) override;
  /// Swaps the first and the last index of every face; a generic index list stays as it is.
  void flip_faces(Node* node) override;
  /// Turns every normal round.
  void flip_vertex_normals(Node* node) override;

  /// @name All vertices at once
  /// A mesh without vertices stops moving, scaling and rotating at once, before its children.
  /// @{

  using Object::rotate_vertices_position;
  using Object::set_vertices_color;
  using Object::translate_vertices_position;
  void translate_vertices_position(const vec4& v, Node* node) override;
  void translate_vertices_position(const vec3& v, Node* node) override;
  void scale_vertices_position(const vec4& v, Node* node) override;
  void rotate_vertices_position(const quat& q, Node* node) override;
  /// Angles in degrees.
  void rotate_vertices_position(float x, float y, float z, Node* node) override;
  void set_vertices_color(float r, float g, float b, float a, Node* node) override;
  void set_vertices_color(const vec4& color, Node* node) override;
  /// @}

  /// Bounds of all positions, then those of the children. False without vertices.
  bool bounding_volume_compute(Node* node) override;
  /// The same as bounding_volume_compute.
  bool update_bounding_sphere(Node* node) override;

  // ---- geometry from elsewhere ----

  /// Replaces the geometry by that of `src`; attributes in separate arrays are not carried over
  /// (see GeometryCore::copy_vertex_data). False for null and for a source without vertices or
  /// faces.
  bool copy_geometry(Mesh* src);
  /// Positions and normals become a * (1 - t) + b * t, t clamped to 0..1. False for null and for
  /// differing vertex counts.
  bool do_linear_tweening(Mesh* a, Mesh* b, float t);
  /// Appends the geometry as C source text to a file. False when it can't be opened.
  bool export_to_c(const char* path);
  /// Replaces the geometry by cubes over a grid of voxels of the given sizes: those that the
  /// surface touches, `precision` being the slack of that test. False, with the geometry kept, for
  /// sizes of 0 or less, for more than 2^24 voxels, and without vertices or faces.
  bool voxelize(float dx, float dy, float dz, float precision);

  // ---- instancing: attribute arrays that step once per instance ----

  /// Makes the mesh drawn `num_instances` times by one call, and appends
  /// `params.num_vertex_streams` attribute arrays of one element per instance to its data:
  /// position, rotation (a quaternion), scale, colour, misc, then user streams. Vertices are
  /// allocated first: building a shape anew frees the arrays, while the count stays.
  ///
  /// An array's location is its index. Behind the four standard arrays that is 4 to 8, the slots of
  /// "orvex_Instance_Position" to "orvex_Instance_Misc" of every program; with one user attribute
  /// in front it is 5 to 9, and the program has to be told with `set_vertex_attrib`. Interleaved
  /// data counts from 0 and is drawn with 4 more, so that the slots agree.
  ///
  /// A scale starts as (0, 0, 0, 1): nothing is seen until scales are set. False for 0 instances,
  /// for 0 streams and without data, with nothing changed. A 17th array is left out, with a warning
  /// in the log.
  bool instancing_init(unsigned int num_instances, const InstancingInitParams& params);
  /// 0 when it is not drawn instanced.
  unsigned int get_num_instances() const;

  /// @{
  /// Index of the attribute array. Counted on from the data's `first_instance_array`, so without
  /// instancing the result means nothing.
  unsigned int get_instance_pos_va_index() const;
  unsigned int get_instance_rot_va_index() const;
  unsigned int get_instance_scale_va_index() const;
  unsigned int get_instance_color_va_index() const;
  unsigned int get_instance_misc_va_index() const;
  /// @}

  /// @{
  /// One instance. Ignored for an instance out of range and where the array is missing or empty.
  void set_instance_position(unsigned int i, const vec4& v);
  void set_instance_rotation(unsigned int i, const vec4& v);
  void set_instance_rotation(unsigned int i, const quat& q);
  void set_instance_scale(unsigned int i, const vec4& v);
  void set_instance_color(unsigned int i, const vec4& v);
  void set_instance_misc(unsigned int i, const vec4& v);
  /// @}

  /// @{
  /// (0, 0, 0, 1) for an instance out of range and without the array.
  vec4 get_instance_position(unsigned int i) const;
  vec4 get_instance_rotation(unsigned int i) const;
  vec4 get_instance_scale(unsigned int i) const;
  vec4 get_instance_color(unsigned int i) const;
  vec4 get_instance_misc(unsigned int i) const;
  /// @}

  /// @{
  /// First element, null without the array; the data stays the owner. After writing, the array has
  /// to be marked with VertexAttribArray::update_needed.
  float* get_instance_positions_float_ptr();
  float* get_instance_rotations_float_ptr();
  float* get_instance_scales_float_ptr();
  float* get_instance_colors_float_ptr();
  float* get_instance_miscs_float_ptr();
  /// @}

  /// @{
  /// The same; null also when elements have other than four components.
  vec4* get_instance_positions_vec4_ptr();
  vec4* get_instance_rotations_vec4_ptr();
  vec4* get_instance_scales_vec4_ptr();
  vec4* get_instance_colors_vec4_ptr();
  vec4* get_instance_miscs_vec4_ptr();
  /// @}

  /// @{
  /// Copies one vec4 for each *vertex* of the mesh over the array: the count is that of the
  /// vertices, so with fewer vertices than instances only the first are written. False for null,
  /// without the array, and with more vertices than instances.
  bool set_instance_positions(const vec4* values);
  bool set_instance_rotations(const vec4* values);
  bool set_instance_scales(const vec4* values);
  bool set_instance_colors(const vec4* values);
  bool set_instance_miscs(const vec4* values);
  /// @}

  /// @{
  /// Copies `count` vec4s to the instances from `start` on, as
  /// GeometryCore::update_vertex_attrib_subbuffer.
  bool set_instance_positions_sub(const vec4* values, unsigned int start, unsigned int count);
  bool set_instance_rotations_sub(const vec4* values, unsigned int start, unsigned int count);
  bool set_instance_scales_sub(const vec4* values, unsigned int start, unsigned int count);
  bool set_instance_colors_sub(const vec4* values, unsigned int start, unsigned int count);
  bool set_instance_miscs_sub(const vec4* values, unsigned int start, unsigned int count);
  /// @}

  /// @{
  /// Stream `s`, counted from the first instance array: 0 is the positions, 5 the first stream of
  /// the host's own. Otherwise as the operations above.
  void set_instance_user_vertex_stream_value(unsigned int s, unsigned int i, const vec4& v);
  vec4 get_instance_user_vertex_stream_value(unsigned int s, unsigned int i) const;
  vec4* get_instance_user_vertex_stream(unsigned int s);
  bool set_instance_user_vertex_stream(unsigned int s, const vec4* values);
  bool set_instance_user_vertex_stream_sub(unsigned int s, const vec4* values, unsigned int start,
                                           unsigned int count);
  /// @}

  /// The matrix of an instance from its position, rotation and scale. Identity for an instance out
  /// of range, without one of these arrays, and for an unknown order.
  mat4 get_instance_transform(unsigned int i, TRANSFORM_ORDER order) const;

  // ---- vertex particles: one vec4 more per vertex ----
  //
  // x, y, z hold a position, w a weight: 0 pins the vertex, anything else leaves it free. All start
  // at (0, 0, 0, 1). They are there when the alloc params ask for them, as they do by default.

  /// One per vertex, null without them. The data stays the owner.
  vec4* get_vertex_particles();

  /// @{
  /// All four lanes, or w alone, of vertex `i`. Ignored out of range.
  void set_vertex_particle(unsigned int i, const vec4& v);
  void set_vertex_particle_w(unsigned int i, float w);
  /// @}

  /// w of all particles.
  void set_vertices_particle_w(float w);
  /// Copies the positions over the particles, w included. False without particles.
  bool update_vertex_particle_from_position();

  /// @{
  /// Pins the particles on borders of their extent: sets their w to 0. The extent is that of the
  /// particles, not of the vertices, so update_vertex_particle_from_position comes first; on fresh
  /// particles, which all stand at one place, every border pins all of them. The second form pins
  /// the corners of a border in the XZ plane alone and knows no borders in y. False without
  /// particles.
  /// @param mask  MESH_PLANE_BORDER_TYPE bits; 0 changes nothing
  bool vertex_particle_attach_border(unsigned int mask);
  bool vertex_particle_attach_border_two_points(unsigned int mask);
  /// @}

  // ---- user geometry: gathered one by one, made into the geometry by the next build ----

  /// Adds a white vertex and returns its index.
  unsigned int user_geometry_add_vertex(const vec4& position);

  /// @{
  /// False when there is no such vertex.
  bool user_geometry_set_vertex_position(unsigned int i, const vec4& v);
  bool user_geometry_set_vertex_color(unsigned int i, const vec4& v);
  bool user_geometry_set_vertex_normal(unsigned int i, const vec4& v);
  bool user_geometry_set_vertex_uv0(unsigned int i, const vec4& v);
  /// @}

  /// Adds a face of three vertex indices. True.
  bool user_geometry_add_face32(unsigned int a, unsigned int b, unsigned int c);
  /// Drops what was gathered. False when there is nothing.
  bool user_geometry_cleanup();
  /// Replaces all geometry by what was gathered and drops that. False without both vertices and
  /// faces.
  bool _user_geometry_build();

 private:
  bool render_with_subset(Renderer* renderer, unsigned int i, void (Mesh::*step)(Renderer*));
  friend class RayCaster;
  MeshRayCache& ray_cache();
  VertexAttribArray* instance_array(unsigned int stream) const;
  void set_instance_value(unsigned int stream, unsigned int i, const vec4& v);
  vec4 get_instance_value(unsigned int stream, unsigned int i) const;
  float* instance_floats(unsigned int stream);
  vec4* instance_vec4s(unsigned int stream);
  bool set_instance_values(unsigned int stream, const vec4* values);
  bool set_instance_values_sub(unsigned int stream, const vec4* values, unsigned int start,
                               unsigned int count);
  bool set_user_vertex_field(unsigned int i, vec4 Vertex::*field, const vec4& v);

  MeshData* mesh_data_ = nullptr;
  MeshUserGeometry* user_geometry_ = nullptr;
  MeshRayCache* ray_cache_ = nullptr;
};

}  // namespace orv
