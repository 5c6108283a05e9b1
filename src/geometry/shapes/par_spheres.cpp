// Spheres of subdivided triangles, and what is made of them.
#include <algorithm>
#include <cmath>

#include "geometry/shapes/par_random.h"
#include "geometry/shapes/par_shape.h"

namespace orv::detail {

namespace {

using Triangle = ParShape::Triangle;

constexpr int MAX_LEVELS = 6;  // the next has more points than 16-bit indices name

/// Cuts every triangle in four and moves the new points out to the sphere.
void subdivide(ParShape& shape) {
  // Far below the distance of any two points of the last level.
  constexpr float SAME_POINT = 1e-4f;
  std::vector<Triangle> triangles;
  triangles.reserve(shape.triangles.size() * 4);
  const auto add_middle = [&](std::uint32_t i, std::uint32_t j) {
    vec3 middle = shape.points[i] + shape.points[j];
    shape.points.push_back(middle.normalize());
    return static_cast<std::uint32_t>(shape.points.size() - 1);
  };
  for (const Triangle& t : shape.triangles) {
    const std::uint32_t ab = add_middle(t.a, t.b);
    const std::uint32_t bc = add_middle(t.b, t.c);
    const std::uint32_t ca = add_middle(t.c, t.a);
    triangles.insert(triangles.end(), {{t.a, ab, ca}, {ab, t.b, bc}, {ca, bc, t.c}, {ab, bc, ca}});
  }
  shape.triangles = std::move(triangles);
  weld(shape, SAME_POINT);
}

/// Value from -1 to 1 at a point of the lattice.
float lattice_value(std::uint64_t seed, int x, int y, int z) {
  const auto bits = [](int v) { return static_cast<std::uint64_t>(static_cast<std::uint32_t>(v)); };
  const std::uint64_t hash = mix_bits(mix_bits(mix_bits(seed ^ bits(x)) ^ bits(y)) ^ bits(z));
  return static_cast<float>(hash >> 40) * 0x1p-23f - 1.0f;
}

/// Smooth noise from -1 to 1.
float noise(std::uint64_t seed, const vec3& p) {
  const float at[3] = {p.x, p.y, p.z};
  int cell[3];
  float part[3];
  for (int i = 0; i < 3; ++i) {
    const float low = std::floor(at[i]);
    const float t = at[i] - low;
    cell[i] = static_cast<int>(low);
    part[i] = t * t * (3.0f - 2.0f * t);
  }
  float sum = 0.0f;
  for (int corner = 0; corner < 8; ++corner) {
    float weight = 1.0f;
    for (int i = 0; i < 3; ++i) weight *= corner >> i & 1 ? part[i] : 1.0f - part[i];
    sum += weight * lattice_value(seed, cell[0] + (corner & 1), cell[1] + (corner >> 1 & 1),
                                  cell[2] + (corner >> 2 & 1));
  }
  return sum;
}

}  // namespace

bool make_subdivided_sphere(int levels, ParShape& shape) {
  if (levels > MAX_LEVELS || !make_solid("icosahedron", shape)) return false;
  for (int level = 0; level < levels; ++level) subdivide(shape);
  shape.normals = shape.points;
  return true;
}

bool make_rock(int seed, int levels, ParShape& shape) {
  constexpr float FLAT_BELOW = -0.4f;
  if (!make_subdivided_sphere(levels, shape)) return false;
  const std::uint64_t hashed = mix_bits(static_cast<std::uint32_t>(seed));
  for (vec3& p : shape.points) {
    float scale = 1.0f;
    float frequency = 1.5f;
    float amplitude = 0.3f;
    for (std::uint64_t octave = 0; octave < 3; ++octave) {
      scale += amplitude * noise(hashed + octave, p * frequency);
      frequency *= 2.0f;
      amplitude *= 0.5f;
    }
    p *= scale;
    p.y = std::max(p.y, FLAT_BELOW);
  }
  compute_normals(shape);
  return true;
}

}  // namespace orv::detail
