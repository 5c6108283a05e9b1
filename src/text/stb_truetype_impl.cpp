#include "text/stb_truetype.h"

#include "text/truetype_check.h"

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

// Drawing takes a few nanoseconds for each piece of an outline and for each pixel on its way.
constexpr double MAX_PIECES = 1 << 16;        // of a glyph, each being kept
constexpr double MAX_STEPS = 64.0 * 1048576;  // of all glyphs

constexpr const char* LARGE_OUTLINES = "outlines that are too large to draw";
constexpr const char* SPOILED_OUTLINES = "spoiled outlines";

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

/// Steps that drawing a glyph takes; infinite when it would take too much memory.
double drawing_steps(const GlyphOutline& outline, float scale, int width) {
  if (outline.is_empty()) return 0;
  const double pixels = outline.length * static_cast<double>(scale);
  // Curves are halved until they are flat to 0.35 pixels, which quarters what they stand off.
  const double vertices = outline.points + 2.0 * outline.contours;
  const double pieces = vertices + 2 * std::sqrt(outline.curves * pixels / 2 / 0.35);
  if (pieces > MAX_PIECES) return HUGE_VAL;
  // Sorting them may take the square of their number, where a file is made to that end.
  const double sorting = pieces * pieces / 256;
  // What leaves the glyph's own box is looked for in every pixel of the row.
  return pieces + sorting + pixels * (outline.in_header_box ? 1 : std::max(width, 1));
}

struct BakePlan {
  const char* fault = nullptr;
  int count = 0;  ///< characters before the first one that is too wide for the bitmap
};

BakePlan plan_bake(const TrueTypeCheck& check, const stbtt_fontinfo& info, float pixel_height,
                   int width, int first_char, int num_chars) {
  BakePlan plan;
  const float scale = stbtt_ScaleForPixelHeight(&info, pixel_height);
  double steps = 0;
  for (; plan.count < num_chars; ++plan.count) {
    const int glyph = stbtt_FindGlyphIndex(&info, first_char + plan.count);
    GlyphOutline outline;
    if (!check.measure_glyph(glyph, &outline)) {
      plan.fault = SPOILED_OUTLINES;
      return plan;
    }
    // Not before, as it reads the glyph's header.
    const GlyphBox box = glyph_box(info, glyph, scale);
    if (box.width() < 0 || box.height() < 0) {
      plan.fault = SPOILED_OUTLINES;
      return plan;
    }
    if (box.width() + 1 >= width) return plan;
    steps += drawing_steps(outline, scale, box.width());
    if (steps > MAX_STEPS) {
      plan.fault = LARGE_OUTLINES;
      return plan;
    }
  }
  return plan;
}

bool is_good_height(float pixel_height) {
  return pixel_height > 0.0f && pixel_height <= MAX_PIXEL_HEIGHT;
}

}  // namespace

BakeResult bake_font_bitmap(const unsigned char* data, std::size_t size, float pixel_height,
                            unsigned char* pixels, int width, int height, int first_char,
                            int num_chars, BakedChar* out) {
  if (!data || !pixels || !out || width <= 0 || height <= 0 || num_chars <= 0) {
    return {"nothing to bake"};
  }
  if (static_cast<std::int64_t>(width) * height > INT_MAX) return {"too large a bitmap"};
  if (first_char < 0 || first_char > 0x10FFFF || num_chars > 0x10FFFF) {
    return {"characters out of range"};
  }
  std::memset(pixels, 0, static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  std::fill_n(out, num_chars, BakedChar{});
  if (!is_good_height(pixel_height)) return {"a height of characters out of range"};
  if (size > MAX_FILE_SIZE) return {"too large a file"};
  TrueTypeCheck check(data, size);
  if (const char* fault = check.open(0)) return {fault};

  std::vector<unsigned char> copy = padded_copy(data, size);
  stbtt_fontinfo info;
  if (!stbtt_InitFont(&info, copy.data(), 0)) return {"no map of Unicode characters"};
  const BakePlan plan = plan_bake(check, info, pixel_height, width, first_char, num_chars);
  if (plan.fault) return {plan.fault};
  if (plan.count == 0) return {};
  static_assert(sizeof(BakedChar) == sizeof(stbtt_bakedchar));
  std::vector<stbtt_bakedchar> rows(static_cast<std::size_t>(plan.count));
  const int end = stbtt_BakeFontBitmap(copy.data(), 0, pixel_height, pixels, width, height,
                                       first_char, plan.count, rows.data());
  // The first row that is free, or the number of characters that fitted, negated.
  const int num_baked = end > 0 ? plan.count : std::min(-end, plan.count);
  for (int i = 0; i < num_baked; ++i) {
    const stbtt_bakedchar& row = rows[static_cast<std::size_t>(i)];
    out[i] = {row.x0, row.y0, row.x1, row.y1, row.xoff, row.yoff, row.xadvance};
  }
  return {nullptr, num_baked};
}

struct TrueTypeFace::Impl {
  Impl(const unsigned char* data, std::size_t size)
      : copy(padded_copy(data, size)), check(copy.data(), size) {}

  std::vector<unsigned char> copy;
  TrueTypeCheck check;
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
  if (impl->check.open(start)) return false;
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
  if (!impl_->check.has_glyph(glyph)) return true;
  int advance = 0, bearing = 0;
  stbtt_GetGlyphHMetrics(&info, glyph, &advance, &bearing);
  out->advance = scale * static_cast<float>(advance);
  GlyphOutline outline;
  if (!impl_->check.measure_glyph(glyph, &outline)) return true;
  const GlyphBox box = glyph_box(info, glyph, scale);
  const int limit = 4 * static_cast<int>(std::ceil(pixel_height)) + 16;
  if (box.width() <= 0 || box.height() <= 0) return true;
  if (box.width() > limit || box.height() > limit) return true;
  if (drawing_steps(outline, scale, box.width()) > MAX_STEPS) return true;
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
