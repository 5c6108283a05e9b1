#include <orv/math/mat4.h>
#include <orv/math/vec3.h>

#include <xmmintrin.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "geometry/face_access.h"
#include "geometry/ray_tree.h"
#include "geometry/ray_tree_margins.h"

namespace orv {

using lanes::float4;

namespace {

constexpr unsigned int LEAF_SIZE = 4;
constexpr int NUM_BINS = 16;
/// From this depth on nodes are halved by count, so that no tree is deeper than a search can go.
constexpr unsigned int HALVING_DEPTH = 64;
/// Normals of a flat part differ by no more; a finely divided sphere is far above it.
constexpr float FLAT_SLACK = 3e-4f;
/// Each costs a test for every ray.
constexpr std::size_t MAX_FLATS = 32;

float4 lowest(float4 a, float4 b) { return _mm_min_ps(a, b); }
float4 highest(float4 a, float4 b) { return _mm_max_ps(a, b); }

float half_area(float4 min, float4 max) {
  const float4 d = max - min;
  return d[0] * d[1] + d[1] * d[2] + d[2] * d[0];
}

struct Extent {
  float4 min = lanes::splat(std::numeric_limits<float>::max());
  float4 max = lanes::splat(std::numeric_limits<float>::lowest());

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

/// A triangle while the tree is made; `min.w` is its face, exact up to MAX_FACES.
struct RayTree::Primitive {
  float4 min;
  float4 max;

  float4 middle() const { return min + max; }  // twice the middle, which sorts alike
  unsigned int face() const { return static_cast<unsigned int>(min[3]); }
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
    std::vector<Primitive, detail::LargeArrayAllocator<Primitive>>().swap(primitives_);
    for (std::size_t i = tree_.nodes_.size(); i-- > 0;) finish(tree_.nodes_[i]);
    find_flats();
  }

 private:
  struct Task {
    std::uint32_t node;
    std::uint32_t begin;
    std::uint32_t end;
    std::uint32_t depth;
    Extent middles;
  };

  const vec4& corner(unsigned int i) const { return i < world_.size() ? world_[i] : origin_; }

  // ---- sorting out ----

  void gather() {
    primitives_.reserve(faces_.size());
    for (unsigned int face = 0; face < faces_.size(); ++face) {
      const FaceU32 f = faces_.get(face);
      const TriangleShape shape(corner(f.a), corner(f.b), corner(f.c));
      if (shape.kind == TriangleShape::NEVER_HIT) continue;
      if (shape.kind == TriangleShape::ASIDE) {
        aside_.push_back(face);
        continue;
      }
      tree_.longest_edge_ = std::max(tree_.longest_edge_, shape.edge);
      Primitive primitive;
      primitive.min = shape.min;
      primitive.max = shape.max;
      primitive.min[3] = static_cast<float>(face);
      primitive.max[3] = 0.0f;
      primitives_.push_back(primitive);
    }
  }

  Pack make_pack(const std::uint32_t* faces, unsigned int count) const {
    Pack pack;
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
    tree_.nodes_.reserve(primitives_.size());
    tree_.packs_.reserve(primitives_.size() / 2);
    Task root{0, 0, static_cast<std::uint32_t>(primitives_.size()), 0, Extent()};
    for (const Primitive& primitive : primitives_) {
      root.middles.add(primitive.middle(), primitive.middle());
    }
    tree_.nodes_.emplace_back();
    std::vector<Task> tasks{root};
    while (!tasks.empty()) {
      const Task task = tasks.back();
      tasks.pop_back();
      if (task.end - task.begin <= LEAF_SIZE) {
        make_leaf(task);
        continue;
      }
      const auto child = static_cast<std::uint32_t>(tree_.nodes_.size());
      tree_.nodes_[task.node].child = child;
      tree_.nodes_.emplace_back();
      tree_.nodes_.emplace_back();
      Task left{child, task.begin, task.begin, task.depth + 1, Extent()};
      Task right{child + 1, task.end, task.end, task.depth + 1, Extent()};
      if (!split_by_area(task, left, right)) split_in_half(task, left, right);
      // The left one is done next, so that its nodes follow.
      tasks.push_back(right);
      tasks.push_back(left);
    }
  }

  void make_leaf(const Task& task) {
    std::uint32_t faces[LEAF_SIZE];
    const unsigned int count = task.end - task.begin;
    for (unsigned int k = 0; k < count; ++k) faces[k] = primitives_[task.begin + k].face();
    tree_.nodes_[task.node].pack = static_cast<std::uint32_t>(tree_.packs_.size());
    tree_.packs_.push_back(make_pack(faces, count));
  }

  /// Halves by count, where the middles are no help.
  void split_in_half(const Task& task, Task& left, Task& right) const {
    left.begin = task.begin;
    left.end = right.begin = task.begin + (task.end - task.begin) / 2;
    right.end = task.end;
    for (std::uint32_t i = task.begin; i < task.end; ++i) {
      const float4 middle = primitives_[i].middle();
      (i < left.end ? left : right).middles.add(middle, middle);
    }
  }

  /// Splits along the axis on which the middles spread most, where the areas of the two sides times
  /// their counts are least. False when all middles fall on one side.
  bool split_by_area(const Task& task, Task& left, Task& right) {
    const float4 spread = task.middles.max - task.middles.min;
    const int axis = spread[0] >= spread[1] ? (spread[0] >= spread[2] ? 0 : 2)
                                            : (spread[1] >= spread[2] ? 1 : 2);
    const float from = task.middles.min[axis];
    const float scale = static_cast<float>(NUM_BINS) * 0.9999f / spread[axis];
    if (task.depth >= HALVING_DEPTH || !(scale <= std::numeric_limits<float>::max())) return false;
    const auto bin_of = [&](const Primitive& primitive) {
      const int bin = static_cast<int>((primitive.middle()[axis] - from) * scale);
      return std::min(bin, NUM_BINS - 1);
    };

    Bin bins[NUM_BINS];
    for (std::uint32_t i = task.begin; i < task.end; ++i) {
      Bin& bin = bins[bin_of(primitives_[i])];
      bin.box.add(primitives_[i].min, primitives_[i].max);
      ++bin.count;
    }
    const int last_left = best_split(bins);
    if (last_left < 0) return false;

    std::uint32_t i = task.begin;
    std::uint32_t end = task.end;
    while (i < end) {
      const float4 middle = primitives_[i].middle();
      if (bin_of(primitives_[i]) <= last_left) {
        left.middles.add(middle, middle);
        ++i;
      } else {
        right.middles.add(middle, middle);
        std::swap(primitives_[i], primitives_[--end]);
      }
    }
    left.end = right.begin = i;
    return left.end > left.begin && right.end > right.begin;
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

  // ---- boxes and cones, from the leaves up ----

  void finish(Node& node) const {
    if (node.pack != NO_PACK) {
      finish_leaf(node);
    } else {
      finish_inner(node, tree_.nodes_[node.child], tree_.nodes_[node.child + 1]);
    }
    const float4 d = (node.max - node.min) * lanes::splat(0.5f);
    node.axis[3] = std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]) * 1.0001f;
  }

  void finish_leaf(Node& node) const {
    const Pack& pack = tree_.packs_[node.pack];
    TriangleShape shapes[4];
    for (unsigned int k = 0; k < 4; ++k) {
      const auto place = [&](int c) {
        const TrianglePack::Corner& corner = pack.triangles.corner[c];
        return vec4(corner.x[k], corner.y[k], corner.z[k], 1.0f);
      };
      shapes[k] = TriangleShape(place(0), place(1), place(2));
    }
    Extent box;
    float factor = 0.0f;
    vec3 sum;
    for (const TriangleShape& shape : shapes) {
      box.add(shape.min, shape.max);
      factor = std::max(factor, shape.factor);
      sum = sum + (sum.dot(shape.normal) < 0.0f ? shape.normal * -1.0f : shape.normal);
    }
    sum.normalize();
    float slack = 0.0f;
    for (const TriangleShape& shape : shapes) {
      const vec3 normal = sum.dot(shape.normal) < 0.0f ? shape.normal * -1.0f : shape.normal;
      slack = std::max(slack, (normal - sum).length() + shape.normal_error());
    }
    node.min = box.min;
    node.max = box.max;
    node.axis = float4{sum.x, sum.y, sum.z, 0.0f};
    node.min[3] = slack;
    node.max[3] = factor;
  }

  static void finish_inner(Node& node, const Node& left, const Node& right) {
    node.min = lowest(left.min, right.min);
    node.max = highest(left.max, right.max);
    const vec3 a(left.axis[0], left.axis[1], left.axis[2]);
    vec3 b(right.axis[0], right.axis[1], right.axis[2]);
    if (a.dot(b) < 0.0f) b = b * -1.0f;
    vec3 axis = a + b;
    axis.normalize();
    const float slack =
        std::max((axis - a).length() + left.min[3], (axis - b).length() + right.min[3]);
    node.axis = float4{axis.x, axis.y, axis.z, 0.0f};
    node.min[3] = slack * 1.0001f + 1e-6f;
    node.max[3] = std::max(left.max[3], right.max[3]);
  }

  /// The topmost nodes of flat parts, the first ones where there are too many.
  void find_flats() {
    std::vector<std::uint32_t> stack{0};
    while (!stack.empty() && tree_.flats_.size() < MAX_FLATS) {
      const std::uint32_t index = stack.back();
      stack.pop_back();
      const Node& node = tree_.nodes_[index];
      if (node.pack != NO_PACK) continue;
      if (node.min[3] <= FLAT_SLACK) {
        tree_.flats_.push_back(index);
        continue;
      }
      stack.push_back(node.child + 1);
      stack.push_back(node.child);
    }
  }

  RayTree& tree_;
  const FaceAccess& faces_;
  std::vector<vec4, detail::LargeArrayAllocator<vec4>> world_;
  vec4 origin_;
  std::vector<Primitive, detail::LargeArrayAllocator<Primitive>> primitives_;
  std::vector<std::uint32_t> aside_;
};

RayTree::RayTree(const mat4& m, const RayVertices& vertices, const FaceAccess& faces) {
  Builder(*this, m, vertices, faces).run();
}

std::size_t RayTree::get_size() const {
  return nodes_.capacity() * sizeof(Node) + packs_.capacity() * sizeof(Pack) +
         aside_.capacity() * sizeof(Pack);
}

}  // namespace orv
