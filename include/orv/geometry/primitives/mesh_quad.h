/// @file
/// Rectangle of two triangles.
#pragma once

#include <orv/core/api.h>
#include <orv/geometry/mesh.h>

namespace orv {

/// Rectangle in the XY plane around the origin, facing +Z. Unlike the other shapes it has no
/// geometry until set_build_params was called.
class ORV_API MeshQuad : public Mesh {
 public:
  /// 10 x 10 scene units, once its parameters were set.
  MeshQuad();
  /// Has data of its own for VERTEX_FORMAT_DEFAULT and none for any other format.
  explicit MeshQuad(VERTEX_FORMAT format);
  /// A new node that shares the geometry.
  MeshQuad(const MeshQuad& other);
  /// Shares the geometry of the other and takes over its parameters.
  MeshQuad& operator=(const MeshQuad&) = default;

  /// The sizes along X and Y, for the next build. True.
  bool set_build_params(float width, float height);
  /// Stores the size and rewrites the positions at once. False without built geometry.
  bool update_params(float width, float height);

  /// Builds this quad alone, not its children.
  bool build(Node* node) override;
  bool _build() override;

 private:
  bool _build_quad();

  float width_ = 10.0f;
  float height_ = 10.0f;
};

}  // namespace orv
