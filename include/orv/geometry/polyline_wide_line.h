/// @file
/// What a polyline keeps to draw thick lines.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/math/vec4.h>

namespace orv {

/// State of the thick line of a Polyline, which owns all of it.
class ORV_API PolylineWideLine {
 public:
  PolylineWideLine() = default;
  PolylineWideLine(const PolylineWideLine&) = delete;
  PolylineWideLine& operator=(const PolylineWideLine&) = delete;
  /// Frees the points; the program is the polyline's to release.
  ~PolylineWideLine();

  GpuProgram* program = nullptr;  ///< widens the line; null draws it one pixel wide
  float line_width = 1.0f;        ///< on screen, in pixels
  vec4* points = nullptr;         ///< the points added, two more than there are vertices
  int num_vertices = 0;           ///< vertices written so far, without the last adjacency vertex
  int num_points = 0;             ///< points added so far
};

}  // namespace orv
