#include <orv/geometry/vertex_pool.h>

#include <orv/gpu/gpu_buffer.h>
#include <orv/gpu/gpu_buffer_data.h>
#include <orv/gpu/gpu_program.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/gpu/material.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/held.h"
#include "support/log_capture.h"
#include "support/recording_renderer.h"

namespace orv {
namespace {

using test::Held;
using test::RecordingRenderer;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

TEST(VertexPool, PrimitiveIsALineStripUntilThePoolIsInitialised) {
  const Held<VertexPool> pool;
  EXPECT_EQ(pool->get_type(), NODE_TYPE_VERTEX_POOL);
  EXPECT_EQ(pool->get_pool_data()->get_primitive_type(), 3);
  EXPECT_TRUE(pool->init_pool(4, true));
  EXPECT_EQ(pool->get_pool_data()->get_primitive_type(), 8);
}

TEST(VertexPool, FailedInitKeepsThePrimitive) {
  const test::LogCapture log(LOG_LEVEL_ERROR);
  const Held<VertexPool> pool;
  EXPECT_FALSE(pool->init_pool(0, true));
  EXPECT_FALSE(pool->init_pool(0xFFFFFFFFu, false));
  EXPECT_EQ(pool->get_pool_data()->get_primitive_type(), 3);
  EXPECT_EQ(log.count("num_vertices is 0"), 1);
  EXPECT_EQ(log.count("std::bad_alloc"), 1);
}

TEST(VertexPool, SeparatePositionsHaveThreeComponents) {
  const Held<VertexPool> pool;
  ASSERT_TRUE(pool->init_pool(4, true));
  EXPECT_EQ(pool->get_pool_data()->get_position_vector_dim(), 3);
  EXPECT_EQ(pool->get_pool_data()->get_color_vector_dim(), 4);
  EXPECT_EQ(pool->get_pool_ptr(), nullptr);
  EXPECT_NE(pool->get_position_ptr(), nullptr);
  EXPECT_NE(pool->get_color_ptr(), nullptr);
  EXPECT_TRUE(pool->set_vertex_position(0, vec4(1, 2, 3, 9)));
  EXPECT_EQ(pool->get_vertex_position(0), vec4(1, 2, 3, 1)) << "w is not kept";
}

TEST(VertexPool, InterleavedVerticesAreReachedAsSuch) {
  const Held<VertexPool> pool;
  ASSERT_TRUE(pool->init_pool(4, false));
  EXPECT_EQ(pool->get_pool_size(), 4u);
  EXPECT_EQ(pool->get_num_vertices(nullptr), 4u);
  EXPECT_EQ(pool->get_position_ptr(), nullptr);
  ASSERT_NE(pool->get_pool_ptr(), nullptr);
  EXPECT_TRUE(pool->set_vertex_position(2, vec4(1, 2, 3, 9)));
  EXPECT_EQ(pool->get_vertex_position(2), vec4(1, 2, 3, 9)) << "four lanes";
  EXPECT_EQ(pool->get_pool_ptr()[2].position, vec4(1, 2, 3, 9));
  EXPECT_EQ(pool->get_vertex(2), pool->get_pool_ptr() + 2);
  EXPECT_EQ(pool->get_vertex(4), nullptr);
  EXPECT_EQ(pool->get_vertex_v2(2).position, vec4(1, 2, 3, 9));
  EXPECT_EQ(pool->get_vertex_v2(4).position, vec4());
}

TEST(VertexPool, PoolCanChangeItsForm) {
  const Held<VertexPool> pool;
  ASSERT_TRUE(pool->init_pool(4, true));
  ASSERT_TRUE(pool->init_pool(2, false));
  EXPECT_EQ(pool->get_pool_data()->num_attrib_arrays, 0u);
  EXPECT_EQ(pool->get_pool_size(), 2u);
  ASSERT_TRUE(pool->init_pool(3, true));
  EXPECT_EQ(pool->get_pool_data()->num_attrib_arrays, 4u);
  EXPECT_EQ(pool->get_pool_ptr(), nullptr);
}

TEST(VertexPool, AttributesTakeThreeForms) {
  const Held<VertexPool> pool;
  ASSERT_TRUE(pool->init_pool(1, false));
  struct Row {
    bool (VertexPool::*set3)(unsigned int, const vec3&);
    bool (VertexPool::*set4)(unsigned int, const vec4&);
    bool (VertexPool::*set_floats)(unsigned int, float, float, float, float);
    vec4 (VertexPool::*get)(unsigned int) const;
  };
  const Row rows[] = {{&VertexPool::set_vertex_position, &VertexPool::set_vertex_position,
                       &VertexPool::set_vertex_position, &VertexPool::get_vertex_position},
                      {&VertexPool::set_vertex_color, &VertexPool::set_vertex_color,
                       &VertexPool::set_vertex_color, &VertexPool::get_vertex_color},
                      {&VertexPool::set_vertex_normal, &VertexPool::set_vertex_normal,
                       &VertexPool::set_vertex_normal, &VertexPool::get_vertex_normal}};
  for (const Row& row : rows) {
    EXPECT_TRUE(((*pool).*row.set3)(0, vec3(1, 2, 3)));
    EXPECT_EQ(((*pool).*row.get)(0), vec4(1, 2, 3, 1));
    EXPECT_TRUE(((*pool).*row.set4)(0, vec4(4, 5, 6, 7)));
    EXPECT_EQ(((*pool).*row.get)(0), vec4(4, 5, 6, 7));
    EXPECT_TRUE(((*pool).*row.set_floats)(0, 8, 9, 10, 11));
    EXPECT_EQ(((*pool).*row.get)(0), vec4(8, 9, 10, 11));
    EXPECT_FALSE(((*pool).*row.set4)(1, vec4()));
    EXPECT_EQ(((*pool).*row.get)(1), vec4());
  }
}

TEST(VertexPool, DrawRangeIsKeptAsGiven) {
  const Held<VertexPool> pool;
  ASSERT_TRUE(pool->init_pool(4, true));
  pool->set_render_start_offset(1);
  pool->set_render_num_vertices(100);
  EXPECT_EQ(pool->get_pool_data()->get_draw_start(), 1);
  EXPECT_EQ(pool->get_pool_data()->get_draw_count(), 100);
}

TEST(VertexPool, PointSpritesAreAFlagOfTheData) {
  const Held<VertexPool> pool;
  EXPECT_FALSE(pool->get_point_sprite_state());
  pool->set_point_sprite_state(true);
  EXPECT_TRUE(pool->get_point_sprite_state());
  EXPECT_TRUE(pool->get_pool_data()->point_sprite);
}

TEST(VertexPool, CleanupDeletesTheData) {
  RecordingRenderer renderer;
  const Held<VertexPool> pool;
  ASSERT_TRUE(pool->init_pool(4, true));
  pool->add_material(new Material, nullptr);
  EXPECT_TRUE(pool->_cleanup(&renderer));
  EXPECT_EQ(renderer.count("geometry_vbo_destroy"), 1);
  EXPECT_EQ(pool->get_pool_data(), nullptr);
  EXPECT_EQ(pool->get_num_materials(), 0u);

  Held<GpuBuffer> buffer;
  EXPECT_FALSE(pool->init_pool(1, true));
  EXPECT_EQ(pool->get_pool_size(), 0u);
  EXPECT_EQ(pool->get_pool_ptr(), nullptr);
  EXPECT_EQ(pool->get_position_ptr(), nullptr);
  EXPECT_EQ(pool->get_color_ptr(), nullptr);
  EXPECT_EQ(pool->get_vertex(0), nullptr);
  EXPECT_EQ(pool->get_vertex_v2(0).position, vec4());
  EXPECT_FALSE(pool->set_vertex_position(0, vec4()));
  EXPECT_FALSE(pool->set_vertex_color(0, vec4()));
  EXPECT_FALSE(pool->set_vertex_normal(0, vec4()));
  EXPECT_EQ(pool->get_vertex_position(0), vec4());
  EXPECT_EQ(pool->map_vertex_buffer(&renderer), nullptr);
  EXPECT_FALSE(pool->unmap_vertex_buffer(&renderer));
  EXPECT_FALSE(pool->vertices_to_gpu_buffer(&renderer, buffer));
  EXPECT_TRUE(pool->set_vertex_source(buffer));
  EXPECT_EQ(pool->get_renderer_id(), 0);
  pool->_render(&renderer);
  pool->render_geometry(&renderer);
  EXPECT_EQ(renderer.count("geometry_vbo_draw"), 0);
}

// ---- drawing ----

TEST(VertexPool, GeometryGoesThroughFiveCallsInOrder) {
  RecordingRenderer renderer;
  const Held<VertexPool> pool;
  pool->render_geometry(&renderer);
  EXPECT_THAT(renderer.names(),
              ElementsAre("get_current_gpu_program", "geometry_vbo_create", "geometry_vbo_update",
                          "geometry_vbo_bind", "geometry_vbo_draw", "geometry_vbo_unbind"));
  EXPECT_FALSE(pool->get_pool_data()->get_use_generic_vertex_attribs_state());
  EXPECT_TRUE(pool->get_pool_data()->use_gl2_built_in_vertex_attribs_get_state());
  pool->render_geometry(nullptr);
  pool->_render(nullptr);
}

TEST(VertexPool, BoundProgramGetsItsAttributeLocations) {
  RecordingRenderer renderer;
  const Held<GpuProgram> program;
  renderer.label(program->get_data_ptr(), "program");
  renderer.set_current_program(program->get_data_ptr());
  program->get_data_ptr()->use_generic_vertex_attribs = true;
  const Held<VertexPool> pool;
  pool->_render(&renderer);
  EXPECT_THAT(renderer.calls(), Contains("gpu_program_bind_vertex_attrib_locations(program)"));
  EXPECT_TRUE(pool->get_pool_data()->get_use_generic_vertex_attribs_state());
  EXPECT_TRUE(pool->get_use_generic_vertex_attribs_state());
  program->get_data_ptr()->use_generic_vertex_attribs = false;
  pool->_render(&renderer);
  EXPECT_FALSE(pool->get_pool_data()->get_use_generic_vertex_attribs_state());
  EXPECT_TRUE(pool->get_use_fixed_mvp_matrices_state());
}

TEST(VertexPool, TripodIsDrawnDirectlyWithTheProgramBound) {
  RecordingRenderer renderer;
  const Held<GpuProgram> program;
  renderer.set_current_program(program->get_data_ptr());
  const Held<VertexPool> pool;
  pool->set_display_tripod_state(true, nullptr);
  pool->_render(&renderer);
  EXPECT_EQ(renderer.count("draw_immediate_line"), 3);
  EXPECT_EQ(renderer.count("gpu_program_unbind"), 0);
  pool->set_display_tripod_state(false, nullptr);
  pool->set_display_grid_state(true, nullptr);
  renderer.clear();
  pool->_render(&renderer);
  EXPECT_GT(renderer.count("draw_immediate_line"), 3);
  EXPECT_EQ(renderer.count("gpu_program_unbind"), 1) << "the grid goes its usual way";
}

TEST(VertexPool, MaterialsAreNotLookedAt) {
  RecordingRenderer renderer;
  const Held<GpuProgram> program;
  const Held<VertexPool> pool;
  auto* material = new Material;
  material->set_gpu_program(program);
  material->set_use_fixed_material_colors_state(true);
  pool->add_material(material, nullptr);
  pool->_render(&renderer);
  EXPECT_EQ(renderer.count("gpu_program_bind"), 0);
  EXPECT_EQ(renderer.count("material_set_all"), 0);
  EXPECT_EQ(renderer.count("geometry_vbo_draw"), 1);
}

TEST(VertexPool, RendererIdIsThatOfTheVertexBuffer) {
  const Held<VertexPool> pool;
  pool->get_pool_data()->vb()->renderer_id = 5;
  EXPECT_EQ(pool->get_renderer_id(), 5);
}

// ---- buffers ----

class VertexPoolBuffer : public testing::Test {
 protected:
  VertexPoolBuffer() {
    renderer.label(pool->get_pool_data()->vb(), "vb");
    renderer.label(buffer->get_data_ptr(), "other");
    renderer.answer_pointer("gpu_buffer_map", memory);
  }
  Vertex memory[2];
  RecordingRenderer renderer;
  Held<VertexPool> pool;
  Held<GpuBuffer> buffer;
};

TEST_F(VertexPoolBuffer, MappingSeparateArraysGivesNull) {
  ASSERT_TRUE(pool->init_pool(2, true));
  EXPECT_EQ(pool->map_vertex_buffer(&renderer), nullptr);
  EXPECT_FALSE(pool->unmap_vertex_buffer(&renderer));
  EXPECT_THAT(renderer.calls(), ElementsAre());
}

TEST_F(VertexPoolBuffer, MappingBindsTheSourceFirst) {
  ASSERT_TRUE(pool->init_pool(2, false));
  EXPECT_EQ(pool->map_vertex_buffer(&renderer), memory);
  EXPECT_THAT(renderer.calls(),
              ElementsAre("gpu_buffer_bind(vb)", "gpu_buffer_map(vb, \"GL_WRITE_ONLY\")"));
  EXPECT_EQ(pool->get_mapped_vertex_buffer(), memory);
  renderer.clear();
  EXPECT_FALSE(pool->unmap_vertex_buffer(nullptr));
  EXPECT_TRUE(pool->unmap_vertex_buffer(&renderer));
  EXPECT_THAT(renderer.calls(), ElementsAre("gpu_buffer_unmap(vb)", "gpu_buffer_unbind(vb)"));
  EXPECT_EQ(pool->get_mapped_vertex_buffer(), nullptr);
}

TEST_F(VertexPoolBuffer, MappingWithoutARendererGivesTheLastAddress) {
  ASSERT_TRUE(pool->init_pool(2, false));
  EXPECT_EQ(pool->map_vertex_buffer(nullptr), nullptr);
  pool->map_vertex_buffer(&renderer);
  EXPECT_EQ(pool->map_vertex_buffer(nullptr), memory);
}

TEST_F(VertexPoolBuffer, NullSourceRestoresTheOwnBuffer) {
  ASSERT_TRUE(pool->init_pool(2, false));
  EXPECT_TRUE(pool->set_vertex_source(buffer));
  EXPECT_EQ(pool->get_pool_data()->get_vb_source(), buffer->get_data_ptr());
  pool->map_vertex_buffer(&renderer);
  EXPECT_EQ(renderer.calls().front(), "gpu_buffer_bind(other)");
  EXPECT_TRUE(pool->set_vertex_source(nullptr));
  EXPECT_EQ(pool->get_pool_data()->get_vb_source(), pool->get_pool_data()->vb());
}

TEST_F(VertexPoolBuffer, VerticesAreCopiedToABuffer) {
  ASSERT_TRUE(pool->init_pool(2, false));
  pool->set_vertex_position(1, vec4(1, 2, 3, 4));
  buffer->get_data_ptr()->size = sizeof(memory);
  EXPECT_TRUE(pool->vertices_to_gpu_buffer(&renderer, buffer));
  EXPECT_EQ(memory[1].position, vec4(1, 2, 3, 4));
  EXPECT_THAT(renderer.calls(),
              ElementsAre("gpu_buffer_map(other, \"GL_WRITE_ONLY\")", "gpu_buffer_unmap(other)"));
}

TEST_F(VertexPoolBuffer, VerticesAreCopiedFromABuffer) {
  ASSERT_TRUE(pool->init_pool(2, false));
  pool->get_pool_data()->update_interleaved_vertex_array_set_state(false);
  memory[0].color = vec4(9, 8, 7, 6);
  buffer->get_data_ptr()->size = sizeof(memory);
  EXPECT_TRUE(pool->vertices_from_gpu_buffer(&renderer, buffer));
  EXPECT_EQ(pool->get_vertex_color(0), vec4(9, 8, 7, 6));
  EXPECT_TRUE(pool->get_pool_data()->is_update_vertex_buffer_needed());
  EXPECT_THAT(renderer.calls(),
              ElementsAre("gpu_buffer_map(other, \"GL_READ_ONLY\")", "gpu_buffer_unmap(other)"));
}

TEST_F(VertexPoolBuffer, ExchangeIsRefusedForNullSeparateArraysAndSmallBuffers) {
  EXPECT_FALSE(pool->vertices_to_gpu_buffer(&renderer, nullptr));
  EXPECT_FALSE(pool->vertices_from_gpu_buffer(&renderer, nullptr));
  ASSERT_TRUE(pool->init_pool(2, false));
  buffer->get_data_ptr()->size = sizeof(memory) - 1;
  EXPECT_FALSE(pool->vertices_to_gpu_buffer(&renderer, buffer));
  EXPECT_FALSE(pool->vertices_from_gpu_buffer(&renderer, buffer));
  buffer->get_data_ptr()->size = sizeof(memory);
  renderer.answer_pointer("gpu_buffer_map", nullptr);
  EXPECT_FALSE(pool->vertices_to_gpu_buffer(&renderer, buffer));
  EXPECT_FALSE(pool->vertices_from_gpu_buffer(&renderer, buffer));
  ASSERT_TRUE(pool->init_pool(2, true));
  EXPECT_FALSE(pool->vertices_to_gpu_buffer(&renderer, buffer));
  EXPECT_FALSE(pool->vertices_from_gpu_buffer(&renderer, buffer));
}

TEST_F(VertexPoolBuffer, ExchangeWithoutARendererIsTrueAndCopiesNothing) {
  ASSERT_TRUE(pool->init_pool(2, false));
  pool->set_vertex_position(0, vec4(1, 2, 3, 4));
  EXPECT_TRUE(pool->vertices_from_gpu_buffer(nullptr, buffer));
  EXPECT_TRUE(pool->vertices_to_gpu_buffer(nullptr, buffer));
  EXPECT_EQ(pool->get_vertex_position(0), vec4(1, 2, 3, 4));
}

}  // namespace
}  // namespace orv
