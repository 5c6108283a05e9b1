// Buffers kept in a GpuBufferData.
#include <orv/core/log_mgr.h>
#include <orv/gpu/gpu_buffer_data.h>

#include <cstring>
#include <vector>

#include "render/opengl/gl_draw_enums.h"
#include "render/opengl/renderer_opengl.h"

namespace orv {

using namespace detail;

namespace {

enum StorageFlag : unsigned int {
  STORAGE_READ = 0x1,
  STORAGE_WRITE = 0x2,
  STORAGE_PERSISTENT = 0x40,
  STORAGE_COHERENT = 0x80,
  STORAGE_DYNAMIC = 0x100,
  STORAGE_CLIENT = 0x200
};

GLbitfield storage_flags(const GpuBufferData& buffer) {
  GLbitfield flags = 0;
  if (buffer.dynamic_storage) flags |= STORAGE_DYNAMIC;
  if (buffer.map_read) flags |= STORAGE_READ;
  if (buffer.map_write) flags |= STORAGE_WRITE;
  if (buffer.map_persistent) flags |= STORAGE_PERSISTENT;
  // Coherent mappings are kept in client memory; the flag of that name is not asked.
  if (buffer.map_coherent) flags |= STORAGE_COHERENT | STORAGE_CLIENT;
  return flags;
}

}  // namespace

/// Binds a buffer to its target for as long as it lives, and then what was bound there before.
class RendererOpenGL::BufferBinding {
 public:
  BufferBinding(RendererOpenGL* renderer, const GpuBufferData& buffer)
      : renderer_(renderer), target_(gl_buffer_target(buffer.type)), id_(buffer.buffer_id) {
    GLint previous = 0;
    renderer_->core_.glGetIntegerv(gl_buffer_binding(target_), &previous);
    previous_ = static_cast<GLuint>(previous);
    if (previous_ != id_) renderer_->gl_.glBindBuffer(target_, id_);
  }
  ~BufferBinding() {
    if (previous_ != id_) renderer_->gl_.glBindBuffer(target_, previous_);
  }
  BufferBinding(const BufferBinding&) = delete;
  BufferBinding& operator=(const BufferBinding&) = delete;

  GLenum target() const { return target_; }

 private:
  RendererOpenGL* renderer_;
  GLenum target_;
  GLuint id_;
  GLuint previous_ = 0;
};

bool RendererOpenGL::is_buffer_range(const GpuBufferData* buffer, unsigned int offset,
                                     unsigned int size) const {
  return buffer && buffer->buffer_id != 0 && has_buffer_target(buffer->type) &&
         0ull + offset + size <= buffer->size;
}

// ---- creating and deleting ----

bool RendererOpenGL::gpu_buffer_alloc(RendererGpu*, GpuBufferData* buffer, GPU_BUFFER_TYPE type,
                                      BUFFER_OBJECT_USAGE usage, unsigned int size,
                                      const void* data) {
  if (!buffer) return false;
  if (buffer->buffer_id != 0) return true;
  if (!has_buffer_target(type)) {
    LogMgr::get().tracef_debug("GPU buffer of %u bytes: no buffers of type %d in this context",
                               size, static_cast<int>(type));
    return false;
  }
  gl_.glGenBuffers(1, &buffer->buffer_id);
  buffer->renderer_id = getid();
  buffer->usage =
      static_cast<BUFFER_OBJECT_USAGE>(overridden_usage(type, static_cast<unsigned int>(usage)));
  buffer->type = type;
  buffer->size = size;
  std::vector<unsigned char> padded;
  const int alignment = read_offset_alignment(type);
  if (alignment > 0) {
    buffer->offset_alignment = alignment;
    if (size < static_cast<unsigned int>(alignment)) {
      buffer->size = static_cast<unsigned int>(alignment);
      // The caller's block ends at the size it asked for.
      if (data) {
        padded.resize(buffer->size);
        std::memcpy(padded.data(), data, size);
        data = padded.data();
      }
    }
  }
  gpu_buffer_bind(buffer);
  specify_gpu_buffer(buffer, buffer->size, data);
  gpu_buffer_unbind(buffer);
  return true;
}

int RendererOpenGL::read_offset_alignment(GPU_BUFFER_TYPE type) {
  GLenum name = 0;
  if (type == GPU_BUFFER_UNIFORM) name = GL_UNIFORM_BUFFER_OFFSET_ALIGNMENT;
  if (type == GPU_BUFFER_SHADER_STORAGE) name = GL_SHADER_STORAGE_BUFFER_OFFSET_ALIGNMENT;
  if (type == GPU_BUFFER_TEXTURE &&
      (facts_.is_version_at_least(4, 3) || facts_.has_extension("GL_ARB_texture_buffer_range"))) {
    name = GL_TEXTURE_BUFFER_OFFSET_ALIGNMENT;
  }
  int alignment = 0;
  if (name != 0) core_.glGetIntegerv(name, &alignment);
  return alignment;
}

void RendererOpenGL::specify_gpu_buffer(GpuBufferData* buffer, unsigned int size,
                                        const void* data) {
  const GLenum target = gl_buffer_target(buffer->type);
  const auto bytes = static_cast<GLsizeiptr>(size);
  if (buffer->immutable_storage && gl_.glBufferStorage) {
    gl_.glBufferStorage(target, bytes, data, storage_flags(*buffer));
  } else {
    gl_.glBufferData(target, bytes, data,
                     gl_buffer_usage(static_cast<unsigned int>(buffer->usage)));
  }
}

bool RendererOpenGL::gpu_buffer_free(GpuBufferData* buffer) {
  if (!buffer || buffer->buffer_id == 0) return false;
  forget_buffer(buffer->buffer_id);
  if (gl_.glDeleteBuffers) gl_.glDeleteBuffers(1, &buffer->buffer_id);
  buffer->buffer_id = 0;
  buffer->mapped_ptr = nullptr;
  buffer->mapped_size = 0;
  buffer->bound = false;
  return true;
}

bool RendererOpenGL::gpu_buffer_alloc_uniform_buffer(RendererGpu* gpu, GpuBufferData* buffer,
                                                     BUFFER_OBJECT_USAGE usage,
                                                     GpuProgramData* program,
                                                     const char* block_name, const void* data) {
  if (!buffer || !program || !block_name) return false;
  const unsigned int index = gpu_program_get_uniform_block_index(program, block_name);
  return gpu_buffer_alloc_uniform_buffer_v2(gpu, buffer, usage, program, static_cast<int>(index),
                                            data);
}

bool RendererOpenGL::gpu_buffer_alloc_uniform_buffer_v2(RendererGpu* gpu, GpuBufferData* buffer,
                                                        BUFFER_OBJECT_USAGE usage,
                                                        GpuProgramData* program, int block_index,
                                                        const void* data) {
  if (!buffer || !program || block_index < 0) return false;
  const int size =
      gpu_program_get_uniform_block_size(program, nullptr, static_cast<unsigned int>(block_index));
  if (size <= 0) {
    LogMgr::get().tracef_debug("GPU program (%s): no uniform block %d to make a buffer for",
                               program->gpu_program_name, block_index);
    return false;
  }
  if (!gpu_buffer_alloc(gpu, buffer, GPU_BUFFER_UNIFORM, usage, static_cast<unsigned int>(size),
                        data)) {
    return false;
  }
  buffer->uniform_block_index = block_index;
  return true;
}

bool RendererOpenGL::gpu_buffer_alloc_a(RendererGpu* gpu, GpuBufferData* buffer,
                                        BUFFER_OBJECT_USAGE usage, unsigned int num_counters) {
  constexpr unsigned int MAX_COUNTERS = 1u << 24;
  if (!buffer || num_counters == 0 || num_counters > MAX_COUNTERS) return false;
  const std::vector<unsigned int> zeros(num_counters);
  return gpu_buffer_alloc(gpu, buffer, GPU_BUFFER_ATOMIC_COUNTER, usage, num_counters * 4u,
                          zeros.data());
}

// ---- reading, writing, copying ----

bool RendererOpenGL::gpu_buffer_sub_data_write(GpuBufferData* buffer, unsigned int offset,
                                               unsigned int size, const void* data) {
  if (!data || !is_buffer_range(buffer, offset, size)) return false;
  const BufferBinding binding(this, *buffer);
  gl_.glBufferSubData(binding.target(), static_cast<GLintptr>(offset),
                      static_cast<GLsizeiptr>(size), data);
  return true;
}

bool RendererOpenGL::gpu_buffer_sub_data_read(GpuBufferData* buffer, unsigned int offset,
                                              unsigned int size, void* data) {
  if (!data || !is_buffer_range(buffer, offset, size)) return false;
  const BufferBinding binding(this, *buffer);
  gl_.glGetBufferSubData(binding.target(), static_cast<GLintptr>(offset),
                         static_cast<GLsizeiptr>(size), data);
  return true;
}

bool RendererOpenGL::gpu_buffer_copy(GpuBufferData* target, GpuBufferData* source,
                                     unsigned int source_offset, unsigned int offset,
                                     unsigned int size) {
  if (lacks(gl_.glCopyBufferSubData, "glCopyBufferSubData") ||
      !is_buffer_range(target, offset, size) || !is_buffer_range(source, source_offset, size)) {
    return false;
  }
  const bool overlap = target->buffer_id == source->buffer_id &&
                       0ull + offset < 0ull + source_offset + size &&
                       0ull + source_offset < 0ull + offset + size;
  if (overlap) return false;
  gl_.glBindBuffer(GL_COPY_READ_BUFFER, source->buffer_id);
  gl_.glBindBuffer(GL_COPY_WRITE_BUFFER, target->buffer_id);
  gl_.glCopyBufferSubData(GL_COPY_READ_BUFFER, GL_COPY_WRITE_BUFFER,
                          static_cast<GLintptr>(source_offset), static_cast<GLintptr>(offset),
                          static_cast<GLsizeiptr>(size));
  gl_.glBindBuffer(GL_COPY_READ_BUFFER, 0);
  gl_.glBindBuffer(GL_COPY_WRITE_BUFFER, 0);
  return true;
}

bool RendererOpenGL::gpu_buffer_set_atomic_counter(GpuBufferData* buffer, unsigned int index,
                                                   unsigned int value) {
  if (index >= 0x40000000u) return false;
  return gpu_buffer_sub_data_write(buffer, index * 4u, 4u, &value);
}

bool RendererOpenGL::gpu_buffer_get_atomic_counter(GpuBufferData* buffer, unsigned int index,
                                                   unsigned int* value) {
  if (index >= 0x40000000u) return false;
  return gpu_buffer_sub_data_read(buffer, index * 4u, 4u, value);
}

// ---- usage options ----

bool RendererOpenGL::gpu_buffer_set_usage_option(unsigned int which, unsigned int value) {
  if (which >= GlUsageOptions::COUNT) return false;
  usage_.values[which] = value;
  return true;
}

unsigned int RendererOpenGL::gpu_buffer_get_usage_option(unsigned int which) {
  return which < GlUsageOptions::COUNT ? usage_.values[which] : 0u;
}

// ---- binding ----

bool RendererOpenGL::gpu_buffer_bind(GpuBufferData* buffer) {
  if (!buffer || buffer->buffer_id == 0 || !has_buffer_target(buffer->type)) return false;
  gl_.glBindBuffer(gl_buffer_target(buffer->type), buffer->buffer_id);
  buffer->bound = true;
  if (buffer->type == GPU_BUFFER_ELEMENT_ARRAY) bound_.index_id = buffer->buffer_id;
  return true;
}

bool RendererOpenGL::gpu_buffer_unbind(GpuBufferData* buffer) {
  if (!buffer || !has_buffer_target(buffer->type)) return false;
  gl_.glBindBuffer(gl_buffer_target(buffer->type), 0);
  if (buffer->type == GPU_BUFFER_ELEMENT_ARRAY) bound_.index_id = 0;
  buffer->bound = false;
  return true;
}

namespace {

bool has_binding_points(GPU_BUFFER_TYPE type) {
  return type == GPU_BUFFER_UNIFORM || type == GPU_BUFFER_SHADER_STORAGE ||
         type == GPU_BUFFER_ATOMIC_COUNTER;
}

}  // namespace

bool RendererOpenGL::gpu_buffer_bind_base(GpuBufferData* buffer, int point) {
  if (point < 0 || lacks(gl_.glBindBufferBase, "glBindBufferBase") ||
      !is_buffer_range(buffer, 0, 0))
    return false;
  if (!has_binding_points(buffer->type)) return false;
  gl_.glBindBufferBase(gl_buffer_target(buffer->type), static_cast<GLuint>(point),
                       buffer->buffer_id);
  buffer->binding_point = point;
  buffer->bound = true;
  return true;
}

bool RendererOpenGL::gpu_buffer_bind_range(GpuBufferData* buffer, int point, unsigned int offset,
                                           unsigned int size) {
  if (point < 0 || size == 0 || lacks(gl_.glBindBufferRange, "glBindBufferRange") ||
      !is_buffer_range(buffer, offset, size)) {
    return false;
  }
  if (!has_binding_points(buffer->type)) return false;
  gl_.glBindBufferRange(gl_buffer_target(buffer->type), static_cast<GLuint>(point),
                        buffer->buffer_id, static_cast<GLintptr>(offset),
                        static_cast<GLsizeiptr>(size));
  buffer->binding_point = point;
  buffer->bound = true;
  return true;
}

// ---- mapping ----

namespace {

void report_unmapped(const GpuBufferData& buffer) {
  LogMgr::get().tracef_debug("GPU buffer %u of %u bytes: the driver does not map it",
                             buffer.buffer_id, buffer.size);
}

}  // namespace

void* RendererOpenGL::gpu_buffer_map(GpuBufferData* buffer, const char* access) {
  const GLenum mode = gl_map_access(access);
  if (mode == 0 || lacks(gl_.glMapBuffer, "glMapBuffer") || !is_buffer_range(buffer, 0, 0))
    return nullptr;
  if (buffer->mapped_ptr) return buffer->mapped_size == 0 ? buffer->mapped_ptr : nullptr;
  const BufferBinding binding(this, *buffer);
  buffer->mapped_ptr = gl_.glMapBuffer(binding.target(), mode);
  buffer->mapped_size = 0;
  if (!buffer->mapped_ptr) report_unmapped(*buffer);
  return buffer->mapped_ptr;
}

void* RendererOpenGL::gpu_buffer_map_range(GpuBufferData* buffer, unsigned int offset,
                                           unsigned int size, const char* flags) {
  if (size == 0 || lacks(gl_.glMapBufferRange, "glMapBufferRange") ||
      !is_buffer_range(buffer, offset, size))
    return nullptr;
  if (buffer->mapped_ptr) return nullptr;
  const BufferBinding binding(this, *buffer);
  buffer->mapped_ptr = gl_.glMapBufferRange(binding.target(), static_cast<GLintptr>(offset),
                                            static_cast<GLsizeiptr>(size), gl_map_bits(flags));
  buffer->mapped_size = buffer->mapped_ptr ? size : 0u;
  if (!buffer->mapped_ptr) report_unmapped(*buffer);
  return buffer->mapped_ptr;
}

bool RendererOpenGL::gpu_buffer_flush_range(GpuBufferData* buffer, unsigned int offset,
                                            unsigned int size) {
  if (lacks(gl_.glFlushMappedBufferRange, "glFlushMappedBufferRange") ||
      !is_buffer_range(buffer, offset, size))
    return false;
  buffer->mapped_ptr = nullptr;
  buffer->mapped_size = 0;
  const BufferBinding binding(this, *buffer);
  gl_.glFlushMappedBufferRange(binding.target(), static_cast<GLintptr>(offset),
                               static_cast<GLsizeiptr>(size));
  return true;
}

bool RendererOpenGL::gpu_buffer_unmap(GpuBufferData* buffer) {
  if (lacks(gl_.glUnmapBuffer, "glUnmapBuffer") || !is_buffer_range(buffer, 0, 0)) return false;
  buffer->mapped_ptr = nullptr;
  buffer->mapped_size = 0;
  const BufferBinding binding(this, *buffer);
  // A flush forgets the pointer, so only the driver knows.
  GLint mapped = 0;
  gl_.glGetBufferParameteriv(binding.target(), GL_BUFFER_MAPPED, &mapped);
  return mapped != 0 && gl_.glUnmapBuffer(binding.target()) != GL_FALSE;
}

}  // namespace orv
