#pragma once

#include <tiny_obj_loader.h>

#include <vector>

namespace orv::detail {

/// One shape with vertices of its own: each distinct corner is a vertex, in the order of first use.
struct TinyobjShape {
  std::vector<float> positions;  ///< three a vertex
  std::vector<float> normals;    ///< three a vertex, or none when no corner has one
  std::vector<float> texcoords;  ///< two a vertex, or none when no corner has one
  std::vector<unsigned int> indices;
};

/// Corners whose elements are missing get zeros.
TinyobjShape make_tinyobj_shape(const tinyobj::attrib_t& attrib, const tinyobj::mesh_t& mesh);

}  // namespace orv::detail
