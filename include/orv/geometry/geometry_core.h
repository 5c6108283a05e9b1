/// @file
/// CPU-side store of one piece of geometry.
#pragma once

#include <orv/core/api.h>
#include <orv/core/thread.h>
#include <orv/fwd.h>
#include <orv/geometry/face.h>
#include <orv/geometry/geometry_core_alloc_params.h>
#include <orv/geometry/geometry_enums.h>
#include <orv/geometry/geometry_gpu_state.h>
#include <orv/geometry/material_subset.h>
#include <orv/geometry/vertex.h>
#include <orv/geometry/vertex_attrib_array.h>
#include <orv/gpu/gpu_enums.h>
#include <orv/math/vec3.h>
#include <orv/math/vec4.h>

namespace orv {

/// Vertices, faces, quad edges, material subsets and the bookkeeping of the GPU buffers that mirror
/// them. Base of MeshData and its kin; it knows nothing of nodes.
///
/// Vertices are kept in one of two forms, chosen at allocation: separate arrays, one
/// VertexAttribArray per attribute with position, uv0, normal and colour as arrays 0 to 3, or one
/// interleaved array of Vertex. User attributes follow as separate arrays in either form.
///
/// The geometry owns all of its arrays. Nothing here reaches a GPU: changes are marked, and
/// Renderer::geometry_vbo_update sends what is marked. The fields are public for renderers; the
/// order of the virtual operations is a contract.
///
/// Used from one thread. No array may exceed 2^31 - 1 bytes; such an allocation fails as one that
/// does not fit in memory.
class ORV_API GeometryCore {
 public:
  /// Largest number of attribute arrays.
  static constexpr unsigned int MAX_VERTEX_ATTRIBS = GeometryCoreAllocParams::MAX_VERTEX_ATTRIBS;

  /// Without vertices and faces, with the default allocation parameters.
  GeometryCore();
  /// Frees all arrays and the vertex buffer record; GPU objects are not touched.
  virtual ~GeometryCore();
  GeometryCore(const GeometryCore&) = delete;
  GeometryCore& operator=(const GeometryCore&) = delete;

  // ---- vertices, faces and quad edges as a whole ----

  /// Vertex `i` of the interleaved array; null without one or when out of range.
  virtual Vertex* get_vertex(unsigned int i);
  /// Vertex `i` by value, gathered from whichever standard arrays exist; a default Vertex when out
  /// of range.
  virtual Vertex get_vertex_v2(unsigned int i);
  /// Bytes of an interleaved vertex, always 64.
  virtual unsigned int get_vertex_elt_size();
  /// The interleaved array, null without one.
  virtual void* get_vertex_ptr();

  /// Allocates what the alloc params say and sets the draw range to all vertices. An interleaved
  /// array and vertex particles from before are freed, attribute arrays only when the standard ones
  /// are made anew. False, with an error in the log, for 0 vertices or too little memory; what was
  /// allocated by then stays until free_vertex_data.
  virtual bool alloc_vertex_data();
  /// Frees all vertex arrays; the draw range stays. Does nothing when there are no vertices.
  virtual bool free_vertex_data();

  /// Allocates `count` faces with their normals and materials. They are 32-bit faces when
  /// `force_32` is set or there are 65536 vertices or more at this moment, otherwise 16-bit faces.
  /// True for 0 faces; false, with an error in the log, when they don't fit in memory.
  virtual bool alloc_face_data(unsigned int count, bool force_32);
  /// alloc_face_data_v3 for a triangle strip (`type` MESH_FACE_TRIANGLE_STRIP) or, for any other
  /// type, triangles.
  virtual bool alloc_face_data_v2(unsigned int count, MESH_FACE_TRIANGLE_TYPE type);
  /// Allocates a generic list of `count` indices for primitives other than triangle lists and sets
  /// the primitive type. `num_faces` is then the number of indices.
  virtual bool alloc_face_data_v3(unsigned int count, PRIMITIVE_TYPE primitive);
  /// Frees all face arrays and the index list.
  virtual bool free_face_data();

  /// With `realloc`, allocates anew after the alloc params of `src`. Copies the interleaved
  /// vertices. Separate arrays are not carried over: this geometry's own arrays are appended once
  /// more (copy_vertex_attrib_arrays). False for null, for a source without vertices, and when the
  /// allocation fails.
  virtual bool copy_vertex_data(GeometryCore* src, bool realloc);
  /// Copies faces, face normals and face materials; with `realloc` after allocating as many faces.
  /// Faces of another index width and generic indices are not copied. False for null, for a source
  /// without faces, and when the counts differ.
  virtual bool copy_face_data(GeometryCore* src, bool realloc);

  /// Allocates `count` indices for quad edges, two per edge.
  virtual bool alloc_quad_edge_data(unsigned int count);
  /// Frees the quad edges. True.
  virtual bool free_quad_edge_data();

  // ---- sizes and pointers of attributes ----
  //
  // Position, uv0, normal and colour are looked up in arrays 0 to 3 or, in the interleaved form, in
  // the vertex. The second texture coordinates and the tangent belong to derived classes: here they
  // are 0 and null.

  /// @{
  /// Bytes of the attribute's array; 0 for interleaved geometry, which has no such array.
  virtual unsigned int get_position_size();
  virtual unsigned int get_color_size();
  virtual unsigned int get_normal_size();
  virtual unsigned int get_uv0_size();
  virtual unsigned int get_uv1_size();
  virtual unsigned int get_tangent_size();
  /// @}

  /// @{
  /// Components of an element, 0 without the attribute.
  virtual int get_position_vector_dim();
  virtual int get_color_vector_dim();
  virtual int get_normal_vector_dim();
  virtual int get_uv0_vector_dim();
  virtual int get_uv1_vector_dim();
  virtual int get_tangent_vector_dim();
  /// @}

  /// @{
  /// Bytes of an element, 0 without the attribute.
  virtual int get_position_elt_size();
  virtual int get_color_elt_size();
  virtual int get_normal_elt_size();
  virtual int get_uv0_elt_size();
  virtual int get_uv1_elt_size();
  virtual int get_tangent_elt_size();
  /// @}

  /// @{
  /// First element of the attribute's array; null for interleaved geometry. After writing through
  /// it the array has to be marked with VertexAttribArray::update_needed.
  virtual void* get_position_ptr();
  virtual void* get_color_ptr();
  virtual void* get_normal_ptr();
  virtual void* get_uv0_ptr();
  virtual void* get_uv1_ptr();
  virtual void* get_tangent_ptr();
  /// @}

  // ---- contents of attributes ----
  //
  // The second texture coordinates and the tangent belong to derived classes: here they are
  // missing.

  /// Copies a vec4 for each vertex over the positions; as update_position_subbuffer for all
  /// vertices.
  virtual bool update_position_buffer(const void* vec4_data);
  /// Copies `count` vec4s (16 bytes each, whatever the element size) to byte `start` * 16 of the
  /// array of positions. False without the array, for null data, and when `start` or `count` alone
  /// exceed the number of elements; what would pass the end of the array is left out.
  virtual bool update_position_subbuffer(const void* vec4_data, unsigned int start,
                                         unsigned int count);

  /// @{
  /// Stores as many components as the attribute has, with w 1 from three components. False when
  /// `i` is out of range or the attribute is missing.
  virtual bool set_position(unsigned int i, float x, float y, float z, float w);
  virtual bool set_position(unsigned int i, const vec4& v);
  virtual bool set_position(unsigned int i, const vec3& v);
  /// @}

  /// Of vertex `i`; (0, 0, 0) when it is out of range or the attribute is missing.
  virtual vec3 get_position(unsigned int i);
  /// Of vertex `i`; (0, 0, 0, 1) when it is out of range or the attribute is missing.
  virtual vec4 get_position_4f(unsigned int i);

  /// Copies a vec4 for each vertex over the colours; as update_color_subbuffer for all vertices.
  virtual bool update_color_buffer(const void* vec4_data);
  /// The same as update_position_subbuffer for the colours.
  virtual bool update_color_subbuffer(const void* vec4_data, unsigned int start,
                                      unsigned int count);

  /// @{
  /// Stores as many components as the attribute has, with w 1 from three components. False when
  /// `i` is out of range or the attribute is missing.
  virtual bool set_color(unsigned int i, float r, float g, float b, float a);
  virtual bool set_color(unsigned int i, const vec4& v);
  /// @}

  /// Of vertex `i`; (0, 0, 0, 1) when it is out of range or the attribute is missing.
  virtual vec4 get_color(unsigned int i);

  /// Copies a vec4 for each vertex over the normals; as update_normal_subbuffer for all vertices.
  virtual bool update_normal_buffer(const void* vec4_data);
  /// The same as update_position_subbuffer for the normals.
  virtual bool update_normal_subbuffer(const void* vec4_data, unsigned int start,
                                       unsigned int count);

  /// @{
  /// Stores as many components as the attribute has, with w 1 from three components. False when
  /// `i` is out of range or the attribute is missing.
  virtual bool set_normal(unsigned int i, const vec4& v);
  virtual bool set_normal(unsigned int i, const vec3& v);
  /// @}

  /// Of vertex `i`; (0, 0, 0, 1) when it is out of range or the attribute is missing.
  virtual vec4 get_normal(unsigned int i);
  /// Of vertex `i`; (0, 0, 0) when it is out of range or the attribute is missing.
  virtual vec3 get_normal_vec3(unsigned int i);

  /// Copies a vec4 for each vertex over the texture coordinates; as update_uv0_subbuffer for all
  /// vertices.
  virtual bool update_uv0_buffer(const void* vec4_data);
  /// The same as update_position_subbuffer for the texture coordinates.
  virtual bool update_uv0_subbuffer(const void* vec4_data, unsigned int start, unsigned int count);
  /// Stores as many components as the attribute has, with w 1 from three components. False when
  /// `i` is out of range or the attribute is missing.
  virtual bool set_uv0(unsigned int i, const vec4& v);
  /// Of vertex `i`; (0, 0, 0, 1) when it is out of range or the attribute is missing.
  virtual vec4 get_uv0(unsigned int i);

  /// Copies a vec4 for each vertex over the second texture coordinates; as update_uv1_subbuffer for
  /// all vertices.
  virtual bool update_uv1_buffer(const void* vec4_data);
  /// The same as update_position_subbuffer for the second texture coordinates.
  virtual bool update_uv1_subbuffer(const void* vec4_data, unsigned int start, unsigned int count);
  /// Stores as many components as the attribute has, with w 1 from three components. False when
  /// `i` is out of range or the attribute is missing.
  virtual bool set_uv1(unsigned int i, const vec4& v);
  /// Of vertex `i`; (0, 0, 0, 1) when it is out of range or the attribute is missing.
  virtual vec4 get_uv1(unsigned int i);

  /// The same as update_position_subbuffer for the tangents.
  virtual bool update_tangent_subbuffer(const void* vec4_data, unsigned int start,
                                        unsigned int count);
  /// Copies a vec4 for each vertex over the tangents; as update_tangent_subbuffer for all vertices.
  virtual bool update_tangent_buffer(const void* vec4_data);
  /// Stores as many components as the attribute has, with w 1 from three components. False when
  /// `i` is out of range or the attribute is missing.
  virtual bool set_tangent(unsigned int i, const vec4& v);
  /// Of vertex `i`; (0, 0, 0, 1) when it is out of range or the attribute is missing.
  virtual vec4 get_tangent(unsigned int i);

  // ---- plain state ----

  /// Number of this geometry, unlike that of any other.
  int getid() const { return id; }
  /// Vertices allocated.
  unsigned int get_num_vertices() const { return num_vertices; }
  /// Faces of three; the number of indices of a generic list.
  unsigned int get_num_faces() const { return num_faces; }
  /// 0 when it is not drawn instanced.
  unsigned int get_num_instances() const { return num_instances; }

  /// @{
  /// How vertices or indices are assembled when drawn.
  PRIMITIVE_TYPE get_primitive_type() const { return primitive_type; }
  void set_primitive_type(PRIMITIVE_TYPE type) { primitive_type = type; }
  /// @}

  /// @{
  /// A number carried for the host; it changes nothing about the vertices.
  VERTEX_FORMAT get_vertex_format() const { return vertex_format; }
  void set_vertex_format(VERTEX_FORMAT format) { vertex_format = format; }
  /// @}

  int get_vertex_alignment() const { return vertex_alignment; }  ///< bytes, as allocated
  /// Which of the two forms the last allocation made.
  bool has_separate_vertex_arrays() const { return separate_vertex_arrays; }
  /// Whether the last allocation made position, uv0, normal and colour.
  bool has_std_vertex_attribs() const { return std_vertex_attribs; }

  /// @{
  /// First vertex and number of vertices to draw when there are no faces.
  void set_vertex_draw_range(int start, int count);
  int get_draw_start() const { return draw_start; }
  int get_draw_count() const { return draw_count; }
  /// @}

  /// @{
  /// Whether the attributes go to the arrays of the fixed pipeline. Setting it changes it alone.
  bool use_gl2_built_in_vertex_attribs_get_state() const { return use_gl2_built_in_vertex_attribs; }
  void use_gl2_built_in_vertex_attribs_set_state(bool state) {
    use_gl2_built_in_vertex_attribs = state;
  }
  /// @}

  /// Whether the attributes go to their locations in the bound program.
  bool get_use_generic_vertex_attribs_state() const { return use_generic_vertex_attribs; }
  /// Also sets the built-in attributes to the opposite.
  void set_use_generic_vertex_attribs_state(bool state);

  /// @{
  /// Whether points are drawn as sprites.
  bool get_point_sprite_state() const { return point_sprite; }
  void set_point_sprite_state(bool state) { point_sprite = state; }
  /// @}

  /// References are only counted here; who counts one down to 0 deletes the geometry.
  void inc_ref() { ++ref_count; }
  /// Stops at 0.
  void dec_ref();
  /// References counted.
  int get_ref() const { return ref_count; }

  /// @{
  /// The thread that made the geometry or uploaded it.
  Thread get_thread() const { return thread; }
  Thread* get_thread_ptr() { return &thread; }
  /// @}

  /// Records the calling thread.
  void update_thread();
  /// True when called from the recorded thread.
  bool check_thread() const;

  // ---- buffers ----

  /// The geometry's own vertex buffer record, never null.
  GpuBufferData* vb() const { return vb_; }
  /// The record that is drawn from: the own one or an external one.
  GpuBufferData* get_vb_source() const { return vb_source; }
  /// Draws from `buffer`, which stays its owner's; null goes back to the own buffer.
  void set_vb_source(GpuBufferData* buffer);
  /// Whether an external buffer is drawn from.
  bool is_external_vb_source() const { return vb_source != vb_; }

  /// @{
  /// Flags of renderers: whether the vertex and the index buffer hold what the arrays hold, and
  /// whether faces changed since.
  bool is_vb_uploaded() const { return vb_uploaded; }
  void vb_uploaded_set_state(bool state) { vb_uploaded = state; }
  bool is_ib_uploaded() const { return ib_uploaded; }
  void ib_uploaded_set_state(bool state) { ib_uploaded = state; }
  unsigned int get_ibo() const { return ibo; }  ///< index buffer of the graphics API, 0 for none
  bool is_ib_update_faces_list_needed() const { return ib_update_faces_list_needed; }
  void ib_update_faces_list_set_state(bool state) {
    ib_update_faces_list_needed = state;
    if (state) ++faces_serial;
  }
  /// @}

  /// @{
  /// What the buffers are created as, and the usage hinted to the graphics API.
  GPU_BUFFER_TYPE get_vertex_buffer_type() const { return vertex_buffer_type; }
  void set_vertex_buffer_type(GPU_BUFFER_TYPE type) { vertex_buffer_type = type; }
  BUFFER_OBJECT_USAGE get_vertex_buffer_usage() const { return vertex_buffer_usage; }
  void set_vertex_buffer_usage(BUFFER_OBJECT_USAGE usage) { vertex_buffer_usage = usage; }
  BUFFER_OBJECT_USAGE get_index_buffer_usage() const { return index_buffer_usage; }
  void set_index_buffer_usage(BUFFER_OBJECT_USAGE usage) { index_buffer_usage = usage; }
  /// @}

  // ---- allocation parameters ----

  /// @{
  /// What the next alloc_vertex_data will do; the pointer is never null.
  const GeometryCoreAllocParams& get_alloc_params() const { return alloc_params; }
  GeometryCoreAllocParams* get_alloc_params_ptr() { return &alloc_params; }
  void set_alloc_params(const GeometryCoreAllocParams& params) { alloc_params = params; }
  void set_alloc_params_num_vertices(unsigned int n) { alloc_params.num_vertices = n; }
  void set_alloc_params_num_user_attribs(unsigned int n) { alloc_params.num_user_attribs = n; }
  /// @}

  // ---- vertex memory as the vertex buffer holds it ----
  //
  // The interleaved block first, if any, then each attribute array in index order, tightly packed.

  unsigned int get_interleaved_vertex_array_size() const;  ///< bytes, 0 without one
  unsigned int get_separate_vertex_arrays_size() const;    ///< bytes of all arrays
  unsigned int get_total_vertex_buffer_size() const;       ///< bytes of both
  unsigned int get_total_index_buffer_size() const;        ///< bytes
  /// The generic indices, else the faces of the current index width; null without either.
  void* get_index_buffer_data_ptr();

  /// Whether something has to be sent: of the interleaved block, of the arrays, of either.
  bool is_update_interleaved_vertex_array_needed() const;
  /// True marks the whole block for upload, false says that the GPU copy is up to date.
  void update_interleaved_vertex_array_set_state(bool state);
  /// Whether any attribute array is marked for upload.
  bool is_update_separate_vertex_arrays_needed() const;
  /// Whether anything is marked for upload.
  bool is_update_vertex_buffer_needed() const;
  /// What the next upload of the interleaved block has to send, in vertices; both 0 for nothing.
  void get_dirty_interleaved_vertices(unsigned int* begin, unsigned int* end) const;

  /// @{
  /// Copy to or from a block of get_total_vertex_buffer_size bytes. Reading marks for upload.
  /// The interleaved forms are false without an interleaved array or for null, the separate ones
  /// for null alone; the whole ones are always true.
  bool interleaved_vertex_array_to_memory(void* p);
  bool separate_vertex_arrays_to_memory(void* p);
  bool vertex_arrays_to_memory(void* p);
  bool interleaved_vertex_array_from_memory(const void* p);
  bool separate_vertex_arrays_from_memory(const void* p);
  bool vertex_arrays_from_memory(const void* p);
  /// @}

  // ---- attribute arrays ----

  /// Appends an array of `n` elements, named "orvex_Attrib" and its index, with its index as
  /// location. Null, with a line in the log, for a 17th array or too little memory.
  VertexAttribArray* alloc_new_vertex_attrib_array(unsigned int n);
  /// Frees all arrays and appends `count` new ones, at most 16, as far as that goes. Always true.
  bool alloc_vertex_attrib_arrays(unsigned int count, unsigned int n);
  /// Frees all arrays. True.
  bool free_vertex_attrib_arrays();
  /// Null for an index past the last array. The geometry stays the owner.
  VertexAttribArray* get_vertex_attrib_array(unsigned int i) const;
  /// Replaces all arrays by the four standard ones. False when the alloc params don't ask for
  /// standard attributes or memory is short.
  bool init_standard_vertex_attrib_arrays(unsigned int n);
  /// Appends as many arrays as the alloc params name user attributes, as far as that goes. True.
  bool init_user_vertex_attribs_arrays(unsigned int n);
  /// Appends one array for each array of `src`, filled from this geometry's own array of the same
  /// index, not from the source's. False for null or a source without vertices.
  bool copy_vertex_attrib_arrays(GeometryCore* src);

  /// Interleaved geometry: describes standard attribute `i` (0 to 3) anew; always false.
  /// Separate arrays: names array `i` (null and "" keep the name) and sets its location; true.
  bool assign_vertex_attrib_name_and_location(unsigned int i, const char* attrib_name, int loc);
  int get_position_attrib_location() const;  ///< -1 without the attribute

  /// @{
  /// -1 without the attribute, as always for the second texture coordinates.
  int get_uv0_attrib_location() const;
  int get_normal_attrib_location() const;
  int get_color_attrib_location() const;
  int get_uv1_attrib_location() const { return -1; }
  /// @}

  /// Elements of array `i`; null unless they have four components.
  vec4* get_vertex_attrib_buffer(unsigned int i);
  /// The same as floats.
  float* get_vertex_attrib_buffer_float_ptr(unsigned int i);

  /// @{
  /// Element `i` of array `array`. Setters are false, and getters give (0, 0, 0, 1) or (0, 0, 0),
  /// without the array or out of range. Three components are stored with w 1.
  bool set_vertex_attrib_element(unsigned int array, unsigned int i, const vec4& v);
  bool set_vertex_attrib_element(unsigned int array, unsigned int i, const vec3& v);
  bool set_vertex_attrib_element(unsigned int array, unsigned int i, float x, float y, float z,
                                 float w);
  vec4 get_vertex_attrib_element(unsigned int array, unsigned int i) const;
  vec3 get_vertex_attrib_element_vec3(unsigned int array, unsigned int i) const;
  /// @}

  /// @{
  /// As update_position_buffer and update_position_subbuffer, for any array.
  bool update_vertex_attrib_buffer(unsigned int array, const void* vec4_data);
  bool update_vertex_attrib_subbuffer(unsigned int array, const void* vec4_data, unsigned int start,
                                      unsigned int count);
  /// @}

  // ---- faces ----

  /// Sets the vertex indices of a face; 16-bit faces keep the low 16 bits. False without faces of
  /// the current index width or out of range. Does not mark the index buffer.
  bool set_face_indices(unsigned int face, unsigned int a, unsigned int b, unsigned int c);

  /// @{
  /// The arrays of faces; null when there are none of the kind. The geometry stays the owner.
  FaceU16* get_faces_u16_ptr() {
    faces_raw_shared = true;
    return faces_u16;
  }
  FaceU32* get_faces_u32_ptr() {
    faces_raw_shared = true;
    return faces_u32;
  }
  unsigned int* get_indices_ptr() { return indices; }
  vec4* get_face_normals_ptr() { return face_normals; }
  unsigned int* get_face_materials_ptr() { return face_materials; }
  unsigned int* get_quad_edges_ptr() { return quad_edges; }
  /// @}

  unsigned int get_num_quad_edges() const { return num_quad_edges; }  ///< number of indices
  int get_index_bits() const { return index_bits; }                   ///< 16 or 32

  // ---- subsets ----

  /// All subsets, null for none. The geometry stays the owner.
  MaterialSubset* get_subsets_ptr() { return subsets; }

  /// @{
  /// The subset being drawn, null outside of a subset's drawing.
  MaterialSubset* get_current_subset() { return current_subset; }
  void set_current_subset(MaterialSubset* subset) { current_subset = subset; }
  /// @}

  /// Frees the subsets and makes `count` empty ones; false when they don't fit in memory.
  bool alloc_subsets(unsigned int count);
  /// Also ends the current subset.
  void free_subsets();

  // ---- all at once ----

  /// Frees vertices, faces and quad edges through their virtual operations, then the subsets. True.
  bool free_data();

  /// free_data, but a geometry that was uploaded can still be drawn from its buffers.
  void release_cpu_data();

  /// For renderers: the buffers hold the arrays as they stand now.
  void note_uploaded();

  /// Describes what has to be bound and drawn: the arrays as they stand or, after
  /// release_cpu_data, as they stood when they were uploaded last.
  void get_gpu_layout(GeometryGpuLayout* out) const;

  // ---- record ----

  GeometryCoreAllocParams alloc_params;                 ///< what alloc_vertex_data will do
  PRIMITIVE_TYPE primitive_type = PRIMITIVE_TRIANGLES;  ///< see get_primitive_type
  GpuBufferData* vb_ = nullptr;                         ///< own vertex buffer record
  GpuBufferData* vb_source = nullptr;  ///< buffer drawn from; not owned when it is not `vb_`
  bool vb_uploaded = false;            ///< the buffers were created
  GPU_BUFFER_TYPE vertex_buffer_type = GPU_BUFFER_ARRAY;  ///< what the vertex buffer is created as
  BUFFER_OBJECT_USAGE vertex_buffer_usage =
      BUFFER_USAGE_STATIC_DRAW;        ///< usage hinted to the graphics API
  bool ib_uploaded = false;            ///< the index buffer was created
  unsigned int vertex_buffer_id = 0;   ///< `buffer_id` of the own buffer once created
  void* mapped_ptr = nullptr;          ///< set while the vertex buffer is mapped
  unsigned int num_vertices = 0;       ///< as allocated
  int draw_start = 0;                  ///< first vertex to draw without faces
  int draw_count = 0;                  ///< vertices to draw without faces
  bool std_vertex_attribs = true;      ///< as allocated
  bool separate_vertex_arrays = true;  ///< as allocated
  int vertex_alignment = 0;            ///< as allocated
  bool use_gl2_built_in_vertex_attribs =
      false;                         ///< attributes go to the arrays of the fixed pipeline
  vec4* vertex_particles = nullptr;  ///< one per vertex
  unsigned int ibo = 0;              ///< API index buffer, 0 for none
  BUFFER_OBJECT_USAGE index_buffer_usage =
      BUFFER_USAGE_STATIC_DRAW;              ///< usage hinted to the graphics API
  unsigned int num_faces = 0;                ///< in the generic form, the number of indices
  unsigned int* indices = nullptr;           ///< generic index list
  FaceU16* faces_u16 = nullptr;              ///< owned; faces when `index_bits` is 16
  FaceU32* faces_u32 = nullptr;              ///< owned; faces when `index_bits` is 32
  vec4* face_normals = nullptr;              ///< one per face
  unsigned int* face_materials = nullptr;    ///< id of the material of each face, 0 for none
  int index_bits = 32;                       ///< 16 or 32
  bool render_wireframe_quad = false;        ///< kept for hosts: draw the quad edges
  unsigned int* quad_edges = nullptr;        ///< two vertex indices per edge
  unsigned int num_quad_edges = 0;           ///< number of indices
  bool ib_update_faces_list_needed = false;  ///< faces changed since the index buffer was filled
  bool tessellation = false;                 ///< draw as patches
  bool use_generic_vertex_attribs =
      true;           ///< attributes go to their locations in the bound program
  int ref_count = 0;  ///< see inc_ref
  Thread thread;      ///< id and handle of the constructing or uploading thread
  VERTEX_FORMAT vertex_format = VERTEX_FORMAT_DEFAULT;  ///< carried for the host
  VertexAttribArray* attrib_arrays[MAX_VERTEX_ATTRIBS] =
      {};                                 ///< owned; the first `num_attrib_arrays` are not null
  unsigned int num_attrib_arrays = 0;     ///< attribute arrays in use
  unsigned char* vertices_raw = nullptr;  ///< block that is freed, when aligned
  Vertex* vertices = nullptr;             ///< interleaved array
  VertexAttribData std_attrib_data[6];    ///< attributes of the interleaved array, 4 in use
  bool update_interleaved_needed = true;  ///< the interleaved block differs from the GPU copy
  unsigned int num_instances = 0;         ///< instances to draw, 0 when not instanced
  unsigned int first_instance_array = 0xFFFFFFFFu;  ///< first per-instance array; this for none
  bool point_sprite = false;                        ///< points are drawn as sprites
  MaterialSubset* subsets = nullptr;                ///< owned
  unsigned int num_subsets = 0;                     ///< entries of `subsets`
  MaterialSubset* current_subset = nullptr;         ///< set only while one subset is drawn
  int id;                                           ///< identity within the process

  // ---- bookkeeping between geometry and renderer ----

  /// Raised by every allocation, freeing, appended array and change of a location or divisor.
  /// A renderer whose copy is of another number lays out its buffers anew.
  unsigned int layout_serial = 1;
  unsigned int interleaved_dirty_begin = 0;  ///< first marked vertex
  unsigned int interleaved_dirty_end = 0;    ///< behind the last marked vertex; 0 when none
  bool interleaved_whole_dirty = true;       ///< the next upload sends the whole block
  bool interleaved_raw_shared = false;       ///< a pointer to the block was handed out
  /// Raised by every mark of an attribute array, so that renderers need not look at all of them.
  bool attribs_marked = true;
  /// Raised by every mark of the interleaved block and by every change of faces, for those who keep
  /// something made from them.
  unsigned int interleaved_serial = 1;
  unsigned int faces_serial = 1;  ///< see interleaved_serial
  bool faces_raw_shared = false;  ///< a pointer to the faces was handed out
  /// The renderer's notes about its copy.
  GeometryGpuState gpu_state;

  /// Marks vertices of the interleaved block for upload.
  void mark_interleaved(unsigned int begin, unsigned int end);

 private:
  VertexAttribArray* std_array(unsigned int attrib) const;
  bool set_std_attrib(unsigned int attrib, unsigned int i, const vec4& v);
  vec4 get_std_attrib(unsigned int attrib, unsigned int i) const;
  int std_attrib_location(unsigned int attrib) const;
  unsigned int std_attrib_size(unsigned int attrib) const;
  int std_attrib_dim(unsigned int attrib) const;
  int std_attrib_elt_size(unsigned int attrib) const;
  void* std_attrib_ptr(unsigned int attrib);
  void begin_layout_change();
  void check_standard_size() const;
  /// Arrays that were allocated one by one may exceed the limit.
  unsigned long long vertex_buffer_bytes() const;
  void free_interleaved_and_particles();
  void free_face_arrays();
  template <class Make>
  bool alloc_faces_guarded(unsigned int count, Make make);
};

}  // namespace orv
