#include <orv/visual/particle_pool.h>

#include <orv/core/log_mgr.h>
#include <orv/geometry/vertex_pool.h>
#include <orv/math/math.h>
#include <orv/math/vec3.h>

#include <algorithm>
#include <cstdlib>
#include <new>

#include "core/large_array.h"
#include "geometry/limits.h"
#include "visual/particle_passes.h"

namespace orv {

namespace {

/// Bytes of a drawn vertex: position, texture coordinates, normal and colour.
constexpr unsigned int VERTEX_BYTES = 64;
/// Half of the range in which slots start.
constexpr float START_DISTANCE = 10.0f;

// Zeros, of which no page takes memory before it is written.
template <class T>
T* new_untouched(std::size_t n) {
  void* block = std::calloc(n, sizeof(T));
  if (!block) throw std::bad_alloc();
  return static_cast<T*>(block);
}

template <class T>
void delete_array(T*& array) {
  delete[] array;
  array = nullptr;
}

template <class T>
void free_untouched(T*& array) {
  std::free(array);
  array = nullptr;
}

}  // namespace

ParticlePool::~ParticlePool() { ParticlePool::free(nullptr); }

// ---- allocation -------------------------------------------------------------------------------

bool ParticlePool::alloc(unsigned int n) {
  free(nullptr);
  try {
    check_geometry_bytes(n, VERTEX_BYTES);
    alloc_arrays(n);
    alloc_vertex_pool(n);
  } catch (const std::bad_alloc&) {
    LogMgr::get().tracef_debug("Particle pool - %u particles don't fit in memory", n);
    free(nullptr);
    return true;
  }
  num_particles = n;
  scatter();
  return true;
}

void ParticlePool::alloc_arrays(unsigned int n) {
  using detail::new_large_array;
  // The size is within a few bytes of the largest geometry: no overflow.
  const std::size_t padded =
      (n + detail::PARTICLE_BLOCK - 1) / detail::PARTICLE_BLOCK * detail::PARTICLE_BLOCK;
  indices = new_large_array<unsigned int>(padded);
  positions = new_large_array<vec3>(padded);
  velocities = new_large_array<vec3>(padded);
  lifetimes = new_large_array<float>(padded);
  sizes = new_large_array<float>(padded);
  spawned_a = new_large_array<unsigned int>(n);
  spawned_b = new_large_array<unsigned int>(n);
  reserved_floats = new_untouched<float>(n);
  reserved_vectors_a = new_untouched<vec3>(n);
  reserved_vectors_b = new_untouched<vec3>(n);
}

void ParticlePool::alloc_vertex_pool(unsigned int n) {
  vertex_pool = new VertexPool;
  vertex_pool->add_ref();
  const bool made = vertex_pool->init_pool(n, true);
  if (n == 0) return;
  if (!made) throw std::bad_alloc();
  // A fourth component takes the sizes.
  VertexAttribArray* positions_4 = vertex_pool->get_pool_data()->get_vertex_attrib_array(0);
  const int alignment = positions_4->alignment;
  positions_4->free_data();
  positions_4->alloc_data_v2(4, n, alignment);
}

void ParticlePool::scatter() {
  constexpr float SCALE = 2.0f * START_DISTANCE / static_cast<float>(Math::RANDOM_MAX + 1);
  const auto draw = [] { return static_cast<float>(Math::rand15()) * SCALE - START_DISTANCE; };
  for (unsigned int i = 0; i < num_particles; ++i) {
    indices[i] = i;
    positions[i].x = draw();
    positions[i].y = draw();
    positions[i].z = draw();
  }
  std::fill_n(sizes, num_particles, 1.0f);
}

bool ParticlePool::free(Renderer* renderer) {
  if (vertex_pool) vertex_pool->release(renderer, nullptr);
  vertex_pool = nullptr;
  free_arrays();
  num_particles = 0;
  particle_lifetime = 1.0f;
  spawn_cursor = 0;
  num_spawned_a = 0;
  num_spawned_b = 0;
  reserved_counter = 0;
  return true;
}

void ParticlePool::free_arrays() {
  delete_array(indices);
  delete_array(positions);
  delete_array(velocities);
  delete_array(lifetimes);
  delete_array(sizes);
  delete_array(spawned_a);
  delete_array(spawned_b);
  free_untouched(reserved_floats);
  free_untouched(reserved_vectors_a);
  free_untouched(reserved_vectors_b);
}

}  // namespace orv
