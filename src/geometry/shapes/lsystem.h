#pragma once

#include <string_view>

#include "geometry/shapes/par_shape.h"

namespace orv::detail {

/// What a program is grown with.
struct LSystemParams {
  int slices = 4;      ///< sides of tubes and rings
  int max_depth = 60;  ///< calls at this depth and below are skipped
  int seed = 1;        ///< of the choice among rules of one name
};

/// Grows the shape that a program describes.
///
/// The state is a frame, which statements turn, move and scale in its own axes, and the last ring.
/// A call works on a copy of the state. A tube ends in a ring; "connect" adds a ring in the XY
/// plane of the frame and a strip to the last ring. Beside "tube", the solids of make_solid are
/// pieces.
///
/// Growth ends for good, with all pieces up to then, when a piece does not fit in
/// ParShape::MAX_POINTS or would not be finite, and after a large number of calls and of
/// statements. False for fewer than 1 slice, and for more than fit.
bool grow_lsystem(std::string_view text, const LSystemParams& params, ParShape& shape);

}  // namespace orv::detail
