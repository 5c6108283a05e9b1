#pragma once

#include <orv/geometry/mesh.h>

#include <vector>

#include "geometry/geometry_support.h"

namespace orv::test {

/// Gives a mesh these positions, in the given form, and faces of three consecutive vertices.
inline void give_triangles(Mesh& mesh, const std::vector<vec3>& positions,
                           VertexForm form = VertexForm::SEPARATE) {
  use_form(*mesh.get_data(), form);
  mesh.set_vertex_alloc_params_num_vertices(static_cast<unsigned int>(positions.size()));
  mesh.alloc_vertex_data();
  const auto faces = static_cast<unsigned int>(positions.size() / 3);
  mesh.alloc_face_data(faces, false);
  for (unsigned int i = 0; i < positions.size(); ++i) {
    mesh.set_vertex_position(i, vec4(positions[i]));
  }
  for (unsigned int i = 0; i < faces; ++i) mesh.set_face_indexes(i, 3 * i, 3 * i + 1, 3 * i + 2);
}

/// Makes a mesh use data that must be asked through its operations.
inline CountingMeshData* use_counting_data(Mesh& mesh) {
  auto* data = new CountingMeshData;
  mesh._set_mesh_data(nullptr, data);
  return data;
}

/// An object that counts what is handed on to it as a child.
class CountingObject : public Object {
 public:
  void translate_vertices_position(const vec4&, Node*) override { ++calls; }
  void translate_vertices_position(const vec3&, Node*) override { ++calls; }
  void scale_vertices_position(const vec4&, Node*) override { ++calls; }
  void rotate_vertices_position(const quat&, Node*) override { ++calls; }
  void set_vertices_color(const vec4&, Node*) override { ++calls; }
  void flip_faces(Node*) override { ++calls; }
  void flip_vertex_normals(Node*) override { ++calls; }
  bool compute_faces_normal(Node*) override { return ++face_normals, true; }
  bool compute_vertices_normal(Node*) override { return ++vertex_normals, true; }
  bool average_vertices_normal(float, Node*) override { return ++averages, true; }
  int calls = 0;
  int face_normals = 0;
  int vertex_normals = 0;
  int averages = 0;
};

}  // namespace orv::test
