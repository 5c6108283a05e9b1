/// @file
/// Texts as vertices: six for each character, sixteen floats each.
#pragma once

#include "text/charset.h"
#include "text/stb_truetype.h"
#include "text/text_queue.h"

namespace orv::detail {

inline constexpr unsigned int VERTICES_PER_CHAR = 6;
inline constexpr unsigned int FLOATS_PER_VERTEX = 16;
inline constexpr unsigned int FLOATS_PER_CHAR = VERTICES_PER_CHAR * FLOATS_PER_VERTEX;

/// A character of a page image with all that does not depend on the text.
struct CharsetGlyph {
  float u0, v0, u1, v1;
  float xoffset, yoffset, width, height, xadvance;
};

/// The glyphs of a charset. A page image without a size gives texture coordinates of 0.
class CharsetGlyphs {
 public:
  void prepare(const Charset& charset);
  const CharsetGlyph& operator[](unsigned char code) const { return glyphs_[code]; }

 private:
  CharsetGlyph glyphs_[Charset::NUM_CHARS] = {};
};

inline constexpr int FIRST_BAKED = 32;
inline constexpr int NUM_BAKED = 224;

/// A baked character with all that does not depend on the text.
struct BakedGlyph {
  float xoff, yoff, xadvance;
  float s0, t0, s1, t1;
  float width, height;
};

class BakedGlyphs {
 public:
  /// `chars` are NUM_BAKED rows for a bitmap of this size.
  void prepare(const BakedChar* chars, int width, int height);
  const BakedGlyph& operator[](int index) const { return glyphs_[index]; }

 private:
  BakedGlyph glyphs_[NUM_BAKED] = {};
};

/// Writes all texts of the queue to `rows`, FLOATS_PER_CHAR floats for each character. `space` is
/// what blanks advance beyond their own.
void write_charset_rows(const CharsetGlyphs& glyphs, float scale, float space,
                        const TextQueue& queue, float* rows);

/// The same for baked characters. The rows of characters outside of 32 to 254 stay as they are.
void write_baked_rows(const BakedGlyphs& glyphs, float scale, const TextQueue& queue, float* rows);

}  // namespace orv::detail
