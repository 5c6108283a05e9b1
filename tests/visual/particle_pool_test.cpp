#include <orv/visual/particle_pool.h>

#include <orv/geometry/vertex_pool.h>
#include <orv/math/math.h>
#include <orv/math/vec3.h>

#include <gtest/gtest.h>

#include "support/log_capture.h"
#include "support/recording_renderer.h"

namespace orv {
namespace {

using test::RecordingRenderer;

void expect_empty(const ParticlePool& pool) {
  EXPECT_EQ(pool.num_particles, 0u);
  EXPECT_EQ(pool.indices, nullptr);
  EXPECT_EQ(pool.positions, nullptr);
  EXPECT_EQ(pool.velocities, nullptr);
  EXPECT_EQ(pool.lifetimes, nullptr);
  EXPECT_EQ(pool.sizes, nullptr);
  EXPECT_EQ(pool.vertex_pool, nullptr);
  EXPECT_EQ(pool.spawn_cursor, 0u);
  EXPECT_EQ(pool.num_spawned_a, 0u);
  EXPECT_EQ(pool.spawned_a, nullptr);
  EXPECT_EQ(pool.num_spawned_b, 0u);
  EXPECT_EQ(pool.reserved_counter, 0u);
  EXPECT_EQ(pool.spawned_b, nullptr);
  EXPECT_EQ(pool.reserved_floats, nullptr);
  EXPECT_EQ(pool.reserved_vectors_a, nullptr);
  EXPECT_EQ(pool.reserved_vectors_b, nullptr);
}

TEST(ParticlePool, FreshPoolHasNoSlots) {
  const ParticlePool pool;
  expect_empty(pool);
  EXPECT_EQ(pool.particle_lifetime, 1.0f);
}

TEST(ParticlePool, SlotsStartDeadAndAtRest) {
  ParticlePool pool;
  pool.particle_lifetime = 7.0f;
  ASSERT_TRUE(pool.alloc(5));
  EXPECT_EQ(pool.num_particles, 5u);
  EXPECT_EQ(pool.particle_lifetime, 1.0f);
  for (unsigned int i = 0; i < 5; ++i) {
    EXPECT_EQ(pool.indices[i], i);
    EXPECT_EQ(pool.velocities[i], vec3());
    EXPECT_EQ(pool.lifetimes[i], 0.0f);
    EXPECT_EQ(pool.sizes[i], 1.0f);
    EXPECT_EQ(pool.reserved_floats[i], 0.0f);
    EXPECT_EQ(pool.reserved_vectors_a[i], vec3());
    EXPECT_EQ(pool.reserved_vectors_b[i], vec3());
  }
  EXPECT_EQ(pool.spawn_cursor, 0u);
  EXPECT_EQ(pool.num_spawned_a, 0u);
  EXPECT_EQ(pool.num_spawned_b, 0u);
  EXPECT_EQ(pool.reserved_counter, 0u);
  EXPECT_NE(pool.spawned_a, nullptr);
  EXPECT_NE(pool.spawned_b, nullptr);
}

TEST(ParticlePool, PlacesTakeThreeRandomNumbersASlot) {
  ParticlePool pool;
  Math::srnd(11);
  ASSERT_TRUE(pool.alloc(6));
  const int next = Math::rand15();
  Math::srnd(11);
  const auto draw = [] { return static_cast<float>(Math::rand15()) * 0.00061035156f - 10.0f; };
  for (unsigned int i = 0; i < 6; ++i) {
    const float x = draw(), y = draw(), z = draw();
    EXPECT_EQ(pool.positions[i], vec3(x, y, z)) << i;
  }
  EXPECT_EQ(Math::rand15(), next) << "no draw more";
}

TEST(ParticlePool, DrawnPositionsHaveRoomForTheSize) {
  ParticlePool pool;
  ASSERT_TRUE(pool.alloc(5));
  ASSERT_NE(pool.vertex_pool, nullptr);
  EXPECT_EQ(pool.vertex_pool->get_pool_size(), 5u);
  VertexPoolData& data = *pool.vertex_pool->get_pool_data();
  EXPECT_EQ(data.get_primitive_type(), PRIMITIVE_POINTS);
  EXPECT_TRUE(data.has_separate_vertex_arrays());
  EXPECT_EQ(data.num_attrib_arrays, 4u);
  EXPECT_EQ(data.get_position_vector_dim(), 4);
  EXPECT_EQ(data.get_position_attrib_location(), 0);
  EXPECT_EQ(data.alloc_params.vertex_attrib_dim[0], 3) << "as any pool of points";
  EXPECT_TRUE(pool.vertex_pool->set_vertex_position(4, vec4(1, 2, 3, 9)));
  EXPECT_EQ(pool.vertex_pool->get_vertex_position(4), vec4(1, 2, 3, 9));
}

TEST(ParticlePool, PoolWithoutSlotsIsMade) {
  const test::LogCapture log(LOG_LEVEL_ERROR);
  ParticlePool pool;
  EXPECT_TRUE(pool.alloc(0));
  EXPECT_EQ(pool.num_particles, 0u);
  ASSERT_NE(pool.vertex_pool, nullptr);
  EXPECT_EQ(pool.vertex_pool->get_pool_size(), 0u);
}

TEST(ParticlePool, NewAllocationReplacesTheOldOne) {
  ParticlePool pool;
  ASSERT_TRUE(pool.alloc(5));
  pool.lifetimes[0] = 3.0f;
  pool.num_spawned_a = pool.num_spawned_b = pool.spawn_cursor = 1;
  ASSERT_TRUE(pool.alloc(9));
  EXPECT_EQ(pool.num_particles, 9u);
  EXPECT_EQ(pool.lifetimes[0], 0.0f);
  EXPECT_EQ(pool.spawn_cursor + pool.num_spawned_a + pool.num_spawned_b, 0u);
  EXPECT_EQ(pool.vertex_pool->get_pool_size(), 9u);
}

TEST(ParticlePool, MoreThanAGeometryHoldsLeavesItEmpty) {
  const test::LogCapture log(LOG_LEVEL_DEBUG);
  ParticlePool pool;
  ASSERT_TRUE(pool.alloc(5));
  for (const unsigned int n : {0xFFFFFFFFu, 0xFFFFFFFDu, 0x80000000u, 0x02000000u}) {
    EXPECT_TRUE(pool.alloc(n)) << n;
    expect_empty(pool);
  }
  EXPECT_EQ(log.count("particles don't fit in memory"), 4);
}

TEST(ParticlePool, FreeDestroysTheGpuObjects) {
  RecordingRenderer renderer;
  ParticlePool pool;
  ASSERT_TRUE(pool.alloc(5));
  EXPECT_TRUE(pool.free(&renderer));
  EXPECT_EQ(renderer.count("geometry_vbo_destroy"), 1);
  expect_empty(pool);
  EXPECT_TRUE(pool.free(&renderer));
  EXPECT_EQ(renderer.count("geometry_vbo_destroy"), 1);
  ASSERT_TRUE(pool.alloc(3));
  EXPECT_EQ(pool.num_particles, 3u);
}

TEST(ParticlePool, PointsThatAHostHoldsOutliveThePool) {
  auto* pool = new ParticlePool;
  ASSERT_TRUE(pool->alloc(5));
  VertexPool* points = pool->vertex_pool;
  points->add_ref();
  delete pool;
  EXPECT_EQ(points->get_ref(), 1);
  EXPECT_EQ(points->get_pool_size(), 5u);
  points->release(nullptr, nullptr);
}

}  // namespace
}  // namespace orv
