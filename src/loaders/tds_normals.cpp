#include "loaders/tds_normals.h"

#include <lib3ds/mesh.h>
#include <lib3ds/vector.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <memory>

namespace orv {

namespace {

/// lib3ds compares every two faces around a vertex for each of its corners, and has room for 128
/// normals. Real meshes stay far below.
constexpr unsigned MAX_FACES_AT_VERTEX = 32;

/// Different normals that are told apart at one vertex; further ones all count.
constexpr unsigned MAX_KNOWN_NORMALS = 128;

/// The corners of each vertex, ascending; a corner is 3 * face + its place.
struct CornersOfVertices {
  std::vector<unsigned> first;  // one more than there are vertices
  std::vector<unsigned> corners;
};

std::vector<unsigned> corner_counts(const Lib3dsMesh& mesh) {
  std::vector<unsigned> counts(mesh.points, 0);
  for (unsigned i = 0; i < mesh.faces; ++i) {
    for (const Lib3dsWord point : mesh.faceL[i].points) ++counts[point];
  }
  return counts;
}

CornersOfVertices list_corners(const Lib3dsMesh& mesh) {
  CornersOfVertices lists;
  lists.first.resize(std::size_t{mesh.points} + 1);
  const std::vector<unsigned> counts = corner_counts(mesh);
  for (unsigned i = 0; i < mesh.points; ++i) lists.first[i + 1] = lists.first[i] + counts[i];
  lists.corners.resize(lists.first.back());
  std::vector<unsigned> end(lists.first.begin(), lists.first.end() - 1);
  for (unsigned i = 0; i < mesh.faces; ++i) {
    for (unsigned j = 0; j < 3; ++j) lists.corners[end[mesh.faceL[i].points[j]]++] = 3 * i + j;
  }
  return lists;
}

/// Sums the normals around a vertex, each different one once.
class NormalSum {
 public:
  void add(const Lib3dsVector normal) {
    if (is_known(normal)) return;
    for (int k = 0; k < 3; ++k) sum_[k] += normal[k];
    if (num_known_ == MAX_KNOWN_NORMALS) return;
    std::memcpy(known_[num_known_++], normal, sizeof(Lib3dsVector));
  }
  vec3 normalized() {
    lib3ds_vector_normalize(sum_);
    return vec3(sum_[0], sum_[1], sum_[2]);
  }

 private:
  bool is_known(const Lib3dsVector normal) const {
    for (unsigned i = 0; i < num_known_; ++i) {
      const float* n = known_[i];
      const float dot = n[0] * normal[0] + n[1] * normal[1] + n[2] * normal[2];
      if (std::fabs(static_cast<double>(dot) - 1.0) < 1e-5) return true;
    }
    return false;
  }

  Lib3dsVector sum_ = {};
  Lib3dsVector known_[MAX_KNOWN_NORMALS];
  unsigned num_known_ = 0;
};

/// The normal of the last of a vertex's corners. Faces are summed from the last to the first, as
/// lib3ds does, so that both give the same bits.
vec3 last_corner_normal(const Lib3dsMesh& mesh, const unsigned* begin, const unsigned* end) {
  const Lib3dsFace& own = mesh.faceL[end[-1] / 3];
  NormalSum sum;
  if (own.smoothing == 0) {
    sum.add(own.normal);
    return sum.normalized();
  }
  for (const unsigned* corner = end; corner != begin;) {
    const Lib3dsFace& face = mesh.faceL[*--corner / 3];
    if (face.smoothing & own.smoothing) sum.add(face.normal);
  }
  return sum.normalized();
}

}  // namespace

void tds_vertex_normals_bounded(const Lib3dsMesh& mesh, std::vector<vec3>& normals) {
  normals.clear();
  if (mesh.faces == 0) return;
  normals.assign(mesh.points, vec3(0.0f, 0.0f, 0.0f));
  const CornersOfVertices lists = list_corners(mesh);
  const unsigned* corners = lists.corners.data();
  for (unsigned i = 0; i < mesh.points; ++i) {
    if (lists.first[i] == lists.first[i + 1]) continue;
    normals[i] = last_corner_normal(mesh, corners + lists.first[i], corners + lists.first[i + 1]);
  }
}

void tds_vertex_normals(Lib3dsMesh& mesh, std::vector<vec3>& normals) {
  normals.clear();
  if (mesh.faces == 0) return;
  const std::vector<unsigned> counts = corner_counts(mesh);
  if (*std::max_element(counts.begin(), counts.end()) > MAX_FACES_AT_VERTEX) {
    tds_vertex_normals_bounded(mesh, normals);
    return;
  }
  const auto corners = std::make_unique<Lib3dsVector[]>(std::size_t{3} * mesh.faces);
  lib3ds_mesh_calculate_normals(&mesh, corners.get());
  normals.assign(mesh.points, vec3(0.0f, 0.0f, 0.0f));
  for (unsigned i = 0; i < mesh.faces; ++i) {
    for (unsigned j = 0; j < 3; ++j) {
      const float* n = corners[3 * i + j];
      normals[mesh.faceL[i].points[j]] = vec3(n[0], n[1], n[2]);
    }
  }
}

}  // namespace orv
