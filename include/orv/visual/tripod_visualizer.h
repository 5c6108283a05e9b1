/// @file
/// Three axes to be drawn.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>

namespace orv {
namespace aux {

struct TripodVisualizerData;

/// Three lines from the origin, x red, y green, z blue, with a program of their own. What they show
/// is chosen by the derived classes.
class ORV_API TripodVisualizer {
 public:
  /// With axes of length 1, to be initialised.
  TripodVisualizer();
  /// Gives up its references without a renderer: GPU objects are leaked unless cleanup ran before.
  virtual ~TripodVisualizer();
  /// Makes the program and the lines. True also when it did so before; false for a null renderer
  /// and, with errors in the log, when the program doesn't compile.
  virtual bool init(Renderer* renderer);
  /// Releases program and lines. True.
  virtual bool cleanup(Renderer* renderer);

  TripodVisualizer(const TripodVisualizer&) = delete;
  TripodVisualizer& operator=(const TripodVisualizer&) = delete;

  /// Length of each axis in scene units, at any time.
  void set_scale(float scale);
  float get_scale() const;  ///< see set_scale
  /// The lines, borrowed; null before init and after cleanup.
  Polyline* get_axes() const;

 protected:
  /// Draws the axes with the renderer's matrices, and puts the program back that was current.
  /// False before init.
  bool draw_axes(Renderer& renderer, const mat4& transform);

 private:
  void write_axes();

  TripodVisualizerData* data_;
};

}  // namespace aux
}  // namespace orv
