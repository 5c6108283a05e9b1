#include <orv/geometry/geometry_core.h>

#include <algorithm>
#include <cstring>

#include "geometry/limits.h"

namespace orv {

// ---- sizes ----

namespace {

unsigned int fit_in_32_bits(unsigned long long bytes) {
  return static_cast<unsigned int>(std::min(bytes, 0xFFFFFFFFull));
}

}  // namespace

unsigned long long GeometryCore::vertex_buffer_bytes() const {
  unsigned long long bytes = get_interleaved_vertex_array_size();
  for (unsigned int i = 0; i < num_attrib_arrays; ++i) bytes += attrib_arrays[i]->get_size();
  return bytes;
}

unsigned int GeometryCore::get_interleaved_vertex_array_size() const {
  return vertices ? num_vertices * static_cast<unsigned int>(sizeof(Vertex)) : 0;
}

unsigned int GeometryCore::get_separate_vertex_arrays_size() const {
  return fit_in_32_bits(vertex_buffer_bytes() - get_interleaved_vertex_array_size());
}

unsigned int GeometryCore::get_total_vertex_buffer_size() const {
  return fit_in_32_bits(vertex_buffer_bytes());
}

unsigned int GeometryCore::get_total_index_buffer_size() const {
  if (indices) return num_faces * static_cast<unsigned int>(sizeof(unsigned int));
  if (index_bits == 16) return num_faces * static_cast<unsigned int>(sizeof(FaceU16));
  return num_faces * static_cast<unsigned int>(sizeof(FaceU32));
}

void* GeometryCore::get_index_buffer_data_ptr() {
  if (indices) return indices;
  if (index_bits == 16) return faces_u16;
  return faces_u32;
}

// ---- vertex memory in the layout of the vertex buffer ----

bool GeometryCore::interleaved_vertex_array_to_memory(void* p) {
  if (!vertices || !p) return false;
  std::memcpy(p, vertices, get_interleaved_vertex_array_size());
  return true;
}

bool GeometryCore::separate_vertex_arrays_to_memory(void* p) {
  if (!p || vertex_buffer_bytes() > MAX_GEOMETRY_BYTES) return false;
  auto* target = static_cast<unsigned char*>(p) + get_interleaved_vertex_array_size();
  for (unsigned int i = 0; i < num_attrib_arrays; ++i) {
    const VertexAttribArray& array = *attrib_arrays[i];
    if (array.data) std::memcpy(target, array.data, array.get_size());
    target += array.get_size();
  }
  return true;
}

bool GeometryCore::vertex_arrays_to_memory(void* p) {
  interleaved_vertex_array_to_memory(p);
  separate_vertex_arrays_to_memory(p);
  return true;
}

bool GeometryCore::interleaved_vertex_array_from_memory(const void* p) {
  if (!vertices || !p) return false;
  std::memcpy(static_cast<void*>(vertices), p, get_interleaved_vertex_array_size());
  update_interleaved_vertex_array_set_state(true);
  return true;
}

bool GeometryCore::separate_vertex_arrays_from_memory(const void* p) {
  if (!p || vertex_buffer_bytes() > MAX_GEOMETRY_BYTES) return false;
  const auto* source = static_cast<const unsigned char*>(p) + get_interleaved_vertex_array_size();
  for (unsigned int i = 0; i < num_attrib_arrays; ++i) {
    VertexAttribArray& array = *attrib_arrays[i];
    if (array.data) std::memcpy(array.data, source, array.get_size());
    source += array.get_size();
    array.update_needed(true);
  }
  return true;
}

bool GeometryCore::vertex_arrays_from_memory(const void* p) {
  interleaved_vertex_array_from_memory(p);
  separate_vertex_arrays_from_memory(p);
  return true;
}

// ---- copies ----

bool GeometryCore::copy_vertex_data(GeometryCore* src, bool realloc) {
  if (!src || src->num_vertices == 0) return false;
  if (realloc) {
    free_vertex_data();
    set_alloc_params(src->alloc_params);
    if (!alloc_vertex_data()) return false;
  }
  copy_vertex_attrib_arrays(src);
  if (vertices && src->vertices && vertices != src->vertices) {
    const std::size_t n = std::min(num_vertices, src->num_vertices);
    std::copy_n(src->vertices, n, vertices);
    update_interleaved_vertex_array_set_state(true);
  }
  return true;
}

bool GeometryCore::copy_vertex_attrib_arrays(GeometryCore* src) {
  if (!src || src->num_vertices == 0) return false;
  for (unsigned int i = 0; i < src->num_attrib_arrays; ++i) {
    const VertexAttribArray* own = get_vertex_attrib_array(i);
    VertexAttribArray* appended = alloc_new_vertex_attrib_array(src->num_vertices);
    if (!appended) continue;
    appended->copied_from_own = true;
    if (own) appended->copy(own);
  }
  return true;
}

bool GeometryCore::copy_face_data(GeometryCore* src, bool realloc) {
  if (!src || src->num_faces == 0) return false;
  if (realloc) {
    const unsigned int count = src->num_faces;
    free_face_data();
    if (!alloc_face_data(count, false)) return false;
  }
  if (num_faces != src->num_faces) return false;
  const std::size_t n = num_faces;
  if (index_bits == 16) {
    if (faces_u16 && src->faces_u16) std::copy_n(src->faces_u16, n, faces_u16);
  } else {
    if (faces_u32 && src->faces_u32) std::copy_n(src->faces_u32, n, faces_u32);
  }
  if (face_normals && src->face_normals) std::copy_n(src->face_normals, n, face_normals);
  if (face_materials && src->face_materials) std::copy_n(src->face_materials, n, face_materials);
  ib_update_faces_list_set_state(true);
  return true;
}

// ---- what a renderer binds and draws ----

void GeometryCore::note_uploaded() {
  if (gpu_state.uploaded_serial == layout_serial) return;
  get_gpu_layout(&gpu_state.released);
  gpu_state.uploaded_serial = layout_serial;
}

void GeometryCore::get_gpu_layout(GeometryGpuLayout* out) const {
  if (!out) return;
  if (gpu_state.cpu_released) {
    *out = gpu_state.released;
    return;
  }
  GeometryGpuLayout layout;
  layout.num_vertices = num_vertices;
  layout.num_faces = num_faces;
  layout.index_bits = index_bits;
  layout.generic_indices = indices != nullptr;
  layout.interleaved_size = get_interleaved_vertex_array_size();
  for (int i = 0; i < 4; ++i) layout.std_locations[i] = std_attrib_data[i].location;
  layout.num_attribs = num_attrib_arrays;
  for (unsigned int i = 0; i < num_attrib_arrays; ++i) {
    const VertexAttribArray& array = *attrib_arrays[i];
    GeometryGpuAttrib& attrib = layout.attribs[i];
    attrib.location = array.location;
    attrib.divisor = array.divisor;
    attrib.element_dim = array.element_dim;
    attrib.element_size = array.element_size;
    attrib.num_elements = static_cast<unsigned int>(array.num_elements);
    attrib.copied_from_own = array.copied_from_own;
  }
  *out = layout;
}

}  // namespace orv
