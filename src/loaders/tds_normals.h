#pragma once

#include <orv/math/vec3.h>

#include <vector>

struct Lib3dsMesh;

namespace orv {

/// Smooth normals, one for each vertex. A corner's normal is the sum of the different normals of
/// the faces around it that share a smoothing group with its face, or its face's own normal without
/// smoothing; a vertex takes that of its last corner, and zero when no face uses it. Empty without
/// faces.
///
/// lib3ds computes them, except around vertices of very many faces: it keeps the normals met at one
/// vertex in an array of fixed size.
void tds_vertex_normals(Lib3dsMesh& mesh, std::vector<vec3>& normals);

/// The same without lib3ds, for any mesh.
void tds_vertex_normals_bounded(const Lib3dsMesh& mesh, std::vector<vec3>& normals);

}  // namespace orv
