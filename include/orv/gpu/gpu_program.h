/// @file
/// A linked program of shader stages.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/gpu/gpu_enums.h>
#include <orv/gpu/resource.h>

namespace orv {

/// A named resource that stands for one linked program of up to six shader stages: a thin face
/// over a GpuProgramData record and the renderer given to each operation.
///
/// Sources of all stages may stand in one text: a section starts at one of the markers
/// [Vertex_Shader], [Pixel_Shader], [Geometry_Shader], [TessControl_Shader], [TessEval_Shader],
/// [Compute_Shader] and runs to the next marker or to the end. Linking happens at the first bind.
///
/// Uniforms: with a renderer a value goes straight to the bound program; with a null renderer it is
/// kept in the record and sent by bind_uniforms.
class ORV_API GpuProgram : public Resource {
 public:
  /// Named "GPU_program_" and the node id, without stages.
  GpuProgram();
  /// Frees the record. API objects are released by cleanup before.
  ~GpuProgram() override;
  /// Unloads the program from the renderer. False for a null renderer or without API program.
  bool _cleanup(Renderer* renderer) override;
  /// Names the node and the record.
  void set_name(const char* name) override;
  /// Plugin id of the renderer that made the API program, 0 while there is none.
  int get_renderer_id() override;

  GpuProgram(const GpuProgram&) = delete;
  GpuProgram& operator=(const GpuProgram&) = delete;

  /// The record, owned by the program.
  GpuProgramData* get_data_ptr() const { return data_; }

  // ---- loading ----

  /// Loads all stages of a sectioned file. False for a null path, an unreadable file, or as
  /// load_from_memory.
  bool load_from_file(Renderer* renderer, const char* path);
  /// Loads all stages of a sectioned text. False when there is neither a compute section nor both a
  /// vertex and a pixel section, and at the first stage that fails; stages loaded before it stay.
  /// @param size bytes of the text; a terminating zero may be counted
  bool load_from_memory(Renderer* renderer, const char* text, unsigned int size);
  /// Loads one stage from a file that holds nothing else. False for a null path, an unreadable
  /// file, or as shader_load_from_memory.
  bool shader_load_from_file(Renderer* renderer, GPU_SHADER_TYPE type, const char* path);
  /// Compiles one stage and keeps a copy of its source. False for a null renderer, an unknown stage
  /// and a null or empty text; a compiler's failure is logged with its text.
  /// @param size bytes of the text; it ends at a zero before them
  bool shader_load_from_memory(Renderer* renderer, GPU_SHADER_TYPE type, const char* text,
                               unsigned int size);

  /// @{
  /// Loads a stage from a SPIR-V module. No renderer of the library takes one: false, logged when a
  /// renderer is given.
  bool spirv_shader_module_load_from_file(Renderer* renderer, GPU_SHADER_TYPE type,
                                          const char* path);
  bool spirv_shader_module_load_from_memory(Renderer* renderer, GPU_SHADER_TYPE type,
                                            const void* module, unsigned int size);
  /// @}

  /// @{
  /// Loads a stage or an effect through a Direct3D compiler. No renderer of the library has one:
  /// false.
  bool d3d_load_from_file(Renderer* renderer, GPU_SHADER_TYPE type, const char* path);
  bool d3d_shader_load_from_memory(Renderer* renderer, GPU_SHADER_TYPE type, const char* text,
                                   unsigned int size);
  /// @}

  // ---- use; false for a null renderer ----

  /// Makes this the program that draws, after linking it where needed. False when that fails.
  bool bind(Renderer* renderer);
  /// Leaves no program bound.
  bool unbind(Renderer* renderer);
  /// Like bind, for programs whose attributes are named by number.
  bool activate(Renderer* renderer);
  /// Ends activate.
  bool deactivate(Renderer* renderer);
  /// Sends the changed values of the record.
  bool bind_uniforms(Renderer* renderer);
  /// Sends uniforms and runs this many groups of the compute program, which is to be bound.
  bool run_compute(Renderer* renderer, unsigned int x, unsigned int y, unsigned int z);
  /// Marks all values of the record to be sent again. False without a record list.
  bool need_bind_uniforms();

  // ---- state ----

  /// Whether all stages asked for were loaded, as the manager saw it.
  bool is_valid() const;
  /// For whoever loads the stages.
  void set_valid_state(bool state);
  /// Whether the next bind links.
  bool is_linking_needed() const;
  /// Whether the linked program takes its vertices from numbered attributes; false before.
  bool get_use_generic_vertex_attribs_state() const;

  /// @{
  /// Source of a loaded stage, compiler log of a stage, and linker log: owned by the record, null
  /// where there is none.
  const char* get_shader_source_code(GPU_SHADER_TYPE type) const;
  const char* get_shader_info_log(GPU_SHADER_TYPE type) const;
  const char* get_info_log() const;
  /// @}

  /// Logs of all stages in one text, which the program owns until the next call.
  const char* get_shaders_info_log();

  /// @{
  /// Entry points and shader objects of Direct3D, as in GpuProgramData.
  bool set_entry_point_name(GPU_SHADER_TYPE type, const char* name);
  const char* get_entry_point_name(GPU_SHADER_TYPE type) const;
  bool d3d11_set_entry_point_name(GPU_SHADER_TYPE type, const char* name);
  const char* d3d11_get_entry_point_name(GPU_SHADER_TYPE type) const;
  void* d3d11_get_shader_ptr(GPU_SHADER_TYPE type) const;
  /// @}

  // ---- names of engine uniforms and vertex attributes, as in GpuProgramData ----

  /// @{
  /// Name under which this engine uniform is set; a copy is kept, null is ignored. The name is
  /// owned by the record, never null.
  void set_model_matrix_uniform_name(const char* name);
  const char* get_model_matrix_uniform_name() const;
  void set_view_matrix_uniform_name(const char* name);
  const char* get_view_matrix_uniform_name() const;
  void set_projection_matrix_uniform_name(const char* name);
  const char* get_projection_matrix_uniform_name() const;
  void set_model_view_matrix_uniform_name(const char* name);
  const char* get_model_view_matrix_uniform_name() const;
  void set_view_projection_matrix_uniform_name(const char* name);
  const char* get_view_projection_matrix_uniform_name() const;
  void set_model_view_projection_matrix_uniform_name(const char* name);
  const char* get_model_view_projection_matrix_uniform_name() const;
  void set_viewport_uniform_name(const char* name);
  const char* get_viewport_uniform_name() const;
  /// @}

  /// @{
  /// The operation of GpuProgramData of the same name.
  void init_default_vertex_attribs(bool named);
  void clear_vertex_attribs();
  bool set_vertex_attrib(const char* name, unsigned int location);
  bool set_vertex_attrib_name(unsigned int slot, const char* name);
  bool set_vertex_attrib_location(unsigned int slot, int location);
  const char* get_vertex_attrib_name(unsigned int slot) const;
  int get_vertex_attrib_location(unsigned int slot) const;
  /// @}

  // ---- questions to the renderer ----

  /// @{
  /// Location in the linked program, -1 for none and for a null renderer.
  int get_uniform_location(Renderer* renderer, const char* name);
  int get_vertex_attrib_location(Renderer* renderer, const char* name);
  /// @}

  /// Index of a uniform block (kind holds "UNIFORM") or storage block (kind holds
  /// "SHADER_STORAGE"); 0xFFFFFFFF for none, another kind and null arguments.
  unsigned int get_interface_block_index(Renderer* renderer, const char* kind, const char* name);
  /// Bytes of a uniform block, by name when given, else by index; 0 for a null renderer.
  int get_uniform_block_size(Renderer* renderer, const char* name, unsigned int index);

  /// @{
  /// Ties a block to a numbered point that buffers are bound to.
  bool set_uniform_block_binding(Renderer* renderer, unsigned int block, unsigned int binding);
  bool set_shader_storage_block_binding(Renderer* renderer, unsigned int block,
                                        unsigned int binding);
  /// @}

  /// @{
  /// Sizes and byte offsets of `count` uniforms in their blocks, and the bytes between entries of
  /// arrays. Result arrays hold `count` numbers; sizes and offsets may be null.
  bool get_uniform_size_and_offset(Renderer* renderer, const char** names, unsigned int count,
                                   int* sizes, int* offsets);
  bool get_uniform_array_stride(Renderer* renderer, const char** names, unsigned int count,
                                int* strides);
  /// @}

  // ---- uniform values ----

  /// @{
  /// Sends the value to the bound program, or keeps it when the renderer is null. False for a null
  /// name. Null values and, with a null renderer, a count below 1 do nothing.
  bool set_uniform_1i(Renderer* renderer, const char* name, int x);
  bool set_uniform_2i(Renderer* renderer, const char* name, int x, int y);
  bool set_uniform_3i(Renderer* renderer, const char* name, int x, int y, int z);
  bool set_uniform_4i(Renderer* renderer, const char* name, int x, int y, int z, int w);
  bool set_uniform_1ui(Renderer* renderer, const char* name, unsigned int x);
  bool set_uniform_2ui(Renderer* renderer, const char* name, unsigned int x, unsigned int y);
  bool set_uniform_3ui(Renderer* renderer, const char* name, unsigned int x, unsigned int y,
                       unsigned int z);
  bool set_uniform_4ui(Renderer* renderer, const char* name, unsigned int x, unsigned int y,
                       unsigned int z, unsigned int w);
  bool set_uniform_1f(Renderer* renderer, const char* name, float x);
  bool set_uniform_2f(Renderer* renderer, const char* name, float x, float y);
  bool set_uniform_3f(Renderer* renderer, const char* name, float x, float y, float z);
  /// @}

  /// The first three lanes.
  bool set_uniform_3f(Renderer* renderer, const char* name, const vec4& value);

  /// @{
  /// Sends the value to the bound program, or keeps it when the renderer is null. False for a null
  /// name. Arrays hold `count` values; null values and, with a null renderer, a count below 1 do
  /// nothing.
  bool set_uniform_4f(Renderer* renderer, const char* name, float x, float y, float z, float w);
  bool set_uniform_4f(Renderer* renderer, const char* name, const vec4& value);
  bool set_uniform_1d(Renderer* renderer, const char* name, double x);
  bool set_uniform_2d(Renderer* renderer, const char* name, double x, double y);
  bool set_uniform_3d(Renderer* renderer, const char* name, double x, double y, double z);
  bool set_uniform_4d(Renderer* renderer, const char* name, double x, double y, double z, double w);
  bool set_uniform_1iv(Renderer* renderer, const char* name, int count, const int* values);
  bool set_uniform_2iv(Renderer* renderer, const char* name, int count, const int* values);
  bool set_uniform_3iv(Renderer* renderer, const char* name, int count, const int* values);
  bool set_uniform_4iv(Renderer* renderer, const char* name, int count, const int* values);
  bool set_uniform_1fv(Renderer* renderer, const char* name, int count, const float* values);
  bool set_uniform_2fv(Renderer* renderer, const char* name, int count, const float* values);
  bool set_uniform_3fv(Renderer* renderer, const char* name, int count, const float* values);
  bool set_uniform_4fv(Renderer* renderer, const char* name, int count, const float* values);
  bool set_uniform_4fv(Renderer* renderer, const char* name, int count, const vec4* values);
  bool set_uniform_1dv(Renderer* renderer, const char* name, int count, const double* values);
  bool set_uniform_2dv(Renderer* renderer, const char* name, int count, const double* values);
  bool set_uniform_3dv(Renderer* renderer, const char* name, int count, const double* values);
  bool set_uniform_4dv(Renderer* renderer, const char* name, int count, const double* values);
  bool set_uniform_1ui64(Renderer* renderer, const char* name, unsigned long long value);
  bool set_uniform_1ui64v(Renderer* renderer, const char* name, int count,
                          const unsigned long long* values);
  /// @}

  /// Nine floats, column by column.
  bool set_uniform_3x3f(Renderer* renderer, const char* name, const float* values);
  /// A matrix, column by column as it is kept.
  bool set_uniform_4x4f(Renderer* renderer, const char* name, const mat4& value);
  /// Sixteen floats, column by column.
  bool set_uniform_4x4f(Renderer* renderer, const char* name, const float* values);

  // Renderers have no operation for these: they go to the record whatever the renderer.

  /// @{
  /// Nine or sixteen doubles, column by column. Kept in the record whatever the renderer, never
  /// sent.
  bool set_uniform_3x3d(Renderer* renderer, const char* name, const double* values);
  bool set_uniform_4x4d(Renderer* renderer, const char* name, const mat4d& value);
  bool set_uniform_4x4d(Renderer* renderer, const char* name, const double* values);
  /// @}

  /// Chooses the subroutine of a subroutine uniform in one stage, in the record; see
  /// GpuProgramData.
  bool set_uniform_subroutine(Renderer* renderer, GPU_SHADER_TYPE type, const char* uniform_name,
                              const char* subroutine_name);

  /// @{
  /// Keeps a value at a byte offset of a constant buffer, in the record; see GpuProgramData.
  bool gpu_buffer_set_uniform_1i(Renderer* renderer, unsigned int offset, int x);
  bool gpu_buffer_set_uniform_1f(Renderer* renderer, unsigned int offset, float x);
  bool gpu_buffer_set_uniform_4f(Renderer* renderer, unsigned int offset, float x, float y, float z,
                                 float w);
  bool gpu_buffer_set_uniform_4f(Renderer* renderer, unsigned int offset, const vec4& value);
  bool gpu_buffer_set_uniform_4x4f(Renderer* renderer, unsigned int offset, const mat4& value);
  /// @}

 private:
  struct Text;

  GpuProgramData* data_;
  Text* shaders_info_log_;
};

}  // namespace orv
