#include <orv/core/log_mgr.h>
#include <orv/geometry/geometry_core.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>

#include "geometry/limits.h"

namespace orv {

// ---- making and freeing ----

VertexAttribArray* GeometryCore::alloc_new_vertex_attrib_array(unsigned int n) {
  const unsigned int index = num_attrib_arrays;
  if (index >= MAX_VERTEX_ATTRIBS) {
    LogMgr::get().tracef_warning(
        "Geometry core allocation failed for vertex attrib array %lu - max number of vertex "
        "attribs reached (%d)",
        static_cast<unsigned long>(index) + 1, static_cast<int>(MAX_VERTEX_ATTRIBS));
    return nullptr;
  }
  begin_layout_change();
  try {
    auto array = std::make_unique<VertexAttribArray>();
    std::snprintf(array->name, sizeof(array->name), "%s%d", "orvex_Attrib",
                  static_cast<int>(index));
    array->location = static_cast<int>(index);

    const int dim = alloc_params.vertex_attrib_dim[index];
    if (dim >= 1 && dim <= 4) {
      const std::uint64_t element_size = static_cast<std::uint64_t>(dim) * sizeof(float);
      check_geometry_bytes(n, element_size);
      check_geometry_bytes(vertex_buffer_bytes() + n * element_size, 1);
    }
    array->alloc_data_v2(dim, n, alloc_params.vertex_alignment);
    array->owner = this;
    attrib_arrays[index] = array.release();
    ++num_attrib_arrays;
    return attrib_arrays[index];
  } catch (const std::exception& e) {
    LogMgr::get().tracef_error(
        "Geometry core allocation failed for vertex attrib array %lu - %lu vertices required - "
        "error: %s",
        static_cast<unsigned long>(index) + 1, static_cast<unsigned long>(n), e.what());
  } catch (...) {
    LogMgr::get().tracef_error(
        "Geometry core allocation failed for vertex attrib array %lu - %lu vertices required - "
        "unknown error",
        static_cast<unsigned long>(index) + 1, static_cast<unsigned long>(n));
  }
  return nullptr;
}

bool GeometryCore::alloc_vertex_attrib_arrays(unsigned int count, unsigned int n) {
  free_vertex_attrib_arrays();
  const unsigned int wanted = std::min(count, MAX_VERTEX_ATTRIBS);
  for (unsigned int i = 0; i < wanted; ++i) {
    if (!alloc_new_vertex_attrib_array(n)) break;
  }
  return true;
}

bool GeometryCore::free_vertex_attrib_arrays() {
  begin_layout_change();
  for (VertexAttribArray*& array : attrib_arrays) {
    delete array;
    array = nullptr;
  }
  num_attrib_arrays = 0;
  return true;
}

VertexAttribArray* GeometryCore::get_vertex_attrib_array(unsigned int i) const {
  return i < num_attrib_arrays && i < MAX_VERTEX_ATTRIBS ? attrib_arrays[i] : nullptr;
}

bool GeometryCore::init_standard_vertex_attrib_arrays(unsigned int n) {
  if (!alloc_params.std_vertex_attribs) return false;
  alloc_vertex_attrib_arrays(4, n);
  for (unsigned int i = 0; i < 4; ++i) {
    VertexAttribArray* array = get_vertex_attrib_array(i);
    if (!array) return false;
    array->set_name_and_loc(std_attrib_data[i].name, static_cast<int>(i));
  }
  return true;
}

bool GeometryCore::init_user_vertex_attribs_arrays(unsigned int n) {
  for (unsigned int i = 0; i < alloc_params.num_user_attribs; ++i) {
    if (!alloc_new_vertex_attrib_array(n)) break;
  }
  return true;
}

// ---- description ----

bool GeometryCore::assign_vertex_attrib_name_and_location(unsigned int i, const char* attrib_name,
                                                          int loc) {
  if (separate_vertex_arrays) {
    VertexAttribArray* array = get_vertex_attrib_array(i);
    if (!array) return false;
    array->set_name_and_loc(attrib_name, loc);
    return true;
  }
  if (i < 4) {
    VertexAttribData& attrib = std_attrib_data[i];
    if (attrib_name && *attrib_name) {
      std::snprintf(attrib.name, sizeof(attrib.name), "%.63s", attrib_name);
    }
    if (attrib.location != loc) ++layout_serial;
    attrib.location = loc;
  }
  return false;
}

vec4* GeometryCore::get_vertex_attrib_buffer(unsigned int i) {
  VertexAttribArray* array = get_vertex_attrib_array(i);
  return array ? array->get_data_vec4_ptr() : nullptr;
}

float* GeometryCore::get_vertex_attrib_buffer_float_ptr(unsigned int i) {
  vec4* elements = get_vertex_attrib_buffer(i);
  return elements ? elements->ptr() : nullptr;
}

// ---- elements ----

bool GeometryCore::set_vertex_attrib_element(unsigned int array, unsigned int i, const vec4& v) {
  VertexAttribArray* target = get_vertex_attrib_array(array);
  if (!target || !target->data || i >= static_cast<unsigned int>(target->num_elements))
    return false;
  target->set_element_vec4(i, v);
  return true;
}

bool GeometryCore::set_vertex_attrib_element(unsigned int array, unsigned int i, const vec3& v) {
  return set_vertex_attrib_element(array, i, vec4(v));
}

bool GeometryCore::set_vertex_attrib_element(unsigned int array, unsigned int i, float x, float y,
                                             float z, float w) {
  return set_vertex_attrib_element(array, i, vec4(x, y, z, w));
}

vec4 GeometryCore::get_vertex_attrib_element(unsigned int array, unsigned int i) const {
  const VertexAttribArray* source = get_vertex_attrib_array(array);
  return source ? source->get_element_vec4(i) : vec4();
}

vec3 GeometryCore::get_vertex_attrib_element_vec3(unsigned int array, unsigned int i) const {
  return get_vertex_attrib_element(array, i).get_vec3();
}

// ---- bulk writes ----

namespace {

// Data is always an array of vec4, so elements of another size are not met one by one.
void write_vec4s(VertexAttribArray& array, const void* vec4_data, unsigned int start,
                 unsigned int count) {
  const std::uint64_t size = array.get_size();
  const std::uint64_t offset = static_cast<std::uint64_t>(start) * sizeof(vec4);
  if (offset >= size) {
    array.update_needed_ = true;
    if (array.owner) array.owner->attribs_marked = true;
    return;
  }
  const std::uint64_t bytes =
      std::min<std::uint64_t>(static_cast<std::uint64_t>(count) * sizeof(vec4), size - offset);
  std::memmove(static_cast<unsigned char*>(array.data) + offset, vec4_data, bytes);
  const std::uint64_t element = static_cast<std::uint64_t>(array.element_size);
  array.mark_elements(static_cast<unsigned int>(offset / element),
                      static_cast<unsigned int>((offset + bytes + element - 1) / element));
}

}  // namespace

bool GeometryCore::update_vertex_attrib_buffer(unsigned int array, const void* vec4_data) {
  VertexAttribArray* target = get_vertex_attrib_array(array);
  if (!target || !target->data || !vec4_data) return false;
  if (target->num_elements <= 0) return false;
  if (num_vertices > static_cast<unsigned int>(target->num_elements)) return false;
  write_vec4s(*target, vec4_data, 0, num_vertices);
  return true;
}

bool GeometryCore::update_vertex_attrib_subbuffer(unsigned int array, const void* vec4_data,
                                                  unsigned int start, unsigned int count) {
  VertexAttribArray* target = get_vertex_attrib_array(array);
  if (!target || !target->data || !vec4_data) return false;
  // The two are tested apart on purpose; what reaches past the end is cut off when written.
  const unsigned int elements = static_cast<unsigned int>(target->num_elements);
  if (start >= elements || count > elements) return false;
  write_vec4s(*target, vec4_data, start, count);
  return true;
}

}  // namespace orv
