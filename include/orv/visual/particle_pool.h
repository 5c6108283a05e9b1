/// @file
/// The particles of a system.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>

namespace orv {

/// A fixed number of slots for particles, one array for each attribute, and the points that are
/// drawn.
///
/// The fields are public for emitters and actions of a host. All arrays are owned by the pool; they
/// are null and every count is 0 before `alloc` and after `free`. Those of the attributes are
/// padded to whole blocks of 16 slots, so that loops need no remainder.
class ORV_API ParticlePool {
 public:
  /// Without slots.
  ParticlePool() = default;
  /// As `free` without a renderer.
  virtual ~ParticlePool();
  ParticlePool(const ParticlePool&) = delete;
  ParticlePool& operator=(const ParticlePool&) = delete;

  /// Makes `n` slots, all dead and without velocity, of size 1 and a lifetime of 1 second, at
  /// random places within 10 units of the origin on each axis, which takes three numbers of
  /// Math::rand15 a slot; and a VertexPool of as many vertices. What was there before is freed
  /// without a renderer.
  ///
  /// Always true. A pool that doesn't fit in memory, or in the 2^31 - 1 bytes of a geometry, stays
  /// without slots, with a debug line in the log.
  bool alloc(unsigned int n);
  /// Frees all arrays and lets go of the VertexPool. Its GPU objects are destroyed with the
  /// renderer, and leaked without one. Always true.
  bool free(Renderer* renderer);

  // ---- record ----

  unsigned int num_particles = 0;      ///< number of slots
  float particle_lifetime = 1.0f;      ///< seconds given to each new particle
  unsigned int* indices = nullptr;     ///< number of each slot
  vec3* positions = nullptr;           ///< in the space that the points are drawn in
  vec3* velocities = nullptr;          ///< units a second
  float* lifetimes = nullptr;          ///< seconds left; a particle is alive while this is above 0
  float* sizes = nullptr;              ///< handed on as w of the drawn positions
  VertexPool* vertex_pool = nullptr;   ///< what is drawn; counted
  unsigned int spawn_cursor = 0;       ///< first slot that no emitter looked at in this frame
  unsigned int num_spawned_a = 0;      ///< entries of `spawned_a`
  unsigned int* spawned_a = nullptr;   ///< slots filled in this frame
  unsigned int num_spawned_b = 0;      ///< entries of `spawned_b`
  unsigned int reserved_counter = 0;   ///< has no use
  unsigned int* spawned_b = nullptr;   ///< slots filled in this frame
  float* reserved_floats = nullptr;    ///< has no use
  vec3* reserved_vectors_a = nullptr;  ///< has no use
  vec3* reserved_vectors_b = nullptr;  ///< has no use

 private:
  void alloc_arrays(unsigned int n);
  void alloc_vertex_pool(unsigned int n);
  void scatter();
  void free_arrays();
};

}  // namespace orv
