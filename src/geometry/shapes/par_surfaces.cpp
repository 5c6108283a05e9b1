// Surfaces given by a function of two parameters.
#include <cmath>

#include "geometry/shapes/par_shape.h"

namespace orv::detail {

namespace {

constexpr double TWO_PI = 6.283185307179586;

/// A point in double precision: normals are taken from small differences.
struct Vec {
  double x, y, z;

  Vec operator+(const Vec& v) const { return {x + v.x, y + v.y, z + v.z}; }
  Vec operator-(const Vec& v) const { return {x - v.x, y - v.y, z - v.z}; }
  Vec operator*(double s) const { return {x * s, y * s, z * s}; }
  Vec cross(const Vec& v) const {
    return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
  }
  double length() const { return std::sqrt(x * x + y * y + z * z); }
  Vec normalized() const { return *this * (1.0 / length()); }
  vec3 rounded() const {
    return vec3(static_cast<float>(x), static_cast<float>(y), static_cast<float>(z));
  }
};

/// Tube of radius 0.35 round a trefoil: v goes along the knot, u round the tube.
Vec trefoil_knot(double u, double v) {
  const double t = v * TWO_PI;
  const Vec center =
      Vec{std::sin(t) + 2 * std::sin(2 * t), std::cos(t) - 2 * std::cos(2 * t), -std::sin(3 * t)} *
      (1.0 / 3);
  const Vec first{std::cos(t) + 4 * std::cos(2 * t), -std::sin(t) + 4 * std::sin(2 * t),
                  -3 * std::cos(3 * t)};
  const Vec second{-std::sin(t) - 8 * std::sin(2 * t), -std::cos(t) + 8 * std::cos(2 * t),
                   9 * std::sin(3 * t)};
  const Vec tangent = first.normalized();
  const Vec binormal = first.cross(second).normalized();
  const Vec normal = binormal.cross(tangent);
  const double angle = u * TWO_PI;
  return center + (normal * std::cos(angle) + binormal * std::sin(angle)) * 0.35;
}

/// The immersion whose profile is a figure of eight, radius 2.
Vec klein_bottle(double u, double v) {
  const double a = u * TWO_PI;
  const double b = v * TWO_PI;
  const double half_sin = std::sin(a / 2);
  const double half_cos = std::cos(a / 2);
  const double distance = 2 + half_cos * std::sin(b) - half_sin * std::sin(2 * b);
  return {distance * std::cos(a), distance * std::sin(a),
          half_sin * std::sin(b) + half_cos * std::sin(2 * b)};
}

/// Unit sphere from the pole at z -1 up.
Vec sphere(double u, double v) {
  const double from_top = (1 - v) * TWO_PI / 2;
  const double radius = std::sin(from_top);
  return {radius * std::cos(u * TWO_PI), radius * std::sin(u * TWO_PI), std::cos(from_top)};
}

Vec tube(double u, double v) { return {std::cos(u * TWO_PI), std::sin(u * TWO_PI), v}; }

/// Of the side from which u goes to the right and v up. Where the surface has no breadth, as at the
/// pole of a sphere, it is that of a place nearby.
template <class Surface>
vec3 normal_at(Surface surface, double u, double v) {
  constexpr double STEP = 1e-5;
  constexpr double ASIDE = 1e-4;
  for (const double place : {v, v < 0.5 ? v + ASIDE : v - ASIDE}) {
    const Vec along_u = surface(u + STEP, place) - surface(u - STEP, place);
    const Vec along_v = surface(u, place + STEP) - surface(u, place - STEP);
    const Vec normal = along_u.cross(along_v);
    if (normal.length() > 1e-13) return normal.normalized().rounded();
  }
  return vec3(0.0f, 0.0f, 1.0f);
}

template <class Surface>
bool make_surface(Surface surface, int slices, int stacks, int least, ParShape& shape) {
  shape = ParShape();
  if (slices < least || stacks < least) return false;
  const std::uint64_t columns = static_cast<std::uint64_t>(slices) + 1;
  const std::uint64_t rows = static_cast<std::uint64_t>(stacks) + 1;
  if (columns * rows > ParShape::MAX_POINTS) return false;

  for (int i = 0; i <= stacks; ++i) {
    const double v = static_cast<double>(i) / stacks;
    for (int j = 0; j <= slices; ++j) {
      const double u = static_cast<double>(j) / slices;
      shape.points.push_back(surface(u, v).rounded());
      shape.normals.push_back(normal_at(surface, u, v));
      shape.tcoords.emplace_back(static_cast<float>(u), static_cast<float>(v));
    }
  }
  const auto row = static_cast<std::uint32_t>(columns);
  for (std::uint32_t i = 0; i + 1 < rows; ++i) {
    for (std::uint32_t a = i * row; a + 1 < (i + 1) * row; ++a) {
      shape.triangles.push_back({a, a + 1, a + row});
      shape.triangles.push_back({a + 1, a + row + 1, a + row});
    }
  }
  return true;
}

}  // namespace

bool make_trefoil_knot(int slices, int stacks, ParShape& shape) {
  return make_surface(trefoil_knot, slices, stacks, 3, shape);
}

bool make_klein_bottle(int slices, int stacks, ParShape& shape) {
  return make_surface(klein_bottle, slices, stacks, 1, shape);
}

bool make_parametric_sphere(int slices, int stacks, ParShape& shape) {
  if (!make_surface(sphere, slices, stacks, 3, shape)) return false;
  remove_degenerate_triangles(shape);
  return true;
}

bool make_tube(int slices, int stacks, ParShape& shape) {
  return make_surface(tube, slices, stacks, 1, shape);
}

}  // namespace orv::detail
