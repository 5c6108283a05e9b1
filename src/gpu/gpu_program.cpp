#include <orv/gpu/gpu_program.h>

#include <orv/core/log_mgr.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/math/mat4.h>
#include <orv/math/vec4.h>
#include <orv/render/renderer.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "core/read_file.h"
#include "gpu/shader_sections.h"

namespace orv {

namespace {

// Labels of messages, by stage.
const char* stage_label(GPU_SHADER_TYPE type) {
  static constexpr const char* LABELS[GpuProgramData::NUM_STAGES] = {
      "Vertex",  "Pixel", "Geometry",       "Tessellation control", "Tessellation evaluation",
      "Compute", "",      "Direct3D effect"};
  return type >= 0 && type < static_cast<int>(std::size(LABELS)) ? LABELS[type] : "";
}

// The whole file with a terminating zero.
bool read_text_file(const char* path, std::vector<unsigned char>& text) {
  const char* fault = nullptr;
  if (!detail::read_whole_file(path, text, &fault)) {
    LogMgr::get().tracef_debug("GPU program file %s cannot be read: %s", path ? path : "(null)",
                               fault);
    return false;
  }
  text.push_back(0);
  return true;
}

// Loads the sections of a text. `kind` and `name` tell in the log what it is.
bool load_sections(GpuProgram& program, Renderer* renderer, std::string& text, const char* kind,
                   const char* name) {
  const detail::ShaderSections sections = detail::split_shader_sections(text);
  if (const char* missing = sections.find_missing()) {
    LogMgr::get().tracef_debug("%s %s: no section \"%s\"", kind, name, missing);
    return false;
  }
  for (const detail::ShaderSection& section : sections.sections) {
    if (!section.text) continue;
    const auto length = static_cast<unsigned int>(std::strlen(section.text));
    if (length == 0) {
      LogMgr::get().tracef_debug("%s %s: section of the %s stage is empty", kind, name,
                                 stage_label(section.type));
    }
    if (!program.shader_load_from_memory(renderer, section.type, section.text, length)) {
      return false;
    }
  }
  return true;
}

}  // namespace

struct GpuProgram::Text {
  std::string text;
};

// ---- life ------------------------------------------------------------------------------------

GpuProgram::GpuProgram() : data_(new GpuProgramData), shaders_info_log_(new Text) {
  set_type(NODE_TYPE_GPU_PROGRAM);
  data_->set_gpu_program_id(get_id());
  char name[64];
  std::snprintf(name, sizeof(name), "GPU_program_%d", get_id());
  GpuProgram::set_name(name);
}

GpuProgram::~GpuProgram() {
  delete shaders_info_log_;
  delete data_;
}

bool GpuProgram::_cleanup(Renderer* renderer) {
  return renderer && renderer->gpu_program_unload(data_);
}

void GpuProgram::set_name(const char* name) {
  Resource::set_name(name);
  data_->set_gpu_program_name(name);
}

int GpuProgram::get_renderer_id() { return data_->renderer_gpu_id; }

// ---- loading ---------------------------------------------------------------------------------

bool GpuProgram::load_from_file(Renderer* renderer, const char* path) {
  std::vector<unsigned char> bytes;
  if (!read_text_file(path, bytes)) return false;
  std::string text(reinterpret_cast<const char*>(bytes.data()));
  return load_sections(*this, renderer, text, "shader file", path);
}

bool GpuProgram::load_from_memory(Renderer* renderer, const char* text, unsigned int size) {
  if (!text || size == 0) return false;
  std::string buffer(text, strnlen(text, size));
  return load_sections(*this, renderer, buffer, "GPU program", data_->get_gpu_program_name());
}

bool GpuProgram::shader_load_from_file(Renderer* renderer, GPU_SHADER_TYPE type, const char* path) {
  std::vector<unsigned char> text;
  return read_text_file(path, text) &&
         shader_load_from_memory(renderer, type, reinterpret_cast<const char*>(text.data()),
                                 static_cast<unsigned int>(text.size()));
}

bool GpuProgram::shader_load_from_memory(Renderer* renderer, GPU_SHADER_TYPE type, const char* text,
                                         unsigned int size) {
  if (!renderer || !*stage_label(type)) return false;
  const bool loaded = renderer->gpu_shader_load(data_, type, text, size);
  data_->shader_loaded[type] = loaded;
  if (loaded) {
    data_->set_shader_source_code(type, text, size);
    return true;
  }
  const char* log = data_->get_shader_info_log(type);
  if (log && *log) {
    LogMgr::get().tracef_warning("GPU program %s - %s shader info log: %s",
                                 data_->get_gpu_program_name(), stage_label(type), log);
  }
  return false;
}

bool GpuProgram::spirv_shader_module_load_from_file(Renderer* renderer, GPU_SHADER_TYPE type,
                                                    const char* path) {
  std::vector<unsigned char> module;
  const char* fault = nullptr;
  if (!detail::read_whole_file(path, module, &fault)) {
    LogMgr::get().tracef_debug("SPIR-V file %s cannot be read: %s", path ? path : "(null)", fault);
    return false;
  }
  return spirv_shader_module_load_from_memory(renderer, type, module.data(),
                                              static_cast<unsigned int>(module.size()));
}

bool GpuProgram::spirv_shader_module_load_from_memory(Renderer* renderer, GPU_SHADER_TYPE type,
                                                      const void* module, unsigned int) {
  if (!renderer || !module) return false;
  LogMgr::get().tracef_error("GPU program %s - %s shader error.", data_->get_gpu_program_name(),
                             stage_label(type));
  return false;
}

bool GpuProgram::d3d_load_from_file(Renderer*, GPU_SHADER_TYPE type, const char* path) {
  LogMgr::get().tracef_debug("GPU program %s - no Direct3D compiler for %s (%s)",
                             data_->get_gpu_program_name(), path ? path : "(null)",
                             stage_label(type));
  return false;
}

bool GpuProgram::d3d_shader_load_from_memory(Renderer*, GPU_SHADER_TYPE type, const char*,
                                             unsigned int) {
  LogMgr::get().tracef_debug("GPU program %s - no Direct3D compiler for a shader (%s)",
                             data_->get_gpu_program_name(), stage_label(type));
  return false;
}

// ---- use -------------------------------------------------------------------------------------

bool GpuProgram::bind(Renderer* renderer) { return renderer && renderer->gpu_program_bind(data_); }

bool GpuProgram::unbind(Renderer* renderer) {
  return renderer && renderer->gpu_program_unbind(data_);
}

bool GpuProgram::activate(Renderer* renderer) {
  return renderer && renderer->gpu_program_use(data_);
}

bool GpuProgram::deactivate(Renderer* renderer) {
  return renderer && renderer->gpu_program_unuse(data_);
}

bool GpuProgram::bind_uniforms(Renderer* renderer) {
  return renderer && renderer->gpu_program_apply_uniforms(data_);
}

bool GpuProgram::run_compute(Renderer* renderer, unsigned int x, unsigned int y, unsigned int z) {
  return renderer && renderer->gpu_program_dispatch_compute(data_, x, y, z);
}

bool GpuProgram::need_bind_uniforms() { return data_->need_bind_uniforms(); }

// ---- state -----------------------------------------------------------------------------------

bool GpuProgram::is_valid() const { return data_->is_valid(); }

void GpuProgram::set_valid_state(bool state) { data_->set_valid_state(state); }

bool GpuProgram::is_linking_needed() const { return data_->is_linking_needed(); }

bool GpuProgram::get_use_generic_vertex_attribs_state() const {
  return data_->get_use_generic_vertex_attribs_state();
}

const char* GpuProgram::get_shader_source_code(GPU_SHADER_TYPE type) const {
  return data_->get_shader_source_code(type);
}

const char* GpuProgram::get_shader_info_log(GPU_SHADER_TYPE type) const {
  return data_->get_shader_info_log(type);
}

const char* GpuProgram::get_info_log() const { return data_->get_info_log(); }

const char* GpuProgram::get_shaders_info_log() {
  std::string& text = shaders_info_log_->text;
  text.clear();
  for (unsigned int i = 0; i < GpuProgramData::NUM_STAGES; ++i) {
    const auto type = static_cast<GPU_SHADER_TYPE>(i);
    const char* log = data_->get_shader_info_log(type);
    if (!log || !*log) continue;
    text.append("\n").append(stage_label(type)).append(" shader info log: ").append(log);
  }
  return text.c_str();
}

bool GpuProgram::set_entry_point_name(GPU_SHADER_TYPE type, const char* name) {
  return data_->set_entry_point_name(type, name);
}

const char* GpuProgram::get_entry_point_name(GPU_SHADER_TYPE type) const {
  return data_->get_entry_point_name(type);
}

bool GpuProgram::d3d11_set_entry_point_name(GPU_SHADER_TYPE type, const char* name) {
  return data_->d3d11_set_entry_point_name(type, name);
}

const char* GpuProgram::d3d11_get_entry_point_name(GPU_SHADER_TYPE type) const {
  return data_->d3d11_get_entry_point_name(type);
}

void* GpuProgram::d3d11_get_shader_ptr(GPU_SHADER_TYPE type) const {
  return data_->d3d11_get_shader_ptr(type);
}

// ---- names of engine uniforms and vertex attributes ------------------------------------------

#define ORV_FORWARD_UNIFORM_NAME(word)                           \
  void GpuProgram::set_##word##_uniform_name(const char* name) { \
    data_->set_##word##_uniform_name(name);                      \
  }                                                              \
  const char* GpuProgram::get_##word##_uniform_name() const {    \
    return data_->get_##word##_uniform_name();                   \
  }

ORV_FORWARD_UNIFORM_NAME(model_matrix)
ORV_FORWARD_UNIFORM_NAME(view_matrix)
ORV_FORWARD_UNIFORM_NAME(projection_matrix)
ORV_FORWARD_UNIFORM_NAME(model_view_matrix)
ORV_FORWARD_UNIFORM_NAME(view_projection_matrix)
ORV_FORWARD_UNIFORM_NAME(model_view_projection_matrix)
ORV_FORWARD_UNIFORM_NAME(viewport)

#undef ORV_FORWARD_UNIFORM_NAME

void GpuProgram::init_default_vertex_attribs(bool named) {
  data_->init_default_vertex_attribs(named);
}

void GpuProgram::clear_vertex_attribs() { data_->clear_vertex_attribs(); }

bool GpuProgram::set_vertex_attrib(const char* name, unsigned int location) {
  return data_->set_vertex_attrib(name, location);
}

bool GpuProgram::set_vertex_attrib_name(unsigned int slot, const char* name) {
  return data_->set_vertex_attrib_name(slot, name);
}

bool GpuProgram::set_vertex_attrib_location(unsigned int slot, int location) {
  return data_->set_vertex_attrib_location(slot, location);
}

const char* GpuProgram::get_vertex_attrib_name(unsigned int slot) const {
  return data_->get_vertex_attrib_name(slot);
}

int GpuProgram::get_vertex_attrib_location(unsigned int slot) const {
  return data_->get_vertex_attrib_location(slot);
}

// ---- questions to the renderer ---------------------------------------------------------------

int GpuProgram::get_uniform_location(Renderer* renderer, const char* name) {
  return renderer ? renderer->gpu_program_get_uniform_location(data_, name) : -1;
}

int GpuProgram::get_vertex_attrib_location(Renderer* renderer, const char* name) {
  return renderer ? renderer->gpu_program_get_vertex_attrib_location(data_, name) : -1;
}

unsigned int GpuProgram::get_interface_block_index(Renderer* renderer, const char* kind,
                                                   const char* name) {
  constexpr unsigned int NONE = 0xFFFFFFFFu;
  if (!renderer || !kind || !name) return NONE;
  if (std::strstr(kind, "UNIFORM")) {
    return renderer->gpu_program_get_uniform_block_index(data_, name);
  }
  if (std::strstr(kind, "SHADER_STORAGE")) {
    return renderer->gpu_program_get_shader_storage_block_index(data_, name);
  }
  return NONE;
}

int GpuProgram::get_uniform_block_size(Renderer* renderer, const char* name, unsigned int index) {
  return renderer ? renderer->gpu_program_get_uniform_block_size(data_, name, index) : 0;
}

bool GpuProgram::set_uniform_block_binding(Renderer* renderer, unsigned int block,
                                           unsigned int binding) {
  return renderer && renderer->gpu_program_set_uniform_block_binding(data_, block, binding);
}

bool GpuProgram::set_shader_storage_block_binding(Renderer* renderer, unsigned int block,
                                                  unsigned int binding) {
  return renderer && renderer->gpu_program_set_shader_storage_block_binding(data_, block, binding);
}

bool GpuProgram::get_uniform_size_and_offset(Renderer* renderer, const char** names,
                                             unsigned int count, int* sizes, int* offsets) {
  return renderer &&
         renderer->gpu_program_get_uniform_size_and_offset(data_, names, count, sizes, offsets);
}

bool GpuProgram::get_uniform_array_stride(Renderer* renderer, const char** names,
                                          unsigned int count, int* strides) {
  return renderer && renderer->gpu_program_get_uniform_array_stride(data_, names, count, strides);
}

}  // namespace orv
