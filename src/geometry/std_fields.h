#pragma once

#include <orv/geometry/vertex.h>

namespace orv {

/// Fields of the interleaved vertex in the order of the standard arrays.
inline constexpr vec4 Vertex::*STD_FIELDS[4] = {&Vertex::position, &Vertex::uv0, &Vertex::normal,
                                                &Vertex::color};

}  // namespace orv
