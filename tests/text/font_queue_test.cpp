// Font: the queue of texts.
#include "text/font_fixture.h"

#include <climits>

namespace orv::test {
namespace {

class FontQueueTest : public FontTest {
 protected:
  void SetUp() override { ASSERT_TRUE(load_bitmap_font()); }

  /// Floats of the vertices of all texts in the queue, of a font whose A is 4 x 8 at (1, 2).
  const float* write() {
    EXPECT_TRUE(font.bm_update_vb(&renderer, false));
    EXPECT_TRUE(font.bm_render_vb(&renderer));
    return renderer.drawn();
  }
  /// The same for one text.
  const float* place_of(bool added) {
    EXPECT_TRUE(added);
    return write();
  }
};

TEST_F(FontQueueTest, NullTextsAreRefused) {
  const char* none = nullptr;
  const wchar_t* wide = nullptr;
  EXPECT_FALSE(font.bm_draw_text_2d(0, 0, 1, 1, 1, 1, none));
  EXPECT_FALSE(font.bm_draw_text_2d_v2(0, 0, 1, 1, 1, 1, true, none));
  EXPECT_FALSE(font.bm_draw_text_3d(0, 0, 0, 1, 1, 1, 1, none));
  EXPECT_FALSE(font.bm_draw_text_2df(0, 0, 1, 1, 1, 1, none, 1));
  EXPECT_FALSE(font.bm_draw_text_2df_v2(0, 0, 1, 1, 1, 1, true, none, 1));
  EXPECT_FALSE(font.bm_draw_text_3df(0, 0, 0, 1, 1, 1, 1, none, 1));
  EXPECT_FALSE(font.bm_draw_wtext_2d(0, 0, 1, 1, 1, 1, wide));
  EXPECT_FALSE(font.bm_draw_wtext_2df(0, 0, 1, 1, 1, 1, wide, 1));
  EXPECT_EQ(font.bm_get_num_strings(), 0u);
}

TEST_F(FontQueueTest, The513thTextIsRefusedByAllForms) {
  for (int i = 0; i < 512; ++i) EXPECT_TRUE(draw_white("ab"));
  EXPECT_EQ(font.bm_get_num_strings(), 512u);
  EXPECT_EQ(font.bm_get_num_chars(), 1024u);
  EXPECT_FALSE(draw_white("c"));
  EXPECT_FALSE(font.bm_draw_text_2d_v2(0, 0, 1, 1, 1, 1, false, "c"));
  EXPECT_FALSE(font.bm_draw_text_3d(0, 0, 0, 1, 1, 1, 1, "c"));
  EXPECT_FALSE(font.bm_draw_text_2df(0, 0, 1, 1, 1, 1, "%d", 1));
  EXPECT_FALSE(font.bm_draw_text_2df_v2(0, 0, 1, 1, 1, 1, true, "%d", 1));
  EXPECT_FALSE(font.bm_draw_text_3df(0, 0, 0, 1, 1, 1, 1, "%d", 1));
  EXPECT_FALSE(font.bm_draw_wtext_2d(0, 0, 1, 1, 1, 1, L"c"));
  EXPECT_FALSE(font.bm_draw_wtext_2df(0, 0, 1, 1, 1, 1, L"%d", 1));
  EXPECT_EQ(font.bm_get_num_strings(), 512u);
  font.bm_draw_reset();
  EXPECT_EQ(font.bm_get_num_strings(), 0u);
  EXPECT_EQ(font.bm_get_num_chars(), 0u);
  EXPECT_TRUE(draw_white("c"));
}

TEST_F(FontQueueTest, FlatTextsRunDownwards) {
  const float* vertex = place_of(font.bm_draw_text_2d(10, 20, 0.1f, 0.2f, 0.3f, 0.4f, "A"));
  EXPECT_EQ(vertex[0], 11.0f);
  EXPECT_EQ(vertex[1], -22.0f);
  EXPECT_EQ(vertex[2], 0.0f);
  EXPECT_THAT(std::vector<float>(vertex + 12, vertex + 16),
              ::testing::ElementsAre(0.1f, 0.2f, 0.3f, 0.4f));
}

TEST_F(FontQueueTest, TextsInSpaceStayAsTheyAre) {
  const float* vertex = place_of(font.bm_draw_text_3d(10, 20, 30, 1, 1, 1, 1, "A"));
  EXPECT_EQ(vertex[0], 11.0f);
  EXPECT_EQ(vertex[1], 18.0f);
  EXPECT_EQ(vertex[2], 30.0f);
}

TEST_F(FontQueueTest, LowestPositionHasANegative) {
  const float* vertex = place_of(font.bm_draw_text_2d(0, INT_MIN, 1, 1, 1, 1, "A"));
  EXPECT_EQ(vertex[1], 2147483648.0f - 2.0f);
}

TEST_F(FontQueueTest, FormatsFillTexts) {
  EXPECT_TRUE(font.bm_draw_text_2df(0, 0, 1, 1, 1, 1, "%d %s", 42, "frames"));
  EXPECT_EQ(font.bm_get_num_chars(), 9u);
  EXPECT_TRUE(font.bm_draw_text_2df_v2(0, 0, 1, 1, 1, 1, false, "%c", 'A'));
  EXPECT_EQ(font.bm_get_num_chars(), 10u);
  EXPECT_TRUE(font.bm_draw_text_3df(0, 0, 5, 1, 1, 1, 1, "%5.1f", 1.5));
  EXPECT_EQ(font.bm_get_num_chars(), 15u);
  const std::string text(2000, 'A');
  EXPECT_TRUE(font.bm_draw_text_2df(0, 0, 1, 1, 1, 1, "%s", text.c_str()));
  EXPECT_EQ(font.bm_get_num_chars(), 15u + 511u);
  EXPECT_TRUE(font.bm_draw_text_2d(0, 0, 1, 1, 1, 1, text.c_str()));
  EXPECT_EQ(font.bm_get_num_chars(), 15u + 511u + 2000u) << "plain texts are not cut";
}

TEST_F(FontQueueTest, WideTextsBecomeBytes) {
  // 256 and everything behind it is a question mark, which this font has no picture of.
  ASSERT_TRUE(font.bm_load_charset_from_memory(
      "<font><common scaleW=\"64\" scaleH=\"32\"/><chars><char id=\"65\" width=\"4\"/>"
      "<char id=\"233\" width=\"5\"/><char id=\"63\" width=\"6\"/></chars></font>"));
  EXPECT_TRUE(font.bm_draw_wtext_2d(0, 0, 1, 1, 1, 1, L"A\u00E9\u0100\U0001F600"));
  const float* floats = write();
  const float widths[] = {4, 5, 6, 6};
  for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(floats[i * 96 + 16] - floats[i * 96], widths[i]);
  const wchar_t negative[] = {static_cast<wchar_t>(-5), 0};
  font.bm_draw_reset();
  EXPECT_TRUE(font.bm_draw_wtext_2d(0, 0, 1, 1, 1, 1, negative));
  floats = write();
  EXPECT_EQ(floats[16] - floats[0], 6.0f);
}

TEST_F(FontQueueTest, WideTextsAreCutAt255) {
  const std::wstring text(600, L'A');
  EXPECT_TRUE(font.bm_draw_wtext_2d(0, 0, 1, 1, 1, 1, text.c_str()));
  EXPECT_EQ(font.bm_get_num_chars(), 255u);
  EXPECT_TRUE(font.bm_draw_wtext_2df(0, 0, 1, 1, 1, 1, L"%d %ls", 42, L"x"));
  EXPECT_EQ(font.bm_get_num_chars(), 259u);
  EXPECT_TRUE(font.bm_draw_wtext_2df(0, 0, 1, 1, 1, 1, L"%ls", text.c_str()));
  EXPECT_EQ(font.bm_get_num_chars(), 514u);
}

TEST_F(FontQueueTest, WideTextsBeginALine) {
  ASSERT_TRUE(load_truetype_font());
  EXPECT_TRUE(font.bm_draw_text_2d(0, 0, 1, 1, 1, 1, "A"));
  EXPECT_TRUE(font.bm_draw_wtext_2d(100, 0, 1, 1, 1, 1, L"A"));
  ASSERT_TRUE(font.stbtt_update_vb(&renderer, false));
  ASSERT_TRUE(font.stbtt_render_vb(&renderer));
  EXPECT_EQ(renderer.drawn()[96] - renderer.drawn()[0], 100.0f);
}

}  // namespace
}  // namespace orv::test
