#pragma once

#include <orv/geometry/mesh.h>

#include <cmath>
#include <cstdint>

#include "geometry/attrib_access.h"
#include "geometry/face_access.h"

namespace orv {

/// The build that all shapes share: the shape's own step when it is dirty, then the object's.
template <class BuildShape>
bool build_when_dirty(Mesh& mesh, BuildShape build_shape) {
  const bool dirty = mesh.get_build_state();
  if (dirty) mesh.update_build_state(false);
  if (!mesh.get_mesh_data()) return false;
  if (dirty && !build_shape()) return false;
  if (mesh.get_build_state()) {
    mesh.update_build_state(false);
    mesh._user_geometry_build();
  }
  return mesh.Object::_build();
}

/// Frees the geometry and the subsets and allocates `num_vertices`. False, logged, when they are
/// none or too many.
bool begin_shape(Mesh& mesh, std::uint64_t num_vertices);
/// begin_shape and `num_faces` faces, 16-bit ones when the vertices allow it.
bool begin_shape(Mesh& mesh, std::uint64_t num_vertices, std::uint64_t num_faces);

/// Whether the mesh holds the vertices of a shape that has `num_vertices`, so that these can be
/// rewritten in place.
bool has_shape_vertices(const Mesh& mesh, std::uint64_t num_vertices);

/// Sine and cosine, computed in double precision and rounded.
inline float sin_of(float radians) {
  return static_cast<float>(std::sin(static_cast<double>(radians)));
}
inline float cos_of(float radians) {
  return static_cast<float>(std::cos(static_cast<double>(radians)));
}

inline constexpr float PI = 3.1415927f;
inline constexpr float TWO_PI = 6.2831855f;

/// Writes the vertices of a shape, all white.
class ShapeVertices {
 public:
  explicit ShapeVertices(MeshData& data)
      : positions_(data, VERTEX_ATTRIB_POSITION),
        normals_(data, VERTEX_ATTRIB_NORMAL),
        uvs_(data, VERTEX_ATTRIB_UV0),
        colors_(data, VERTEX_ATTRIB_COLOR) {}

  void write(unsigned int i, const vec4& position, const vec3& normal, float u, float v) {
    positions_.set(i, position);
    normals_.set(i, normal);
    uvs_.set(i, vec4(u, v, 0.0f, 1.0f));
    colors_.set(i, vec4(1.0f, 1.0f, 1.0f, 1.0f));
  }

 private:
  AttribAccess positions_;
  AttribAccess normals_;
  AttribAccess uvs_;
  AttribAccess colors_;
};

/// Calls visit(t, b) for all cells of a grid of vertices, row by row: t is the cell's first vertex,
/// b the one below it in the next row; t + 1 and b + 1 follow.
template <class Visit>
void for_each_cell(int rows, int columns, Visit visit) {
  const unsigned int row_length = static_cast<unsigned int>(columns) + 1;
  for (unsigned int row = 0; row < static_cast<unsigned int>(rows); ++row) {
    const unsigned int first = row * row_length;
    for (unsigned int t = first; t < first + row_length - 1; ++t) visit(t, t + row_length);
  }
}

/// Order in which the edges of a grid's cell go round it.
enum class QuadEdgeOrder { DOWN_FIRST, ACROSS_FIRST };

/// Replaces the quad edges by those of a grid, four per cell.
void write_quad_edges(MeshData& data, int rows, int columns, QuadEdgeOrder order);

}  // namespace orv
