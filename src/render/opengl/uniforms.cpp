// Uniforms: single values at once, and the flush of those kept in the program's record.
#include <orv/gpu/gpu_program_data.h>
#include <orv/gpu/gpu_program_uniform.h>

#include <algorithm>
#include <cstdio>

#include "render/opengl/gl_draw_enums.h"
#include "render/opengl/renderer_opengl.h"

namespace orv {

using namespace detail;

namespace {

static_assert(sizeof(GLuint64) == sizeof(unsigned long long));

const GLuint64* as_handles(const unsigned long long* values) {
  return reinterpret_cast<const GLuint64*>(values);
}

}  // namespace

// ---- locations ----

int RendererOpenGL::gpu_program_get_uniform_location(GpuProgramData* program, const char* name) {
  if (!program || !name) return -1;
  int location = program->_get_uniform_location_from_cache(name);
  if (location >= 0 || !has_link(program)) return location;
  location = gl_.glGetUniformLocation(program->program_id, name);
  program->_update_uniform_location_cache(name, location);
  return location;
}

bool RendererOpenGL::gpu_program_cache_uniform_location(GpuProgramData* program) {
  if (!program) return false;
  if (program->_are_uniforms_optimized()) return true;
  if (!has_link(program)) return false;
  for (unsigned int i = 0; i < program->get_num_uniforms(); ++i) {
    GpuProgramUniform* uniform = program->uniforms ? program->uniforms[i] : nullptr;
    if (!uniform) continue;
    int location = program->_get_uniform_location_from_cache(uniform->name);
    if (location < 0) location = gl_.glGetUniformLocation(program->program_id, uniform->name);
    if (location >= 0) program->_update_uniform_location_cache(uniform->name, location);
    uniform->dirty = location >= 0;
    uniform->location = location;
  }
  program->_uniforms_optimization_ok();
  return true;
}

// ---- single values ----
//
// One body for each shape of setter. A function that the driver lacks is passed over, and so is a
// name that the program lacks.

#define ORV_LOCATION_OF(name)                                           \
  if (!program || !(name)) return false;                                \
  const int location = gpu_program_get_uniform_location(program, name); \
  if (location < 0) return true

#define ORV_UNIFORM(suffix, parameters, arguments)                                                 \
  bool RendererOpenGL::gpu_program_set_uniform_##suffix(GpuProgramData* program, const char* name, \
                                                        ORV_EXPAND parameters) {                   \
    ORV_LOCATION_OF(name);                                                                         \
    if (gl_.glUniform##suffix) gl_.glUniform##suffix(location, ORV_EXPAND arguments);              \
    return true;                                                                                   \
  }

#define ORV_UNIFORM_ARRAY(suffix, type)                                                            \
  bool RendererOpenGL::gpu_program_set_uniform_##suffix(GpuProgramData* program, const char* name, \
                                                        unsigned int count, const type* values) {  \
    if (!values) return false;                                                                     \
    ORV_LOCATION_OF(name);                                                                         \
    if (gl_.glUniform##suffix) {                                                                   \
      gl_.glUniform##suffix(location, static_cast<GLsizei>(count), values);                        \
    }                                                                                              \
    return true;                                                                                   \
  }

#define ORV_UNIFORM_AT(suffix, parameters, arguments)                                 \
  bool RendererOpenGL::gpu_program_set_uniform_location_##suffix(                     \
      GpuProgramData* program, int location, ORV_EXPAND parameters) {                 \
    if (!program) return false;                                                       \
    if (gl_.glUniform##suffix) gl_.glUniform##suffix(location, ORV_EXPAND arguments); \
    return true;                                                                      \
  }

#define ORV_EXPAND(...) __VA_ARGS__

ORV_UNIFORM(1i, (int x), (x))
ORV_UNIFORM(2i, (int x, int y), (x, y))
ORV_UNIFORM(3i, (int x, int y, int z), (x, y, z))
ORV_UNIFORM(4i, (int x, int y, int z, int w), (x, y, z, w))
ORV_UNIFORM(1f, (float x), (x))
ORV_UNIFORM(2f, (float x, float y), (x, y))
ORV_UNIFORM(3f, (float x, float y, float z), (x, y, z))
ORV_UNIFORM(4f, (float x, float y, float z, float w), (x, y, z, w))
ORV_UNIFORM(1ui, (unsigned int x), (x))
ORV_UNIFORM(2ui, (unsigned int x, unsigned int y), (x, y))
ORV_UNIFORM(3ui, (unsigned int x, unsigned int y, unsigned int z), (x, y, z))
ORV_UNIFORM(4ui, (unsigned int x, unsigned int y, unsigned int z, unsigned int w), (x, y, z, w))
ORV_UNIFORM(1d, (double x), (x))
ORV_UNIFORM(2d, (double x, double y), (x, y))
ORV_UNIFORM(3d, (double x, double y, double z), (x, y, z))
ORV_UNIFORM(4d, (double x, double y, double z, double w), (x, y, z, w))

ORV_UNIFORM_ARRAY(1iv, int)
ORV_UNIFORM_ARRAY(2iv, int)
ORV_UNIFORM_ARRAY(3iv, int)
ORV_UNIFORM_ARRAY(4iv, int)
ORV_UNIFORM_ARRAY(1fv, float)
ORV_UNIFORM_ARRAY(2fv, float)
ORV_UNIFORM_ARRAY(3fv, float)
ORV_UNIFORM_ARRAY(4fv, float)
ORV_UNIFORM_ARRAY(1dv, double)
ORV_UNIFORM_ARRAY(2dv, double)
ORV_UNIFORM_ARRAY(3dv, double)
ORV_UNIFORM_ARRAY(4dv, double)

ORV_UNIFORM_AT(1i, (int x), (x))
ORV_UNIFORM_AT(2i, (int x, int y), (x, y))
ORV_UNIFORM_AT(3i, (int x, int y, int z), (x, y, z))
ORV_UNIFORM_AT(4i, (int x, int y, int z, int w), (x, y, z, w))
ORV_UNIFORM_AT(1f, (float x), (x))
ORV_UNIFORM_AT(2f, (float x, float y), (x, y))
ORV_UNIFORM_AT(3f, (float x, float y, float z), (x, y, z))
ORV_UNIFORM_AT(4f, (float x, float y, float z, float w), (x, y, z, w))

#undef ORV_UNIFORM
#undef ORV_UNIFORM_ARRAY
#undef ORV_UNIFORM_AT
#undef ORV_EXPAND

bool RendererOpenGL::gpu_program_set_uniform_location_4fv(GpuProgramData* program, int location,
                                                          unsigned int count, const float* values) {
  if (!program || !values) return false;
  if (gl_.glUniform4fv) gl_.glUniform4fv(location, static_cast<GLsizei>(count), values);
  return true;
}

// ---- matrices: kept and sent column by column ----

bool RendererOpenGL::gpu_program_set_uniform_location_3x3fv(GpuProgramData* program, int location,
                                                            unsigned int count,
                                                            const float* values) {
  if (!program || !values) return false;
  if (gl_.glUniformMatrix3fv) {
    gl_.glUniformMatrix3fv(location, static_cast<GLsizei>(count), GL_FALSE, values);
  }
  return true;
}

bool RendererOpenGL::gpu_program_set_uniform_location_4x4fv(GpuProgramData* program, int location,
                                                            unsigned int count,
                                                            const float* values) {
  if (!program || !values) return false;
  if (gl_.glUniformMatrix4fv) {
    gl_.glUniformMatrix4fv(location, static_cast<GLsizei>(count), GL_FALSE, values);
  }
  return true;
}

bool RendererOpenGL::gpu_program_set_uniform_3x3fv(GpuProgramData* program, const char* name,
                                                   unsigned int count, const float* values) {
  if (!values) return false;
  ORV_LOCATION_OF(name);
  return gpu_program_set_uniform_location_3x3fv(program, location, count, values);
}

bool RendererOpenGL::gpu_program_set_uniform_4x4fv(GpuProgramData* program, const char* name,
                                                   unsigned int count, const float* values) {
  if (!values) return false;
  ORV_LOCATION_OF(name);
  return gpu_program_set_uniform_location_4x4fv(program, location, count, values);
}

// ---- handles ----

bool RendererOpenGL::gpu_program_set_uniform_location_1ui64(GpuProgramData* program, int location,
                                                            unsigned long long value) {
  if (!program) return false;
  if (gl_.glUniformHandleui64ARB) gl_.glUniformHandleui64ARB(location, value);
  return true;
}

bool RendererOpenGL::gpu_program_set_uniform_location_1ui64v(GpuProgramData* program, int location,
                                                             const unsigned long long* values,
                                                             unsigned int count) {
  if (!program || !values) return false;
  if (gl_.glUniformHandleui64vARB) {
    gl_.glUniformHandleui64vARB(location, static_cast<GLsizei>(count), as_handles(values));
  }
  return true;
}

bool RendererOpenGL::gpu_program_set_uniform_1ui64(GpuProgramData* program, const char* name,
                                                   unsigned long long value) {
  ORV_LOCATION_OF(name);
  return gpu_program_set_uniform_location_1ui64(program, location, value);
}

bool RendererOpenGL::gpu_program_set_uniform_1ui64v(GpuProgramData* program, const char* name,
                                                    const unsigned long long* values,
                                                    unsigned int count) {
  if (!values) return false;
  ORV_LOCATION_OF(name);
  return gpu_program_set_uniform_location_1ui64v(program, location, values, count);
}

#undef ORV_LOCATION_OF

// ---- flush ----

bool RendererOpenGL::gpu_program_apply_uniforms(GpuProgramData* program) {
  if (!program) return false;
  if (!program->uniforms) return true;
  if (!has_link(program)) return false;
  send_subroutines(program);
  gpu_program_cache_uniform_location(program);
  for (unsigned int i = 0; i < program->num_uniform_slots; ++i) {
    GpuProgramUniform* uniform = program->uniforms[i];
    if (!uniform) return true;
    if (!uniform->dirty || uniform->location < 0) continue;
    send_uniform(*uniform);
    ++uniform->num_uploads;
    uniform->dirty = false;
  }
  return true;
}

#define ORV_SEND(function, ...)                    \
  if (gl_.function) gl_.function(at, __VA_ARGS__); \
  break
#define ORV_SEND_ARRAY(function, values)                     \
  if (gl_.function && (values)) gl_.function(at, n, values); \
  break

void RendererOpenGL::send_uniform(const GpuProgramUniform& uniform) {
  const GLint at = uniform.location;
  const GLsizei n = uniform.count;
  const int* i = uniform.value_i;
  const unsigned int* u = uniform.value_ui;
  const float* f = uniform.value_f;
  const double* d = uniform.value_d;
  switch (uniform.type) {
    case GPU_SHADER_UNIFORM_1i:
      ORV_SEND(glUniform1i, i[0]);
    case GPU_SHADER_UNIFORM_2i:
      ORV_SEND(glUniform2i, i[0], i[1]);
    case GPU_SHADER_UNIFORM_3i:
      ORV_SEND(glUniform3i, i[0], i[1], i[2]);
    case GPU_SHADER_UNIFORM_4i:
      ORV_SEND(glUniform4i, i[0], i[1], i[2], i[3]);
    case GPU_SHADER_UNIFORM_1iv:
      ORV_SEND_ARRAY(glUniform1iv, uniform.values_i);
    case GPU_SHADER_UNIFORM_2iv:
      ORV_SEND_ARRAY(glUniform2iv, uniform.values_i);
    case GPU_SHADER_UNIFORM_3iv:
      ORV_SEND_ARRAY(glUniform3iv, uniform.values_i);
    case GPU_SHADER_UNIFORM_4iv:
      ORV_SEND_ARRAY(glUniform4iv, uniform.values_i);
    case GPU_SHADER_UNIFORM_1f:
      ORV_SEND(glUniform1f, f[0]);
    case GPU_SHADER_UNIFORM_2f:
      ORV_SEND(glUniform2f, f[0], f[1]);
    case GPU_SHADER_UNIFORM_3f:
      ORV_SEND(glUniform3f, f[0], f[1], f[2]);
    case GPU_SHADER_UNIFORM_4f:
      ORV_SEND(glUniform4f, f[0], f[1], f[2], f[3]);
    case GPU_SHADER_UNIFORM_1fv:
      ORV_SEND_ARRAY(glUniform1fv, uniform.values_f);
    case GPU_SHADER_UNIFORM_2fv:
      ORV_SEND_ARRAY(glUniform2fv, uniform.values_f);
    case GPU_SHADER_UNIFORM_3fv:
      ORV_SEND_ARRAY(glUniform3fv, uniform.values_f);
    case GPU_SHADER_UNIFORM_4fv:
      ORV_SEND_ARRAY(glUniform4fv, uniform.values_f);
    case GPU_SHADER_UNIFORM_1d:
      ORV_SEND(glUniform1d, d[0]);
    case GPU_SHADER_UNIFORM_2d:
      ORV_SEND(glUniform2d, d[0], d[1]);
    case GPU_SHADER_UNIFORM_3d:
      ORV_SEND(glUniform3d, d[0], d[1], d[2]);
    case GPU_SHADER_UNIFORM_4d:
      ORV_SEND(glUniform4d, d[0], d[1], d[2], d[3]);
    case GPU_SHADER_UNIFORM_1dv:
      ORV_SEND_ARRAY(glUniform1dv, uniform.values_d);
    case GPU_SHADER_UNIFORM_2dv:
      ORV_SEND_ARRAY(glUniform2dv, uniform.values_d);
    case GPU_SHADER_UNIFORM_3dv:
      ORV_SEND_ARRAY(glUniform3dv, uniform.values_d);
    case GPU_SHADER_UNIFORM_4dv:
      ORV_SEND_ARRAY(glUniform4dv, uniform.values_d);
    case GPU_SHADER_UNIFORM_3x3f:
      ORV_SEND(glUniformMatrix3fv, 1, GL_FALSE, uniform.value_mat4f);
    case GPU_SHADER_UNIFORM_4x4f:
      ORV_SEND(glUniformMatrix4fv, 1, GL_FALSE, uniform.value_mat4f);
    case GPU_SHADER_UNIFORM_1ui:
      ORV_SEND(glUniform1ui, u[0]);
    case GPU_SHADER_UNIFORM_2ui:
      ORV_SEND(glUniform2ui, u[0], u[1]);
    case GPU_SHADER_UNIFORM_3ui:
      ORV_SEND(glUniform3ui, u[0], u[1], u[2]);
    case GPU_SHADER_UNIFORM_4ui:
      ORV_SEND(glUniform4ui, u[0], u[1], u[2], u[3]);
    case GPU_SHADER_UNIFORM_1ui64:
      if (gl_.glUniformHandleui64ARB && uniform.values_ui64) {
        gl_.glUniformHandleui64ARB(at, uniform.values_ui64[0]);
      }
      break;
    case GPU_SHADER_UNIFORM_1ui64v:
      if (gl_.glUniformHandleui64vARB && uniform.values_ui64) {
        gl_.glUniformHandleui64vARB(at, n, as_handles(uniform.values_ui64));
      }
      break;
    default:
      break;  // matrices of doubles and subroutines are not sent this way
  }
}

#undef ORV_SEND
#undef ORV_SEND_ARRAY

// ---- subroutines ----

void RendererOpenGL::send_subroutines(GpuProgramData* program) {
  if (!facts_.subroutines_supported || !gl_.glUniformSubroutinesuiv) return;
  for (int stage = 0; stage < static_cast<int>(GpuProgramData::NUM_SUBROUTINE_STAGES); ++stage) {
    if (program->num_subroutine_uniforms[stage] > 0) {
      send_stage_subroutines(program, static_cast<GPU_SHADER_TYPE>(stage));
    }
  }
}

namespace {

/// Cache key of a name in one stage, since stages may use one name for different things.
struct StageKey {
  char text[80];
  StageKey(GPU_SHADER_TYPE type, const char* name) {
    std::snprintf(text, sizeof(text), "%d:%s", static_cast<int>(type), name);
  }
};

}  // namespace

int RendererOpenGL::count_subroutine_locations(GpuProgramData* program, GPU_SHADER_TYPE type) {
  const StageKey key(type, "");
  int count = program->_get_uniform_subroutine_location_from_cache(key.text);
  if (count >= 0) return count;
  count = 0;
  if (gl_.glGetProgramStageiv) {
    gl_.glGetProgramStageiv(program->program_id, gl_shader_stage(type),
                            GL_ACTIVE_SUBROUTINE_UNIFORM_LOCATIONS, &count);
  }
  program->_update_uniform_subroutine_location_cache(key.text, count);
  return count;
}

void RendererOpenGL::send_stage_subroutines(GpuProgramData* program, GPU_SHADER_TYPE type) {
  const int locations = count_subroutine_locations(program, type);
  if (locations <= 0) return;
  // The driver wants a value for each location, whether or not one was set.
  const unsigned int size =
      std::max(program->num_subroutine_uniforms[type], static_cast<unsigned int>(locations));
  unsigned int* indices = program->_reserve_subroutine_indices(type, size);
  if (!indices) return;
  const GLenum stage = gl_shader_stage(type);
  for (unsigned int i = 0; i < program->num_uniform_slots; ++i) {
    const GpuProgramUniform* uniform = program->uniforms[i];
    if (!uniform) break;
    if (uniform->type != GPU_SHADER_UNIFORM_subroutine || uniform->shader_type != type) continue;
    const StageKey name(type, uniform->name);
    int location = program->_get_uniform_subroutine_location_from_cache(name.text);
    if (location < 0) {
      location = gl_.glGetSubroutineUniformLocation(program->program_id, stage, uniform->name);
      program->_update_uniform_subroutine_location_cache(name.text, location);
    }
    if (location < 0 || location >= locations) continue;
    const StageKey choice(type, uniform->subroutine_name);
    unsigned int index = program->_get_subroutine_index_from_cache(choice.text);
    if (index == GL_INVALID_INDEX) {
      index = gl_.glGetSubroutineIndex(program->program_id, stage, uniform->subroutine_name);
      program->_update_subroutine_index_cache(choice.text, index);
    }
    if (index != GL_INVALID_INDEX) indices[location] = index;
  }
  gl_.glUniformSubroutinesuiv(stage, locations, indices);
}

}  // namespace orv
