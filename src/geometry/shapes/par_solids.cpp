// Solids of flat faces.
#include <algorithm>
#include <cmath>

#include "geometry/shapes/par_shape.h"

namespace orv::detail {

namespace {

using Triangle = ParShape::Triangle;

/// Lets a triangle of a convex solid around the origin look outwards.
Triangle outwards(const std::vector<vec3>& points, Triangle t) {
  const vec3& a = points[t.a];
  const vec3 normal = (points[t.b] - a).cross(points[t.c] - a);
  if (normal.dot(a + points[t.b] + points[t.c]) < 0.0f) std::swap(t.b, t.c);
  return t;
}

/// All triangles whose three sides have the length of the shortest side.
void add_shortest_triangles(ParShape& shape) {
  const std::vector<vec3>& points = shape.points;
  const auto distance = [&](std::uint32_t i, std::uint32_t j) {
    return (points[i] - points[j]).length();
  };
  const auto n = static_cast<std::uint32_t>(points.size());
  float side = distance(0, 1);
  for (std::uint32_t j = 2; j < n; ++j) side = std::min(side, distance(0, j));
  const auto neighbours = [&](std::uint32_t i, std::uint32_t j) {
    return distance(i, j) < side * 1.01f;
  };
  for (std::uint32_t a = 0; a < n; ++a) {
    for (std::uint32_t b = a + 1; b < n; ++b) {
      for (std::uint32_t c = b + 1; c < n; ++c) {
        if (!neighbours(a, b) || !neighbours(b, c) || !neighbours(a, c)) continue;
        shape.triangles.push_back(outwards(points, {a, b, c}));
      }
    }
  }
}

void make_tetrahedron(ParShape& shape) {
  shape.points = {vec3(1, 1, 1), vec3(1, -1, -1), vec3(-1, 1, -1), vec3(-1, -1, 1)};
  for (vec3& p : shape.points) p.normalize();
  add_shortest_triangles(shape);
}

void make_octahedron(ParShape& shape) {
  shape.points = {vec3(1, 0, 0),  vec3(-1, 0, 0), vec3(0, 1, 0),
                  vec3(0, -1, 0), vec3(0, 0, 1),  vec3(0, 0, -1)};
  add_shortest_triangles(shape);
}

void make_icosahedron(ParShape& shape) {
  constexpr float GOLDEN = 1.618034f;
  for (const float one : {-1.0f, 1.0f}) {
    for (const float golden : {-GOLDEN, GOLDEN}) {
      shape.points.emplace_back(0.0f, one, golden);
      shape.points.emplace_back(one, golden, 0.0f);
      shape.points.emplace_back(golden, 0.0f, one);
    }
  }
  for (vec3& p : shape.points) p.normalize();
  add_shortest_triangles(shape);
}

/// Its corners are the middles of an icosahedron's faces, its pentagons stand at the corners.
void make_dodecahedron(ParShape& shape) {
  ParShape inner;
  make_icosahedron(inner);
  for (const Triangle& t : inner.triangles) {
    vec3 middle = inner.points[t.a] + inner.points[t.b] + inner.points[t.c];
    shape.points.push_back(middle.normalize());
  }
  for (std::uint32_t corner = 0; corner < inner.points.size(); ++corner) {
    struct Around {
      double angle;
      std::uint32_t index;
    };
    std::vector<Around> pentagon;
    const vec3& axis = inner.points[corner];
    vec3 side = axis.cross(std::fabs(axis.x) < 0.5f ? vec3(1, 0, 0) : vec3(0, 1, 0));
    side.normalize();
    const vec3 up = axis.cross(side);
    for (std::uint32_t face = 0; face < inner.triangles.size(); ++face) {
      const Triangle& t = inner.triangles[face];
      if (t.a != corner && t.b != corner && t.c != corner) continue;
      const vec3& p = shape.points[face];
      pentagon.push_back(
          {std::atan2(static_cast<double>(p.dot(up)), static_cast<double>(p.dot(side))), face});
    }
    std::sort(pentagon.begin(), pentagon.end(),
              [](const Around& a, const Around& b) { return a.angle < b.angle; });
    for (std::size_t i = 2; i < pentagon.size(); ++i) {
      shape.triangles.push_back(
          outwards(shape.points, {pentagon[0].index, pentagon[i - 1].index, pentagon[i].index}));
    }
  }
}

void make_cube(ParShape& shape) {
  for (int corner = 0; corner < 8; ++corner) {
    shape.points.emplace_back(corner & 1 ? 1.0f : 0.0f, corner & 2 ? 1.0f : 0.0f,
                              corner & 4 ? 1.0f : 0.0f);
  }
  constexpr std::uint32_t SIDES[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4},
                                         {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
  for (const auto& side : SIDES) {
    shape.triangles.push_back({side[0], side[1], side[2]});
    shape.triangles.push_back({side[0], side[2], side[3]});
  }
}

struct Solid {
  std::string_view name;
  void (*make)(ParShape& shape);
};

constexpr Solid SOLIDS[] = {{"dodecahedron", make_dodecahedron},
                            {"icosahedron", make_icosahedron},
                            {"octohedron", make_octahedron},
                            {"tetrahedron", make_tetrahedron},
                            {"cube", make_cube}};

}  // namespace

bool make_solid(std::string_view name, ParShape& shape) {
  for (const Solid& solid : SOLIDS) {
    if (solid.name != name) continue;
    shape = ParShape();
    solid.make(shape);
    return true;
  }
  return false;
}

}  // namespace orv::detail
