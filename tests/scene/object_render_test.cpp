// The drawing side of Object: engine uniforms, tripod and grid.
#include <orv/scene/object.h>

#include <orv/gpu/gpu_program_data.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/held.h"
#include "support/recording_renderer.h"

namespace orv {
namespace {

using test::Held;
using test::RecordingRenderer;
using testing::ElementsAre;
using testing::IsEmpty;

const mat4 PROJECTION(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);
const mat4 VIEW(2, 0, 0, 1, 0, 3, 0, 0, 1, 0, 4, 0, 7, 8, 9, 1);

mat4 value_of(GpuProgramData& program, const char* name) {
  GpuProgramUniform* uniform = program.find_uniform(name);
  return uniform ? mat4(uniform->value_mat4f) : mat4();
}

/// A renderer with two matrices and a viewport that tells the products apart.
class ObjectUniforms : public testing::Test {
 protected:
  void SetUp() override {
    renderer.set_projection_matrix(PROJECTION, true);
    renderer.set_modelview_matrix(VIEW, true);
    renderer.set_viewport(0, 1, 2, 30, 40);
    renderer.clear();
    object.set_position(1, 2, 3);
    model = object.get_absolute_transform();
  }
  RecordingRenderer renderer;
  Object object;
  GpuProgramData program;
  mat4 model;
};

TEST_F(ObjectUniforms, AllSevenAreSet) {
  object._update_automatic_uniforms(&renderer, &program, false);
  EXPECT_EQ(value_of(program, "orvex_ModelViewProjectionMatrix"), PROJECTION * (VIEW * model));
  EXPECT_EQ(value_of(program, "orvex_ModelMatrix"), model);
  EXPECT_EQ(value_of(program, "orvex_ModelViewMatrix"), VIEW * model);
  EXPECT_EQ(value_of(program, "orvex_ViewMatrix"), VIEW);
  EXPECT_EQ(value_of(program, "orvex_ProjectionMatrix"), PROJECTION);
  EXPECT_EQ(value_of(program, "orvex_ViewProjectionMatrix"), PROJECTION * VIEW);
  const GpuProgramUniform* viewport = program.find_uniform("orvex_Viewport");
  ASSERT_NE(viewport, nullptr);
  EXPECT_THAT(viewport->value_f, ElementsAre(1.0f, 2.0f, 30.0f, 40.0f));
  EXPECT_EQ(renderer.count("load_fixed_matrices"), 0);
}

TEST_F(ObjectUniforms, RecordsAreMadeInAFixedOrder) {
  object._update_automatic_uniforms(&renderer, &program, false);
  std::vector<std::string> names;
  for (unsigned int i = 0; i < program.get_num_uniforms(); ++i) {
    if (program.get_uniforms_list()[i]) names.push_back(program.get_uniforms_list()[i]->name);
  }
  EXPECT_THAT(names,
              ElementsAre("orvex_ModelViewProjectionMatrix", "orvex_ModelMatrix",
                          "orvex_ModelViewMatrix", "orvex_ViewMatrix", "orvex_ProjectionMatrix",
                          "orvex_ViewProjectionMatrix", "orvex_Viewport"));
}

TEST_F(ObjectUniforms, WithoutCameraMatricesOnlyTheModelOnesAreSet) {
  object.automatic_uniform_send_camera_matrices(false);
  object._update_automatic_uniforms(&renderer, &program, false);
  EXPECT_NE(program.find_uniform("orvex_ModelViewProjectionMatrix"), nullptr);
  EXPECT_NE(program.find_uniform("orvex_ModelMatrix"), nullptr);
  EXPECT_NE(program.find_uniform("orvex_ModelViewMatrix"), nullptr);
  EXPECT_EQ(program.find_uniform("orvex_ViewMatrix"), nullptr);
  EXPECT_EQ(program.find_uniform("orvex_ProjectionMatrix"), nullptr);
  EXPECT_EQ(program.find_uniform("orvex_ViewProjectionMatrix"), nullptr);
  EXPECT_EQ(program.find_uniform("orvex_Viewport"), nullptr);
  EXPECT_EQ(renderer.count("get_viewport_array"), 0);
}

TEST_F(ObjectUniforms, NamesAreThoseOfTheProgram) {
  program.set_model_matrix_uniform_name("my_model");
  object._update_automatic_uniforms(&renderer, &program, false);
  EXPECT_EQ(value_of(program, "my_model"), model);
  EXPECT_EQ(program.find_uniform("orvex_ModelMatrix"), nullptr);
}

TEST_F(ObjectUniforms, WhatALinkedProgramLacksIsSpared) {
  object._update_automatic_uniforms(&renderer, &program, false);
  for (unsigned int i = 0; i < program.get_num_uniforms(); ++i) {
    if (program.get_uniforms_list()[i]) program.get_uniforms_list()[i]->location = 3;
  }
  program.find_uniform("orvex_ViewMatrix")->location = -1;
  program.find_uniform("orvex_Viewport")->location = -1;
  program._uniforms_optimization_ok();
  renderer.clear();
  renderer.set_modelview_matrix(mat4(), true);
  object._update_automatic_uniforms(&renderer, &program, false);
  EXPECT_EQ(value_of(program, "orvex_ViewMatrix"), VIEW);
  EXPECT_EQ(value_of(program, "orvex_ModelViewMatrix"), model);
  EXPECT_EQ(renderer.count("get_viewport_array"), 0);
  program._uniforms_optimization_dirty();
  object._update_automatic_uniforms(&renderer, &program, false);
  EXPECT_EQ(value_of(program, "orvex_ViewMatrix"), mat4());
  EXPECT_EQ(renderer.count("get_viewport_array"), 1);
}

TEST_F(ObjectUniforms, FixedMatricesAreLoadedWhenAskedForOrWithoutAProgram) {
  object._update_automatic_uniforms(&renderer, &program, true);
  EXPECT_EQ(renderer.count("load_fixed_matrices"), 1);
  EXPECT_EQ(renderer.last_matrix("load_fixed_matrices"), PROJECTION);
  EXPECT_NE(program.find_uniform("orvex_ModelMatrix"), nullptr);
  renderer.clear();
  object._update_automatic_uniforms(&renderer, nullptr, false);
  EXPECT_THAT(renderer.calls(), ElementsAre("get_projection_matrix()", "get_modelview_matrix()",
                                            "load_fixed_matrices(ptr, ptr, null, null)"));
}

TEST_F(ObjectUniforms, BindingAppliesThem) {
  renderer.label(&program, "program");
  object.bind_gpu_program_uniforms(&renderer, &program, false);
  EXPECT_EQ(renderer.calls().back(), "gpu_program_apply_uniforms(program)");
  EXPECT_NE(program.find_uniform("orvex_ModelMatrix"), nullptr);
}

TEST_F(ObjectUniforms, ApisWithConstantBuffersGetNothing) {
  for (int api : {5, 12}) {
    renderer.use_api_type(static_cast<ORV_API3D>(api));
    object.bind_gpu_program_uniforms(&renderer, &program, true);
  }
  EXPECT_THAT(renderer.calls(), IsEmpty());
  EXPECT_EQ(program.find_uniform("orvex_ModelMatrix"), nullptr);
}

TEST_F(ObjectUniforms, NullRendererDoesNothing) {
  object.bind_gpu_program_uniforms(nullptr, &program, true);
  object._update_automatic_uniforms(nullptr, &program, true);
  object._update_automatic_uniforms_gpu_buffer(nullptr, &program);
  EXPECT_EQ(program.find_uniform("orvex_ModelMatrix"), nullptr);
  EXPECT_EQ(object.get_gpu_program_model_view_params().model_view, mat4());
}

TEST_F(ObjectUniforms, BufferRouteFillsTheBlockWithTheModelViewTwice) {
  object._update_automatic_uniforms_gpu_buffer(&renderer, &program);
  const GpuProgramModelViewParams& params = object.get_gpu_program_model_view_params();
  EXPECT_EQ(params.model_view_projection, PROJECTION * (VIEW * model));
  EXPECT_EQ(params.model_view, VIEW * model);
  EXPECT_EQ(params.model_view_2, VIEW * model);
  EXPECT_EQ(params.view, VIEW);
  EXPECT_EQ(params.projection, PROJECTION);
  EXPECT_EQ(params.view_projection, PROJECTION * VIEW);
  EXPECT_EQ(program.find_uniform("orvex_ModelMatrix"), nullptr);
}

TEST_F(ObjectUniforms, BufferRouteLeavesTheCameraMatricesWhenSwitchedOff) {
  object.automatic_uniform_send_camera_matrices(false);
  object._update_automatic_uniforms_gpu_buffer(&renderer, &program);
  const GpuProgramModelViewParams& params = object.get_gpu_program_model_view_params();
  EXPECT_EQ(params.model_view, VIEW * model);
  EXPECT_EQ(params.view, mat4());
  EXPECT_EQ(params.projection, mat4());
  EXPECT_EQ(params.view_projection, mat4());
}

// ---- tripod ---------------------------------------------------------------------------------

TEST(ObjectTripod, DrawsThreeColouredLinesAndPutsTheWidthBack) {
  RecordingRenderer renderer;
  Object object;
  object.render_tripod(&renderer, vec4(2, 3, 4, 1));
  EXPECT_THAT(
      renderer.calls(),
      ElementsAre("set_line_width(2)",
                  "draw_immediate_line((0, 0, 0, 1), (2, 0, 0, 1), (1, 0, 0, 1), (1, 0, 0, 1))",
                  "draw_immediate_line((0, 0, 0, 1), (0, 3, 0, 1), (0, 1, 0, 1), (0, 1, 0, 1))",
                  "draw_immediate_line((0, 0, 0, 1), (0, 0, 4, 1), (0, 0, 1, 1), (0, 0, 1, 1))",
                  "set_line_width(1)"));
  object.render_tripod(nullptr, vec4(2, 3, 4, 1));
}

TEST(ObjectTripod, IsDrawnWithFixedMatricesAndTheProgramIsPutBack) {
  RecordingRenderer renderer;
  GpuProgramData program;
  renderer.label(&program, "program");
  renderer.set_current_program(&program);
  Object object;
  object.display_tripod(&renderer, nullptr);
  const std::vector<std::string>& calls = renderer.calls();
  ASSERT_EQ(calls.size(), 12u);
  EXPECT_EQ(calls[0], "get_current_gpu_program()");
  EXPECT_EQ(calls[1], "gpu_program_unbind(program)");
  EXPECT_EQ(calls[4], "load_fixed_matrices(ptr, ptr, null, null)");
  EXPECT_EQ(calls[5], "gpu_program_apply_uniforms(null)");
  EXPECT_EQ(calls[6], "set_line_width(2)");
  EXPECT_EQ(calls[7],
            "draw_immediate_line((0, 0, 0, 1), (2, 0, 0, 1), (1, 0, 0, 1), (1, 0, 0, 1))");
  EXPECT_EQ(calls[10], "set_line_width(1)");
  EXPECT_EQ(calls[11], "gpu_program_bind(program)");
}

TEST(ObjectTripod, WithoutAProgramNoneIsBoundAgain) {
  RecordingRenderer renderer;
  Object object;
  object.display_tripod(&renderer, nullptr);
  EXPECT_EQ(renderer.count("gpu_program_bind"), 0);
  EXPECT_EQ(renderer.count("draw_immediate_line"), 3);
}

TEST(ObjectTripod, NodeReachesTheChildrenToo) {
  RecordingRenderer renderer;
  Held<Object> parent, child, grandchild;
  parent->add_child(child);
  child->add_child(grandchild);
  parent->display_tripod(&renderer, nullptr);
  EXPECT_EQ(renderer.count("draw_immediate_line"), 3);
  renderer.clear();
  parent->display_tripod(&renderer, parent);
  EXPECT_EQ(renderer.count("draw_immediate_line"), 9);
}

TEST(ObjectTripod, NullRendererDrawsNothing) {
  Object object;
  object.set_display_tripod_state(true, nullptr);
  object.set_display_grid_state(true, nullptr);
  object.display_tripod(nullptr, &object);
  object.display_grid(nullptr, &object);
  object.render(nullptr, nullptr);
  object.render_grid(nullptr, 1, 1, 1, 1, true, true);
}

// ---- grid -----------------------------------------------------------------------------------

TEST(ObjectGrid, DrawsBordersAndAxes) {
  RecordingRenderer renderer;
  Object object;
  object.render_grid(&renderer, 4, 2, 1, 1, true, true);
  EXPECT_THAT(
      renderer.calls(),
      ElementsAre("set_line_width(1)",
                  "draw_immediate_line((-2, 0, -1, 1), (-2, 0, 1, 1), (0.5, 0.5, 0.5, 1), "
                  "(0.5, 0.5, 0.5, 1))",
                  "draw_immediate_line((2, 0, -1, 1), (2, 0, 1, 1), (0.5, 0.5, 0.5, 1), "
                  "(0.5, 0.5, 0.5, 1))",
                  "draw_immediate_line((-2, 0, -1, 1), (2, 0, -1, 1), (0.5, 0.5, 0.5, 1), "
                  "(0.5, 0.5, 0.5, 1))",
                  "draw_immediate_line((-2, 0, 1, 1), (2, 0, 1, 1), (0.5, 0.5, 0.5, 1), "
                  "(0.5, 0.5, 0.5, 1))",
                  "draw_immediate_line((-2, 0, 0, 1), (2, 0, 0, 1), (1, 0, 0, 1), (1, 0, 0, 1))",
                  "draw_immediate_line((0, 0, -1, 1), (0, 0, 1, 1), (0, 0, 1, 1), (0, 0, 1, 1))",
                  "set_line_width(1)"));
}

TEST(ObjectGrid, LinesAndAxesAreSwitchedApart) {
  const struct {
    bool axes, lines;
    int drawn;
  } cases[] = {{false, false, 0}, {true, false, 2}, {false, true, 10}, {true, true, 10}};
  for (const auto& c : cases) {
    RecordingRenderer renderer;
    Object object;
    object.render_grid(&renderer, 4, 4, 4, 4, c.axes, c.lines);
    EXPECT_EQ(renderer.count("draw_immediate_line"), c.drawn) << c.axes << c.lines;
    EXPECT_EQ(renderer.calls().back(), "set_line_width(1)");
  }
}

TEST(ObjectGrid, CountsOfCellsAreBounded) {
  RecordingRenderer renderer;
  Object object;
  object.render_grid(&renderer, 1, 1, 2147483647, -5, false, true);
  EXPECT_EQ(renderer.count("draw_immediate_line"), 4097);
  renderer.clear();
  object.render_grid(&renderer, 1, 1, 0, 0, false, true);
  EXPECT_EQ(renderer.count("draw_immediate_line"), 0);
}

TEST(ObjectGrid, DisplayTakesTheParametersAndPutsTheProgramBack) {
  RecordingRenderer renderer;
  GpuProgramData program;
  renderer.label(&program, "program");
  renderer.set_current_program(&program);
  Object object;
  object.set_grid_params(8, 6, 3, 1, false, true);
  object.display_grid(&renderer, nullptr);
  EXPECT_EQ(renderer.calls()[1], "gpu_program_unbind(program)");
  EXPECT_EQ(renderer.count("load_fixed_matrices"), 1);
  EXPECT_EQ(renderer.count("draw_immediate_line"), 6);
  EXPECT_EQ(renderer.calls().back(), "gpu_program_bind(program)");
}

TEST(ObjectGrid, IsTenByTenAtFirst) {
  RecordingRenderer renderer;
  Object object;
  object.display_grid(&renderer, nullptr);
  // Eleven lines each way, of which the axes replace the middle ones.
  EXPECT_EQ(renderer.count("draw_immediate_line"), 22);
  EXPECT_EQ(renderer.calls()[7],
            "draw_immediate_line((-5, 0, -5, 1), (-5, 0, 5, 1), (0.5, 0.5, 0.5, 1), "
            "(0.5, 0.5, 0.5, 1))");
}

TEST(ObjectGrid, RenderDrawsGridThenTripodWhenSwitchedOn) {
  RecordingRenderer renderer;
  Object object;
  object.set_grid_params(2, 2, 0, 0, true, false);
  object.render(&renderer, nullptr);
  EXPECT_THAT(renderer.calls(), IsEmpty());
  object.set_display_tripod_state(true, nullptr);
  object.render(&renderer, nullptr);
  EXPECT_EQ(renderer.count("draw_immediate_line"), 3);
  renderer.clear();
  object.set_display_grid_state(true, nullptr);
  object.render(&renderer, nullptr);
  EXPECT_EQ(renderer.count("draw_immediate_line"), 5);
  std::vector<std::string> widths;
  for (const std::string& call : renderer.calls()) {
    if (call.rfind("set_line_width", 0) == 0) widths.push_back(call);
  }
  EXPECT_THAT(widths, ElementsAre("set_line_width(1)", "set_line_width(1)", "set_line_width(2)",
                                  "set_line_width(1)"));
}

}  // namespace
}  // namespace orv
