// Programs: compiling, attaching, linking, attribute locations and making one current.
#include <orv/core/log_mgr.h>
#include <orv/gpu/gpu_program_data.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "render/opengl/gl_draw_enums.h"
#include "render/opengl/renderer_opengl.h"

namespace orv {

using namespace detail;

namespace {

constexpr int NUM_GL_STAGES = 6;
constexpr GLsizei ACTIVE_NAME_SIZE = 256;
constexpr GLint MAX_LOG_SIZE = 1 << 20;
constexpr char ATTRIB_PREFIX[] = "orvex_Attrib";

/// The number behind the engine's prefix in an attribute name; -1 without one.
int attrib_number(const char* name) {
  const char* found = std::strstr(name, ATTRIB_PREFIX);
  if (!found) return -1;
  const char* digits = found + sizeof(ATTRIB_PREFIX) - 1;
  if (*digits < '0' || *digits > '9') return -1;
  const long number = std::strtol(digits, nullptr, 10);
  return number < 1024 ? static_cast<int>(number) : -1;
}

/// A fault of which the driver tells nothing.
void report_silent_fault(const GpuProgramData& program, const char* fault) {
  LogMgr::get().tracef_debug("GPU program (%s): %s, and the driver does not say why",
                             program.gpu_program_name, fault);
}

/// Slot that holds this name with a location, or null.
const GpuProgramVertexAttrib* find_slot(const GpuProgramData& program, const char* name) {
  for (const GpuProgramVertexAttrib& slot : program.vertex_attribs) {
    if (slot.location >= 0 && slot.name[0] != 0 && std::strcmp(slot.name, name) == 0) return &slot;
  }
  return nullptr;
}

}  // namespace

// ---- logs ----

namespace {

// Shaders and programs have functions of their own for the same thing.
template <class Ask, class Read>
void read_log(unsigned int id, Ask ask, Read read, std::string* log) {
  log->clear();
  GLint size = 0;
  ask(id, GL_INFO_LOG_LENGTH, &size);
  size = std::min(size, MAX_LOG_SIZE);
  if (size <= 0) return;
  log->resize(static_cast<std::size_t>(size));
  read(id, size, nullptr, log->data());
  log->resize(strnlen(log->data(), log->size()));
}

}  // namespace

const std::string& RendererOpenGL::read_shader_log(unsigned int shader) {
  read_log(shader, gl_.glGetShaderiv, gl_.glGetShaderInfoLog, &info_log_);
  return info_log_;
}

const std::string& RendererOpenGL::read_program_log(unsigned int id) {
  read_log(id, gl_.glGetProgramiv, gl_.glGetProgramInfoLog, &info_log_);
  return info_log_;
}

const char* RendererOpenGL::gpu_program_get_shader_log(GpuProgramData* program,
                                                       GPU_SHADER_TYPE type) {
  if (!program || gl_shader_stage(type) == 0 || !gl_.glGetShaderInfoLog) return nullptr;
  const unsigned int shader = program->shader_id[type];
  info_log_.clear();
  return shader != 0 ? read_shader_log(shader).c_str() : info_log_.c_str();
}

const char* RendererOpenGL::gpu_program_get_program_log(GpuProgramData* program) {
  if (!program || !gl_.glGetProgramInfoLog) return nullptr;
  info_log_.clear();
  return program->program_id != 0 ? read_program_log(program->program_id).c_str()
                                  : info_log_.c_str();
}

// ---- program objects ----

bool RendererOpenGL::create_program_object(GpuProgramData* program) {
  program->program_id = gl_.glCreateProgram();
  program->update_thread();
  program->renderer_gpu_id = getid();
  reset_program_links(program);
  if (program->program_id != 0) return true;
  LogMgr::get().tracef_debug("GPU program (%s): the driver gives no program object",
                             program->gpu_program_name);
  return false;
}

void RendererOpenGL::reset_program_links(GpuProgramData* program) {
  program->_clear_all_uniform_caches();
  program->linked = false;
  program->generic_attribs_detection_needed = true;
  program->generic_attrib_names_binding_needed = true;
  program->attrib_locations_dirty = true;
  program->attrib_group_1_dirty = true;
  program->attrib_group_2_dirty = true;
}

void RendererOpenGL::delete_program_object(GpuProgramData* program) {
  const auto failed = failed_shaders_.find(program->program_id);
  if (failed != failed_shaders_.end()) {
    for (const unsigned int shader : failed->second) gl_.glDeleteShader(shader);
    failed_shaders_.erase(failed);
  }
  // A current program would live on, and the record may not.
  if (current_program_ == program) gpu_program_unbind(program);
  gl_.glDeleteProgram(program->program_id);
  program->program_id = 0;
}

bool RendererOpenGL::gpu_program_attach_shaders(GpuProgramData* program) {
  if (!program || lacks(gl_.glCreateProgram, "glCreateProgram")) return false;
  if (program->program_id != 0) delete_program_object(program);
  if (!create_program_object(program)) return false;
  for (int stage = 0; stage < NUM_GL_STAGES; ++stage) {
    if (program->shader_id[stage] != 0) {
      gl_.glAttachShader(program->program_id, program->shader_id[stage]);
    }
  }
  return true;
}

bool RendererOpenGL::gpu_program_unload(GpuProgramData* program) {
  if (!program || program->program_id == 0 || !gl_.glDeleteProgram) return false;
  const unsigned int id = program->program_id;
  for (unsigned int& shader : program->shader_id) {
    if (shader == 0) continue;
    gl_.glDetachShader(id, shader);
    gl_.glDeleteShader(shader);
    shader = 0;
  }
  delete_program_object(program);
  program->linked = false;
  LogMgr::get().tracef_debug("GPU program (%s / %d / %d) unloaded from GPU memory",
                             program->gpu_program_name, program->gpu_program_id,
                             static_cast<int>(id));
  return true;
}

// ---- shaders ----

unsigned int RendererOpenGL::compile_shader(GPU_SHADER_TYPE type, const char* text,
                                            unsigned int size, bool* compiled) {
  const GLuint shader = gl_.glCreateShader(gl_shader_stage(type));
  *compiled = false;
  if (shader == 0) {
    LogMgr::get().trace_debug("OpenGL renderer - the driver gives no shader object");
    return 0;
  }
  const auto length = static_cast<GLint>(std::min<std::size_t>(strnlen(text, size), 0x7FFFFFFF));
  gl_.glShaderSource(shader, 1, &text, &length);
  gl_.glCompileShader(shader);
  GLint status = GL_FALSE;
  gl_.glGetShaderiv(shader, GL_COMPILE_STATUS, &status);
  *compiled = status != GL_FALSE;
  return shader;
}

bool RendererOpenGL::gpu_shader_load(GpuProgramData* program, GPU_SHADER_TYPE type,
                                     const char* text, unsigned int size) {
  if (!program || !text || size == 0 || gl_shader_stage(type) == 0 ||
      lacks(gl_.glCreateShader, "glCreateShader")) {
    return false;
  }
  if (!gl_.glIsProgram(program->program_id)) {
    // What the record still names went with its context.
    failed_shaders_.erase(program->program_id);
    std::fill(std::begin(program->shader_id), std::end(program->shader_id), 0u);
    if (!create_program_object(program)) return false;
  }
  if (program->shader_id[type] != 0) {
    gl_.glDetachShader(program->program_id, program->shader_id[type]);
    gl_.glDeleteShader(program->shader_id[type]);
    program->linked = false;
  }
  bool compiled = false;
  program->shader_id[type] = compile_shader(type, text, size, &compiled);
  if (program->shader_id[type] == 0) return false;
  if (compiled) gl_.glAttachShader(program->program_id, program->shader_id[type]);
  const std::string& log = read_shader_log(program->shader_id[type]);
  if (!log.empty()) {
    program->set_shader_info_log(type, log.c_str(), static_cast<unsigned int>(log.size()));
  }
  if (compiled) {
    program->linked = false;
  } else {
    if (log.empty()) report_silent_fault(*program, "a shader does not compile");
    failed_shaders_[program->program_id].push_back(program->shader_id[type]);
    program->shader_id[type] = 0;
  }
  return compiled;
}

bool RendererOpenGL::gpu_shader_load_v2(GpuProgramData* program, GPU_SHADER_TYPE type,
                                        const char* text, unsigned int size) {
  return gpu_shader_load(program, type, text, size);
}

bool RendererOpenGL::gpu_shader_check_compile(GPU_SHADER_TYPE type, const char* text, char* log,
                                              unsigned int log_size) {
  if (!text || gl_shader_stage(type) == 0 || lacks(gl_.glCreateShader, "glCreateShader"))
    return false;
  bool compiled = false;
  const unsigned int shader = compile_shader(type, text, static_cast<unsigned int>(-1), &compiled);
  if (shader == 0) return false;
  if (log && log_size > 0) log[0] = 0;
  if (!compiled) {
    const std::string& message = read_shader_log(shader);
    LogMgr::get().tracef_warning("GPU shader compilation info log - %s", message.c_str());
    if (log && log_size > 0) {
      const std::size_t length = std::min<std::size_t>(message.size(), log_size - 1u);
      std::memcpy(log, message.data(), length);
      log[length] = 0;
    }
  }
  gl_.glDeleteShader(shader);
  return compiled;
}

bool RendererOpenGL::gpu_shader_reload(GpuProgramData* program, GPU_SHADER_TYPE type,
                                       const char* text, unsigned int size) {
  if (!program || !text || size == 0 || gl_shader_stage(type) == 0 ||
      lacks(gl_.glCreateShader, "glCreateShader")) {
    return false;
  }
  bool compiled = false;
  const unsigned int shader = compile_shader(type, text, size, &compiled);
  if (shader == 0) return false;
  if (!compiled) {
    const std::string& log = read_shader_log(shader);
    program->set_shader_info_log(type, log.c_str(), static_cast<unsigned int>(log.size()));
    LogMgr::get().tracef_debug(
        "GPU program (%s) keeps its shader, the new one does not compile: %s",
        program->gpu_program_name, log.c_str());
    gl_.glDeleteShader(shader);
    return false;
  }
  if (program->shader_id[type] != 0) {
    if (program->program_id != 0) {
      gl_.glDetachShader(program->program_id, program->shader_id[type]);
    }
    gl_.glDeleteShader(program->shader_id[type]);
  }
  program->shader_id[type] = shader;
  return gpu_program_attach_shaders(program);
}

bool RendererOpenGL::set_max_shader_compiler_threads(unsigned int count) {
  if (lacks(gl_.glMaxShaderCompilerThreadsARB, "glMaxShaderCompilerThreadsARB")) return false;
  gl_.glMaxShaderCompilerThreadsARB(count);
  return true;
}

// ---- linking ----

bool RendererOpenGL::gpu_program_link(GpuProgramData* program) {
  if (!program) return false;
  if (program->linked) return true;
  if (program->program_id == 0 || lacks(gl_.glLinkProgram, "glLinkProgram")) return false;
  gl_.glLinkProgram(program->program_id);
  GLint status = GL_FALSE;
  gl_.glGetProgramiv(program->program_id, GL_LINK_STATUS, &status);
  if (status != GL_FALSE) {
    program->linked = true;
    // Linking zeroes all uniforms and may move them.
    program->_clear_all_uniform_caches();
    program->need_bind_uniforms();
  }
  const std::string& log = read_program_log(program->program_id);
  if (!log.empty()) {
    program->set_info_log(log.c_str(), static_cast<unsigned int>(log.size()));
    LogMgr::get().tracef_warning("GPU program (%s) linking info log - %s",
                                 program->gpu_program_name, log.c_str());
  } else if (!program->linked) {
    report_silent_fault(*program, "it does not link");
  }
  return program->linked;
}

bool RendererOpenGL::has_link(const GpuProgramData* program) const {
  if (!program || program->program_id == 0 || !gl_.glGetProgramiv) return false;
  if (program->linked) return true;
  // Asked for a new link, a program still answers for the old one.
  GLint status = GL_FALSE;
  gl_.glGetProgramiv(program->program_id, GL_LINK_STATUS, &status);
  return status != GL_FALSE;
}

bool RendererOpenGL::gpu_program_validate(GpuProgramData* program) {
  if (!program || program->program_id == 0 || lacks(gl_.glValidateProgram, "glValidateProgram"))
    return false;
  gl_.glValidateProgram(program->program_id);
  GLint status = GL_FALSE;
  gl_.glGetProgramiv(program->program_id, GL_VALIDATE_STATUS, &status);
  if (status != 1) {
    LogMgr::get().tracef_debug("GPU program (%s) is not valid in the present state",
                               program->gpu_program_name);
  }
  return status == 1;
}

// ---- attribute locations ----

int RendererOpenGL::gpu_program_get_vertex_attrib_location(GpuProgramData* program,
                                                           const char* name) {
  if (!name || !has_link(program)) return -1;
  return gl_.glGetAttribLocation(program->program_id, name);
}

bool RendererOpenGL::gpu_program_bind_vertex_attrib_location(GpuProgramData* program,
                                                             const char* name, unsigned int index) {
  if (gpu_program_get_vertex_attrib_location(program, name) < 0) return false;
  if (index >= static_cast<unsigned int>(max_vertex_attribs_)) return false;
  gl_.glBindAttribLocation(program->program_id, index, name);
  program->linked = false;
  return true;
}

bool RendererOpenGL::bind_attrib_group(GpuProgramData* program, int first, int last) {
  for (int i = first; i <= last; ++i) {
    const GpuProgramVertexAttrib& slot = program->vertex_attribs[i];
    if (slot.name[0] == 0 || slot.location < 0) continue;
    const int location = gpu_program_get_vertex_attrib_location(program, slot.name);
    // A location that is right already needs no new link, which would cost the uniforms.
    if (location < 0 || location == slot.location) continue;
    gpu_program_bind_vertex_attrib_location(program, slot.name,
                                            static_cast<unsigned int>(slot.location));
  }
  return true;
}

bool RendererOpenGL::gpu_program_bind_vertex_attrib_locations(GpuProgramData* program) {
  if (!program) return false;
  if (!program->attrib_group_1_dirty || !has_link(program)) return true;
  program->attrib_group_1_dirty = false;
  return bind_attrib_group(program, 0, 4);
}

bool RendererOpenGL::gpu_program_bind_vertex_attrib_locations_v2(GpuProgramData* program) {
  if (!program) return false;
  if (!program->attrib_group_2_dirty || !has_link(program)) return true;
  program->attrib_group_2_dirty = false;
  return bind_attrib_group(program, 4, 8);
}

void RendererOpenGL::bind_attrib_slots(GpuProgramData* program) {
  for (const GpuProgramVertexAttrib& slot : program->vertex_attribs) {
    if (slot.name[0] == 0 || slot.location < 0 || slot.location >= max_vertex_attribs_) continue;
    const int location = gl_.glGetAttribLocation(program->program_id, slot.name);
    if (location < 0 || location == slot.location) continue;
    gl_.glBindAttribLocation(program->program_id, static_cast<GLuint>(slot.location), slot.name);
    program->linked = false;
  }
}

void RendererOpenGL::detect_generic_attribs(GpuProgramData* program) {
  program->use_generic_vertex_attribs = true;
  GLint count = 0;
  gl_.glGetProgramiv(program->program_id, GL_ACTIVE_ATTRIBUTES, &count);
  for (GLint i = 0; i < count; ++i) {
    char name[ACTIVE_NAME_SIZE] = {};
    GLint size = 0;
    GLenum type = 0;
    gl_.glGetActiveAttrib(program->program_id, static_cast<GLuint>(i), ACTIVE_NAME_SIZE - 1,
                          nullptr, &size, &type, name);
    if (std::strncmp(name, "gl_Vertex", 63) == 0) program->use_generic_vertex_attribs = false;
  }
  program->generic_attribs_detection_needed = false;
}

void RendererOpenGL::bind_numbered_attribs(GpuProgramData* program, bool keep_slots) {
  struct ActiveAttrib {
    std::string name;
    int wanted;  ///< location it is to have
    bool numbered;
  };
  GLint count = 0;
  gl_.glGetProgramiv(program->program_id, GL_ACTIVE_ATTRIBUTES, &count);
  std::vector<ActiveAttrib> attribs;
  for (GLint i = 0; i < count; ++i) {
    char name[ACTIVE_NAME_SIZE] = {};
    GLint size = 0;
    GLenum type = 0;
    gl_.glGetActiveAttrib(program->program_id, static_cast<GLuint>(i), ACTIVE_NAME_SIZE - 1,
                          nullptr, &size, &type, name);
    const GpuProgramVertexAttrib* slot = keep_slots ? find_slot(*program, name) : nullptr;
    const int number = slot ? -1 : attrib_number(name);
    const bool numbered = number >= 0 && number < max_vertex_attribs_;
    const int present = gl_.glGetAttribLocation(program->program_id, name);
    if (present < 0) continue;
    attribs.push_back({name, slot ? slot->location : numbered ? number : present, numbered});
  }
  for (const ActiveAttrib& attrib : attribs) {
    if (!attrib.numbered) continue;
    const bool taken = std::any_of(attribs.begin(), attribs.end(), [&](const ActiveAttrib& other) {
      return !other.numbered && other.wanted == attrib.wanted;
    });
    if (keep_slots && taken) continue;
    if (gl_.glGetAttribLocation(program->program_id, attrib.name.c_str()) == attrib.wanted) {
      continue;
    }
    gl_.glBindAttribLocation(program->program_id, static_cast<GLuint>(attrib.wanted),
                             attrib.name.c_str());
    program->linked = false;
  }
}

// ---- making a program current ----

bool RendererOpenGL::gpu_program_bind(GpuProgramData* program) {
  if (!program) return gpu_program_unbind(nullptr);
  if (!gl_.glUseProgram || !gpu_program_link(program)) return false;
  if (program->generic_attribs_detection_needed) detect_generic_attribs(program);
  if (program->attrib_locations_dirty) {
    bind_attrib_slots(program);
    bind_numbered_attribs(program, true);
    program->attrib_locations_dirty = false;
  }
  if (!gpu_program_link(program)) return false;
  make_program_current(program);
  return true;
}

bool RendererOpenGL::gpu_program_use(GpuProgramData* program) {
  if (!program) return gpu_program_unbind(nullptr);
  if (!gl_.glUseProgram || !gpu_program_link(program)) return false;
  if (program->generic_attribs_detection_needed) detect_generic_attribs(program);
  if (program->generic_attrib_names_binding_needed) {
    core_.glGetIntegerv(GL_MAX_VERTEX_ATTRIBS, &max_vertex_attribs_);
    bind_numbered_attribs(program, false);
    program->generic_attrib_names_binding_needed = false;
  }
  if (!gpu_program_link(program)) return false;
  program->active = true;
  make_program_current(program);
  return true;
}

void RendererOpenGL::make_program_current(GpuProgramData* program) {
  current_program_id_ = program->program_id;
  current_program_ = program;
  gl_.glUseProgram(program->program_id);
}

bool RendererOpenGL::gpu_program_unbind(GpuProgramData*) {
  current_program_id_ = 0;
  current_program_ = nullptr;
  if (gl_.glUseProgram) gl_.glUseProgram(0);
  return true;
}

bool RendererOpenGL::gpu_program_unuse(GpuProgramData* program) {
  if (program) program->active = false;
  return gpu_program_unbind(program);
}

bool RendererOpenGL::gpu_program_use_id(unsigned int id) {
  if (!gl_.glUseProgram) return false;
  current_program_id_ = id;
  current_program_ = nullptr;
  gl_.glUseProgram(id);
  return true;
}

bool RendererOpenGL::gpu_program_unuse_id() { return gpu_program_unbind(nullptr); }

GpuProgramData* RendererOpenGL::get_current_gpu_program() { return current_program_; }

bool RendererOpenGL::gpu_program_dispatch_compute(GpuProgramData* program, unsigned int x,
                                                  unsigned int y, unsigned int z) {
  if (!program) return false;
  gpu_program_apply_uniforms(program);
  if (lacks(gl_.glDispatchCompute, "glDispatchCompute")) return false;
  gl_.glDispatchCompute(x, y, z);
  return true;
}

}  // namespace orv
