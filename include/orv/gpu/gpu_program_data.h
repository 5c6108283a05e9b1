/// @file
/// Everything that the library and the renderer know of one GPU program.
#pragma once

#include <orv/core/api.h>
#include <orv/core/thread.h>
#include <orv/fwd.h>
#include <orv/gpu/gpu_enums.h>
#include <orv/gpu/gpu_program_uniform.h>
#include <orv/gpu/gpu_program_vertex_attrib.h>

namespace orv {

/// The uniforms that Object fills by itself in every program that declares them.
enum ENGINE_UNIFORM : int {
  ENGINE_UNIFORM_MODEL_MATRIX = 0,
  ENGINE_UNIFORM_VIEW_MATRIX = 1,
  ENGINE_UNIFORM_PROJECTION_MATRIX = 2,
  ENGINE_UNIFORM_MODEL_VIEW_MATRIX = 3,
  ENGINE_UNIFORM_VIEW_PROJECTION_MATRIX = 4,
  ENGINE_UNIFORM_MODEL_VIEW_PROJECTION_MATRIX = 5,
  ENGINE_UNIFORM_VIEWPORT = 6,
  ENGINE_UNIFORM_COUNT = 7
};

/// The record behind a GpuProgram: sources and logs of the stages, API ids, the table of vertex
/// attributes, and the uniform values kept on the CPU side until the renderer sends them with
/// gpu_program_apply_uniforms. The public fields are read and written by renderers.
///
/// A copy owns copies of all texts, logs and uniforms and carries the same API ids.
///
/// Attribute arrays of instanced meshes: the engine names put "orvex_Instance_Position" at slot 4.
/// With user arrays in front, the instance arrays of a mesh start behind them, and the host moves
/// the names with set_vertex_attrib.
class ORV_API GpuProgramData {
 public:
  static constexpr unsigned int NUM_STAGES = 8;             ///< entries of the per-stage arrays
  static constexpr unsigned int NUM_SUBROUTINE_STAGES = 6;  ///< stages with subroutines
  static constexpr unsigned int MAX_VERTEX_ATTRIBS = 16;    ///< entries of `vertex_attribs`

  /// Starts with the engine names and four empty uniform slots.
  GpuProgramData();

  /// @{
  /// Copies texts, logs and uniforms; the API ids are the same.
  GpuProgramData(const GpuProgramData& other);
  GpuProgramData& operator=(const GpuProgramData& other);
  /// @}

  /// Frees texts, logs and uniforms. API objects are the renderer's and must be unloaded before.
  ~GpuProgramData();

  /// Sets all fields but the uniforms to their defaults, with the engine names.
  void init_data();

  // ---- name, id, thread ----

  /// Null and empty texts are ignored; at most 127 characters are kept.
  void set_gpu_program_name(const char* name);
  /// Never null.
  const char* get_gpu_program_name() const { return gpu_program_name; }

  /// @{
  /// Node id of the owning GpuProgram, -1 without one.
  int get_gpu_program_id() const { return gpu_program_id; }
  void set_gpu_program_id(int id) { gpu_program_id = id; }
  /// @}

  /// Records the calling thread.
  void update_thread();
  /// Whether the calling thread is the recorded one.
  bool check_thread() const;
  /// The thread recorded last.
  const Thread& get_thread() const { return thread; }
  /// The same, to read and write.
  Thread* get_thread_ptr() { return &thread; }

  // ---- state ----

  /// Whether the linked program takes its vertices from numbered attributes.
  bool get_use_generic_vertex_attribs_state() const { return use_generic_vertex_attribs; }
  /// Whether the next use links.
  bool is_linking_needed() const { return !linked; }
  /// Whether all stages asked for were loaded.
  bool is_valid() const { return valid; }
  /// For whoever loads the stages.
  void set_valid_state(bool state) { valid = state; }

  // ---- stages ----

  /// Label of a stage for messages; empty for other values. The labels differ from those of
  /// GpuProgram's messages.
  static const char* shader_type_to_string(GPU_SHADER_TYPE type);
  /// Source of a loaded stage, or null.
  const char* get_shader_source_code(GPU_SHADER_TYPE type) const;
  /// Replaces the source of a stage by a copy. False for a stage that does not exist; a null text
  /// leaves none.
  bool set_shader_source_code(GPU_SHADER_TYPE type, const char* text, unsigned int size);
  /// Compiler log of a stage, or null.
  const char* get_shader_info_log(GPU_SHADER_TYPE type) const;
  /// Stores a compiler log. Logs only grow: a null text, a length of 0 and a length not above the
  /// capacity of the log held are refused with false.
  bool set_shader_info_log(GPU_SHADER_TYPE type, const char* text, unsigned int length);
  /// Linker log, or null.
  const char* get_info_log() const { return info_log; }
  /// Stores a linker log, by the rule of set_shader_info_log.
  bool set_info_log(const char* text, unsigned int length);

  // ---- Direct3D ----

  /// Entry point of a stage, "main" by default. False for a null name or an unknown stage; at most
  /// 63 characters are kept.
  bool set_entry_point_name(GPU_SHADER_TYPE type, const char* name);
  /// Null for an unknown stage.
  const char* get_entry_point_name(GPU_SHADER_TYPE type) const;

  /// @{
  /// The same two.
  bool d3d11_set_entry_point_name(GPU_SHADER_TYPE type, const char* name);
  const char* d3d11_get_entry_point_name(GPU_SHADER_TYPE type) const;
  /// @}

  /// Shader object of a Direct3D renderer, or null.
  void* d3d11_get_shader_ptr(GPU_SHADER_TYPE type) const;

  // ---- names of the engine uniforms ----

  /// @{
  /// Name under which an engine uniform is set. Each set_*_uniform_name keeps a copy; null is
  /// ignored.
  void set_engine_uniform_name(ENGINE_UNIFORM which, const char* name);
  const char* get_engine_uniform_name(ENGINE_UNIFORM which) const;
  /// @}

  /// @{
  /// Name of this engine uniform; see set_engine_uniform_name.
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

  // ---- vertex attributes ----

  /// Names slot i "orvex_Attrib" and its number with location i; with named, slots 0 to 8 take the
  /// engine's names instead.
  void init_default_vertex_attribs(bool named);
  /// Empties all names and sets all locations to -1.
  void clear_vertex_attribs();
  /// Names the slot of this location. False for a location of 16 or more, a null or an empty name.
  /// Asks for a new link, as the two below.
  bool set_vertex_attrib(const char* name, unsigned int location);
  /// False for a slot of 16 or more or a null name.
  bool set_vertex_attrib_name(unsigned int slot, const char* name);
  /// False for a slot of 16 or more.
  bool set_vertex_attrib_location(unsigned int slot, int location);
  /// Null for a slot of 16 or more.
  const char* get_vertex_attrib_name(unsigned int slot) const;
  /// -1 for a slot of 16 or more.
  int get_vertex_attrib_location(unsigned int slot) const;

  // ---- uniform list ----

  /// Makes four empty slots and empty caches, after freeing what was there.
  void init_uniforms();
  /// Deletes all records, the list and the caches.
  void kill_uniforms();
  /// Number of slots, used or not.
  unsigned int get_num_uniforms() const { return num_uniform_slots; }
  /// The slots, some of them null; null after kill_uniforms.
  GpuProgramUniform** get_uniforms_list() const { return uniforms; }
  /// First record of this name, of which 63 characters count; null for none and for a null name.
  GpuProgramUniform* find_uniform(const char* name) const;
  /// First record at this offset of a constant buffer, or null.
  GpuProgramUniform* find_uniform_v2(unsigned int offset) const;
  /// Puts a fresh record into the first free slot, after growing the list by four slots when none
  /// is free. The list owns it.
  GpuProgramUniform* get_new_uniform();
  /// Record of an engine uniform under its present name, found without a name search once it
  /// exists; null before its first set.
  GpuProgramUniform* engine_uniform(ENGINE_UNIFORM which) const;
  /// Whether the linked program is known to lack an engine uniform, so that its value need not be
  /// computed.
  bool is_engine_uniform_unused(ENGINE_UNIFORM which) const;
  /// set_uniform_4x4f under the name of an engine uniform.
  bool set_engine_uniform_4x4f(ENGINE_UNIFORM which, const mat4& value);
  /// set_uniform_4f under the name of an engine uniform.
  bool set_engine_uniform_4f(ENGINE_UNIFORM which, float x, float y, float z, float w);
  /// Marks every record to be sent again. False without a list.
  bool need_bind_uniforms();

  // ---- uniform values ----
  //
  // Each stores a value under a name, of which 63 characters count, and marks it to be sent.
  // Equal float, double and matrix values of a record that was sent before stay unmarked.
  // False for a null name; true with nothing stored for null values or a count below 1.

  /// @{
  /// Stores a value under this name, see above. Arrays hold `count` values of the size that the
  /// name of the operation tells.
  bool set_uniform_1i(const char* name, int x);
  bool set_uniform_2i(const char* name, int x, int y);
  bool set_uniform_3i(const char* name, int x, int y, int z);
  bool set_uniform_4i(const char* name, int x, int y, int z, int w);
  bool set_uniform_1ui(const char* name, unsigned int x);
  bool set_uniform_2ui(const char* name, unsigned int x, unsigned int y);
  bool set_uniform_3ui(const char* name, unsigned int x, unsigned int y, unsigned int z);
  bool set_uniform_4ui(const char* name, unsigned int x, unsigned int y, unsigned int z,
                       unsigned int w);
  bool set_uniform_1f(const char* name, float x);
  bool set_uniform_2f(const char* name, float x, float y);
  bool set_uniform_3f(const char* name, float x, float y, float z);
  bool set_uniform_4f(const char* name, float x, float y, float z, float w);
  bool set_uniform_4f(const char* name, const vec4& value);
  bool set_uniform_1d(const char* name, double x);
  bool set_uniform_2d(const char* name, double x, double y);
  bool set_uniform_3d(const char* name, double x, double y, double z);
  bool set_uniform_4d(const char* name, double x, double y, double z, double w);
  bool set_uniform_1iv(const char* name, int count, const int* values);
  bool set_uniform_2iv(const char* name, int count, const int* values);
  bool set_uniform_3iv(const char* name, int count, const int* values);
  bool set_uniform_4iv(const char* name, int count, const int* values);
  bool set_uniform_1fv(const char* name, int count, const float* values);
  bool set_uniform_2fv(const char* name, int count, const float* values);
  bool set_uniform_3fv(const char* name, int count, const float* values);
  bool set_uniform_4fv(const char* name, int count, const float* values);
  bool set_uniform_1dv(const char* name, int count, const double* values);
  bool set_uniform_2dv(const char* name, int count, const double* values);
  bool set_uniform_3dv(const char* name, int count, const double* values);
  bool set_uniform_4dv(const char* name, int count, const double* values);
  bool set_uniform_1ui64(const char* name, unsigned long long value);
  bool set_uniform_1ui64v(const char* name, int count, const unsigned long long* values);
  /// @}

  /// Nine floats, column by column.
  bool set_uniform_3x3f(const char* name, const float* values);
  /// A matrix, column by column as it is kept.
  bool set_uniform_4x4f(const char* name, const mat4& value);
  /// Sixteen floats, column by column.
  bool set_uniform_4x4f(const char* name, const float* values);
  /// Nine doubles, column by column. Kept, never sent.
  bool set_uniform_3x3d(const char* name, const double* values);
  /// Kept, never sent.
  bool set_uniform_4x4d(const char* name, const mat4d& value);
  /// Sixteen doubles, column by column. Kept, never sent.
  bool set_uniform_4x4d(const char* name, const double* values);
  /// Chooses the subroutine of a subroutine uniform in one stage. False for a null name; true with
  /// nothing stored for a stage that has no subroutines.
  bool set_uniform_subroutine(GPU_SHADER_TYPE type, const char* uniform_name,
                              const char* subroutine_name);

  // Values at a byte offset of a constant buffer. True; nothing is stored at
  // GpuProgramUniform::NO_OFFSET.

  /// @{
  /// Stores a value at a byte offset; matrices are sixteen floats, column by column.
  bool gpu_buffer_set_uniform_1i(unsigned int offset, int x);
  bool gpu_buffer_set_uniform_1f(unsigned int offset, float x);
  bool gpu_buffer_set_uniform_4f(unsigned int offset, float x, float y, float z, float w);
  bool gpu_buffer_set_uniform_4x4f(unsigned int offset, const mat4& value);
  bool gpu_buffer_set_uniform_4x4f(unsigned int offset, const float* values);
  /// @}

  // Workers of the setters above; values holds `elements` (1 to 4) or count * elements numbers.
  /// Worker: one value of `elements` integers.
  bool _set_uniform_i(const char* name, int elements, const int* values);
  /// Also asks for all locations to be resolved again.
  bool _set_uniform_ui(const char* name, int elements, const unsigned int* values);

  /// @{
  /// Worker: one value of `elements` numbers.
  bool _set_uniform_f(const char* name, int elements, const float* values);
  bool _set_uniform_d(const char* name, int elements, const double* values);
  /// @}

  /// @{
  /// Worker: `count` values of `elements` numbers each.
  bool _set_uniform_iv(const char* name, int count, int elements, const int* values);
  bool _set_uniform_fv(const char* name, int count, int elements, const float* values);
  bool _set_uniform_dv(const char* name, int count, int elements, const double* values);
  bool _set_uniform_ui64v(const char* name, int count, int elements,
                          const unsigned long long* values);
  /// @}

  // ---- caches for the renderer ----

  /// Whether the locations of all records are resolved.
  bool _are_uniforms_optimized() const { return uniforms_optimized; }

  /// @{
  /// Says that they are, or no longer.
  void _uniforms_optimization_ok() { uniforms_optimized = true; }
  void _uniforms_optimization_dirty() { uniforms_optimized = false; }
  /// @}

  /// -1 when the name is absent or null.
  int _get_uniform_location_from_cache(const char* name) const;
  /// Keeps a location under a name; a null name is ignored.
  void _update_uniform_location_cache(const char* name, int location);
  /// Empties the cache and asks for all locations again, as the two below.
  void _clear_uniform_location_cache();
  /// -1 when the name is absent or null.
  int _get_uniform_subroutine_location_from_cache(const char* name) const;
  /// Keeps a location under a name; a null name is ignored.
  void _update_uniform_subroutine_location_cache(const char* name, int location);
  /// Empties the cache and asks for all locations again.
  void _clear_uniform_subroutine_location_cache();
  /// 0xFFFFFFFF when the name is absent or null.
  unsigned int _get_subroutine_index_from_cache(const char* name) const;
  /// Keeps an index under a name; a null name is ignored.
  void _update_subroutine_index_cache(const char* name, unsigned int index);
  /// Empties the cache and asks for all locations again.
  void _clear_subroutine_index_cache();
  /// Empties all three.
  void _clear_all_uniform_caches();
  /// Zeroed array for the subroutine indices of a stage, grown when count is above what it holds.
  /// Null for a stage without subroutines or a count of 0. Owned by the record.
  unsigned int* _reserve_subroutine_indices(GPU_SHADER_TYPE type, unsigned int count);

  // ---- fields ----

  char gpu_program_name[128] = {};          ///< see set_gpu_program_name
  Thread thread;                            ///< thread that created the API object
  bool active = false;                      ///< true between gpu_program_use and gpu_program_unuse
  unsigned int program_id = 0;              ///< API program object
  bool use_generic_vertex_attribs = false;  ///< vertices come from numbered attributes
  bool generic_attribs_detection_needed = true;  ///< the renderer has yet to find that out
  bool generic_attrib_names_binding_needed =
      true;                                 ///< names of attributes are to be bound before the link
  bool linked = false;                      ///< the program object is linked
  bool attrib_locations_dirty = true;       ///< locations of attributes changed since the link
  bool attrib_group_1_dirty = true;         ///< attribute slots 0 to 4
  bool attrib_group_2_dirty = true;         ///< attribute slots 4 to 8
  bool valid = false;                       ///< see is_valid
  bool shader_loaded[NUM_STAGES] = {};      ///< by stage: compiled and attached
  unsigned int shader_id[NUM_STAGES] = {};  ///< API shader objects
  char* shader_source[NUM_STAGES] = {};     ///< owned, made with new[]
  char* shader_info_log[NUM_STAGES] = {};   ///< owned, made with new[]
  unsigned int shader_info_log_capacity[NUM_STAGES] = {};  ///< bytes of each log
  char* info_log = nullptr;                                ///< link log, owned, made with new[]
  unsigned int info_log_capacity = 0;                      ///< bytes of the link log
  char d3d_entry_point_names[NUM_STAGES][64] = {};         ///< empty means "main"
  void* d3d_shaders[NUM_STAGES] = {};  ///< shader objects of a Direct3D renderer
  int renderer_gpu_id = 0;             ///< plugin id of the renderer that made program_id
  char* engine_uniform_names[ENGINE_UNIFORM_COUNT] = {};      ///< owned, never null
  GpuProgramVertexAttrib vertex_attribs[MAX_VERTEX_ATTRIBS];  ///< by slot

  bool uniforms_optimized = false;         ///< locations are resolved
  GpuProgramUniform** uniforms = nullptr;  ///< owned list, slots may be null
  unsigned int num_uniform_slots = 0;      ///< entries of `uniforms`, used or not
  unsigned int num_subroutine_uniforms[NUM_SUBROUTINE_STAGES] =
      {};  ///< by stage: subroutine uniforms in the list
  unsigned int* subroutine_indices[NUM_SUBROUTINE_STAGES] = {};  ///< owned, made with new[]
  unsigned int subroutine_indices_capacity[NUM_SUBROUTINE_STAGES] =
      {};                   ///< entries of each array of indices
  int gpu_program_id = -1;  ///< see get_gpu_program_id

 private:
  struct UniformCaches;
  struct UniformIndex;

  void copy_fields(const GpuProgramData& other);
  void copy_uniforms(const GpuProgramData& other);
  void free_texts();
  int find_slot(const char* name) const;
  unsigned int take_free_slot();
  GpuProgramUniform* uniform_to_set(const char* name, GPU_SHADER_UNIFORM type, bool* fresh);
  GpuProgramUniform* uniform_to_set(unsigned int offset, GPU_SHADER_UNIFORM type, bool* fresh);
  template <class Key, class T, int SIZE>
  bool set_values(Key key, GPU_SHADER_UNIFORM type, T (GpuProgramUniform::*field)[SIZE], int count,
                  const T* values);
  template <class T>
  bool set_array(const char* name, GPU_SHADER_UNIFORM type, T*(GpuProgramUniform::*field),
                 int count, int elements, const T* values);
  bool change_type(GpuProgramUniform* uniform, GPU_SHADER_UNIFORM type);
  void count_subroutine(const GpuProgramUniform* uniform, int change);

  UniformCaches* uniform_caches_;  ///< names to locations and indices
  UniformIndex* uniform_index_;    ///< names to slots
};

}  // namespace orv
