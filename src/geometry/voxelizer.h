#pragma once

#include <orv/math/vec2.h>
#include <orv/math/vec3.h>

#include <vector>

namespace orv {

/// Triangles to be turned into voxels.
struct TriangleSoup {
  std::vector<vec3> positions;
  std::vector<vec2> uvs;  ///< one per position
  std::vector<unsigned int> indices;
};

/// Cubes made of triangles. Each visible side has four positions of its own.
struct VoxelCubes {
  std::vector<vec3> positions;
  std::vector<vec2> uvs;      ///< one per position
  std::vector<vec3> normals;  ///< of the six sides
  std::vector<unsigned int> position_indices;
  std::vector<unsigned int> normal_indices;  ///< one per position index
};

/// Turns the surface of `soup` into cubes of `size` over its bounding box: one for each cell that a
/// triangle touches, give or take `precision`. Sides between two cubes are left out. The texture
/// coordinates are those of the triangle corner nearest to the cube's centre.
///
/// False, with `out` untouched, for sizes that are not above 0, for more than 2^24 cells, for more
/// cubes than a geometry can hold, and when no triangle has finite coordinates.
bool voxelize_surface(const TriangleSoup& soup, const vec3& size, float precision, VoxelCubes* out);

}  // namespace orv
