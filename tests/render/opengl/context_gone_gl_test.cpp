// Releasing what was made in a context that is gone: nothing to delete, nothing to crash on.
#include "render/opengl/gl_fixture.h"

#include <orv/gpu/gpu_buffer_data.h>
#include <orv/gpu/gpu_render_target.h>
#include <orv/gpu/texture_data.h>
#include <orv/image/image.h>
#include <orv/text/font_data.h>

namespace orv::test {
namespace {

class ContextGone : public GlTest {
 protected:
  void SetUp() override {
    GlTest::SetUp();
    if (IsSkipped()) return;
    make_geometry();
    ASSERT_TRUE(renderer.gpu_buffer_alloc(nullptr, &buffer_, GPU_BUFFER_ARRAY,
                                          BUFFER_USAGE_STATIC_DRAW, 64, nullptr));
    raw_buffer_ = renderer.vertex_buffer_create(64, BUFFER_USAGE_STATIC_DRAW);
    ASSERT_NE(raw_buffer_, 0u);
    load_color_program(&program_);
    ASSERT_TRUE(renderer.gpu_program_bind(&program_));
    query_ = renderer.query_create();
    make_texture();
    target_ =
        renderer.gpu_render_target_create_2d(nullptr, 16, 16, PF_RGBA_U8, 1, false, true, true, 0);
    ASSERT_NE(target_, nullptr);
    renderbuffers_ =
        renderer.gpu_render_target_create_rb(nullptr, 16, 16, PF_RGBA_U8, true, 1, true, 0);
    ASSERT_NE(renderbuffers_, nullptr);
    has_font_ = renderer.bitmap_font_create(&font_);
    context.check();
  }
  void make_geometry() {
    geometry_.set_alloc_params_num_vertices(3);
    ASSERT_TRUE(geometry_.alloc_vertex_data());
    ASSERT_TRUE(renderer.geometry_vbo_create(nullptr, &geometry_));
    ASSERT_TRUE(renderer.geometry_vbo_bind(&geometry_));
    ASSERT_TRUE(renderer.geometry_vbo_unbind(&geometry_));
  }
  void make_texture() {
    texture_.type = TEXTURE_2D;
    ASSERT_TRUE(texture_.image.create(4, 4, 1, PF_RGBA_U8, true, true));
    ASSERT_TRUE(renderer.texture_load(nullptr, &texture_, 0));
    ASSERT_NE(texture_.gl_texture_id, 0u);
  }
  void release_all() {
    EXPECT_TRUE(renderer.geometry_vbo_destroy(&geometry_));
    renderer.gpu_buffer_free(&buffer_);
    renderer.vertex_buffer_destroy(raw_buffer_);
    EXPECT_TRUE(renderer.gpu_program_unload(&program_));
    EXPECT_EQ(program_.program_id, 0u);
    renderer.query_delete(query_);
    EXPECT_TRUE(renderer.texture_unload(&texture_));
    EXPECT_EQ(texture_.gl_texture_id, 0u);
    EXPECT_TRUE(renderer.gpu_render_target_kill(nullptr, target_));
    EXPECT_TRUE(renderer.gpu_render_target_kill(nullptr, renderbuffers_));
    if (has_font_) renderer.bitmap_font_destroy(&font_);
  }

  GeometryCore geometry_;
  GpuBufferData buffer_;
  unsigned int raw_buffer_ = 0;
  GpuProgramData program_;
  unsigned int query_ = 0;
  TextureData texture_;
  GpuRenderTarget* target_ = nullptr;
  GpuRenderTarget* renderbuffers_ = nullptr;
  FontData font_;
  bool has_font_ = false;
};

TEST_P(ContextGone, ReleaseAfterTheContextWasDestroyed) {
  ASSERT_TRUE(renderer.render_window_destroy_context(context.window()));
  release_all();
}

TEST_P(ContextGone, ReleaseAfterTheOffscreenWindowAndTheContextAreGone) {
  ASSERT_TRUE(renderer.render_window_free_all());
  release_all();
}

TEST_P(ContextGone, ReleaseAfterTheStop) {
  ASSERT_TRUE(renderer.render_window_destroy_context(context.window()));
  ASSERT_TRUE(renderer.stop());
  target_ = renderbuffers_ = nullptr;  // the stop killed them
  renderer.geometry_vbo_destroy(&geometry_);
  renderer.gpu_buffer_free(&buffer_);
  renderer.vertex_buffer_destroy(raw_buffer_);
  renderer.gpu_program_unload(&program_);
  renderer.query_delete(query_);
  renderer.texture_unload(&texture_);
  if (has_font_) renderer.bitmap_font_destroy(&font_);
}

TEST_P(ContextGone, StopKillsTheTargetsOfAContextThatIsGone) {
  ASSERT_TRUE(renderer.render_window_destroy_context(context.window()));
  EXPECT_TRUE(renderer.stop());
  EXPECT_EQ(renderer.gpu_render_target_get_num(), 0u);
}

TEST_P(ContextGone, NewContextDrawsAfterTheOldOneIsGone) {
  RenderWindow* window = context.window();
  const RenderWindowData data = window->data;
  ASSERT_TRUE(renderer.render_window_destroy_context(window));
  release_all();
  renderer.stop();
  ASSERT_TRUE(renderer.render_window_create_context(window, &data, nullptr));
  ASSERT_TRUE(renderer.start());
  renderer.clear_color_buffer_rgba(1, 0, 0, 1);
  EXPECT_EQ(center()[0], 255);
  EXPECT_EQ(renderer.check_gl_error(true, nullptr), 0u);
}

ORV_BOTH_PROFILES(ContextGone);

}  // namespace
}  // namespace orv::test
