#include "geometry/ray_tree.h"

#include <xmmintrin.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "geometry/prefetch.h"
#include "geometry/ray_tree_margins.h"

namespace orv {

using lanes::float4;
using lanes::splat;

namespace {

/// A node adds three at most, and from level 64 on every level halves the rest.
constexpr std::size_t STACK_SIZE = 3 * (64 + 24) + 4;

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
    Entry stack[STACK_SIZE];
    std::size_t size = 0;
    stack[size++] = {0, 0.0f};
    while (size > 0) {
      const Entry entry = stack[--size];
      if (entry.start > query_->farthest) continue;
      if ((entry.child & LEAF) != 0) {
        query_->take(tree_.packs_[entry.child & ~LEAF]);
        continue;
      }
      const Node& node = tree_.nodes_[entry.child];
      float4 starts;
      const int met = children_met(node, &starts);
      const std::size_t first = size;
      for (unsigned int i = 0; i < WIDTH; ++i) {
        if ((met >> i & 1) == 0) continue;
        // The nearest comes to lie on top.
        std::size_t at = size++;
        for (; at > first && stack[at - 1].start < starts[i]; --at) stack[at] = stack[at - 1];
        stack[at] = {node.child[i], starts[i]};
        prefetch(node.child[i]);
      }
    }
  }

 private:
  struct Entry {
    std::uint32_t child;
    float start;  // where the ray enters
  };

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
  int children_met(const Node& node, float4* starts) const {
    float4 start = splat(0.0f);
    float4 end = splat(query_->farthest);
    for (int axis = 0; axis < 3; ++axis) {
      const int near = near_[axis];
      const int far = near < 3 ? near + 3 : near - 3;
      const float4 margin = margin_[axis] * node.margin;
      const float4 in = (node.bounds[near] - origin_[axis]) * inverse_[axis] - margin;
      const float4 out = (node.bounds[far] - origin_[axis]) * inverse_[axis] + margin;
      start = _mm_max_ps(start, in);
      end = _mm_min_ps(end, out);
    }
    *starts = start;
    return _mm_movemask_ps(_mm_cmple_ps(start, end));
  }

  const RayTree& tree_;
  RayQuery* query_;
  int near_[3];  // which of Node::bounds the ray enters through
  float4 origin_[3];
  float4 inverse_[3];
  float4 margin_[3];
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
