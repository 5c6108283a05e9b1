/// @file
/// Pyramid of lines.
#pragma once

#include <orv/core/api.h>
#include <orv/geometry/polyline.h>

namespace orv {

/// The eight edges of a square pyramid, such as marks a camera or a light: four round the base at
/// the height `base_offset`, then one from each corner to the tip, which lies `length` above the
/// base on the Y axis.
class ORV_API Pyramid : public Polyline {
 public:
  /// Base 4 and length 10 scene units, on the XZ plane, black.
  Pyramid();

  /// @{
  /// Store the parameters for the next build, with a base offset of 0. True.
  bool set_params(float base_size, float length, float r, float g, float b, float a);
  bool set_build_params(float base_size, float length, float r, float g, float b, float a);
  /// @}

  /// @{
  /// The same with a base offset. True.
  bool set_params_v2(float base_size, float length, float base_offset, float r, float g, float b,
                     float a);
  bool set_build_params_v2(float base_size, float length, float base_offset, float r, float g,
                           float b, float a);
  /// @}

  float get_base_size() const { return base_size_; }      ///< side of the base, in scene units
  float get_length() const { return length_; }            ///< height, in scene units
  float get_base_offset() const { return base_offset_; }  ///< height of the base above the origin
  const vec4& get_color() const { return color_; }        ///< RGBA

  /// Builds this pyramid alone when it is due, not its children.
  bool build(Node* node) override;
  /// False without memory for it.
  bool _build() override;

  /// Stores the length and rewrites the positions. True.
  bool update_length(float length);
  /// Stores the colour and gives it to all vertices. True.
  bool update_color(float r, float g, float b, float a);

 private:
  void write_positions();

  float base_size_ = 4.0f;
  float length_ = 10.0f;
  float base_offset_ = 0.0f;
  vec4 color_;
};

}  // namespace orv
