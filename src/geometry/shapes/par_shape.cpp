#include "geometry/shapes/par_shape.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <unordered_map>

#include "geometry/shapes/par_random.h"

namespace orv::detail {

namespace {

using Triangle = ParShape::Triangle;

/// Normal of a triangle, as long as twice its area.
vec3 area_normal(const ParShape& shape, const Triangle& t) {
  const vec3& a = shape.points[t.a];
  return (shape.points[t.b] - a).cross(shape.points[t.c] - a);
}

/// Points by the cells of a grid.
class PointGrid {
 public:
  PointGrid(const vec3& low, float cell) : low_(low), cell_(static_cast<double>(cell)) {}

  void add(const vec3& p, std::uint32_t index) {
    const Cell cell = cell_of(p);
    cells_.emplace(key(cell.x, cell.y, cell.z), index);
  }

  /// Calls visit(index) for the points of the cell of `p` and of all cells beside it.
  template <class Visit>
  void visit_near(const vec3& p, Visit visit) const {
    const Cell cell = cell_of(p);
    for (std::int64_t n = 0; n < 27; ++n) {
      const auto range =
          cells_.equal_range(key(cell.x + n % 3 - 1, cell.y + n / 3 % 3 - 1, cell.z + n / 9 - 1));
      for (auto found = range.first; found != range.second; ++found) visit(found->second);
    }
  }

 private:
  struct Cell {
    std::int64_t x, y, z;
  };

  std::int64_t along(float v, float low) const {
    // Far more cells than points: what lies behind them shares one.
    constexpr double MOST = 1e15;
    const double place = (static_cast<double>(v) - static_cast<double>(low)) / cell_;
    return static_cast<std::int64_t>(std::min(std::floor(place), MOST));
  }
  Cell cell_of(const vec3& p) const {
    return {along(p.x, low_.x), along(p.y, low_.y), along(p.z, low_.z)};
  }
  static std::uint64_t key(std::int64_t x, std::int64_t y, std::int64_t z) {
    const std::uint64_t xy =
        mix_bits(static_cast<std::uint64_t>(x)) + static_cast<std::uint64_t>(y);
    return mix_bits(mix_bits(xy) + static_cast<std::uint64_t>(z));
  }

  vec3 low_;
  double cell_;
  std::unordered_multimap<std::uint64_t, std::uint32_t> cells_;
};

/// For each point the index, among those that stay, of the point it merges with.
std::vector<std::uint32_t> merge_points(std::vector<vec3>& points, const vec3& low, float epsilon) {
  PointGrid grid(low, epsilon);
  std::vector<std::uint32_t> target;
  std::vector<vec3> kept;
  target.reserve(points.size());
  for (const vec3& p : points) {
    auto merged = static_cast<std::uint32_t>(kept.size());
    grid.visit_near(p, [&](std::uint32_t other) {
      const vec3 apart = kept[other] - p;
      if (other < merged && apart.magnitude_squared() < epsilon * epsilon) merged = other;
    });
    if (merged == kept.size()) {
      grid.add(p, merged);
      kept.push_back(p);
    }
    target.push_back(merged);
  }
  points = std::move(kept);
  return target;
}

}  // namespace

void unweld(ParShape& shape) {
  std::vector<vec3> points;
  points.reserve(shape.triangles.size() * 3);
  for (Triangle& t : shape.triangles) {
    const auto first = static_cast<std::uint32_t>(points.size());
    for (const std::uint32_t corner : {t.a, t.b, t.c}) points.push_back(shape.points[corner]);
    t = {first, first + 1, first + 2};
  }
  shape.points = std::move(points);
  shape.normals.clear();
  shape.tcoords.clear();
}

void compute_normals(ParShape& shape) {
  shape.normals.assign(shape.points.size(), vec3());
  for (const Triangle& t : shape.triangles) {
    const vec3 normal = area_normal(shape, t);
    for (const std::uint32_t corner : {t.a, t.b, t.c}) shape.normals[corner] += normal;
  }
  for (vec3& normal : shape.normals) normal.normalize();
}

void remove_degenerate_triangles(ParShape& shape) {
  constexpr float SMALLEST = 1e-24f;  // square of twice the area
  const auto is_degenerate = [&](const Triangle& t) {
    return area_normal(shape, t).magnitude_squared() < SMALLEST;
  };
  shape.triangles.erase(
      std::remove_if(shape.triangles.begin(), shape.triangles.end(), is_degenerate),
      shape.triangles.end());
}

void weld(ParShape& shape, float epsilon) {
  if (shape.points.empty() || !(epsilon > 0.0f)) return;
  vec3 low = shape.points[0];
  vec3 high = low;
  for (const vec3& p : shape.points) {
    low = vec3(std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z));
    high = vec3(std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z));
  }
  const vec3 size = high - low;
  if (!(epsilon <= std::max({size.x, size.y, size.z}) * 0.5f)) {
    std::fputs("Epsilon value is too large.\n", stdout);
    return;
  }
  const std::vector<std::uint32_t> target = merge_points(shape.points, low, epsilon);
  std::vector<Triangle> triangles;
  triangles.reserve(shape.triangles.size());
  for (const Triangle& t : shape.triangles) {
    const Triangle merged{target[t.a], target[t.b], target[t.c]};
    const bool degenerate = merged.a == merged.b || merged.b == merged.c || merged.c == merged.a;
    if (!degenerate) triangles.push_back(merged);
  }
  shape.triangles = std::move(triangles);
  shape.normals.clear();
  shape.tcoords.clear();
}

}  // namespace orv::detail
