#include <orv/gpu/gpu_render_target.h>

#include "render/opengl/gl_fixture.h"

using namespace orv;
using namespace orv::test;

namespace {

// A second window with a context of its own; null when it was refused.
RenderWindow* make_core_window(RendererOpenGL& renderer, OffscreenWindow& surface,
                               RenderWindow* shared) {
  RenderWindowData data;
  data.native_window = surface.native_handle();
  data.gl_major = 3;
  data.core_profile = true;
  RenderWindow* window = renderer.render_window_alloc();
  return renderer.render_window_create_context(window, &data, shared) ? window : nullptr;
}

}  // namespace

TEST(ContextsGlTest, GeometryIsDrawnInEachOfTwoContextsThatShareIt) {
  GlContext first(GlContext::CORE);
  ORV_REQUIRE_GL(first);
  RendererOpenGL& renderer = first.renderer();
  RenderWindow* one = first.window();
  OffscreenWindow surface(64, 64, OffscreenWindow::SOFTWARE);
  RenderWindow* two = make_core_window(renderer, surface, one);
  ASSERT_NE(two, nullptr);
  ASSERT_TRUE(renderer.render_window_make_current(one, true));

  GeometryCore triangle;
  triangle.set_alloc_params_num_vertices(3);
  ASSERT_TRUE(triangle.alloc_vertex_data());
  const float x[] = {-1, 3, -1}, y[] = {-1, -1, 3};
  for (unsigned int i = 0; i < 3; ++i) {
    triangle.set_position(i, x[i], y[i], 0, 1);
    triangle.set_color(i, 0, 1, 0, 1);
  }
  ASSERT_TRUE(renderer.geometry_vbo_create(nullptr, &triangle));
  for (RenderWindow* window : {one, two, one, two}) {
    ASSERT_TRUE(renderer.render_window_make_current(window, true));
    renderer.set_viewport(0, 0, 0, 64, 64);
    renderer.clear_color_depth_buffers_rgba(0, 0, 0, 1, 1);
    ASSERT_TRUE(renderer.geometry_vbo_update(&triangle));
    ASSERT_TRUE(renderer.geometry_vbo_bind(&triangle));
    EXPECT_TRUE(renderer.geometry_vbo_draw(&triangle));
    EXPECT_TRUE(renderer.geometry_vbo_unbind(&triangle));
    EXPECT_EQ(GREEN, first.pixel(32, 32));
    renderer.draw_immediate_line(vec4(-1, -1, -1), vec4(1, 1, -1), vec4(), vec4());
    EXPECT_EQ(0u, renderer.core_functions().glGetError());
  }
  ASSERT_TRUE(renderer.render_window_make_current(one, true));
  EXPECT_TRUE(renderer.geometry_vbo_destroy(&triangle));
}

TEST(ContextsGlTest, TexturesOfAContextThatSharesNothingStayThere) {
  GlContext first(GlContext::CORE);
  ORV_REQUIRE_GL(first);
  RendererOpenGL& renderer = first.renderer();
  RenderWindow* one = first.window();
  OffscreenWindow surface(64, 64, OffscreenWindow::SOFTWARE);
  RenderWindow* two = make_core_window(renderer, surface, nullptr);
  ASSERT_NE(two, nullptr);
  ASSERT_TRUE(renderer.render_window_make_current(one, true));
  unsigned int texture = 0;
  ASSERT_TRUE(renderer.texture_create_2d_by_id(&texture, 4, 4, PF_RGBA_U8, nullptr,
                                               SAMPLER_FILTERING_LINEAR, SAMPLER_ADDRESSING_WRAP));
  ASSERT_TRUE(renderer.texture_bind_2d_by_id(texture, 0));
  ASSERT_TRUE(renderer.render_window_make_current(two, true));
  GpuRenderTarget target;
  EXPECT_TRUE(renderer.gpu_render_target_init_2d(nullptr, &target, 8, 8, PF_RGBA_U8, 1, false,
                                                 false, true, 0));
  EXPECT_EQ(0u, renderer.core_functions().glGetError()) << "the other context's was bound again";
  renderer.gpu_render_target_release(nullptr, &target);
  ASSERT_TRUE(renderer.render_window_make_current(one, true));
  EXPECT_EQ(texture, renderer.get_texture_2d_binding_of_unit(0));
  renderer.texture_delete_id(texture);
}
