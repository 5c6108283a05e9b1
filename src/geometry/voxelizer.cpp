#include "geometry/voxelizer.h"

#include <orv/geometry/vertex.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "geometry/box_sides.h"
#include "geometry/limits.h"

namespace orv {

namespace {

constexpr double MAX_CELLS = 1 << 24;
constexpr std::uint32_t NO_VOXEL = 0xFFFFFFFFu;

struct Point {
  double v[3];
};

Point operator-(const Point& a, const Point& b) {
  return {{a.v[0] - b.v[0], a.v[1] - b.v[1], a.v[2] - b.v[2]}};
}

Point cross(const Point& a, const Point& b) {
  return {{a.v[1] * b.v[2] - a.v[2] * b.v[1], a.v[2] * b.v[0] - a.v[0] * b.v[2],
           a.v[0] * b.v[1] - a.v[1] * b.v[0]}};
}

double dot(const Point& a, const Point& b) {
  return a.v[0] * b.v[0] + a.v[1] * b.v[1] + a.v[2] * b.v[2];
}

struct Triangle {
  Point corners[3];
  unsigned int indices[3];
};

/// Whether an axis keeps a triangle, given relative to a box's centre, apart from the box.
bool separates(const Point& axis, const Point (&corners)[3], const Point& half) {
  const double a = dot(axis, corners[0]);
  const double b = dot(axis, corners[1]);
  const double c = dot(axis, corners[2]);
  const double reach = half.v[0] * std::fabs(axis.v[0]) + half.v[1] * std::fabs(axis.v[1]) +
                       half.v[2] * std::fabs(axis.v[2]);
  return std::min({a, b, c}) > reach || std::max({a, b, c}) < -reach;
}

/// Separating axes: the sides of the box, the plane of the triangle, and the products of edges.
bool touches(const Triangle& triangle, const Point& center, const Point& half) {
  Point corners[3];
  for (int k = 0; k < 3; ++k) corners[k] = triangle.corners[k] - center;
  const Point unit[3] = {{{1, 0, 0}}, {{0, 1, 0}}, {{0, 0, 1}}};
  for (const Point& axis : unit) {
    if (separates(axis, corners, half)) return false;
  }
  const Point edges[3] = {corners[1] - corners[0], corners[2] - corners[1],
                          corners[0] - corners[2]};
  if (separates(cross(edges[0], edges[1]), corners, half)) return false;
  for (const Point& edge : edges) {
    for (const Point& axis : unit) {
      if (separates(cross(edge, axis), corners, half)) return false;
    }
  }
  return true;
}

struct Voxel {
  int cell[3];
  unsigned int nearest = 0;  ///< vertex whose texture coordinates it takes
  double distance = 0.0;     ///< squared, to that vertex
};

class VoxelGrid {
 public:
  explicit VoxelGrid(const TriangleSoup& soup) : soup_(soup) {}

  bool build(const vec3& size, float precision);
  /// False when the cubes would exceed the largest geometry.
  bool write(VoxelCubes* out) const;

 private:
  /// A block of cells, from `first` to before `last` on each axis.
  struct Block {
    int first[3];
    int last[3];
  };

  bool collect_triangles();
  bool lay_out(const vec3& size, float precision);
  void mark(const Triangle& triangle, const Block& block);
  void mark_cell(const Triangle& triangle, const int (&cell)[3], const Point& center);
  std::size_t index_of(int x, int y, int z) const;
  bool is_voxel(int x, int y, int z) const;
  bool is_covered(const Voxel& voxel, const BoxSide& side) const;
  void write_side(const Voxel& voxel, unsigned int side, VoxelCubes* out) const;

  const TriangleSoup& soup_;
  std::vector<Triangle> triangles_;
  Point origin_ = {};
  Point size_ = {};
  Point slack_ = {};
  int counts_[3] = {};
  std::vector<std::uint32_t> voxel_of_cell_;
  std::vector<Voxel> voxels_;
};

bool is_finite(const vec3& p) {
  return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

bool VoxelGrid::collect_triangles() {
  for (std::size_t i = 0; i + 2 < soup_.indices.size(); i += 3) {
    Triangle triangle = {};
    bool usable = true;
    for (std::size_t k = 0; k < 3 && usable; ++k) {
      const unsigned int index = soup_.indices[i + k];
      usable = index < soup_.positions.size() && is_finite(soup_.positions[index]);
      if (!usable) break;
      const vec3& p = soup_.positions[index];
      triangle.indices[k] = index;
      triangle.corners[k] = {
          {static_cast<double>(p.x), static_cast<double>(p.y), static_cast<double>(p.z)}};
    }
    if (usable) triangles_.push_back(triangle);
  }
  return !triangles_.empty();
}

bool VoxelGrid::lay_out(const vec3& size, float precision) {
  Point low = triangles_[0].corners[0];
  Point high = low;
  for (const Triangle& triangle : triangles_) {
    for (const Point& p : triangle.corners) {
      for (int k = 0; k < 3; ++k) {
        low.v[k] = std::min(low.v[k], p.v[k]);
        high.v[k] = std::max(high.v[k], p.v[k]);
      }
    }
  }
  origin_ = low;
  size_ = {{static_cast<double>(size.x), static_cast<double>(size.y), static_cast<double>(size.z)}};
  const double wanted =
      precision > 0.0f && std::isfinite(precision) ? static_cast<double>(precision) : 0.0;
  double cells = 1.0;
  for (int k = 0; k < 3; ++k) {
    if (!(size_.v[k] > 0.0) || !std::isfinite(size_.v[k])) return false;
    // A size given in decimal fills the box a hair short or over: neither may add a layer of cells
    // nor lose the surface at its end.
    const double parts = std::ceil((high.v[k] - low.v[k]) / size_.v[k] * (1.0 - 1e-6));
    cells *= std::max(parts, 1.0);
    if (!(cells <= MAX_CELLS)) return false;
    counts_[k] = static_cast<int>(std::max(parts, 1.0));
    slack_.v[k] = wanted + size_.v[k] * 1e-5;
  }
  return true;
}

std::size_t VoxelGrid::index_of(int x, int y, int z) const {
  const auto width = static_cast<std::size_t>(counts_[0]);
  const auto height = static_cast<std::size_t>(counts_[1]);
  return (static_cast<std::size_t>(z) * height + static_cast<std::size_t>(y)) * width +
         static_cast<std::size_t>(x);
}

bool VoxelGrid::is_voxel(int x, int y, int z) const {
  if (x < 0 || y < 0 || z < 0 || x >= counts_[0] || y >= counts_[1] || z >= counts_[2]) {
    return false;
  }
  return voxel_of_cell_[index_of(x, y, z)] != NO_VOXEL;
}

// Halves the block as long as the triangle touches it, so that only touched cells cost anything.
void VoxelGrid::mark(const Triangle& triangle, const Block& block) {
  Point center;
  Point half;
  int longest = 0;
  for (int k = 0; k < 3; ++k) {
    const double low = origin_.v[k] + block.first[k] * size_.v[k];
    const double high = origin_.v[k] + block.last[k] * size_.v[k];
    center.v[k] = (low + high) / 2.0;
    half.v[k] = (high - low) / 2.0 + slack_.v[k];
    if (block.last[k] - block.first[k] > block.last[longest] - block.first[longest]) longest = k;
  }
  if (!touches(triangle, center, half)) return;
  const int middle = (block.first[longest] + block.last[longest]) / 2;
  if (middle == block.first[longest]) {
    mark_cell(triangle, block.first, center);
    return;
  }
  Block lower = block;
  lower.last[longest] = middle;
  mark(triangle, lower);
  Block upper = block;
  upper.first[longest] = middle;
  mark(triangle, upper);
}

void VoxelGrid::mark_cell(const Triangle& triangle, const int (&cell)[3], const Point& center) {
  std::uint32_t& slot = voxel_of_cell_[index_of(cell[0], cell[1], cell[2])];
  const bool fresh = slot == NO_VOXEL;
  if (fresh) {
    slot = static_cast<std::uint32_t>(voxels_.size());
    voxels_.push_back({{cell[0], cell[1], cell[2]}, 0, 0.0});
    voxels_.back().distance = HUGE_VAL;
  }
  Voxel& voxel = voxels_[slot];
  for (int k = 0; k < 3; ++k) {
    const Point away = triangle.corners[k] - center;
    const double distance = dot(away, away);
    if (distance >= voxel.distance) continue;
    voxel.distance = distance;
    voxel.nearest = triangle.indices[k];
  }
}

bool VoxelGrid::build(const vec3& size, float precision) {
  if (!collect_triangles() || !lay_out(size, precision)) return false;
  voxel_of_cell_.assign(index_of(0, 0, counts_[2]), NO_VOXEL);
  const Block all = {{0, 0, 0}, {counts_[0], counts_[1], counts_[2]}};
  for (const Triangle& triangle : triangles_) mark(triangle, all);
  return !voxels_.empty();
}

void VoxelGrid::write_side(const Voxel& voxel, unsigned int side, VoxelCubes* out) const {
  const BoxSide& at = BOX_SIDES[side];
  const auto first = static_cast<unsigned int>(out->positions.size());
  const vec2 uv = voxel.nearest < soup_.uvs.size() ? soup_.uvs[voxel.nearest] : vec2();
  // The four corners go round the side, counter-clockwise from outside.
  static constexpr float TURNS[4][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
  for (const float(&turn)[2] : TURNS) {
    const vec3 corner = at.normal + at.u * turn[0] + at.v * turn[1];
    const float signs[3] = {corner.x, corner.y, corner.z};
    float place[3];
    for (int k = 0; k < 3; ++k) {
      const int line = voxel.cell[k] + (signs[k] > 0.0f ? 1 : 0);
      place[k] = static_cast<float>(origin_.v[k] + line * size_.v[k]);
    }
    out->positions.emplace_back(place[0], place[1], place[2]);
    out->uvs.push_back(uv);
  }
  for (const unsigned int corner : {0u, 1u, 2u, 0u, 2u, 3u}) {
    out->position_indices.push_back(first + corner);
    out->normal_indices.push_back(side);
  }
}

bool VoxelGrid::is_covered(const Voxel& voxel, const BoxSide& side) const {
  return is_voxel(voxel.cell[0] + static_cast<int>(side.normal.x),
                  voxel.cell[1] + static_cast<int>(side.normal.y),
                  voxel.cell[2] + static_cast<int>(side.normal.z));
}

bool VoxelGrid::write(VoxelCubes* out) const {
  std::uint64_t sides = 0;
  for (const Voxel& voxel : voxels_) {
    for (const BoxSide& side : BOX_SIDES) sides += is_covered(voxel, side) ? 0 : 1;
  }
  if (sides > MAX_GEOMETRY_BYTES / (4 * sizeof(Vertex))) return false;

  *out = VoxelCubes();
  for (const BoxSide& side : BOX_SIDES) out->normals.push_back(side.normal);
  out->positions.reserve(sides * 4);
  out->uvs.reserve(sides * 4);
  out->position_indices.reserve(sides * 6);
  out->normal_indices.reserve(sides * 6);
  for (const Voxel& voxel : voxels_) {
    for (unsigned int side = 0; side < 6; ++side) {
      if (!is_covered(voxel, BOX_SIDES[side])) write_side(voxel, side, out);
    }
  }
  return true;
}

}  // namespace

bool voxelize_surface(const TriangleSoup& soup, const vec3& size, float precision,
                      VoxelCubes* out) {
  VoxelGrid grid(soup);
  return grid.build(size, precision) && grid.write(out);
}

}  // namespace orv
