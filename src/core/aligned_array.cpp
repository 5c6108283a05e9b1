#include <orv/core/aligned_array.h>

#include <orv/geometry/vertex.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <new>

namespace orv {

namespace {

template <class T>
T* new_aligned(unsigned int count, int alignment, unsigned char** raw) {
  const size_t step = alignment > 1 ? static_cast<size_t>(alignment) : 1;
  if (count > (std::numeric_limits<std::ptrdiff_t>::max() - step) / sizeof(T)) {
    throw std::bad_alloc();
  }
  auto* block = new unsigned char[count * sizeof(T) + step - 1];
  if (raw) *raw = block;
  const auto address = reinterpret_cast<std::uintptr_t>(block);
  const std::uintptr_t padding = (~address + 1) & (step - 1);
  auto* elements = reinterpret_cast<T*>(block + padding);
  std::uninitialized_value_construct_n(elements, count);
  return elements;
}

template <class T>
void delete_aligned(T** array, unsigned char** raw) {
  if (array) *array = nullptr;
  if (!raw) return;
  delete[] * raw;
  *raw = nullptr;
}

}  // namespace

#define ORV_ALIGNED_ARRAY(name, T)                                                    \
  T* AlignedNew_##name(unsigned int count, int alignment, unsigned char** raw) {      \
    return new_aligned<T>(count, alignment, raw);                                     \
  }                                                                                   \
  void AlignedDelete_##name(T** array, unsigned int /*count*/, unsigned char** raw) { \
    delete_aligned(array, raw);                                                       \
  }

ORV_ALIGNED_ARRAY(u32, unsigned int)
ORV_ALIGNED_ARRAY(vec2, vec2)
ORV_ALIGNED_ARRAY(vec3, vec3)
ORV_ALIGNED_ARRAY(vec4, vec4)
ORV_ALIGNED_ARRAY(Vertex, Vertex)
ORV_ALIGNED_ARRAY(Vertex_64, Vertex_64)
ORV_ALIGNED_ARRAY(Vertex_32, Vertex_32)
ORV_ALIGNED_ARRAY(Vertex_PhysXCloth, Vertex_PhysXCloth)

#undef ORV_ALIGNED_ARRAY

}  // namespace orv
