/// @file
/// Axes of an object.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/visual/tripod_visualizer.h>

namespace orv {
namespace aux {

/// Shows the axes of an object at its place.
class ORV_API TripodVisualizerObject : public TripodVisualizer {
 public:
  TripodVisualizerObject();            ///< to be initialised
  ~TripodVisualizerObject() override;  ///< as that of the base

  /// Draws the axes with the absolute transform of the object, its scale with it, and the
  /// renderer's present matrices. The line width is 1 afterwards. False for null arguments and
  /// before init.
  virtual bool render(Renderer* renderer, Object* object);
};

}  // namespace aux
}  // namespace orv
