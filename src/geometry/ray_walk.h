#pragma once

#include <orv/geometry/face.h>
#include <orv/math/lanes.h>
#include <orv/math/mat4.h>
#include <orv/math/ray.h>

namespace orv {

class FaceAccess;

/// Where the walk starts: nothing farther along the ray is a hit.
inline constexpr float FARTHEST_HIT = 1e13f;

/// The best face so far.
struct RayHit {
  float distance = FARTHEST_HIT;
  unsigned int face = 0;
  bool hit = false;
};

/// Positions of vertices, as four floats each; an index past the end is the origin.
struct RayVertices {
  const float* first = nullptr;
  std::size_t stride = 4;
  unsigned int count = 0;

  const float* at(unsigned int i) const {
    static constexpr float ORIGIN[4] = {0.0f, 0.0f, 0.0f, 1.0f};
    return i < count ? first + i * stride : ORIGIN;
  }
};

/// Four triangles, coordinate by coordinate: `corner[k].x` holds the x of their corners k.
struct TrianglePack {
  struct Corner {
    lanes::float4 x;
    lanes::float4 y;
    lanes::float4 z;
  };
  Corner corner[3];
};

/// A ray against four triangles at once. Each lane has the bits of Math::ray_triangle_intersection.
class PackTest {
 public:
  explicit PackTest(const Ray& ray)
      : origin_{lanes::splat(ray.origin.x), lanes::splat(ray.origin.y), lanes::splat(ray.origin.z)},
        direction_{lanes::splat(ray.direction.x), lanes::splat(ray.direction.y),
                   lanes::splat(ray.direction.z)} {}

  /// Bit k is set when triangle k is accepted: hit ahead of the origin.
  /// @param t_out  parameters along the ray
  int accepted(const TrianglePack& pack, lanes::float4* t_out) const;

 private:
  TrianglePack::Corner origin_;
  TrianglePack::Corner direction_;
};

/// Goes through all faces, transformed by `m`, in order.
RayHit walk_faces(const Ray& ray, const mat4& m, const RayVertices& vertices,
                  const FaceAccess& faces, bool first_hit_only);

}  // namespace orv
