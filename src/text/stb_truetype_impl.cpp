#include "text/stb_truetype.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>

#define STBTT_STATIC
#define STB_TRUETYPE_IMPLEMENTATION
// A violated assumption ends in an empty glyph, never in an abort.
#define STBTT_assert(x) ((void)(x))
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#include <stb/stb_truetype.h>
#pragma GCC diagnostic pop

namespace orv::detail {
namespace {

// No offset that the font library computes from a checked position reaches further than this, as
// all its counts are 16 bits wide.
constexpr std::size_t PADDING = std::size_t{1} << 20;
constexpr std::size_t MAX_FILE_SIZE = std::size_t{1} << 29;
constexpr float MAX_PIXEL_HEIGHT = 4096.0f;
constexpr int MAX_POINTS = 32768;
constexpr int MAX_COMPONENTS = 256;
constexpr int MAX_DEPTH = 8;

/// Big-endian reading that sees zeros behind the end of the file, as in the padded copy.
class FontFile {
 public:
  FontFile(const unsigned char* data, std::size_t size) : data_(data), size_(size) {}

  std::uint64_t size() const { return size_; }
  unsigned u8(std::uint64_t at) const { return at < size_ ? data_[at] : 0u; }
  unsigned u16(std::uint64_t at) const { return u8(at) << 8 | u8(at + 1); }
  int s16(std::uint64_t at) const { return static_cast<std::int16_t>(u16(at)); }
  std::uint64_t u32(std::uint64_t at) const {
    return static_cast<std::uint64_t>(u16(at)) << 16 | u16(at + 2);
  }

 private:
  const unsigned char* data_;
  std::size_t size_;
};

struct Table {
  std::uint64_t offset = 0;
  std::uint64_t length = 0;
};

/// Walks the tables that glyph drawing reads and refuses what would be read past the file.
class FontCheck {
 public:
  FontCheck(const unsigned char* data, std::size_t size) : file_(data, size) {}

  bool open(std::uint64_t start) {
    if (start + 12 > file_.size()) return false;
    const std::uint64_t count = file_.u16(start + 4);
    if (start + 12 + count * 16 > file_.size()) return false;
    Table cmap, head, hhea, hmtx, maxp;
    const bool found =
        find(start, count, "cmap", 4, &cmap) && find(start, count, "head", 54, &head) &&
        find(start, count, "hhea", 36, &hhea) && find(start, count, "hmtx", 4, &hmtx) &&
        find(start, count, "maxp", 6, &maxp) && find(start, count, "loca", 2, &loca_) &&
        find(start, count, "glyf", 10, &glyf_);
    if (!found) return false;
    num_glyphs_ = static_cast<int>(file_.u16(maxp.offset + 4));
    long_offsets_ = file_.u16(head.offset + 50) == 1;
    height_ = file_.s16(hhea.offset + 4) - file_.s16(hhea.offset + 6);
    return height_ > 0 && file_.u16(head.offset + 50) < 2 && check_character_map(cmap);
  }

  /// True when the outline of the glyph and of its components can be read and is of sane size.
  bool is_glyph_safe(int glyph) const {
    Cost cost;
    return walk_glyph(glyph, 0, &cost);
  }

 private:
  struct Cost {
    int points = 0;
    int components = 0;
  };

  bool find(std::uint64_t start, std::uint64_t count, const char* tag, std::uint64_t min_length,
            Table* table) const {
    const std::uint64_t wanted = static_cast<std::uint64_t>(
        static_cast<unsigned char>(tag[0]) << 24 | static_cast<unsigned char>(tag[1]) << 16 |
        static_cast<unsigned char>(tag[2]) << 8 | static_cast<unsigned char>(tag[3]));
    for (std::uint64_t i = 0; i < count; ++i) {
      const std::uint64_t row = start + 12 + i * 16;
      if (file_.u32(row) != wanted) continue;
      table->offset = file_.u32(row + 8);
      table->length = file_.u32(row + 12);
      return table->offset != 0 && table->length >= min_length &&
             table->offset + table->length <= file_.size();
    }
    return false;
  }

  bool check_character_map(const Table& cmap) const {
    const std::uint64_t count = file_.u16(cmap.offset + 2);
    if (4 + count * 8 > cmap.length) return false;
    for (std::uint64_t i = 0; i < count; ++i) {
      const std::uint64_t offset = file_.u32(cmap.offset + 4 + i * 8 + 4);
      if (offset + 2 > cmap.length) return false;
      const std::uint64_t map = cmap.offset + offset;
      const unsigned format = file_.u16(map);
      if (format != 12 && format != 13) continue;
      if (map + 16 + file_.u32(map + 12) * 12 > file_.size()) return false;
    }
    return true;
  }

  std::uint64_t glyph_offset(int glyph) const {
    const auto index = static_cast<std::uint64_t>(glyph);
    return long_offsets_ ? file_.u32(loca_.offset + index * 4)
                         : std::uint64_t{file_.u16(loca_.offset + index * 2)} * 2;
  }

  bool walk_glyph(int glyph, int depth, Cost* cost) const {
    if (glyph < 0 || glyph >= num_glyphs_) return true;
    if (depth > MAX_DEPTH) return false;
    const std::uint64_t first = glyph_offset(glyph);
    if (first == glyph_offset(glyph + 1)) return true;
    const std::uint64_t at = glyf_.offset + first;
    if (at >= file_.size()) return false;
    const int contours = file_.s16(at);
    if (contours > 0) {
      cost->points +=
          1 + static_cast<int>(file_.u16(at + 10 + static_cast<std::uint64_t>(contours - 1) * 2));
      return cost->points <= MAX_POINTS;
    }
    return contours == 0 || walk_components(at + 10, depth, cost);
  }

  bool walk_components(std::uint64_t at, int depth, Cost* cost) const {
    enum { WORDS = 1, SCALE = 8, MORE = 32, TWO_SCALES = 64, MATRIX = 128 };
    for (;;) {
      if (++cost->components > MAX_COMPONENTS) return false;
      const unsigned flags = file_.u16(at);
      const int glyph = static_cast<int>(file_.u16(at + 2));
      if (!walk_glyph(glyph, depth + 1, cost)) return false;
      at += 4;
      // The library skips the offset only when it is one of coordinates, which flag 2 says.
      if (flags & 2) at += flags & WORDS ? 4 : 2;
      if (flags & SCALE) {
        at += 2;
      } else if (flags & TWO_SCALES) {
        at += 4;
      } else if (flags & MATRIX) {
        at += 8;
      }
      if (!(flags & MORE)) return true;
    }
  }

  FontFile file_;
  Table loca_, glyf_;
  int num_glyphs_ = 0;
  bool long_offsets_ = false;
  int height_ = 0;
};

std::vector<unsigned char> padded_copy(const unsigned char* data, std::size_t size) {
  std::vector<unsigned char> copy(size + PADDING);
  std::memcpy(copy.data(), data, size);
  return copy;
}

struct GlyphBox {
  int x0 = 0, y0 = 0, x1 = 0, y1 = 0;
  int width() const { return x1 - x0; }
  int height() const { return y1 - y0; }
};

GlyphBox glyph_box(const stbtt_fontinfo& info, int glyph, float scale) {
  GlyphBox box;
  stbtt_GetGlyphBitmapBox(&info, glyph, scale, scale, &box.x0, &box.y0, &box.x1, &box.y1);
  return box;
}

/// How many of the wanted characters can be drawn without leaving a row of the bitmap.
int count_bakeable(const FontCheck& check, const stbtt_fontinfo& info, float pixel_height,
                   int width, int first_char, int num_chars) {
  const float scale = stbtt_ScaleForPixelHeight(&info, pixel_height);
  for (int i = 0; i < num_chars; ++i) {
    const int glyph = stbtt_FindGlyphIndex(&info, first_char + i);
    if (!check.is_glyph_safe(glyph)) return i;
    const GlyphBox box = glyph_box(info, glyph, scale);
    if (box.width() < 0 || box.height() < 0 || box.width() >= width - 2) return i;
  }
  return num_chars;
}

bool is_good_height(float pixel_height) {
  return pixel_height > 0.0f && pixel_height <= MAX_PIXEL_HEIGHT;
}

}  // namespace

int bake_font_bitmap(const unsigned char* data, std::size_t size, float pixel_height,
                     unsigned char* pixels, int width, int height, int first_char, int num_chars,
                     BakedChar* out) {
  if (!data || !pixels || !out || width <= 0 || height <= 0 || num_chars <= 0) return -1;
  if (static_cast<std::int64_t>(width) * height > INT_MAX) return -1;
  if (first_char < 0 || first_char > 0x10FFFF || num_chars > 0x10FFFF) return -1;
  std::memset(pixels, 0, static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  std::fill_n(out, num_chars, BakedChar{});
  if (size > MAX_FILE_SIZE || !is_good_height(pixel_height)) return -1;
  FontCheck check(data, size);
  if (!check.open(0)) return -1;

  std::vector<unsigned char> copy = padded_copy(data, size);
  stbtt_fontinfo info;
  if (!stbtt_InitFont(&info, copy.data(), 0)) return -1;
  const int count = count_bakeable(check, info, pixel_height, width, first_char, num_chars);
  if (count == 0) return 0;
  static_assert(sizeof(BakedChar) == sizeof(stbtt_bakedchar));
  std::vector<stbtt_bakedchar> rows(static_cast<std::size_t>(count));
  const int result = stbtt_BakeFontBitmap(copy.data(), 0, pixel_height, pixels, width, height,
                                          first_char, count, rows.data());
  const int baked = result > 0 ? count : std::min(-result, count);
  for (int i = 0; i < baked; ++i) {
    const stbtt_bakedchar& row = rows[static_cast<std::size_t>(i)];
    out[i] = {row.x0, row.y0, row.x1, row.y1, row.xoff, row.yoff, row.xadvance};
  }
  return result > 0 && count < num_chars ? -count : result;
}

struct TrueTypeFace::Impl {
  Impl(const unsigned char* data, std::size_t size)
      : copy(padded_copy(data, size)), check(copy.data(), size) {}

  std::vector<unsigned char> copy;
  FontCheck check;
  stbtt_fontinfo info = {};
};

TrueTypeFace::TrueTypeFace() = default;
TrueTypeFace::~TrueTypeFace() = default;

bool TrueTypeFace::load(const unsigned char* data, std::size_t size, int face_index) {
  impl_.reset();
  if (!data || size < 12 || size > MAX_FILE_SIZE || face_index < 0) return false;
  const FontFile file(data, size);
  std::uint64_t start = 0;
  if (file.u32(0) == 0x74746366) {  // "ttcf", a collection
    const auto index = static_cast<std::uint64_t>(face_index);
    if (index >= file.u32(8)) return false;
    start = file.u32(12 + index * 4);
  }
  auto impl = std::make_unique<Impl>(data, size);
  if (!impl->check.open(start)) return false;
  if (!stbtt_InitFont(&impl->info, impl->copy.data(), static_cast<int>(start))) return false;
  impl_ = std::move(impl);
  return true;
}

bool TrueTypeFace::rasterize(int code_point, float pixel_height, GlyphBitmap* out) const {
  if (!impl_ || !out || code_point < 0 || !is_good_height(pixel_height)) return false;
  *out = GlyphBitmap{};
  const stbtt_fontinfo& info = impl_->info;
  const float scale = stbtt_ScaleForPixelHeight(&info, pixel_height);
  const int glyph = stbtt_FindGlyphIndex(&info, code_point);
  int advance = 0, bearing = 0;
  stbtt_GetGlyphHMetrics(&info, glyph, &advance, &bearing);
  out->advance = scale * static_cast<float>(advance);
  if (!impl_->check.is_glyph_safe(glyph)) return true;
  const GlyphBox box = glyph_box(info, glyph, scale);
  const int limit = 4 * static_cast<int>(std::ceil(pixel_height)) + 16;
  if (box.width() <= 0 || box.height() <= 0) return true;
  if (box.width() > limit || box.height() > limit) return true;
  out->width = box.width();
  out->height = box.height();
  out->left = box.x0;
  out->top = box.y0;
  out->coverage.resize(static_cast<std::size_t>(out->width) *
                       static_cast<std::size_t>(out->height));
  stbtt_MakeGlyphBitmap(&info, out->coverage.data(), out->width, out->height, out->width, scale,
                        scale, glyph);
  return true;
}

}  // namespace orv::detail
