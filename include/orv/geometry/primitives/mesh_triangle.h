/// @file
/// One triangle.
#pragma once

#include <orv/core/api.h>
#include <orv/geometry/mesh.h>
#include <orv/math/vec4.h>

namespace orv {

/// Triangle of three given corners. Built by the next build after a change of its parameters.
class ORV_API MeshTriangle : public Mesh {
 public:
  /// All corners at the origin.
  MeshTriangle();
  /// Has data of its own for VERTEX_FORMAT_DEFAULT and none for any other format.
  explicit MeshTriangle(VERTEX_FORMAT format);
  /// A new node that shares the geometry.
  MeshTriangle(const MeshTriangle& other);
  /// Shares the geometry of the other and takes over its parameters.
  MeshTriangle& operator=(const MeshTriangle&) = default;

  /// The corners, counter-clockwise seen from the front, for the next build. True.
  bool set_build_params(const vec4& corner_a, const vec4& corner_b, const vec4& corner_c);

  /// Builds this triangle alone, not its children.
  bool build(Node* node) override;
  bool _build() override;

 private:
  bool _build_triangle();

  vec4 corners_[3];
};

}  // namespace orv
