#include <orv/geometry/mesh.h>

#include <vector>

#include "geometry/attrib_access.h"
#include "geometry/face_access.h"
#include "geometry/normal_welder.h"

namespace orv {

// ---- normals of faces ----

namespace {

// Takes the vertices as a triangle list. False when they make no whole number of triangles.
bool make_faces_of_list(Mesh& mesh) {
  const unsigned int num_vertices = mesh.get_mesh_data()->get_num_vertices();
  if (num_vertices % 3 != 0) return false;
  if (!mesh.alloc_face_data(num_vertices / 3, false)) return false;
  FaceAccess faces(*mesh.get_mesh_data());
  for (unsigned int i = 0; i < faces.size(); ++i) faces.set(i, 3 * i, 3 * i + 1, 3 * i + 2);
  return true;
}

}  // namespace

bool Mesh::compute_faces_normal(Node* node) {
  if (!mesh_data_ || mesh_data_->indices) return false;
  if (mesh_data_->get_num_faces() == 0 && !make_faces_of_list(*this)) return false;

  {
    const FaceAccess faces(*mesh_data_);
    const AttribAccess positions(*mesh_data_, VERTEX_ATTRIB_POSITION);
    AttribAccess normals(*mesh_data_, VERTEX_ATTRIB_NORMAL);
    vec4* face_normals = mesh_data_->face_normals;
    for (unsigned int i = 0; i < faces.size(); ++i) {
      const FaceU32 face = faces.get(i);
      const vec3 pa = positions.get_vec3(face.a);
      const vec3 pb = positions.get_vec3(face.b);
      const vec3 pc = positions.get_vec3(face.c);
      vec3 normal = (pc - pb).cross(pa - pb);
      normal.normalize();
      if (face_normals) face_normals[i] = vec4(normal.x, normal.y, normal.z, 0.0f);
      normals.set(face.a, normal);
      normals.set(face.b, normal);
      normals.set(face.c, normal);
    }
  }
  return Object::compute_faces_normal(node);
}

// ---- normals of vertices ----

bool Mesh::compute_vertices_normal(Node* node) {
  if (!mesh_data_ || mesh_data_->indices) return false;
  const unsigned int num_vertices = mesh_data_->get_num_vertices();
  if (num_vertices == 0 || mesh_data_->get_num_faces() == 0) return false;

  if (mesh_data_->face_normals) {
    AttribAccess normals(*mesh_data_, VERTEX_ATTRIB_NORMAL);
    const unsigned int n = normals.usable(num_vertices);
    std::vector<vec3> sums(n);
    std::vector<unsigned int> counts(n);
    const FaceAccess faces(*mesh_data_);
    for (unsigned int i = 0; i < faces.size(); ++i) {
      const FaceU32 face = faces.get(i);
      const vec4& normal = mesh_data_->face_normals[i];
      for (const unsigned int vertex : {face.a, face.b, face.c}) {
        if (vertex >= n) continue;
        sums[vertex] += vec3(normal.x, normal.y, normal.z);
        ++counts[vertex];
      }
    }
    for (unsigned int i = 0; i < n; ++i) {
      if (counts[i] == 0) continue;
      const float count = static_cast<float>(counts[i]);
      vec3 normal(sums[i].x / count, sums[i].y / count, sums[i].z / count);
      normals.set(i, normal.normalize());
    }
  }
  return Object::compute_vertices_normal(node);
}

bool Mesh::average_vertices_normal(float eps, Node* node) {
  if (!mesh_data_) return false;
  const unsigned int num_vertices = mesh_data_->get_num_vertices();
  if (num_vertices == 0 || mesh_data_->get_num_faces() == 0) return false;

  {
    const AttribAccess positions(*mesh_data_, VERTEX_ATTRIB_POSITION);
    AttribAccess normals(*mesh_data_, VERTEX_ATTRIB_NORMAL);
    const unsigned int n = normals.usable(num_vertices);
    std::vector<vec3> places(n);
    for (unsigned int i = 0; i < n; ++i) places[i] = positions.get_vec3(i);

    const NormalWelder welder(places, eps);
    std::vector<unsigned int> later;
    for (unsigned int i = 0; i < n; ++i) {
      welder.find_later(i, later);
      if (later.empty()) continue;
      // Normals that lower vertices wrote are read as they are now.
      vec3 sum = normals.get_vec3(i);
      for (const unsigned int j : later) sum += normals.get_vec3(j);
      const float count = static_cast<float>(later.size() + 1);
      vec3 normal(sum.x / count, sum.y / count, sum.z / count);
      normal.normalize();
      normals.set(i, normal);
      for (const unsigned int j : later) normals.set(j, normal);
    }
  }
  // The children get plain vertex normals, not averaged ones.
  return Object::compute_vertices_normal(node);
}

// ---- facing ----

void Mesh::flip_faces(Node* node) {
  if (mesh_data_) {
    FaceAccess faces(*mesh_data_);
    for (unsigned int i = 0; i < faces.size(); ++i) {
      const FaceU32 face = faces.get(i);
      faces.set(i, face.c, face.b, face.a);
    }
    mesh_data_->ib_update_faces_list_set_state(true);
  }
  Object::flip_faces(node);
}

}  // namespace orv
