#include <orv/geometry/polyline_wide_line.h>

#include <orv/geometry/polyline.h>
#include <orv/gpu/gpu_program.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/gpu/gpu_program_mgr.h>
#include <orv/gpu/material.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/held.h"
#include "support/log_capture.h"
#include "support/recording_renderer.h"

namespace orv {
namespace {

using test::Held;
using test::RecordingRenderer;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

const vec4 RED(1, 0, 0, 1);
const vec4 GREEN(0, 1, 0, 1);

class WideLine : public testing::Test {
 protected:
  PolylineWideLine& state() { return *line->get_wideline(); }
  PolylineData& data() { return *line->get_polyline_data(); }

  RecordingRenderer renderer;
  Held<Polyline> line;
};

TEST_F(WideLine, FreshStateHasNoProgramAndNoPoints) {
  EXPECT_EQ(state().program, nullptr);
  EXPECT_EQ(state().line_width, 1.0f);
  EXPECT_EQ(state().points, nullptr);
  EXPECT_EQ(state().num_vertices, 0);
  EXPECT_EQ(state().num_points, 0);
}

TEST_F(WideLine, InitializeMakesVerticesPointsAndProgram) {
  EXPECT_TRUE(line->wideline_initialize(&renderer, 5, 3.0f));
  EXPECT_EQ(line->get_num_vertices(nullptr), 5u);
  EXPECT_EQ(data().get_primitive_type(), PRIMITIVE_LINE_STRIP_ADJACENCY);
  ASSERT_NE(state().points, nullptr);
  for (int i = 0; i < 7; ++i) EXPECT_EQ(state().points[i], vec4(0, 0, 0, 1));
  ASSERT_NE(state().program, nullptr);
  EXPECT_STREQ(state().program->get_name(), "vrn_wideline_program");
  EXPECT_EQ(state().line_width, 3.0f);
  EXPECT_EQ(renderer.count("gpu_shader_load"), 3);
  EXPECT_TRUE(GpuProgramMgr::get()->has_resource(state().program));
}

TEST_F(WideLine, ShadersTakeColorsFromTheFirstTwoInputsAndDepthZero) {
  ASSERT_TRUE(line->wideline_initialize(&renderer, 5, 3.0f));
  const auto source = [&](GPU_SHADER_TYPE type) {
    return std::string(state().program->get_shader_source_code(type));
  };
  EXPECT_EQ(source(GPU_SHADER_VERTEX),
            "#version 150\n"
            "in vec4 orvex_Position;\n"
            "in vec4 orvex_Color;\n"
            "out vec4 Vertex_Color;\n"
            "uniform mat4 orvex_ModelViewProjectionMatrix;\n"
            "void main()\n"
            "{\n"
            "  gl_Position = orvex_ModelViewProjectionMatrix * orvex_Position;\n"
            "  Vertex_Color = orvex_Color;\n"
            "}");
  EXPECT_EQ(source(GPU_SHADER_GEOMETRY),
            "#version 150\n"
            "uniform vec4 orvex_Viewport;\n"
            "uniform float line_width;\n"
            "layout (lines_adjacency) in;\n"
            "layout (triangle_strip,max_vertices=4) out;\n"
            "in vec4 Vertex_Color[];\n"
            "out vec4 vcolor;\n"
            "out vec2 vtex;\n"
            "vec2 screen_space(vec4 vertex, vec2 screen_dim)\n"
            "{ return vec2(vertex.xy / vertex.w) * screen_dim; }\n"
            "void main( void )\n"
            "{\n"
            "  vec2 screen_size = orvex_Viewport.zw;\n"
            "  vec2 inPosition = screen_space(gl_in[1].gl_Position, screen_size);\n"
            "  vec2 outPosition = screen_space(gl_in[2].gl_Position, screen_size);\n"
            "  vec2 lineDir = normalize(outPosition - inPosition);\n"
            "  vec2 perp = vec2(-lineDir.y, lineDir.x) * line_width;\n"
            "  gl_Position = vec4((inPosition + perp) / screen_size, 0.0, 1.0);\n"
            "  vtex = vec2(0, 0);\n"
            "  vcolor = Vertex_Color[0];\n"
            "  EmitVertex();\n"
            "  gl_Position = vec4((inPosition - perp) / screen_size, 0.0, 1.0);\n"
            "  vtex = vec2(0, 1);\n"
            "  vcolor = Vertex_Color[0];\n"
            "  EmitVertex();\n"
            "  gl_Position = vec4((outPosition + perp) / screen_size, 0.0, 1.0);\n"
            "  vtex = vec2(0, 0);\n"
            "  vcolor = Vertex_Color[1];\n"
            "  EmitVertex();\n"
            "  gl_Position = vec4((outPosition - perp) / screen_size, 0.0, 1.0);\n"
            "  vtex = vec2(0, 1);\n"
            "  vcolor = Vertex_Color[1];\n"
            "  EmitVertex();\n"
            "  EndPrimitive();\n"
            "}");
  EXPECT_EQ(source(GPU_SHADER_PIXEL),
            "#version 150\n"
            "in vec4 vcolor;\n"
            "in vec2 vtex;\n"
            "out vec4 FragColor;\n"
            "void main()\n"
            "{ FragColor = vcolor; }\n");
}

TEST_F(WideLine, WithoutARendererThereIsNoProgram) {
  EXPECT_TRUE(line->wideline_initialize(nullptr, 5, 3.0f));
  EXPECT_EQ(state().program, nullptr);
  EXPECT_EQ(state().line_width, 3.0f);
  EXPECT_FALSE(line->wideline_initialize_gpu_program(nullptr));
  EXPECT_FALSE(line->wideline_bind_gpu_program(&renderer));
  EXPECT_FALSE(line->wideline_set_line_width(&renderer, 2.0f));
  EXPECT_EQ(state().line_width, 2.0f) << "stored all the same";
}

TEST_F(WideLine, RefusedProgramLeavesNone) {
  const unsigned int before = GpuProgramMgr::get()->get_num_resources();
  renderer.answer("gpu_shader_load", 0);
  EXPECT_FALSE(line->wideline_initialize_gpu_program(&renderer));
  EXPECT_EQ(state().program, nullptr);
  EXPECT_TRUE(line->wideline_initialize(&renderer, 5, 3.0f)) << "the line is there";
  EXPECT_EQ(state().program, nullptr);
  EXPECT_FALSE(line->wideline_set_line_width(&renderer, 2.0f));
  EXPECT_EQ(GpuProgramMgr::get()->get_num_resources(), before);
}

TEST_F(WideLine, LineWidthGoesToTheProgramAndTheCurrentOneComesBack) {
  ASSERT_TRUE(line->wideline_initialize_gpu_program(&renderer));
  const Held<GpuProgram> other;
  renderer.label(state().program->get_data_ptr(), "wide");
  renderer.label(other->get_data_ptr(), "other");
  renderer.set_current_program(other->get_data_ptr());
  renderer.clear();
  EXPECT_TRUE(line->wideline_set_line_width(&renderer, 4.0f));
  EXPECT_THAT(renderer.calls(), ElementsAre("get_current_gpu_program()", "gpu_program_bind(wide)",
                                            "gpu_program_set_uniform_1f(wide, \"line_width\", 4)",
                                            "gpu_program_bind(other)"));
}

TEST_F(WideLine, LineWidthWithoutARendererWaitsInTheRecord) {
  ASSERT_TRUE(line->wideline_initialize_gpu_program(&renderer));
  renderer.clear();
  EXPECT_TRUE(line->wideline_set_line_width(nullptr, 4.0f));
  EXPECT_THAT(renderer.calls(), ElementsAre());
  const GpuProgramUniform* uniform = state().program->get_data_ptr()->find_uniform("line_width");
  ASSERT_NE(uniform, nullptr);
}

TEST_F(WideLine, NothingIsSetWhereTheProgramDoesNotBind) {
  ASSERT_TRUE(line->wideline_initialize_gpu_program(&renderer));
  renderer.answer("gpu_program_bind", 0);
  EXPECT_FALSE(line->wideline_set_line_width(&renderer, 4.0f));
  EXPECT_FALSE(line->wideline_bind_gpu_program(&renderer));
  EXPECT_EQ(renderer.count("gpu_program_set_uniform_1f"), 0);
}

TEST_F(WideLine, DrawingBindsTheProgramBehindTheMaterialAndUnbindsIt) {
  ASSERT_TRUE(line->wideline_initialize(&renderer, 5, 3.0f));
  renderer.label(state().program->get_data_ptr(), "wide");
  renderer.clear();
  line->_render(&renderer);
  EXPECT_EQ(renderer.calls().front(), "gpu_program_bind(wide)");
  EXPECT_EQ(renderer.calls().back(), "gpu_program_bind(null)");
  renderer.clear();
  const Held<Polyline> plain;
  plain->_render(&renderer);
  EXPECT_EQ(renderer.count("gpu_program_bind"), 0) << "the next one draws without it";
}

TEST_F(WideLine, ProgramOfTheMaterialGivesWayToTheThickLine) {
  ASSERT_TRUE(line->wideline_initialize(&renderer, 5, 3.0f));
  const Held<GpuProgram> surface;
  auto* material = new Material;
  material->set_gpu_program(surface);
  line->add_material(material, nullptr);
  renderer.label(state().program->get_data_ptr(), "wide");
  renderer.label(surface->get_data_ptr(), "surface");
  renderer.clear();
  line->_render(&renderer);
  std::vector<std::string> binds;
  for (const std::string& call : renderer.calls()) {
    if (call.find("gpu_program_bind(") == 0 || call.find("geometry_vbo_draw") == 0) {
      binds.push_back(call);
    }
  }
  ASSERT_EQ(binds.size(), 5u);
  EXPECT_EQ(binds[0], "gpu_program_bind(surface)");
  EXPECT_EQ(binds[1], "gpu_program_bind(wide)");
  EXPECT_THAT(binds[2], HasSubstr("geometry_vbo_draw"));
  EXPECT_EQ(binds.back(), "gpu_program_bind(null)");
}

TEST_F(WideLine, CleanupReleasesTheProgramThroughItsManager) {
  const unsigned int before = GpuProgramMgr::get()->get_num_resources();
  ASSERT_TRUE(line->wideline_initialize(&renderer, 5, 3.0f));
  EXPECT_EQ(GpuProgramMgr::get()->get_num_resources(), before + 1);
  EXPECT_TRUE(line->wideline_initialize(&renderer, 6, 3.0f)) << "in place of the first";
  EXPECT_EQ(GpuProgramMgr::get()->get_num_resources(), before + 1);
  EXPECT_TRUE(line->_cleanup(&renderer));
  EXPECT_EQ(state().program, nullptr);
  EXPECT_EQ(GpuProgramMgr::get()->get_num_resources(), before);
  EXPECT_TRUE(line->_cleanup(&renderer)) << "once more";
}

TEST_F(WideLine, ProgramOutlivesItsManagersList) {
  ASSERT_TRUE(line->wideline_initialize(&renderer, 5, 3.0f));
  GpuProgramMgr::get()->release_all_resources(&renderer, nullptr);
  EXPECT_STREQ(state().program->get_name(), "vrn_wideline_program");
  EXPECT_TRUE(line->_cleanup(&renderer));
}

TEST_F(WideLine, DestroyedWithoutCleanupLeavesTheProgramToTheManager) {
  const unsigned int before = GpuProgramMgr::get()->get_num_resources();
  {
    Polyline local;
    ASSERT_TRUE(local.wideline_initialize(&renderer, 5, 3.0f));
  }
  EXPECT_EQ(GpuProgramMgr::get()->get_num_resources(), before + 1);
  GpuProgramMgr::get()->release_all_resources(&renderer, nullptr);
}

// ---- points ----

TEST_F(WideLine, FirstPointGivesMinusOneAndWritesNoVertex) {
  ASSERT_TRUE(line->wideline_initialize(nullptr, 6, 1.0f));
  const int range = data().get_draw_count();
  EXPECT_EQ(line->wideline_add_point(vec4(1, 2, 3, 1), RED), -1);
  EXPECT_EQ(state().num_points, 1);
  EXPECT_EQ(state().num_vertices, 0);
  EXPECT_EQ(data().get_draw_count(), range);
  for (unsigned int i = 0; i < 6; ++i) EXPECT_EQ(line->get_vertex_position(i), vec4());
}

TEST_F(WideLine, SecondPointGivesTwoWithADrawRangeOfFourVertices) {
  ASSERT_TRUE(line->wideline_initialize(nullptr, 6, 1.0f));
  line->wideline_add_point(vec4(1, 0, 0, 1), RED);
  EXPECT_EQ(line->wideline_add_point(vec4(3, 1, 0, 1), GREEN), 2);
  EXPECT_EQ(state().num_vertices, 3);
  EXPECT_EQ(data().get_draw_start(), 0);
  EXPECT_EQ(data().get_draw_count(), 4);
  EXPECT_EQ(line->get_vertex_position(0), vec4(-1, -1, 0, 1)) << "first point's reflection";
  EXPECT_EQ(line->get_vertex_position(1), vec4(1, 0, 0, 1));
  EXPECT_EQ(line->get_vertex_position(2), vec4(3, 1, 0, 1));
  EXPECT_EQ(line->get_vertex_position(3), vec4(-3, -1, 0, 1)) << "around the slot behind the end";
  for (unsigned int i = 0; i < 4; ++i) EXPECT_EQ(line->get_vertex_color(i), GREEN);
}

TEST_F(WideLine, FurtherPointsFollowOneByOne) {
  ASSERT_TRUE(line->wideline_initialize(nullptr, 6, 1.0f));
  line->wideline_add_point(vec4(1, 0, 0, 1), RED);
  line->wideline_add_point(vec4(2, 0, 0, 1), RED);
  EXPECT_EQ(line->wideline_add_point(vec4(3, 0, 0, 1), GREEN), 3);
  EXPECT_EQ(data().get_draw_count(), 5);
  EXPECT_EQ(line->get_vertex_position(3), vec4(3, 0, 0, 1));
  EXPECT_EQ(line->get_vertex_position(4), vec4(-3, 0, 0, 1));
}

TEST_F(WideLine, ReflectionAfterAResetReadsStalePoints) {
  ASSERT_TRUE(line->wideline_initialize(nullptr, 8, 1.0f));
  for (int i = 0; i < 4; ++i) line->wideline_add_point(vec4(10, 20, 30, 1), RED);
  EXPECT_TRUE(line->wideline_reset_points());
  EXPECT_EQ(state().num_points, 0);
  EXPECT_EQ(state().num_vertices, 0);
  EXPECT_EQ(data().get_draw_count(), 0);
  line->wideline_add_point(vec4(1, 0, 0, 1), RED);
  EXPECT_EQ(line->wideline_add_point(vec4(2, 0, 0, 1), RED), 2);
  EXPECT_EQ(line->get_vertex_position(3), vec4(18, 40, 60, 1));
}

TEST_F(WideLine, FullPointsGiveMinusOne) {
  ASSERT_TRUE(line->wideline_initialize(nullptr, 2, 1.0f));
  EXPECT_EQ(line->wideline_add_point(vec4(1, 0, 0, 1), RED), -1);
  EXPECT_EQ(line->wideline_add_point(vec4(2, 0, 0, 1), RED), 2);
  EXPECT_EQ(line->wideline_add_point(vec4(3, 0, 0, 1), RED), 3);
  EXPECT_EQ(line->wideline_add_point(vec4(4, 0, 0, 1), RED), 4) << "reads behind the end";
  EXPECT_EQ(line->wideline_add_point(vec4(5, 0, 0, 1), RED), -1);
  EXPECT_EQ(state().num_points, 4);
  EXPECT_EQ(data().get_draw_count(), 6) << "kept as computed; renderers clamp it";
}

TEST_F(WideLine, GrowingTheVerticesAloneDoesNotGrowThePoints) {
  ASSERT_TRUE(line->wideline_initialize(nullptr, 1, 1.0f));
  ASSERT_TRUE(line->alloc_vertex_data(100));
  for (int i = 0; i < 3; ++i) line->wideline_add_point(vec4(1, 2, 3, 1), RED);
  EXPECT_EQ(line->wideline_add_point(vec4(1, 2, 3, 1), RED), -1);
  EXPECT_EQ(state().num_points, 3);
}

TEST_F(WideLine, WithoutPointsNothingIsAdded) {
  EXPECT_EQ(line->wideline_add_point(vec4(), RED), -1);
  EXPECT_FALSE(line->wideline_set_point_attribs(0, vec4(), RED));
  EXPECT_TRUE(line->wideline_reset_points());
}

TEST_F(WideLine, PointAttributesRewriteAVertex) {
  ASSERT_TRUE(line->wideline_initialize(nullptr, 3, 1.0f));
  EXPECT_TRUE(line->wideline_set_point_attribs(2, vec4(7, 8, 9, 1), GREEN));
  EXPECT_EQ(line->get_vertex_position(2), vec4(7, 8, 9, 1));
  EXPECT_EQ(line->get_vertex_color(2), GREEN);
  EXPECT_FALSE(line->wideline_set_point_attribs(3, vec4(), GREEN));
}

TEST_F(WideLine, FailedAllocationLeavesNoPoints) {
  const test::LogCapture log(LOG_LEVEL_ERROR);
  EXPECT_FALSE(line->wideline_initialize(nullptr, 0, 1.0f));
  EXPECT_FALSE(line->wideline_initialize(nullptr, 0xFFFFFFFFu, 1.0f));
  EXPECT_EQ(state().points, nullptr);
  EXPECT_EQ(line->wideline_add_point(vec4(), RED), -1);
}

}  // namespace
}  // namespace orv
