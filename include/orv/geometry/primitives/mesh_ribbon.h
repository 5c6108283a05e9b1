/// @file
/// Flat band along points.
#pragma once

#include <orv/core/api.h>
#include <orv/geometry/mesh.h>
#include <orv/math/vec4.h>

namespace orv {

struct MeshRibbonData;

/// A flat band that grows along a list of points, such as a trail. Built by the next build after a
/// point was added.
///
/// Each point gives two vertices on either side of the band, the side being the direction of the
/// cross vector. The first texture coordinate is 0 and 1 across, the second the share of the length
/// up to the point; the normal is side x direction of the band, zero where the band runs along the
/// cross vector. Vertices are white; two faces join each point to the next.
class ORV_API MeshRibbon : public Mesh {
 public:
  /// Without points, 2 scene units wide, lying across Y.
  MeshRibbon();
  /// Has data of its own for VERTEX_FORMAT_DEFAULT and none for any other format.
  explicit MeshRibbon(VERTEX_FORMAT format);
  ~MeshRibbon() override;
  /// A new node that shares the geometry; the points are copied.
  MeshRibbon(const MeshRibbon& other);
  /// Shares the geometry of the other and takes over its points and parameters.
  MeshRibbon& operator=(const MeshRibbon& other);

  /// Appends a copy of the point, all four lanes; w is not used. The next build builds anew.
  /// @return how many points there are now
  unsigned int add_point(const vec4& point);
  /// Drops all points; the geometry stays. True.
  bool clear_points_list();
  /// Drops all points and frees the geometry. True.
  bool clear_all();

  /// @{
  /// Direction across the band, of any length; (0, 1, 0, 0) at first. Used by the next build, which
  /// setting it does not ask for.
  void set_cross_vector(const vec4& direction);
  const vec4& get_cross_vector() const;
  /// @}

  /// @{
  /// Width of the band in scene units, 2 at first. Used by the next build, which setting it does
  /// not ask for.
  void set_thickness(float thickness);
  float get_thickness() const;
  /// @}

  /// Builds this ribbon alone, not its children, in the second form. False for fewer than two
  /// points; the old geometry is freed then.
  bool build(Node* node) override;
  bool _build() override;

  /// The same as build_ribbon_v2.
  bool build_ribbon();

  /// @{
  /// Replaces the geometry at once. The first form lays one edge of the band on the points and the
  /// other a thickness beside them; the second lays the band's middle on them. False for fewer than
  /// two points; the old geometry is freed then.
  bool build_ribbon_v1();
  bool build_ribbon_v2();
  /// @}

  /// Drops the points, then as Mesh.
  bool _cleanup(Renderer* renderer) override;

 private:
  bool build_band(float first_edge, float second_edge);

  MeshRibbonData* ribbon_;
};

}  // namespace orv
