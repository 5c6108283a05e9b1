#pragma once

#include <orv/math/vec4.h>
#include <tiny_obj_loader.h>

#include <cstddef>
#include <vector>

#include "core/growing_array.h"
#include "core/large_array.h"

namespace orv::detail {

/// Places of a vertex's elements in the file's lists; what lies outside of a list is missing.
struct TinyobjCorner {
  int position;
  int normal;
  int texcoord;

  bool operator==(const TinyobjCorner&) const = default;
};

/// One shape with vertices of its own: each distinct corner is a vertex, in the order of first use.
struct TinyobjShape {
  GrowingArray<TinyobjCorner> vertices;
  LargeVector<unsigned int> indices;
  bool has_normals = false;    ///< some corner has one
  bool has_texcoords = false;  ///< some corner has one
};

/// Finds the distinct corners of a shape.
TinyobjShape make_tinyobj_shape(const tinyobj::attrib_t& attrib, const tinyobj::mesh_t& mesh);

/// One element of a list, with zeros for what is missing and w = 1.
template <std::size_t DIM>
vec4 tinyobj_element(const std::vector<tinyobj::real_t>& list, int index) {
  static_assert(DIM == 2 || DIM == 3);
  if (index < 0 || static_cast<std::size_t>(index) >= list.size() / DIM) return vec4();
  const tinyobj::real_t* p = &list[static_cast<std::size_t>(index) * DIM];
  return vec4(static_cast<float>(p[0]), static_cast<float>(p[1]),
              DIM == 3 ? static_cast<float>(p[DIM - 1]) : 0.0f);
}

}  // namespace orv::detail
