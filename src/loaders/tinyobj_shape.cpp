#include "loaders/tinyobj_shape.h"

#include <cstddef>
#include <cstdint>
#include <unordered_map>

namespace orv::detail {

namespace {

struct Corner {
  int position;
  int normal;
  int texcoord;

  bool operator==(const Corner&) const = default;
};

struct CornerHash {
  std::size_t operator()(const Corner& corner) const {
    constexpr std::uint64_t MIX = 0x9E3779B97F4A7C15u;
    std::uint64_t hash = static_cast<std::uint32_t>(corner.position) * MIX;
    hash = (hash ^ (hash >> 32) ^ static_cast<std::uint32_t>(corner.normal)) * MIX;
    hash = (hash ^ (hash >> 32) ^ static_cast<std::uint32_t>(corner.texcoord)) * MIX;
    return static_cast<std::size_t>(hash ^ (hash >> 32));
  }
};

/// Index -1 marks a missing element; relative indices of a broken file may also be below that.
bool has_element(const std::vector<tinyobj::real_t>& list, int index, std::size_t dim) {
  return index >= 0 && static_cast<std::size_t>(index) < list.size() / dim;
}

void append_element(const std::vector<tinyobj::real_t>& list, int index, std::size_t dim,
                    std::vector<float>& target) {
  const bool found = has_element(list, index, dim);
  const std::size_t begin = found ? static_cast<std::size_t>(index) * dim : 0;
  for (std::size_t i = 0; i < dim; ++i) {
    target.push_back(found ? static_cast<float>(list[begin + i]) : 0.0f);
  }
}

}  // namespace

TinyobjShape make_tinyobj_shape(const tinyobj::attrib_t& attrib, const tinyobj::mesh_t& mesh) {
  TinyobjShape shape;
  bool has_normals = false;
  bool has_texcoords = false;
  for (const tinyobj::index_t& index : mesh.indices) {
    has_normals = has_normals || has_element(attrib.normals, index.normal_index, 3);
    has_texcoords = has_texcoords || has_element(attrib.texcoords, index.texcoord_index, 2);
  }
  shape.indices.reserve(mesh.indices.size());
  std::unordered_map<Corner, unsigned int, CornerHash> vertices;
  for (const tinyobj::index_t& index : mesh.indices) {
    const Corner corner = {index.vertex_index, index.normal_index, index.texcoord_index};
    const auto [vertex, is_new] =
        vertices.try_emplace(corner, static_cast<unsigned int>(vertices.size()));
    shape.indices.push_back(vertex->second);
    if (!is_new) continue;
    append_element(attrib.vertices, corner.position, 3, shape.positions);
    if (has_normals) append_element(attrib.normals, corner.normal, 3, shape.normals);
    if (has_texcoords) append_element(attrib.texcoords, corner.texcoord, 2, shape.texcoords);
  }
  return shape;
}

}  // namespace orv::detail
