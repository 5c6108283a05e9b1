#include <orv/gpu/gpu_program_uniform.h>

#include <algorithm>
#include <cstddef>

namespace orv {

namespace {

template <class T>
void copy_array(T*& target, const T* source, std::size_t size) {
  T* copy = nullptr;
  if (source && size > 0) {
    copy = new T[size];
    std::copy(source, source + size, copy);
  }
  delete[] target;
  target = copy;
}

}  // namespace

GpuProgramUniform::GpuProgramUniform(const GpuProgramUniform& other) { *this = other; }

GpuProgramUniform& GpuProgramUniform::operator=(const GpuProgramUniform& other) {
  if (this == &other) return *this;
  location = other.location;
  type = other.type;
  dirty = other.dirty;
  num_uploads = other.num_uploads;
  std::copy(other.name, other.name + 64, name);
  std::copy(other.value_ui, other.value_ui + 4, value_ui);
  std::copy(other.value_i, other.value_i + 4, value_i);
  std::copy(other.value_f, other.value_f + 4, value_f);
  std::copy(other.value_d, other.value_d + 4, value_d);
  std::copy(other.value_mat4f, other.value_mat4f + 16, value_mat4f);
  std::copy(other.value_mat4d, other.value_mat4d + 16, value_mat4d);
  count = other.count;
  elements = other.elements;
  const std::size_t size = static_cast<std::size_t>(std::max(count, 0)) *
                           static_cast<std::size_t>(std::max(elements, 0));
  copy_array(values_f, other.values_f, size);
  copy_array(values_d, other.values_d, size);
  copy_array(values_i, other.values_i, size);
  copy_array(values_ui64, other.values_ui64, size);
  shader_type = other.shader_type;
  std::copy(other.subroutine_name, other.subroutine_name + 64, subroutine_name);
  gpu_buffer_offset = other.gpu_buffer_offset;
  return *this;
}

GpuProgramUniform::~GpuProgramUniform() {
  delete[] values_f;
  delete[] values_d;
  delete[] values_i;
  delete[] values_ui64;
}

}  // namespace orv
