#include <orv/geometry/geometry_core.h>

#include <orv/core/utils.h>
#include <orv/gpu/gpu_buffer_data.h>

#include <algorithm>
#include <cstdio>

#include "geometry/face_access.h"

namespace orv {

GeometryCore::GeometryCore() : vb_(new GpuBufferData), vb_source(vb_), id(utils::gen_id()) {
  static constexpr const char* NAMES[4] = {"orvex_Position", "orvex_TexCoord0", "orvex_Normal",
                                           "orvex_Color"};
  for (int i = 0; i < 4; ++i) {
    std::snprintf(std_attrib_data[i].name, sizeof(std_attrib_data[i].name), "%s", NAMES[i]);
    std_attrib_data[i].location = i;
  }
}

GeometryCore::~GeometryCore() {
  GeometryCore::free_vertex_data();
  // Arrays may exist without vertices: they can be appended one by one.
  free_vertex_attrib_arrays();
  free_interleaved_and_particles();
  free_face_arrays();
  GeometryCore::free_quad_edge_data();
  free_subsets();
  delete vb_;
}

// ---- plain state ----

void GeometryCore::set_vertex_draw_range(int start, int count) {
  draw_start = start;
  draw_count = count;
}

void GeometryCore::set_use_generic_vertex_attribs_state(bool state) {
  use_generic_vertex_attribs = state;
  use_gl2_built_in_vertex_attribs = !state;
}

void GeometryCore::dec_ref() {
  if (ref_count > 0) --ref_count;
}

void GeometryCore::update_thread() { thread.update(); }

bool GeometryCore::check_thread() const { return Thread() == thread; }

void GeometryCore::set_vb_source(GpuBufferData* buffer) { vb_source = buffer ? buffer : vb_; }

// ---- upload marks ----

void GeometryCore::begin_layout_change() {
  ++layout_serial;
  gpu_state.cpu_released = false;
}

bool GeometryCore::is_update_interleaved_vertex_array_needed() const {
  return vertices && update_interleaved_needed;
}

void GeometryCore::update_interleaved_vertex_array_set_state(bool state) {
  update_interleaved_needed = state;
  if (state) ++interleaved_serial;
  interleaved_whole_dirty = state || interleaved_raw_shared;
  interleaved_dirty_begin = 0;
  interleaved_dirty_end = 0;
}

void GeometryCore::mark_interleaved(unsigned int begin, unsigned int end) {
  update_interleaved_needed = true;
  ++interleaved_serial;
  if (interleaved_dirty_end == 0) {
    interleaved_dirty_begin = begin;
    interleaved_dirty_end = end;
  } else {
    interleaved_dirty_begin = std::min(interleaved_dirty_begin, begin);
    interleaved_dirty_end = std::max(interleaved_dirty_end, end);
  }
}

void GeometryCore::get_dirty_interleaved_vertices(unsigned int* begin, unsigned int* end) const {
  const bool whole = interleaved_whole_dirty || interleaved_dirty_end == 0;
  unsigned int first = whole ? 0 : std::min(interleaved_dirty_begin, num_vertices);
  unsigned int last = whole ? num_vertices : std::min(interleaved_dirty_end, num_vertices);
  if (!is_update_interleaved_vertex_array_needed()) first = last = 0;
  if (begin) *begin = first;
  if (end) *end = last;
}

bool GeometryCore::is_update_separate_vertex_arrays_needed() const {
  return std::any_of(attrib_arrays, attrib_arrays + num_attrib_arrays,
                     [](const VertexAttribArray* array) { return array->is_update_needed(); });
}

bool GeometryCore::is_update_vertex_buffer_needed() const {
  return is_update_interleaved_vertex_array_needed() || is_update_separate_vertex_arrays_needed();
}

// ---- faces ----

bool GeometryCore::set_face_indices(unsigned int face, unsigned int a, unsigned int b,
                                    unsigned int c) {
  FaceAccess faces(*this);
  if (face >= faces.size()) return false;
  faces.set(face, a, b, c);
  ++faces_serial;
  return true;
}

}  // namespace orv
