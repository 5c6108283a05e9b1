#pragma once

#include <orv/math/lanes.h>
#include <orv/math/ray.h>

#include <cstdint>
#include <vector>

#include "core/large_array.h"
#include "geometry/ray_walk.h"

namespace orv {

/// Search tree over the triangles of a mesh in world space, which gives the bits of walk_faces.
///
/// A walk accepts what its rounded arithmetic accepts, and that may be more than what the ray
/// meets:
///
/// - Away from grazing, the point that the arithmetic takes for the hit lies next to the triangle,
///   by a margin that grows with the distance, with the shape of the triangle and towards grazing.
///   Boxes are widened by it when they are tested.
/// - A ray that runs in the plane of a triangle may be found to hit it although it passes far away,
///   since all that is left in the arithmetic is rounding. Flat parts of a mesh, where this happens
///   to rays that are aimed along them, are searched for such triangles too; of single triangles
///   that a ray is in the plane of by chance, only those that it passes closely are found.
/// - Needles, whose margins would be as large as the mesh, and triangles with coordinates out of
/// the
///   usual range are kept aside and tested with every ray. Triangles that have no area because two
///   corners are equal are never accepted; they are left out.
class RayTree {
 public:
  /// More would take too much memory.
  static constexpr unsigned int MAX_FACES = 1u << 24;

  /// Throws std::bad_alloc when the tree does not fit in memory.
  RayTree(const mat4& m, const RayVertices& vertices, const FaceAccess& faces);

  /// Whether the margins hold for this ray. It has to be walked otherwise.
  static bool can_cast(const Ray& ray);

  /// For a ray that can_cast accepts.
  RayHit cast(const Ray& ray, bool first_hit_only) const;

  /// Bytes held.
  std::size_t get_size() const;

 private:
  struct Node {
    lanes::float4 min;   // w: largest distance of a normal in the node from `axis`
    lanes::float4 max;   // w: worst shape factor
    lanes::float4 axis;  // middle of the normals, of length 1; w: radius round the box's middle
    std::uint32_t child = 0;  // first of two nodes next to each other
    std::uint32_t pack = NO_PACK;
    std::uint32_t unused[2] = {};
  };
  struct Pack {
    TrianglePack triangles;
    std::uint32_t face[4];
  };
  static_assert(sizeof(Node) == 64 && sizeof(Pack) == 160);
  struct Primitive;
  class Builder;
  class Search;

  static constexpr std::uint32_t NO_PACK = 0xFFFFFFFFu;

  std::vector<Node, detail::LargeArrayAllocator<Node>> nodes_;  // the first is the root
  std::vector<Pack, detail::LargeArrayAllocator<Pack>> packs_;
  std::vector<Pack> aside_;
  float longest_edge_ = 0.0f;
  std::vector<std::uint32_t> flats_;  // nodes whose triangles have one normal
};

}  // namespace orv
