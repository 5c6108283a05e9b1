#include <orv/geometry/mesh.h>

#include "geometry/attrib_access.h"
#include "geometry/face_access.h"
#include "geometry/mesh_user_geometry.h"

namespace orv {

// ---- faces ----

void Mesh::set_face_indexes(unsigned int face, unsigned int a, unsigned int b, unsigned int c) {
  if (!mesh_data_ || mesh_data_->indices) return;
  if (mesh_data_->set_face_indices(face, a, b, c)) {
    mesh_data_->ib_update_faces_list_set_state(true);
  }
}

void Mesh::get_face_indexes(unsigned int face, unsigned int* a, unsigned int* b,
                            unsigned int* c) const {
  if (!mesh_data_ || mesh_data_->indices) return;
  const FaceAccess faces(*mesh_data_);
  if (face >= faces.size()) return;
  const FaceU32 indexes = faces.get(face);
  if (a) *a = indexes.a;
  if (b) *b = indexes.b;
  if (c) *c = indexes.c;
}

// ---- geometry of other meshes ----

bool Mesh::copy_geometry(Mesh* src) {
  if (!src || !mesh_data_ || !src->mesh_data_) return false;
  MeshData* from = src->mesh_data_;
  if (from->get_num_vertices() == 0 || from->get_num_faces() == 0) return false;
  if (from == mesh_data_) return true;
  free_mesh_data();
  if (!mesh_data_->copy_vertex_data(from, true)) return false;
  if (!alloc_face_data(from->get_num_faces(), false)) return false;
  mesh_data_->copy_face_data(from, true);
  return true;
}

namespace {

vec3 between(const vec3& a, const vec3& b, float t) {
  const float s = 1.0f - t;
  return vec3(a.x * s + b.x * t, a.y * s + b.y * t, a.z * s + b.z * t);
}

}  // namespace

bool Mesh::do_linear_tweening(Mesh* a, Mesh* b, float t) {
  if (!a || !b || !mesh_data_ || !a->mesh_data_ || !b->mesh_data_) return false;
  const unsigned int count = a->mesh_data_->get_num_vertices();
  if (count != b->mesh_data_->get_num_vertices()) return false;
  if (mesh_data_->get_num_vertices() != count) copy_geometry(a);
  if (!(t >= 0.0f)) t = 0.0f;
  if (t > 1.0f) t = 1.0f;

  const AttribAccess positions_a(*a->mesh_data_, VERTEX_ATTRIB_POSITION);
  const AttribAccess positions_b(*b->mesh_data_, VERTEX_ATTRIB_POSITION);
  const AttribAccess normals_a(*a->mesh_data_, VERTEX_ATTRIB_NORMAL);
  const AttribAccess normals_b(*b->mesh_data_, VERTEX_ATTRIB_NORMAL);
  AttribAccess positions(*mesh_data_, VERTEX_ATTRIB_POSITION);
  AttribAccess normals(*mesh_data_, VERTEX_ATTRIB_NORMAL);
  const unsigned int n = positions.usable(count);
  for (unsigned int i = 0; i < n; ++i) {
    positions.set(i, between(positions_a.get_vec3(i), positions_b.get_vec3(i), t));
    vec3 normal = between(normals_a.get_vec3(i), normals_b.get_vec3(i), t);
    normals.set(i, normal.normalize());
  }
  return true;
}

// ---- user geometry ----

unsigned int Mesh::user_geometry_add_vertex(const vec4& position) {
  if (!user_geometry_) user_geometry_ = new MeshUserGeometry;
  Vertex vertex;
  vertex.position = position;
  vertex.color = vec4(1.0f, 1.0f, 1.0f, 1.0f);
  user_geometry_->vertices.push_back(vertex);
  update_build_state(true);
  return static_cast<unsigned int>(user_geometry_->vertices.size() - 1);
}

bool Mesh::set_user_vertex_field(unsigned int i, vec4 Vertex::*field, const vec4& v) {
  if (!user_geometry_ || i >= user_geometry_->vertices.size()) return false;
  user_geometry_->vertices[i].*field = v;
  update_build_state(true);
  return true;
}

bool Mesh::user_geometry_set_vertex_position(unsigned int i, const vec4& v) {
  return set_user_vertex_field(i, &Vertex::position, v);
}

bool Mesh::user_geometry_set_vertex_color(unsigned int i, const vec4& v) {
  return set_user_vertex_field(i, &Vertex::color, v);
}

bool Mesh::user_geometry_set_vertex_normal(unsigned int i, const vec4& v) {
  return set_user_vertex_field(i, &Vertex::normal, v);
}

bool Mesh::user_geometry_set_vertex_uv0(unsigned int i, const vec4& v) {
  return set_user_vertex_field(i, &Vertex::uv0, v);
}

bool Mesh::user_geometry_add_face32(unsigned int a, unsigned int b, unsigned int c) {
  if (!user_geometry_) user_geometry_ = new MeshUserGeometry;
  user_geometry_->faces.emplace_back(a, b, c);
  update_build_state(true);
  return true;
}

bool Mesh::user_geometry_cleanup() {
  if (!user_geometry_) return false;
  delete user_geometry_;
  user_geometry_ = nullptr;
  return true;
}

bool Mesh::_user_geometry_build() {
  if (!user_geometry_ || !mesh_data_) return false;
  free_mesh_data();
  const std::vector<Vertex>& vertices = user_geometry_->vertices;
  const std::vector<FaceU32>& gathered = user_geometry_->faces;
  if (vertices.empty() || gathered.empty()) return false;

  set_vertex_alloc_params_num_vertices(static_cast<unsigned int>(vertices.size()));
  if (!alloc_vertex_data()) return false;
  if (!alloc_face_data(static_cast<unsigned int>(gathered.size()), false)) return false;
  {
    AttribAccess positions(*mesh_data_, VERTEX_ATTRIB_POSITION);
    AttribAccess normals(*mesh_data_, VERTEX_ATTRIB_NORMAL);
    AttribAccess colors(*mesh_data_, VERTEX_ATTRIB_COLOR);
    AttribAccess uvs(*mesh_data_, VERTEX_ATTRIB_UV0);
    for (unsigned int i = 0; i < vertices.size(); ++i) {
      positions.set(i, vertices[i].position.get_vec3());
      normals.set(i, vertices[i].normal.get_vec3());
      colors.set(i, vertices[i].color);
      uvs.set(i, vertices[i].uv0);
    }
  }
  FaceAccess faces(*mesh_data_);
  for (unsigned int i = 0; i < faces.size(); ++i) {
    faces.set(i, gathered[i].a, gathered[i].b, gathered[i].c);
  }
  return user_geometry_cleanup();
}

}  // namespace orv
