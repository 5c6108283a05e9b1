#pragma once

#include <orv/math/lanes.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/large_array.h"
#include "geometry/ray_query.h"

namespace orv {

/// Triangles sorted by the planes that they lie in, to find those whose plane nearly holds a ray.
///
/// Nothing but rounding decides whether such a triangle is accepted, wherever it is; see
/// ray_tree_margins.h. Each node knows the range of its normals and of the planes' distances from
/// the middle of the mesh, so that whole nodes are left out whose planes cross the ray. Of what
/// remains, a node far from the ray needs to hold it the more nearly.
class PlaneTree {
 public:
  /// Which triangles to keep: all, or those of flat parts of the mesh, to which rays are aimed in
  /// their plane more often than by chance.
  enum Extent { EVERYTHING, FLAT_PARTS };
  static constexpr std::size_t LEAST_FLAT_PART = 8;

  /// @param packs   triangles whose g is at most MAX_FACTOR; in order of place, which equal planes
  ///                keep
  /// @param middle  from where distances are counted
  /// @param radius  reaches from the middle to every corner
  PlaneTree(const detail::LargeVector<RayPack>& packs, lanes::float4 middle, float radius,
            Extent extent);
  PlaneTree() = default;

  /// Lets the query take all triangles kept that a RayTree may have left out.
  void search(RayQuery* query) const;

  /// Bytes held.
  std::size_t get_size() const;

 private:
  static constexpr std::uint32_t WIDTH = 4;       // children of a node
  static constexpr std::uint32_t LEAF_PACKS = 2;  // of a leaf
  static constexpr std::size_t MAX_LEVELS = 12;

  /// Four children, each in a lane.
  struct Node {
    lanes::float4 normal[3];       // middle of the range
    lanes::float4 normal_half[3];  // half the range
    lanes::float4 distance;
    lanes::float4 distance_half;
    lanes::float4 place[3];  // sphere round the triangles
    lanes::float4 radius;
    lanes::float4 factor;           // greatest g
    lanes::float4 left_out_beyond;  // share of S up to which a RayTree has found the triangles
  };
  struct Bounds;
  struct Item;
  class Builder;
  class Search;

  detail::LargeVector<Node> nodes_;     // level by level, from the leaves up
  detail::LargeVector<RayPack> packs_;  // LEAF_PACKS to a leaf
  std::vector<std::uint32_t> levels_;   // first node of each level
  lanes::float4 middle_ = {};
};

}  // namespace orv
