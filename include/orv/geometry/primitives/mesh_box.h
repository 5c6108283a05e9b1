/// @file
/// Box of segmented sides.
#pragma once

#include <orv/core/api.h>
#include <orv/geometry/mesh.h>

namespace orv {

/// Box around the origin; no vertex is shared between its triangles. Built by the next build after
/// a change of its parameters.
class ORV_API MeshBox : public Mesh {
 public:
  /// 2 x 2 x 2 scene units, two segments along each side.
  MeshBox();
  /// Has data of its own for VERTEX_FORMAT_DEFAULT and none for any other format.
  explicit MeshBox(VERTEX_FORMAT format);
  /// A new node that shares the geometry.
  MeshBox(const MeshBox& other);
  /// Shares the geometry of the other and takes over its parameters.
  MeshBox& operator=(const MeshBox&) = default;

  /// Segments below 1 count as 1 when built. True.
  bool set_build_params(float width, float height, float depth, int wsegs, int hsegs, int dsegs);

  /// Stores the size and rewrites the positions at once. False without built geometry.
  bool update_size(float width, float height, float depth);
  /// Rewrites uv0 as tiling * (u, v) + offset for the sides +Z, -Z, -X, +X, +Y, -Y, where u and v
  /// run from 0 to 1 over a side. False for null and without built geometry.
  bool update_vertices_uv_tiling(const int tiles[6], const vec2 offsets[6]);

  /// Builds this box alone, not its children.
  bool build(Node* node) override;
  bool _build() override;

 private:
  bool _build_box();
  bool _build_vertices_list();
  /// Calls visit(vertex, side, index of the side, place on it) for all vertices in order.
  template <class Visit>
  void for_each_vertex(Visit visit) const;
  unsigned long long wanted_faces() const;

  float width_ = 2.0f;
  float height_ = 2.0f;
  float depth_ = 2.0f;
  int wsegs_ = 2;
  int hsegs_ = 2;
  int dsegs_ = 2;
};

}  // namespace orv
