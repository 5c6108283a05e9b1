/// @file
/// Box of twelve lines.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/geometry/polyline.h>

namespace orv {

/// The twelve edges of a box along the axes: four at the bottom, four at the top, four upright, a
/// pair of vertices each.
class ORV_API Box : public Polyline {
 public:
  /// 10 x 10 x 10 scene units round the origin, black.
  Box();

  /// @{
  /// Store the parameters for the next build. True.
  bool set_params(float width, float height, float depth, float r, float g, float b, float a);
  bool set_build_params(float width, float height, float depth, float r, float g, float b, float a);
  /// @}

  float get_width() const { return width_; }          ///< along x, in scene units
  float get_height() const { return height_; }        ///< along y, in scene units
  float get_depth() const { return depth_; }          ///< along z, in scene units
  const vec4& get_center() const { return center_; }  ///< of the last update_size_from_bv
  const vec4& get_color() const { return color_; }    ///< RGBA

  /// Builds this box alone when it is due, not its children.
  bool build(Node* node) override;
  /// Builds it round the origin. False without memory for it.
  bool _build() override;

  /// Stores the size and rewrites the positions round the origin. True.
  bool update_size(float width, float height, float depth);
  /// Stores centre and size of the volume's local box and rewrites the positions. True.
  bool update_size_from_bv(const BoundingVolume& volume);
  /// Stores the colour and gives it to all vertices. True.
  bool update_color(float r, float g, float b, float a);

  /// Rewrites the positions round the stored centre. False without built geometry.
  bool _update_geometry();
  /// Rewrites the positions round `center`. False without built geometry.
  bool _update_geometry_v2(const vec4& center);

 private:
  float width_ = 10.0f;
  float height_ = 10.0f;
  float depth_ = 10.0f;
  vec4 center_;
  vec4 color_;
};

}  // namespace orv
