#pragma once

#include <orv/geometry/polyline.h>
#include <orv/math/vec4.h>
#include <orv/visual/mini_spline.h>

#include <vector>

namespace orv {

/// Private block of MiniSpline.
struct MiniSplineData {
  struct Keyframe {
    float time;
    float values[3];
  };

  std::vector<Keyframe> keyframes;
  std::vector<float> packed_keys;  ///< time and values of all keyframes, one behind the other
  bool dirty_size = true;          ///< keyframes were added since they were packed
  bool dirty_values = true;        ///< keyframes changed since they were packed
  bool dirty_line = true;          ///< keyframes changed since the line was drawn
  int num_render_samples = 1000;
  Polyline* line = nullptr;
  vec4 color = vec4(1.0f, 1.0f, 1.0f, 1.0f);

  static MiniSplineData& of(const MiniSpline& spline) { return *spline.data_; }
};

}  // namespace orv
