#include "text/text_rows.h"

#include <orv/math/lanes.h>

#include <cmath>

namespace orv::detail {

namespace {

using lanes::float4;

constexpr int LAST_BAKED = 254;

/// A rectangle of texels on a rectangle of space.
struct Quad {
  float x0, y0, x1, y1;
  float u0, v0, u1, v1;
};

inline void write_vertex(float* row, float4 position, float4 uv, float4 color) {
  lanes::store(row, position);
  lanes::store(row + 4, uv);
  lanes::store(row + 8, float4{0, 0, 0, 1});
  lanes::store(row + 12, color);
}

inline void write_quad(float* rows, const Quad& q, float z, float4 color) {
  const float4 p0 = {q.x0, q.y0, z, 1}, uv0 = {q.u0, q.v0, 0, 1};
  const float4 p2 = {q.x1, q.y1, z, 1}, uv2 = {q.u1, q.v1, 0, 1};
  const float4 p1 = {q.x1, q.y0, z, 1}, uv1 = {q.u1, q.v0, 0, 1};
  const float4 p3 = {q.x0, q.y1, z, 1}, uv3 = {q.u0, q.v1, 0, 1};
  write_vertex(rows, p0, uv0, color);
  write_vertex(rows + FLOATS_PER_VERTEX, p1, uv1, color);
  write_vertex(rows + FLOATS_PER_VERTEX * 2, p2, uv2, color);
  write_vertex(rows + FLOATS_PER_VERTEX * 3, p2, uv2, color);
  write_vertex(rows + FLOATS_PER_VERTEX * 4, p3, uv3, color);
  write_vertex(rows + FLOATS_PER_VERTEX * 5, p0, uv0, color);
}

/// The next whole number below, as a call of the mathematics library would cost as much as a row.
inline float floor_of(float value) {
  if (!(std::fabs(value) < 8388608.0f)) return value;  // large ones are whole
  const auto cut = static_cast<float>(static_cast<int>(value));
  return cut > value ? cut - 1.0f : cut;
}

inline float4 color_of(const TextItem& item) { return float4{item.r, item.g, item.b, item.a}; }

}  // namespace

// ---- page images ----

void CharsetGlyphs::prepare(const Charset& charset) {
  const float w = charset.scale_w, h = charset.scale_h;
  for (int i = 0; i < Charset::NUM_CHARS; ++i) {
    const CharsetChar& ch = charset.chars[i];
    CharsetGlyph& glyph = glyphs_[i];
    glyph = {};
    if (charset.scale_w != 0) {
      glyph.u0 = static_cast<float>(ch.x) / w;
      glyph.u1 = glyph.u0 + static_cast<float>(ch.width) / w;
    }
    if (charset.scale_h != 0) {
      glyph.v0 = 1.0f - static_cast<float>(ch.y) / h;
      glyph.v1 = 1.0f - (static_cast<float>(ch.height) / h + static_cast<float>(ch.y) / h);
    }
    glyph.xoffset = ch.xoffset;
    glyph.yoffset = ch.yoffset;
    glyph.width = ch.width;
    glyph.height = ch.height;
    glyph.xadvance = ch.xadvance;
  }
}

void write_charset_rows(const CharsetGlyphs& glyphs, float scale, float space,
                        const TextQueue& queue, float* rows) {
  for (std::size_t i = 0; i < queue.count(); ++i) {
    const TextItem& item = queue.item(i);
    const float4 color = color_of(item);
    float pen = item.x;
    for (const char c : queue.text(item)) {
      const CharsetGlyph& glyph = glyphs[static_cast<unsigned char>(c)];
      Quad quad;
      quad.x0 = pen + glyph.xoffset * scale;
      quad.x1 = quad.x0 + glyph.width * scale;
      quad.y0 = item.y - glyph.yoffset * scale;
      quad.y1 = quad.y0 - glyph.height * scale;
      quad.u0 = glyph.u0;
      quad.v0 = glyph.v0;
      quad.u1 = glyph.u1;
      quad.v1 = glyph.v1;
      write_quad(rows, quad, item.z, color);
      rows += FLOATS_PER_CHAR;
      pen += glyph.xadvance * scale;
      if (c == ' ') pen += space;
    }
  }
}

// ---- baked bitmaps ----

void BakedGlyphs::prepare(const BakedChar* chars, int width, int height) {
  const auto w = static_cast<float>(width), h = static_cast<float>(height);
  for (int i = 0; i < NUM_BAKED; ++i) {
    const BakedChar& b = chars[i];
    glyphs_[i] = {b.xoff,
                  b.yoff,
                  b.xadvance,
                  static_cast<float>(b.x0) / w,
                  static_cast<float>(b.y0) / h,
                  static_cast<float>(b.x1) / w,
                  static_cast<float>(b.y1) / h,
                  static_cast<float>(b.x1 - b.x0),
                  static_cast<float>(b.y1 - b.y0)};
  }
}

void write_baked_rows(const BakedGlyphs& glyphs, float scale, const TextQueue& queue, float* rows) {
  float x = -1, y = -1;
  for (std::size_t i = 0; i < queue.count(); ++i) {
    const TextItem& item = queue.item(i);
    const float4 color = color_of(item);
    if (item.new_line) {
      x = item.x;
      y = -item.y;
    }
    for (const char c : queue.text(item)) {
      const int code = static_cast<unsigned char>(c);
      float* const to = rows;
      rows += FLOATS_PER_CHAR;
      if (code < FIRST_BAKED || code > LAST_BAKED) continue;
      const BakedGlyph& glyph = glyphs[code - FIRST_BAKED];
      const float rx = floor_of(x + glyph.xoff + 0.5f);
      const float ry = floor_of(y + glyph.yoff + 0.5f);
      Quad quad;
      quad.x0 = scale * rx;
      quad.x1 = scale * (rx + glyph.width);
      quad.y0 = -(scale * ry);
      quad.y1 = -(scale * (ry + glyph.height));
      quad.u0 = glyph.s0;
      quad.v0 = glyph.t0;
      quad.u1 = glyph.s1;
      quad.v1 = glyph.t1;
      write_quad(to, quad, item.z, color);
      x += glyph.xadvance;
    }
  }
}

}  // namespace orv::detail
