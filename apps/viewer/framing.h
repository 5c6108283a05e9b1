#pragma once

#include <orv/math/vec4.h>

namespace viewer {

/// A box along the axes, empty until something is added.
struct Box {
  orv::vec4 min{1e30f, 1e30f, 1e30f, 1.0f};
  orv::vec4 max{-1e30f, -1e30f, -1e30f, 1.0f};

  void add(const Box& other);
  /// Whether it holds anything, all of it finite.
  bool is_usable() const;
  orv::vec4 get_center() const;
  /// Half of each side; w is 0.
  orv::vec4 get_half_size() const;
};

/// How a model is brought to the size that the scene is made for: half a diagonal of 1 around the
/// origin. The models of files come in metres, microns and miles.
struct UnitPlacement {
  float scale = 1.0f;
  orv::vec4 offset;     ///< position of the scaled model
  orv::vec4 half_size;  ///< of the scaled box; w is 0
};

UnitPlacement place_in_unit(const Box& box);

/// Distance from the middle of a box at which the box stays in the picture, with a margin, from
/// every side at this pitch.
/// @param half_size  half of each side
/// @param pitch      of the view, in degrees
/// @param fov        vertical, in degrees
/// @param aspect     width over height
float fit_distance(const orv::vec4& half_size, float pitch, float fov, float aspect);

/// A round number, 1, 2 or 5 times a power of ten: side of the squares of a grid of about ten over
/// this extent.
float round_step(float extent);

}  // namespace viewer
