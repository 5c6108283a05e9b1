/// @file
/// Bone of a skeleton, drawn by lines.
#pragma once

#include <orv/core/api.h>
#include <orv/geometry/polyline.h>

namespace orv {

/// A joint of three circles (in XY, XZ and YZ) round the origin and, unless the length is 0, a
/// pyramid along +Y: a square at the top of the joint, half a radius to each side, and an edge from
/// each of its corners to the tip at radius + length.
class ORV_API Bone : public Polyline {
 public:
  /// Radius 2 and length 10 scene units, 10 segments, black.
  Bone();

  /// @{
  /// Store the parameters for the next build. Segments below 3 count as 3 when built. True.
  bool set_params(float radius, unsigned int num_segments, float length, float r, float g, float b,
                  float a);
  bool set_build_params(float radius, unsigned int num_segments, float length, float r, float g,
                        float b, float a);
  /// @}

  float get_radius() const { return radius_; }                     ///< of the joint
  unsigned int get_num_segments() const { return num_segments_; }  ///< of each circle
  float get_length() const { return length_; }                     ///< from the joint to the tip
  const vec4& get_color() const { return color_; }                 ///< RGBA

  /// Builds this bone alone when it is due, not its children.
  bool build(Node* node) override;
  /// False, without vertices, for more segments than fit in memory.
  bool _build() override;

  /// Stores the length and moves the tip. False when the stored length is 0: there is no tip.
  bool update_bone_length(float length);
  /// Stores the colour and gives it to all vertices. True.
  bool update_color(float r, float g, float b, float a);

  /// Writes the positions; nothing while the vertices are not those of the present segments.
  void _update_bone();

 private:
  float radius_ = 2.0f;
  unsigned int num_segments_ = 10;
  float length_ = 10.0f;
  vec4 color_;
};

}  // namespace orv
