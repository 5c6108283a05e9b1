#include <orv/math/mat4.h>

#include <cstdlib>

#include "render/opengl/gl_fixture.h"

using namespace orv;
using namespace orv::test;

namespace {

constexpr int SIZE = 64;

mat4 make_matrix(float scale, float x, float y) {
  mat4 matrix;
  matrix.m[0] = matrix.m[5] = matrix.m[10] = scale;
  matrix.m[12] = x;
  matrix.m[13] = y;
  return matrix;
}

void draw_lines(RendererOpenGL& renderer) {
  for (int i = -4; i <= 4; ++i) {
    const float at = static_cast<float>(i) * 0.2f;
    renderer.draw_immediate_line(vec4(at, -1, 0), vec4(at, 1, 0), vec4(1, 0, 0), vec4(0, 0, 1));
    renderer.draw_immediate_line(vec4(-1, at, 0), vec4(1, at, 0), vec4(0, 1, 0), vec4(0, 1, 0));
  }
}

void draw_triangle(RendererOpenGL& renderer, GeometryCore* geometry) {
  geometry->set_alloc_params_num_vertices(3);
  ASSERT_TRUE(geometry->alloc_vertex_data());
  geometry->set_use_generic_vertex_attribs_state(false);
  const vec4 colors[] = {vec4(1, 0, 0), vec4(0, 1, 0), vec4(0, 0, 1)};
  for (unsigned int i = 0; i < 3; ++i) {
    geometry->set_position(i, i == 1 ? 0.7f : -0.7f, i == 2 ? 0.7f : -0.7f, 0.2f, 1);
    geometry->set_color(i, colors[i]);
  }
  ASSERT_TRUE(renderer.geometry_vbo_create(nullptr, geometry));
  ASSERT_TRUE(renderer.geometry_vbo_update(geometry));
  ASSERT_TRUE(renderer.geometry_vbo_bind(geometry));
  EXPECT_TRUE(renderer.geometry_vbo_draw(geometry));
  EXPECT_TRUE(renderer.geometry_vbo_unbind(geometry));
}

/// Lines and a coloured triangle without a program, under matrices of all kinds.
std::vector<unsigned char> draw_scene(GlContext& context) {
  RendererOpenGL& renderer = context.renderer();
  renderer.clear_color_depth_buffers_rgba(0.2f, 0.2f, 0.2f, 1, 1);
  renderer.set_projection_matrix(make_matrix(0.9f, 0, 0), true);
  renderer.set_modelview_matrix(make_matrix(1, 0.03f, 0.01f), true);
  draw_lines(renderer);
  const mat4 projection = make_matrix(1, 0, 0), view = make_matrix(0.5f, 0.25f, 0.25f),
             model = make_matrix(1, 0.2f, -0.3f);
  renderer.load_fixed_matrices(&projection, &view, &model, nullptr);
  GeometryCore geometry;
  draw_triangle(renderer, &geometry);
  EXPECT_EQ(nullptr, renderer.get_current_gpu_program());
  // The matrices outlive the reset of all other state.
  renderer.apply_pipeline_state();
  renderer.draw_immediate_line(vec4(-1, 1, 0), vec4(1, -1, 0), vec4(1, 1, 0), vec4(0, 1, 1));
  renderer.load_fixed_matrices(nullptr, &view, nullptr, nullptr);
  EXPECT_TRUE(renderer.geometry_vbo_bind(&geometry));
  renderer.draw_triangles(1, 0);
  EXPECT_TRUE(renderer.geometry_vbo_unbind(&geometry));
  renderer.load_identity_matrices(true, true, false);
  renderer.draw_immediate_line(vec4(-1, -1, 0), vec4(1, 1, 0), vec4(1, 1, 1), vec4(1, 1, 1));
  renderer.geometry_vbo_destroy(&geometry);
  std::vector<unsigned char> pixels(SIZE * SIZE * 4);
  EXPECT_TRUE(renderer.read_back_buffer_rect_rgba(pixels.data(), 0, 0, SIZE, SIZE));
  return pixels;
}

}  // namespace

TEST(CoreLinesGlTest, CoreContextDrawsTheSamePictureAsTheFixedPipeline) {
  std::vector<unsigned char> fixed, core;
  {
    GlContext context(GlContext::COMPATIBILITY, SIZE, SIZE);
    ORV_REQUIRE_GL(context);
    fixed = draw_scene(context);
  }
  GlContext context(GlContext::CORE, SIZE, SIZE);
  ORV_REQUIRE_GL(context);
  core = draw_scene(context);
  int different = 0, colored = 0;
  for (std::size_t i = 0; i < fixed.size(); ++i) {
    different += std::abs(fixed[i] - core[i]) > 2 ? 1 : 0;
    colored += i % 4 < 3 && fixed[i] != 51 ? 1 : 0;
  }
  EXPECT_EQ(0, different);
  EXPECT_GT(colored, 1000) << "there is a picture";
}

TEST(CoreLinesGlTest, GeometryWithoutColorsIsWhite) {
  GlContext context(GlContext::CORE, SIZE, SIZE);
  ORV_REQUIRE_GL(context);
  RendererOpenGL& renderer = context.renderer();
  renderer.clear_color_depth_buffers_rgba(0, 0, 0, 1, 1);
  GeometryCore geometry;
  geometry.get_alloc_params_ptr()->std_vertex_attribs = false;
  geometry.set_alloc_params_num_vertices(3);
  geometry.set_alloc_params_num_user_attribs(1);
  ASSERT_TRUE(geometry.alloc_vertex_data());
  geometry.set_vertex_attrib_element(0, 0, -1, -1, 0, 1);
  geometry.set_vertex_attrib_element(0, 1, 3, -1, 0, 1);
  geometry.set_vertex_attrib_element(0, 2, -1, 3, 0, 1);
  ASSERT_TRUE(renderer.geometry_vbo_create(nullptr, &geometry));
  ASSERT_TRUE(renderer.geometry_vbo_bind(&geometry));
  EXPECT_TRUE(renderer.geometry_vbo_draw(&geometry));
  EXPECT_TRUE(renderer.geometry_vbo_unbind(&geometry));
  EXPECT_EQ(WHITE, context.pixel(32, 32));
  renderer.geometry_vbo_destroy(&geometry);
}
