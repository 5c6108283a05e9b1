#include "text/truetype_check.h"

#include <gtest/gtest.h>

#include <functional>

#include "text/font_builder.h"

namespace orv::test {
namespace {

using detail::GlyphOutline;
using detail::TrueTypeCheck;

const char* fault_of(const Bytes& font) {
  const char* fault = TrueTypeCheck(font.data(), font.size()).open(0);
  return fault ? fault : "";
}

/// Measures glyph 1 of a font; false when that or the font itself is refused.
bool measure(const Bytes& font, GlyphOutline* outline, int glyph = 1) {
  TrueTypeCheck check(font.data(), font.size());
  return !check.open(0) && check.measure_glyph(glyph, outline);
}

FontBuilder with_glyph(const Bytes& glyph) {
  FontBuilder builder;
  builder.glyphs.push_back(glyph);
  return builder;
}

bool is_glyph_sound(const Bytes& glyph) {
  GlyphOutline outline;
  return measure(with_glyph(glyph).build(), &outline);
}

}  // namespace

TEST(TrueTypeCheck, TakesEveryFormOfASoundFont) {
  for (const int format : {0, 4, 6, 12}) {
    for (const bool long_offsets : {false, true}) {
      FontBuilder builder = with_glyph(rectangle_glyph(0, 0, 500, 500));
      builder.map_format = format;
      builder.long_offsets = long_offsets;
      EXPECT_STREQ(fault_of(builder.build()), "") << format << long_offsets;
    }
  }
}

TEST(TrueTypeCheck, SpoiledTablesAreRefused) {
  struct Case {
    const char* name;
    std::function<void(Bytes*)> spoil;
    const char* fault;
  };
  const Case cases[] = {
      {"no file", [](Bytes* f) { f->clear(); }, "not a TrueType font"},
      {"many tables", [](Bytes* f) { set16(f, 4, 0xFFFF); }, "not a TrueType font"},
      {"no glyf", [](Bytes* f) { (*f)[table_row(*f, "glyf")] = '?'; },
       "not a TrueType font with outlines"},
      {"table in the directory", [](Bytes* f) { set32(f, table_row(*f, "head") + 8, 8); },
       "not a TrueType font with outlines"},
      {"table behind the end", [](Bytes* f) { set32(f, table_row(*f, "hmtx") + 8, f->size()); },
       "not a TrueType font with outlines"},
      {"long table", [](Bytes* f) { set32(f, table_row(*f, "glyf") + 12, 0xFFFFFFFF); },
       "not a TrueType font with outlines"},
      {"short head", [](Bytes* f) { set32(f, table_row(*f, "head") + 12, 53); },
       "not a TrueType font with outlines"},
      {"no glyphs", [](Bytes* f) { set16(f, table_at(*f, "maxp") + 4, 0); },
       "a spoiled table of glyphs"},
      {"unknown offsets", [](Bytes* f) { set16(f, table_at(*f, "head") + 50, 2); },
       "a spoiled table of glyphs"},
      {"more glyphs than offsets", [](Bytes* f) { set16(f, table_at(*f, "maxp") + 4, 3); },
       "a table of glyphs that is cut short"},
      {"no height", [](Bytes* f) { set16(f, table_at(*f, "hhea") + 4, -200); }, "spoiled metrics"},
      {"no advances", [](Bytes* f) { set16(f, table_at(*f, "hhea") + 34, 0); }, "spoiled metrics"},
      {"more advances than there are", [](Bytes* f) { set16(f, table_at(*f, "hhea") + 34, 3); },
       "spoiled metrics"},
      {"many maps", [](Bytes* f) { set16(f, table_at(*f, "cmap") + 2, 100); },
       "a spoiled map of characters"},
      {"map behind the end", [](Bytes* f) { set32(f, table_at(*f, "cmap") + 8, 0x7FFFFFFF); },
       "a spoiled map of characters"},
      {"map with more parts than bytes",
       [](Bytes* f) { set16(f, table_at(*f, "cmap") + 12 + 6, 0xFFFE); },
       "a spoiled map of characters"},
  };
  for (const Case& each : cases) {
    Bytes font = with_glyph(rectangle_glyph(0, 0, 500, 500)).build();
    ASSERT_STREQ(fault_of(font), "");
    each.spoil(&font);
    EXPECT_STREQ(fault_of(font), each.fault) << each.name;
  }
}

TEST(TrueTypeCheck, MapsLongerThanTheirTableAreRefused) {
  // Where the number of characters or groups stands.
  const std::pair<int, std::size_t> cases[] = {{0, 2}, {6, 8}, {12, 12}};
  for (const auto& [format, at] : cases) {
    FontBuilder builder = with_glyph(rectangle_glyph(0, 0, 500, 500));
    builder.map_format = format;
    Bytes font = builder.build();
    set16(&font, table_at(font, "cmap") + 12 + at, 0x7FFF);
    EXPECT_STREQ(fault_of(font), "a spoiled map of characters") << format;
  }
}

TEST(TrueTypeCheck, GroupsOfCharactersKeepTheirOrderAndTheirGlyphs) {
  FontBuilder builder = with_glyph(rectangle_glyph(0, 0, 500, 500));
  builder.map_format = 12;
  const Bytes good = builder.build();
  const std::size_t group = table_at(good, "cmap") + 12 + 16;
  const std::pair<std::size_t, std::size_t> cases[] = {
      {0, 'Z'}, {4, 0xFFFFFFFF}, {4, 0x10000 + 'A'}, {8, 0x10000}};
  for (const auto& [at, value] : cases) {
    Bytes font = good;
    set32(&font, group + at, value);
    EXPECT_STREQ(fault_of(font), "a spoiled map of characters") << at << " " << value;
  }
}

TEST(TrueTypeCheck, EveryTruncationIsRefused) {
  const Bytes good = with_glyph(rectangle_glyph(0, 0, 500, 500)).build();
  // The last table is padded.
  const std::size_t needed = table_at(good, "maxp") + 6;
  for (std::size_t size = 0; size < needed; ++size) {
    const Bytes cut(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_STRNE(fault_of(cut), "") << size;
  }
}

TEST(TrueTypeCheck, MeasuresOutlines) {
  GlyphOutline outline;
  ASSERT_TRUE(measure(with_glyph(rectangle_glyph(10, -20, 500, 600)).build(), &outline));
  EXPECT_EQ(outline.points, 4);
  EXPECT_EQ(outline.min_x, 10);
  EXPECT_EQ(outline.min_y, -20);
  EXPECT_EQ(outline.max_x, 500);
  EXPECT_EQ(outline.max_y, 600);
  EXPECT_GE(outline.length, 2 * (490 + 620));
  EXPECT_TRUE(outline.in_header_box);
  ASSERT_TRUE(measure(with_glyph({}).build(), &outline));
  EXPECT_TRUE(outline.is_empty());
  EXPECT_FALSE(measure(with_glyph({}).build(), &outline, 2)) << "a glyph that there is not";
  EXPECT_FALSE(measure(with_glyph({}).build(), &outline, -1));
}

TEST(TrueTypeCheck, MeasuresComponentsAsTheyArePlaced) {
  FontBuilder builder = with_glyph(rectangle_glyph(0, 0, 100, 200));
  builder.glyphs.push_back(composite_glyph({{1, 10, 20}, {1, -10, 0, 8192}}));
  GlyphOutline outline;
  ASSERT_TRUE(measure(builder.build(), &outline, 2));
  EXPECT_EQ(outline.points, 8);
  EXPECT_EQ(outline.max_x, 110);
  EXPECT_EQ(outline.max_y, 220);
  // Halves are halved once more, as the font library does it.
  EXPECT_EQ(outline.min_x, -5);
  EXPECT_FALSE(outline.in_header_box);
}

TEST(TrueTypeCheck, SpoiledOutlinesAreRefused) {
  const Bytes good = rectangle_glyph(0, 0, 500, 500);
  ASSERT_TRUE(is_glyph_sound(good));
  struct Case {
    const char* name;
    std::size_t at;
    int value;
  };
  for (const Case& each :
       {Case{"contours", 0, 0x7FFF}, Case{"points", 10, 0xFFFE},
        Case{"more points than bytes", 10, 100}, Case{"instructions", 12, 9999}}) {
    Bytes glyph = good;
    set16(&glyph, each.at, each.value);
    EXPECT_FALSE(is_glyph_sound(glyph)) << each.name;
  }
  EXPECT_FALSE(is_glyph_sound({0, 1, 0, 0})) << "less than a header";
  EXPECT_FALSE(is_glyph_sound(simple_glyph({{{0, 0, false}}})))
      << "nothing behind a point off the curve";
  Bytes falling = simple_glyph({{{0, 0}, {1, 1}}, {{2, 2}, {3, 3}}});
  ASSERT_TRUE(is_glyph_sound(falling));
  set16(&falling, 10, 3);
  EXPECT_FALSE(is_glyph_sound(falling)) << "ends of contours that do not rise";
}

TEST(TrueTypeCheck, ContourThatBeginsWithItsOnlyPointOffTheCurve) {
  EXPECT_FALSE(is_glyph_sound(simple_glyph({{{0, 0}, {9, 9}}, {{5, 5, false}}})));
  EXPECT_TRUE(is_glyph_sound(simple_glyph({{{5, 5, false}}, {{0, 0}, {9, 9}}})));
}

TEST(TrueTypeCheck, CoordinatesLeaveSixteenBitsNowhere) {
  Bytes glyph = simple_glyph({{{30000, 0}, {30001, 9}, {5, 5}}});
  ASSERT_TRUE(is_glyph_sound(glyph));
  set16(&glyph, 10 + 2 + 2 + 3 + 2, 30000);  // the second step of x
  EXPECT_FALSE(is_glyph_sound(glyph));
  FontBuilder builder = with_glyph(rectangle_glyph(0, 0, 20000, 100));
  builder.glyphs.push_back(composite_glyph({{1, 0, 0, 0x7FFF}}));
  GlyphOutline outline;
  EXPECT_TRUE(measure(builder.build(), &outline, 1));
  EXPECT_FALSE(measure(builder.build(), &outline, 2));
}

TEST(TrueTypeCheck, RunsOfFlagsStayWithinTheGlyph) {
  // 200 points in the same place: one flag with a run, and no coordinates.
  Bytes glyph;
  put16(&glyph, 1);
  for (int i = 0; i < 4; ++i) put16(&glyph, 0);
  put16(&glyph, 199);
  put16(&glyph, 0);
  for (const int byte : {1 | 8 | 16 | 32, 199}) put8(&glyph, byte);
  GlyphOutline outline;
  ASSERT_TRUE(measure(with_glyph(glyph).build(), &outline));
  EXPECT_EQ(outline.points, 200);
  glyph[glyph.size() - 1] = 9;  // 190 flags are missing
  EXPECT_FALSE(is_glyph_sound(glyph));
}

TEST(TrueTypeCheck, NestsNoDeeperThanEightComponents) {
  FontBuilder builder = with_glyph(rectangle_glyph(0, 0, 100, 200));
  for (int i = 0; i < 9; ++i) builder.glyphs.push_back(composite_glyph({{i + 1}}));
  GlyphOutline outline;
  EXPECT_TRUE(measure(builder.build(), &outline, 9));
  EXPECT_FALSE(measure(builder.build(), &outline, 10));
  builder.glyphs[1] = composite_glyph({{1}});
  EXPECT_FALSE(measure(builder.build(), &outline, 1)) << "made of itself";
}

TEST(TrueTypeCheck, ComponentsThatMultiplyAreRefused) {
  FontBuilder builder = with_glyph(rectangle_glyph(0, 0, 100, 200));
  builder.glyphs.push_back(composite_glyph(std::vector<Component>(16, {1})));
  builder.glyphs.push_back(composite_glyph(std::vector<Component>(16, {2})));
  GlyphOutline outline;
  EXPECT_TRUE(measure(builder.build(), &outline, 2));
  EXPECT_FALSE(measure(builder.build(), &outline, 3));
}

TEST(TrueTypeCheck, ComponentListsEndWithTheTable) {
  Bytes glyph = composite_glyph({{0}});
  set16(&glyph, 10, 2 | 32);  // one more, of which there is nothing
  EXPECT_FALSE(is_glyph_sound(glyph));
}

}  // namespace orv::test
