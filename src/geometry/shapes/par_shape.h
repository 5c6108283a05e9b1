#pragma once

#include <orv/math/vec2.h>
#include <orv/math/vec3.h>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace orv::detail {

/// Triangles as the shape generator hands them about, before they become a mesh.
struct ParShape {
  /// As many points as 16-bit indices can name.
  static constexpr std::size_t MAX_POINTS = 65536;

  struct Triangle {
    std::uint32_t a, b, c;
  };

  std::vector<vec3> points;
  std::vector<Triangle> triangles;
  std::vector<vec3> normals;  ///< one per point, or none
  std::vector<vec2> tcoords;  ///< one per point, or none
};

// ---- work on any shape ----

/// Gives every triangle three points of its own. Normals and coordinates are dropped.
void unweld(ParShape& shape);
/// One normal per point: the mean of its triangles, weighted by area.
void compute_normals(ParShape& shape);
/// Drops the triangles without an area worth the name.
void remove_degenerate_triangles(ParShape& shape);
/// Merges points that lie closer than `epsilon`; the lowest index of them stays. Triangles that
/// lose a corner go, normals and coordinates are dropped. An epsilon above half the extent of the
/// shape is reported on the standard output and changes nothing.
void weld(ParShape& shape, float epsilon);

// ---- shapes ----
//
// Each replaces what is in `shape`. False when it can't be made; the shape is then of no use.

/// A platonic solid by its name ("octohedron" is spelled so), with corners on the unit sphere, or
/// "cube", from 0 to 1 on each axis. False for another name.
bool make_solid(std::string_view name, ParShape& shape);
/// Unit sphere of `levels` (at most 6, below 0 as 0) subdivisions of an icosahedron.
bool make_subdivided_sphere(int levels, ParShape& shape);
/// The subdivided sphere with noise that depends on `seed` alone, flat below.
bool make_rock(int seed, int levels, ParShape& shape);

/// @{
/// Surfaces over a grid of (slices + 1) * (stacks + 1) points, with coordinates from 0 to 1 and
/// normals. Knot and sphere need 3 slices and 3 stacks, the others 1.
bool make_trefoil_knot(int slices, int stacks, ParShape& shape);
bool make_klein_bottle(int slices, int stacks, ParShape& shape);
bool make_parametric_sphere(int slices, int stacks, ParShape& shape);
/// Open cylinder of radius 1 from z 0 to z 1.
bool make_tube(int slices, int stacks, ParShape& shape);
/// @}

}  // namespace orv::detail
