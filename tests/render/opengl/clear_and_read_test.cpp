#include "render/opengl/fake_gl_fixture.h"

using namespace orv;
using namespace orv::test;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class ClearAndReadTest : public FakeGlTest {
 protected:
  std::vector<unsigned char> pixels = std::vector<unsigned char>(640 * 480 * 4);
};

}  // namespace

TEST_F(ClearAndReadTest, ClearsSetTheirValuesFirst) {
  start();
  renderer.clear_color_buffer();
  renderer.clear_color_buffer_rgba(0.25f, 0.5f, 0.75f, 1.0f);
  renderer.clear_depth_buffer(0.5f);
  renderer.clear_stencil_buffer(3);
  renderer.clear_color_depth_buffers();
  EXPECT_THAT(take(),
              ElementsAre("glClear(GL_COLOR_BUFFER_BIT)", "glClearColor(0.25, 0.5, 0.75, 1)",
                          "glClear(GL_COLOR_BUFFER_BIT)", "glClearDepth(0.5)",
                          "glClear(GL_DEPTH_BUFFER_BIT)", "glClearStencil(3)",
                          "glClear(GL_STENCIL_BUFFER_BIT)",
                          "glClear(GL_COLOR_BUFFER_BIT|GL_DEPTH_BUFFER_BIT)"));
}

TEST_F(ClearAndReadTest, CombinedClears) {
  start();
  renderer.clear_color_depth_buffers_rgba(0, 0, 0, 1, 1);
  EXPECT_THAT(take(), ElementsAre("glClearColor(0, 0, 0, 1)", "glClearDepth(1)",
                                  "glClear(GL_COLOR_BUFFER_BIT|GL_DEPTH_BUFFER_BIT)"));
  renderer.clear_color_depth_stencil_buffers(1, 1, 1, 1, 0.5f, 7);
  EXPECT_THAT(
      take(),
      ElementsAre("glClearColor(1, 1, 1, 1)", "glClearDepth(0.5)", "glClearStencil(7)",
                  "glClear(GL_COLOR_BUFFER_BIT|GL_DEPTH_BUFFER_BIT|GL_STENCIL_BUFFER_BIT)"));
}

TEST_F(ClearAndReadTest, BackBufferSizeIsTheViewports) {
  start();
  gl.set_integers(GL_VIEWPORT, {5, 6, 100, 50});
  unsigned int size = 0, width = 0, height = 0;
  EXPECT_TRUE(renderer.get_back_buffer_size(&size, &width, &height));
  EXPECT_EQ(20000u, size);
  EXPECT_EQ(100u, width);
  EXPECT_EQ(50u, height);
  EXPECT_TRUE(renderer.get_back_buffer_size(nullptr, nullptr, nullptr));
}

TEST_F(ClearAndReadTest, BackBufferOfFourGigabytesHasNoSize) {
  start();
  gl.set_integers(GL_VIEWPORT, {0, 0, 32768, 32768});
  unsigned int size = 7, width = 7, height = 7;
  EXPECT_FALSE(renderer.get_back_buffer_size(&size, &width, &height));
  EXPECT_EQ(7u, size);
  EXPECT_EQ(7u, width);
}

TEST_F(ClearAndReadTest, ReadBackTakesTheViewportsRectangle) {
  start();
  gl.set_integers(GL_VIEWPORT, {5, 6, 100, 50});
  EXPECT_TRUE(renderer.read_back_buffer_rgba(pixels.data()));
  EXPECT_THAT(
      take_changes(),
      ElementsAre("glPixelStorei(GL_PACK_ALIGNMENT, 4)", "glPixelStorei(GL_PACK_ROW_LENGTH, 0)",
                  "glPixelStorei(GL_PACK_SKIP_ROWS, 0)", "glPixelStorei(GL_PACK_SKIP_PIXELS, 0)",
                  "glPixelStorei(GL_UNPACK_ALIGNMENT, 4)", "glReadBuffer(GL_BACK)",
                  "glReadPixels(5, 6, 100, 50, GL_RGBA, GL_UNSIGNED_BYTE, ptr)",
                  "glPixelStorei(GL_PACK_ALIGNMENT, 1)"));
  EXPECT_EQ(gl.read_pixels_value, pixels[0]);
}

TEST_F(ClearAndReadTest, PackAlignmentIsTheLargestThatDividesTheWidth) {
  struct Row {
    int width;
    const char* call;
  };
  for (const Row& row : {Row{16, "glPixelStorei(GL_PACK_ALIGNMENT, 8)"},
                         Row{12, "glPixelStorei(GL_PACK_ALIGNMENT, 4)"},
                         Row{6, "glPixelStorei(GL_PACK_ALIGNMENT, 2)"},
                         Row{7, "glPixelStorei(GL_PACK_ALIGNMENT, 1)"}}) {
    if (!renderer.is_started()) start();
    EXPECT_TRUE(renderer.read_back_buffer_rect_rgba(pixels.data(), 0, 0, row.width, 2));
    EXPECT_EQ(row.call, gl.changes().front()) << row.width;
    gl.clear();
  }
}

TEST_F(ClearAndReadTest, BoundFramebufferObjectIsReadFromItsFirstAttachment) {
  start();
  gl.set_integer(GL_READ_FRAMEBUFFER_BINDING, 3);
  EXPECT_TRUE(renderer.read_back_buffer_rect_rgba(pixels.data(), 0, 0, 4, 4));
  EXPECT_THAT(take(), Contains("glReadBuffer(GL_COLOR_ATTACHMENT0)"));
}

TEST_F(ClearAndReadTest, NothingIsReadWithoutMemoryOrRectangle) {
  start();
  EXPECT_FALSE(renderer.read_back_buffer_rgba(nullptr));
  EXPECT_FALSE(renderer.read_back_buffer_rect_rgba(nullptr, 0, 0, 4, 4));
  EXPECT_FALSE(renderer.read_back_buffer_rect_rgba(pixels.data(), 0, 0, 0, 4));
  EXPECT_FALSE(renderer.read_back_buffer_rect_rgba(pixels.data(), 0, 0, 4, -1));
  EXPECT_THAT(take_changes(), IsEmpty());
  renderer.stop();
  EXPECT_FALSE(renderer.read_back_buffer_rgba(pixels.data()));
  EXPECT_FALSE(renderer.get_back_buffer_size(nullptr, nullptr, nullptr));
}
