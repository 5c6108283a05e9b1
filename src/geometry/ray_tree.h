#pragma once

#include <orv/math/lanes.h>
#include <orv/math/ray.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/large_array.h"
#include "geometry/plane_tree.h"
#include "geometry/ray_query.h"
#include "geometry/ray_walk.h"

namespace orv {

/// Search tree over the triangles of a mesh in world space, which gives the bits of walk_faces.
///
/// A walk accepts what its rounded arithmetic accepts, and that may be more than what the ray
/// meets:
///
/// - Away from grazing, the point that the arithmetic takes for the hit lies next to the triangle,
///   by a margin that grows with the distance, with the shape of the triangle and towards grazing.
///   Boxes are widened by a fixed part of it when they are tested.
/// - A ray that runs nearly in the plane of a triangle may be found to hit it although it passes at
///   a distance, since all that is left in the arithmetic is rounding. A second tree finds the
///   triangles whose plane holds the ray so nearly.
/// - Needles, whose margins would be as large as the mesh, and triangles with coordinates beyond
///   the usual range are kept aside and tested with every ray. Triangles without area because two
///   corners are equal are never accepted; they are left out.
///
/// The bounds are derived in ray_tree_margins.h.
class RayTree {
 public:
  /// More would take too much memory.
  static constexpr unsigned int MAX_FACES = 1u << 24;
  /// Up to here the planes of all faces are searched, and the results are those of the walk for
  /// every ray. Of larger meshes, those of flat parts alone.
  static constexpr unsigned int MAX_EXACT_FACES = 1u << 17;

  /// Throws std::bad_alloc when the tree does not fit in memory.
  RayTree(const mat4& m, const RayVertices& vertices, const FaceAccess& faces);

  /// Whether the margins hold for this ray. It has to be walked otherwise.
  static bool can_cast(const Ray& ray);

  /// For a ray that can_cast accepts.
  RayHit cast(const Ray& ray, bool first_hit_only) const;

  /// Bytes held.
  std::size_t get_size() const;

 private:
  static constexpr std::uint32_t WIDTH = 8;  // children of a node
  static constexpr std::uint32_t LEAF = 0x80000000u;

  /// Eight children, each in a lane. The fewer nodes on a way, the less waiting for memory.
  struct alignas(64) Node {
    lanes::float4 bounds[6][2];  // least x, y, z, greatest x, y, z
    lanes::float4 margin[2];     // multiple of BOX_MARGIN
    std::uint32_t child[WIDTH];  // a node, or LEAF and a pack
  };
  static_assert(sizeof(Node) == 256);
  struct Primitive;
  struct Range;
  class Builder;
  class Search;

  detail::LargeVector<Node> nodes_;  // the first is the root
  detail::LargeVector<RayPack> packs_;
  std::vector<RayPack> aside_;
  PlaneTree planes_;
  lanes::float4 middle_ = {};
  float reach_ = 0.0f;  // from the middle to the farthest corner, and the longest edge
};

}  // namespace orv
