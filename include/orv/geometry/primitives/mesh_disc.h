/// @file
/// Flat ring.
#pragma once

#include <orv/core/api.h>
#include <orv/geometry/mesh.h>

namespace orv {

/// Flat ring in the XZ plane whose texture repeats in every sector. Built by the next build after a
/// change of its parameters.
class ORV_API MeshDisc : public Mesh {
 public:
  /// Radius 10 and thickness 5 scene units, 20 slices.
  MeshDisc();
  /// Has data of its own for VERTEX_FORMAT_DEFAULT and none for any other format.
  explicit MeshDisc(VERTEX_FORMAT format);
  /// A new node that shares the geometry.
  MeshDisc(const MeshDisc& other);
  /// Shares the geometry of the other and takes over its parameters.
  MeshDisc& operator=(const MeshDisc&) = default;

  /// `radius` is the outer one, `thickness` reaches inwards. At least 4 slices are built. True.
  bool set_build_params(float radius, float thickness, int slices);

  /// Builds this disc alone, not its children.
  bool build(Node* node) override;
  bool _build() override;

 private:
  bool _build_disc();

  float radius_ = 10.0f;
  float thickness_ = 5.0f;
  int slices_ = 20;
};

}  // namespace orv
