#include <orv/geometry/polyline.h>

#include <orv/gpu/gpu_buffer_data.h>
#include <orv/gpu/gpu_program.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/gpu/material.h>
#include <orv/gpu/texture.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "support/held.h"
#include "support/log_capture.h"
#include "support/recording_renderer.h"

namespace orv {
namespace {

using test::Held;
using test::LogCapture;
using test::RecordingRenderer;
using testing::Contains;
using testing::ElementsAre;

// ---- data ----

TEST(Polyline, StartsAsALineStripWithoutVertices) {
  const Held<Polyline> line;
  EXPECT_EQ(line->get_type(), NODE_TYPE_POLYLINE);
  EXPECT_TRUE(line->is_type_of(NODE_TYPE_OBJECT));
  ASSERT_NE(line->get_polyline_data(), nullptr);
  EXPECT_EQ(line->get_polyline_data()->get_primitive_type(), PRIMITIVE_LINE_STRIP);
  EXPECT_EQ(line->get_polyline_data()->get_ref(), 1);
  EXPECT_EQ(line->get_num_vertices(nullptr), 0u);
  EXPECT_TRUE(line->get_build_state());
}

TEST(Polyline, InitializeChoosesThePrimitiveByMode) {
  struct Row {
    int mode;
    PRIMITIVE_TYPE primitive;
  };
  const Row rows[] = {
      {0, PRIMITIVE_LINES},           {1, PRIMITIVE_LINE_STRIP},           {2, PRIMITIVE_LINE_LOOP},
      {3, PRIMITIVE_LINES_ADJACENCY}, {4, PRIMITIVE_LINE_STRIP_ADJACENCY}, {-1, PRIMITIVE_LINES}};
  for (const Row& row : rows) {
    const Held<Polyline> line;
    EXPECT_TRUE(line->initialize(3, static_cast<LINE_RENDER_MODE>(row.mode)));
    EXPECT_EQ(line->get_polyline_data()->get_primitive_type(), row.primitive) << row.mode;
    EXPECT_EQ(line->get_num_vertices(nullptr), 3u);
  }
}

TEST(Polyline, InitializeWithModeNineDrawsLines) {
  const Held<Polyline> line;
  EXPECT_TRUE(line->initialize(3, static_cast<LINE_RENDER_MODE>(9)));
  EXPECT_EQ(line->get_polyline_data()->get_primitive_type(), PRIMITIVE_LINES);
}

TEST(Polyline, InitializeV2TakesAnyPrimitive) {
  const Held<Polyline> line;
  EXPECT_TRUE(line->initialize_v2(2, PRIMITIVE_POINTS));
  EXPECT_EQ(line->get_polyline_data()->get_primitive_type(), PRIMITIVE_POINTS);
}

TEST(Polyline, InitializeThatFailsKeepsThePrimitive) {
  const Held<Polyline> line;
  const PRIMITIVE_TYPE before = line->get_polyline_data()->get_primitive_type();
  ASSERT_NE(before, PRIMITIVE_POINTS);
  EXPECT_FALSE(line->initialize_v2(0, PRIMITIVE_POINTS));
  EXPECT_EQ(line->get_polyline_data()->get_primitive_type(), before);
}

TEST(Polyline, AllocationFailuresAreReported) {
  const LogCapture log(LOG_LEVEL_ERROR);
  const Held<Polyline> line;
  EXPECT_FALSE(line->alloc_vertex_data(0));
  EXPECT_FALSE(line->initialize(0, LINE_RENDER_LINES));
  EXPECT_FALSE(line->initialize(0xFFFFFFFFu, LINE_RENDER_LINES));
  EXPECT_EQ(log.count("num_vertices is 0"), 2);
  EXPECT_EQ(log.count("std::bad_alloc"), 1);
}

TEST(Polyline, ColoringWhatCouldNotBeAllocatedIsNoWork) {
  const Held<Polyline> polyline;
  ASSERT_FALSE(polyline->alloc_vertex_data(0xFFFFFFFFu));
  const auto start = std::chrono::steady_clock::now();
  polyline->set_vertices_color(1.0f, 0.0f, 0.0f, 1.0f, nullptr);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}

TEST(Polyline, SharedDataLivesUntilItsLastHolder) {
  RecordingRenderer renderer;
  const Held<Polyline> first;
  const Held<Polyline> second;
  ASSERT_TRUE(first->initialize(2, LINE_RENDER_LINES));
  EXPECT_FALSE(second->share_polyline_data(&renderer, nullptr));
  EXPECT_TRUE(second->share_polyline_data(&renderer, first));
  EXPECT_EQ(renderer.count("geometry_vbo_destroy"), 1) << "the data of its own";
  PolylineData* data = first->get_polyline_data();
  EXPECT_EQ(second->get_polyline_data(), data);
  EXPECT_EQ(data->get_ref(), 2);
  EXPECT_TRUE(second->share_polyline_data(&renderer, first));
  EXPECT_EQ(data->get_ref(), 2);
  EXPECT_TRUE(first->cleanup_polyline_data(&renderer));
  EXPECT_EQ(data->get_ref(), 1);
  EXPECT_EQ(renderer.count("geometry_vbo_destroy"), 1);
  EXPECT_EQ(second->get_num_vertices(nullptr), 2u);
}

TEST(Polyline, InitDataReplacesTheOldData) {
  const Held<Polyline> line;
  ASSERT_TRUE(line->initialize(2, LINE_RENDER_LINES));
  EXPECT_TRUE(line->init_polyline_data(nullptr));
  EXPECT_EQ(line->get_num_vertices(nullptr), 0u);
  EXPECT_EQ(line->get_polyline_data()->get_primitive_type(), PRIMITIVE_LINE_STRIP);
}

TEST(Polyline, FreeingKeepsTheRecord) {
  const Held<Polyline> line;
  ASSERT_TRUE(line->initialize(2, LINE_RENDER_LINES));
  PolylineData* data = line->get_polyline_data();
  EXPECT_TRUE(line->free_polyline_data());
  EXPECT_EQ(line->get_polyline_data(), data);
  EXPECT_EQ(line->get_num_vertices(nullptr), 0u);
}

TEST(Polyline, WithoutDataEverythingAnswersNothing) {
  RecordingRenderer renderer;
  const Held<Polyline> line;
  EXPECT_TRUE(line->cleanup_polyline_data(nullptr));
  EXPECT_FALSE(line->free_polyline_data());
  EXPECT_FALSE(line->alloc_vertex_data(2));
  EXPECT_FALSE(line->initialize(2, LINE_RENDER_LINES));
  EXPECT_FALSE(line->set_vertex_position(0, 1, 2, 3));
  EXPECT_FALSE(line->set_vertex_color(0, vec4()));
  EXPECT_EQ(line->get_vertex_position(0), vec4());
  EXPECT_EQ(line->get_vertex_color(0), vec4());
  line->set_vertex_start_offset(1);
  line->set_vertex_end_offset(1);
  EXPECT_EQ(line->get_vertex_start_offset(), 0u);
  EXPECT_EQ(line->get_vertex_end_offset(), 0u);
  line->set_vertices_color(vec4(), line);
  line->set_tessellation_state(true, nullptr);
  EXPECT_EQ(line->map_vertex_buffer(&renderer), nullptr);
  EXPECT_FALSE(line->unmap_vertex_buffer(&renderer));
  EXPECT_EQ(line->get_mapped_vertex_buffer(), nullptr);
  EXPECT_EQ(line->get_renderer_id(), 0);
  EXPECT_FALSE(line->wideline_initialize(&renderer, 4, 1.0f));
  EXPECT_EQ(line->wideline_add_point(vec4(), vec4()), -1);
  line->_render(&renderer);
  line->render_geometry(&renderer);
  EXPECT_EQ(renderer.count("geometry_vbo_draw"), 0);
}

TEST(Polyline, CleanupLetsGoOfDataPointsAndMaterials) {
  RecordingRenderer renderer;
  const Held<Polyline> line;
  line->add_material(new Material, nullptr);
  ASSERT_TRUE(line->wideline_initialize(nullptr, 4, 1.0f));
  EXPECT_TRUE(line->cleanup(&renderer, nullptr));
  EXPECT_EQ(line->get_polyline_data(), nullptr);
  EXPECT_EQ(line->get_wideline()->points, nullptr);
  EXPECT_EQ(line->get_num_materials(), 0u);
  EXPECT_EQ(renderer.count("geometry_vbo_destroy"), 1);
}

// ---- building ----

TEST(Polyline, BuildWithTheDirtyFlagSetDoesNotReachTheObject) {
  const Held<Polyline> line;
  line->bounding_volume_update_from_geometry_set_state(true);
  EXPECT_TRUE(line->_build());
  EXPECT_FALSE(line->get_build_state());
  EXPECT_TRUE(line->bounding_volume_update_from_geometry_get_state()) << "still due";
  EXPECT_TRUE(line->_build());
  EXPECT_FALSE(line->bounding_volume_update_from_geometry_get_state()) << "done by the object";
}

// ---- vertices ----

TEST(Polyline, VerticesKeepFourLanes) {
  const Held<Polyline> line;
  ASSERT_TRUE(line->initialize(4, LINE_RENDER_LINES));
  EXPECT_EQ(line->get_vertex_position(0), vec4(0, 0, 0, 1));
  EXPECT_TRUE(line->set_vertex_position(0, 1, 2, 3));
  EXPECT_TRUE(line->set_vertex_position(1, 1, 2, 3, 4));
  EXPECT_TRUE(line->set_vertex_position(2, vec3(5, 6, 7)));
  EXPECT_TRUE(line->set_vertex_position(3, vec4(5, 6, 7, 8)));
  EXPECT_FALSE(line->set_vertex_position(4, vec4()));
  EXPECT_EQ(line->get_vertex_position(0), vec4(1, 2, 3, 1));
  EXPECT_EQ(line->get_vertex_position(1), vec4(1, 2, 3, 4));
  EXPECT_EQ(line->get_vertex_position(2), vec4(5, 6, 7, 1));
  EXPECT_EQ(line->get_vertex_position(3), vec4(5, 6, 7, 8));
  EXPECT_EQ(line->get_vertex_position(4), vec4(0, 0, 0, 1));
}

TEST(Polyline, ColorsAreSetOneByOneAndAllAtOnce) {
  const Held<Polyline> line;
  const auto child = new Polyline;
  line->add_child(child);
  ASSERT_TRUE(line->initialize(2, LINE_RENDER_LINES));
  ASSERT_TRUE(child->initialize(1, LINE_RENDER_LINES));
  EXPECT_TRUE(line->set_vertex_color(1, vec4(1, 0, 0, 1)));
  EXPECT_FALSE(line->set_vertex_color(2, vec4()));
  EXPECT_EQ(line->get_vertex_color(1), vec4(1, 0, 0, 1));
  line->set_vertices_color(0, 1, 0, 1, nullptr);
  EXPECT_EQ(line->get_vertex_color(0), vec4(0, 1, 0, 1));
  EXPECT_EQ(line->get_vertex_color(1), vec4(0, 1, 0, 1));
  EXPECT_EQ(child->get_vertex_color(0), vec4());
  line->set_vertices_color(vec4(0, 0, 1, 1), line);
  EXPECT_EQ(child->get_vertex_color(0), vec4(0, 0, 1, 1));
}

TEST(Polyline, EndOffsetOfTwoOnTenVerticesFromTheThirdLeavesFive) {
  const Held<Polyline> line;
  ASSERT_TRUE(line->initialize(10, LINE_RENDER_LINE_STRIP));
  line->set_vertex_start_offset(3);
  EXPECT_EQ(line->get_polyline_data()->get_draw_count(), 10) << "the start leaves the count";
  line->set_vertex_end_offset(2);
  EXPECT_EQ(line->get_polyline_data()->get_draw_start(), 3);
  EXPECT_EQ(line->get_polyline_data()->get_draw_count(), 5);
  EXPECT_EQ(line->get_vertex_start_offset(), 3u);
  EXPECT_EQ(line->get_vertex_end_offset(), 2u);
}

TEST(Polyline, OffsetsStopAtTheNumberOfVertices) {
  const Held<Polyline> line;
  ASSERT_TRUE(line->initialize(10, LINE_RENDER_LINE_STRIP));
  line->set_vertex_start_offset(99);
  EXPECT_EQ(line->get_vertex_start_offset(), 10u);
  line->set_vertex_end_offset(0xFFFFFFFFu);
  EXPECT_EQ(line->get_polyline_data()->get_draw_count(), -10) << "kept as it is computed";
  EXPECT_EQ(line->get_vertex_end_offset(), 10u);
}

// ---- drawing ----

TEST(Polyline, GeometryGoesThroughFiveCallsInOrder) {
  RecordingRenderer renderer;
  const Held<Polyline> line;
  renderer.label(line->get_polyline_data(), "data");
  line->render_geometry(&renderer);
  EXPECT_THAT(renderer.calls(),
              ElementsAre("get_current_gpu_program()", "geometry_vbo_create(null, data)",
                          "geometry_vbo_update(data)", "geometry_vbo_bind(data)",
                          "geometry_vbo_draw(data)", "geometry_vbo_unbind(data)"));
}

TEST(Polyline, NullRendererDoesNothing) {
  const Held<Polyline> line;
  line->_render(nullptr);
  line->render_geometry(nullptr);
  EXPECT_EQ(line->map_vertex_buffer(nullptr), nullptr);
  EXPECT_FALSE(line->unmap_vertex_buffer(nullptr));
}

TEST(Polyline, StatesFollowTheProgramWhateverTheApi) {
  RecordingRenderer renderer;
  renderer.use_api_type(ORV_API3D_VULKAN);
  const Held<GpuProgram> program;
  const Held<Polyline> line;
  renderer.set_current_program(program->get_data_ptr());
  for (const bool generic : {false, true}) {
    program->get_data_ptr()->use_generic_vertex_attribs = generic;
    line->_render(&renderer);
    EXPECT_EQ(line->get_use_generic_vertex_attribs_state(), generic);
    EXPECT_EQ(line->get_polyline_data()->get_use_generic_vertex_attribs_state(), generic);
  }
}

TEST(Polyline, TexturesWithoutAProgramSwitchFixedTexturingOnAndOff) {
  RecordingRenderer renderer;
  renderer.use_api_type(ORV_API3D_VULKAN);
  const Held<Polyline> line;
  auto* material = new Material;
  material->add_texture(new Texture);
  line->add_material(material, nullptr);
  line->_render(&renderer);
  EXPECT_THAT(renderer.calls(), Contains("enable_texture_2d(true)"));
  EXPECT_EQ(renderer.calls().back(), "enable_texture_2d(false)");
}

TEST(Polyline, MaterialProgramIsBoundAroundTheGeometry) {
  RecordingRenderer renderer;
  const Held<GpuProgram> program;
  renderer.label(program->get_data_ptr(), "program");
  const Held<Polyline> line;
  auto* material = new Material;
  material->set_gpu_program(program);
  line->add_material(material, nullptr);
  line->_render(&renderer);
  EXPECT_EQ(renderer.calls().front(), "gpu_program_bind(program)");
  EXPECT_EQ(renderer.calls().back(), "gpu_program_bind(null)");
  EXPECT_EQ(renderer.count("geometry_vbo_draw"), 1);
}

TEST(Polyline, TessellationIsAFlagOfTheData) {
  const Held<Polyline> line;
  line->set_tessellation_state(true, nullptr);
  EXPECT_TRUE(line->get_polyline_data()->tessellation);
}

TEST(Polyline, RendererIdIsThatOfTheVertexBuffer) {
  const Held<Polyline> line;
  line->get_polyline_data()->vb()->renderer_id = 7;
  EXPECT_EQ(line->get_renderer_id(), 7);
}

TEST(Polyline, MappingRemembersTheAddress) {
  RecordingRenderer renderer;
  const Held<Polyline> line;
  renderer.label(line->get_polyline_data()->vb(), "vb");
  Vertex memory[2];
  renderer.answer_pointer("gpu_buffer_map", memory);
  EXPECT_EQ(line->map_vertex_buffer(&renderer), memory);
  EXPECT_THAT(renderer.calls(), ElementsAre("gpu_buffer_map(vb, \"GL_WRITE_ONLY\")"));
  EXPECT_EQ(line->get_mapped_vertex_buffer(), memory);
  EXPECT_TRUE(line->unmap_vertex_buffer(&renderer));
  EXPECT_EQ(line->get_mapped_vertex_buffer(), nullptr);
}

}  // namespace
}  // namespace orv
