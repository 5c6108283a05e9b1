#pragma once

#include <orv/fwd.h>

#include <vector>

namespace viewer {

/// Whether no vertex of the mesh has a normal of any length.
bool lacks_normals(orv::Mesh& mesh);

/// Gives each face vertices of its own, with position, colour, first texture coordinates and
/// material as before. False, and nothing changed, when it has them or has no faces.
bool unshare_vertices(orv::Mesh& mesh);

/// Computes normals: flat per face, then smooth across edges of less than 60 degrees, also where
/// the faces belong to two of the meshes. The meshes get vertices of their own for each face.
void compute_normals(const std::vector<orv::Mesh*>& meshes);

}  // namespace viewer
