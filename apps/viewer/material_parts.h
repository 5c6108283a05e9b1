#pragma once

#include <orv/fwd.h>

#include <vector>

#include "viewer/model_file.h"

namespace viewer {

/// Appends a part for each material of the mesh. Faces of several materials are sorted by material
/// first: a subset of a mesh is one run of faces.
void split_by_material(orv::Mesh& mesh, std::vector<Part>& parts);

}  // namespace viewer
