/// @file
/// Looks through a TrueType file before the font library, which trusts what it reads, sees it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orv::detail {

/// Big-endian reading that sees zeros behind the end of the file.
class FontFile {
 public:
  FontFile(const unsigned char* data, std::size_t size) : data_(data), size_(size) {}

  std::uint64_t size() const { return size_; }
  unsigned u8(std::uint64_t at) const { return at < size_ ? data_[at] : 0u; }
  unsigned u16(std::uint64_t at) const { return u8(at) << 8 | u8(at + 1); }
  int s8(std::uint64_t at) const { return static_cast<std::int8_t>(u8(at)); }
  int s16(std::uint64_t at) const { return static_cast<std::int16_t>(u16(at)); }
  std::uint64_t u32(std::uint64_t at) const {
    return static_cast<std::uint64_t>(u16(at)) << 16 | u16(at + 2);
  }

 private:
  const unsigned char* data_;
  std::size_t size_;
};

/// What drawing a glyph costs, in units of the font.
struct GlyphOutline {
  int contours = 0;   ///< closed lines, of all components
  int points = 0;     ///< of all components
  int curves = 0;     ///< points off the curve, each of which makes one
  double length = 0;  ///< at most this long, each line and curve taken by its two axes
  double min_x = 0, min_y = 0, max_x = 0, max_y = 0;  ///< box around all points
  bool in_header_box = true;  ///< no point lies outside the box that the glyph's header tells

  bool is_empty() const { return points == 0; }
};

/// Walks the tables that baking and drawing read, and refuses what would be read outside of them.
/// Looks at the data, which must outlive it, and takes no memory.
class TrueTypeCheck {
 public:
  static constexpr int MAX_POINTS = 16384;    ///< of a glyph with all its components
  static constexpr int MAX_COMPONENTS = 256;  ///< of a glyph, at all depths
  static constexpr int MAX_DEPTH = 8;         ///< of components within components

  TrueTypeCheck(const unsigned char* data, std::size_t size) : file_(data, size) {}

  /// Checks the font whose directory lies at `start`. Null when it is sound, apart from its glyphs,
  /// which are checked one by one; else what is wrong, a text that is never freed.
  const char* open(std::uint64_t start);

  /// Whether the font has a glyph of this number. Character maps may tell of others, up to 65535.
  bool has_glyph(int glyph) const { return glyph >= 0 && glyph < num_glyphs_; }

  /// Reads the outline of a glyph with all that it is made of. False when it leaves its table, when
  /// its coordinates leave 16 bits, when it is larger than the limits above, and when there is no
  /// such glyph.
  bool measure_glyph(int glyph, GlyphOutline* outline) const;

 private:
  struct Table {
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
    std::uint64_t end() const { return offset + length; }
  };

  bool find(std::uint64_t start, const char* tag, std::uint64_t min_length, Table* table) const;
  const char* find_tables(std::uint64_t start);
  bool check_metrics() const;
  bool check_character_maps() const;
  bool check_character_map(std::uint64_t map) const;
  bool check_groups(std::uint64_t map) const;
  std::uint64_t glyph_offset(int glyph) const;
  bool walk_glyph(int glyph, int depth, int* components, GlyphOutline* outline) const;
  bool walk_simple(std::uint64_t at, int contours, GlyphOutline* outline) const;
  bool read_ends(std::uint64_t at, int contours) const;
  bool walk_components(std::uint64_t at, int depth, int* components, GlyphOutline* outline) const;

  FontFile file_;
  Table cmap_, head_, hhea_, hmtx_, maxp_, loca_, glyf_;
  int num_glyphs_ = 0;
  bool long_offsets_ = false;
};

}  // namespace orv::detail
