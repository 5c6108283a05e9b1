#include "loaders/tinyobj_shape.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/growing_array.h"

namespace orv::detail {

namespace {

struct Corner {
  int position;
  int normal;
  int texcoord;

  bool operator==(const Corner&) const = default;
};

/// Numbers distinct corners in the order of their first use.
class CornerList {
 public:
  /// For a number of corners of which some may be the same.
  explicit CornerList(std::size_t num_uses)
      : recent_(std::bit_ceil(std::min(num_uses + 1, MAX_RECENT)), 0) {
    spread(FIRST_SLOTS);
  }

  std::size_t size() const { return corners_.size(); }

  /// The number of a corner, which is the former size() when it is new.
  unsigned int find_or_add(const Corner& corner) {
    // Mostly the position has been used a moment ago, and with the same normal and so on.
    unsigned int& recent =
        recent_[static_cast<std::uint32_t>(corner.position) & (recent_.size() - 1)];
    if (recent < corners_.size() && corners_[recent] == corner) return recent;
    recent = find_in_slots(corner);
    return recent;
  }

 private:
  static constexpr unsigned int FREE = 0xFFFFFFFFu;
  static constexpr std::size_t FIRST_SLOTS = 64;
  static constexpr std::size_t MAX_RECENT = 4096;

  unsigned int find_in_slots(const Corner& corner) {
    std::size_t slot = slot_of(corner);
    for (; slots_[slot] != FREE; slot = (slot + 1) & mask_) {
      if (corners_[slots_[slot]] == corner) return slots_[slot];
    }
    const auto number = static_cast<unsigned int>(corners_.size());
    slots_[slot] = number;
    corners_.push_back(corner);
    if (corners_.size() * 2 > slots_.size()) spread(slots_.size() * 2);
    return number;
  }

  std::size_t slot_of(const Corner& corner) const {
    constexpr std::uint64_t MIX = 0x9E3779B97F4A7C15u;
    std::uint64_t hash = static_cast<std::uint32_t>(corner.position) * MIX;
    hash = (hash ^ (hash >> 32) ^ static_cast<std::uint32_t>(corner.normal)) * MIX;
    hash = (hash ^ (hash >> 32) ^ static_cast<std::uint32_t>(corner.texcoord)) * MIX;
    return static_cast<std::size_t>(hash ^ (hash >> 32)) & mask_;
  }

  /// Gives all corners new slots, of which at most half are ever in use.
  void spread(std::size_t num_slots) {
    slots_.assign(num_slots, FREE);
    mask_ = num_slots - 1;
    for (std::size_t i = 0; i < corners_.size(); ++i) {
      std::size_t slot = slot_of(corners_[i]);
      while (slots_[slot] != FREE) slot = (slot + 1) & mask_;
      slots_[slot] = static_cast<unsigned int>(i);
    }
  }

  GrowingArray<Corner> corners_;
  std::vector<unsigned int> recent_;  ///< numbers by the low bits of positions
  LargeVector<unsigned int> slots_;   ///< numbers of corners; as many as a power of two
  std::size_t mask_ = 0;
};

/// Index -1 marks a missing element; relative indices of a broken file may also be below that.
bool has_element(const std::vector<tinyobj::real_t>& list, int index, std::size_t dim) {
  return index >= 0 && static_cast<std::size_t>(index) < list.size() / dim;
}

void append_element(const std::vector<tinyobj::real_t>& list, int index, std::size_t dim,
                    LargeVector<float>& target) {
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
  CornerList corners(mesh.indices.size());
  for (const tinyobj::index_t& index : mesh.indices) {
    const Corner corner = {index.vertex_index, index.normal_index, index.texcoord_index};
    const std::size_t known = corners.size();
    const unsigned int vertex = corners.find_or_add(corner);
    shape.indices.push_back(vertex);
    if (vertex < known) continue;
    append_element(attrib.vertices, corner.position, 3, shape.positions);
    if (has_normals) append_element(attrib.normals, corner.normal, 3, shape.normals);
    if (has_texcoords) append_element(attrib.texcoords, corner.texcoord, 2, shape.texcoords);
  }
  return shape;
}

}  // namespace orv::detail
