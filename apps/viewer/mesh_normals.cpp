#include "viewer/mesh_normals.h"

#include <orv/geometry/mesh.h>
#include <orv/math/vec3.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace viewer {

using orv::Mesh;
using orv::vec3;
using orv::vec4;
using orv::Vertex;

namespace {

constexpr float cos_crease = 0.5f;

/// Places where more corners than this meet become smooth all round: each with each would take too
/// long.
constexpr std::size_t max_compared = 256;

struct Corner {
  vec3 position;
  vec3 normal;   ///< of its face
  float weight;  ///< twice the area of the face
  Mesh* mesh;
  unsigned int vertex;
};

bool comes_before(const Corner& a, const Corner& b) {
  if (a.position.x != b.position.x) return a.position.x < b.position.x;
  if (a.position.y != b.position.y) return a.position.y < b.position.y;
  return a.position.z < b.position.z;
}

bool is_same_place(const Corner& a, const Corner& b) {
  return a.position.x == b.position.x && a.position.y == b.position.y &&
         a.position.z == b.position.z;
}

bool has_corners_of_its_own(Mesh& mesh) {
  return mesh.get_num_vertices(nullptr) == std::uint64_t{mesh.get_num_faces(nullptr)} * 3;
}

float doubled_area(const Mesh& mesh, unsigned int a, unsigned int b, unsigned int c) {
  const vec3 origin = mesh.get_vertex_position(a).get_vec3();
  return (mesh.get_vertex_position(b).get_vec3() - origin)
      .cross(mesh.get_vertex_position(c).get_vec3() - origin)
      .length();
}

void gather_corners(Mesh& mesh, std::vector<Corner>& corners) {
  const unsigned int num_faces = mesh.get_num_faces(nullptr);
  for (unsigned int face = 0; face < num_faces; ++face) {
    unsigned int vertices[3] = {};
    mesh.get_face_indexes(face, &vertices[0], &vertices[1], &vertices[2]);
    const float weight = doubled_area(mesh, vertices[0], vertices[1], vertices[2]);
    for (unsigned int vertex : vertices) {
      corners.push_back({mesh.get_vertex_position(vertex).get_vec3(),
                         mesh.get_vertex_normal(vertex).get_vec3(), weight, &mesh, vertex});
    }
  }
}

/// The vertices of all faces, one after the other; empty when there are too many.
std::vector<Vertex> copy_corner_vertices(Mesh& mesh) {
  const unsigned int num_faces = mesh.get_num_faces(nullptr);
  if (num_faces > std::numeric_limits<unsigned int>::max() / 3) return {};
  std::vector<Vertex> vertices;
  vertices.reserve(std::size_t{num_faces} * 3);
  for (unsigned int face = 0; face < num_faces; ++face) {
    unsigned int corners[3] = {};
    mesh.get_face_indexes(face, &corners[0], &corners[1], &corners[2]);
    for (unsigned int corner : corners) vertices.push_back(mesh.get_vertex_v2(corner));
  }
  return vertices;
}

void smooth_place(const Corner* begin, const Corner* end) {
  const bool all_round = static_cast<std::size_t>(end - begin) > max_compared;
  vec3 sum_of_all(0.0f, 0.0f, 0.0f);
  if (all_round) {
    for (const Corner* other = begin; other != end; ++other) {
      sum_of_all += other->normal * other->weight;
    }
  }
  for (const Corner* corner = begin; corner != end; ++corner) {
    vec3 sum = sum_of_all;
    for (const Corner* other = begin; !all_round && other != end; ++other) {
      if (corner->normal.dot(other->normal) >= cos_crease) sum += other->normal * other->weight;
    }
    if (!(sum.length() > 0.0f)) continue;
    sum.normalize();
    corner->mesh->set_vertex_normal(corner->vertex, vec4(sum.x, sum.y, sum.z, 0.0f));
  }
}

void smooth(std::vector<Corner>& corners) {
  // A NaN would spoil the order.
  std::erase_if(corners, [](const Corner& c) {
    return !(c.position.dot(c.position) >= 0.0f) || !(c.weight >= 0.0f);
  });
  std::sort(corners.begin(), corners.end(), comes_before);
  for (std::size_t begin = 0; begin < corners.size();) {
    std::size_t end = begin + 1;
    while (end < corners.size() && is_same_place(corners[begin], corners[end])) ++end;
    smooth_place(corners.data() + begin, corners.data() + end);
    begin = end;
  }
}

}  // namespace

bool lacks_normals(Mesh& mesh) {
  const unsigned int count = mesh.get_num_vertices(nullptr);
  for (unsigned int i = 0; i < count; ++i) {
    const vec4 normal = mesh.get_vertex_normal(i);
    if (normal.x != 0.0f || normal.y != 0.0f || normal.z != 0.0f) return false;
  }
  return true;
}

bool unshare_vertices(Mesh& mesh) {
  if (mesh.get_num_faces(nullptr) == 0 || has_corners_of_its_own(mesh)) return false;
  const std::vector<Vertex> vertices = copy_corner_vertices(mesh);
  if (vertices.empty()) return false;
  const unsigned int num_faces = mesh.get_num_faces(nullptr);
  std::vector<unsigned int> materials;
  if (const unsigned int* ids = mesh.get_mesh_data()->get_face_materials_ptr()) {
    materials.assign(ids, ids + num_faces);
  }
  mesh.free_mesh_data();
  mesh.set_vertex_alloc_params_num_vertices(num_faces * 3);
  if (!mesh.alloc_vertex_data() || !mesh.alloc_face_data(num_faces, false)) return true;
  for (unsigned int i = 0; i < vertices.size(); ++i) {
    mesh.set_vertex_position(i, vertices[i].position);
    mesh.set_vertex_color(i, vertices[i].color);
    mesh.set_vertex_uv(i, vertices[i].uv0, 0);
  }
  for (unsigned int i = 0; i < num_faces; ++i)
    mesh.set_face_indexes(i, i * 3, i * 3 + 1, i * 3 + 2);
  if (unsigned int* ids = mesh.get_mesh_data()->get_face_materials_ptr()) {
    std::copy(materials.begin(), materials.end(), ids);
  }
  return true;
}

void compute_normals(const std::vector<Mesh*>& meshes) {
  std::vector<Corner> corners;
  for (Mesh* mesh : meshes) {
    unshare_vertices(*mesh);
    if (!mesh->compute_faces_normal(nullptr)) continue;
    gather_corners(*mesh, corners);
  }
  smooth(corners);
}

}  // namespace viewer
