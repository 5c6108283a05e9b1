#include <orv/geometry/instancing_init_params.h>
#include <orv/geometry/mesh.h>
#include <orv/math/mat4.h>
#include <orv/math/quat.h>
#include <orv/scene/tripod.h>

#include <algorithm>
#include <cstdio>

namespace orv {

namespace {

/// Place of a stream behind the first instance array.
enum Stream : unsigned int { POSITION, ROTATION, SCALE, COLOR, MISC, NUM_NAMED_STREAMS };

constexpr const char* STREAM_NAMES[NUM_NAMED_STREAMS] = {
    "orvex_Instance_Position", "orvex_Instance_Rotation", "orvex_Instance_Scale",
    "orvex_Instance_Color", "orvex_Instance_Misc"};

constexpr unsigned int NO_ARRAY = 0xFFFFFFFFu;

/// Each stream past the last possible array is a line in the log; this many of them tell enough.
constexpr unsigned int MAX_ROUNDS = 64;

void name_instance_array(VertexAttribArray& array, unsigned int stream, bool default_names) {
  if (!default_names) {
    char name[sizeof(array.name)];
    std::snprintf(name, sizeof(name), "%s%d", "orvex_Instance_Attrib", array.location);
    array.set_name(name);
  } else if (stream < NUM_NAMED_STREAMS) {
    array.set_name(STREAM_NAMES[stream]);
  }
}

}  // namespace

bool Mesh::instancing_init(unsigned int num_instances, const InstancingInitParams& params) {
  if (!mesh_data_ || num_instances == 0 || params.num_vertex_streams == 0) return false;
  mesh_data_->num_instances = num_instances;
  const unsigned int streams = std::min(params.num_vertex_streams, MAX_ROUNDS);
  for (unsigned int stream = 0; stream < streams; ++stream) {
    const unsigned int index = mesh_data_->num_attrib_arrays;
    VertexAttribArray* array = mesh_data_->alloc_new_vertex_attrib_array(num_instances);
    if (!array) continue;
    array->set_divisor(1);
    if (stream == 0) mesh_data_->first_instance_array = index;
    name_instance_array(*array, stream, params.default_names);
  }
  return true;
}

unsigned int Mesh::get_num_instances() const {
  return mesh_data_ ? mesh_data_->get_num_instances() : 0;
}

// ---- any stream ----

VertexAttribArray* Mesh::instance_array(unsigned int stream) const {
  if (!mesh_data_) return nullptr;
  const unsigned int first = mesh_data_->first_instance_array;
  // "None" plus a stream would come round to the arrays of the vertices.
  if (first >= GeometryCore::MAX_VERTEX_ATTRIBS || stream >= GeometryCore::MAX_VERTEX_ATTRIBS) {
    return nullptr;
  }
  return mesh_data_->get_vertex_attrib_array(first + stream);
}

void Mesh::set_instance_value(unsigned int stream, unsigned int i, const vec4& v) {
  VertexAttribArray* array = instance_array(stream);
  if (!array || !array->data || i >= mesh_data_->num_instances) return;
  array->set_element_vec4(i, v);
}

vec4 Mesh::get_instance_value(unsigned int stream, unsigned int i) const {
  const VertexAttribArray* array = instance_array(stream);
  return array && i < mesh_data_->num_instances ? array->get_element_vec4(i) : vec4();
}

float* Mesh::instance_floats(unsigned int stream) {
  VertexAttribArray* array = instance_array(stream);
  return array ? static_cast<float*>(array->get_data_ptr()) : nullptr;
}

vec4* Mesh::instance_vec4s(unsigned int stream) {
  VertexAttribArray* array = instance_array(stream);
  return array ? array->get_data_vec4_ptr() : nullptr;
}

bool Mesh::set_instance_values(unsigned int stream, const vec4* values) {
  if (!instance_array(stream)) return false;
  return mesh_data_->update_vertex_attrib_buffer(mesh_data_->first_instance_array + stream, values);
}

bool Mesh::set_instance_values_sub(unsigned int stream, const vec4* values, unsigned int start,
                                   unsigned int count) {
  if (!instance_array(stream)) return false;
  return mesh_data_->update_vertex_attrib_subbuffer(mesh_data_->first_instance_array + stream,
                                                    values, start, count);
}

// ---- the five named streams ----

#define ORV_INSTANCE_STREAM(stream, name, index_name)                                            \
  unsigned int Mesh::get_instance_##index_name##_va_index() const {                              \
    return (mesh_data_ ? mesh_data_->first_instance_array : NO_ARRAY) + (stream);                \
  }                                                                                              \
  void Mesh::set_instance_##name(unsigned int i, const vec4& v) {                                \
    set_instance_value(stream, i, v);                                                            \
  }                                                                                              \
  vec4 Mesh::get_instance_##name(unsigned int i) const { return get_instance_value(stream, i); } \
  float* Mesh::get_instance_##name##s_float_ptr() { return instance_floats(stream); }            \
  vec4* Mesh::get_instance_##name##s_vec4_ptr() { return instance_vec4s(stream); }               \
  bool Mesh::set_instance_##name##s(const vec4* values) {                                        \
    return set_instance_values(stream, values);                                                  \
  }                                                                                              \
  bool Mesh::set_instance_##name##s_sub(const vec4* values, unsigned int start,                  \
                                        unsigned int count) {                                    \
    return set_instance_values_sub(stream, values, start, count);                                \
  }

ORV_INSTANCE_STREAM(POSITION, position, pos)
ORV_INSTANCE_STREAM(ROTATION, rotation, rot)
ORV_INSTANCE_STREAM(SCALE, scale, scale)
ORV_INSTANCE_STREAM(COLOR, color, color)
ORV_INSTANCE_STREAM(MISC, misc, misc)
#undef ORV_INSTANCE_STREAM

void Mesh::set_instance_rotation(unsigned int i, const quat& q) {
  set_instance_value(ROTATION, i, vec4(q.x, q.y, q.z, q.w));
}

// ---- streams by number ----

void Mesh::set_instance_user_vertex_stream_value(unsigned int s, unsigned int i, const vec4& v) {
  set_instance_value(s, i, v);
}

vec4 Mesh::get_instance_user_vertex_stream_value(unsigned int s, unsigned int i) const {
  return get_instance_value(s, i);
}

vec4* Mesh::get_instance_user_vertex_stream(unsigned int s) { return instance_vec4s(s); }

bool Mesh::set_instance_user_vertex_stream(unsigned int s, const vec4* values) {
  return set_instance_values(s, values);
}

bool Mesh::set_instance_user_vertex_stream_sub(unsigned int s, const vec4* values,
                                               unsigned int start, unsigned int count) {
  return set_instance_values_sub(s, values, start, count);
}

// ---- transform ----

mat4 Mesh::get_instance_transform(unsigned int i, TRANSFORM_ORDER order) const {
  if (i >= get_num_instances()) return mat4();
  if (!instance_array(POSITION) || !instance_array(ROTATION) || !instance_array(SCALE)) {
    return mat4();
  }
  const vec4 turn = get_instance_rotation(i);
  mat4 t;
  mat4 r;
  mat4 s;
  t.init_translate(get_instance_position(i));
  r.from_quat(quat(turn.x, turn.y, turn.z, turn.w));
  s.init_scale(get_instance_scale(i));
  switch (order) {
    case TRANSFORM_ORDER_TRS:
      return t.concat(r).concat(s);
    case TRANSFORM_ORDER_RTS:
      return r.concat(t).concat(s);
    case TRANSFORM_ORDER_TSR:
      return t.concat(s).concat(r);
    case TRANSFORM_ORDER_RST:
      return r.concat(s).concat(t);
  }
  return mat4();
}

}  // namespace orv
