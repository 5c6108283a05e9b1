#include "geometry/plane_tree.h"

#include <xmmintrin.h>

#include <algorithm>
#include <cmath>

#include "geometry/ray_tree_margins.h"

namespace orv {

using lanes::float4;
using lanes::splat;

namespace {

float4 lowest(float4 a, float4 b) { return _mm_min_ps(a, b); }
float4 highest(float4 a, float4 b) { return _mm_max_ps(a, b); }
float4 root(float4 a) { return _mm_sqrt_ps(a); }
float4 absolute(float4 a) { return _mm_andnot_ps(splat(-0.0f), a); }

int bits_where_not_above(float4 a, float4 b) { return _mm_movemask_ps(_mm_cmple_ps(a, b)); }

/// The planes of four triangles.
struct PlanePack {
  float4 normal[3];
  float4 distance;  // from the middle, along the normal
  float4 factor;

  PlanePack(const TrianglePack& pack, float4 middle) {
    const TrianglePack::Corner& p = pack.corner[0];
    const float4 ax = p.x - pack.corner[1].x;
    const float4 ay = p.y - pack.corner[1].y;
    const float4 az = p.z - pack.corner[1].z;
    const float4 bx = p.x - pack.corner[2].x;
    const float4 by = p.y - pack.corner[2].y;
    const float4 bz = p.z - pack.corner[2].z;
    normal[0] = ay * bz - az * by;
    normal[1] = az * bx - ax * bz;
    normal[2] = ax * by - ay * bx;
    const float4 area = root(normal[0] * normal[0] + normal[1] * normal[1] + normal[2] * normal[2]);
    for (float4& n : normal) n /= area;
    factor = root(ax * ax + ay * ay + az * az) * root(bx * bx + by * by + bz * bz) / area *
             splat(1.001f);
    distance = normal[0] * (p.x - splat(middle[0])) + normal[1] * (p.y - splat(middle[1])) +
               normal[2] * (p.z - splat(middle[2]));
  }

  /// Normal and distance of one.
  float4 plane(unsigned int k) const {
    return float4{normal[0][k], normal[1][k], normal[2][k], distance[k]};
  }
};

float dot3(float4 a, float4 b) {
  const float4 p = a * b;
  return p[0] + p[1] + p[2];
}

/// 10 bits, two places apart from one another.
std::uint32_t spread_bits(std::uint32_t x) {
  x = (x | x << 16) & 0x030000FFu;
  x = (x | x << 8) & 0x0300F00Fu;
  x = (x | x << 4) & 0x030C30C3u;
  return (x | x << 2) & 0x09249249u;
}

/// -1 to 1 as 10 bits.
std::uint32_t ten_bits(float x) {
  return static_cast<std::uint32_t>(std::clamp((x + 1.0f) * 511.5f, 0.0f, 1023.0f));
}

/// Planes that are alike have keys that are close. A plane and its reverse have one key.
std::uint32_t key_of_plane(float4 plane, float radius) {
  const float4 size = absolute(plane);
  const int axis = size[0] >= size[1] ? (size[0] >= size[2] ? 0 : 2) : (size[1] >= size[2] ? 1 : 2);
  const float scale = 1.0f / plane[axis];
  const float sign = std::copysign(1.0f, scale);
  const std::uint32_t key = spread_bits(ten_bits(plane[(axis + 1) % 3] * scale)) << 2 |
                            spread_bits(ten_bits(plane[(axis + 2) % 3] * scale)) << 1 |
                            spread_bits(ten_bits(plane[3] * sign / radius));
  return static_cast<std::uint32_t>(axis) << 30 | key;
}

}  // namespace

// ---- building ----

struct PlaneTree::Item {
  std::uint32_t key;
  std::uint32_t source;  // pack * 4 + lane
};

/// The ranges of a node.
struct PlaneTree::Bounds {
  float4 plane_min;  // normal and distance
  float4 plane_max;
  float4 min;
  float4 max;  // w: greatest g

  void add(float4 low_plane, float4 high_plane, float4 low, float4 high) {
    const float4 own = plane_min + plane_max;
    if (dot3(own, low_plane + high_plane) < 0.0f) {
      std::swap(low_plane, high_plane);
      low_plane = -low_plane;
      high_plane = -high_plane;
    }
    plane_min = lowest(plane_min, low_plane);
    plane_max = highest(plane_max, high_plane);
    min = lowest(min, low);
    max = highest(max, high);
  }
};

class PlaneTree::Builder {
 public:
  Builder(PlaneTree& tree, const detail::LargeVector<RayPack>& sources, float radius)
      : tree_(tree), sources_(sources), radius_(std::max(radius, 1e-30f)) {}

  void run(Extent extent) {
    list();
    if (items_.empty()) return;
    sort();
    if (extent == FLAT_PARTS) keep_flat_parts();
    if (items_.empty()) return;
    fill_leaves();
    while (bounds_.size() > 1 || tree_.levels_.empty()) add_level();
  }

 private:
  void list() {
    items_.reserve(sources_.size() * 4);
    planes_.resize(sources_.size() * 4);
    for (std::uint32_t i = 0; i < sources_.size(); ++i) {
      const RayPack& pack = sources_[i];
      const PlanePack planes(pack.triangles, tree_.middle_);
      for (std::uint32_t k = 0; k < 4; ++k) {
        if (k > 0 && pack.face[k] == pack.face[k - 1]) break;  // filled up
        items_.push_back({key_of_plane(planes.plane(k), radius_), i * 4 + k});
        planes_[i * 4 + k] = planes.plane(k);
      }
    }
  }

  /// By key, digit after digit; what is equal keeps its order.
  void sort() {
    constexpr unsigned int DIGIT_BITS = 11;
    constexpr std::uint32_t DIGITS = 1u << DIGIT_BITS;
    detail::LargeVector<Item> sorted(items_.size());
    for (unsigned int shift = 0; shift < 32; shift += DIGIT_BITS) {
      std::uint32_t place[DIGITS + 1] = {};
      for (const Item& item : items_) ++place[(item.key >> shift & (DIGITS - 1)) + 1];
      for (std::uint32_t digit = 1; digit < DIGITS; ++digit) place[digit] += place[digit - 1];
      for (const Item& item : items_) sorted[place[item.key >> shift & (DIGITS - 1)]++] = item;
      items_.swap(sorted);
    }
  }

  /// Keeps runs of triangles whose planes are those of the first.
  void keep_flat_parts() {
    std::size_t kept = 0;
    std::size_t start = 0;
    float4 first = plane_of(0);
    for (std::size_t i = 1; i <= items_.size(); ++i) {
      const float4 plane = i < items_.size() ? plane_of(i) : float4{};
      if (i < items_.size() && is_same_plane(plane, first)) continue;
      if (i - start >= LEAST_FLAT_PART) {
        for (; start < i; ++start) items_[kept++] = items_[start];
      }
      start = i;
      first = plane;
    }
    items_.resize(kept);
  }

  float4 plane_of(std::size_t i) const { return planes_[items_[i].source]; }

  /// As nearly as rounded corners leave it; neighbours on a finely divided sphere are far from it.
  bool is_same_plane(float4 a, float4 b) const {
    constexpr float TOLERANCE = 3e-4f;
    if (dot3(a, b) < 0.0f) b = -b;
    const float4 d = absolute(a - b);
    return std::max(std::max(d[0], d[1]), d[2]) <= TOLERANCE && d[3] <= TOLERANCE * radius_;
  }

  void fill_leaves() {
    constexpr std::size_t LEAF_ITEMS = std::size_t{LEAF_PACKS} * 4;
    const std::size_t leaves = (items_.size() + LEAF_ITEMS - 1) / LEAF_ITEMS;
    tree_.packs_.resize(leaves * LEAF_PACKS);
    bounds_.reserve(leaves);
    for (std::size_t i = 0; i < tree_.packs_.size(); ++i) {
      fill_pack(i);
      const RayPack& pack = tree_.packs_[i];
      const PlanePack planes(pack.triangles, tree_.middle_);
      for (unsigned int k = 0; k < 4; ++k) add_triangle(i % LEAF_PACKS * 4 + k, pack, planes, k);
    }
  }

  /// The last leaf is filled up with its last triangle.
  void fill_pack(std::size_t i) {
    RayPack& pack = tree_.packs_[i];
    for (std::size_t k = 0; k < 4; ++k) {
      const Item& item = items_[std::min(i * 4 + k, items_.size() - 1)];
      const RayPack& source = sources_[item.source / 4];
      const std::uint32_t lane = item.source % 4;
      pack.face[k] = source.face[lane];
      for (int c = 0; c < 3; ++c) {
        const TrianglePack::Corner& corner = source.triangles.corner[c];
        pack.triangles.corner[c].x[k] = corner.x[lane];
        pack.triangles.corner[c].y[k] = corner.y[lane];
        pack.triangles.corner[c].z[k] = corner.z[lane];
      }
    }
  }

  void add_triangle(std::size_t place, const RayPack& pack, const PlanePack& planes,
                    unsigned int k) {
    float4 corners[3];
    for (int c = 0; c < 3; ++c) {
      const TrianglePack::Corner& corner = pack.triangles.corner[c];
      corners[c] = float4{corner.x[k], corner.y[k], corner.z[k], planes.factor[k]};
    }
    const float4 low = lowest(lowest(corners[0], corners[1]), corners[2]);
    const float4 high = highest(highest(corners[0], corners[1]), corners[2]);
    const float4 plane = planes.plane(k);
    if (place == 0) {
      bounds_.push_back({plane, plane, low, high});
    } else {
      bounds_.back().add(plane, plane, low, high);
    }
  }

  void add_level() {
    tree_.levels_.push_back(static_cast<std::uint32_t>(tree_.nodes_.size()));
    std::vector<Bounds> parents;
    parents.reserve(bounds_.size() / WIDTH + 1);
    for (std::size_t first = 0; first < bounds_.size(); first += WIDTH) {
      const std::size_t end = std::min(first + WIDTH, bounds_.size());
      Bounds parent = bounds_[first];
      for (std::size_t i = first + 1; i < end; ++i) {
        const Bounds& child = bounds_[i];
        parent.add(child.plane_min, child.plane_max, child.min, child.max);
      }
      parents.push_back(parent);
      tree_.nodes_.push_back(make_node(&bounds_[first], end - first));
    }
    bounds_.swap(parents);
  }

  static Node make_node(const Bounds* children, std::size_t count) {
    Node node = {};
    node.distance_half = splat(-1e30f);  // of no child: never entered
    for (std::size_t i = 0; i < count; ++i) {
      const Bounds& child = children[i];
      const float4 plane = (child.plane_min + child.plane_max) * splat(0.5f);
      // Either side: the middle is rounded.
      const float4 half = highest(child.plane_max - plane, plane - child.plane_min);
      const float4 place = (child.min + child.max) * splat(0.5f);
      const float4 reach = highest(child.max - place, place - child.min);
      for (int axis = 0; axis < 3; ++axis) {
        node.normal[axis][i] = plane[axis];
        node.normal_half[axis][i] = half[axis];
        node.place[axis][i] = place[axis];
      }
      node.distance[i] = plane[3];
      node.distance_half[i] = half[3];
      node.radius[i] = std::sqrt(dot3(reach, reach)) * 1.0001f;
      node.factor[i] = child.max[3];
      node.left_out_beyond[i] =
          USABLE_MARGIN * std::max(1.0f, child.max[3] * (1.0f / COMMON_FACTOR));
    }
    return node;
  }

  PlaneTree& tree_;
  const detail::LargeVector<RayPack>& sources_;
  float radius_;
  detail::LargeVector<Item> items_;
  detail::LargeVector<float4> planes_;  // of the sources
  std::vector<Bounds> bounds_;          // of the level made last
};

PlaneTree::PlaneTree(const detail::LargeVector<RayPack>& packs, float4 middle, float radius,
                     Extent extent)
    : middle_(middle) {
  Builder(*this, packs, radius).run(extent);
}

std::size_t PlaneTree::get_size() const {
  return nodes_.capacity() * sizeof(Node) + packs_.capacity() * sizeof(RayPack);
}

// ---- searching ----

class PlaneTree::Search {
 public:
  Search(const PlaneTree& tree, RayQuery* query) : tree_(tree), query_(query) {
    const float4 from_middle = query->origin - tree.middle_;
    for (int axis = 0; axis < 3; ++axis) {
      direction_[axis] = splat(query->unit[axis]);
      direction_size_[axis] = absolute(direction_[axis]);
      from_middle_[axis] = splat(from_middle[axis]);
      origin_[axis] = splat(query->origin[axis]);
    }
    span_ = splat(query->span);
  }

  void run() {
    std::uint32_t stack[MAX_LEVELS * WIDTH];  // level of the node, and which one on it
    unsigned int size = 0;
    stack[size++] = static_cast<std::uint32_t>(tree_.levels_.size() - 1) << LEVEL_SHIFT;
    while (size > 0) {
      const std::uint32_t entry = stack[--size];
      const std::uint32_t level = entry >> LEVEL_SHIFT;
      const std::uint32_t index = entry & ((1u << LEVEL_SHIFT) - 1);
      const int entered = children_to_enter(tree_.nodes_[tree_.levels_[level] + index]);
      for (std::uint32_t i = 0; i < WIDTH; ++i) {
        if ((entered >> i & 1) == 0) continue;
        const std::uint32_t child = index * WIDTH + i;
        if (level > 0) {
          stack[size++] = (level - 1) << LEVEL_SHIFT | child;
        } else {
          for (std::uint32_t k = 0; k < LEAF_PACKS; ++k) {
            query_->take(tree_.packs_[std::size_t{child} * LEAF_PACKS + k]);
          }
        }
      }
    }
  }

 private:
  static constexpr unsigned int LEVEL_SHIFT = 24;

  static float4 dot(const float4* a, const float4* b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
  }

  /// Whether planes of the children obey what ray_tree_margins.h says of accepted triangles.
  /// Heights are taken from the point of the ray that is nearest to the child. Beside the limits
  /// stand the roundings of normals and distances, and of the arithmetic here.
  int children_to_enter(const Node& node) const {
    const float4 cosine = absolute(dot(node.normal, direction_)) -
                          dot(node.normal_half, direction_size_) -
                          splat(24.0f * ROUNDING) * node.factor;
    const float4 per_gap = splat(HIT_REACH) * node.factor;
    if (bits_where_not_above(cosine * node.left_out_beyond, per_gap) == 0) return 0;

    const float4 way[3] = {node.place[0] - origin_[0], node.place[1] - origin_[1],
                           node.place[2] - origin_[2]};
    const float4 along = dot(way, direction_);
    const float4 gap = highest(gap_of(node, along, dot(way, way)), node.left_out_beyond * span_);
    const float4 limit = highest(per_gap * span_ / gap, splat(LEAST_COSINE) * node.factor);
    float4 point[3];
    float4 point_size[3];
    for (int axis = 0; axis < 3; ++axis) {
      point[axis] = from_middle_[axis] + along * direction_[axis];
      point_size[axis] = absolute(point[axis]);
    }
    const float4 height = absolute(node.distance - dot(node.normal, point)) - node.distance_half -
                          dot(node.normal_half, point_size) -
                          splat(72.0f * ROUNDING) * node.factor * span_;
    return bits_where_not_above(cosine, limit) & bits_where_not_above(height, limit * node.radius);
  }

  /// At least how far the children are from the part of the ray up to the best hit.
  float4 gap_of(const Node& node, float4 along, float4 squared) const {
    const float4 aside_squared = squared - along * along - splat(1e-6f) * squared;
    const float4 past = along - splat(query_->farthest * query_->length);
    const float4 aside = root(highest(aside_squared, splat(0.0f)));
    return highest(highest(aside, past), -along) - node.radius - splat(1e-6f) * span_;
  }

  const PlaneTree& tree_;
  RayQuery* query_;
  float4 direction_[3];
  float4 direction_size_[3];
  float4 from_middle_[3];
  float4 origin_[3];
  float4 span_;
};

void PlaneTree::search(RayQuery* query) const {
  if (!levels_.empty()) Search(*this, query).run();
}

}  // namespace orv
