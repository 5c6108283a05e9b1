#include "geometry/ray_walk.h"

#include <xmmintrin.h>

#include <algorithm>
#include <cstdint>

#include "geometry/face_access.h"

namespace orv {

using lanes::float4;
using Corner = TrianglePack::Corner;

namespace {

using Mask = int __attribute__((vector_size(16)));

Corner minus(const Corner& a, const Corner& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }

Corner cross(const Corner& a, const Corner& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

float4 dot(const Corner& a, const Corner& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

int bits_of(const Mask& mask) { return _mm_movemask_ps(reinterpret_cast<__m128>(mask)); }

}  // namespace

int PackTest::accepted(const TrianglePack& pack, float4* t_out) const {
  const Corner a = minus(pack.corner[0], pack.corner[1]);
  const Corner b = minus(pack.corner[0], pack.corner[2]);
  const Corner s = minus(pack.corner[0], origin_);
  const Corner p = cross(b, direction_);
  const Corner q = cross(a, s);
  const float4 determinant = dot(p, a);
  const float4 zero = lanes::splat(0.0f);
  const float4 one = lanes::splat(1.0f);
  const float4 u = dot(q, direction_) / determinant;
  const float4 v = dot(p, s) / determinant;
  const Mask inside = (u >= zero) & (v >= zero) & (u <= one) & (v <= one) & (u + v <= one);
  if (bits_of(inside) == 0) return 0;
  const float4 t = -dot(q, b) / determinant;
  *t_out = t;
  return bits_of(inside & (t > zero));
}

namespace {

/// Makes packs of faces of a mesh in world space.
class FacePacker {
 public:
  FacePacker(const mat4& m, const RayVertices& vertices) : vertices_(vertices) {
    for (int i = 0; i < 16; ++i) m_[i] = lanes::splat(m.m[i]);
  }

  TrianglePack pack(const FaceU32* faces) const {
    TrianglePack result;
    result.corner[0] = corners(faces[0].a, faces[1].a, faces[2].a, faces[3].a);
    result.corner[1] = corners(faces[0].b, faces[1].b, faces[2].b, faces[3].b);
    result.corner[2] = corners(faces[0].c, faces[1].c, faces[2].c, faces[3].c);
    return result;
  }

 private:
  Corner corners(unsigned int i0, unsigned int i1, unsigned int i2, unsigned int i3) const {
    const float4 r0 = lanes::load(vertices_.at(i0));
    const float4 r1 = lanes::load(vertices_.at(i1));
    const float4 r2 = lanes::load(vertices_.at(i2));
    const float4 r3 = lanes::load(vertices_.at(i3));
    const float4 xy01 = __builtin_shufflevector(r0, r1, 0, 4, 1, 5);
    const float4 xy23 = __builtin_shufflevector(r2, r3, 0, 4, 1, 5);
    const float4 zw01 = __builtin_shufflevector(r0, r1, 2, 6, 3, 7);
    const float4 zw23 = __builtin_shufflevector(r2, r3, 2, 6, 3, 7);
    const float4 x = __builtin_shufflevector(xy01, xy23, 0, 1, 4, 5);
    const float4 y = __builtin_shufflevector(xy01, xy23, 2, 3, 6, 7);
    const float4 z = __builtin_shufflevector(zw01, zw23, 0, 1, 4, 5);
    return {row(0, x, y, z), row(1, x, y, z), row(2, x, y, z)};
  }

  // The sum of mat4 * vec4 with w 1, in its order.
  float4 row(int r, const float4& x, const float4& y, const float4& z) const {
    return m_[r] * x + m_[4 + r] * y + m_[8 + r] * z + m_[12 + r];
  }

  RayVertices vertices_;
  float4 m_[16];
};

}  // namespace

RayHit walk_faces(const Ray& ray, const mat4& m, const RayVertices& vertices,
                  const FaceAccess& faces, bool first_hit_only) {
  const PackTest test(ray);
  const FacePacker packer(m, vertices);
  RayHit best;
  const unsigned int count = faces.size();
  for (std::uint64_t start = 0; start < count; start += 4) {
    const auto first = static_cast<unsigned int>(start);
    FaceU32 four[4];
    for (unsigned int k = 0; k < 4; ++k) {
      // The last faces are repeated, which changes nothing: a repeated hit is not a nearer one.
      four[k] = faces.get(std::min(first + k, count - 1));
    }
    float4 t;
    const int accepted = test.accepted(packer.pack(four), &t);
    for (unsigned int k = 0; k < 4 && accepted != 0; ++k) {
      if ((accepted >> k & 1) == 0) continue;
      if (t[k] < best.distance) best = {t[k], first + k, true};
      if (first_hit_only) return best;
    }
  }
  return best;
}

}  // namespace orv
