/// @file
/// What a geometry allocates.
#pragma once

#include <orv/core/api.h>

namespace orv {

/// What GeometryCore::alloc_vertex_data will allocate.
class ORV_API GeometryCoreAllocParams {
 public:
  /// Number of entries of `vertex_attrib_dim`, which is also the largest number of arrays.
  static constexpr unsigned int MAX_VERTEX_ATTRIBS = 16;

  GeometryCoreAllocParams() { reset(); }

  /// Restores the defaults.
  void reset();

  /// Sets the number of components (1 to 4) of attribute array `index`. An index of 16 or more is
  /// ignored.
  void set_vertex_attrib_dim(unsigned int index, int dim);

  bool std_vertex_attribs;      ///< allocate position, uv0, normal and colour; true by default
  bool separate_vertex_arrays;  ///< one array each, not interleaved; true by default
  int vertex_alignment;         ///< bytes; 0 or less means plain allocation; 0 by default
  int vertex_attrib_dim[MAX_VERTEX_ATTRIBS];  ///< components of each array; 4 by default
  unsigned int num_vertices;                  ///< 0 by default
  unsigned int num_user_attribs;              ///< arrays behind the standard ones; 0 by default
  bool alloc_vertex_particles;  ///< allocate one vec4 more per vertex; true by default
  int reserved;                 ///< has no use; 0 by default
};

/// The same fields as they are handed about by meshes, models and loaders.
class ORV_API MeshDataVertexAttribsAllocParams : public GeometryCoreAllocParams {
 public:
  /// The defaults of GeometryCoreAllocParams.
  MeshDataVertexAttribsAllocParams() = default;
  /// Takes over all fields.
  MeshDataVertexAttribsAllocParams(const GeometryCoreAllocParams& params)
      : GeometryCoreAllocParams(params) {}
  /// Takes over all fields.
  MeshDataVertexAttribsAllocParams& operator=(const GeometryCoreAllocParams& params) {
    GeometryCoreAllocParams::operator=(params);
    return *this;
  }
};

}  // namespace orv
