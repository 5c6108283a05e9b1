/// @file
/// Filled ellipse or sector of one.
#pragma once

#include <orv/core/api.h>
#include <orv/geometry/mesh.h>

namespace orv {

/// Ellipse in the XZ plane, made of rings around a centre vertex. Built by the next build after a
/// change of its parameters.
class ORV_API MeshEllipse : public Mesh {
 public:
  /// Radii of 4 scene units, 10 slices, 2 rings, all of 360 degrees.
  MeshEllipse();
  /// Has data of its own for VERTEX_FORMAT_DEFAULT and none for any other format.
  explicit MeshEllipse(VERTEX_FORMAT format);
  /// A new node that shares the geometry.
  MeshEllipse(const MeshEllipse& other);
  /// Shares the geometry of the other and takes over its parameters.
  MeshEllipse& operator=(const MeshEllipse&) = default;

  /// `sweep` is the angle covered, in degrees. At least 3 slices and 1 ring are built. True.
  bool set_build_params(float radius_x, float radius_y, int slices, int rings, float sweep);

  /// Builds this ellipse alone, not its children.
  bool build(Node* node) override;
  bool _build() override;

 private:
  bool _build_ellipse();

  float radius_x_ = 4.0f;
  float radius_y_ = 4.0f;
  int slices_ = 10;
  int rings_ = 2;
  float sweep_ = 360.0f;
};

}  // namespace orv
