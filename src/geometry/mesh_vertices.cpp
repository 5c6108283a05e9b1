#include <orv/geometry/mesh.h>
#include <orv/math/bounding_volume.h>
#include <orv/math/lanes.h>
#include <orv/math/mat4.h>
#include <orv/math/quat.h>

#include <cfloat>
#include <cmath>

#include "geometry/attrib_access.h"

namespace orv {

// ---- one vertex ----

unsigned int Mesh::get_num_vertices(Node*) {
  return mesh_data_ ? mesh_data_->get_num_vertices() : 0;
}

unsigned int Mesh::get_num_faces(Node*) { return mesh_data_ ? mesh_data_->get_num_faces() : 0; }

Vertex* Mesh::get_vertex(unsigned int i) {
  if (!mesh_data_ || mesh_data_->get_num_vertices() == 0) return nullptr;
  return mesh_data_->get_vertex(i);
}

Vertex Mesh::get_vertex_v2(unsigned int i) {
  if (!mesh_data_ || mesh_data_->get_num_vertices() == 0) return Vertex();
  return mesh_data_->get_vertex_v2(i);
}

bool Mesh::set_vertex_position(unsigned int i, const vec4& v) {
  return mesh_data_ && mesh_data_->set_position(i, v);
}

vec4 Mesh::get_vertex_position(unsigned int i) const {
  return mesh_data_ ? vec4(mesh_data_->get_position(i)) : vec4();
}

bool Mesh::set_vertex_position_w(unsigned int i, float w) {
  if (!mesh_data_) return false;
  vec4 position = mesh_data_->get_position_4f(i);
  position.w = w;
  return mesh_data_->set_position(i, position);
}

bool Mesh::get_vertex_absolute_position(unsigned int i, vec4* out) {
  if (!mesh_data_ || !out || i >= mesh_data_->get_num_vertices()) return false;
  *out = get_absolute_transform() * get_vertex_position(i);
  return true;
}

bool Mesh::set_vertex_normal(unsigned int i, const vec4& v) {
  return mesh_data_ && mesh_data_->set_normal(i, vec4(v.x, v.y, v.z, 1.0f));
}

vec4 Mesh::get_vertex_normal(unsigned int i) const {
  if (!mesh_data_) return vec4();
  vec4 normal = mesh_data_->get_normal(i);
  normal.w = 0.0f;
  return normal;
}

bool Mesh::set_vertex_tangent(unsigned int i, const vec4& v) {
  return mesh_data_ && mesh_data_->set_tangent(i, v);
}

vec4 Mesh::get_vertex_tangent(unsigned int i) const {
  return mesh_data_ ? mesh_data_->get_tangent(i) : vec4();
}

bool Mesh::set_vertex_color(unsigned int i, const vec4& v) {
  return mesh_data_ && mesh_data_->set_color(i, v);
}

vec4 Mesh::get_vertex_color(unsigned int i) const {
  return mesh_data_ ? mesh_data_->get_color(i) : vec4();
}

void Mesh::set_vertex_uv(unsigned int i, const vec4& uv, int layer) {
  if (!mesh_data_) return;
  if (layer == 0) mesh_data_->set_uv0(i, uv);
  if (layer == 1) mesh_data_->set_uv1(i, uv);
}

vec4 Mesh::get_vertex_uv(unsigned int i, int layer) const {
  if (!mesh_data_) return vec4();
  return layer == 1 ? mesh_data_->get_uv1(i) : mesh_data_->get_uv0(i);
}

void Mesh::set_vertex_attrib_element(unsigned int array, unsigned int i, const vec4& v) {
  if (mesh_data_) mesh_data_->set_vertex_attrib_element(array, i, v);
}

vec4 Mesh::get_vertex_attrib_element(unsigned int array, unsigned int i) const {
  return mesh_data_ ? mesh_data_->get_vertex_attrib_element(array, i) : vec4();
}

bool Mesh::update_vertex_attrib_buffer(VERTEX_ATTRIB_TYPE type, const void* data) {
  if (!mesh_data_) return false;
  switch (type) {
    case VERTEX_ATTRIB_POSITION:
      return mesh_data_->update_position_buffer(data);
    case VERTEX_ATTRIB_UV0:
      return mesh_data_->update_uv0_buffer(data);
    case VERTEX_ATTRIB_NORMAL:
      return mesh_data_->update_normal_buffer(data);
    case VERTEX_ATTRIB_COLOR:
      return mesh_data_->update_color_buffer(data);
    case VERTEX_ATTRIB_UV1:
      return mesh_data_->update_uv1_buffer(data);
    case VERTEX_ATTRIB_TANGENT:
      return mesh_data_->update_tangent_buffer(data);
  }
  return false;
}

bool Mesh::update_vertex_attrib_sub_buffer(VERTEX_ATTRIB_TYPE type, const void* data,
                                           unsigned int start, unsigned int count) {
  if (!mesh_data_) return false;
  switch (type) {
    case VERTEX_ATTRIB_POSITION:
      return mesh_data_->update_position_subbuffer(data, start, count);
    case VERTEX_ATTRIB_UV0:
      return mesh_data_->update_uv0_subbuffer(data, start, count);
    case VERTEX_ATTRIB_NORMAL:
      return mesh_data_->update_normal_subbuffer(data, start, count);
    case VERTEX_ATTRIB_COLOR:
      return mesh_data_->update_color_subbuffer(data, start, count);
    case VERTEX_ATTRIB_UV1:
      return mesh_data_->update_uv1_subbuffer(data, start, count);
    case VERTEX_ATTRIB_TANGENT:
      return mesh_data_->update_tangent_subbuffer(data, start, count);
  }
  return false;
}

// ---- all vertices ----

namespace {

/// Gives every position to `change` and stores what it returns, with w 1. False without vertices.
template <class Change>
bool change_positions(MeshData* data, Change change) {
  if (!data || data->get_num_vertices() == 0) return false;
  AttribAccess positions(*data, VERTEX_ATTRIB_POSITION);
  const unsigned int n = positions.usable(data->get_num_vertices());
  for (unsigned int i = 0; i < n; ++i) positions.set(i, vec3(change(positions.get_vec3(i))));
  return true;
}

vec3 plus(const vec3& a, float x, float y, float z) { return vec3(a.x + x, a.y + y, a.z + z); }

}  // namespace

void Mesh::translate_vertices_position(const vec4& v, Node* node) {
  const auto move = [&v](const vec3& p) { return plus(p, v.x, v.y, v.z); };
  if (change_positions(mesh_data_, move)) Object::translate_vertices_position(v, node);
}

void Mesh::translate_vertices_position(const vec3& v, Node* node) {
  const auto move = [&v](const vec3& p) { return plus(p, v.x, v.y, v.z); };
  if (change_positions(mesh_data_, move)) Object::translate_vertices_position(v, node);
}

void Mesh::scale_vertices_position(const vec4& v, Node* node) {
  const auto stretch = [&v](const vec3& p) { return vec3(p.x * v.x, p.y * v.y, p.z * v.z); };
  if (change_positions(mesh_data_, stretch)) Object::scale_vertices_position(v, node);
}

void Mesh::rotate_vertices_position(const quat& q, Node* node) {
  const auto turn = [&q](const vec3& p) { return q * p; };
  if (change_positions(mesh_data_, turn)) Object::rotate_vertices_position(q, node);
}

void Mesh::rotate_vertices_position(float x, float y, float z, Node* node) {
  quat q;
  q.from_euler(x, y, z);
  rotate_vertices_position(q, node);
}

void Mesh::set_vertices_color(float r, float g, float b, float a, Node* node) {
  set_vertices_color(vec4(r, g, b, a), node);
}

void Mesh::set_vertices_color(const vec4& color, Node* node) {
  if (mesh_data_) {
    AttribAccess colors(*mesh_data_, VERTEX_ATTRIB_COLOR);
    const unsigned int n = colors.usable(mesh_data_->get_num_vertices());
    for (unsigned int i = 0; i < n; ++i) colors.set(i, color);
  }
  Object::set_vertices_color(color, node);
}

void Mesh::flip_vertex_normals(Node* node) {
  if (mesh_data_) {
    AttribAccess normals(*mesh_data_, VERTEX_ATTRIB_NORMAL);
    const unsigned int n = normals.usable(mesh_data_->get_num_vertices());
    for (unsigned int i = 0; i < n; ++i) normals.set(i, normals.get_vec3(i) * -1.0f);
  }
  Object::flip_vertex_normals(node);
}

// ---- bounds ----

namespace {

struct Bounds {
  vec4 min = vec4(FLT_MAX, FLT_MAX, FLT_MAX, 1.0f);
  vec4 max = vec4(-FLT_MAX, -FLT_MAX, -FLT_MAX, 1.0f);

  void add(const vec4& p) {
    if (p.x < min.x) min.x = p.x;
    if (p.y < min.y) min.y = p.y;
    if (p.z < min.z) min.z = p.z;
    if (p.x > max.x) max.x = p.x;
    if (p.y > max.y) max.y = p.y;
    if (p.z > max.z) max.z = p.z;
  }

  // The comparisons of `add` on four lanes: what is not a number never wins.
  void add_all(const float* p, std::size_t stride, unsigned int n) {
    lanes::float4 low = lanes::load(min.ptr());
    lanes::float4 high = lanes::load(max.ptr());
    for (unsigned int i = 0; i < n; ++i, p += stride) {
      const lanes::float4 v = lanes::load(p);
      low = v < low ? v : low;
      high = v > high ? v : high;
    }
    lanes::store(min.ptr(), low);
    lanes::store(max.ptr(), high);
    min.w = max.w = 1.0f;
  }
};

Bounds positions_bounds(MeshData& data) {
  Bounds bounds;
  const AttribAccess positions(data, VERTEX_ATTRIB_POSITION);
  const unsigned int n = positions.usable(data.get_num_vertices());
  std::size_t stride = 0;
  if (const float* first = positions.four_floats(&stride)) {
    bounds.add_all(first, stride, n);
  } else {
    for (unsigned int i = 0; i < n; ++i) bounds.add(positions.get(i));
  }
  if (n < data.get_num_vertices()) bounds.add(vec4());  // vertices without storage stand at 0
  return bounds;
}

}  // namespace

bool Mesh::bounding_volume_compute(Node* node) {
  if (!mesh_data_ || mesh_data_->get_num_vertices() == 0) return false;
  const Bounds bounds = positions_bounds(*mesh_data_);
  const vec4& min = bounds.min;
  const vec4& max = bounds.max;

  const float dx = max.x - min.x;
  const float dy = max.y - min.y;
  const float dz = max.z - min.z;
  const float radius =
      0.5f * static_cast<float>(std::sqrt(static_cast<double>(dx * dx + dy * dy + dz * dz)));
  const vec4 center((min.x + max.x) / 2.0f, (min.y + max.y) / 2.0f, (min.z + max.z) / 2.0f, 1.0f);

  BoundingVolume& volume = bounding_volume_get();
  volume.set_sphere(center, radius);
  volume.set_box(min, max);  // takes the sphere from the box once more
  Object::bounding_volume_compute(node);
  return true;
}

bool Mesh::update_bounding_sphere(Node* node) { return bounding_volume_compute(node); }

}  // namespace orv
