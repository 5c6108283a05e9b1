/// @file
/// Torus.
#pragma once

#include <orv/core/api.h>
#include <orv/geometry/mesh.h>

namespace orv {

/// Torus around the Y axis; `radius` reaches to its outer edge. Built by the next build after a
/// change of its parameters.
class ORV_API MeshTorus : public Mesh {
 public:
  /// Radius 5 scene units, tube radius 2, 20 slices.
  MeshTorus();
  /// Has data of its own for VERTEX_FORMAT_DEFAULT and none for any other format.
  explicit MeshTorus(VERTEX_FORMAT format);
  /// A new node that shares the geometry.
  MeshTorus(const MeshTorus& other);
  /// Shares the geometry of the other and takes over its parameters.
  MeshTorus& operator=(const MeshTorus&) = default;

  /// `slices` both along and across the ring, taken as they are. True.
  bool set_build_params(float radius, float tube_radius, int slices);
  float get_radius() const { return radius_; }            ///< in scene units
  float get_tube_radius() const { return tube_radius_; }  ///< of the tube, in scene units
  int get_slices() const { return slices_; }              ///< as set

  /// False, without any geometry, for negative slices.
  bool _build() override;

 private:
  bool _build_torus();

  float radius_ = 5.0f;
  float tube_radius_ = 2.0f;
  int slices_ = 20;
};

}  // namespace orv
