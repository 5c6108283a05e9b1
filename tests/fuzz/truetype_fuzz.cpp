// Any bytes as a TrueType file: what is baked stays within the bitmap and ends soon.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "text/stb_truetype.h"

namespace {

constexpr int COUNT = 224;

}  // namespace

// The first three bytes are the height of characters and the sides of the bitmap.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 3 || size > (1u << 20)) return 0;
  const float height = static_cast<float>(data[0]) / 2;
  const int width = 1 + data[1], rows = 1 + data[2];
  std::vector<unsigned char> pixels(static_cast<std::size_t>(width) *
                                    static_cast<std::size_t>(rows));
  std::vector<orv::detail::BakedChar> chars(COUNT);
  const orv::detail::BakeResult result = orv::detail::bake_font_bitmap(
      data + 3, size - 3, height, pixels.data(), width, rows, 32, COUNT, chars.data());
  if (result.num_baked < 0 || result.num_baked > COUNT) std::abort();
  if (result.fault && result.num_baked != 0) std::abort();
  for (const orv::detail::BakedChar& row : chars) {
    if (row.x1 > width || row.y1 > rows || row.x0 > row.x1 || row.y0 > row.y1) std::abort();
    if (!std::isfinite(row.xadvance)) std::abort();
  }
  orv::detail::TrueTypeFace face;
  if (!face.load(data + 3, size - 3, data[0] & 1)) return 0;
  for (const int code : {32, 65, 233, 0x20AC}) {
    orv::detail::GlyphBitmap glyph;
    if (!face.rasterize(code, height, &glyph)) continue;
    const auto area =
        static_cast<std::size_t>(glyph.width) * static_cast<std::size_t>(glyph.height);
    if (glyph.coverage.size() != area) std::abort();
  }
  return 0;
}
