/// @file
/// Directions of the world as a camera sees them.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/visual/tripod_visualizer.h>

namespace orv {
namespace aux {

/// Shows in a small rectangle how the world's axes lie to a camera.
class ORV_API TripodVisualizerCamera : public TripodVisualizer {
 public:
  TripodVisualizerCamera();            ///< to be initialised
  ~TripodVisualizerCamera() override;  ///< as that of the base

  /// Draws the axes with the camera's orientation in the middle of a rectangle of the window, in
  /// pixels, which they fill whatever their scale. Depth is not tested meanwhile. Afterwards
  /// viewport, matrices and current program are those of before, the depth test is on and the line
  /// width 1. False for null arguments, an empty rectangle, a scale of 0, and before init.
  virtual bool render(Renderer* renderer, Camera* camera, int x, int y, int width, int height);
};

}  // namespace aux
}  // namespace orv
