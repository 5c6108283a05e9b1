#include "text/text_rows.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

namespace orv::detail {
namespace {

using Rows = std::vector<float>;

constexpr float UNTOUCHED = 77.0f;

struct Corners {
  float x0, y0, x1, y1, u0, v0, u1, v1;
};

void put_vertex(Rows* rows, float x, float y, float z, float u, float v, const TextItem& item) {
  const float vertex[] = {x, y, z, 1, u, v, 0, 1, 0, 0, 0, 1, item.r, item.g, item.b, item.a};
  rows->insert(rows->end(), vertex, vertex + 16);
}

/// The six vertices of a character, written out.
void put_char(Rows* rows, const Corners& c, const TextItem& item) {
  put_vertex(rows, c.x0, c.y0, item.z, c.u0, c.v0, item);
  put_vertex(rows, c.x1, c.y0, item.z, c.u1, c.v0, item);
  put_vertex(rows, c.x1, c.y1, item.z, c.u1, c.v1, item);
  put_vertex(rows, c.x1, c.y1, item.z, c.u1, c.v1, item);
  put_vertex(rows, c.x0, c.y1, item.z, c.u0, c.v1, item);
  put_vertex(rows, c.x0, c.y0, item.z, c.u0, c.v0, item);
}

TextItem item_at(float x, float y, float z, bool new_line = true) {
  TextItem item;
  item.x = x;
  item.y = y;
  item.z = z;
  item.r = x / 7;
  item.g = 0.25f;
  item.b = 0.5f;
  item.a = 0.75f;
  item.new_line = new_line;
  return item;
}

bool same_bits(const Rows& a, const Rows& b) {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0;
}

// ---- page images ----

Charset charset_of_everything() {
  Charset charset{};
  charset.scale_w = 100;
  charset.scale_h = 60;
  charset.spacing[0] = 3;
  for (int i = 0; i < 256; ++i) {
    const auto n = static_cast<unsigned short>(i);
    const auto add = [n](int k) { return static_cast<unsigned short>(n + k); };
    charset.chars[i] = {n, add(1), add(2), add(3), add(4), add(5), add(6), 0};
  }
  charset.chars[std::size_t{'n'}].xoffset = 65535;
  return charset;
}

Rows plain_charset_rows(const Charset& charset, float scale, const TextQueue& queue) {
  Rows rows;
  for (std::size_t i = 0; i < queue.count(); ++i) {
    const TextItem& item = queue.item(i);
    float pen = item.x;
    for (const char c : queue.text(item)) {
      const CharsetChar& ch = charset.chars[static_cast<unsigned char>(c)];
      const float w = charset.scale_w, h = charset.scale_h;
      Corners k;
      k.u0 = float(ch.x) / w;
      k.u1 = k.u0 + float(ch.width) / w;
      k.v0 = 1.0f - float(ch.y) / h;
      k.v1 = 1.0f - (float(ch.height) / h + float(ch.y) / h);
      k.x0 = pen + float(ch.xoffset) * scale;
      k.x1 = k.x0 + float(ch.width) * scale;
      k.y0 = item.y - float(ch.yoffset) * scale;
      k.y1 = k.y0 - float(ch.height) * scale;
      put_char(&rows, k, item);
      pen += float(ch.xadvance) * scale;
      if (c == ' ') pen += float(charset.spacing[0]) * scale;
    }
  }
  return rows;
}

Rows written_charset_rows(const Charset& charset, float scale, TextQueue& queue) {
  CharsetGlyphs glyphs;
  glyphs.prepare(charset);
  Rows rows(queue.sum_chars() * FLOATS_PER_CHAR, UNTOUCHED);
  write_charset_rows(glyphs, scale, static_cast<float>(charset.spacing[0]) * scale, queue,
                     rows.data());
  return rows;
}

TEST(CharsetRows, AreThoseOfThePlainFormula) {
  const Charset charset = charset_of_everything();
  TextQueue queue;
  queue.add(item_at(10, -20, 0), "Hello, world: n\n\x7f");
  queue.add(item_at(0.3f, 5.7f, 2, false), "second, where the flag means nothing");
  queue.add(item_at(1e6f, -1e6f, -3), "\xff\x80 codes above 127");
  for (const float scale : {1.0f, 0.37f, -2.5f, 0.0f}) {
    EXPECT_TRUE(same_bits(written_charset_rows(charset, scale, queue),
                          plain_charset_rows(charset, scale, queue)))
        << scale;
  }
}

TEST(CharsetRows, SpacingWidensBlanksAlone) {
  Charset charset = charset_of_everything();
  for (CharsetChar& row : charset.chars) row = {0, 0, 1, 1, 0, 0, 10, 0};
  TextQueue queue;
  queue.add(item_at(0, 0, 0), "a b\tc");
  const Rows rows = written_charset_rows(charset, 2.0f, queue);
  const float lefts[] = {0, 20, 46, 66, 86};
  for (std::size_t i = 0; i < 5; ++i) EXPECT_EQ(rows[i * FLOATS_PER_CHAR], lefts[i]) << i;
}

TEST(CharsetRows, PageWithoutASizeGivesNoTexels) {
  for (const bool no_width : {false, true}) {
    Charset charset = charset_of_everything();
    (no_width ? charset.scale_w : charset.scale_h) = 0;
    TextQueue queue;
    queue.add(item_at(0, 0, 0), "A");
    const Rows rows = written_charset_rows(charset, 1.0f, queue);
    for (std::size_t vertex = 0; vertex < 6; ++vertex) {
      EXPECT_EQ(rows[vertex * 16 + (no_width ? 4 : 5)], 0.0f);
      EXPECT_NE(rows[vertex * 16 + (no_width ? 5 : 4)], 0.0f);
    }
  }
}

// ---- baked bitmaps ----

std::vector<BakedChar> baked_of_everything() {
  std::vector<BakedChar> chars(NUM_BAKED);
  for (int i = 0; i < NUM_BAKED; ++i) {
    const auto n = static_cast<unsigned short>(i);
    chars[static_cast<std::size_t>(i)] = {n,
                                          static_cast<unsigned short>(n + 1),
                                          static_cast<unsigned short>(2 * n + 3),
                                          static_cast<unsigned short>(n + 9),
                                          static_cast<float>(i) * 0.11f - 3,
                                          static_cast<float>(i) * -0.07f,
                                          static_cast<float>(i) * 0.13f + 1};
  }
  return chars;
}

void plain_baked_rows(const std::vector<BakedChar>& chars, int width, int height, float scale,
                      const TextQueue& queue, Rows* all) {
  float x = -1, y = -1;
  std::size_t place = 0;
  for (std::size_t i = 0; i < queue.count(); ++i) {
    const TextItem& item = queue.item(i);
    if (item.new_line) {
      x = item.x;
      y = -item.y;
    }
    for (const char c : queue.text(item)) {
      const int code = static_cast<unsigned char>(c);
      const std::size_t at = FLOATS_PER_CHAR * place++;
      if (code < 32 || code > 254) continue;
      const BakedChar& b = chars[static_cast<std::size_t>(code - 32)];
      const int rx = static_cast<int>(std::floor(x + b.xoff + 0.5f));
      const int ry = static_cast<int>(std::floor(y + b.yoff + 0.5f));
      const float w = static_cast<float>(width), h = static_cast<float>(height);
      const Corners k = {scale * float(rx),
                         -(scale * float(ry)),
                         scale * float(rx + b.x1 - b.x0),
                         -(scale * float(ry + b.y1 - b.y0)),
                         float(b.x0) / w,
                         float(b.y0) / h,
                         float(b.x1) / w,
                         float(b.y1) / h};
      Rows six;
      put_char(&six, k, item);
      std::copy(six.begin(), six.end(), all->begin() + static_cast<std::ptrdiff_t>(at));
      x += b.xadvance;
    }
  }
}

Rows written_baked_rows(const std::vector<BakedChar>& chars, float scale, TextQueue& queue) {
  BakedGlyphs glyphs;
  glyphs.prepare(chars.data(), 512, 256);
  Rows rows(queue.sum_chars() * FLOATS_PER_CHAR, UNTOUCHED);
  write_baked_rows(glyphs, scale, queue, rows.data());
  return rows;
}

TEST(BakedRows, AreThoseOfThePlainFormula) {
  const std::vector<BakedChar> chars = baked_of_everything();
  TextQueue queue;
  queue.add(item_at(0, 0, 0, false), "goes on from nowhere");
  queue.add(item_at(10.4f, -20.7f, 1), "Hello\nworld\x1f\x7f\xfe\xff");
  queue.add(item_at(5, 5, 2, false), "and on");
  queue.add(item_at(-300.5f, 1e6f, 3), "elsewhere");
  for (const float scale : {1.0f, 0.37f, -2.5f, 0.0f}) {
    Rows plain(queue.sum_chars() * FLOATS_PER_CHAR, UNTOUCHED);
    plain_baked_rows(chars, 512, 256, scale, queue, &plain);
    EXPECT_TRUE(same_bits(written_baked_rows(chars, scale, queue), plain)) << scale;
  }
}

TEST(BakedRows, CharactersOutsideTheRangeLeaveTheirVerticesAndDoNotAdvance) {
  const std::vector<BakedChar> chars = baked_of_everything();
  TextQueue queue;
  queue.add(item_at(0, 0, 0),
            "\x01"
            "A\n\xff"
            "A");
  const Rows rows = written_baked_rows(chars, 1.0f, queue);
  for (const std::size_t place : {0u, 2u, 3u}) {
    for (std::size_t i = 0; i < FLOATS_PER_CHAR; ++i) {
      EXPECT_EQ(rows[place * FLOATS_PER_CHAR + i], UNTOUCHED) << place;
    }
  }
  const BakedChar& a = chars['A' - 32];
  EXPECT_EQ(rows[4 * FLOATS_PER_CHAR], std::floor(a.xadvance + a.xoff + 0.5f));
}

TEST(BakedRows, PenBeginsAtMinusOne) {
  std::vector<BakedChar> chars(NUM_BAKED, BakedChar{0, 0, 4, 4, 0, 0, 5});
  TextQueue queue;
  queue.add(item_at(100, 100, 6, false), "A");
  const Rows rows = written_baked_rows(chars, 1.0f, queue);
  EXPECT_EQ(rows[0], -1.0f);
  EXPECT_EQ(rows[1], 1.0f);
  EXPECT_EQ(rows[2], 6.0f);
}

TEST(BakedRows, AnyPositionIsWrittenSafely) {
  const std::vector<BakedChar> chars = baked_of_everything();
  for (const float value : {3e9f, -3e9f, std::numeric_limits<float>::infinity(),
                            std::numeric_limits<float>::quiet_NaN(), 16777217.0f}) {
    TextQueue queue;
    queue.add(item_at(value, 1, 0), "A");
    const float x = written_baked_rows(chars, 1.0f, queue)[0];
    const float wanted = std::floor(value + chars['A' - 32].xoff + 0.5f);
    EXPECT_TRUE(x == wanted || (std::isnan(x) && std::isnan(wanted))) << value;
  }
}

}  // namespace
}  // namespace orv::detail
