#include <orv/geometry/vertex_attrib_array.h>

#include <orv/core/aligned_array.h>
#include <orv/geometry/geometry_core.h>
#include <orv/math/vec2.h>
#include <orv/math/vec3.h>
#include <orv/math/vec4.h>

#include <algorithm>
#include <cstring>

#include "core/large_array.h"
#include "geometry/limits.h"

namespace orv {

namespace {

template <class T>
T* new_elements(unsigned int n, int byte_alignment, unsigned char** raw,
                T* (*new_aligned)(unsigned int, int, unsigned char**)) {
  *raw = nullptr;
  return byte_alignment > 0 ? new_aligned(n, byte_alignment, raw) : detail::new_large_array<T>(n);
}

template <class T>
void delete_elements(T* elements, unsigned int n, unsigned char* raw,
                     void (*delete_aligned)(T**, unsigned int, unsigned char**)) {
  if (raw) {
    delete_aligned(&elements, n, &raw);
  } else {
    delete[] elements;
  }
}

template <class Header>
void reset_header(Header& array) {
  array.num_elements = 0;
  array.data = nullptr;
  array.raw_data = nullptr;
}

}  // namespace

VertexAttribArray::~VertexAttribArray() { free_data(); }

// ---- storage ----

bool VertexAttribArray::alloc_data(unsigned int n, int byte_alignment) {
  if (n != 0) return allocate(4, n, byte_alignment);
  if (num_elements <= 0) return false;
  return allocate(4, static_cast<unsigned int>(num_elements), alignment);
}

bool VertexAttribArray::alloc_data_v2(int dim, unsigned int n, int byte_alignment) {
  if (n == 0 || dim == 4) return alloc_data(n, byte_alignment);
  if (dim < 1 || dim > 3) return false;
  return allocate(dim, n, byte_alignment);
}

bool VertexAttribArray::allocate(int dim, unsigned int n, int byte_alignment) {
  check_geometry_bytes(n, static_cast<unsigned int>(dim) * sizeof(float));

  unsigned char* raw = nullptr;
  vec4* of_vec4 = nullptr;
  vec3* of_vec3 = nullptr;
  vec2* of_vec2 = nullptr;
  float* of_f32 = nullptr;
  switch (dim) {
    case 4:
      of_vec4 = new_elements(n, byte_alignment, &raw, AlignedNew_vec4);
      break;
    case 3:
      of_vec3 = new_elements(n, byte_alignment, &raw, AlignedNew_vec3);
      break;
    case 2:
      of_vec2 = new_elements(n, byte_alignment, &raw, AlignedNew_vec2);
      break;
    default:
      of_f32 = new float[n]();
  }

  free_data();
  data_vec4 = of_vec4;
  data_vec3 = of_vec3;
  data_vec2 = of_vec2;
  data_f32 = of_f32;
  raw_data = raw;
  data = of_vec4   ? static_cast<void*>(of_vec4)
         : of_vec3 ? static_cast<void*>(of_vec3)
         : of_vec2 ? static_cast<void*>(of_vec2)
                   : static_cast<void*>(of_f32);
  num_elements = static_cast<int>(n);
  element_dim = dim;
  element_size = dim * static_cast<int>(sizeof(float));
  alignment = byte_alignment;
  whole_dirty = true;
  touch_layout();
  return true;
}

void VertexAttribArray::free_data() {
  const unsigned int n = static_cast<unsigned int>(num_elements);
  delete_elements(data_vec4, n, data_vec4 ? raw_data : nullptr, AlignedDelete_vec4);
  delete_elements(data_vec3, n, data_vec3 ? raw_data : nullptr, AlignedDelete_vec3);
  delete_elements(data_vec2, n, data_vec2 ? raw_data : nullptr, AlignedDelete_vec2);
  delete[] data_f32;
  reset();
}

void VertexAttribArray::reset() {
  if (data) touch_layout();
  num_elements = 0;
  element_dim = 0;
  element_size = 0;
  raw_data = nullptr;
  data = nullptr;
  data_vec4 = nullptr;
  data_vec3 = nullptr;
  data_vec2 = nullptr;
  data_f32 = nullptr;
  alignment = 0;
  raw_shared = false;
  update_needed(false);
}

bool VertexAttribArray::copy(const VertexAttribArray* src) {
  if (!src || src == this) return false;
  if (!data || !src->data || get_size() != src->get_size()) return false;
  std::memcpy(data, src->data, get_size());
  set_location(src->location);
  set_divisor(src->divisor);
  std::memcpy(name, src->name, sizeof(name));
  update_needed(true);
  return true;
}

// ---- elements ----

vec4 VertexAttribArray::get_element_vec4(unsigned int i) const {
  if (i >= static_cast<unsigned int>(num_elements)) return vec4();
  if (data_vec4) return data_vec4[i];
  if (data_vec3) return vec4(data_vec3[i].x, data_vec3[i].y, data_vec3[i].z, 1.0f);
  if (data_vec2) return vec4(data_vec2[i].x, data_vec2[i].y, 0.0f, 1.0f);
  if (data_f32) return vec4(data_f32[i], 0.0f, 0.0f, 1.0f);
  return vec4();
}

void VertexAttribArray::set_element_vec4(unsigned int i, const vec4& v) {
  if (i >= static_cast<unsigned int>(num_elements) || !data) return;
  if (data_vec4) {
    data_vec4[i] = v;
  } else if (data_vec3) {
    data_vec3[i] = vec3(v.x, v.y, v.z);
  } else if (data_vec2) {
    data_vec2[i] = vec2(v.x, v.y);
  } else if (data_f32) {
    data_f32[i] = v.x;
  }
  mark_elements(i, i + 1);
}

// ---- upload marks ----

void VertexAttribArray::update_needed(bool state) {
  if (state) tell_mark();
  update_needed_ = state;
  whole_dirty = state || raw_shared;
  dirty_begin = 0;
  dirty_end = 0;
}

void VertexAttribArray::tell_mark() {
  ++content_serial;
  if (owner) owner->attribs_marked = true;
}

void VertexAttribArray::mark_elements(unsigned int begin, unsigned int end) {
  tell_mark();
  update_needed_ = true;
  if (dirty_end == 0) {
    dirty_begin = begin;
    dirty_end = end;
  } else {
    dirty_begin = std::min(dirty_begin, begin);
    dirty_end = std::max(dirty_end, end);
  }
}

void VertexAttribArray::get_dirty_elements(unsigned int* begin, unsigned int* end) const {
  const unsigned int count = data ? static_cast<unsigned int>(num_elements) : 0;
  const bool whole = whole_dirty || dirty_end == 0;
  unsigned int first = whole ? 0 : std::min(dirty_begin, count);
  unsigned int last = whole ? count : std::min(dirty_end, count);
  if (!update_needed_) first = last = 0;
  if (begin) *begin = first;
  if (end) *end = last;
}

// ---- description ----

void VertexAttribArray::set_name(const char* s) {
  if (!s || !*s) return;
  const std::size_t length = strnlen(s, sizeof(name) - 1);
  std::memmove(name, s, length);
  std::memset(name + length, 0, sizeof(name) - length);
}

void VertexAttribArray::set_name_and_loc(const char* s, int loc) {
  set_name(s);
  set_location(loc);
}

void VertexAttribArray::set_location(int loc) {
  if (location != loc) touch_layout();
  location = loc;
}

void VertexAttribArray::set_divisor(int instances) {
  if (divisor != instances) touch_layout();
  divisor = instances;
}

void VertexAttribArray::touch_layout() {
  if (owner) ++owner->layout_serial;
}

unsigned int VertexAttribArray::get_size() const {
  return static_cast<unsigned int>(element_size) * static_cast<unsigned int>(num_elements);
}

void* VertexAttribArray::get_data_ptr() {
  raw_shared = whole_dirty = true;
  return data;
}

float* VertexAttribArray::get_data_f32_ptr() {
  raw_shared = whole_dirty = true;
  return data_f32;
}

vec2* VertexAttribArray::get_data_vec2_ptr() {
  raw_shared = whole_dirty = true;
  return data_vec2;
}

vec3* VertexAttribArray::get_data_vec3_ptr() {
  raw_shared = whole_dirty = true;
  return data_vec3;
}

vec4* VertexAttribArray::get_data_vec4_ptr() {
  raw_shared = whole_dirty = true;
  return data_vec4;
}

// ---- small descriptions ----

void VertexAttribArray_2f::reset() { reset_header(*this); }

void VertexAttribArray_3f::reset() { reset_header(*this); }

}  // namespace orv
