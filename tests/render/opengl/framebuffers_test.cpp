#include <orv/gpu/gpu_render_target.h>

#include "render/opengl/fake_gl_fixture.h"

using namespace orv;
using namespace orv::test;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class FramebuffersTest : public FakeGlTest {
 protected:
  void SetUp() override {
    source.gl.fbo = 21;
    source.width = 32;
    source.height = 16;
    target.gl.fbo = 22;
    target.width = 8;
    target.height = 4;
  }
  Calls blits() { return gl.calls_of({"glBlitFramebuffer"}); }
  GpuRenderTarget source, target;
};

const int SOURCE_RECT[4] = {1, 2, 3, 4};
const int TARGET_RECT[4] = {5, 6, 7, 8};

}  // namespace

TEST_F(FramebuffersTest, FramebuffersAreBoundById) {
  start();
  EXPECT_TRUE(renderer.framebuffer_bind(9));
  EXPECT_EQ(9u, renderer.framebuffer_get_current());
  EXPECT_TRUE(gl.called("glBindFramebuffer(GL_FRAMEBUFFER, 9)"));
}

TEST_F(FramebuffersTest, CopyPutsEverythingBack) {
  start();
  gl.set_integer(GL_READ_BUFFER, GL_COLOR_ATTACHMENT3);
  gl.set_integer(GL_MAX_DRAW_BUFFERS, 2);
  gl.set_integer(GL_DRAW_BUFFER0, GL_COLOR_ATTACHMENT0);
  gl.set_integer(GL_DRAW_BUFFER0 + 1, GL_COLOR_ATTACHMENT1);
  renderer.framebuffer_bind(5);
  gl.clear();
  EXPECT_TRUE(renderer.framebuffer_blit(&source, &target, true, false, true));
  EXPECT_THAT(
      take_changes(),
      ElementsAre("glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 22)",
                  "glBindFramebuffer(GL_READ_FRAMEBUFFER, 21)",
                  "glDrawBuffer(GL_COLOR_ATTACHMENT0)", "glReadBuffer(GL_COLOR_ATTACHMENT0)",
                  "glBlitFramebuffer(0, 0, 32, 16, 0, 0, 8, 4, GL_COLOR_BUFFER_BIT, GL_LINEAR)",
                  "glReadBuffer(GL_COLOR_ATTACHMENT3)",
                  "glDrawBuffers(2, [GL_COLOR_ATTACHMENT0 GL_COLOR_ATTACHMENT1])",
                  "glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 5)",
                  "glBindFramebuffer(GL_READ_FRAMEBUFFER, 5)"));
}

TEST_F(FramebuffersTest, DepthIsNeverBlended) {
  start();
  EXPECT_TRUE(renderer.framebuffer_blit(&source, &target, true, true, true));
  EXPECT_THAT(
      blits(),
      ElementsAre("glBlitFramebuffer(0, 0, 32, 16, 0, 0, 8, 4, GL_COLOR_BUFFER_BIT, GL_LINEAR)",
                  "glBlitFramebuffer(0, 0, 32, 16, 0, 0, 8, 4, GL_DEPTH_BUFFER_BIT, GL_NEAREST)"));
  gl.clear();
  EXPECT_TRUE(renderer.framebuffer_blit(&source, &target, false, true, true));
  EXPECT_THAT(blits(), ElementsAre("glBlitFramebuffer(0, 0, 32, 16, 0, 0, 8, 4, "
                                   "GL_DEPTH_BUFFER_BIT, GL_NEAREST)"));
  EXPECT_EQ(0, gl.count("glDrawBuffer") + gl.count("glReadBuffer"));
}

TEST_F(FramebuffersTest, NothingStandsForTheWindowAndItsViewport) {
  start();
  gl.set_integers(GL_VIEWPORT, {10, 20, 640, 480});
  EXPECT_TRUE(renderer.framebuffer_blit(&source, nullptr, true, false, false));
  EXPECT_TRUE(renderer.framebuffer_blit(nullptr, &target, true, false, false));
  EXPECT_THAT(blits(), ElementsAre("glBlitFramebuffer(0, 0, 32, 16, 10, 20, 650, 500, "
                                   "GL_COLOR_BUFFER_BIT, GL_NEAREST)",
                                   "glBlitFramebuffer(10, 20, 650, 500, 0, 0, 8, 4, "
                                   "GL_COLOR_BUFFER_BIT, GL_NEAREST)"));
  EXPECT_EQ(1u, gl.calls_of({"glDrawBuffer("}).size()) << "the window keeps its buffers";
}

TEST_F(FramebuffersTest, RegionsTakeAttachmentsAndRectangles) {
  start();
  EXPECT_TRUE(renderer.framebuffer_blit_region(&source, 2, &target, 3, SOURCE_RECT, TARGET_RECT,
                                               true, false, false));
  EXPECT_TRUE(gl.called("glReadBuffer(GL_COLOR_ATTACHMENT2)"));
  EXPECT_TRUE(gl.called("glDrawBuffer(GL_COLOR_ATTACHMENT3)"));
  EXPECT_TRUE(
      gl.called("glBlitFramebuffer(1, 2, 3, 4, 5, 6, 7, 8, GL_COLOR_BUFFER_BIT, GL_NEAREST)"));
}

TEST_F(FramebuffersTest, RegionsById) {
  start();
  EXPECT_TRUE(renderer.framebuffer_blit_region_v2(21, 1, 0, 0, SOURCE_RECT, TARGET_RECT, true, true,
                                                  false));
  EXPECT_TRUE(gl.called("glBindFramebuffer(GL_READ_FRAMEBUFFER, 21)"));
  EXPECT_TRUE(gl.called("glReadBuffer(GL_COLOR_ATTACHMENT1)"));
  EXPECT_EQ(2u, blits().size());
}

TEST_F(FramebuffersTest, ShortFormsTakeDefaults) {
  start();
  gl.set_integers(GL_VIEWPORT, {0, 0, 640, 480});
  EXPECT_TRUE(renderer.framebuffer_blit_rect_a(&source, &target, SOURCE_RECT, TARGET_RECT));
  EXPECT_TRUE(renderer.framebuffer_blit_rect_b(&source, 4, &target, 5));
  EXPECT_TRUE(renderer.framebuffer_blit_rect_c(&source, SOURCE_RECT));
  EXPECT_TRUE(gl.called("glReadBuffer(GL_COLOR_ATTACHMENT4)"));
  EXPECT_TRUE(gl.called("glDrawBuffer(GL_COLOR_ATTACHMENT5)"));
  EXPECT_THAT(
      blits(),
      ElementsAre("glBlitFramebuffer(1, 2, 3, 4, 5, 6, 7, 8, GL_COLOR_BUFFER_BIT, GL_NEAREST)",
                  "glBlitFramebuffer(0, 0, 32, 16, 0, 0, 8, 4, GL_COLOR_BUFFER_BIT, GL_NEAREST)",
                  "glBlitFramebuffer(1, 2, 3, 4, 1, 2, 3, 4, GL_COLOR_BUFFER_BIT, GL_NEAREST)"));
}

TEST_F(FramebuffersTest, TargetThatIsBoundTakesItsWholeSize) {
  start();
  GpuRenderTarget* bound =
      renderer.gpu_render_target_create_2d(nullptr, 40, 30, PF_RGBA_U8, 1, false, false, true, 0);
  ASSERT_NE(nullptr, bound);
  renderer.gpu_render_target_bind(bound);
  EXPECT_TRUE(renderer.framebuffer_blit_to_current(&source, true, false, false));
  EXPECT_THAT(blits(), ElementsAre("glBlitFramebuffer(0, 0, 32, 16, 0, 0, 40, 30, "
                                   "GL_COLOR_BUFFER_BIT, GL_NEAREST)"));
  EXPECT_FALSE(renderer.framebuffer_blit_to_current(bound, true, false, false)) << "itself";
}

TEST_F(FramebuffersTest, NoCopyOntoItself) {
  start();
  EXPECT_FALSE(renderer.framebuffer_blit(&source, &source, true, true, false));
  EXPECT_FALSE(renderer.framebuffer_blit(nullptr, nullptr, true, true, false));
  EXPECT_FALSE(
      renderer.framebuffer_blit_region_v2(4, 0, 4, 1, nullptr, nullptr, true, true, false));
  EXPECT_THAT(take_changes(), IsEmpty());
}

TEST_F(FramebuffersTest, AttachmentsAndFramebuffersThatAreNotThere) {
  start();
  for (const int attachment : {-1, 8, 1 << 30}) {
    EXPECT_FALSE(renderer.framebuffer_blit_rect_b(&source, attachment, &target, 0));
    EXPECT_FALSE(renderer.framebuffer_blit_rect_b(&source, 0, &target, attachment));
  }
  GpuRenderTarget unused;
  EXPECT_FALSE(renderer.framebuffer_blit(&unused, &target, true, false, false))
      << "must not pass for the window";
  EXPECT_FALSE(renderer.framebuffer_blit(&source, &unused, true, false, false));
  EXPECT_FALSE(renderer.framebuffer_blit_to_current(&unused, true, false, false));
  EXPECT_THAT(take_changes(), IsEmpty());
}

TEST_F(FramebuffersTest, OldDriversCannotCopy) {
  gl.remove_function("glBlitFramebuffer");
  start();
  EXPECT_FALSE(renderer.framebuffer_blit(&source, &target, true, false, false));
  EXPECT_THAT(take_changes(), IsEmpty());
}

TEST_F(FramebuffersTest, WithoutFramebuffersThereIsTheWindowAlone) {
  gl.set_extensions({});
  start(2, 1, false);
  EXPECT_FALSE(renderer.framebuffer_bind(1));
  EXPECT_EQ(0u, renderer.framebuffer_get_current());
}
