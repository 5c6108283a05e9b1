#pragma once

#include <tiny_obj_loader.h>

#include "core/large_array.h"

namespace orv::detail {

/// One shape with vertices of its own: each distinct corner is a vertex, in the order of first use.
struct TinyobjShape {
  LargeVector<float> positions;  ///< three a vertex
  LargeVector<float> normals;    ///< three a vertex, or none when no corner has one
  LargeVector<float> texcoords;  ///< two a vertex, or none when no corner has one
  LargeVector<unsigned int> indices;
};

/// Corners whose elements are missing get zeros.
TinyobjShape make_tinyobj_shape(const tinyobj::attrib_t& attrib, const tinyobj::mesh_t& mesh);

}  // namespace orv::detail
