#include <orv/gpu/gpu_program_data.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "gpu/gpu_program_data_uniforms.h"

namespace orv {

namespace {

constexpr const char* ENGINE_UNIFORM_NAMES[ENGINE_UNIFORM_COUNT] = {
    "orvex_ModelMatrix",     "orvex_ViewMatrix",           "orvex_ProjectionMatrix",
    "orvex_ModelViewMatrix", "orvex_ViewProjectionMatrix", "orvex_ModelViewProjectionMatrix",
    "orvex_Viewport"};

constexpr const char* ENGINE_ATTRIB_NAMES[] = {
    "orvex_Position",       "orvex_TexCoord0",         "orvex_Normal",
    "orvex_Color",          "orvex_Instance_Position", "orvex_Instance_Rotation",
    "orvex_Instance_Scale", "orvex_Instance_Color",    "orvex_Instance_Misc"};

char* copy_text(const char* text, std::size_t length) {
  char* copy = new char[length + 1];
  std::memcpy(copy, text, length);
  copy[length] = 0;
  return copy;
}

char* copy_text(const char* text) { return text ? copy_text(text, std::strlen(text)) : nullptr; }

// A block of the same capacity, which is copied beside it.
char* copy_log(const char* log, unsigned int capacity) {
  if (!log) return nullptr;
  const std::size_t size = std::strlen(log) + 1;
  char* copy = new char[std::max<std::size_t>(size, capacity)]();
  std::memcpy(copy, log, size);
  return copy;
}

void replace_text(char*& target, char* text) {
  delete[] target;
  target = text;
}

// Fills a fixed text wholly, so that nothing of the old one stays behind the new one's end.
template <std::size_t SIZE>
void set_fixed_text(char (&target)[SIZE], const char* text) {
  const std::size_t length = strnlen(text, SIZE - 1);
  std::memmove(target, text, length);
  std::memset(target + length, 0, SIZE - length);
}

bool is_stage(GPU_SHADER_TYPE type) {
  return type >= 0 && type < static_cast<int>(GpuProgramData::NUM_STAGES);
}

// A log is replaced only by one that is longer than the block of the present one.
bool grow_log(char*& log, unsigned int& capacity, const char* text, unsigned int length) {
  if (!text || length == 0 || length <= capacity || length == ~0u) return false;
  char* block = new char[length + std::size_t{1}]();
  std::memcpy(block, text, strnlen(text, length));
  replace_text(log, block);
  capacity = length + 1;
  return true;
}

}  // namespace

// ---- life ------------------------------------------------------------------------------------

GpuProgramData::GpuProgramData()
    : uniform_caches_(new UniformCaches), uniform_index_(new UniformIndex) {
  init_data();
  init_uniforms();
}

GpuProgramData::GpuProgramData(const GpuProgramData& other)
    : uniform_caches_(new UniformCaches), uniform_index_(new UniformIndex) {
  copy_fields(other);
  copy_uniforms(other);
}

GpuProgramData& GpuProgramData::operator=(const GpuProgramData& other) {
  if (this == &other) return *this;
  copy_fields(other);
  copy_uniforms(other);
  return *this;
}

GpuProgramData::~GpuProgramData() {
  kill_uniforms();
  free_texts();
  delete uniform_index_;
  delete uniform_caches_;
}

void GpuProgramData::free_texts() {
  for (unsigned int i = 0; i < NUM_STAGES; ++i) {
    replace_text(shader_source[i], nullptr);
    replace_text(shader_info_log[i], nullptr);
    shader_info_log_capacity[i] = 0;
  }
  replace_text(info_log, nullptr);
  info_log_capacity = 0;
  for (char*& name : engine_uniform_names) replace_text(name, nullptr);
}

void GpuProgramData::init_data() {
  free_texts();
  std::memset(gpu_program_name, 0, sizeof(gpu_program_name));
  thread.update();
  active = false;
  program_id = 0;
  use_generic_vertex_attribs = false;
  generic_attribs_detection_needed = true;
  generic_attrib_names_binding_needed = true;
  attrib_group_1_dirty = attrib_group_2_dirty = true;
  valid = false;
  std::fill_n(shader_loaded, NUM_STAGES, false);
  std::fill_n(shader_id, NUM_STAGES, 0u);
  std::memset(d3d_entry_point_names, 0, sizeof(d3d_entry_point_names));
  std::fill_n(d3d_shaders, NUM_STAGES, nullptr);
  renderer_gpu_id = 0;
  gpu_program_id = -1;
  for (int i = 0; i < ENGINE_UNIFORM_COUNT; ++i) {
    set_engine_uniform_name(static_cast<ENGINE_UNIFORM>(i), ENGINE_UNIFORM_NAMES[i]);
  }
  init_default_vertex_attribs(true);
}

void GpuProgramData::copy_fields(const GpuProgramData& other) {
  std::memcpy(gpu_program_name, other.gpu_program_name, sizeof(gpu_program_name));
  thread = other.thread;
  active = other.active;
  program_id = other.program_id;
  use_generic_vertex_attribs = other.use_generic_vertex_attribs;
  generic_attribs_detection_needed = other.generic_attribs_detection_needed;
  generic_attrib_names_binding_needed = other.generic_attrib_names_binding_needed;
  linked = other.linked;
  attrib_locations_dirty = other.attrib_locations_dirty;
  attrib_group_1_dirty = other.attrib_group_1_dirty;
  attrib_group_2_dirty = other.attrib_group_2_dirty;
  valid = other.valid;
  for (unsigned int i = 0; i < NUM_STAGES; ++i) {
    shader_loaded[i] = other.shader_loaded[i];
    shader_id[i] = other.shader_id[i];
    replace_text(shader_source[i], copy_text(other.shader_source[i]));
    replace_text(shader_info_log[i],
                 copy_log(other.shader_info_log[i], other.shader_info_log_capacity[i]));
    shader_info_log_capacity[i] = other.shader_info_log_capacity[i];
    d3d_shaders[i] = other.d3d_shaders[i];
  }
  replace_text(info_log, copy_log(other.info_log, other.info_log_capacity));
  info_log_capacity = other.info_log_capacity;
  std::memcpy(d3d_entry_point_names, other.d3d_entry_point_names, sizeof(d3d_entry_point_names));
  renderer_gpu_id = other.renderer_gpu_id;
  for (int i = 0; i < ENGINE_UNIFORM_COUNT; ++i) {
    replace_text(engine_uniform_names[i], copy_text(other.engine_uniform_names[i]));
  }
  std::copy_n(other.vertex_attribs, MAX_VERTEX_ATTRIBS, vertex_attribs);
  gpu_program_id = other.gpu_program_id;
}

// ---- name and thread -------------------------------------------------------------------------

void GpuProgramData::set_gpu_program_name(const char* name) {
  if (!name || !*name) return;
  set_fixed_text(gpu_program_name, name);
}

void GpuProgramData::update_thread() { thread.update(); }

bool GpuProgramData::check_thread() const { return Thread() == thread; }

// ---- stages ----------------------------------------------------------------------------------

const char* GpuProgramData::shader_type_to_string(GPU_SHADER_TYPE type) {
  switch (type) {
    case GPU_SHADER_VERTEX:
      return "Vertex";
    case GPU_SHADER_PIXEL:
      return "Pixel";
    case GPU_SHADER_GEOMETRY:
      return "Geometry";
    case GPU_SHADER_TESS_CONTROL:
      return "Tessellation control/domain";
    case GPU_SHADER_TESS_EVAL:
      return "Tessellation evaluation/hull";
    case GPU_SHADER_COMPUTE:
      return "Tessellation compute";
    default:
      return "";
  }
}

const char* GpuProgramData::get_shader_source_code(GPU_SHADER_TYPE type) const {
  return is_stage(type) ? shader_source[type] : nullptr;
}

bool GpuProgramData::set_shader_source_code(GPU_SHADER_TYPE type, const char* text,
                                            unsigned int size) {
  if (!is_stage(type)) return false;
  replace_text(shader_source[type], text ? copy_text(text, strnlen(text, size)) : nullptr);
  return true;
}

const char* GpuProgramData::get_shader_info_log(GPU_SHADER_TYPE type) const {
  return is_stage(type) ? shader_info_log[type] : nullptr;
}

bool GpuProgramData::set_shader_info_log(GPU_SHADER_TYPE type, const char* text,
                                         unsigned int length) {
  if (!is_stage(type)) return false;
  return grow_log(shader_info_log[type], shader_info_log_capacity[type], text, length);
}

bool GpuProgramData::set_info_log(const char* text, unsigned int length) {
  return grow_log(info_log, info_log_capacity, text, length);
}

// ---- Direct3D --------------------------------------------------------------------------------

bool GpuProgramData::set_entry_point_name(GPU_SHADER_TYPE type, const char* name) {
  if (!is_stage(type) || !name) return false;
  set_fixed_text(d3d_entry_point_names[type], name);
  return true;
}

const char* GpuProgramData::get_entry_point_name(GPU_SHADER_TYPE type) const {
  if (!is_stage(type)) return nullptr;
  return *d3d_entry_point_names[type] ? d3d_entry_point_names[type] : "main";
}

bool GpuProgramData::d3d11_set_entry_point_name(GPU_SHADER_TYPE type, const char* name) {
  return set_entry_point_name(type, name);
}

const char* GpuProgramData::d3d11_get_entry_point_name(GPU_SHADER_TYPE type) const {
  return get_entry_point_name(type);
}

void* GpuProgramData::d3d11_get_shader_ptr(GPU_SHADER_TYPE type) const {
  return is_stage(type) ? d3d_shaders[type] : nullptr;
}

// ---- names of the engine uniforms ------------------------------------------------------------

void GpuProgramData::set_engine_uniform_name(ENGINE_UNIFORM which, const char* name) {
  if (which < 0 || which >= ENGINE_UNIFORM_COUNT || !name) return;
  replace_text(engine_uniform_names[which], copy_text(name));
  uniform_index_->engine_records[which].record = nullptr;
}

const char* GpuProgramData::get_engine_uniform_name(ENGINE_UNIFORM which) const {
  return which >= 0 && which < ENGINE_UNIFORM_COUNT ? engine_uniform_names[which] : nullptr;
}

#define ORV_ENGINE_UNIFORM_NAME(word, which)                         \
  void GpuProgramData::set_##word##_uniform_name(const char* name) { \
    set_engine_uniform_name(which, name);                            \
  }                                                                  \
  const char* GpuProgramData::get_##word##_uniform_name() const {    \
    return engine_uniform_names[which];                              \
  }

ORV_ENGINE_UNIFORM_NAME(model_matrix, ENGINE_UNIFORM_MODEL_MATRIX)
ORV_ENGINE_UNIFORM_NAME(view_matrix, ENGINE_UNIFORM_VIEW_MATRIX)
ORV_ENGINE_UNIFORM_NAME(projection_matrix, ENGINE_UNIFORM_PROJECTION_MATRIX)
ORV_ENGINE_UNIFORM_NAME(model_view_matrix, ENGINE_UNIFORM_MODEL_VIEW_MATRIX)
ORV_ENGINE_UNIFORM_NAME(view_projection_matrix, ENGINE_UNIFORM_VIEW_PROJECTION_MATRIX)
ORV_ENGINE_UNIFORM_NAME(model_view_projection_matrix, ENGINE_UNIFORM_MODEL_VIEW_PROJECTION_MATRIX)
ORV_ENGINE_UNIFORM_NAME(viewport, ENGINE_UNIFORM_VIEWPORT)

#undef ORV_ENGINE_UNIFORM_NAME

// ---- vertex attributes -----------------------------------------------------------------------

void GpuProgramData::init_default_vertex_attribs(bool named) {
  for (unsigned int i = 0; i < MAX_VERTEX_ATTRIBS; ++i) {
    char name[64];
    std::snprintf(name, sizeof(name), "%s%d", "orvex_Attrib", static_cast<int>(i));
    const bool has_engine_name = named && i < std::size(ENGINE_ATTRIB_NAMES);
    set_vertex_attrib(has_engine_name ? ENGINE_ATTRIB_NAMES[i] : name, i);
  }
}

void GpuProgramData::clear_vertex_attribs() {
  std::fill_n(vertex_attribs, MAX_VERTEX_ATTRIBS, GpuProgramVertexAttrib());
  linked = false;
  attrib_locations_dirty = true;
}

bool GpuProgramData::set_vertex_attrib(const char* name, unsigned int location) {
  if (location >= MAX_VERTEX_ATTRIBS || !name || !*name) return false;
  return set_vertex_attrib_name(location, name) &&
         set_vertex_attrib_location(location, static_cast<int>(location));
}

bool GpuProgramData::set_vertex_attrib_name(unsigned int slot, const char* name) {
  if (slot >= MAX_VERTEX_ATTRIBS || !name) return false;
  set_fixed_text(vertex_attribs[slot].name, name);
  linked = false;
  attrib_locations_dirty = true;
  return true;
}

bool GpuProgramData::set_vertex_attrib_location(unsigned int slot, int location) {
  if (slot >= MAX_VERTEX_ATTRIBS) return false;
  vertex_attribs[slot].location = location;
  linked = false;
  attrib_locations_dirty = true;
  return true;
}

const char* GpuProgramData::get_vertex_attrib_name(unsigned int slot) const {
  return slot < MAX_VERTEX_ATTRIBS ? vertex_attribs[slot].name : nullptr;
}

int GpuProgramData::get_vertex_attrib_location(unsigned int slot) const {
  return slot < MAX_VERTEX_ATTRIBS ? vertex_attribs[slot].location : -1;
}

}  // namespace orv
