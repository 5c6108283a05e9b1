#pragma once

#include <orv/fwd.h>
#include <orv/math/mat4.h>
#include <orv/math/ray.h>

#include <cstdint>
#include <memory>

#include "geometry/ray_tree.h"

namespace orv {

/// What a mesh keeps for rays: the search tree of its geometry under its absolute transform, made
/// when a second ray finds both as the ray before did.
class MeshRayCache {
 public:
  /// The nearest face, or the first when `first_hit_only` is set.
  RayHit cast(const Ray& ray, MeshData& data, const mat4& transform, bool first_hit_only);

 private:
  /// What the tree was made from. Equal keys mean equal geometry.
  struct Key {
    int data_id = 0;
    unsigned int layout_serial = 0;
    unsigned int positions_serial = 0;
    unsigned int faces_serial = 0;
    std::uint64_t contents = 0;  // sum over the arrays where marks alone can't be trusted
    mat4 transform;

    bool operator==(const Key&) const = default;
  };
  static Key key_of(const MeshData& data, const mat4& transform);

  void note_change(const Key& key);
  bool is_worth_a_tree();
  void make_tree(const RayVertices& vertices, const FaceAccess& faces);

  Key key_;
  std::unique_ptr<RayTree> tree_;
  bool no_memory_ = false;        // for this key
  unsigned int rays_ = 0;         // cast since the key changed
  unsigned int wanted_rays_ = 1;  // to be walked before a tree is made
};

}  // namespace orv
