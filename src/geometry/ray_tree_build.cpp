#include <orv/math/mat4.h>

#include <xmmintrin.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "geometry/face_access.h"
#include "geometry/ray_tree.h"
#include "geometry/ray_tree_margins.h"

namespace orv {

using lanes::float4;
using lanes::splat;

namespace {

constexpr unsigned int LEAF_SIZE = 4;
constexpr int NUM_BINS = 16;
/// From this depth on ranges are halved by count, so that no tree is deeper than a search can go.
constexpr unsigned int HALVING_DEPTH = 64;

float4 lowest(float4 a, float4 b) { return _mm_min_ps(a, b); }
float4 highest(float4 a, float4 b) { return _mm_max_ps(a, b); }

float half_area(float4 min, float4 max) {
  const float4 d = max - min;
  return d[0] * d[1] + d[1] * d[2] + d[2] * d[0];
}

struct Extent {
  float4 min = splat(std::numeric_limits<float>::max());
  float4 max = splat(std::numeric_limits<float>::lowest());

  void add(float4 low, float4 high) {
    min = lowest(min, low);
    max = highest(max, high);
  }
  void add(const Extent& other) { add(other.min, other.max); }
};

struct Bin {
  Extent box;
  unsigned int count = 0;
};

}  // namespace

/// A triangle while the tree is made. `min.w` is its face, exact up to MAX_FACES; `max.w` its g.
struct RayTree::Primitive {
  float4 min;
  float4 max;

  float4 middle() const { return min + max; }  // twice the middle, which sorts alike
  unsigned int face() const { return static_cast<unsigned int>(min[3]); }
};

/// Primitives that will be one child of a node.
struct RayTree::Range {
  std::uint32_t begin = 0;
  std::uint32_t end = 0;
  std::uint32_t depth = 0;
  Extent box;  // max.w: greatest g
  Extent middles;

  std::uint32_t size() const { return end - begin; }
  void add(const Primitive& primitive) {
    box.add(primitive.min, primitive.max);
    middles.add(primitive.middle(), primitive.middle());
  }
};

class RayTree::Builder {
 public:
  Builder(RayTree& tree, const mat4& m, const RayVertices& vertices, const FaceAccess& faces)
      : tree_(tree), faces_(faces) {
    world_.resize(vertices.count);
    for (unsigned int i = 0; i < vertices.count; ++i) {
      const float* p = vertices.at(i);
      world_[i] = m * vec4(p[0], p[1], p[2], 1.0f);
    }
    origin_ = m * vec4();
  }

  void run() {
    gather();
    place_aside();
    if (primitives_.empty()) return;
    split_all();
    detail::LargeVector<Primitive>().swap(primitives_);
    const bool all_planes = faces_.size() <= MAX_EXACT_FACES;
    tree_.planes_ = PlaneTree(tree_.packs_, tree_.middle_, radius_,
                              all_planes ? PlaneTree::EVERYTHING : PlaneTree::FLAT_PARTS);
  }

 private:
  const vec4& corner(unsigned int i) const { return i < world_.size() ? world_[i] : origin_; }

  // ---- sorting out ----

  void gather() {
    primitives_.reserve(faces_.size());
    float longest_edge_squared = 0.0f;
    for (unsigned int face = 0; face < faces_.size(); ++face) {
      const FaceU32 f = faces_.get(face);
      const TriangleShape shape(corner(f.a), corner(f.b), corner(f.c));
      if (shape.kind == TriangleShape::NEVER_HIT) continue;
      if (shape.kind == TriangleShape::ASIDE) {
        aside_.push_back(face);
        continue;
      }
      longest_edge_squared = std::max(longest_edge_squared, shape.longest_edge_squared);
      Primitive primitive{shape.min, shape.max};
      primitive.min[3] = static_cast<float>(face);
      primitive.max[3] = shape.factor;
      all_.add(primitive);
      primitives_.push_back(primitive);
    }
    all_.end = static_cast<std::uint32_t>(primitives_.size());
    set_measures(std::sqrt(longest_edge_squared));
  }

  void set_measures(float longest_edge) {
    if (primitives_.empty()) return;
    tree_.middle_ = (all_.box.min + all_.box.max) * splat(0.5f);
    const float4 d = highest(all_.box.max - tree_.middle_, tree_.middle_ - all_.box.min);
    radius_ = std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]) * 1.001f;
    tree_.reach_ = radius_ + longest_edge * 1.001f;
  }

  RayPack make_pack(const std::uint32_t* faces, unsigned int count) const {
    RayPack pack;
    for (unsigned int k = 0; k < 4; ++k) {
      const std::uint32_t face = faces[std::min(k, count - 1)];
      pack.face[k] = face;
      const FaceU32 f = faces_.get(face);
      const unsigned int vertex[3] = {f.a, f.b, f.c};
      for (int c = 0; c < 3; ++c) {
        const vec4& p = corner(vertex[c]);
        pack.triangles.corner[c].x[k] = p.x;
        pack.triangles.corner[c].y[k] = p.y;
        pack.triangles.corner[c].z[k] = p.z;
      }
    }
    return pack;
  }

  void place_aside() {
    for (std::size_t i = 0; i < aside_.size(); i += 4) {
      const std::size_t rest = std::min<std::size_t>(4, aside_.size() - i);
      tree_.aside_.push_back(make_pack(aside_.data() + i, static_cast<unsigned int>(rest)));
    }
  }

  // ---- splitting ----

  void split_all() {
    struct Task {
      std::uint32_t node;
      Range range;
    };
    tree_.nodes_.reserve(primitives_.size() / 14 + 1);
    tree_.packs_.reserve(primitives_.size() / 5 * 2 + 1);
    tree_.nodes_.emplace_back();
    std::vector<Task> tasks{{0, all_}};
    while (!tasks.empty()) {
      const Task task = tasks.back();
      tasks.pop_back();
      Range parts[WIDTH] = {task.range};
      const unsigned int count = task.node == 0 ? split_by_factor(parts) : split(parts);
      Node node = {};
      for (unsigned int i = 0; i < WIDTH; ++i)
        set_bounds(&node, i, i < count ? parts[i].box : Extent());
      // Backwards, so that the first one is done next and its nodes follow.
      for (unsigned int i = count; i-- > 0;) {
        if (parts[i].size() <= LEAF_SIZE) {
          node.child[i] = LEAF | add_leaf(parts[i]);
          continue;
        }
        node.child[i] = static_cast<std::uint32_t>(tree_.nodes_.size());
        tree_.nodes_.emplace_back();
        tasks.push_back({node.child[i], parts[i]});
      }
      tree_.nodes_[task.node] = node;
    }
  }

  /// An empty extent is one that no ray meets.
  static void set_bounds(Node* node, unsigned int i, const Extent& box) {
    constexpr float FAR = 1e30f;
    for (int axis = 0; axis < 3; ++axis) {
      node->bounds[axis][i / 4][i % 4] = std::min(box.min[axis], FAR);
      node->bounds[axis + 3][i / 4][i % 4] = std::max(box.max[axis], -FAR);
    }
    node->margin[i / 4][i % 4] = std::max(1.0f, box.max[3] * (1.0f / COMMON_FACTOR));
  }

  std::uint32_t add_leaf(const Range& range) {
    std::uint32_t faces[LEAF_SIZE];
    for (unsigned int k = 0; k < range.size(); ++k) faces[k] = primitives_[range.begin + k].face();
    tree_.packs_.push_back(make_pack(faces, range.size()));
    return static_cast<std::uint32_t>(tree_.packs_.size() - 1);
  }

  /// Splits the first of `parts`, and the largest part again, into as many as a node holds.
  /// @return how many
  unsigned int split(Range* parts) {
    unsigned int count = 1;
    while (count < WIDTH) {
      unsigned int largest = 0;
      for (unsigned int i = 1; i < count; ++i) {
        if (parts[i].size() > parts[largest].size()) largest = i;
      }
      const Range whole = parts[largest];
      if (whole.size() <= LEAF_SIZE) break;
      if (!split_by_area(whole, &parts[largest], &parts[count])) {
        split_in_half(whole, &parts[largest], &parts[count]);
      }
      ++count;
    }
    return count;
  }

  /// Splits the first of `parts` into what needs margins of its own.
  /// @return how many
  unsigned int split_by_factor(Range* parts) {
    constexpr float LIMITS[] = {2.0f * COMMON_FACTOR, 16.0f * COMMON_FACTOR, MAX_FACTOR};
    unsigned int count = 0;
    auto begin = primitives_.begin();
    for (const float limit : LIMITS) {
      const auto end = std::partition(begin, primitives_.end(), [=](const Primitive& primitive) {
        return primitive.max[3] <= limit;
      });
      if (begin == end) continue;
      Range& part = parts[count++];
      part = Range();
      part.begin = static_cast<std::uint32_t>(begin - primitives_.begin());
      part.end = static_cast<std::uint32_t>(end - primitives_.begin());
      for (; begin != end; ++begin) part.add(*begin);
    }
    return count;
  }

  static void start(const Range& whole, Range* left, Range* right) {
    *left = *right = Range();
    left->depth = right->depth = whole.depth + 1;
    left->begin = whole.begin;
    right->end = whole.end;
  }

  /// Halves by count, where the middles are no help.
  void split_in_half(const Range& whole, Range* left, Range* right) const {
    start(whole, left, right);
    left->end = right->begin = whole.begin + whole.size() / 2;
    for (std::uint32_t i = whole.begin; i < whole.end; ++i) {
      (i < left->end ? left : right)->add(primitives_[i]);
    }
  }

  /// Splits along the axis on which the middles spread most, where the areas of the two sides times
  /// their counts are least. False when all middles fall on one side.
  bool split_by_area(const Range& whole, Range* left, Range* right) {
    const float4 spread = whole.middles.max - whole.middles.min;
    const int axis = spread[0] >= spread[1] ? (spread[0] >= spread[2] ? 0 : 2)
                                            : (spread[1] >= spread[2] ? 1 : 2);
    const float from = whole.middles.min[axis];
    const float scale = static_cast<float>(NUM_BINS) * 0.9999f / spread[axis];
    if (whole.depth >= HALVING_DEPTH || !(scale <= std::numeric_limits<float>::max())) return false;
    const auto bin_of = [&](const Primitive& primitive) {
      const int bin = static_cast<int>((primitive.middle()[axis] - from) * scale);
      return std::min(bin, NUM_BINS - 1);
    };

    Bin bins[NUM_BINS];
    for (std::uint32_t i = whole.begin; i < whole.end; ++i) {
      Bin& bin = bins[bin_of(primitives_[i])];
      bin.box.add(primitives_[i].min, primitives_[i].max);
      ++bin.count;
    }
    const int last_left = best_split(bins);
    if (last_left < 0) return false;

    start(whole, left, right);
    std::uint32_t i = whole.begin;
    std::uint32_t end = whole.end;
    while (i < end) {
      const float4 middle = primitives_[i].middle();
      if (bin_of(primitives_[i]) <= last_left) {
        left->middles.add(middle, middle);
        ++i;
      } else {
        right->middles.add(middle, middle);
        std::swap(primitives_[i], primitives_[--end]);
      }
    }
    left->end = right->begin = i;
    for (int bin = 0; bin < NUM_BINS; ++bin)
      (bin <= last_left ? left : right)->box.add(bins[bin].box);
    return true;
  }

  /// Last bin of the left side; -1 when one side stays empty.
  static int best_split(const Bin* bins) {
    float right_cost[NUM_BINS] = {};
    Extent box;
    unsigned int count = 0;
    for (int i = NUM_BINS - 1; i > 0; --i) {
      box.add(bins[i].box);
      count += bins[i].count;
      right_cost[i] = count == 0 ? -1.0f : half_area(box.min, box.max) * static_cast<float>(count);
    }
    int best = -1;
    float best_cost = std::numeric_limits<float>::infinity();
    box = Extent();
    count = 0;
    for (int i = 0; i + 1 < NUM_BINS; ++i) {
      box.add(bins[i].box);
      count += bins[i].count;
      if (count == 0 || right_cost[i + 1] < 0.0f) continue;
      const float cost =
          half_area(box.min, box.max) * static_cast<float>(count) + right_cost[i + 1];
      if (cost >= best_cost) continue;
      best_cost = cost;
      best = i;
    }
    return best;
  }

  RayTree& tree_;
  const FaceAccess& faces_;
  detail::LargeVector<vec4> world_;
  vec4 origin_;
  detail::LargeVector<Primitive> primitives_;
  std::vector<std::uint32_t> aside_;
  Range all_;
  float radius_ = 0.0f;
};

RayTree::RayTree(const mat4& m, const RayVertices& vertices, const FaceAccess& faces) {
  Builder(*this, m, vertices, faces).run();
}

std::size_t RayTree::get_size() const {
  return nodes_.capacity() * sizeof(Node) + packs_.capacity() * sizeof(RayPack) +
         aside_.capacity() * sizeof(RayPack) + planes_.get_size();
}

}  // namespace orv
