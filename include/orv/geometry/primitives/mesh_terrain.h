/// @file
/// Height field from a picture.
#pragma once

#include <orv/core/api.h>
#include <orv/geometry/mesh.h>

namespace orv {

struct MeshTerrainData;

/// A square of `resolution` by `resolution` cells in the XZ plane, raised by the first channel of a
/// texture's image. Built by the next build after a change of its parameters.
///
/// Faces look up. The first texture coordinate runs along x, the second against z; normals are
/// taken from the neighbouring heights; vertices are white.
///
/// Heights are copied once, by the first build or by init_terrain_buffer: the texture may be freed
/// as soon as they are. A terrain without heights is flat.
class ORV_API MeshTerrain : public Mesh {
 public:
  /// All parameters 0: nothing can be built.
  MeshTerrain();
  /// Has data of its own for VERTEX_FORMAT_DEFAULT and none for any other format.
  explicit MeshTerrain(VERTEX_FORMAT format);
  ~MeshTerrain() override;
  /// A new node that shares the geometry; the heights are copied.
  MeshTerrain(const MeshTerrain& other);
  /// Shares the geometry of the other and takes over its heights and parameters.
  MeshTerrain& operator=(const MeshTerrain& other);

  /// Stores the parameters for the next build. True.
  /// @param texture       not owned, may be null: the next build copies its heights when there are
  ///                      none yet. When it ends before, the terrain stays flat; the heights of
  ///                      another texture need init_terrain_buffer
  /// @param resolution    cells along a side; below 1 the build fails
  /// @param height_scale  scene units that the brightest texel stands for
  /// @param half_size     the terrain reaches from -half_size to half_size in x and z
  /// @param min_height    lower heights are raised to it
  bool set_build_params(Texture* texture, int resolution, float height_scale, float half_size,
                        float min_height);

  /// Replaces the heights by those of the texture's image: the first channel, 0 to 1 for bytes, 0
  /// where the pixel format has none. An image without pixels leaves no heights. False for null and
  /// when the heights don't fit in memory; the old ones stay then.
  bool init_terrain_buffer(Texture* texture);

  /// Height at column `i` and row `j` of the heights, scaled, and at least `min_height`. Out of
  /// range and without heights it is 0, or `min_height` if that is more.
  float elevation(int i, int j, float height_scale, float min_height);

  /// Builds this terrain alone, not its children. False for a resolution below 1.
  bool build(Node* node) override;
  bool _build() override;

  /// Frees the heights, then as Mesh.
  bool _cleanup(Renderer* renderer) override;

 private:
  bool _build_terrain(int resolution, float height_scale, float half_size, float min_height);

  MeshTerrainData* terrain_;
};

}  // namespace orv
