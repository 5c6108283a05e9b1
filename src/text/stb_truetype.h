/// @file
/// Rasterised glyphs of TrueType files. The font library behind it trusts its input, so every file
/// is checked here first and read from a padded copy.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace orv::detail {

/// Where a character stands in a baked bitmap, and how it is placed.
struct BakedChar {
  unsigned short x0, y0, x1, y1;  ///< rectangle in the bitmap, in pixels
  float xoff, yoff;               ///< from the pen to the upper left corner, y downwards
  float xadvance;                 ///< pen movement
};

/// What became of baking.
struct BakeResult {
  /// Why nothing was baked, never freed; null for a sound font, whether or not all characters
  /// fitted.
  const char* fault = nullptr;
  int num_baked = 0;  ///< characters that fitted
};

/// Draws `num_chars` characters from `first_char` on into a bitmap of one byte a pixel and writes
/// a row for each to `out`, both of which are zeroed first. What does not fit ends the work; the
/// rows behind it stay zero. A character that the font lacks gives the font's sign for it.
BakeResult bake_font_bitmap(const unsigned char* data, std::size_t size, float pixel_height,
                            unsigned char* pixels, int width, int height, int first_char,
                            int num_chars, BakedChar* out);

/// One glyph as coverage, one byte a pixel, upper row first.
struct GlyphBitmap {
  int width = 0;
  int height = 0;
  int left = 0;       ///< from the pen to the left column
  int top = 0;        ///< from the baseline to the upper row, y downwards
  float advance = 0;  ///< pen movement in pixels
  std::vector<unsigned char> coverage;
};

/// A font file held open to draw single glyphs from.
class TrueTypeFace {
 public:
  TrueTypeFace();
  ~TrueTypeFace();
  TrueTypeFace(const TrueTypeFace&) = delete;
  TrueTypeFace& operator=(const TrueTypeFace&) = delete;

  /// Copies the file. `face_index` picks a face of a collection. False when it cannot be used.
  bool load(const unsigned char* data, std::size_t size, int face_index);

  /// Draws one character for a cell of `pixel_height`; a character that the font lacks gives the
  /// font's sign for it. False when nothing is loaded or the size is out of range.
  bool rasterize(int code_point, float pixel_height, GlyphBitmap* out) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace orv::detail
