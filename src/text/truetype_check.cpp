#include "text/truetype_check.h"

#include <algorithm>
#include <cmath>

namespace orv::detail {

namespace {

constexpr std::uint64_t GLYPH_HEADER = 10;
constexpr double MIN_COORDINATE = -32768, MAX_COORDINATE = 32767;

bool is_coordinate(double value) { return value >= MIN_COORDINATE && value <= MAX_COORDINATE; }

/// Grows the outline by another, which has no header box of its own to keep to.
void append(GlyphOutline* outline, const GlyphOutline& part) {
  if (part.is_empty()) return;
  const bool first = outline->is_empty();
  outline->min_x = first ? part.min_x : std::min(outline->min_x, part.min_x);
  outline->min_y = first ? part.min_y : std::min(outline->min_y, part.min_y);
  outline->max_x = first ? part.max_x : std::max(outline->max_x, part.max_x);
  outline->max_y = first ? part.max_y : std::max(outline->max_y, part.max_y);
  outline->contours += part.contours;
  outline->points += part.points;
  outline->curves += part.curves;
  outline->length += part.length;
}

/// How a component is placed: the matrix, times the lengths of its columns, as the font library
/// does it.
struct Placement {
  double xx = 1, xy = 0, yx = 0, yy = 1, x = 0, y = 0;

  /// False when a point may leave 16 bits.
  bool apply(GlyphOutline* part) const {
    if (part->is_empty()) return true;
    const double m = std::sqrt(xx * xx + xy * xy), n = std::sqrt(yx * yx + yy * yy);
    const double x0 =
        std::min(xx * part->min_x, xx * part->max_x) + std::min(yx * part->min_y, yx * part->max_y);
    const double x1 =
        std::max(xx * part->min_x, xx * part->max_x) + std::max(yx * part->min_y, yx * part->max_y);
    const double y0 =
        std::min(xy * part->min_x, xy * part->max_x) + std::min(yy * part->min_y, yy * part->max_y);
    const double y1 =
        std::max(xy * part->min_x, xy * part->max_x) + std::max(yy * part->min_y, yy * part->max_y);
    part->length *= std::max(m * std::fabs(xx) + n * std::fabs(xy),  //
                             m * std::fabs(yx) + n * std::fabs(yy));
    part->min_x = m * (x0 + x);
    part->max_x = m * (x1 + x);
    part->min_y = n * (y0 + y);
    part->max_y = n * (y1 + y);
    // The library also moves the unused control points of lines, all of which lie in the origin.
    return is_coordinate(part->min_x) && is_coordinate(part->max_x) && is_coordinate(part->min_y) &&
           is_coordinate(part->max_y) && is_coordinate(m * x) && is_coordinate(n * y);
  }
};

/// The flags of the points of a simple glyph, of which runs of equal ones are written once.
class FlagReader {
 public:
  FlagReader(const FontFile& file, std::uint64_t at) : file_(file), at_(at) {}

  unsigned next() {
    if (repeats_ > 0) {
      --repeats_;
      return flags_;
    }
    flags_ = file_.u8(at_++);
    if (flags_ & 8) repeats_ = file_.u8(at_++);
    return flags_;
  }
  std::uint64_t position() const { return at_; }

 private:
  const FontFile& file_;
  std::uint64_t at_;
  unsigned flags_ = 0;
  unsigned repeats_ = 0;
};

/// One axis of the points: a byte with a sign flag, a word, or the same value as before.
class CoordinateReader {
 public:
  CoordinateReader(const FontFile& file, std::uint64_t at, unsigned short_flag, unsigned same_flag)
      : file_(file), at_(at), short_flag_(short_flag), same_flag_(same_flag) {}

  int next(unsigned flags) {
    int step = 0;
    if (flags & short_flag_) {
      step = static_cast<int>(file_.u8(at_++));
      if (!(flags & same_flag_)) step = -step;
    } else if (!(flags & same_flag_)) {
      step = file_.s16(at_);
      at_ += 2;
    }
    return value_ += step;
  }
  std::uint64_t position() const { return at_; }

 private:
  const FontFile& file_;
  std::uint64_t at_;
  unsigned short_flag_, same_flag_;
  int value_ = 0;
};

}  // namespace

// ---- directory ----

const char* TrueTypeCheck::open(std::uint64_t start) {
  if (const char* fault = find_tables(start)) return fault;
  num_glyphs_ = static_cast<int>(file_.u16(maxp_.offset + 4));
  const unsigned offset_form = file_.u16(head_.offset + 50);
  if (num_glyphs_ == 0 || offset_form > 1) return "a spoiled table of glyphs";
  long_offsets_ = offset_form == 1;
  const std::uint64_t entry = long_offsets_ ? 4 : 2;
  if ((static_cast<std::uint64_t>(num_glyphs_) + 1) * entry > loca_.length) {
    return "a table of glyphs that is cut short";
  }
  if (!check_metrics()) return "spoiled metrics";
  if (!check_character_maps()) return "a spoiled map of characters";
  return nullptr;
}

const char* TrueTypeCheck::find_tables(std::uint64_t start) {
  if (start + 12 > file_.size()) return "not a TrueType font";
  if (start + 12 + std::uint64_t{file_.u16(start + 4)} * 16 > file_.size()) {
    return "not a TrueType font";
  }
  const bool found = find(start, "cmap", 4, &cmap_) && find(start, "head", 54, &head_) &&
                     find(start, "hhea", 36, &hhea_) && find(start, "hmtx", 4, &hmtx_) &&
                     find(start, "maxp", 6, &maxp_) && find(start, "loca", 4, &loca_) &&
                     find(start, "glyf", 0, &glyf_);
  return found ? nullptr : "not a TrueType font with outlines";
}

bool TrueTypeCheck::find(std::uint64_t start, const char* tag, std::uint64_t min_length,
                         Table* table) const {
  const std::uint64_t count = file_.u16(start + 4);
  for (std::uint64_t i = 0; i < count; ++i) {
    const std::uint64_t row = start + 12 + i * 16;
    bool same = true;
    for (std::uint64_t k = 0; k < 4; ++k) {
      same = same && file_.u8(row + k) == static_cast<unsigned char>(tag[k]);
    }
    if (!same) continue;
    // The library takes the first row of a tag, too.
    table->offset = file_.u32(row + 8);
    table->length = file_.u32(row + 12);
    return table->offset >= start + 12 && table->length >= min_length &&
           table->end() <= file_.size();
  }
  return false;
}

// ---- metrics and characters ----

bool TrueTypeCheck::check_metrics() const {
  if (file_.s16(hhea_.offset + 4) - file_.s16(hhea_.offset + 6) <= 0) return false;
  const std::uint64_t count = file_.u16(hhea_.offset + 34);
  return count > 0 && count * 4 <= hmtx_.length;
}

bool TrueTypeCheck::check_character_maps() const {
  const std::uint64_t count = file_.u16(cmap_.offset + 2);
  if (4 + count * 8 > cmap_.length) return false;
  for (std::uint64_t i = 0; i < count; ++i) {
    const std::uint64_t offset = file_.u32(cmap_.offset + 4 + i * 8 + 4);
    if (offset + 2 > cmap_.length || !check_character_map(cmap_.offset + offset)) return false;
  }
  return true;
}

bool TrueTypeCheck::check_character_map(std::uint64_t map) const {
  const std::uint64_t room = cmap_.end() - map;
  switch (file_.u16(map)) {
    case 0:
      return room >= 6 && file_.u16(map + 2) <= room;
    case 4:
      return room >= 16 && 16 + std::uint64_t{file_.u16(map + 6) >> 1} * 8 <= room;
    case 6:
      return room >= 10 && 10 + std::uint64_t{file_.u16(map + 8)} * 2 <= room;
    case 12:
    case 13:
      return room >= 16 && 16 + file_.u32(map + 12) * 12 <= room && check_groups(map);
    default:
      return true;  // passed over by the library
  }
}

bool TrueTypeCheck::check_groups(std::uint64_t map) const {
  const bool one_glyph = file_.u16(map) == 13;
  const std::uint64_t count = file_.u32(map + 12);
  for (std::uint64_t i = 0; i < count; ++i) {
    const std::uint64_t group = map + 16 + i * 12;
    const std::uint64_t first = file_.u32(group), last = file_.u32(group + 4);
    const std::uint64_t glyphs = one_glyph ? 0 : last - first;
    // The metrics are looked up with any number that stands here.
    if (first > last || file_.u32(group + 8) + glyphs > 0xFFFF) return false;
  }
  return true;
}

// ---- glyphs ----

bool TrueTypeCheck::measure_glyph(int glyph, GlyphOutline* outline) const {
  *outline = GlyphOutline{};
  int components = 0;
  if (!has_glyph(glyph) || !walk_glyph(glyph, 0, &components, outline)) return false;
  if (outline->is_empty()) return true;
  const std::uint64_t at = glyf_.offset + glyph_offset(glyph);
  outline->in_header_box =
      outline->min_x >= file_.s16(at + 2) && outline->min_y >= file_.s16(at + 4) &&
      outline->max_x <= file_.s16(at + 6) && outline->max_y <= file_.s16(at + 8);
  return true;
}

std::uint64_t TrueTypeCheck::glyph_offset(int glyph) const {
  const auto index = static_cast<std::uint64_t>(glyph);
  return long_offsets_ ? file_.u32(loca_.offset + index * 4)
                       : std::uint64_t{file_.u16(loca_.offset + index * 2)} * 2;
}

bool TrueTypeCheck::walk_glyph(int glyph, int depth, int* components, GlyphOutline* outline) const {
  if (!has_glyph(glyph)) return true;  // an empty component to the library, too
  if (depth > MAX_DEPTH) return false;
  const std::uint64_t first = glyph_offset(glyph);
  if (first == glyph_offset(glyph + 1)) return true;
  if (first + GLYPH_HEADER > glyf_.length) return false;
  const std::uint64_t at = glyf_.offset + first;
  const int contours = file_.s16(at);
  if (contours == 0) return true;
  return contours > 0 ? walk_simple(at, contours, outline)
                      : walk_components(at + GLYPH_HEADER, depth, components, outline);
}

bool TrueTypeCheck::read_ends(std::uint64_t at, int contours) const {
  int last = -1;
  for (int i = 0; i < contours; ++i) {
    const int end = static_cast<int>(file_.u16(at + static_cast<std::uint64_t>(i) * 2));
    if (end <= last || end >= MAX_POINTS) return false;
    last = end;
  }
  return true;
}

bool TrueTypeCheck::walk_simple(std::uint64_t at, int contours, GlyphOutline* outline) const {
  const std::uint64_t ends = at + GLYPH_HEADER;
  const std::uint64_t code = ends + static_cast<std::uint64_t>(contours) * 2;
  if (code + 2 > glyf_.end() || !read_ends(ends, contours)) return false;
  const int points = 1 + static_cast<int>(file_.u16(code - 2));
  const std::uint64_t flags_at = code + 2 + file_.u16(code);

  // Where the coordinates begin is known at the end of the flags.
  FlagReader counted(file_, flags_at);
  std::uint64_t bytes_of_x = 0;
  int start_of_contour = 0, contour = 0;
  for (int i = 0; i < points; ++i) {
    const unsigned flags = counted.next();
    bytes_of_x += flags & 2 ? 1 : flags & 16 ? 0 : 2;
    if (i != start_of_contour) continue;
    // The library looks at the point behind a contour's first one that lies off the curve.
    if (!(flags & 1) && i + 1 == points) return false;
    start_of_contour =
        1 + static_cast<int>(file_.u16(ends + static_cast<std::uint64_t>(contour++) * 2));
  }

  GlyphOutline part;
  part.contours = contours;
  part.points = points;
  FlagReader flags(file_, flags_at);
  CoordinateReader xs(file_, counted.position(), 2, 16);
  CoordinateReader ys(file_, counted.position() + bytes_of_x, 4, 32);
  int x = 0, y = 0;
  for (int i = 0; i < points; ++i) {
    const unsigned flag = flags.next();
    const int old_x = x, old_y = y;
    x = xs.next(flag);
    y = ys.next(flag);
    if (!is_coordinate(x) || !is_coordinate(y)) return false;
    if (!(flag & 1)) ++part.curves;
    if (i > 0) part.length += std::abs(x - old_x) + std::abs(y - old_y);
    part.min_x = i == 0 ? x : std::min<double>(part.min_x, x);
    part.max_x = i == 0 ? x : std::max<double>(part.max_x, x);
    part.min_y = i == 0 ? y : std::min<double>(part.min_y, y);
    part.max_y = i == 0 ? y : std::max<double>(part.max_y, y);
  }
  if (ys.position() > glyf_.end()) return false;
  // Closing a contour is no longer than the contour.
  part.length *= 2;
  append(outline, part);
  return outline->points <= MAX_POINTS;
}

bool TrueTypeCheck::walk_components(std::uint64_t at, int depth, int* components,
                                    GlyphOutline* outline) const {
  enum { WORDS = 1, PLACED = 2, SCALE = 8, MORE = 32, TWO_SCALES = 64, MATRIX = 128 };
  const auto fraction = [&](std::uint64_t place) { return file_.s16(place) / 16384.0; };
  for (;;) {
    if (++*components > MAX_COMPONENTS || at + 4 > glyf_.end()) return false;
    const unsigned flags = file_.u16(at);
    const int glyph = static_cast<int>(file_.u16(at + 2));
    Placement place;
    at += 4;
    // The library takes nothing for the numbers of two points that are to meet.
    if (flags & PLACED) {
      const bool words = (flags & WORDS) != 0;
      place.x = words ? file_.s16(at) : file_.s8(at);
      place.y = words ? file_.s16(at + 2) : file_.s8(at + 1);
      at += words ? 4 : 2;
    }
    if (flags & SCALE) {
      place.xx = place.yy = fraction(at);
      at += 2;
    } else if (flags & TWO_SCALES) {
      place.xx = fraction(at);
      place.yy = fraction(at + 2);
      at += 4;
    } else if (flags & MATRIX) {
      place.xx = fraction(at);
      place.xy = fraction(at + 2);
      place.yx = fraction(at + 4);
      place.yy = fraction(at + 6);
      at += 8;
    }
    if (at > glyf_.end()) return false;
    GlyphOutline part;
    if (!walk_glyph(glyph, depth + 1, components, &part) || !place.apply(&part)) return false;
    append(outline, part);
    if (outline->points > MAX_POINTS) return false;
    if (!(flags & MORE)) return true;
  }
}

}  // namespace orv::detail
