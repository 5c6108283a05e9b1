#include <orv/geometry/geometry_core.h>

#include "geometry/std_fields.h"

namespace orv {

namespace {

constexpr unsigned int POSITION = VERTEX_ATTRIB_POSITION;
constexpr unsigned int UV0 = VERTEX_ATTRIB_UV0;
constexpr unsigned int NORMAL = VERTEX_ATTRIB_NORMAL;
constexpr unsigned int COLOR = VERTEX_ATTRIB_COLOR;

}  // namespace

// ---- the two forms behind one name ----
//
// Which form is in use is told by the flag that the last allocation set, not by which pointers are
// there: interleaved geometry may have user arrays at 0 to 3.

VertexAttribArray* GeometryCore::std_array(unsigned int attrib) const {
  return separate_vertex_arrays ? get_vertex_attrib_array(attrib) : nullptr;
}

bool GeometryCore::set_std_attrib(unsigned int attrib, unsigned int i, const vec4& v) {
  if (separate_vertex_arrays) return set_vertex_attrib_element(attrib, i, v);
  if (!vertices || i >= num_vertices) return false;
  vertices[i].*STD_FIELDS[attrib] = v;
  mark_interleaved(i, i + 1);
  return true;
}

vec4 GeometryCore::get_std_attrib(unsigned int attrib, unsigned int i) const {
  if (separate_vertex_arrays) return get_vertex_attrib_element(attrib, i);
  if (!vertices || i >= num_vertices) return vec4();
  return vertices[i].*STD_FIELDS[attrib];
}

int GeometryCore::std_attrib_location(unsigned int attrib) const {
  if (!separate_vertex_arrays) return std_attrib_data[attrib].location;
  const VertexAttribArray* array = std_array(attrib);
  return array ? array->location : -1;
}

unsigned int GeometryCore::std_attrib_size(unsigned int attrib) const {
  const VertexAttribArray* array = std_array(attrib);
  return array ? array->get_size() : 0;
}

int GeometryCore::std_attrib_dim(unsigned int attrib) const {
  if (!separate_vertex_arrays) return std_attrib_data[attrib].element_dim;
  const VertexAttribArray* array = std_array(attrib);
  return array ? array->element_dim : 0;
}

int GeometryCore::std_attrib_elt_size(unsigned int attrib) const {
  if (!separate_vertex_arrays) return std_attrib_data[attrib].element_size;
  const VertexAttribArray* array = std_array(attrib);
  return array ? array->element_size : 0;
}

void* GeometryCore::std_attrib_ptr(unsigned int attrib) {
  VertexAttribArray* array = std_array(attrib);
  return array ? array->get_data_ptr() : nullptr;
}

// ---- whole vertices ----

Vertex* GeometryCore::get_vertex(unsigned int i) {
  if (!vertices || i >= num_vertices) return nullptr;
  interleaved_raw_shared = interleaved_whole_dirty = true;
  return vertices + i;
}

Vertex GeometryCore::get_vertex_v2(unsigned int i) {
  Vertex vertex;
  for (unsigned int attrib = POSITION; attrib <= COLOR; ++attrib) {
    vertex.*STD_FIELDS[attrib] = get_std_attrib(attrib, i);
  }
  return vertex;
}

unsigned int GeometryCore::get_vertex_elt_size() { return sizeof(Vertex); }

void* GeometryCore::get_vertex_ptr() { return get_vertex(0); }

// ---- sizes and pointers ----

unsigned int GeometryCore::get_position_size() { return std_attrib_size(POSITION); }
unsigned int GeometryCore::get_color_size() { return std_attrib_size(COLOR); }
unsigned int GeometryCore::get_normal_size() { return std_attrib_size(NORMAL); }
unsigned int GeometryCore::get_uv0_size() { return std_attrib_size(UV0); }
unsigned int GeometryCore::get_uv1_size() { return 0; }
unsigned int GeometryCore::get_tangent_size() { return 0; }

int GeometryCore::get_position_vector_dim() { return std_attrib_dim(POSITION); }
int GeometryCore::get_color_vector_dim() { return std_attrib_dim(COLOR); }
int GeometryCore::get_normal_vector_dim() { return std_attrib_dim(NORMAL); }
int GeometryCore::get_uv0_vector_dim() { return std_attrib_dim(UV0); }
int GeometryCore::get_uv1_vector_dim() { return 0; }
int GeometryCore::get_tangent_vector_dim() { return 0; }

int GeometryCore::get_position_elt_size() { return std_attrib_elt_size(POSITION); }
int GeometryCore::get_color_elt_size() { return std_attrib_elt_size(COLOR); }
int GeometryCore::get_normal_elt_size() { return std_attrib_elt_size(NORMAL); }
int GeometryCore::get_uv0_elt_size() { return std_attrib_elt_size(UV0); }
int GeometryCore::get_uv1_elt_size() { return 0; }
int GeometryCore::get_tangent_elt_size() { return 0; }

void* GeometryCore::get_position_ptr() { return std_attrib_ptr(POSITION); }
void* GeometryCore::get_color_ptr() { return std_attrib_ptr(COLOR); }
void* GeometryCore::get_normal_ptr() { return std_attrib_ptr(NORMAL); }
void* GeometryCore::get_uv0_ptr() { return std_attrib_ptr(UV0); }
void* GeometryCore::get_uv1_ptr() { return nullptr; }
void* GeometryCore::get_tangent_ptr() { return nullptr; }

int GeometryCore::get_position_attrib_location() const { return std_attrib_location(POSITION); }
int GeometryCore::get_uv0_attrib_location() const { return std_attrib_location(UV0); }
int GeometryCore::get_normal_attrib_location() const { return std_attrib_location(NORMAL); }
int GeometryCore::get_color_attrib_location() const { return std_attrib_location(COLOR); }

// ---- position ----

bool GeometryCore::update_position_buffer(const void* vec4_data) {
  return update_position_subbuffer(vec4_data, 0, num_vertices);
}

bool GeometryCore::update_position_subbuffer(const void* vec4_data, unsigned int start,
                                             unsigned int count) {
  return std_array(POSITION) && update_vertex_attrib_subbuffer(POSITION, vec4_data, start, count);
}

bool GeometryCore::set_position(unsigned int i, float x, float y, float z, float w) {
  return set_std_attrib(POSITION, i, vec4(x, y, z, w));
}

bool GeometryCore::set_position(unsigned int i, const vec4& v) {
  return set_std_attrib(POSITION, i, v);
}

bool GeometryCore::set_position(unsigned int i, const vec3& v) {
  return set_std_attrib(POSITION, i, vec4(v));
}

vec3 GeometryCore::get_position(unsigned int i) { return get_std_attrib(POSITION, i).get_vec3(); }

vec4 GeometryCore::get_position_4f(unsigned int i) { return get_std_attrib(POSITION, i); }

// ---- colour ----

bool GeometryCore::update_color_buffer(const void* vec4_data) {
  return update_color_subbuffer(vec4_data, 0, num_vertices);
}

bool GeometryCore::update_color_subbuffer(const void* vec4_data, unsigned int start,
                                          unsigned int count) {
  return std_array(COLOR) && update_vertex_attrib_subbuffer(COLOR, vec4_data, start, count);
}

bool GeometryCore::set_color(unsigned int i, float r, float g, float b, float a) {
  return set_std_attrib(COLOR, i, vec4(r, g, b, a));
}

bool GeometryCore::set_color(unsigned int i, const vec4& v) { return set_std_attrib(COLOR, i, v); }

vec4 GeometryCore::get_color(unsigned int i) { return get_std_attrib(COLOR, i); }

// ---- normal ----

bool GeometryCore::update_normal_buffer(const void* vec4_data) {
  return update_normal_subbuffer(vec4_data, 0, num_vertices);
}

bool GeometryCore::update_normal_subbuffer(const void* vec4_data, unsigned int start,
                                           unsigned int count) {
  return std_array(NORMAL) && update_vertex_attrib_subbuffer(NORMAL, vec4_data, start, count);
}

bool GeometryCore::set_normal(unsigned int i, const vec4& v) {
  return set_std_attrib(NORMAL, i, v);
}

bool GeometryCore::set_normal(unsigned int i, const vec3& v) {
  return set_std_attrib(NORMAL, i, vec4(v));
}

vec4 GeometryCore::get_normal(unsigned int i) { return get_std_attrib(NORMAL, i); }

vec3 GeometryCore::get_normal_vec3(unsigned int i) { return get_std_attrib(NORMAL, i).get_vec3(); }

// ---- first texture coordinates ----

bool GeometryCore::update_uv0_buffer(const void* vec4_data) {
  return update_uv0_subbuffer(vec4_data, 0, num_vertices);
}

bool GeometryCore::update_uv0_subbuffer(const void* vec4_data, unsigned int start,
                                        unsigned int count) {
  return std_array(UV0) && update_vertex_attrib_subbuffer(UV0, vec4_data, start, count);
}

bool GeometryCore::set_uv0(unsigned int i, const vec4& v) { return set_std_attrib(UV0, i, v); }

vec4 GeometryCore::get_uv0(unsigned int i) { return get_std_attrib(UV0, i); }

// ---- second texture coordinates and tangent: for derived classes ----

bool GeometryCore::update_uv1_buffer(const void* vec4_data) {
  return update_uv1_subbuffer(vec4_data, 0, num_vertices);
}

bool GeometryCore::update_uv1_subbuffer(const void*, unsigned int, unsigned int) { return false; }

bool GeometryCore::set_uv1(unsigned int, const vec4&) { return false; }

vec4 GeometryCore::get_uv1(unsigned int) { return vec4(); }

bool GeometryCore::update_tangent_subbuffer(const void*, unsigned int, unsigned int) {
  return false;
}

bool GeometryCore::update_tangent_buffer(const void* vec4_data) {
  return update_tangent_subbuffer(vec4_data, 0, num_vertices);
}

bool GeometryCore::set_tangent(unsigned int, const vec4&) { return false; }

vec4 GeometryCore::get_tangent(unsigned int) { return vec4(); }

}  // namespace orv
