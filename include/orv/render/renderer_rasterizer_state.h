/// @file
/// How primitives become pixels.
#pragma once

#include <orv/core/api.h>

namespace orv {

/// Rasterizer state as a value. A renderer keeps one record for what is wanted and one for what is
/// applied.
class ORV_API Renderer_Rasterizer_State {
 public:
  int polygon_mode = 2;       ///< 0 points, 1 lines, any other value fill
  int polygon_face = 3;       ///< 1 back, 2 front, any other value both
  int cull_face = 1;          ///< 1 back, 2 front, any other value both
  bool cull_enabled = false;  ///< whether faces are culled at all
  bool front_ccw = true;      ///< true: counter-clockwise faces are front faces
  float polygon_offset_units =
      0.0f;  ///< constant part of the depth offset, in steps of the depth buffer
  float polygon_offset_factor = 0.0f;        ///< part of the depth offset that goes with the slope
  bool polygon_offset_fill_enabled = false;  ///< whether filled polygons are offset
  int reserved = 0;                          ///< takes part in comparison, has no other use

  /// Restores the defaults.
  void init() { *this = Renderer_Rasterizer_State(); }
};

/// True when all fields are equal, `reserved` included; floats exactly.
ORV_API bool operator==(const Renderer_Rasterizer_State& a, const Renderer_Rasterizer_State& b);
/// True when any field differs.
inline bool operator!=(const Renderer_Rasterizer_State& a, const Renderer_Rasterizer_State& b) {
  return !(a == b);
}

}  // namespace orv
