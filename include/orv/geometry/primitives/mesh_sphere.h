/// @file
/// Sphere of stacks and slices.
#pragma once

#include <orv/core/api.h>
#include <orv/geometry/mesh.h>

namespace orv {

/// Sphere around the origin with its poles on the Z axis. Built by the next build after a change of
/// its parameters.
class ORV_API MeshSphere : public Mesh {
 public:
  /// Radius 4 scene units, 20 stacks, 20 slices.
  MeshSphere();
  /// Has data of its own for VERTEX_FORMAT_DEFAULT and none for any other format.
  explicit MeshSphere(VERTEX_FORMAT format);
  /// A new node that shares the geometry.
  MeshSphere(const MeshSphere& other);
  /// Shares the geometry of the other and takes over its parameters.
  MeshSphere& operator=(const MeshSphere&) = default;

  /// At least 2 stacks and 3 slices are built. True.
  bool set_build_params(float radius, int stacks, int slices);
  float get_radius() const { return radius_; }  ///< in scene units
  int get_stacks() const { return stacks_; }    ///< as set
  int get_slices() const { return slices_; }    ///< as set

  bool _build() override;

 private:
  bool _build_sphere();

  float radius_ = 4.0f;
  int stacks_ = 20;
  int slices_ = 20;
};

}  // namespace orv
