#include <orv/math/mat4.h>

#include "render/opengl/gl_fixture.h"

using namespace orv;
using namespace orv::test;

namespace {

class StateGlTest : public GlTest {
 protected:
  void SetUp() override {
    GlTest::SetUp();
    if (IsSkipped()) return;
    load_color_program(&program);
  }
  void TearDown() override {
    renderer.geometry_vbo_destroy(&quad);
    renderer.gpu_program_unload(&program);
    GlTest::TearDown();
  }
  /// A quad over all of the picture, at a depth from -1 to 1.
  void draw_quad(const vec4& color, float z = 0.0f, bool counter_clockwise = true) {
    const float x[] = {-1, 1, -1, 1};
    const float y[] = {-1, -1, 1, 1};
    quad.free_data();
    quad.set_alloc_params_num_vertices(4);
    ASSERT_TRUE(quad.alloc_vertex_data());
    quad.set_primitive_type(PRIMITIVE_TRIANGLE_STRIP);
    for (unsigned int i = 0; i < 4; ++i) {
      const unsigned int corner = counter_clockwise ? i : (i ^ 1u);
      quad.set_position(i, x[corner], y[corner], z, 1);
      quad.set_color(i, color);
    }
    ASSERT_TRUE(renderer.gpu_program_bind(&program));
    draw(&quad);
    renderer.gpu_program_unbind(&program);
  }

  GpuProgramData program;
  GeometryCore quad;
  const vec4 red{1, 0, 0, 1}, green{0, 1, 0, 1};
};

}  // namespace

ORV_BOTH_PROFILES(StateGlTest);

TEST_P(StateGlTest, StartingStateDrawsOpaque) {
  draw_quad(red);
  EXPECT_EQ(RED, center());
}

TEST_P(StateGlTest, DepthFunctionDecides) {
  draw_quad(red, 0.5f);
  draw_quad(green, 0.75f);
  EXPECT_EQ(RED, center()) << "less";
  renderer.set_depth_func(RENDERER_DEPTH_FUNC_GREATER);
  draw_quad(green, 0.75f);
  EXPECT_EQ(GREEN, center());
  renderer.set_depth_func(99);
  draw_quad(red, 0.8f);
  EXPECT_EQ(GREEN, center()) << "any other value is less";
  renderer.enable_depth_test(false);
  draw_quad(red, 0.9f);
  EXPECT_EQ(RED, center());
}

TEST_P(StateGlTest, DepthMaskKeepsDepth) {
  renderer.set_depth_mask(false);
  draw_quad(red, 0.0f);
  renderer.set_depth_mask(true);
  draw_quad(green, 0.5f);
  EXPECT_EQ(GREEN, center());
}

TEST_P(StateGlTest, ColorMaskKeepsColor) {
  renderer.set_color_mask(false);
  draw_quad(red);
  EXPECT_EQ(BLACK, center());
  renderer.set_color_mask(true);
}

TEST_P(StateGlTest, BlendingByItsFactors) {
  draw_quad(red, 0.5f);
  renderer.enable_blending(true);
  draw_quad(green, 0.25f);
  EXPECT_EQ(Pixel({255, 255, 0, 255}), center()) << "one, one";
  renderer.set_blend_func(RENDERER_BLEND_FACTOR_ZERO, RENDERER_BLEND_FACTOR_ONE);
  draw_quad(vec4(0, 0, 1, 1), 0.0f);
  EXPECT_EQ(Pixel({255, 255, 0, 255}), center());
  for (int factor = 0; factor < 12; ++factor) {
    renderer.set_blend_func(static_cast<RENDERER_BLEND_FACTOR>(factor),
                            static_cast<RENDERER_BLEND_FACTOR>(factor));
  }
}

TEST_P(StateGlTest, ScissorAndViewport) {
  renderer.set_scissor(0, 0, 0, 32, 64);
  renderer.enable_scissor_test(true);
  draw_quad(red);
  renderer.enable_scissor_test(false);
  EXPECT_EQ(RED, context.pixel(16, 32));
  EXPECT_EQ(BLACK, context.pixel(48, 32));
  renderer.set_viewport(0, 32, 32, 32, 32);
  draw_quad(green, -0.5f);
  EXPECT_EQ(GREEN, context.pixel(48, 48));
  EXPECT_EQ(RED, context.pixel(16, 48));
  int x = 0, y = 0, width = 0, height = 0;
  EXPECT_TRUE(renderer.get_viewport(&x, &y, &width, &height));
  EXPECT_EQ(32, x);
  EXPECT_EQ(32, width);
}

TEST_P(StateGlTest, CullingByWinding) {
  renderer.rasterizer_set_cull_enabled(true);
  draw_quad(red, 0.0f, false);
  EXPECT_EQ(RED, center()) << "wanted, not applied";
  clear();
  renderer.rasterizer_apply();
  draw_quad(red, 0.0f, false);
  EXPECT_EQ(BLACK, center());
  renderer.rasterizer_set_front_ccw(false);
  renderer.rasterizer_apply();
  draw_quad(green, 0.0f, false);
  EXPECT_EQ(GREEN, center());
  clear();
  renderer.rasterizer_set_cull_face(RENDERER_CULL_FACE_FRONT);
  renderer.rasterizer_apply();
  draw_quad(green, 0.0f, false);
  EXPECT_EQ(BLACK, center());
}

TEST_P(StateGlTest, PolygonModesRaiseNoErrorOnAnyFace) {
  for (const int face : {1, 2, 3, 50}) {
    for (const int mode : {0, 1, 2, 50}) {
      renderer.rasterizer_set_polygon_mode(mode, face);
      renderer.rasterizer_apply();
    }
  }
  renderer.rasterizer_set_polygon_mode(RENDERER_POLYGON_MODE_LINE,
                                       RENDERER_POLYGON_FACE_FRONT_AND_BACK);
  renderer.rasterizer_apply();
  draw_quad(red);
  EXPECT_EQ(BLACK, context.pixel(10, 33)) << "lines only";
}

TEST_P(StateGlTest, StateNamesRaiseNoError) {
  for (const char* name :
       {"GL_CLIP_DISTANCE0", "GL_CLIP_DISTANCE3", "GL_MULTISAMPLE", "GL_CULL_FACE", "GL_BLEND",
        "GL_DEPTH_TEST", "GL_SCISSOR_TEST", "GL_DEPTH_BOUNDS_TEST_EXT", "GL_POLYGON_OFFSET_FILL",
        "GL_DITHER", "GL_STENCIL_TEST", "GL_TEXTURE_2D", "GL_LIGHTING", "GL_LIGHT0", "GL_LIGHT3"}) {
    EXPECT_TRUE(renderer.enable_state(name)) << name;
    EXPECT_TRUE(renderer.disable_state(name)) << name;
    context.check();
  }
  EXPECT_FALSE(renderer.enable_state("GL_UNKNOWN"));
}

TEST_P(StateGlTest, OptionalStateRaisesNoError) {
  renderer.set_clip_control(1, 1);
  renderer.set_clip_control(0, 0);
  renderer.set_depth_range(0.0f, 1.0f);
  renderer.set_clear_depth_f(0.5f);
  renderer.set_depth_bounds(0.0f, 1.0f);
  renderer.enable_depth_bounds_test(true);
  renderer.enable_depth_bounds_test(false);
  renderer.set_polygon_offset_now(1, 1);
  renderer.rasterizer_set_polygon_offset(1, 1);
  renderer.enable_polygon_offset_fill(true);
  renderer.enable_polygon_offset_fill(false);
  renderer.set_line_width(1.0f);
  renderer.finish_gl();
  renderer.flush_gl();
  EXPECT_TRUE(renderer.apply_pipeline_state());
}

TEST_P(StateGlTest, PatchVerticesAreLimited) {
  if (!renderer.gl().glPatchParameteri) {
    EXPECT_FALSE(renderer.set_patch_vertices(3));
    return;
  }
  EXPECT_TRUE(renderer.set_patch_vertices(1000000));
  int vertices = 0, maximum = 0;
  context.core().glGetIntegerv(GL_PATCH_VERTICES, &vertices);
  context.core().glGetIntegerv(GL_MAX_PATCH_VERTICES, &maximum);
  EXPECT_EQ(maximum, vertices);
}

TEST_P(StateGlTest, MatricesAreKeptInEveryContext) {
  mat4 matrix;
  matrix.m[4] = 3;
  renderer.set_projection_matrix(matrix, true);
  renderer.set_modelview_matrix(matrix, true);
  EXPECT_TRUE(renderer.get_projection_matrix() == matrix);
  EXPECT_TRUE(renderer.get_modelview_matrix() == matrix);
}

TEST_P(StateGlTest, RawDrawsCountInPrimitives) {
  quad.set_alloc_params_num_vertices(9);
  ASSERT_TRUE(quad.alloc_vertex_data());
  const float x[] = {-1, 3, -1};
  const float y[] = {-1, -1, 3};
  for (unsigned int i = 0; i < 9; ++i) {
    quad.set_position(i, x[i % 3], y[i % 3], 0, 1);
    quad.set_color(i, i < 3 ? red : i < 6 ? green : vec4(0, 0, 1, 1));
  }
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  ASSERT_TRUE(renderer.geometry_vbo_create(nullptr, &quad));
  ASSERT_TRUE(renderer.geometry_vbo_update(&quad));
  ASSERT_TRUE(renderer.geometry_vbo_bind(&quad));
  renderer.draw_triangles(1, 1);
  EXPECT_EQ(GREEN, center());
  renderer.draw_lines(1, 1);
  renderer.draw_points(1, 2);
  renderer.geometry_vbo_unbind(&quad);
}
