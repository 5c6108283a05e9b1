#include "viewer/mesh_area.h"

#include <orv/geometry/mesh.h>

#include <algorithm>

namespace viewer {

using orv::Mesh;
using orv::vec4;

namespace {

/// Least height of a triangle, as a share of its longest side.
constexpr double least_height = 1e-6;

/// In double precision, where no square of a side overflows or vanishes.
struct Edge {
  Edge(const vec4& from, const vec4& to)
      : x(double{to.x} - double{from.x}),
        y(double{to.y} - double{from.y}),
        z(double{to.z} - double{from.z}) {}

  double square() const { return x * x + y * y + z * z; }

  double x, y, z;
};

/// False also for corners that are no numbers.
bool has_area(const vec4& a, const vec4& b, const vec4& c) {
  const Edge u(a, b);
  const Edge v(a, c);
  const double x = u.y * v.z - u.z * v.y;
  const double y = u.z * v.x - u.x * v.z;
  const double z = u.x * v.y - u.y * v.x;
  const double longest = std::max({u.square(), v.square(), Edge(b, c).square()});
  const double least = least_height * longest;
  return x * x + y * y + z * z > least * least;
}

}  // namespace

bool has_visible_triangle(Mesh& mesh) {
  const unsigned int num_faces = mesh.get_num_faces(nullptr);
  for (unsigned int i = 0; i < num_faces; ++i) {
    unsigned int a = 0, b = 0, c = 0;
    mesh.get_face_indexes(i, &a, &b, &c);
    if (has_area(mesh.get_vertex_position(a), mesh.get_vertex_position(b),
                 mesh.get_vertex_position(c))) {
      return true;
    }
  }
  if (num_faces > 0) return false;
  // Without faces each three vertices are a triangle.
  const unsigned int num_triangles = mesh.get_num_vertices(nullptr) / 3;
  for (unsigned int i = 0; i < num_triangles; ++i) {
    if (has_area(mesh.get_vertex_position(i * 3), mesh.get_vertex_position(i * 3 + 1),
                 mesh.get_vertex_position(i * 3 + 2))) {
      return true;
    }
  }
  return false;
}

}  // namespace viewer
