#include "geometry/ray_tree.h"

#include <xmmintrin.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

#include "geometry/prefetch.h"
#include "geometry/ray_tree_margins.h"

namespace orv {

using lanes::float4;
using lanes::splat;

namespace {

/// A node adds seven at most, and from level 64 on every level halves the rest.
constexpr std::size_t STACK_SIZE = 7 * (64 + 24) + 8;

/// Keeps the quotient finite; the ray turns by far less than a margin.
float divisor(float direction) {
  constexpr float LEAST = 1e-18f;
  return std::fabs(direction) < LEAST ? std::copysign(LEAST, direction) : direction;
}

}  // namespace

bool RayTree::can_cast(const Ray& ray) {
  for (const float x : {ray.origin.x, ray.origin.y, ray.origin.z}) {
    if (!(std::fabs(x) <= MAX_COORDINATE)) return false;
  }
  const float squared = ray.direction.magnitude_squared();
  return squared >= 0.01f && squared <= 100.0f;
}

class RayTree::Search {
 public:
  Search(const RayTree& tree, const Ray& ray, RayQuery* query) : tree_(tree), query_(query) {
    const float direction[3] = {ray.direction.x, ray.direction.y, ray.direction.z};
    for (int axis = 0; axis < 3; ++axis) {
      const float inverse = 1.0f / divisor(direction[axis]);
      near_[axis] = inverse < 0.0f ? axis + 3 : axis;
      origin_[axis] = splat(query->origin[axis]);
      inverse_[axis] = splat(inverse);
      margin_[axis] = splat(BOX_MARGIN * query->span * std::fabs(inverse));
    }
  }

  /// Goes down from the root, into the nearer children first.
  void run() {
    std::uint32_t current = 0;
    do {
      while ((current & LEAF) == 0) current = enter(tree_.nodes_[current]);
      if (current != NOTHING) query_->take(tree_.packs_[current & ~LEAF]);
      current = next();
    } while (current != NOTHING);
  }

 private:
  static constexpr std::uint32_t NOTHING = 0xFFFFFFFFu;

  struct Entry {
    std::uint32_t child;
    float start;  // where the ray enters
  };

  /// The next place to go to that was left for later.
  std::uint32_t next() {
    while (size_ > 0) {
      const Entry& entry = stack_[--size_];
      if (entry.start <= query_->farthest) return entry.child;
    }
    return NOTHING;
  }

  void leave(std::uint32_t child, float start) {
    stack_[size_++] = {child, start};
    prefetch(child);
  }

  /// Leaves all children but the nearest for later, the nearer ones on top.
  /// @return the nearest; what was left before where the ray meets none
  std::uint32_t enter(const Node& node) {
    float starts[WIDTH];
    unsigned int met = children_met(node, starts);
    if (met == 0) return next();
    unsigned int nearest = static_cast<unsigned int>(std::countr_zero(met));
    met &= met - 1;
    if (met == 0) return node.child[nearest];

    unsigned int other = static_cast<unsigned int>(std::countr_zero(met));
    met &= met - 1;
    if (met == 0) {
      if (starts[other] < starts[nearest]) std::swap(other, nearest);
      leave(node.child[other], starts[other]);
      return node.child[nearest];
    }
    const std::size_t first = size_;
    leave_in_order(first, node.child[nearest], starts[nearest]);
    leave_in_order(first, node.child[other], starts[other]);
    for (; met != 0; met &= met - 1) {
      const auto i = static_cast<unsigned int>(std::countr_zero(met));
      leave_in_order(first, node.child[i], starts[i]);
    }
    return stack_[--size_].child;
  }

  void leave_in_order(std::size_t first, std::uint32_t child, float start) {
    std::size_t at = size_;
    leave(child, start);
    for (; at > first && stack_[at - 1].start < start; --at) stack_[at] = stack_[at - 1];
    stack_[at] = {child, start};
  }

  void prefetch(std::uint32_t child) const {
    if ((child & LEAF) != 0) {
      const RayPack& pack = tree_.packs_[child & ~LEAF];
      prefetch_range(&pack, &pack.face[3]);
    } else {
      const Node& node = tree_.nodes_[child];
      prefetch_range(&node, &node.child[WIDTH - 1]);
    }
  }

  /// The children whose widened box the ray meets ahead of the origin and before the best hit.
  unsigned int children_met(const Node& node, float* starts) const {
    return static_cast<unsigned int>(half_met(node, 0, starts) | half_met(node, 1, starts + 4)
                                                                     << 4);
  }

  int half_met(const Node& node, int half, float* starts) const {
    float4 start = splat(0.0f);
    float4 end = splat(query_->farthest);
    for (int axis = 0; axis < 3; ++axis) {
      const int near = near_[axis];
      const int far = near < 3 ? near + 3 : near - 3;
      const float4 margin = margin_[axis] * node.margin[half];
      const float4 in = (node.bounds[near][half] - origin_[axis]) * inverse_[axis] - margin;
      const float4 out = (node.bounds[far][half] - origin_[axis]) * inverse_[axis] + margin;
      start = _mm_max_ps(start, in);
      end = _mm_min_ps(end, out);
    }
    lanes::store(starts, start);
    return _mm_movemask_ps(_mm_cmple_ps(start, end));
  }

  const RayTree& tree_;
  RayQuery* query_;
  int near_[3];  // which of Node::bounds the ray enters through
  float4 origin_[3];
  float4 inverse_[3];
  float4 margin_[3];
  Entry stack_[STACK_SIZE];
  std::size_t size_ = 0;
};

RayHit RayTree::cast(const Ray& ray, bool first_hit_only) const {
  RayQuery query(ray, first_hit_only);
  for (const RayPack& pack : aside_) query.take(pack);
  if (!nodes_.empty()) {
    const float4 way = query.origin - middle_;
    query.span = (std::sqrt(way[0] * way[0] + way[1] * way[1] + way[2] * way[2]) + reach_) * 1.001f;
    Search(*this, ray, &query).run();
    planes_.search(&query);
  }
  return query.result();
}

}  // namespace orv
