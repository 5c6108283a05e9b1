/// @file
/// The renderer over OpenGL 2, 3 and 4.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include <orv/math/mat4.h>
#include <orv/math/vec4.h>
#include <orv/render/renderer.h>
#include <orv/render/renderer_rasterizer_state.h>

#include "render/opengl/core_lines.h"
#include "render/opengl/gl_facts.h"
#include "render/opengl/gl_loader.h"
#include "render/opengl/gl_questions.h"
#include "render/opengl/gl_table.h"
#include "render/opengl/gl_texture_enums.h"

namespace orv {

namespace detail {
class ContextBackEnd;
struct VectorContextAccess;
}  // namespace detail

/// Values of state for reading back. They never hold a call back: each setter makes its own.
struct GlShadowState {
  // matrices: those of the setters, and those the fixed pipeline holds or would hold
  mat4 projection_matrix;
  mat4 modelview_matrix;
  float fixed_projection[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  float fixed_modelview[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  // viewport
  int viewport[4] = {};
  bool scissor_test = false;
  // raster
  Renderer_Rasterizer_State rasterizer_applied;
  Renderer_Rasterizer_State rasterizer_wanted;
  // depth
  bool depth_test = true;
  bool depth_mask = true;
  int depth_func = 1;
  // blend
  bool blending = false;
  RENDERER_BLEND_FACTOR blend_source = RENDERER_BLEND_FACTOR_ONE;
  RENDERER_BLEND_FACTOR blend_destination = RENDERER_BLEND_FACTOR_ONE;
  // target
  int draw_buffer = 0;

  /// Back to the state that apply_pipeline_state sets, which leaves the fixed pipeline's matrices.
  void reset();
};

/// The geometry that is bound on a context, and the arrays that are enabled for it outside of
/// vertex array objects.
struct GlBoundGeometry {
  const GeometryCore* geometry = nullptr;  ///< only compared: it may be gone
  unsigned int context_id = 0;
  unsigned int source_id = 0;     ///< buffer of the arrays
  unsigned int index_id = 0;      ///< buffer of the indices
  unsigned int serial = 0;        ///< of the layout
  std::uint64_t locations = 0;    ///< one bit for each enabled generic array
  std::uint64_t divided = 0;      ///< those of them with a divisor
  unsigned int fixed_arrays = 0;  ///< one bit for each enabled array of the fixed pipeline
};

/// Usage options that replace what buffers ask for; 0 leaves it.
struct GlUsageOptions {
  enum { VERTEX = 0, INDEX = 1, STORAGE = 4, COUNT = 7 };
  unsigned int values[COUNT] = {};  ///< by their number; the others are only kept
};

/// Ids of the textures bound to the targets of one unit, in the order of GL_TEXTURE_TARGETS.
struct GlUnitBindings {
  unsigned int ids[7] = {};
};

/// Texture units and what is bound to them.
struct GlTextureUnits {
  unsigned int current = 0;
  std::vector<unsigned int> bound;        ///< id of the texture bound last, by unit
  std::vector<GlUnitBindings> by_target;  ///< as long as bound

  bool has(unsigned int unit) const { return unit < bound.size(); }
  /// So many units with nothing bound.
  void reset(std::size_t count);
  /// Takes a texture from wherever it is bound.
  void forget(unsigned int id);
};

/// Implementation of Renderer over OpenGL: see renderer.h for what the operations do. The methods
/// live by family in the files of this folder.
///
/// start() fills the tables for the context that is current on the calling thread, and reads the
/// facts; all else then goes through the tables. A stopped renderer has empty tables, and each
/// operation answers as if the function it needs were missing.
class RendererOpenGL : public Renderer {
 public:
  RendererOpenGL();
  ~RendererOpenGL() override;
  RendererOpenGL(const RendererOpenGL&) = delete;
  RendererOpenGL& operator=(const RendererOpenGL&) = delete;

  bool initialize() override;
  bool terminate() override;
  bool start() override;
  bool stop() override;

#define ORV_OP(result, name, parameters, arguments, null_result) result name parameters override;
#define ORV_BASE_OP(result, name, parameters, arguments, null_result)
#include <orv/render/renderer_ops.inc>

  /// Forwards to get_texture_2d_binding_of_unit.
  virtual unsigned int get_texture_2d_binding_current(unsigned int unit);

  const GlFacts& facts() const { return facts_; }
  const GlTable& gl() const { return gl_; }
  const GlCoreTable& core_functions() const { return core_; }
  const GlShadowState& shadow() const { return shadow_; }
  bool get_radeon_workaround() const { return radeon_workaround_; }

  /// True in contexts without the fixed pipeline.
  bool is_core_context() const { return facts_.core_context; }
  /// True when geometry must be, and is, drawn with vertex array objects.
  bool use_vertex_arrays() const { return facts_.use_vertex_arrays; }

  /// Takes OpenGL's functions from here, whatever context is current; null goes back to contexts.
  /// For tests.
  void use_proc_address(GlProcAddress source) { forced_proc_address_ = std::move(source); }
  /// Makes contexts through this back end instead of the window systems'. Borrowed. For tests.
  void use_context_back_end(detail::ContextBackEnd* back_end) { forced_back_end_ = back_end; }

 private:
  friend struct RendererOpenGLTestAccess;
  friend struct detail::VectorContextAccess;

  // ---- start.cpp ----
  bool read_facts();
  void read_vendor();
  void decide_paths(RenderWindow* window);
  void clear_tables();

  // ---- windows.cpp ----
  GlProcAddress find_proc_address() const;
  detail::GlQuestions find_questions() const;
  bool has_current_context() const;

  // ---- gpus.cpp ----
  std::string* name_of_gpu(RendererGpu* gpu) const;

  // ---- limits.cpp ----
  void register_capabilities();
  int read_integer(unsigned int name);
  int read_vendor_integer(const char* extension, unsigned int name);
  bool read_capability(RendererCapability* record);
  unsigned int read_amd_gpu_ids(unsigned int* ids, unsigned int max_count);

  // ---- extensions.cpp ----
  void append_window_system_extensions(const RenderWindow* window);

  // ---- diagnostics.cpp ----
  /// Formats into the error buffer and logs "OpenGL renderer - ..." as an error.
  void log_error(const char* format, ...) ORV_PRINTF_LIKE(2, 3);
  /// Whether the context is without a function, which an operation then says in the log.
  template <class Function>
  bool lacks(Function function, const char* name) const {
    if (function) return false;
    report_lack(name);
    return true;
  }
  void report_lack(const char* name) const;
  /// Takes pending errors away, such as those that questions to older drivers raise.
  void swallow_gl_errors();
  const char* get_gl_text(unsigned int name);

  detail::ContextBackEnd* back_end_for(const RenderWindowData& data) const;
  bool create_context(RenderWindow* window, RenderWindow* shared);

  // ---- state.cpp, clear_and_read.cpp ----
  static const float* matrix_floats(const mat4& matrix);
  bool set_state_by_name(const char* name, bool enabled);
  void set_capability(unsigned int capability, bool enabled);
  void draw_raw(unsigned int mode, unsigned int vertices_each, unsigned int count,
                unsigned int first);
  void apply_starting_state();
  void resize_texture_units(int count);
  void clear_buffers(unsigned int mask);
  unsigned int read_framebuffer();

  // ---- fixed_function.cpp ----
  bool has_fixed_function() const;
  void load_fixed_projection(const float* matrix);
  void load_fixed_modelview(const float* matrix);
  void load_fixed_matrix(unsigned int mode, const float* matrix);
  void set_light_value(unsigned int index, unsigned int name, const float* values);
  void set_material_value(unsigned int name, const vec4& color);

  // ---- core_lines.cpp ----
  bool is_core_program_missing();
  GlCoreColorProgram* core_color_program();
  bool begin_core_color_program();
  void end_core_color_program();
  void release_core_color_program();
  void draw_core_line(const vec4& p0, const vec4& p1, const vec4& color0, const vec4& color1);

  // ---- contexts.cpp ----
  /// Number of the context that is current, as far as windows of this renderer tell.
  unsigned int current_context_id() const { return current_context_id_; }
  /// To be told of every context that this renderer makes, binds, unbinds (null), destroys, saves
  /// and restores, so that objects which contexts don't share are kept apart.
  void note_context_created(const RenderWindow* window);
  void note_context_bound(const RenderWindow* window);
  void note_context_destroyed(const RenderWindow* window);
  void note_context_saved(const RenderWindow* window);
  void note_context_restored(const RenderWindow* window);
  /// Units belong to a context: keeps those of the one before, takes up those of the next.
  void change_context(unsigned int id);
  /// Deletes what was made for the current context, forgets what was made for others.
  void release_context_objects();

  // ---- geometry.cpp ----
  bool create_vertex_buffer(RendererGpu* gpu, GeometryCore* geometry);
  void create_index_buffer(GeometryCore* geometry);
  void specify_index_buffer(GeometryCore* geometry, unsigned int size, const void* data);
  bool update_vertex_buffer(GeometryCore* geometry);
  bool fit_vertex_buffer(GeometryCore* geometry, unsigned int size);
  void specify_vertex_buffer(GeometryCore* geometry, unsigned int target, unsigned int size);
  template <class Part>
  void write_part(unsigned int target, const Part& part);
  template <class Part>
  void write_parts(unsigned int target, const Part* parts, std::size_t count);
  void update_index_buffer(GeometryCore* geometry);
  void delete_index_buffer(GeometryCore* geometry);
  /// Whether this OpenGL takes primitives with adjacency, which came with geometry shaders.
  bool has_adjacency() const;
  template <class Draw>
  void draw_range(unsigned int mode, long long first, long long count, Draw draw);
  void draw_arrays(const GeometryCore& geometry, unsigned int mode);
  void draw_elements(const GeometryCore& geometry, unsigned int mode);

  // ---- geometry_attribs.cpp ----
  struct AttribPlan;
  AttribPlan plan_attribs(const GeometryCore& geometry) const;
  void enable_attribs(const AttribPlan& plan);
  void enable_fixed_array(int fixed_array, int dim, int stride, std::size_t offset);
  void disable_arrays();
  bool is_bound(const GeometryCore& geometry) const;
  void forget_buffer(unsigned int id);
  void bind_source(GeometryCore* geometry);
  void bind_arrays(GeometryCore* geometry);
  void unbind_arrays(GeometryCore* geometry);
  bool has_vertex_arrays() const;
  bool is_vertex_array_foreign(const GeometryCore& geometry) const;
  void bind_vertex_array(GeometryCore* geometry);
  void delete_vertex_array(GeometryCore* geometry);
  unsigned int scratch_vertex_array();
  void set_point_sprites(const GeometryCore& geometry, bool enabled);

  // ---- raw_buffers.cpp, gpu_buffers.cpp ----
  unsigned int overridden_usage(GPU_BUFFER_TYPE type, unsigned int usage) const;
  bool has_buffer_target(GPU_BUFFER_TYPE type) const;
  unsigned int raw_buffer_create(GPU_BUFFER_TYPE type, unsigned int size, unsigned int usage);
  bool raw_buffer_destroy(unsigned int id);
  void* raw_buffer_map(unsigned int target, unsigned int id, unsigned int access);
  bool raw_buffer_unmap(unsigned int target, unsigned int id);
  int read_offset_alignment(GPU_BUFFER_TYPE type);
  void specify_gpu_buffer(GpuBufferData* buffer, unsigned int size, const void* data);
  bool is_buffer_range(const GpuBufferData* buffer, unsigned int offset, unsigned int size) const;
  class BufferBinding;

  // ---- queries_and_barriers.cpp ----
  unsigned int supported_query_target(const char* name) const;
  bool begin_query(unsigned int target, unsigned int id);
  bool end_query(unsigned int target);

  // ---- bitmap_fonts.cpp ----
  bool draw_bitmap_text(const FontData* font, float x, float y, float z, const char* text,
                        unsigned int length);

  // ---- programs.cpp ----
  bool has_link(const GpuProgramData* program) const;
  bool create_program_object(GpuProgramData* program);
  void reset_program_links(GpuProgramData* program);
  void delete_program_object(GpuProgramData* program);
  unsigned int compile_shader(GPU_SHADER_TYPE type, const char* text, unsigned int size,
                              bool* compiled);
  const std::string& read_shader_log(unsigned int shader);
  const std::string& read_program_log(unsigned int id);
  void detect_generic_attribs(GpuProgramData* program);
  void bind_attrib_slots(GpuProgramData* program);
  void bind_numbered_attribs(GpuProgramData* program, bool keep_slots);
  bool bind_attrib_group(GpuProgramData* program, int first, int last);
  void make_program_current(GpuProgramData* program);

  // ---- uniforms.cpp ----
  void send_subroutines(GpuProgramData* program);
  void send_stage_subroutines(GpuProgramData* program, GPU_SHADER_TYPE type);
  int count_subroutine_locations(GpuProgramData* program, GPU_SHADER_TYPE type);
  void send_uniform(const GpuProgramUniform& uniform);

  // ---- uniform_blocks.cpp ----
  bool read_active_uniforms(GpuProgramData* program, const char** names, unsigned int count,
                            unsigned int what, int missing, int* out);

  // ---- texture_units.cpp ----
  void select_unit(unsigned int unit);
  void bind_texture(unsigned int unit, unsigned int target, unsigned int id);
  bool bind_texture_id(unsigned int target, unsigned int id, unsigned int unit);
  void forget_texture(unsigned int id);
  void delete_texture_id(unsigned int* id);
  bool has_texture_target(unsigned int target) const;
  int read_image_units();
  void clear_image_unit(unsigned int unit);
  class TextureBinding;

  // ---- texture_load.cpp ----
  bool load_texture(TextureData* texture, unsigned int unit);
  unsigned int choose_internal_format(const TextureData& texture,
                                      const detail::GlPixelFormat& format);
  bool is_compression_supported(detail::GlCompressionGroup group);
  bool stage_pixels(TextureData* texture);
  void specify_texture(TextureData* texture, const void* pixels);
  void specify_cube(const TextureData& texture, unsigned int internal_format);
  void specify_layers(const TextureData& texture, const detail::GlPixelFormat& format,
                      unsigned int internal_format);
  void apply_mipmaps(TextureData* texture);
  void end_upload();

  // ---- texture_update.cpp ----
  bool is_updatable(TextureData* texture, TEXTURE_TYPE type);
  bool has_possible_size(const TextureData& texture) const;
  bool is_specified_anew(TextureData* texture, bool own_pixels);
  void refresh_mipmaps(const TextureData& texture);
  void update_faces(const TextureData& texture);
  bool read_texture(TextureData* texture, TEXTURE_TYPE type);

  // ---- texture_targets.cpp ----
  bool create_texture_by_id(unsigned int* id, unsigned int target, int width, int height,
                            PIXEL_FORMAT format, const void* pixels,
                            SAMPLER_FILTERING_MODE filtering, SAMPLER_ADDRESSING_MODE addressing);
  void release_texture_handle(TextureData* texture);
  bool view_render_target(TextureData* texture, const GpuRenderTarget& target, unsigned int id);

  // ---- render_targets.cpp ----
  struct TargetOptions;
  bool begin_target(GpuRenderTarget* target, const TargetOptions& options);
  bool init_texture_target(GpuRenderTarget* target, const TargetOptions& options);
  bool finish_target(GpuRenderTarget* target, const char* kind);
  unsigned int limit_color_targets(unsigned int count);
  int limit_samples(int samples, bool as_texture, bool integer);
  void set_draw_buffers(unsigned int count);
  void attach_target(const GpuRenderTarget& target);

  // ---- render_target_storage.cpp ----
  unsigned int create_target_texture(const GpuRenderTarget& target, bool depth, unsigned int unit);
  void store_target_texture(const GpuRenderTarget& target, bool depth);
  unsigned int create_renderbuffer(const GpuRenderTarget& target, unsigned int internal_format);
  void store_renderbuffer(const GpuRenderTarget& target, unsigned int id,
                          unsigned int internal_format);
  void attach_texture(unsigned int attachment, unsigned int gl_target, unsigned int id);
  void attach_renderbuffer(unsigned int attachment, unsigned int id);

  // ---- render_target_io.cpp, framebuffers.cpp ----
  bool read_target(GpuRenderTarget* target, unsigned char* pixels, unsigned int format);
  class FramebufferBinding;
  struct BlitSide;
  BlitSide blit_side(const GpuRenderTarget* target);
  BlitSide blit_side_of_id(unsigned int id);
  bool blit(const BlitSide& source, const BlitSide& target, bool color, bool depth, bool linear);
  void blit_color(const BlitSide& source, const BlitSide& target, bool linear);

  // ---- shadow_maps.cpp ----
  void set_shadow_cull(int mode);
  bool set_compare_mode(TextureData* depth, unsigned int unit, bool compare);

  // ---- data ----
  GlTable gl_;        // beyond OpenGL 1.1
  GlCoreTable core_;  // OpenGL 1.1
  GlFacts facts_;     // written by start, only read later
  GlShadowState shadow_;
  GlUsageOptions usage_;
  GlBoundGeometry bound_;
  GlTextureUnits units_;                                              // of the current context
  std::unordered_map<unsigned int, GlTextureUnits> units_of_others_;  // by context
  int max_texture_size_ = 0;
  int max_vertex_attribs_ = 0;
  unsigned int current_program_id_ = 0;
  GpuProgramData* current_program_ = nullptr;
  std::string info_log_;                       // of a shader or program, valid until the next one
  std::vector<unsigned char> upload_scratch_;  // parts of a buffer on their way
  /// Shaders that did not compile, by the program that they are deleted with.
  std::unordered_map<unsigned int, std::vector<unsigned int>> failed_shaders_;
  std::unordered_map<unsigned int, std::unique_ptr<GlCoreColorProgram>> core_color_programs_;
  std::unordered_map<unsigned int, unsigned int> scratch_vertex_arrays_;  // by context
  std::unordered_map<int, unsigned int> context_ids_;                     // by window id
  std::unordered_map<int, unsigned int> saved_context_ids_;               // by window id
  unsigned int last_context_id_ = 1;
  unsigned int current_context_id_ = 1;

  bool log_gl_functions_ = false;
  bool radeon_workaround_ = true;
  std::vector<RenderWindow*> windows_;
  std::vector<RendererGpu*> gpus_;
  RendererGpu* current_gpu_ = nullptr;
  GlExtensionList extensions_;  // of the window whose list was loaded, empty without one
  GlCapabilities capabilities_;
  std::vector<char> error_text_;
  std::string joined_extensions_;  // core contexts have no such text
  GlProcAddress forced_proc_address_;
  detail::ContextBackEnd* forced_back_end_ = nullptr;
};

}  // namespace orv
