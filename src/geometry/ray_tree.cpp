#include "geometry/ray_tree.h"

#include <xmmintrin.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "geometry/ray_tree_margins.h"

namespace orv {

using lanes::float4;

namespace {

/// Deeper than any tree: nodes are halved by count from level 64 on.
constexpr int STACK_SIZE = 128;

float dot3(float4 a, float4 b) {
  const float4 p = a * b;
  return p[0] + p[1] + p[2];
}

float4 three(const vec4& v) { return float4{v.x, v.y, v.z, 0.0f}; }

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
  Search(const RayTree& tree, const Ray& ray, bool first_hit_only)
      : tree_(tree),
        test_(ray),
        first_hit_only_(first_hit_only),
        origin_(three(ray.origin)),
        length_(ray.direction.length()),
        unit_(three(ray.direction) * lanes::splat(1.0f / length_)) {
    const vec4& d = ray.direction;
    inverse_ = float4{1.0f / divisor(d.x), 1.0f / divisor(d.y), 1.0f / divisor(d.z), 0.0f};
    if (first_hit_only) farthest_ = std::numeric_limits<float>::infinity();
  }

  RayHit run() {
    for (const Pack& pack : tree_.aside_) take(pack);
    if (!tree_.nodes_.empty()) descend();
    if (found_) best_.hit = best_.distance < FARTHEST_HIT;
    if (!best_.hit) best_ = RayHit();
    return best_;
  }

 private:
  struct Entry {
    std::uint32_t node;
    float start;  // where the ray enters
  };

  void descend() {
    const Node& root = tree_.nodes_[0];
    const float4 middle = (root.min + root.max) * lanes::splat(0.5f) - origin_;
    span_ = std::sqrt(dot3(middle, middle)) + root.axis[3] + 1.001f * tree_.longest_edge_;
    float start = 0.0f;
    if (is_met(root, &start)) descend(0, false);
    for (const std::uint32_t flat : tree_.flats_) {
      if (may_graze(tree_.nodes_[flat])) descend(flat, true);
    }
  }

  /// Goes through the nodes below one, the nearer first.
  /// @param grazing  enter missed ones too when they may_graze
  void descend(std::uint32_t top, bool grazing) {
    Entry stack[STACK_SIZE];
    int size = 0;
    stack[size++] = {top, 0.0f};
    while (size > 0) {
      const Entry entry = stack[--size];
      if (entry.start > farthest_ && !grazing) continue;
      const Node& node = tree_.nodes_[entry.node];
      if (node.pack != NO_PACK) {
        take(tree_.packs_[node.pack]);
        continue;
      }
      const Node* children = &tree_.nodes_[node.child];
      Entry near{node.child, 0.0f};
      Entry far{node.child + 1, 0.0f};
      const bool enter_near =
          is_met(children[0], &near.start) || (grazing && may_graze(children[0]));
      const bool enter_far = is_met(children[1], &far.start) || (grazing && may_graze(children[1]));
      if (near.start > far.start) {
        if (enter_near) stack[size++] = near;
        if (enter_far) stack[size++] = far;
      } else {
        if (enter_far) stack[size++] = far;
        if (enter_near) stack[size++] = near;
      }
    }
  }

  /// Whether the ray meets the widened box ahead of the origin and before the best hit.
  bool is_met(const Node& node, float* start) const {
    const float4 margin = lanes::splat(box_margin(node.max[3]) * span_);
    const float4 t0 = (node.min - margin - origin_) * inverse_;
    const float4 t1 = (node.max + margin - origin_) * inverse_;
    const float4 in = _mm_min_ps(t0, t1);
    const float4 out = _mm_max_ps(t0, t1);
    const float first = std::max(std::max(in[0], in[1]), std::max(in[2], 0.0f));
    const float last = std::min(std::min(out[0], out[1]), std::min(out[2], farthest_));
    *start = first;
    return first <= last;
  }

  /// Whether a triangle in a node that the ray misses, or reaches behind the best hit, may have a
  /// plane that holds the ray so nearly that rounding decides.
  bool may_graze(const Node& node) const {
    const float slack = node.min[3] + 2e-6f;
    const float factor = node.max[3];
    const float cosine = std::fabs(dot3(node.axis, unit_)) - slack;
    float limit = grazing_limit(factor);
    if (cosine > limit) return false;

    const float4 way = (node.min + node.max) * lanes::splat(0.5f) - origin_;
    const float along = dot3(way, unit_);
    const float4 aside = way - unit_ * lanes::splat(along);
    const float distance = std::sqrt(dot3(way, way));
    const float radius = node.axis[3];
    const float span = distance + 5.0f * radius;
    const float past = along - farthest_ * length_;
    const float gap =
        std::max(std::sqrt(dot3(aside, aside)), std::max(past, -along)) - radius - 1e-6f * span;
    if (gap > 0.0f) limit = std::min(limit, 2.0f * RAY_ERROR * factor * span / gap);
    if (cosine > limit) return false;

    const float height = std::fabs(dot3(node.axis, way)) - slack * distance - radius;
    return height <= 1.1f * span * (limit + 7e-6f * factor);
  }

  void take(const Pack& pack) {
    float4 t;
    const int accepted = test_.accepted(pack.triangles, &t);
    for (unsigned int k = 0; k < 4 && accepted != 0; ++k) {
      if ((accepted >> k & 1) != 0) take_face(t[k], pack.face[k]);
    }
  }

  void take_face(float t, std::uint32_t face) {
    const bool better = first_hit_only_ ? !found_ || face < best_.face
                                        : t < best_.distance || (best_.hit && t == best_.distance &&
                                                                 face < best_.face);
    if (!better) return;
    found_ = true;
    best_ = {t, face, true};
    if (!first_hit_only_) farthest_ = t;
  }

  const RayTree& tree_;
  PackTest test_;
  bool first_hit_only_;
  float4 origin_;
  float length_;
  float4 unit_;
  float4 inverse_;
  float span_ = 0.0f;  // of the whole tree, see ray_tree_margins.h
  float farthest_ = FARTHEST_HIT;
  bool found_ = false;
  RayHit best_;
};

RayHit RayTree::cast(const Ray& ray, bool first_hit_only) const {
  return Search(*this, ray, first_hit_only).run();
}

}  // namespace orv
