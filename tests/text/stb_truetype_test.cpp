#include "text/stb_truetype.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <vector>

#include "text/font_builder.h"

using orv::detail::bake_font_bitmap;
using orv::detail::BakedChar;
using orv::detail::BakeResult;
using orv::detail::GlyphBitmap;
using orv::detail::TrueTypeFace;
using orv::test::Bytes;
using orv::test::Contour;
using orv::test::FontBuilder;
using orv::test::OutlinePoint;
using orv::test::set32;

namespace {

Bytes read_font() {
  Bytes bytes;
  if (std::FILE* file = std::fopen(ORV_TEST_DATA_DIR "/ttf/DejaVuSansMono.ttf", "rb")) {
    unsigned char block[4096];
    for (std::size_t n; (n = std::fread(block, 1, sizeof(block), file)) > 0;) {
      bytes.insert(bytes.end(), block, block + n);
    }
    std::fclose(file);
  }
  return bytes;
}

/// The test font, read once.
const Bytes& font() {
  static const Bytes bytes = read_font();
  return bytes;
}

struct Baked {
  BakeResult result;
  Bytes pixels;
  std::vector<BakedChar> chars;
};

Baked bake(const Bytes& data, float height, int width, int rows, int first = 32, int count = 96) {
  Baked baked;
  baked.pixels.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(rows), 7);
  baked.chars.resize(static_cast<std::size_t>(count));
  baked.result = bake_font_bitmap(data.data(), data.size(), height, baked.pixels.data(), width,
                                  rows, first, count, baked.chars.data());
  return baked;
}

std::size_t u16(const Bytes& data, std::size_t at) { return orv::test::get16(data, at); }
std::size_t u32(const Bytes& data, std::size_t at) { return orv::test::get32(data, at); }
std::size_t table_row(const Bytes& data, const char* tag) {
  const std::size_t row = orv::test::table_row(data, tag);
  EXPECT_NE(row, 0u) << tag;
  return row;
}

}  // namespace

TEST(StbTruetype, BakesAllCharacters) {
  const Baked baked = bake(font(), 32.0f, 512, 512);
  EXPECT_EQ(baked.result.fault, nullptr);
  EXPECT_EQ(baked.result.num_baked, 96);
  const BakedChar& a = baked.chars['A' - 32];
  EXPECT_NEAR(a.xadvance, 16.5503f, 0.001f);
  EXPECT_GT(a.x1, a.x0);
  EXPECT_GT(a.y1, a.y0);
  EXPECT_EQ(0, baked.pixels[0]) << "the bitmap is zeroed first";
  EXPECT_EQ(255, *std::max_element(baked.pixels.begin(), baked.pixels.end()));
}

TEST(StbTruetype, TooSmallBitmapReportsHowManyCharactersFitted) {
  const Baked baked = bake(font(), 32.0f, 64, 64);
  EXPECT_EQ(baked.result.fault, nullptr);
  ASSERT_GT(baked.result.num_baked, 0);
  const auto fitted = static_cast<std::size_t>(baked.result.num_baked);
  ASSERT_LT(fitted, baked.chars.size());
  EXPECT_GT(baked.chars[fitted - 1].xadvance, 0.0f);
  EXPECT_EQ(0.0f, baked.chars[fitted].xadvance) << "rows behind stay zero";
}

TEST(StbTruetype, GlyphWiderThanTheBitmapStaysInside) {
  for (const int width : {1, 2, 3, 8, 15}) {
    const Baked baked = bake(font(), 64.0f, width, 256);
    EXPECT_EQ(baked.result.fault, nullptr) << width;
    EXPECT_LT(baked.result.num_baked, 96) << width;
    for (const BakedChar& row : baked.chars) EXPECT_LT(row.x1, std::max(width, 2)) << width;
  }
}

TEST(StbTruetype, BadArgumentsBakeNothing) {
  Bytes pixels(64 * 64);
  BakedChar row[96];
  const auto call = [&](const unsigned char* data, float height, unsigned char* to, int w, int h,
                        int first, int count, BakedChar* out) {
    return bake_font_bitmap(data, font().size(), height, to, w, h, first, count, out).fault;
  };
  const unsigned char* data = font().data();
  EXPECT_NE(call(nullptr, 10, pixels.data(), 64, 64, 32, 96, row), nullptr);
  EXPECT_NE(call(data, 10, nullptr, 64, 64, 32, 96, row), nullptr);
  EXPECT_NE(call(data, 10, pixels.data(), 0, 64, 32, 96, row), nullptr);
  EXPECT_NE(call(data, 10, pixels.data(), 64, -1, 32, 96, row), nullptr);
  EXPECT_NE(call(data, 10, pixels.data(), 65536, 65536, 32, 96, row), nullptr);
  EXPECT_NE(call(data, 10, pixels.data(), 64, 64, -5, 96, row), nullptr);
  EXPECT_NE(call(data, 10, pixels.data(), 64, 64, 32, 0, row), nullptr);
  EXPECT_NE(call(data, 10, pixels.data(), 64, 64, 32, 96, nullptr), nullptr);
  for (const float height : {0.0f, -3.0f, 1e9f, std::numeric_limits<float>::quiet_NaN(),
                             std::numeric_limits<float>::infinity()}) {
    EXPECT_NE(call(data, height, pixels.data(), 64, 64, 32, 96, row), nullptr) << height;
  }
}

TEST(StbTruetype, EveryTruncationIsRefused) {
  const Bytes& good = font();
  std::size_t needed = 0;
  for (const char* tag : {"cmap", "head", "hhea", "hmtx", "maxp", "loca", "glyf"}) {
    const std::size_t row = table_row(good, tag);
    needed = std::max(needed, u32(good, row + 8) + u32(good, row + 12));
  }
  for (std::size_t size = 0; size < needed; size += size < 600 ? 1 : 4999) {
    const Bytes cut(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size));
    const Baked baked = bake(cut, 12.0f, 128, 128);
    EXPECT_NE(baked.result.fault, nullptr) << size;
  }
}

TEST(StbTruetype, SpoiledHeadersAreRefusedOrDrawnSafely) {
  const Bytes& good = font();
  std::vector<std::size_t> places;
  for (std::size_t at = 0; at < 12 + 16 * u16(good, 4); ++at) places.push_back(at);
  for (const char* tag : {"cmap", "head", "hhea", "hmtx", "maxp", "loca", "glyf"}) {
    const std::size_t offset = u32(good, table_row(good, tag) + 8);
    for (std::size_t at = offset; at < offset + 48; ++at) places.push_back(at);
  }
  for (const std::size_t at : places) {
    for (const int value : {0x00, 0x7F, 0xFF}) {
      Bytes bad = good;
      bad[at] = static_cast<unsigned char>(value);
      bake(bad, 12.0f, 128, 128);
    }
  }
}

TEST(StbTruetype, MissingTableIsRefused) {
  for (const char* tag : {"cmap", "head", "hhea", "hmtx", "maxp", "loca", "glyf"}) {
    Bytes bad = font();
    bad[table_row(bad, tag)] = '?';
    EXPECT_NE(bake(bad, 12.0f, 256, 256).result.fault, nullptr) << tag;
  }
}

TEST(StbTruetype, TablePastTheEndOfTheFileIsRefused) {
  for (const char* tag : {"cmap", "head", "hhea", "hmtx", "maxp", "loca", "glyf"}) {
    Bytes bad = font();
    set32(&bad, table_row(bad, tag) + 8, bad.size() - 4);
    EXPECT_NE(bake(bad, 12.0f, 256, 256).result.fault, nullptr) << tag;
    set32(&bad, table_row(bad, tag) + 8, 0xFFFFFFF0u);
    EXPECT_NE(bake(bad, 12.0f, 256, 256).result.fault, nullptr) << tag;
  }
}

TEST(StbTruetype, GlyphMadeOfItselfIsRefused) {
  Bytes bad = font();
  const std::size_t glyf = u32(bad, table_row(bad, "glyf") + 8);
  const std::size_t loca = u32(bad, table_row(bad, "loca") + 8);
  // Every glyph becomes one composite glyph, whose only component is glyph 40.
  const bool long_offsets = u16(bad, u32(bad, table_row(bad, "head") + 8) + 50) == 1;
  ASSERT_TRUE(long_offsets);
  const std::size_t count = u16(bad, u32(bad, table_row(bad, "maxp") + 8) + 4);
  for (std::size_t i = 0; i <= count; ++i) set32(&bad, loca + 4 * i, i % 2 * 64);
  const unsigned char composite[] = {0xFF, 0xFF, 0, 0, 0, 0, 0, 64, 0, 64, 0, 0x22, 0, 40, 0, 0};
  for (const std::size_t at : {std::size_t{0}, std::size_t{64}}) {
    for (std::size_t i = 0; i < 64; ++i) {
      bad[glyf + at + i] = i < sizeof(composite) ? composite[i] : composite[10 + (i - 10) % 6];
    }
  }
  EXPECT_STREQ(bake(bad, 12.0f, 256, 256).result.fault, "spoiled outlines");
}

TEST(StbTruetype, GlyphAsWideAsTheBitmapFits) {
  FontBuilder builder;
  builder.glyphs = {orv::test::rectangle_glyph(0, 0, 1000, 1000)};
  // 10 pixels, with one free column on either side.
  EXPECT_EQ(bake(builder.build(), 10.0f, 12, 100, 32, 3).result.num_baked, 3);
  EXPECT_EQ(bake(builder.build(), 10.0f, 11, 100, 32, 3).result.num_baked, 0);
}

TEST(StbTruetype, OutlinesThatWouldTakeAgesAreRefused) {
  // Points that jump from side to side, in a font whose height is a single unit.
  FontBuilder builder;
  Contour jumps;
  for (int i = 0; i < 3000; ++i) jumps.push_back({i % 2 * 16000, i % 3 * 8000});
  builder.glyphs = {orv::test::simple_glyph({jumps})};
  builder.ascent = 1;
  builder.descent = 0;
  const Bytes font = builder.build();
  EXPECT_EQ(bake(font, 4096.0f, 256, 256).result.num_baked, 0) << "too wide to be drawn at all";
  builder.ascent = 800;
  EXPECT_EQ(bake(builder.build(), 16.0f, 1024, 1024, 32, 1).result.fault, nullptr);
  EXPECT_STREQ(bake(builder.build(), 16.0f, 1024, 1024, 32, 224).result.fault,
               "outlines that are too large to draw");
  for (OutlinePoint& point : jumps) point.on = false;
  builder.glyphs = {orv::test::simple_glyph({jumps})};
  EXPECT_STREQ(bake(builder.build(), 64.0f, 4096, 4096, 32, 1).result.fault,
               "outlines that are too large to draw")
      << "curves that are cut into many pieces";
}

TEST(StbTruetype, OutlineOutsideOfItsBoxStaysInTheBitmap) {
  FontBuilder builder;
  Bytes glyph = orv::test::simple_glyph({{{-3000, -2000}, {500, 4000, false}, {3000, -900}}});
  for (const std::size_t at : {2u, 4u}) orv::test::set16(&glyph, at, 0);
  for (const std::size_t at : {6u, 8u}) orv::test::set16(&glyph, at, 400);
  builder.glyphs = {glyph};
  const Baked baked = bake(builder.build(), 32.0f, 64, 64, 32, 4);
  EXPECT_EQ(baked.result.fault, nullptr);
  EXPECT_EQ(baked.result.num_baked, 4);
}

TEST(StbTruetype, MapThatTellsOfGlyphsThereAreNotIsRefused) {
  FontBuilder builder;
  builder.map_format = 12;
  builder.glyphs.push_back(orv::test::rectangle_glyph(0, 0, 500, 500));
  Bytes font = builder.build();
  const std::size_t first_glyph = orv::test::table_at(font, "cmap") + 12 + 24;
  ASSERT_EQ(u32(font, first_glyph), 1u);
  for (const std::size_t glyph : {2u, 0xFFFFu}) {
    set32(&font, first_glyph, glyph);
    EXPECT_STREQ(bake(font, 12.0f, 64, 64, 'A', 1).result.fault, "spoiled outlines") << glyph;
    TrueTypeFace face;
    ASSERT_TRUE(face.load(font.data(), font.size(), 0));
    GlyphBitmap bitmap;
    EXPECT_TRUE(face.rasterize('A', 12.0f, &bitmap));
    EXPECT_EQ(bitmap.advance, 0.0f) << "a character without a picture";
  }
  for (const std::size_t glyph : {std::size_t{0x10000}, std::size_t{0xFFFFFFFF}}) {
    set32(&font, first_glyph, glyph);
    EXPECT_STREQ(bake(font, 12.0f, 64, 64, 'A', 1).result.fault, "a spoiled map of characters");
  }
}

TEST(StbTruetype, EveryTruncationOfASmallFontIsRefused) {
  FontBuilder builder;
  builder.glyphs.push_back(orv::test::rectangle_glyph(0, 0, 500, 500));
  const Bytes good = builder.build();
  ASSERT_EQ(bake(good, 12.0f, 128, 128).result.fault, nullptr);
  for (std::size_t size = 0; size + 2 < good.size(); ++size) {
    const Bytes cut(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_NE(bake(cut, 12.0f, 128, 128).result.fault, nullptr) << size;
  }
}

TEST(StbTruetype, EverySpoiledByteOfASmallFontEndsSafely) {
  FontBuilder builder;
  builder.glyphs.push_back(orv::test::simple_glyph(
      {{{0, 0}, {100, 300, false}, {200, 0}}, {{50, 50, false}, {60, 60}, {70, 50}}}));
  builder.glyphs.push_back(orv::test::composite_glyph({{1, 10, 10}, {1, 0, 0, 8192}}));
  const Bytes good = builder.build();
  for (std::size_t at = 0; at < good.size(); ++at) {
    for (const int value : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
      Bytes bad = good;
      bad[at] = static_cast<unsigned char>(value);
      const Baked baked = bake(bad, 12.0f, 64, 64, 'A' - 1, 4);
      EXPECT_LE(baked.result.num_baked, 4);
    }
  }
}

TEST(TrueTypeFace, RasterizesAGlyphOverTheBaseline) {
  TrueTypeFace face;
  ASSERT_TRUE(face.load(font().data(), font().size(), 0));
  GlyphBitmap glyph;
  ASSERT_TRUE(face.rasterize('A', 32.0f, &glyph));
  EXPECT_GT(glyph.width, 8);
  EXPECT_GT(glyph.height, 16);
  EXPECT_EQ(0, glyph.top + glyph.height) << "the letter stands on the baseline";
  EXPECT_NEAR(glyph.advance, 16.5503f, 0.001f);
  EXPECT_EQ(static_cast<std::size_t>(glyph.width * glyph.height), glyph.coverage.size());
}

TEST(TrueTypeFace, BlankHasAnAdvanceAndNoPixels) {
  TrueTypeFace face;
  ASSERT_TRUE(face.load(font().data(), font().size(), 0));
  GlyphBitmap glyph;
  ASSERT_TRUE(face.rasterize(' ', 32.0f, &glyph));
  EXPECT_EQ(0, glyph.width);
  EXPECT_GT(glyph.advance, 0.0f);
}

TEST(TrueTypeFace, RefusesWhatIsNoFont) {
  TrueTypeFace face;
  const Bytes text(1000, 'x');
  EXPECT_FALSE(face.load(nullptr, 10, 0));
  EXPECT_FALSE(face.load(text.data(), text.size(), 0));
  EXPECT_FALSE(face.load(font().data(), font().size(), -1));
  GlyphBitmap glyph;
  EXPECT_FALSE(face.rasterize('A', 12.0f, &glyph)) << "nothing is loaded";
  ASSERT_TRUE(face.load(font().data(), font().size(), 0));
  EXPECT_FALSE(face.rasterize('A', 0.0f, &glyph));
  EXPECT_FALSE(face.rasterize(-1, 12.0f, &glyph));
  EXPECT_FALSE(face.rasterize('A', 12.0f, nullptr));
}
