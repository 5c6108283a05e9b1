#include "render/opengl/gl_fixture.h"

using namespace orv;
using namespace orv::test;

namespace {

class ClearAndReadGlTest : public GlTest {};

}  // namespace

ORV_BOTH_PROFILES(ClearAndReadGlTest);

TEST_P(ClearAndReadGlTest, ColorIsClearedAndReadBack) {
  renderer.clear_color_buffer_rgba(1, 0, 0, 1);
  EXPECT_EQ(RED, center());
  renderer.clear_color_depth_buffers_rgba(0, 1, 0, 1, 1);
  EXPECT_EQ(GREEN, center());
  renderer.clear_color_depth_stencil_buffers(0, 0, 1, 1, 0.5f, 3);
  EXPECT_EQ(BLUE, center());
  renderer.clear_color_buffer();
  renderer.clear_depth_buffer(1);
  renderer.clear_stencil_buffer(0);
  renderer.clear_color_depth_buffers();
  EXPECT_EQ(BLUE, center()) << "the clear colour stands";
}

TEST_P(ClearAndReadGlTest, WholeBackBufferOfOddWidths) {
  for (const int width : {64, 33, 1, 6, 12}) {
    renderer.set_viewport(0, 0, 0, width, 5);
    renderer.clear_color_buffer_rgba(0, 1, 0, 1);
    unsigned int size = 0, w = 0, h = 0;
    ASSERT_TRUE(renderer.get_back_buffer_size(&size, &w, &h));
    EXPECT_EQ(static_cast<unsigned int>(width) * 5 * 4, size);
    std::vector<unsigned char> pixels(size + 4, 77);
    ASSERT_TRUE(renderer.read_back_buffer_rgba(pixels.data()));
    for (unsigned int i = 0; i < size; i += 4) ASSERT_EQ(255, pixels[i + 1]) << i;
    EXPECT_EQ(77, pixels[size]) << "nothing behind the rectangle";
  }
}

TEST_P(ClearAndReadGlTest, RectangleIsReadBottomRowFirst) {
  renderer.clear_color_buffer_rgba(1, 0, 0, 1);
  renderer.enable_scissor_test(true);
  renderer.set_scissor(0, 0, 1, 64, 63);
  renderer.clear_color_buffer_rgba(0, 0, 1, 1);
  renderer.enable_scissor_test(false);
  unsigned char pixels[3 * 2 * 4] = {};
  ASSERT_TRUE(renderer.read_back_buffer_rect_rgba(pixels, 5, 0, 3, 2));
  EXPECT_EQ(255, pixels[0]) << "bottom row is red";
  EXPECT_EQ(255, pixels[12 + 2]) << "the one above is blue";
}

TEST_P(ClearAndReadGlTest, BoundFramebufferObjectIsReadBack) {
  if (!renderer.gl().glGenFramebuffers) GTEST_SKIP() << "no framebuffer objects";
  GLuint texture = 0, framebuffer = 0;
  context.core().glGenTextures(1, &texture);
  context.core().glBindTexture(GL_TEXTURE_2D, texture);
  context.core().glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 8, 8, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                              nullptr);
  renderer.gl().glGenFramebuffers(1, &framebuffer);
  renderer.gl().glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  renderer.gl().glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture,
                                       0);
  renderer.clear_color_buffer_rgba(0, 1, 0, 1);
  EXPECT_EQ(GREEN, context.pixel(4, 4));
  renderer.gl().glBindFramebuffer(GL_FRAMEBUFFER, 0);
  EXPECT_EQ(BLACK, context.pixel(4, 4));
  renderer.gl().glDeleteFramebuffers(1, &framebuffer);
  context.core().glDeleteTextures(1, &texture);
}
