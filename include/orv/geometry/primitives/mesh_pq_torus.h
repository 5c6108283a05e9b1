/// @file
/// Torus knot.
#pragma once

#include <orv/core/api.h>
#include <orv/geometry/mesh.h>

namespace orv {

/// Tube along a (p, q) torus knot, drawn as one triangle strip over a generic index list, so that
/// it has no faces of three. Built by the next build after a change of its parameters.
class ORV_API MeshPQTorus : public Mesh {
 public:
  /// 256 rings of 16 vertices, 2 and 5 turns.
  MeshPQTorus();
  /// Has data of its own for VERTEX_FORMAT_DEFAULT and none for any other format.
  explicit MeshPQTorus(VERTEX_FORMAT format);
  /// A new node that shares the geometry.
  MeshPQTorus(const MeshPQTorus& other);
  /// Shares the geometry of the other and takes over its parameters.
  MeshPQTorus& operator=(const MeshPQTorus&) = default;

  /// Parameters of the next build.
  /// @param u_steps       rings along the knot
  /// @param v_steps       vertices on a ring
  /// @param radius        of the knot, in scene units
  /// @param tube_radius   of the tube around it, in scene units
  /// @param twist_freq    wobble of the tube, in cycles along the knot
  /// @param twist_phase   in radians
  /// @param twist_amount  share of the tube radius
  /// @param u_tiling      texture repeats around the tube
  /// @param v_tiling      texture repeats along the knot
  /// @param p             turns of the knot about one axis
  /// @param q             turns of the knot about the other
  /// @return true
  bool set_build_params(int u_steps, int v_steps, float radius, float tube_radius, float twist_freq,
                        float twist_phase, float twist_amount, float u_tiling, float v_tiling,
                        float p, float q);

  /// False, without any geometry, for fewer than one step.
  bool _build() override;

 private:
  bool _build_pq_torus();
  void write_indices(unsigned int count);
  void write_rings();

  int u_steps_ = 256;
  int v_steps_ = 16;
  float radius_;
  float tube_radius_ = 0.2f;
  float twist_freq_ = 12.0f;
  float twist_phase_ = 6.0f;
  float twist_amount_ = 0.5f;
  float u_tiling_ = 4.0f;
  float v_tiling_ = 64.0f;
  float p_ = 2.0f;
  float q_ = 5.0f;
};

}  // namespace orv
