// Vertex and storage buffers by their API ids.
#include <orv/gpu/gpu_enums.h>

#include "render/opengl/gl_draw_enums.h"
#include "render/opengl/renderer_opengl.h"

namespace orv {

using namespace detail;

namespace {

constexpr unsigned int ALL_MAP_BITS = 0xFF;

}  // namespace

// ---- common to both kinds ----

unsigned int RendererOpenGL::overridden_usage(GPU_BUFFER_TYPE type, unsigned int usage) const {
  unsigned int option = 0;
  if (type == GPU_BUFFER_ARRAY) option = usage_.values[GlUsageOptions::VERTEX];
  if (type == GPU_BUFFER_ELEMENT_ARRAY) option = usage_.values[GlUsageOptions::INDEX];
  if (type == GPU_BUFFER_SHADER_STORAGE) option = usage_.values[GlUsageOptions::STORAGE];
  return option != 0 ? option : usage;
}

bool RendererOpenGL::has_buffer_target(GPU_BUFFER_TYPE type) const {
  if (lacks(gl_.glGenBuffers, "glGenBuffers") || lacks(gl_.glBindBuffer, "glBindBuffer"))
    return false;
  switch (type) {
    case GPU_BUFFER_ARRAY:
    case GPU_BUFFER_ELEMENT_ARRAY:
      return true;
    case GPU_BUFFER_PIXEL_UNPACK:
      return facts_.is_version_at_least(2, 1) || facts_.has_extension("GL_ARB_pixel_buffer_object");
    case GPU_BUFFER_UNIFORM:
      return gl_.glGetUniformBlockIndex != nullptr;
    case GPU_BUFFER_SHADER_STORAGE:
      return gl_.glShaderStorageBlockBinding != nullptr;
    case GPU_BUFFER_ATOMIC_COUNTER:
      return facts_.is_version_at_least(4, 2) ||
             facts_.has_extension("GL_ARB_shader_atomic_counters");
    case GPU_BUFFER_TEXTURE:
      return facts_.is_version_at_least(3, 1) ||
             facts_.has_extension("GL_ARB_texture_buffer_object");
    default:
      return false;
  }
}

unsigned int RendererOpenGL::raw_buffer_create(GPU_BUFFER_TYPE type, unsigned int size,
                                               unsigned int usage) {
  if (!has_buffer_target(type)) return 0;
  const GLenum target = gl_buffer_target(type);
  GLuint id = 0;
  gl_.glGenBuffers(1, &id);
  gl_.glBindBuffer(target, id);
  gl_.glBufferData(target, static_cast<GLsizeiptr>(size), nullptr,
                   gl_buffer_usage(overridden_usage(type, usage)));
  gl_.glBindBuffer(target, 0);
  return id;
}

bool RendererOpenGL::raw_buffer_destroy(unsigned int id) {
  if (id == 0 || lacks(gl_.glDeleteBuffers, "glDeleteBuffers")) return false;
  forget_buffer(id);
  gl_.glDeleteBuffers(1, &id);
  return true;
}

void* RendererOpenGL::raw_buffer_map(unsigned int target, unsigned int id, unsigned int access) {
  if (id == 0 || lacks(gl_.glMapBuffer, "glMapBuffer")) return nullptr;
  gl_.glBindBuffer(target, id);
  void* pointer = gl_.glMapBuffer(target, access);
  gl_.glBindBuffer(target, 0);
  return pointer;
}

bool RendererOpenGL::raw_buffer_unmap(unsigned int target, unsigned int id) {
  if (id == 0 || lacks(gl_.glUnmapBuffer, "glUnmapBuffer")) return false;
  gl_.glBindBuffer(target, id);
  const bool intact = gl_.glUnmapBuffer(target) != GL_FALSE;
  gl_.glBindBuffer(target, 0);
  return intact;
}

// ---- vertex buffers ----

unsigned int RendererOpenGL::vertex_buffer_create(unsigned int size, BUFFER_OBJECT_USAGE usage) {
  return raw_buffer_create(GPU_BUFFER_ARRAY, size, static_cast<unsigned int>(usage));
}

bool RendererOpenGL::vertex_buffer_destroy(unsigned int id) { return raw_buffer_destroy(id); }

bool RendererOpenGL::vertex_buffer_set_data(unsigned int id, unsigned int offset, unsigned int size,
                                            const void* data) {
  if (id == 0 || !data || lacks(gl_.glBufferSubData, "glBufferSubData")) return false;
  gl_.glBindBuffer(GL_ARRAY_BUFFER, id);
  int available = 0;
  gl_.glGetBufferParameteriv(GL_ARRAY_BUFFER, GL_BUFFER_SIZE, &available);
  const bool fits = 0ull + offset + size <= static_cast<unsigned int>(available);
  if (fits) {
    gl_.glBufferSubData(GL_ARRAY_BUFFER, static_cast<GLintptr>(offset),
                        static_cast<GLsizeiptr>(size), data);
  }
  gl_.glBindBuffer(GL_ARRAY_BUFFER, 0);
  return fits;
}

void* RendererOpenGL::vertex_buffer_map(unsigned int id) {
  return raw_buffer_map(GL_ARRAY_BUFFER, id, GL_WRITE_ONLY);
}

bool RendererOpenGL::vertex_buffer_unmap(unsigned int id) {
  return raw_buffer_unmap(GL_ARRAY_BUFFER, id);
}

void RendererOpenGL::set_vertex_buffer_usage_options(unsigned int vertex_usage,
                                                     unsigned int index_usage) {
  usage_.values[GlUsageOptions::VERTEX] = vertex_usage;
  usage_.values[GlUsageOptions::INDEX] = index_usage;
}

// ---- storage buffers ----

void RendererOpenGL::set_storage_buffer_usage_option(unsigned int usage) {
  usage_.values[GlUsageOptions::STORAGE] = usage;
}

unsigned int RendererOpenGL::storage_buffer_create(unsigned int size, BUFFER_OBJECT_USAGE usage) {
  return raw_buffer_create(GPU_BUFFER_SHADER_STORAGE, size, static_cast<unsigned int>(usage));
}

bool RendererOpenGL::storage_buffer_destroy(unsigned int id) { return raw_buffer_destroy(id); }

void* RendererOpenGL::storage_buffer_map(unsigned int id, DATA_ACCESS_TYPE access) {
  if (!has_buffer_target(GPU_BUFFER_SHADER_STORAGE)) return nullptr;
  return raw_buffer_map(GL_SHADER_STORAGE_BUFFER, id, gl_data_access(access));
}

void* RendererOpenGL::storage_buffer_map_range(unsigned int id, unsigned int offset,
                                               unsigned int size, unsigned int bits) {
  if (id == 0 || lacks(gl_.glMapBufferRange, "glMapBufferRange") ||
      !has_buffer_target(GPU_BUFFER_SHADER_STORAGE)) {
    return nullptr;
  }
  gl_.glBindBuffer(GL_SHADER_STORAGE_BUFFER, id);
  void* pointer = gl_.glMapBufferRange(GL_SHADER_STORAGE_BUFFER, static_cast<GLintptr>(offset),
                                       static_cast<GLsizeiptr>(size), bits & ALL_MAP_BITS);
  gl_.glBindBuffer(GL_SHADER_STORAGE_BUFFER, 0);
  return pointer;
}

bool RendererOpenGL::storage_buffer_unmap(unsigned int id) {
  if (!has_buffer_target(GPU_BUFFER_SHADER_STORAGE)) return false;
  return raw_buffer_unmap(GL_SHADER_STORAGE_BUFFER, id);
}

bool RendererOpenGL::storage_buffer_bind(unsigned int id) {
  if (!has_buffer_target(GPU_BUFFER_SHADER_STORAGE)) return false;
  gl_.glBindBuffer(GL_SHADER_STORAGE_BUFFER, id);
  return true;
}

bool RendererOpenGL::storage_buffer_bind_base(unsigned int id, unsigned int index) {
  if (lacks(gl_.glBindBufferBase, "glBindBufferBase") ||
      !has_buffer_target(GPU_BUFFER_SHADER_STORAGE))
    return false;
  gl_.glBindBufferBase(GL_SHADER_STORAGE_BUFFER, index, id);
  return true;
}

}  // namespace orv
