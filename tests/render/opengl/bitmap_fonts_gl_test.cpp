#include <orv/math/mat4.h>
#include <orv/text/font_data.h>

#include "render/opengl/gl_fixture.h"

using namespace orv;
using namespace orv::test;

namespace {

/// Pixels near a colour.
int count_pixels(RendererOpenGL& renderer, const Pixel& color) {
  std::vector<unsigned char> pixels(64 * 64 * 4);
  renderer.read_back_buffer_rect_rgba(pixels.data(), 0, 0, 64, 64);
  int count = 0;
  for (std::size_t i = 0; i < pixels.size(); i += 4) {
    if (pixels[i] == color[0] && pixels[i + 1] == color[1] && pixels[i + 2] == color[2]) ++count;
  }
  return count;
}

}  // namespace

TEST(BitmapFontsGlTest, LetterIsDrawnInItsColorAndThePositionAdvances) {
  GlContext context;
  ORV_REQUIRE_GL(context);
  RendererOpenGL& renderer = context.renderer();
  if (renderer.is_core_context()) GTEST_SKIP() << "this OpenGL version has no fixed pipeline";
  renderer.clear_color_depth_buffers_rgba(0, 0, 0, 1, 1);
  mat4 pixels;  // window coordinates
  pixels.m[0] = pixels.m[5] = 2.0f / 64.0f;
  pixels.m[12] = pixels.m[13] = -1.0f;
  renderer.set_projection_matrix(pixels, true);
  renderer.set_modelview_matrix(mat4(), true);
  FontData font;
  font.height = 32;
  ASSERT_TRUE(renderer.bitmap_font_create(&font)) << "is a TrueType font installed?";
  ASSERT_TRUE(renderer.bitmap_font_render(&font, 10, 20, 1, 0, 0, 1, "A", 1));
  const int red = count_pixels(renderer, RED);
  EXPECT_GT(red, 40);
  EXPECT_LT(red, 600);
  float position[4] = {};
  context.core().glGetFloatv(GL_CURRENT_RASTER_POSITION, position);
  EXPECT_GT(position[0], 10 + 10) << "advanced by the letter";
  EXPECT_LT(position[0], 10 + 40);
  EXPECT_FLOAT_EQ(20.0f, position[1]);
  EXPECT_EQ(BLACK, context.pixel(30, 10)) << "nothing below the line";
  renderer.bitmap_font_begin(&font);
  renderer.bitmap_font_set_color(0, 1, 0, 1);
  renderer.bitmap_font_render_c(&font, 2, 45, 0, "iW\xFF", 3);
  EXPECT_GT(count_pixels(renderer, GREEN), 40);
  EXPECT_TRUE(renderer.bitmap_font_destroy(&font));
}

TEST(BitmapFontsGlTest, CoreContextHasNone) {
  GlContext context(GlContext::CORE);
  ORV_REQUIRE_GL(context);
  FontData font;
  EXPECT_FALSE(context.renderer().bitmap_font_create(&font));
}
