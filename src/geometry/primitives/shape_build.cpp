#include "geometry/primitives/shape_build.h"

#include <orv/core/log_mgr.h>

#include <algorithm>

#include "geometry/limits.h"

namespace orv {

namespace {

// More of them can't be allocated in any form; they are not even counted in 32 bits.
constexpr std::uint64_t MAX_ELEMENTS = MAX_GEOMETRY_BYTES / sizeof(vec4);

}  // namespace

bool begin_shape(Mesh& mesh, std::uint64_t num_vertices) {
  MeshData* data = mesh.get_mesh_data();
  if (!data) return false;
  data->free_vertex_data();
  data->free_face_data();
  data->free_quad_edge_data();
  data->free_subsets();
  if (num_vertices > MAX_ELEMENTS) {
    LogMgr::get().tracef_error(
        "Mesh %s::%id - vertices memory allocation failed (bad alloc - %lu vertices required).",
        mesh.get_name(), mesh.get_id(), static_cast<unsigned long>(num_vertices));
    return false;
  }
  data->set_vertex_alloc_params_num_vertices(static_cast<unsigned int>(num_vertices));
  return mesh.alloc_vertex_data();
}

bool begin_shape(Mesh& mesh, std::uint64_t num_vertices, std::uint64_t num_faces) {
  if (!begin_shape(mesh, num_vertices)) return false;
  const std::uint64_t count = std::min<std::uint64_t>(num_faces, 0xFFFFFFFFu);
  return mesh.alloc_face_data(static_cast<unsigned int>(count), false);
}

bool has_shape_vertices(const Mesh& mesh, std::uint64_t num_vertices) {
  const MeshData* data = mesh.get_mesh_data();
  return data && data->get_num_vertices() == num_vertices;
}

void write_quad_edges(MeshData& data, int rows, int columns, QuadEdgeOrder order) {
  data.free_quad_edge_data();
  if (!data.alloc_quad_edge_data(data.get_num_faces() / 2 * 8)) return;
  unsigned int* edge = data.get_quad_edges_ptr();
  const unsigned int* end = edge + data.get_num_quad_edges();
  for_each_cell(rows, columns, [&](unsigned int t, unsigned int b) {
    const bool down = order == QuadEdgeOrder::DOWN_FIRST;
    const unsigned int corners[4] = {t, down ? b : t + 1, b + 1, down ? t + 1 : b};
    for (int k = 0; k < 4 && edge + 1 < end; ++k) {
      *edge++ = corners[k];
      *edge++ = corners[(k + 1) % 4];
    }
  });
}

}  // namespace orv
