#include "loaders/tinyobj_shape.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace orv::detail {

namespace {

/// Numbers distinct corners in the order of their first use.
class CornerList {
 public:
  /// For a number of corners of which some may be the same.
  explicit CornerList(std::size_t num_uses)
      : recent_(std::bit_ceil(std::min(num_uses + 1, MAX_RECENT)), 0) {
    spread(FIRST_SLOTS);
  }

  /// The corners, moved out.
  GrowingArray<TinyobjCorner> take() { return std::move(corners_); }

  /// The number of a corner, which is the former size() when it is new.
  unsigned int find_or_add(const TinyobjCorner& corner) {
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

  unsigned int find_in_slots(const TinyobjCorner& corner) {
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

  std::size_t slot_of(const TinyobjCorner& corner) const {
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

  GrowingArray<TinyobjCorner> corners_;
  std::vector<unsigned int> recent_;  ///< numbers by the low bits of positions
  LargeVector<unsigned int> slots_;   ///< numbers of corners; as many as a power of two
  std::size_t mask_ = 0;
};

/// Index -1 marks a missing element; relative indices of a broken file may also be below that.
bool has_element(const std::vector<tinyobj::real_t>& list, int index, std::size_t dim) {
  return index >= 0 && static_cast<std::size_t>(index) < list.size() / dim;
}

}  // namespace

TinyobjShape make_tinyobj_shape(const tinyobj::attrib_t& attrib, const tinyobj::mesh_t& mesh) {
  TinyobjShape shape;
  for (const tinyobj::index_t& index : mesh.indices) {
    shape.has_normals = shape.has_normals || has_element(attrib.normals, index.normal_index, 3);
    shape.has_texcoords =
        shape.has_texcoords || has_element(attrib.texcoords, index.texcoord_index, 2);
  }
  shape.indices.reserve(mesh.indices.size());
  CornerList corners(mesh.indices.size());
  for (const tinyobj::index_t& index : mesh.indices) {
    shape.indices.push_back(
        corners.find_or_add({index.vertex_index, index.normal_index, index.texcoord_index}));
  }
  shape.vertices = corners.take();
  return shape;
}

}  // namespace orv::detail
