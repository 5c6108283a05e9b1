/// @file
/// Box of eight shared vertices.
#pragma once

#include <orv/core/api.h>
#include <orv/geometry/mesh.h>

namespace orv {

/// Box around the origin with eight vertices. Its faces are clockwise seen from outside, so that
/// culling back faces shows its inside. Built by the next build after a change of its parameters.
class ORV_API MeshBox8v : public Mesh {
 public:
  /// 2 x 2 x 2 scene units.
  MeshBox8v();
  /// Has data of its own for VERTEX_FORMAT_DEFAULT and none for any other format.
  explicit MeshBox8v(VERTEX_FORMAT format);
  /// A new node that shares the geometry.
  MeshBox8v(const MeshBox8v& other);
  /// Shares the geometry of the other and takes over its parameters.
  MeshBox8v& operator=(const MeshBox8v&) = default;

  /// The sizes along X, Y and Z, for the next build. True.
  bool set_build_params(float width, float height, float depth);
  /// Stores the size and rewrites the positions at once. False without built geometry.
  bool update_params(float width, float height, float depth);

  /// Builds this box alone, not its children.
  bool build(Node* node) override;
  bool _build() override;

 private:
  bool _build_box_8v();

  float width_ = 2.0f;
  float height_ = 2.0f;
  float depth_ = 2.0f;
};

}  // namespace orv
