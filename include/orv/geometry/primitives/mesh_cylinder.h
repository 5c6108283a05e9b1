/// @file
/// Open cylinder.
#pragma once

#include <orv/core/api.h>
#include <orv/geometry/mesh.h>

namespace orv {

/// Cylinder around the Z axis, centred on the origin and open at both ends. Its faces are wound the
/// other way round than those of MeshSphere. Built by the next build after a change of its
/// parameters.
class ORV_API MeshCylinder : public Mesh {
 public:
  /// Radius 5 and height 10 scene units, 20 stacks, 20 slices.
  MeshCylinder();
  /// Has data of its own for VERTEX_FORMAT_DEFAULT and none for any other format.
  explicit MeshCylinder(VERTEX_FORMAT format);
  /// A new node that shares the geometry.
  MeshCylinder(const MeshCylinder& other);
  /// Shares the geometry of the other and takes over its parameters.
  MeshCylinder& operator=(const MeshCylinder&) = default;

  /// At least 3 stacks and slices are built; a negative radius counts as 1. True.
  bool set_build_params(float radius, float height, int stacks, int slices);

  /// Builds this cylinder alone, not its children.
  bool build(Node* node) override;
  bool _build() override;

 private:
  bool _build_cylinder();

  float radius_ = 5.0f;
  float height_ = 10.0f;
  int stacks_ = 20;
  int slices_ = 20;
};

}  // namespace orv
