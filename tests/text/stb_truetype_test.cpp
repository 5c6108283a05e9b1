#include "text/stb_truetype.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>
#include <vector>

using orv::detail::bake_font_bitmap;
using orv::detail::BakedChar;
using orv::detail::GlyphBitmap;
using orv::detail::TrueTypeFace;

namespace {

using Bytes = std::vector<unsigned char>;

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
  int result = 0;
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

std::size_t u16(const Bytes& data, std::size_t at) {
  return static_cast<std::size_t>(data[at]) << 8 | data[at + 1];
}
std::size_t u32(const Bytes& data, std::size_t at) {
  return u16(data, at) << 16 | u16(data, at + 2);
}
void put32(Bytes* data, std::size_t at, std::size_t value) {
  for (int i = 0; i < 4; ++i) {
    (*data)[at + static_cast<std::size_t>(i)] =
        static_cast<unsigned char>(value >> (24 - 8 * i) & 0xFF);
  }
}

/// Row of a table in the directory of the test font.
std::size_t table_row(const Bytes& data, const std::string& tag) {
  for (std::size_t i = 0; i < u16(data, 4); ++i) {
    const std::size_t row = 12 + 16 * i;
    if (std::equal(tag.begin(), tag.end(), data.begin() + static_cast<std::ptrdiff_t>(row))) {
      return row;
    }
  }
  ADD_FAILURE() << "no table " << tag;
  return 12;
}

}  // namespace

TEST(StbTruetype, BakesAllCharactersAndReportsTheFirstFreeRow) {
  const Baked baked = bake(font(), 32.0f, 512, 512);
  EXPECT_GT(baked.result, 0);
  EXPECT_LT(baked.result, 512);
  const BakedChar& a = baked.chars['A' - 32];
  EXPECT_NEAR(a.xadvance, 16.5503f, 0.001f);
  EXPECT_GT(a.x1, a.x0);
  EXPECT_GT(a.y1, a.y0);
  EXPECT_EQ(0, baked.pixels[0]) << "the bitmap is zeroed first";
  EXPECT_EQ(255, *std::max_element(baked.pixels.begin(), baked.pixels.end()));
}

TEST(StbTruetype, TooSmallBitmapReportsHowManyCharactersFitted) {
  const Baked baked = bake(font(), 32.0f, 64, 64);
  ASSERT_LT(baked.result, 0);
  const auto fitted = static_cast<std::size_t>(-baked.result);
  ASSERT_LT(fitted, baked.chars.size());
  EXPECT_GT(baked.chars[fitted - 1].xadvance, 0.0f);
  EXPECT_EQ(0.0f, baked.chars[fitted].xadvance) << "rows behind stay zero";
}

TEST(StbTruetype, GlyphWiderThanTheBitmapStaysInside) {
  for (const int width : {1, 2, 3, 8, 15}) {
    const Baked baked = bake(font(), 64.0f, width, 256);
    EXPECT_LE(baked.result, 0) << width;
  }
}

TEST(StbTruetype, BadArgumentsBakeNothing) {
  Bytes pixels(64 * 64);
  BakedChar row[96];
  const auto call = [&](const unsigned char* data, float height, unsigned char* to, int w, int h,
                        int first, int count, BakedChar* out) {
    return bake_font_bitmap(data, font().size(), height, to, w, h, first, count, out);
  };
  const unsigned char* data = font().data();
  EXPECT_LE(call(nullptr, 10, pixels.data(), 64, 64, 32, 96, row), 0);
  EXPECT_LE(call(data, 10, nullptr, 64, 64, 32, 96, row), 0);
  EXPECT_LE(call(data, 10, pixels.data(), 0, 64, 32, 96, row), 0);
  EXPECT_LE(call(data, 10, pixels.data(), 64, -1, 32, 96, row), 0);
  EXPECT_LE(call(data, 10, pixels.data(), 65536, 65536, 32, 96, row), 0);
  EXPECT_LE(call(data, 10, pixels.data(), 64, 64, -5, 96, row), 0);
  EXPECT_LE(call(data, 10, pixels.data(), 64, 64, 32, 0, row), 0);
  EXPECT_LE(call(data, 10, pixels.data(), 64, 64, 32, 96, nullptr), 0);
  for (const float height : {0.0f, -3.0f, 1e9f, std::numeric_limits<float>::quiet_NaN(),
                             std::numeric_limits<float>::infinity()}) {
    EXPECT_LE(call(data, height, pixels.data(), 64, 64, 32, 96, row), 0) << height;
  }
}

TEST(StbTruetype, EveryTruncationIsRefusedOrDrawnSafely) {
  const Bytes& good = font();
  for (std::size_t size = 0; size < good.size(); size += size < 600 ? 1 : 4999) {
    const Bytes cut(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size));
    const Baked baked = bake(cut, 12.0f, 128, 128);
    EXPECT_LE(baked.result, 128) << size;
    if (size < 300) {
      EXPECT_LE(baked.result, 0) << size;
    }
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
    EXPECT_EQ(-1, bake(bad, 12.0f, 256, 256).result) << tag;
  }
}

TEST(StbTruetype, TablePastTheEndOfTheFileIsRefused) {
  for (const char* tag : {"cmap", "head", "hhea", "hmtx", "maxp", "loca", "glyf"}) {
    Bytes bad = font();
    put32(&bad, table_row(bad, tag) + 8, bad.size() - 4);
    EXPECT_EQ(-1, bake(bad, 12.0f, 256, 256).result) << tag;
    put32(&bad, table_row(bad, tag) + 8, 0xFFFFFFF0u);
    EXPECT_EQ(-1, bake(bad, 12.0f, 256, 256).result) << tag;
  }
}

TEST(StbTruetype, GlyphMadeOfItselfEndsTheBaking) {
  Bytes bad = font();
  const std::size_t glyf = u32(bad, table_row(bad, "glyf") + 8);
  const std::size_t loca = u32(bad, table_row(bad, "loca") + 8);
  // Every glyph becomes one composite glyph, whose only component is glyph 40.
  const bool long_offsets = u16(bad, u32(bad, table_row(bad, "head") + 8) + 50) == 1;
  ASSERT_TRUE(long_offsets);
  const std::size_t count = u16(bad, u32(bad, table_row(bad, "maxp") + 8) + 4);
  for (std::size_t i = 0; i <= count; ++i) put32(&bad, loca + 4 * i, i % 2 * 64);
  const unsigned char composite[] = {0xFF, 0xFF, 0, 0, 0, 0, 0, 64, 0, 64, 0, 0x22, 0, 40, 0, 0};
  for (const std::size_t at : {std::size_t{0}, std::size_t{64}}) {
    for (std::size_t i = 0; i < 64; ++i) {
      bad[glyf + at + i] = i < sizeof(composite) ? composite[i] : composite[10 + (i - 10) % 6];
    }
  }
  EXPECT_LE(bake(bad, 12.0f, 256, 256).result, 0);
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
