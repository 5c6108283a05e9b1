#pragma once

#include <orv/math/lanes.h>
#include <orv/math/ray.h>

#include <cstdint>
#include <limits>

#include "geometry/ray_walk.h"

namespace orv {

/// Four triangles and the faces that they are. A face may stand there twice.
struct alignas(32) RayPack {
  TrianglePack triangles;
  std::uint32_t face[4];
};
static_assert(sizeof(RayPack) == 160);

/// One ray on its way through the trees of a mesh, with the best face so far: the nearest, of
/// equally near ones that with the lowest index; or the lowest index however far.
class RayQuery {
 public:
  RayQuery(const Ray& ray, bool first_hit_only)
      : origin{ray.origin.x, ray.origin.y, ray.origin.z, 0.0f},
        length(ray.direction.length()),
        test_(ray),
        first_hit_only_(first_hit_only) {
    const lanes::float4 d{ray.direction.x, ray.direction.y, ray.direction.z, 0.0f};
    unit = d * lanes::splat(1.0f / length);
    if (first_hit_only) farthest = std::numeric_limits<float>::infinity();
  }

  /// Tests four triangles.
  void take(const RayPack& pack) {
    lanes::float4 t;
    const int accepted = test_.accepted(pack.triangles, &t);
    for (unsigned int k = 0; k < 4 && accepted != 0; ++k) {
      if ((accepted >> k & 1) != 0) take_face(t[k], pack.face[k]);
    }
  }

  /// What the walk would have found among the faces taken.
  RayHit result() const { return found_ && best_.distance < FARTHEST_HIT ? best_ : RayHit(); }

  lanes::float4 origin;
  lanes::float4 unit;  // the direction with length 1
  float length;
  float farthest = FARTHEST_HIT;  // no face with a greater distance is of use
  float span = 0.0f;              // at least S of every triangle, see ray_tree_margins.h

 private:
  void take_face(float t, std::uint32_t face) {
    const bool better = first_hit_only_ ? !found_ || face < best_.face
                                        : t < best_.distance ||
                                              (found_ && t == best_.distance && face < best_.face);
    if (!better) return;
    found_ = true;
    best_ = {t, face, true};
    if (!first_hit_only_) farthest = t;
  }

  PackTest test_;
  bool first_hit_only_;
  bool found_ = false;
  RayHit best_;
};

}  // namespace orv
