#include <orv/gpu/gpu_program.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/math/mat4.h>
#include <orv/math/mat4d.h>
#include <orv/math/vec4.h>
#include <orv/render/renderer.h>

namespace orv {

// A value goes to the bound program of a renderer, or into the record without one.

#define ORV_SET_UNIFORM(suffix, parameters, ...)                                     \
  bool GpuProgram::set_uniform_##suffix parameters {                                 \
    return renderer ? renderer->gpu_program_set_uniform_##suffix(data_, __VA_ARGS__) \
                    : data_->set_uniform_##suffix(__VA_ARGS__);                      \
  }

#define ORV_SET_SCALARS(letters, T)                                                               \
  ORV_SET_UNIFORM(1##letters, (Renderer * renderer, const char* name, T x), name, x)              \
  ORV_SET_UNIFORM(2##letters, (Renderer * renderer, const char* name, T x, T y), name, x, y)      \
  ORV_SET_UNIFORM(3##letters, (Renderer * renderer, const char* name, T x, T y, T z), name, x, y, \
                  z)                                                                              \
  ORV_SET_UNIFORM(4##letters, (Renderer * renderer, const char* name, T x, T y, T z, T w), name,  \
                  x, y, z, w)

ORV_SET_SCALARS(i, int)
ORV_SET_SCALARS(ui, unsigned int)
ORV_SET_SCALARS(f, float)
ORV_SET_SCALARS(d, double)
ORV_SET_UNIFORM(1ui64, (Renderer * renderer, const char* name, unsigned long long value), name,
                value)

#undef ORV_SET_SCALARS
#undef ORV_SET_UNIFORM

// Renderers take unsigned counts, so a negative one must not reach them.
#define ORV_SET_ARRAY(suffix, T)                                                                 \
  bool GpuProgram::set_uniform_##suffix(Renderer* renderer, const char* name, int count,         \
                                        const T* values) {                                       \
    if (!name) return false;                                                                     \
    if (!values || count < 1) return true;                                                       \
    if (!renderer) return data_->set_uniform_##suffix(name, count, values);                      \
    return renderer->gpu_program_set_uniform_##suffix(data_, name,                               \
                                                      static_cast<unsigned int>(count), values); \
  }

ORV_SET_ARRAY(1iv, int)
ORV_SET_ARRAY(2iv, int)
ORV_SET_ARRAY(3iv, int)
ORV_SET_ARRAY(4iv, int)
ORV_SET_ARRAY(1fv, float)
ORV_SET_ARRAY(2fv, float)
ORV_SET_ARRAY(3fv, float)
ORV_SET_ARRAY(4fv, float)
ORV_SET_ARRAY(1dv, double)
ORV_SET_ARRAY(2dv, double)
ORV_SET_ARRAY(3dv, double)
ORV_SET_ARRAY(4dv, double)

#undef ORV_SET_ARRAY

bool GpuProgram::set_uniform_1ui64v(Renderer* renderer, const char* name, int count,
                                    const unsigned long long* values) {
  if (!name) return false;
  if (!values || count < 1) return true;
  if (!renderer) return data_->set_uniform_1ui64v(name, count, values);
  return renderer->gpu_program_set_uniform_1ui64v(data_, name, values,
                                                  static_cast<unsigned int>(count));
}

bool GpuProgram::set_uniform_3f(Renderer* renderer, const char* name, const vec4& value) {
  return set_uniform_3f(renderer, name, value.x, value.y, value.z);
}

bool GpuProgram::set_uniform_4f(Renderer* renderer, const char* name, const vec4& value) {
  return set_uniform_4f(renderer, name, value.x, value.y, value.z, value.w);
}

bool GpuProgram::set_uniform_4fv(Renderer* renderer, const char* name, int count,
                                 const vec4* values) {
  return set_uniform_4fv(renderer, name, count, values ? values->ptr() : nullptr);
}

bool GpuProgram::set_uniform_3x3f(Renderer* renderer, const char* name, const float* values) {
  if (!name) return false;
  if (!values) return true;
  return renderer ? renderer->gpu_program_set_uniform_3x3fv(data_, name, 1, values)
                  : data_->set_uniform_3x3f(name, values);
}

bool GpuProgram::set_uniform_4x4f(Renderer* renderer, const char* name, const mat4& value) {
  return set_uniform_4x4f(renderer, name, value.ptr());
}

bool GpuProgram::set_uniform_4x4f(Renderer* renderer, const char* name, const float* values) {
  if (!name) return false;
  if (!values) return true;
  return renderer ? renderer->gpu_program_set_uniform_4x4fv(data_, name, 1, values)
                  : data_->set_uniform_4x4f(name, values);
}

// ---- kept in the record with every renderer --------------------------------------------------

bool GpuProgram::set_uniform_3x3d(Renderer*, const char* name, const double* values) {
  return data_->set_uniform_3x3d(name, values);
}

bool GpuProgram::set_uniform_4x4d(Renderer*, const char* name, const mat4d& value) {
  return data_->set_uniform_4x4d(name, value);
}

bool GpuProgram::set_uniform_4x4d(Renderer*, const char* name, const double* values) {
  return data_->set_uniform_4x4d(name, values);
}

bool GpuProgram::set_uniform_subroutine(Renderer*, GPU_SHADER_TYPE type, const char* uniform_name,
                                        const char* subroutine_name) {
  return data_->set_uniform_subroutine(type, uniform_name, subroutine_name);
}

bool GpuProgram::gpu_buffer_set_uniform_1i(Renderer*, unsigned int offset, int x) {
  return data_->gpu_buffer_set_uniform_1i(offset, x);
}

bool GpuProgram::gpu_buffer_set_uniform_1f(Renderer*, unsigned int offset, float x) {
  return data_->gpu_buffer_set_uniform_1f(offset, x);
}

bool GpuProgram::gpu_buffer_set_uniform_4f(Renderer*, unsigned int offset, float x, float y,
                                           float z, float w) {
  return data_->gpu_buffer_set_uniform_4f(offset, x, y, z, w);
}

bool GpuProgram::gpu_buffer_set_uniform_4f(Renderer*, unsigned int offset, const vec4& value) {
  return data_->gpu_buffer_set_uniform_4f(offset, value.x, value.y, value.z, value.w);
}

bool GpuProgram::gpu_buffer_set_uniform_4x4f(Renderer*, unsigned int offset, const mat4& value) {
  return data_->gpu_buffer_set_uniform_4x4f(offset, value);
}

}  // namespace orv
