// Plots, lights and splines as real OpenGL draws them.
#include <orv/visual/graph2d.h>

#include <orv/math/mat4.h>
#include <orv/visual/mad_led_bar.h>
#include <orv/visual/mini_spline.h>

#include "render/opengl/gl_fixture.h"
#include "support/held.h"

namespace orv::test {
namespace {

class PlotGlTest : public GlTest {
 protected:
  void SetUp() override {
    GlTest::SetUp();
    if (IsSkipped()) return;
    renderer.set_viewport(0, 0, 0, 64, 64);
  }
  /// One unit is a pixel; the middle of the window is the origin. Half a unit aside, so that whole
  /// places are middles of pixels.
  void use_pixels() {
    mat4 projection;
    projection.buildRHOrthographicProjectionMatrix(-32.5f, 31.5f, -32.5f, 31.5f, -1.0f, 1.0f);
    renderer.set_projection_matrix(projection, true);
    renderer.set_modelview_matrix(mat4(), true);
  }
};

using Graph2dGlTest = PlotGlTest;
using MadLedBarGlTest = PlotGlTest;
using MiniSplineGlTest = PlotGlTest;

TEST_P(Graph2dGlTest, AxesAndCurvesStandInTheViewport) {
  use_pixels();
  const Held<Graph2d> graph;
  graph->set_viewport(0, 0, 64, 64);
  graph->set_x_axis_positions(vec4(8, 16, 0, 1), vec4(56, 16, 0, 1));
  graph->set_y_axis_positions(vec4(8, 16, 0, 1), vec4(8, 60, 0, 1));
  graph->set_x_axis_color(vec4(1, 0, 0, 1), vec4(1, 0, 0, 1));
  graph->set_y_axis_color(vec4(0, 0, 1, 1), vec4(0, 0, 1, 1));
  graph->create_curve(48);
  graph->set_curve_color(0, 0, 1, 0, 1);
  // As many old values again, which are out of sight.
  for (int i = 0; i < 48; ++i) graph->add_curve_scalar(0, 3.0f);
  for (int i = 0; i < 48; ++i) graph->add_curve_scalar(0, 20.0f);
  graph->render(&renderer, nullptr);
  EXPECT_EQ(context.pixel(30, 16), RED);
  EXPECT_EQ(context.pixel(8, 40), BLUE);
  EXPECT_EQ(context.pixel(10, 36), GREEN) << "16 and 20";
  EXPECT_EQ(context.pixel(50, 36), GREEN);
  EXPECT_EQ(context.pixel(30, 19), BLACK) << "old values";
  EXPECT_EQ(context.pixel(6, 16), BLACK);

  for (int i = 0; i < 5; ++i) graph->add_curve_scalar(0, 30.0f);
  clear();
  graph->render(&renderer, nullptr);
  EXPECT_EQ(context.pixel(48, 36), GREEN);
  EXPECT_EQ(context.pixel(53, 46), GREEN) << "the newest values";
  EXPECT_EQ(context.pixel(53, 36), BLACK);
  graph->_cleanup(&renderer);
}

TEST_P(Graph2dGlTest, CurvesWithFewValuesEndAtTheNewest) {
  use_pixels();
  const Held<Graph2d> graph;
  graph->set_plot_range(vec4(-32, 4, 0, 1), vec4(32, 4, 0, 1));
  graph->create_curve(64);
  graph->set_curve_color(0, 0, 1, 0, 1);
  for (int i = 0; i < 32; ++i) graph->add_curve_scalar(0, 6.0f);
  EXPECT_TRUE(graph->draw_curve(&renderer, 0));
  EXPECT_EQ(context.pixel(16, 42), GREEN);
  EXPECT_EQ(context.pixel(40, 42), BLACK);
  EXPECT_EQ(context.pixel(32, 38), BLACK) << "no line to the origin";
  graph->_cleanup(&renderer);
}

TEST_P(MadLedBarGlTest, LightsStandInARow) {
  use_pixels();
  const Held<MadLedBar> bar;
  ASSERT_TRUE(bar->initialize(vec3(-32, 0, 0), vec3(32, 0, 0), 4));
  bar->set_led_color(1, 1, 0, 0, 1);
  bar->set_led_color(3, vec4(0, 1, 0, 1));
  bar->render(&renderer, nullptr);
  const Pixel dark = {51, 51, 51, 255};
  EXPECT_EQ(context.pixel(0, 32), dark);
  EXPECT_EQ(context.pixel(16, 32), RED);
  EXPECT_EQ(context.pixel(32, 32), dark);
  EXPECT_EQ(context.pixel(48, 32), GREEN);
  EXPECT_EQ(context.pixel(63, 32), BLACK) << "a step short of the end";
  EXPECT_EQ(context.pixel(24, 32), BLACK);
  bar->_cleanup(&renderer);
}

TEST_P(MadLedBarGlTest, SizeReachesTheProgram) {
  use_pixels();
  GpuProgramData program;
  load_program(&program,
               "ATTRIB vec4 orvex_Position; ATTRIB vec4 orvex_Color; OUT vec4 color;\n"
               "uniform mat4 orvex_ModelViewProjectionMatrix;\n"
               "void main() { color = orvex_Color;\n"
               "  gl_Position = orvex_ModelViewProjectionMatrix * orvex_Position; }",
               "IN vec4 color; uniform float point_size;\n"
               "void main() { pixel = vec4(color.rgb, 1.0) * point_size * 0.1; }");
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  const Held<MadLedBar> bar;
  ASSERT_TRUE(bar->initialize(vec3(), vec3(8, 0, 0), 1, 10.0f));
  bar->set_led_color(0, 0, 0, 1, 1);
  bar->render(&renderer, nullptr);
  EXPECT_EQ(center(), BLUE);
  bar->_cleanup(&renderer);
  renderer.gpu_program_unload(&program);
}

TEST_P(MiniSplineGlTest, LineGoesThroughItsKeyframes) {
  use_pixels();
  const Held<MiniSpline> spline;
  spline->add_keyframe(0.0f, -20, -10, 0);
  spline->add_keyframe(2.0f, 0, 10, 0);
  spline->add_keyframe(3.0f, 20, -10, 0);
  spline->set_vertices_color(0, 1, 0, 1, nullptr);
  spline->set_render_state(false, nullptr);
  spline->render(&renderer, nullptr);
  EXPECT_EQ(context.pixel(32, 42), GREEN) << "drawn whatever its render state";
  EXPECT_EQ(context.pixel(12, 22), GREEN);
  EXPECT_EQ(context.pixel(32, 30), BLACK);

  ASSERT_TRUE(spline->set_keyframe(1, 2.0f, 0, 20, 0));
  clear();
  spline->render(&renderer, nullptr);
  EXPECT_EQ(context.pixel(32, 52), GREEN);
  EXPECT_EQ(context.pixel(32, 42), BLACK);
  spline->_cleanup(&renderer);
}

ORV_BOTH_PROFILES(Graph2dGlTest);
ORV_BOTH_PROFILES(MadLedBarGlTest);
ORV_BOTH_PROFILES(MiniSplineGlTest);

}  // namespace
}  // namespace orv::test
