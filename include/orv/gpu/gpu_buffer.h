/// @file
/// A buffer in GPU memory.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/gpu/gpu_enums.h>
#include <orv/gpu/resource.h>

namespace orv {

/// A resource for one API buffer: vertex, index, uniform, storage, atomic counter or texture
/// buffer. Data moves by explicit writes, or through a mapped pointer with typed accessors at byte
/// offsets. A null renderer gives 0, false or null.
class ORV_API GpuBuffer : public Resource {
 public:
  /// An unallocated uniform buffer.
  GpuBuffer();
  /// Frees the record. The API buffer is freed by cleanup or free before.
  ~GpuBuffer() override;
  /// Frees the API buffer. False for a null renderer or without API buffer.
  bool _cleanup(Renderer* renderer) override;
  /// Plugin id of the renderer that allocated the buffer, 0 before.
  int get_renderer_id() override;

  GpuBuffer(const GpuBuffer&) = delete;
  GpuBuffer& operator=(const GpuBuffer&) = delete;

  /// The record, owned by the buffer.
  GpuBufferData* get_data_ptr() const { return data_; }
  /// Sets storage and mapping flags by name, see GpuBufferData. False for null only.
  bool set_state(const char* name, bool value);
  /// Whether there is an API buffer.
  bool is_allocated() const;

  // ---- memory ----

  /// Allocates the API buffer. True at once when there is one already.
  /// @param size bytes
  /// @param data first contents, of `size` bytes, or null
  bool alloc(Renderer* renderer, GPU_BUFFER_TYPE type, BUFFER_OBJECT_USAGE usage, unsigned int size,
             const void* data);
  /// Allocates a uniform buffer of the size of a program's block; false for an unknown name.
  bool alloc_uniform_buffer(Renderer* renderer, BUFFER_OBJECT_USAGE usage, GpuProgramData* program,
                            const char* block_name, const void* data);
  /// The same by block index; false for -1.
  bool alloc_uniform_buffer_v2(Renderer* renderer, BUFFER_OBJECT_USAGE usage,
                               GpuProgramData* program, int block_index, const void* data);
  /// Frees the API buffer. False when there is none.
  bool free(Renderer* renderer);

  /// @{
  /// Writes or reads `size` bytes at a byte offset of the API buffer. False for null data and for
  /// bytes outside it.
  bool sub_data_write(Renderer* renderer, unsigned int offset, unsigned int size, const void* data);
  bool sub_data_read(Renderer* renderer, unsigned int offset, unsigned int size, void* data);
  /// @}

  /// Copies `size` bytes from another buffer to a byte offset of this one. False for a null source
  /// and for bytes outside either.
  bool copy(Renderer* renderer, GpuBuffer* source, unsigned int source_offset, unsigned int offset,
            unsigned int size);

  // ---- binding ----

  /// @{
  /// Binds the buffer to the target of its present type, or nothing to that target.
  bool bind(Renderer* renderer);
  bool unbind(Renderer* renderer);
  /// @}

  /// @{
  /// Binds the buffer, or a range of its bytes, to a numbered point, which is remembered. Nothing
  /// and false for the point -1.
  bool bind_base(Renderer* renderer, int point);
  bool bind_range(Renderer* renderer, int point, unsigned int offset, unsigned int size);
  /// @}

  // ---- mapping ----

  /// Maps the whole buffer. `access` holds GL_WRITE_ONLY, GL_READ_WRITE or GL_READ_ONLY. The memory
  /// is the renderer's and is gone with unmap; null on failure.
  void* map(Renderer* renderer, const char* access);
  /// Maps a range of at least one byte. `flags` holds any of GL_MAP_READ_BIT, GL_MAP_WRITE_BIT,
  /// GL_MAP_INVALIDATE_RANGE_BIT, GL_MAP_INVALIDATE_BUFFER_BIT, GL_MAP_FLUSH_EXPLICIT_BIT,
  /// GL_MAP_UNSYNCHRONIZED_BIT, GL_MAP_PERSISTENT_BIT, GL_MAP_COHERENT_BIT; null means none.
  void* map_range(Renderer* renderer, unsigned int offset, unsigned int size, const char* flags);
  /// Flushes part of a mapped range. The mapped pointer is given up by it.
  bool flush_range(Renderer* renderer, unsigned int offset, unsigned int size);
  /// Ends the mapping. False when there was none or the contents were lost.
  bool unmap(Renderer* renderer);

  // ---- atomic counters, 4 bytes each ----

  /// @{
  /// Write or read the counter of this index. False past the end of the buffer.
  bool atomic_counter_set_value(Renderer* renderer, unsigned int index, unsigned int value);
  bool atomic_counter_get_value(Renderer* renderer, unsigned int index, unsigned int* value);
  /// @}

  // ---- typed access to mapped memory ----
  //
  // At a byte offset from the mapped pointer; no API call is made and the renderer is not read.
  // False while not mapped, when the value would not lie wholly inside the mapped memory, and for
  // null values.

  /// @{
  /// Writes a value of this kind: 4 bytes for each float and unsigned number, 64 for a matrix, 8
  /// for a 64-bit number.
  bool set_value_1f(Renderer* renderer, unsigned int offset, float x);
  bool set_value_2f(Renderer* renderer, unsigned int offset, float x, float y);
  bool set_value_3f(Renderer* renderer, unsigned int offset, float x, float y, float z);
  bool set_value_4f(Renderer* renderer, unsigned int offset, float x, float y, float z, float w);
  bool set_value_vec4(Renderer* renderer, unsigned int offset, const vec4& value);
  bool set_value_mat4(Renderer* renderer, unsigned int offset, const mat4& value);
  bool set_value_4x4f(Renderer* renderer, unsigned int offset, const float* values);
  bool set_value_1ui(Renderer* renderer, unsigned int offset, unsigned int value);
  bool set_value_ui64(Renderer* renderer, unsigned int offset, unsigned long long value);
  /// @}

  /// @{
  /// Reads a value of this kind, of the size that its setter writes.
  bool get_value_1f(Renderer* renderer, unsigned int offset, float* x);
  bool get_value_2f(Renderer* renderer, unsigned int offset, float* x, float* y);
  bool get_value_3f(Renderer* renderer, unsigned int offset, float* x, float* y, float* z);
  bool get_value_4f(Renderer* renderer, unsigned int offset, float* x, float* y, float* z,
                    float* w);
  bool get_value_vec4(Renderer* renderer, unsigned int offset, vec4* value);
  bool get_value_mat4(Renderer* renderer, unsigned int offset, mat4* value);
  bool get_value_4x4f(Renderer* renderer, unsigned int offset, float* values);
  bool get_value_1ui(Renderer* renderer, unsigned int offset, unsigned int* value);
  bool get_value_ui64(Renderer* renderer, unsigned int offset, unsigned long long* value);
  /// @}

  // ---- renderer-wide usage overrides ----

  /// @{
  /// Overrides the usage of all buffers of a kind: 0 vertex, 1 index, 4 storage buffers; 2, 3, 5
  /// and 6 are stored only. False for other numbers.
  bool set_gpu_buffer_usage_option(Renderer* renderer, unsigned int which, unsigned int value);
  unsigned int get_gpu_buffer_usage_option(Renderer* renderer, unsigned int which);
  /// @}

 private:
  GpuBufferData* data_;
};

}  // namespace orv
