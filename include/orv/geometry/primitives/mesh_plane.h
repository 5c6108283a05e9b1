/// @file
/// Flat grid.
#pragma once

#include <orv/core/api.h>
#include <orv/geometry/mesh.h>

namespace orv {

/// Rectangle of `wsegs` by `hsegs` cells in the XZ plane, turned by three angles. Built by the next
/// build after a change of its parameters.
class ORV_API MeshPlane : public Mesh {
 public:
  /// 10 x 10 scene units, 4 x 4 cells, not turned.
  MeshPlane();
  /// Has data of its own for VERTEX_FORMAT_DEFAULT and none for any other format.
  explicit MeshPlane(VERTEX_FORMAT format);
  /// A new node that shares the geometry.
  MeshPlane(const MeshPlane& other);
  /// Shares the geometry of the other and takes over its parameters.
  MeshPlane& operator=(const MeshPlane&) = default;

  /// Keeps the rotation. Segments below 1 count as 1 when built. True.
  bool set_build_params(float width, float height, int wsegs, int hsegs);
  /// With a rotation in degrees.
  bool set_build_params_v2(float width, float height, int wsegs, int hsegs, float rx, float ry,
                           float rz);
  float get_width() const { return width_; }    ///< in scene units
  float get_height() const { return height_; }  ///< in scene units
  int get_wsegs() const { return wsegs_; }      ///< cells along the width
  int get_hsegs() const { return hsegs_; }      ///< cells along the height

  /// Stores the size and rewrites the positions at once. False without built geometry.
  bool update_size(float width, float height);

  /// Builds this plane alone, not its children.
  bool build(Node* node) override;
  bool _build() override;

  /// Rewrites the positions from the current size and rotation. False without built geometry.
  bool _update_vertices_position();

 private:
  bool _build_plane();

  float width_ = 10.0f;
  float height_ = 10.0f;
  int wsegs_ = 4;
  int hsegs_ = 4;
  float rx_ = 0.0f;
  float ry_ = 0.0f;
  float rz_ = 0.0f;
};

}  // namespace orv
