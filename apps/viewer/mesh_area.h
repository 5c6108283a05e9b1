#pragma once

#include <orv/fwd.h>

namespace viewer {

/// Whether a triangle of the mesh has an area, beside what rounding leaves of corners on one line.
bool has_visible_triangle(orv::Mesh& mesh);

}  // namespace viewer
