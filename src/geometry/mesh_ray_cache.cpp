#include "geometry/mesh_ray_cache.h"

#include <orv/core/log_mgr.h>
#include <orv/geometry/mesh_data.h>

#include <algorithm>
#include <cstring>
#include <exception>
#include <typeinfo>
#include <vector>

#include "geometry/attrib_access.h"
#include "geometry/face_access.h"

namespace orv {

namespace {

/// Fewer faces are walked in a tenth of a millisecond; a tree is not worth its memory.
constexpr unsigned int MIN_TREE_FACES = 8192;

/// Up to this many faces the arrays are summed up for every ray: that costs less than a walk by
/// far, and finds what was written without a mark.
constexpr unsigned int ALWAYS_SUMMED_FACES = 16384;

/// A tree costs about as much as this many walks.
constexpr unsigned int WALKS_PER_TREE = 32;

std::uint64_t sum_of(const void* block, std::size_t size, std::uint64_t sum) {
  constexpr std::uint64_t FACTOR = 0x9E3779B97F4A7C15u;
  std::uint64_t lane[4] = {sum, sum ^ 1u, sum ^ 2u, sum ^ 3u};
  const auto* bytes = static_cast<const unsigned char*>(block);
  const auto mix = [](std::uint64_t state, std::uint64_t word) {
    state = (state ^ word) * FACTOR;
    return state ^ state >> 29;
  };
  for (; size >= sizeof(lane); size -= sizeof(lane), bytes += sizeof(lane)) {
    std::uint64_t words[4];
    std::memcpy(words, bytes, sizeof(words));
    for (int i = 0; i < 4; ++i) lane[i] = mix(lane[i], words[i]);
  }
  std::uint64_t rest[4] = {};
  if (size > 0) std::memcpy(rest, bytes, size);
  for (int i = 0; i < 4; ++i) sum = mix(sum, mix(lane[i], rest[i]));
  return sum;
}

std::uint64_t sum_of_arrays(const MeshData& data, const VertexAttribArray* positions) {
  std::uint64_t sum = 0;
  if (positions) {
    sum = sum_of(positions->data, positions->data ? positions->get_size() : 0, sum);
  } else if (data.vertices) {
    sum = sum_of(data.vertices, std::size_t{data.num_vertices} * sizeof(Vertex), sum);
  }
  const std::size_t count = data.num_faces;
  if (data.index_bits == 16) {
    return sum_of(data.faces_u16, data.faces_u16 ? count * sizeof(FaceU16) : 0, sum);
  }
  return sum_of(data.faces_u32, data.faces_u32 ? count * sizeof(FaceU32) : 0, sum);
}

}  // namespace

MeshRayCache::Key MeshRayCache::key_of(const MeshData& data, const mat4& transform) {
  Key key;
  key.data_id = data.id;
  key.layout_serial = data.layout_serial;
  key.faces_serial = data.faces_serial;
  key.transform = transform;
  const VertexAttribArray* positions =
      data.separate_vertex_arrays ? data.get_vertex_attrib_array(0) : nullptr;
  bool shared = data.faces_raw_shared;
  if (positions) {
    key.positions_serial = positions->content_serial;
    shared = shared || positions->raw_shared;
  } else {
    key.positions_serial = data.interleaved_serial;
    shared = shared || data.interleaved_raw_shared;
  }
  if (shared || data.num_faces <= ALWAYS_SUMMED_FACES)
    key.contents = sum_of_arrays(data, positions);
  return key;
}

RayHit MeshRayCache::cast(const Ray& ray, MeshData& data, const mat4& transform,
                          bool first_hit_only) {
  const AttribAccess positions(data, VERTEX_ATTRIB_POSITION);
  const FaceAccess faces(data);
  RayVertices vertices;
  vertices.count = positions.usable(data.get_num_vertices());
  vertices.first = positions.four_floats(&vertices.stride);
  const bool own_kind = typeid(data) == typeid(MeshData);
  // A search needs no positions, unless its tree is to be made.
  if (own_kind && faces.size() >= MIN_TREE_FACES && faces.size() <= RayTree::MAX_FACES) {
    const Key key = key_of(data, transform);
    if (!(key == key_)) note_change(key);
    ++rays_;
    if (tree_ && RayTree::can_cast(ray)) return tree_->cast(ray, first_hit_only);
  } else {
    tree_.reset();
    key_ = Key();
  }

  std::vector<vec4, detail::LargeArrayAllocator<vec4>> gathered;
  if (!vertices.first) {
    gathered.resize(vertices.count);
    for (unsigned int i = 0; i < vertices.count; ++i) gathered[i] = positions.get(i);
    vertices.first = vertices.count > 0 ? gathered.data()->ptr() : nullptr;
    vertices.stride = sizeof(vec4) / sizeof(float);
  }
  if (is_worth_a_tree() && RayTree::can_cast(ray)) {
    make_tree(vertices, faces);
    if (tree_) return tree_->cast(ray, first_hit_only);
  }
  return walk_faces(ray, transform, vertices, faces, first_hit_only);
}

void MeshRayCache::note_change(const Key& key) {
  // Geometry that changes after a few rays had better be walked.
  if (tree_) {
    wanted_rays_ = rays_ < WALKS_PER_TREE ? std::min(wanted_rays_ * 2, WALKS_PER_TREE) : 1;
  }
  tree_.reset();
  no_memory_ = false;
  rays_ = 0;
  key_ = key;
}

bool MeshRayCache::is_worth_a_tree() {
  return key_.data_id != 0 && !tree_ && !no_memory_ && rays_ > wanted_rays_;
}

void MeshRayCache::make_tree(const RayVertices& vertices, const FaceAccess& faces) {
  try {
    tree_ = std::make_unique<RayTree>(key_.transform, vertices, faces);
  } catch (const std::exception& e) {
    no_memory_ = true;
    LogMgr::get().tracef_debug("Rays - no search tree for %u faces: %s", faces.size(), e.what());
  }
}

}  // namespace orv
