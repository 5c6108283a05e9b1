#include <orv/gpu/gpu_enums.h>
#include <orv/math/mat4.h>

#include "render/opengl/fake_gl_fixture.h"
#include "support/log_capture.h"

using namespace orv;
using namespace orv::test;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

class StateTest : public FakeGlTest {};

mat4 numbered_matrix() {
  mat4 matrix;
  for (int i = 0; i < 16; ++i) matrix.m[i] = static_cast<float>(i + 1);
  return matrix;
}

constexpr char NUMBERED[] = "[1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16]";

}  // namespace

// ---- starting state ----

TEST_F(StateTest, PipelineStateIsSetInAFixedOrder) {
  start();
  ASSERT_TRUE(renderer.apply_pipeline_state());
  EXPECT_THAT(
      take_changes(),
      ElementsAre("glDisable(GL_MULTISAMPLE)", "glDisable(GL_CULL_FACE)", "glCullFace(GL_BACK)",
                  "glPolygonMode(GL_FRONT_AND_BACK, GL_FILL)", "glFrontFace(GL_CCW)",
                  "glPolygonOffset(0, 0)", "glDisable(GL_POLYGON_OFFSET_FILL)",
                  "glDisable(GL_POLYGON_OFFSET_LINE)", "glDisable(GL_POLYGON_OFFSET_POINT)",
                  "glDisable(GL_SCISSOR_TEST)", "glEnable(GL_DEPTH_TEST)", "glDepthFunc(GL_LESS)",
                  "glDepthMask(GL_TRUE)", "glDisable(GL_STENCIL_TEST)", "glDisable(GL_BLEND)",
                  "glBlendFunc(GL_ONE, GL_ONE)", "glUseProgram(0)",
                  "glPatchParameteri(GL_PATCH_VERTICES, 3)"));
}

TEST_F(StateTest, PipelineStateReadsTheLimitsThatGoWithIt) {
  start();
  renderer.apply_pipeline_state();
  for (const char* question :
       {"glGetIntegerv(GL_MAX_TEXTURE_SIZE, ptr)", "glGetIntegerv(GL_MAX_TEXTURE_IMAGE_UNITS, ptr)",
        "glGetIntegerv(GL_DRAW_BUFFER, ptr)", "glGetIntegerv(GL_MAX_VERTEX_ATTRIBS, ptr)"}) {
    EXPECT_TRUE(gl.called(question)) << question;
  }
}

TEST_F(StateTest, PipelineStateRestoresTheShadowValues) {
  start();
  renderer.set_projection_matrix(numbered_matrix(), false);
  renderer.enable_blending(true);
  renderer.set_depth_func(7);
  renderer.rasterizer_set_cull_enabled(true);
  renderer.rasterizer_apply();
  renderer.apply_pipeline_state();
  const GlShadowState& shadow = renderer.shadow();
  EXPECT_TRUE(shadow.projection_matrix == mat4());
  EXPECT_FALSE(shadow.blending);
  EXPECT_EQ(1, shadow.depth_func);
  EXPECT_TRUE(shadow.rasterizer_applied == Renderer_Rasterizer_State());
  EXPECT_TRUE(shadow.rasterizer_wanted == Renderer_Rasterizer_State());
  EXPECT_TRUE(shadow.depth_test);
  EXPECT_TRUE(shadow.depth_mask);
  EXPECT_FALSE(shadow.scissor_test);
  EXPECT_EQ(RENDERER_BLEND_FACTOR_ONE, shadow.blend_source);
  EXPECT_EQ(RENDERER_BLEND_FACTOR_ONE, shadow.blend_destination);
}

TEST_F(StateTest, PipelineStateLeavesTheMatricesOfTheFixedPipeline) {
  start_core();
  renderer.set_projection_matrix(numbered_matrix(), true);
  renderer.set_modelview_matrix(numbered_matrix(), true);
  renderer.apply_pipeline_state();
  EXPECT_EQ(16.0f, renderer.shadow().fixed_projection[15]);
  EXPECT_EQ(2.0f, renderer.shadow().fixed_modelview[1]);
  renderer.stop();
  ASSERT_TRUE(renderer.start());
  EXPECT_EQ(1.0f, renderer.shadow().fixed_projection[15]) << "a start begins anew";
  EXPECT_EQ(0.0f, renderer.shadow().fixed_modelview[1]);
}

TEST_F(StateTest, PipelineStateTakesTheUsageOptionsBack) {
  start();
  renderer.set_vertex_buffer_usage_options(BUFFER_USAGE_DYNAMIC_DRAW, BUFFER_USAGE_STREAM_DRAW);
  renderer.apply_pipeline_state();
  EXPECT_EQ(0u, renderer.gpu_buffer_get_usage_option(0));
  EXPECT_EQ(0u, renderer.gpu_buffer_get_usage_option(1));
}

// The starting state says so for every window, whatever samples it has.
TEST_F(StateTest, MultisamplingIsOffAtTheStartOfAMultisampledWindow) {
  gl.set_integer(GL_SAMPLES, 4);
  gl.set_integer(GL_SAMPLE_BUFFERS, 1);
  gl.attach(renderer);
  ASSERT_TRUE(renderer.start());
  EXPECT_THAT(gl.calls(), Contains("glDisable(GL_MULTISAMPLE)"));
  EXPECT_THAT(gl.calls(), Not(Contains("glEnable(GL_MULTISAMPLE)")));
}

TEST_F(StateTest, WithoutTessellationNoPatchSizeIsSet) {
  gl.remove_function("glPatchParameteri");
  start(2, 1, false);
  renderer.apply_pipeline_state();
  EXPECT_THAT(gl.calls_of({"glPatchParameteri"}), IsEmpty());
  EXPECT_FALSE(renderer.set_patch_vertices(3));
}

// ---- matrices ----

TEST_F(StateTest, MatricesAreStoredAndLoadedIntoTheFixedPipeline) {
  start();
  renderer.set_projection_matrix(numbered_matrix(), true);
  renderer.set_modelview_matrix(numbered_matrix(), true);
  EXPECT_THAT(
      take(),
      ElementsAre("glMatrixMode(GL_PROJECTION)", std::string("glLoadMatrixf(") + NUMBERED + ")",
                  "glMatrixMode(GL_MODELVIEW)", std::string("glLoadMatrixf(") + NUMBERED + ")"));
  EXPECT_TRUE(renderer.get_projection_matrix() == numbered_matrix());
  EXPECT_TRUE(renderer.get_modelview_matrix() == numbered_matrix());
}

TEST_F(StateTest, MatricesAreStoredAlsoWithoutLoading) {
  start();
  renderer.set_projection_matrix(numbered_matrix(), false);
  renderer.set_modelview_matrix(numbered_matrix(), false);
  EXPECT_THAT(take(), IsEmpty());
  EXPECT_TRUE(renderer.get_projection_matrix() == numbered_matrix());
  EXPECT_TRUE(renderer.get_modelview_matrix() == numbered_matrix());
}

TEST_F(StateTest, CoreContextStoresMatricesAndMakesNoFixedCall) {
  start_core();
  renderer.set_projection_matrix(numbered_matrix(), true);
  renderer.set_modelview_matrix(numbered_matrix(), true);
  EXPECT_THAT(take(), IsEmpty());
  EXPECT_TRUE(renderer.get_projection_matrix() == numbered_matrix());
  EXPECT_EQ(16.0f, renderer.shadow().fixed_projection[15]);
  EXPECT_EQ(2.0f, renderer.shadow().fixed_modelview[1]);
}

// ---- viewport and scissor ----

TEST_F(StateTest, ViewportAndScissor) {
  start();
  renderer.set_viewport(0, 1, 2, 3, 4);
  renderer.set_scissor(0, 5, 6, 7, 8);
  renderer.set_viewport_and_scissor(0, 9, 10, 11, 12);
  renderer.enable_scissor_test(true);
  renderer.enable_scissor_test(false);
  EXPECT_THAT(take(), ElementsAre("glViewport(1, 2, 3, 4)", "glScissor(5, 6, 7, 8)",
                                  "glViewport(9, 10, 11, 12)", "glScissor(9, 10, 11, 12)",
                                  "glEnable(GL_SCISSOR_TEST)", "glDisable(GL_SCISSOR_TEST)"));
}

TEST_F(StateTest, ViewportIsReadFromTheDriverAndNullPointersAreSkipped) {
  start();
  gl.set_integers(GL_VIEWPORT, {10, 20, 300, 200});
  int x = 0, height = 0;
  EXPECT_TRUE(renderer.get_viewport(&x, nullptr, nullptr, &height));
  EXPECT_EQ(10, x);
  EXPECT_EQ(200, height);
  EXPECT_TRUE(renderer.get_viewport(nullptr, nullptr, nullptr, nullptr));
  const int* viewport = renderer.get_viewport_array(0);
  ASSERT_NE(nullptr, viewport);
  EXPECT_THAT(std::vector<int>(viewport, viewport + 4), ElementsAre(10, 20, 300, 200));
}

// ---- colour and depth ----

TEST_F(StateTest, ColorMaskCoversAllChannels) {
  start();
  renderer.set_color_mask(false);
  renderer.set_color_mask(true);
  EXPECT_THAT(take(), ElementsAre("glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE)",
                                  "glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE)"));
}

TEST_F(StateTest, OptionalDepthFunctions) {
  start();
  renderer.set_clip_control(0, 0);
  renderer.set_clip_control(1, 1);
  renderer.set_depth_range(0.25f, 0.75f);
  renderer.set_clear_depth_f(0.5f);
  renderer.set_depth_bounds(0.125f, 0.5f);
  EXPECT_THAT(take(), ElementsAre("glClipControl(GL_LOWER_LEFT, GL_NEGATIVE_ONE_TO_ONE)",
                                  "glClipControl(GL_UPPER_LEFT, GL_ZERO_TO_ONE)",
                                  "glDepthRangef(0.25, 0.75)", "glClearDepthf(0.5)",
                                  "glDepthBounds(0.125, 0.5)"));
}

TEST_F(StateTest, OptionalDepthFunctionsAreNothingWhenAbsent) {
  for (const char* name : {"glClipControl", "glDepthRangef", "glClearDepthf", "glDepthBounds"}) {
    gl.remove_function(name);
  }
  start();
  renderer.set_clip_control(1, 1);
  renderer.set_depth_range(0.0f, 1.0f);
  renderer.set_clear_depth_f(1.0f);
  renderer.set_depth_bounds(0.0f, 1.0f);
  renderer.enable_depth_bounds_test(true);
  EXPECT_THAT(take(), IsEmpty());
}

TEST_F(StateTest, DepthTestMaskAndBounds) {
  start();
  renderer.enable_depth_test(false);
  renderer.enable_depth_test(true);
  renderer.set_depth_mask(false);
  renderer.set_depth_mask(true);
  renderer.enable_depth_bounds_test(true);
  renderer.enable_depth_bounds_test(false);
  EXPECT_THAT(take(), ElementsAre("glDisable(GL_DEPTH_TEST)", "glEnable(GL_DEPTH_TEST)",
                                  "glDepthMask(GL_FALSE)", "glDepthMask(GL_TRUE)",
                                  "glEnable(GL_DEPTH_BOUNDS_TEST_EXT)",
                                  "glDisable(GL_DEPTH_BOUNDS_TEST_EXT)"));
}

TEST_F(StateTest, UnknownDepthFunctionIsLess) {
  start();
  renderer.set_depth_func(99);
  renderer.set_depth_func(7);
  EXPECT_THAT(take(), ElementsAre("glDepthFunc(GL_LESS)", "glDepthFunc(GL_ALWAYS)"));
}

// ---- blending ----

TEST_F(StateTest, BlendingAndItsFactors) {
  start();
  renderer.enable_blending(true);
  renderer.set_blend_func(RENDERER_BLEND_FACTOR_SRC_ALPHA,
                          RENDERER_BLEND_FACTOR_ONE_MINUS_SRC_ALPHA);
  renderer.set_blend_func(static_cast<RENDERER_BLEND_FACTOR>(10), RENDERER_BLEND_FACTOR_ZERO);
  EXPECT_THAT(take(),
              ElementsAre("glEnable(GL_BLEND)", "glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA)",
                          "glBlendFunc(GL_ONE, GL_ZERO)"));
  EXPECT_TRUE(renderer.shadow().blending);
  EXPECT_EQ(10, static_cast<int>(renderer.shadow().blend_source));
}

TEST_F(StateTest, EverySetterMakesItsCallEachTime) {
  start();
  for (int i = 0; i < 3; ++i) {
    renderer.enable_blending(true);
    renderer.set_depth_func(1);
    renderer.set_depth_mask(true);
    renderer.set_viewport(0, 0, 0, 640, 480);
    renderer.rasterizer_apply();
  }
  for (const char* name : {"glDepthFunc", "glDepthMask", "glViewport", "glCullFace", "glFrontFace",
                           "glPolygonMode", "glPolygonOffset"}) {
    EXPECT_EQ(3, gl.count(name)) << name;
  }
  EXPECT_EQ(3, gl.count("glEnable"));
}

// ---- rasterizer ----

TEST_F(StateTest, RasterizerSettersOnlyWriteTheWantedRecord) {
  start();
  renderer.rasterizer_set_cull_enabled(true);
  renderer.rasterizer_set_cull_face(2);
  renderer.rasterizer_set_front_ccw(false);
  renderer.rasterizer_set_polygon_mode(1, 1);
  renderer.rasterizer_set_polygon_offset_enabled(true);
  EXPECT_THAT(take(), IsEmpty());
  EXPECT_TRUE(renderer.shadow().rasterizer_applied == Renderer_Rasterizer_State());
  const Renderer_Rasterizer_State wanted = renderer.shadow().rasterizer_wanted;
  EXPECT_TRUE(wanted.cull_enabled);
  EXPECT_EQ(2, wanted.cull_face);
  EXPECT_FALSE(wanted.front_ccw);
  EXPECT_EQ(1, wanted.polygon_mode);
  EXPECT_EQ(1, wanted.polygon_face);
  EXPECT_TRUE(wanted.polygon_offset_fill_enabled);

  renderer.rasterizer_apply();
  EXPECT_THAT(take(), ElementsAre("glEnable(GL_CULL_FACE)", "glCullFace(GL_FRONT)",
                                  "glFrontFace(GL_CW)", "glPolygonMode(GL_BACK, GL_LINE)",
                                  "glEnable(GL_POLYGON_OFFSET_FILL)", "glPolygonOffset(0, 0)"));
  EXPECT_TRUE(renderer.shadow().rasterizer_applied == wanted);
}

TEST_F(StateTest, PolygonOffsetIsSetAtOnceAndWanted) {
  start();
  renderer.rasterizer_set_polygon_offset(1.5f, 2.0f);
  EXPECT_THAT(take(), ElementsAre("glPolygonOffset(1.5, 2)"));
  EXPECT_EQ(1.5f, renderer.shadow().rasterizer_wanted.polygon_offset_factor);
  EXPECT_EQ(2.0f, renderer.shadow().rasterizer_wanted.polygon_offset_units);
}

TEST_F(StateTest, PolygonOffsetNowStoresNothing) {
  start();
  renderer.set_polygon_offset_now(3.0f, 4.0f);
  renderer.enable_polygon_offset_fill(true);
  renderer.enable_polygon_offset_fill(false);
  EXPECT_THAT(take(), ElementsAre("glPolygonOffset(3, 4)", "glEnable(GL_POLYGON_OFFSET_FILL)",
                                  "glDisable(GL_POLYGON_OFFSET_FILL)"));
  EXPECT_TRUE(renderer.shadow().rasterizer_wanted == Renderer_Rasterizer_State());
}

TEST_F(StateTest, CoreContextHasOnePolygonModeForBothFaces) {
  start_core();
  renderer.rasterizer_set_polygon_mode(RENDERER_POLYGON_MODE_LINE, RENDERER_POLYGON_FACE_BACK);
  renderer.rasterizer_apply();
  EXPECT_THAT(take(), Contains("glPolygonMode(GL_FRONT_AND_BACK, GL_LINE)"));
}

// ---- state by name ----

TEST_F(StateTest, StateIsEnabledByItsExactName) {
  start();
  EXPECT_TRUE(renderer.enable_state("GL_DITHER"));
  EXPECT_TRUE(renderer.disable_state("GL_STENCIL_TEST"));
  EXPECT_TRUE(renderer.enable_state("GL_LIGHT2"));
  EXPECT_THAT(take(), ElementsAre("glEnable(GL_DITHER)", "glDisable(GL_STENCIL_TEST)",
                                  "glEnable(GL_LIGHT2)"));
}

TEST_F(StateTest, UnknownStateMakesNoCall) {
  start();
  for (const char* name : {"GL_UNKNOWN", "GL_POLYGON_OFFSET_LINE", "GL_BLEN", ""}) {
    EXPECT_FALSE(renderer.enable_state(name)) << name;
    EXPECT_FALSE(renderer.disable_state(name)) << name;
  }
  EXPECT_FALSE(renderer.enable_state(nullptr));
  EXPECT_THAT(take(), IsEmpty());
}

TEST_F(StateTest, CoreContextHasNoFixedState) {
  start_core();
  for (const char* name : {"GL_TEXTURE_2D", "GL_LIGHTING", "GL_LIGHT0", "GL_LIGHT3"}) {
    renderer.enable_state(name);
    renderer.disable_state(name);
  }
  EXPECT_THAT(take(), IsEmpty());
  renderer.enable_state("GL_BLEND");
  EXPECT_THAT(take(), ElementsAre("glEnable(GL_BLEND)"));
}

TEST_F(StateTest, FinishAndFlush) {
  start();
  renderer.finish_gl();
  renderer.flush_gl();
  EXPECT_THAT(take(), ElementsAre("glFinish()", "glFlush()"));
}

// ---- raw drawing ----

TEST_F(StateTest, RawDrawsScaleFirstAndCount) {
  start();
  renderer.draw_triangles(2, 1);
  renderer.draw_lines(3, 4);
  renderer.draw_points(5, 6);
  EXPECT_THAT(take(), ElementsAre("glDrawArrays(GL_TRIANGLES, 3, 6)",
                                  "glDrawArrays(GL_LINES, 8, 6)", "glDrawArrays(GL_POINTS, 6, 5)"));
}

TEST_F(StateTest, RawDrawsBeyondTheDriversNumbersDrawNothing) {
  start();
  renderer.draw_triangles(0x40000000u, 0x40000000u);
  renderer.draw_points(1, 0xFFFFFFFFu);
  EXPECT_THAT(take(), IsEmpty());
}

TEST_F(StateTest, PatchVerticesAboveTheMaximumWarnOnceAndSetTheMaximum) {
  LogCapture log;
  start();
  gl.set_integer(GL_MAX_PATCH_VERTICES, 32);
  EXPECT_TRUE(renderer.set_patch_vertices(40));
  EXPECT_THAT(take_changes(), ElementsAre("glPatchParameteri(GL_PATCH_VERTICES, 32)"));
  EXPECT_EQ(1, log.count("GL_PATCH_VERTICES value (40) set to GL_MAX_PATCH_VERTICES (32)"));
  EXPECT_TRUE(renderer.set_patch_vertices(4));
  EXPECT_THAT(take_changes(), ElementsAre("glPatchParameteri(GL_PATCH_VERTICES, 4)"));
  EXPECT_EQ(1, log.count("GL_PATCH_VERTICES value"));
}

TEST_F(StateTest, PatchVerticesAreLeftAloneWhenTheDriverNamesNoMaximum) {
  start();
  gl.set_integer(GL_MAX_PATCH_VERTICES, 0);
  EXPECT_FALSE(renderer.set_patch_vertices(4));
  EXPECT_FALSE(renderer.set_patch_vertices(0));
  EXPECT_THAT(take_changes(), IsEmpty());
}

// ---- stopped ----

TEST_F(StateTest, StoppedRendererAnswersAndCallsNothing) {
  start();
  renderer.stop();
  gl.clear();
  renderer.set_viewport(0, 0, 0, 1, 1);
  renderer.set_projection_matrix(numbered_matrix(), true);
  renderer.enable_blending(true);
  renderer.set_depth_func(1);
  renderer.rasterizer_apply();
  renderer.enable_state("GL_BLEND");
  renderer.draw_triangles(1, 0);
  renderer.finish_gl();
  EXPECT_FALSE(renderer.get_viewport(nullptr, nullptr, nullptr, nullptr));
  EXPECT_EQ(nullptr, renderer.get_viewport_array(0));
  EXPECT_FALSE(renderer.apply_pipeline_state());
  EXPECT_THAT(gl.calls(), IsEmpty());
}
