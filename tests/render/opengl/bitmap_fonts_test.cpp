#include <orv/text/font_data.h>

#include "render/opengl/fake_gl_fixture.h"
#include "render/opengl/platform/system_font.h"
#include "support/log_capture.h"

using namespace orv;
using namespace orv::test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class BitmapFontsTest : public FakeGlTest {
 protected:
  void create() {
    start();
    ASSERT_TRUE(renderer.bitmap_font_create(&font)) << "is a TrueType font installed?";
    gl.clear();
  }
  std::string base() { return std::to_string(font.list_base); }
  FontData font;
};

}  // namespace

TEST_F(BitmapFontsTest, SystemHasABoldFontForEveryFamily) {
  for (const char* family : {"Arial", "DejaVu Sans", "no such family at all", ""}) {
    EXPECT_FALSE(detail::find_bold_font_file(family).path.empty()) << family;
  }
  EXPECT_TRUE(detail::find_bold_font_file(nullptr).path.empty());
}

TEST_F(BitmapFontsTest, CreateRecordsOneListForEachCharacter) {
  start();
  ASSERT_TRUE(renderer.bitmap_font_create(&font)) << "is a TrueType font installed?";
  EXPECT_NE(0u, font.list_base);
  EXPECT_EQ(renderer.getid(), font.renderer_id);
  EXPECT_EQ(256, gl.count("glNewList"));
  EXPECT_EQ(256, gl.count("glBitmap"));
  EXPECT_EQ(256, gl.count("glEndList"));
  EXPECT_TRUE(gl.called("glNewList(" + std::to_string(font.list_base + 255) + ", GL_COMPILE)"));
  const unsigned int first = font.list_base;
  EXPECT_TRUE(renderer.bitmap_font_create(&font)) << "a second time frees the first lists";
  EXPECT_TRUE(gl.called("glDeleteLists(" + std::to_string(first) + ", 256)"));
  EXPECT_EQ(256u, gl.live_ids().size());
  EXPECT_TRUE(renderer.bitmap_font_destroy(&font));
  EXPECT_THAT(gl.live_ids(), IsEmpty());
  EXPECT_FALSE(renderer.bitmap_font_destroy(&font));
}

TEST_F(BitmapFontsTest, EmptyNameStandsForArial) {
  start();
  font.font_name[0] = 0;
  EXPECT_TRUE(renderer.bitmap_font_create(&font));
  renderer.bitmap_font_destroy(&font);
}

TEST_F(BitmapFontsTest, HeightThatCannotBeDrawnGivesTheListsBack) {
  start();
  font.height = 0;
  EXPECT_FALSE(renderer.bitmap_font_create(&font));
  font.height = 1000000;
  EXPECT_FALSE(renderer.bitmap_font_create(&font));
  EXPECT_EQ(0u, font.list_base);
  EXPECT_THAT(gl.live_ids(), IsEmpty());
}

TEST_F(BitmapFontsTest, TextIsDrawnByCallingTheLists) {
  create();
  EXPECT_TRUE(renderer.bitmap_font_render(&font, 10, 20, 1, 0, 0, 1, "abc", 3));
  EXPECT_THAT(take(),
              ElementsAre("glColor4f(1, 0, 0, 1)", "glRasterPos4f(10, 20, 0, 1)",
                          "glListBase(" + base() + ")", "glCallLists(3, GL_UNSIGNED_BYTE, ptr)"));
  EXPECT_TRUE(renderer.bitmap_font_render_b(&font, 1, 2, 3, 0, 1, 0, 1, "abc", 2));
  EXPECT_THAT(take(),
              ElementsAre("glColor4f(0, 1, 0, 1)", "glRasterPos4f(1, 2, 3, 1)",
                          "glListBase(" + base() + ")", "glCallLists(2, GL_UNSIGNED_BYTE, ptr)"));
  EXPECT_TRUE(renderer.bitmap_font_begin(&font));
  EXPECT_TRUE(renderer.bitmap_font_set_color(0, 0, 1, 1));
  EXPECT_TRUE(renderer.bitmap_font_render_c(&font, 4, 5, 6, "a", 1));
  EXPECT_THAT(take(), ElementsAre("glListBase(" + base() + ")", "glColor4f(0, 0, 1, 1)",
                                  "glRasterPos4f(4, 5, 6, 1)", "glListBase(" + base() + ")",
                                  "glCallLists(1, GL_UNSIGNED_BYTE, ptr)"));
  renderer.bitmap_font_destroy(&font);
}

TEST_F(BitmapFontsTest, LengthDoesNotReachPastTheText) {
  create();
  EXPECT_TRUE(renderer.bitmap_font_render(&font, 0, 0, 1, 1, 1, 1, "abc", 5000));
  EXPECT_TRUE(gl.called("glCallLists(3, GL_UNSIGNED_BYTE, ptr)"));
  renderer.bitmap_font_destroy(&font);
}

TEST_F(BitmapFontsTest, FontThatWasNotCreatedDrawsNothing) {
  start();
  EXPECT_FALSE(renderer.bitmap_font_render(&font, 0, 0, 1, 1, 1, 1, "a", 1));
  EXPECT_FALSE(renderer.bitmap_font_render_b(&font, 0, 0, 0, 1, 1, 1, 1, "a", 1));
  EXPECT_FALSE(renderer.bitmap_font_render_c(&font, 0, 0, 0, "a", 1));
  EXPECT_FALSE(renderer.bitmap_font_begin(&font));
  EXPECT_FALSE(renderer.bitmap_font_create(nullptr));
  EXPECT_FALSE(renderer.bitmap_font_destroy(nullptr));
  EXPECT_FALSE(renderer.bitmap_font_render(nullptr, 0, 0, 1, 1, 1, 1, "a", 1));
  EXPECT_THAT(take(), IsEmpty());
}

TEST_F(BitmapFontsTest, NullTextIsFalse) {
  create();
  EXPECT_FALSE(renderer.bitmap_font_render(&font, 0, 0, 1, 1, 1, 1, nullptr, 3));
  EXPECT_FALSE(renderer.bitmap_font_render_c(&font, 0, 0, 0, nullptr, 3));
  EXPECT_THAT(take(), IsEmpty());
  renderer.bitmap_font_destroy(&font);
}

TEST_F(BitmapFontsTest, CoreContextHasNoBitmapFonts) {
  start_core();
  const LogCapture log;
  EXPECT_FALSE(renderer.bitmap_font_create(&font));
  EXPECT_THAT(log.lines(),
              ElementsAre("OpenGL renderer - no bitmap fonts: the context is without it"));
  EXPECT_FALSE(renderer.bitmap_font_set_color(1, 1, 1, 1));
  font.list_base = 5;
  EXPECT_FALSE(renderer.bitmap_font_render(&font, 0, 0, 1, 1, 1, 1, "a", 1));
  EXPECT_FALSE(renderer.bitmap_font_begin(&font));
  EXPECT_THAT(take(), IsEmpty());
}

TEST_F(BitmapFontsTest, ReservedOperationsAreFalse) {
  start();
  EXPECT_FALSE(renderer.bitmap_font_reserved_a(&font));
  EXPECT_FALSE(renderer.bitmap_font_reserved_b(&font));
}
