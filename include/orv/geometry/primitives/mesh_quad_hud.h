/// @file
/// Unit square for overlays.
#pragma once

#include <orv/core/api.h>
#include <orv/geometry/mesh.h>

namespace orv {

/// Square from (0, 0) to (1, 1) whose texture coordinates equal its positions.
class ORV_API MeshQuadHud : public Mesh {
 public:
  /// To be built.
  MeshQuadHud();
  /// Has data of its own for VERTEX_FORMAT_DEFAULT and none for any other format.
  explicit MeshQuadHud(VERTEX_FORMAT format);
  /// A new node that shares the geometry.
  MeshQuadHud(const MeshQuadHud& other);
  /// Shares the geometry of the other and takes over its parameters.
  MeshQuadHud& operator=(const MeshQuadHud&) = default;

  /// Marks the square for the next build. True.
  bool set_build_params();

  /// Builds this square alone, not its children.
  bool build(Node* node) override;
  bool _build() override;

 private:
  bool _build_quad_hud();
};

}  // namespace orv
