#include <orv/gpu/gpu_render_target.h>

#include "render/opengl/fake_gl_fixture.h"

using namespace orv;
using namespace orv::test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class RenderTargetIoTest : public FakeGlTest {
 protected:
  void TearDown() override { renderer.gpu_render_target_release(nullptr, &target); }
  void init_2d(int msaa = 0, PIXEL_FORMAT format = PF_RGBA_U8) {
    ASSERT_TRUE(renderer.gpu_render_target_init_2d(nullptr, &target, 4, 2, format, 1, false, false,
                                                   true, msaa));
    gl.clear();
  }
  void init_cube(bool renderbuffer = false) {
    ASSERT_TRUE(renderer.gpu_render_target_init_cube(nullptr, &target, 4, PF_RGBA_U8, renderbuffer,
                                                     0, false, true));
    gl.clear();
  }
  void init_array() {
    ASSERT_TRUE(renderer.gpu_render_target_init_2d_array(nullptr, &target, 3, false, 4, 4,
                                                         PF_RGBA_U8, 0, false, true));
    gl.clear();
  }
  Calls bound() {
    const Calls calls = gl.calls_of({"glBindTexture"});
    gl.clear();
    return calls;
  }
  GpuRenderTarget target;
};

}  // namespace

TEST_F(RenderTargetIoTest, FramebufferIsMadeOnFirstUse) {
  start();
  EXPECT_TRUE(renderer.gpu_render_target_bind(&target));
  EXPECT_TRUE(renderer.gpu_render_target_bind(&target));
  EXPECT_THAT(take(),
              ElementsAre("glGenFramebuffers(1, ptr)", "glBindFramebuffer(GL_FRAMEBUFFER, 1)",
                          "glBindFramebuffer(GL_FRAMEBUFFER, 1)"));
  EXPECT_FALSE(renderer.gpu_render_target_bind(nullptr));
}

TEST_F(RenderTargetIoTest, UnbindingGoesToTheWindowAndLeavesTheViewport) {
  start();
  renderer.gpu_render_target_bind(&target);
  gl.clear();
  EXPECT_TRUE(renderer.gpu_render_target_unbind(&target));
  EXPECT_TRUE(renderer.gpu_render_target_unbind(nullptr));
  EXPECT_THAT(take(), ElementsAre("glBindFramebuffer(GL_FRAMEBUFFER, 0)",
                                  "glBindFramebuffer(GL_FRAMEBUFFER, 0)"));
}

TEST_F(RenderTargetIoTest, ColorIsBoundByTarget) {
  start();
  init_2d();
  EXPECT_TRUE(renderer.gpu_render_target_bind_color_texture(&target, 0, 2));
  EXPECT_TRUE(renderer.gpu_render_target_bind_depth_texture(&target, 2));
  EXPECT_THAT(bound(),
              ElementsAre("glBindTexture(GL_TEXTURE_2D, 1)", "glBindTexture(GL_TEXTURE_2D, 2)"));
  init_2d(4);
  const std::string first = std::to_string(target.gl.color_textures[0]);
  EXPECT_TRUE(renderer.gpu_render_target_bind_color_texture(&target, 0, 2));
  EXPECT_THAT(bound(), ElementsAre("glBindTexture(GL_TEXTURE_2D_MULTISAMPLE, " + first + ")"));
  init_cube();
  const std::string color = std::to_string(target.gl.color_cube_texture);
  const std::string depth = std::to_string(target.gl.depth_cube_texture);
  EXPECT_TRUE(renderer.gpu_render_target_bind_color_texture(&target, 0, 2));
  EXPECT_TRUE(renderer.gpu_render_target_bind_color_cube_texture(&target, 2));
  EXPECT_TRUE(renderer.gpu_render_target_bind_depth_cube_texture(&target, 2));
  EXPECT_THAT(bound(), ElementsAre("glBindTexture(GL_TEXTURE_CUBE_MAP, " + color + ")",
                                   "glBindTexture(GL_TEXTURE_CUBE_MAP, " + color + ")",
                                   "glBindTexture(GL_TEXTURE_CUBE_MAP, " + depth + ")"));
}

TEST_F(RenderTargetIoTest, IndicesPastTheEndBindNothing) {
  start();
  init_2d();
  for (const unsigned int index : {8u, 9u, ~0u}) {
    EXPECT_TRUE(renderer.gpu_render_target_bind_color_texture(&target, index, 0));
    EXPECT_THAT(bound(), ElementsAre("glBindTexture(GL_TEXTURE_2D, 0)"));
  }
  EXPECT_FALSE(renderer.gpu_render_target_bind_color_texture(&target, 0, 16)) << "no such unit";
  EXPECT_FALSE(renderer.gpu_render_target_bind_color_texture(nullptr, 0, 0));
  EXPECT_FALSE(renderer.gpu_render_target_bind_depth_texture(nullptr, 0));
  EXPECT_FALSE(renderer.gpu_render_target_bind_color_cube_texture(nullptr, 0));
  EXPECT_FALSE(renderer.gpu_render_target_bind_depth_cube_texture(nullptr, 0));
}

TEST_F(RenderTargetIoTest, LayersAreComparedWithTheDriversLimit) {
  start();
  init_array();
  renderer.gpu_render_target_bind(&target);
  gl.clear();
  EXPECT_TRUE(renderer.gpu_render_target_set_array_layer(&target, 2));
  EXPECT_TRUE(renderer.gpu_render_target_set_array_layer(&target, 200)) << "the target has 3";
  EXPECT_FALSE(renderer.gpu_render_target_set_array_layer(&target, 256));
  EXPECT_FALSE(renderer.gpu_render_target_set_array_layer(nullptr, 0));
  EXPECT_THAT(
      take_changes(),
      ElementsAre("glFramebufferTextureLayer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, 1, 0, 2)",
                  "glFramebufferTextureLayer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, 1, 0, 200)"));
  init_2d();
  EXPECT_FALSE(renderer.gpu_render_target_set_array_layer(&target, 0)) << "not an array";
}

TEST_F(RenderTargetIoTest, FacesOfColorAndDepthAreAttached) {
  start();
  init_cube();
  renderer.gpu_render_target_bind(&target);
  gl.clear();
  EXPECT_TRUE(renderer.gpu_render_target_set_cube_face(&target, CUBEMAP_FACE_NEGATIVE_Y));
  EXPECT_THAT(take_changes(),
              ElementsAre("glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, "
                          "GL_TEXTURE_CUBE_MAP_NEGATIVE_Y, 1, 0)",
                          "glFramebufferTexture2D(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, "
                          "GL_TEXTURE_CUBE_MAP_NEGATIVE_Y, 2, 0)"));
  for (const int face : {-1, 6}) {
    EXPECT_FALSE(
        renderer.gpu_render_target_set_cube_face(&target, static_cast<CUBEMAP_FACE>(face)));
  }
  EXPECT_FALSE(renderer.gpu_render_target_set_cube_face(nullptr, CUBEMAP_FACE_POSITIVE_X));
  EXPECT_THAT(take_changes(), IsEmpty());
}

TEST_F(RenderTargetIoTest, FacesOfATargetThatIsNotBound) {
  start();
  init_cube(true);
  renderer.framebuffer_bind(40);
  gl.clear();
  EXPECT_TRUE(renderer.gpu_render_target_set_cube_face(&target, CUBEMAP_FACE_POSITIVE_Z));
  const std::string fbo = std::to_string(target.gl.fbo);
  EXPECT_THAT(take_changes(),
              ElementsAre("glBindFramebuffer(GL_DRAW_FRAMEBUFFER, " + fbo + ")",
                          "glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, "
                          "GL_TEXTURE_CUBE_MAP_POSITIVE_Z, 1, 0)",
                          "glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 40)"));
}

TEST_F(RenderTargetIoTest, AttachmentsAreCleared) {
  start();
  EXPECT_TRUE(renderer.gpu_render_target_clear_color(3, 0.5f, 0, 1, 0.25f));
  EXPECT_TRUE(renderer.gpu_render_target_clear_depth(0.75f));
  EXPECT_FALSE(renderer.gpu_render_target_clear_color(8, 0, 0, 0, 0));
  EXPECT_THAT(take(), ElementsAre("glClearBufferfv(GL_COLOR, 3, [0.5 0 1 0.25])",
                                  "glClearBufferfv(GL_DEPTH, 0, [0.75])"));
}

TEST_F(RenderTargetIoTest, AntialiasingOfTheDriverWherePresent) {
  start();
  EXPECT_TRUE(renderer.gpu_render_target_apply_cmaa());
  EXPECT_TRUE(gl.called("glApplyFramebufferAttachmentCMAAINTEL()"));
}

TEST_F(RenderTargetIoTest, OldDriversCannot) {
  gl.set_extensions({});
  start(2, 1, false);
  EXPECT_FALSE(renderer.gpu_render_target_bind(&target));
  EXPECT_FALSE(renderer.gpu_render_target_unbind(&target));
  EXPECT_FALSE(renderer.gpu_render_target_clear_color(0, 0, 0, 0, 0));
  EXPECT_FALSE(renderer.gpu_render_target_clear_depth(1));
  EXPECT_FALSE(renderer.gpu_render_target_apply_cmaa());
  EXPECT_THAT(take_changes(), IsEmpty());
}

// ---- reading ----

TEST_F(RenderTargetIoTest, PixelsAreReadAsBytes) {
  start();
  init_2d();
  gl.set_integer(GL_TEXTURE_WIDTH, 4);
  gl.set_integer(GL_TEXTURE_HEIGHT, 2);
  std::vector<unsigned char> pixels(4 * 2 * 4);
  gl.texture_pixels.assign(pixels.size(), 3);
  EXPECT_TRUE(renderer.gpu_render_target_read_rgba_u8(&target, pixels.data()));
  EXPECT_EQ(3, pixels.back());
  EXPECT_TRUE(gl.called("glPixelStorei(GL_PACK_ALIGNMENT, 1)"));
  EXPECT_TRUE(gl.called("glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, ptr)"));
  gl.texture_pixels.assign(4 * 2 * 3, 4);
  EXPECT_TRUE(renderer.gpu_render_target_read_rgb_u8(&target, pixels.data()));
  EXPECT_TRUE(gl.called("glGetTexImage(GL_TEXTURE_2D, 0, GL_RGB, GL_UNSIGNED_BYTE, ptr)"));
}

TEST_F(RenderTargetIoTest, NothingIsReadThatIsNotThereOrDoesNotFit) {
  start();
  unsigned char pixels[64] = {};
  const auto read = [&] { return renderer.gpu_render_target_read_rgba_u8(&target, pixels); };
  gl.set_integer(GL_TEXTURE_WIDTH, 4);
  gl.set_integer(GL_TEXTURE_HEIGHT, 2);
  init_2d(4);
  EXPECT_FALSE(read()) << "samples";
  init_2d(0, PF_R_U32);
  EXPECT_FALSE(read()) << "integers";
  init_array();
  EXPECT_FALSE(read()) << "all layers would come";
  init_cube();
  EXPECT_FALSE(read());
  init_2d();
  target.width = 2;
  EXPECT_FALSE(read()) << "the texture is larger than the record";
  target.width = 4;
  EXPECT_EQ(0, gl.count("glGetTexImage"));
  EXPECT_TRUE(read());
  EXPECT_FALSE(renderer.gpu_render_target_read_rgb_u8(&target, nullptr));
  EXPECT_FALSE(renderer.gpu_render_target_read_rgb_u8(nullptr, pixels));
}
