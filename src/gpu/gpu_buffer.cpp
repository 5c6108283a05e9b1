#include <orv/gpu/gpu_buffer.h>

#include <orv/gpu/gpu_buffer_data.h>
#include <orv/math/mat4.h>
#include <orv/math/vec4.h>
#include <orv/render/renderer.h>

#include <cstring>

namespace orv {

namespace {

// The place of `width` bytes in mapped memory, or null when they do not lie wholly inside it.
unsigned char* mapped_place(const GpuBufferData& data, unsigned int offset, std::size_t width) {
  const std::size_t size = data.get_mapped_size();
  if (width > size || offset > size - width) return nullptr;
  return static_cast<unsigned char*>(data.mapped_ptr) + offset;
}

template <class T>
bool write_values(const GpuBufferData& data, unsigned int offset, const T* values, int count) {
  const std::size_t width = sizeof(T) * static_cast<std::size_t>(count);
  unsigned char* place = values ? mapped_place(data, offset, width) : nullptr;
  if (!place) return false;
  std::memcpy(place, values, width);
  return true;
}

template <class T>
bool read_values(const GpuBufferData& data, unsigned int offset, T* values, int count) {
  const std::size_t width = sizeof(T) * static_cast<std::size_t>(count);
  const unsigned char* place = values ? mapped_place(data, offset, width) : nullptr;
  if (!place) return false;
  std::memcpy(values, place, width);
  return true;
}

}  // namespace

// ---- life ------------------------------------------------------------------------------------

GpuBuffer::GpuBuffer() : data_(new GpuBufferData) { set_type(NODE_TYPE_GPU_BUFFER); }

GpuBuffer::~GpuBuffer() { delete data_; }

bool GpuBuffer::_cleanup(Renderer* renderer) { return free(renderer); }

int GpuBuffer::get_renderer_id() { return data_->renderer_id; }

bool GpuBuffer::set_state(const char* name, bool value) { return data_->set_state(name, value); }

bool GpuBuffer::is_allocated() const { return data_->is_allocated(); }

// ---- memory ----------------------------------------------------------------------------------

bool GpuBuffer::alloc(Renderer* renderer, GPU_BUFFER_TYPE type, BUFFER_OBJECT_USAGE usage,
                      unsigned int size, const void* data) {
  return renderer && renderer->gpu_buffer_alloc(nullptr, data_, type, usage, size, data);
}

bool GpuBuffer::alloc_uniform_buffer(Renderer* renderer, BUFFER_OBJECT_USAGE usage,
                                     GpuProgramData* program, const char* block_name,
                                     const void* data) {
  return renderer && renderer->gpu_buffer_alloc_uniform_buffer(nullptr, data_, usage, program,
                                                               block_name, data);
}

bool GpuBuffer::alloc_uniform_buffer_v2(Renderer* renderer, BUFFER_OBJECT_USAGE usage,
                                        GpuProgramData* program, int block_index,
                                        const void* data) {
  return renderer && renderer->gpu_buffer_alloc_uniform_buffer_v2(nullptr, data_, usage, program,
                                                                  block_index, data);
}

bool GpuBuffer::free(Renderer* renderer) { return renderer && renderer->gpu_buffer_free(data_); }

bool GpuBuffer::sub_data_write(Renderer* renderer, unsigned int offset, unsigned int size,
                               const void* data) {
  return renderer && renderer->gpu_buffer_sub_data_write(data_, offset, size, data);
}

bool GpuBuffer::sub_data_read(Renderer* renderer, unsigned int offset, unsigned int size,
                              void* data) {
  return renderer && renderer->gpu_buffer_sub_data_read(data_, offset, size, data);
}

bool GpuBuffer::copy(Renderer* renderer, GpuBuffer* source, unsigned int source_offset,
                     unsigned int offset, unsigned int size) {
  return renderer && source &&
         renderer->gpu_buffer_copy(data_, source->data_, source_offset, offset, size);
}

// ---- binding ---------------------------------------------------------------------------------

bool GpuBuffer::bind(Renderer* renderer) { return renderer && renderer->gpu_buffer_bind(data_); }

bool GpuBuffer::unbind(Renderer* renderer) {
  return renderer && renderer->gpu_buffer_unbind(data_);
}

bool GpuBuffer::bind_base(Renderer* renderer, int point) {
  return renderer && renderer->gpu_buffer_bind_base(data_, point);
}

bool GpuBuffer::bind_range(Renderer* renderer, int point, unsigned int offset, unsigned int size) {
  return renderer && renderer->gpu_buffer_bind_range(data_, point, offset, size);
}

// ---- mapping ---------------------------------------------------------------------------------

void* GpuBuffer::map(Renderer* renderer, const char* access) {
  if (!renderer) return nullptr;
  void* place = renderer->gpu_buffer_map(data_, access);
  if (place) data_->mapped_size = 0;
  return place;
}

void* GpuBuffer::map_range(Renderer* renderer, unsigned int offset, unsigned int size,
                           const char* flags) {
  // A mapped size of 0 stands for the whole buffer.
  if (!renderer || size == 0) return nullptr;
  void* place = renderer->gpu_buffer_map_range(data_, offset, size, flags);
  if (place) data_->mapped_size = size;
  return place;
}

bool GpuBuffer::flush_range(Renderer* renderer, unsigned int offset, unsigned int size) {
  return renderer && renderer->gpu_buffer_flush_range(data_, offset, size);
}

bool GpuBuffer::unmap(Renderer* renderer) { return renderer && renderer->gpu_buffer_unmap(data_); }

// ---- atomic counters -------------------------------------------------------------------------

bool GpuBuffer::atomic_counter_set_value(Renderer* renderer, unsigned int index,
                                         unsigned int value) {
  return renderer && renderer->gpu_buffer_set_atomic_counter(data_, index, value);
}

bool GpuBuffer::atomic_counter_get_value(Renderer* renderer, unsigned int index,
                                         unsigned int* value) {
  return renderer && renderer->gpu_buffer_get_atomic_counter(data_, index, value);
}

// ---- typed access to mapped memory -----------------------------------------------------------

bool GpuBuffer::set_value_1f(Renderer*, unsigned int offset, float x) {
  return write_values(*data_, offset, &x, 1);
}

bool GpuBuffer::set_value_2f(Renderer*, unsigned int offset, float x, float y) {
  const float values[] = {x, y};
  return write_values(*data_, offset, values, 2);
}

bool GpuBuffer::set_value_3f(Renderer*, unsigned int offset, float x, float y, float z) {
  const float values[] = {x, y, z};
  return write_values(*data_, offset, values, 3);
}

bool GpuBuffer::set_value_4f(Renderer*, unsigned int offset, float x, float y, float z, float w) {
  const float values[] = {x, y, z, w};
  return write_values(*data_, offset, values, 4);
}

bool GpuBuffer::set_value_vec4(Renderer*, unsigned int offset, const vec4& value) {
  return write_values(*data_, offset, value.ptr(), 4);
}

bool GpuBuffer::set_value_mat4(Renderer*, unsigned int offset, const mat4& value) {
  return write_values(*data_, offset, value.ptr(), 16);
}

bool GpuBuffer::set_value_4x4f(Renderer*, unsigned int offset, const float* values) {
  return write_values(*data_, offset, values, 16);
}

bool GpuBuffer::set_value_1ui(Renderer*, unsigned int offset, unsigned int value) {
  return write_values(*data_, offset, &value, 1);
}

bool GpuBuffer::set_value_ui64(Renderer*, unsigned int offset, unsigned long long value) {
  return write_values(*data_, offset, &value, 1);
}

bool GpuBuffer::get_value_1f(Renderer*, unsigned int offset, float* x) {
  return read_values(*data_, offset, x, 1);
}

bool GpuBuffer::get_value_2f(Renderer*, unsigned int offset, float* x, float* y) {
  float values[2];
  if (!x || !y || !read_values(*data_, offset, values, 2)) return false;
  *x = values[0];
  *y = values[1];
  return true;
}

bool GpuBuffer::get_value_3f(Renderer*, unsigned int offset, float* x, float* y, float* z) {
  float values[3];
  if (!x || !y || !z || !read_values(*data_, offset, values, 3)) return false;
  *x = values[0];
  *y = values[1];
  *z = values[2];
  return true;
}

bool GpuBuffer::get_value_4f(Renderer*, unsigned int offset, float* x, float* y, float* z,
                             float* w) {
  float values[4];
  if (!x || !y || !z || !w || !read_values(*data_, offset, values, 4)) return false;
  *x = values[0];
  *y = values[1];
  *z = values[2];
  *w = values[3];
  return true;
}

bool GpuBuffer::get_value_vec4(Renderer*, unsigned int offset, vec4* value) {
  return value && read_values(*data_, offset, value->ptr(), 4);
}

bool GpuBuffer::get_value_mat4(Renderer*, unsigned int offset, mat4* value) {
  return value && read_values(*data_, offset, value->ptr(), 16);
}

bool GpuBuffer::get_value_4x4f(Renderer*, unsigned int offset, float* values) {
  return read_values(*data_, offset, values, 16);
}

bool GpuBuffer::get_value_1ui(Renderer*, unsigned int offset, unsigned int* value) {
  return read_values(*data_, offset, value, 1);
}

bool GpuBuffer::get_value_ui64(Renderer*, unsigned int offset, unsigned long long* value) {
  return read_values(*data_, offset, value, 1);
}

// ---- renderer-wide usage overrides -----------------------------------------------------------

bool GpuBuffer::set_gpu_buffer_usage_option(Renderer* renderer, unsigned int which,
                                            unsigned int value) {
  return renderer && renderer->gpu_buffer_set_usage_option(which, value);
}

unsigned int GpuBuffer::get_gpu_buffer_usage_option(Renderer* renderer, unsigned int which) {
  return renderer ? renderer->gpu_buffer_get_usage_option(which) : 0;
}

}  // namespace orv
