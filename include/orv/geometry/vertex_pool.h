/// @file
/// The object that draws points.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/geometry/vertex_pool_data.h>
#include <orv/scene/object.h>

namespace orv {

/// An Object drawn as points, one for each vertex; the base of point clouds and particles. It draws
/// with whatever program is current: materials are not looked at.
///
/// Operations tell of the pool's own vertices: false, null, 0 or a default value where there is no
/// vertex, and for all of them after _cleanup.
class ORV_API VertexPool : public Object {
 public:
  /// A node with data of its own, without vertices.
  VertexPool();
  /// Deletes the data. GPU objects are leaked unless _cleanup or kill ran before.
  ~VertexPool() override;

  // ---- life and drawing ----

  /// Destroys the GPU objects if there is a renderer, deletes the data, and lets go of materials
  /// and program. True.
  bool _cleanup(Renderer* renderer) override;
  /// Draws the points with the current program, then, with that program still bound, the grid and
  /// the tripod when they are switched on.
  void _render(Renderer* renderer) override;
  /// Id of the renderer that allocated the vertex buffer.
  int get_renderer_id() override;
  /// Prepares, draws and finishes: creates, updates and binds the buffers, draws, unbinds them.
  void render_geometry(Renderer* renderer) override;
  void render_geometry_prepare(Renderer* renderer) override;
  void render_geometry_draw(Renderer* renderer) override;
  void render_geometry_finish(Renderer* renderer) override;

  // ---- pool ----

  /// Allocates `n` vertices, either in separate arrays, positions then having three components, or
  /// as an array of Vertex. False, with an error in the log, for 0 and for too little memory.
  bool init_pool(unsigned int n, bool separate_arrays);
  /// The data, null after _cleanup. Borrowed.
  VertexPoolData* get_pool_data() const { return pool_data_; }

  /// @{
  /// First vertex and number of vertices to draw. What lies outside of the pool is not drawn.
  void set_render_start_offset(unsigned int n);
  void set_render_num_vertices(unsigned int n);
  /// @}

  /// The interleaved vertices, null for separate arrays. Borrowed.
  Vertex* get_pool_ptr();
  /// Number of vertices.
  unsigned int get_pool_size() const;

  /// @{
  /// First position and first colour of separate arrays, null for interleaved vertices. After
  /// writing through them the array has to be marked with VertexAttribArray::update_needed.
  void* get_position_ptr();
  void* get_color_ptr();
  /// @}

  /// Whether points are drawn as sprites.
  void set_point_sprite_state(bool state);
  bool get_point_sprite_state() const;  ///< see set_point_sprite_state

  // ---- vertices ----

  /// Count of this pool alone, whatever `node` is.
  unsigned int get_num_vertices(Node* node) override;
  /// Vertex `i` of interleaved data, borrowed; null for separate arrays and out of range.
  Vertex* get_vertex(unsigned int i) override;
  /// Vertex `i` by value, a default one out of range.
  Vertex get_vertex_v2(unsigned int i) override;

  /// @{
  /// False when there is no vertex `i`. w is 1 where it is not given.
  bool set_vertex_position(unsigned int i, const vec3& v);
  bool set_vertex_position(unsigned int i, const vec4& v);
  bool set_vertex_position(unsigned int i, float x, float y, float z, float w);
  bool set_vertex_color(unsigned int i, const vec3& v);
  bool set_vertex_color(unsigned int i, const vec4& v);
  bool set_vertex_color(unsigned int i, float r, float g, float b, float a);
  bool set_vertex_normal(unsigned int i, const vec3& v);
  bool set_vertex_normal(unsigned int i, const vec4& v);
  bool set_vertex_normal(unsigned int i, float x, float y, float z, float w);
  /// @}

  /// @{
  /// Four lanes; (0, 0, 0, 1) when there is no vertex `i`.
  vec4 get_vertex_position(unsigned int i) const;
  vec4 get_vertex_color(unsigned int i) const;
  vec4 get_vertex_normal(unsigned int i) const;
  /// @}

  // ---- buffers ----

  /// Binds and maps the buffer drawn from, for writing. Null for separate arrays. Without a
  /// renderer it gives the address of the last mapping, null while unmapped.
  Vertex* map_vertex_buffer(Renderer* renderer);
  /// Ends the mapping and unbinds the buffer. False for separate arrays and without a renderer.
  bool unmap_vertex_buffer(Renderer* renderer);
  /// Address of the last mapping, null while unmapped.
  void* get_mapped_vertex_buffer() const;

  /// Draws from `buffer`, which stays its owner's and must outlive its use here; null, or a buffer
  /// without data, goes back to the pool's own. True.
  bool set_vertex_source(GpuBuffer* buffer);

  /// @{
  /// Copy the interleaved vertices, and the user arrays behind them, to or from a buffer that is
  /// mapped meanwhile. False for null, with separate arrays, when the buffer is smaller than the
  /// vertices and when it can't be mapped. Without a renderer nothing is copied and the result is
  /// true.
  bool vertices_to_gpu_buffer(Renderer* renderer, GpuBuffer* buffer);
  bool vertices_from_gpu_buffer(Renderer* renderer, GpuBuffer* buffer);
  /// @}

 private:
  bool is_interleaved() const;
  bool can_exchange(Renderer* renderer, GpuBuffer* buffer) const;

  VertexPoolData* pool_data_;
};

}  // namespace orv
