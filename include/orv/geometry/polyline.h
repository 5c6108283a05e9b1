/// @file
/// The object that draws lines.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/geometry/geometry_enums.h>
#include <orv/geometry/polyline_data.h>
#include <orv/geometry/polyline_wide_line.h>
#include <orv/scene/object.h>

namespace orv {

/// How the vertices of a polyline become lines. Any other value draws separate lines.
enum LINE_RENDER_MODE : int {
  LINE_RENDER_LINES = 0,                ///< PRIMITIVE_LINES
  LINE_RENDER_LINE_STRIP = 1,           ///< PRIMITIVE_LINE_STRIP
  LINE_RENDER_LINE_LOOP = 2,            ///< PRIMITIVE_LINE_LOOP
  LINE_RENDER_LINES_ADJACENCY = 3,      ///< PRIMITIVE_LINES_ADJACENCY
  LINE_RENDER_LINE_STRIP_ADJACENCY = 4  ///< PRIMITIVE_LINE_STRIP_ADJACENCY
};

/// An Object drawn as lines from a PolylineData, which several polylines may share by reference
/// count. Base of the wire shapes.
///
/// After cleanup_polyline_data every operation answers false, 0, null or a default value. A null
/// Renderer never crashes. Vertices start at (0, 0, 0, 1) with the colour (0, 0, 0, 1).
class ORV_API Polyline : public Object {
 public:
  /// A node with data of its own, without vertices.
  Polyline();
  /// Releases the data without a renderer: GPU objects of data that nobody else uses are leaked
  /// unless cleanup_polyline_data or kill ran before.
  ~Polyline() override;

  // ---- data ----

  /// Attaches `data` and counts a reference on it. The data held before loses one and, when it was
  /// the last, is deleted, its GPU objects with it if there is a renderer. True.
  bool _set_polyline_data(Renderer* renderer, PolylineData* data);
  /// Shares the data of `other`. False for null.
  bool share_polyline_data(Renderer* renderer, Polyline* other);
  /// Attaches new data, drawn as a line strip. True.
  bool init_polyline_data(Renderer* renderer);
  /// Lets go of the data. True.
  bool cleanup_polyline_data(Renderer* renderer);
  /// Frees the vertices; the PolylineData stays. False without data.
  bool free_polyline_data();
  /// The data, null for none. Borrowed.
  PolylineData* get_polyline_data() const { return polyline_data_; }

  /// Allocates `n` vertices. False, with an error in the log, for 0 and for too little memory.
  bool alloc_vertex_data(unsigned int n);
  /// The same, and chooses how they are drawn. False when the allocation fails.
  bool initialize(unsigned int n, LINE_RENDER_MODE mode);
  /// The same with any primitive.
  bool initialize_v2(unsigned int n, PRIMITIVE_TYPE primitive);

  // ---- life and drawing ----

  /// Lets go of the data, the wide line's points and program, the materials and the program. True.
  bool _cleanup(Renderer* renderer) override;
  /// Clears the dirty flag and does nothing else when it is set; bounds otherwise. True.
  bool _build() override;
  /// Binds the first material, then the wide line's program, and draws the geometry with them. What
  /// was bound is unbound afterwards: no program is current then.
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

  // ---- vertices ----

  /// Count of this polyline alone, whatever `node` is.
  unsigned int get_num_vertices(Node* node) override;

  using Object::set_vertices_color;
  /// Colour of all vertices.
  void set_vertices_color(float r, float g, float b, float a, Node* node) override;
  void set_vertices_color(const vec4& color, Node* node) override;

  /// @{
  /// False when there is no vertex `i`. w is 1 where it is not given.
  bool set_vertex_position(unsigned int i, float x, float y, float z);
  bool set_vertex_position(unsigned int i, float x, float y, float z, float w);
  bool set_vertex_position(unsigned int i, const vec3& v);
  bool set_vertex_position(unsigned int i, const vec4& v);
  bool set_vertex_color(unsigned int i, const vec4& v);
  /// @}

  /// @{
  /// Four lanes; (0, 0, 0, 1) when there is no vertex `i`.
  vec4 get_vertex_position(unsigned int i) const;
  vec4 get_vertex_color(unsigned int i) const;
  /// @}

  /// @{
  /// Leaves out the first `n` vertices when drawn; the number of vertices drawn stays.
  void set_vertex_start_offset(unsigned int n);
  unsigned int get_vertex_start_offset() const;
  /// @}

  /// @{
  /// Draws up to `n` vertices before the end, from the present start on.
  void set_vertex_end_offset(unsigned int n);
  unsigned int get_vertex_end_offset() const;
  /// @}

  // ---- buffer ----

  /// Maps the vertex buffer for writing; null without a renderer.
  Vertex* map_vertex_buffer(Renderer* renderer);
  /// Ends the mapping; false without a renderer.
  bool unmap_vertex_buffer(Renderer* renderer);
  /// Address of the last mapping, null while unmapped.
  void* get_mapped_vertex_buffer() const;

  /// @name Thick lines
  /// A line strip with adjacency that a geometry shader widens to quads. It needs OpenGL 3.2 or
  /// later; without the program, as in older versions, the strip is drawn thin. For p points in a
  /// row, p + 2 vertices are needed.
  ///
  /// The shader writes depth 0 for all of the line and takes the colours of a segment from the
  /// vertices one before its ends.
  /// @{

  /// Allocates `n` vertices and room for `n` + 2 points, and makes the program when there is a
  /// renderer; a program that does not compile leaves the line thin. `width` is that on screen, in
  /// pixels. False when the memory is short or `n` is 0.
  bool wideline_initialize(Renderer* renderer, unsigned int n, float width);
  /// Makes the program alone, in place of an earlier one. False without a renderer and when it does
  /// not compile.
  bool wideline_initialize_gpu_program(Renderer* renderer);
  /// Makes the program current. False without a renderer, without a program and when it does not
  /// link.
  bool wideline_bind_gpu_program(Renderer* renderer);
  /// Stores the width and gives it to the program; the program that was current is current again
  /// afterwards. Without a renderer the width is sent with the next draw. False without a program.
  bool wideline_set_line_width(Renderer* renderer, float width);
  /// Starts over with no point. True.
  bool wideline_reset_points();
  /// Appends a point. The index of its vertex; -1 for the first point, which is only kept, without
  /// room for points, and when that is full.
  int wideline_add_point(const vec4& position, const vec4& color);
  /// Rewrites vertex `i`, adjacency vertices counted. False without one or without points.
  bool wideline_set_point_attribs(unsigned int i, const vec4& position, const vec4& color);
  /// The state of the thick line, never null. The polyline stays the owner.
  PolylineWideLine* get_wideline() const { return wideline_; }
  /// @}

 protected:
  /// Frees the vertices and makes `n` new ones drawn as `primitive`. False, logged, when there are
  /// none or too many.
  bool start_shape(unsigned long long n, PRIMITIVE_TYPE primitive);

 private:
  void forget_wideline_points();
  void free_wideline(Renderer* renderer, bool from_manager);

  PolylineData* polyline_data_ = nullptr;
  PolylineWideLine* wideline_;
  unsigned long long wideline_capacity_ = 0;  // of the array of points
};

}  // namespace orv
