#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace orv::test {

using Bytes = std::vector<unsigned char>;

inline void put8(Bytes* out, int value) { out->push_back(static_cast<unsigned char>(value & 255)); }
inline void put16(Bytes* out, int value) {
  put8(out, value >> 8);
  put8(out, value);
}
inline void put32(Bytes* out, std::uint32_t value) {
  put16(out, static_cast<int>(value >> 16));
  put16(out, static_cast<int>(value & 0xFFFF));
}
inline void set16(Bytes* data, std::size_t at, int value) {
  (*data)[at] = static_cast<unsigned char>(value >> 8 & 255);
  (*data)[at + 1] = static_cast<unsigned char>(value & 255);
}
inline void set32(Bytes* data, std::size_t at, std::size_t value) {
  set16(data, at, static_cast<int>(value >> 16 & 0xFFFF));
  set16(data, at + 2, static_cast<int>(value & 0xFFFF));
}
inline std::size_t get16(const Bytes& data, std::size_t at) {
  return static_cast<std::size_t>(data[at]) << 8 | data[at + 1];
}
inline std::size_t get32(const Bytes& data, std::size_t at) {
  return get16(data, at) << 16 | get16(data, at + 2);
}

/// Place of a table's row in the directory; 0 when there is none.
inline std::size_t table_row(const Bytes& data, const std::string& tag) {
  for (std::size_t i = 0; i < get16(data, 4); ++i) {
    const std::size_t row = 12 + 16 * i;
    if (std::equal(tag.begin(), tag.end(), data.begin() + static_cast<std::ptrdiff_t>(row))) {
      return row;
    }
  }
  return 0;
}
inline std::size_t table_at(const Bytes& data, const std::string& tag) {
  return get32(data, table_row(data, tag) + 8);
}

struct OutlinePoint {
  int x, y;
  bool on = true;
};
using Contour = std::vector<OutlinePoint>;

/// A glyph of contours, all coordinates as words.
inline Bytes simple_glyph(const std::vector<Contour>& contours) {
  std::vector<OutlinePoint> points;
  Bytes ends;
  for (const Contour& contour : contours) {
    points.insert(points.end(), contour.begin(), contour.end());
    put16(&ends, static_cast<int>(points.size()) - 1);
  }
  int box[4] = {32767, 32767, -32768, -32768};
  Bytes flags, xs, ys;
  int x = 0, y = 0;
  for (const OutlinePoint& point : points) {
    put8(&flags, point.on ? 1 : 0);
    put16(&xs, point.x - x);
    put16(&ys, point.y - y);
    x = point.x;
    y = point.y;
    box[0] = std::min(box[0], x);
    box[1] = std::min(box[1], y);
    box[2] = std::max(box[2], x);
    box[3] = std::max(box[3], y);
  }
  Bytes glyph;
  put16(&glyph, static_cast<int>(contours.size()));
  for (const int side : box) put16(&glyph, side);
  glyph.insert(glyph.end(), ends.begin(), ends.end());
  put16(&glyph, 0);  // no instructions
  for (const Bytes* part : {&flags, &xs, &ys})
    glyph.insert(glyph.end(), part->begin(), part->end());
  return glyph;
}

inline Bytes rectangle_glyph(int x0, int y0, int x1, int y1) {
  return simple_glyph({{{x0, y0}, {x0, y1}, {x1, y1}, {x1, y0}}});
}

/// A component moved by a byte each way; `scale` in 16384ths, 0 for none.
struct Component {
  int glyph;
  int x = 0, y = 0;
  int scale = 0;
};

inline Bytes composite_glyph(const std::vector<Component>& components) {
  Bytes glyph;
  put16(&glyph, -1);
  for (const int side : {0, 0, 1000, 1000}) put16(&glyph, side);
  for (std::size_t i = 0; i < components.size(); ++i) {
    const Component& each = components[i];
    put16(&glyph, 2 | (each.scale != 0 ? 8 : 0) | (i + 1 < components.size() ? 32 : 0));
    put16(&glyph, each.glyph);
    put8(&glyph, each.x);
    put8(&glyph, each.y);
    if (each.scale != 0) put16(&glyph, each.scale);
  }
  return glyph;
}

/// A character map of format 4, 6, 12 or 0 that gives glyph `code - first + 1` to `count`
/// characters.
inline Bytes character_map(int format, int first, int count) {
  Bytes map;
  put16(&map, format);
  if (format == 4) {
    for (const int value : {32, 0, 4, 4, 1, 0}) put16(&map, value);
    for (const int value : {first + count - 1, 0xFFFF, 0, first, 0xFFFF}) put16(&map, value);
    for (const int value : {1 - first, 1, 0, 0}) put16(&map, value);
  } else if (format == 6) {
    for (const int value : {10 + 2 * count, 0, first, count}) put16(&map, value);
    for (int i = 0; i < count; ++i) put16(&map, i + 1);
  } else if (format == 12) {
    put16(&map, 0);
    for (const int value : {28, 0, 1, first, first + count - 1, 1}) {
      put32(&map, static_cast<std::uint32_t>(value));
    }
  } else {
    put16(&map, 262);
    put16(&map, 0);
    for (int i = 0; i < 256; ++i) put8(&map, i >= first && i < first + count ? i - first + 1 : 0);
  }
  return map;
}

/// A small TrueType file. Glyph 0 stands for what is missing; the others belong to the characters
/// from `first_char` on.
struct FontBuilder {
  std::vector<Bytes> glyphs = {rectangle_glyph(100, 0, 400, 700)};
  int advance = 600;
  int ascent = 800;
  int descent = -200;
  int first_char = 'A';
  int map_format = 4;
  bool long_offsets = true;

  Bytes build() const {
    Bytes glyf, loca, hmtx;
    const auto add_offset = [&] {
      if (long_offsets) {
        put32(&loca, static_cast<std::uint32_t>(glyf.size()));
      } else {
        put16(&loca, static_cast<int>(glyf.size() / 2));
      }
    };
    for (const Bytes& glyph : glyphs) {
      add_offset();
      glyf.insert(glyf.end(), glyph.begin(), glyph.end());
      while (glyf.size() % 4 != 0) glyf.push_back(0);
      put16(&hmtx, advance);
      put16(&hmtx, 0);
    }
    add_offset();
    const int count = static_cast<int>(glyphs.size());
    Bytes head(54), hhea(36), maxp(6), cmap;
    set16(&head, 18, 1000);
    set16(&head, 50, long_offsets ? 1 : 0);
    set16(&hhea, 4, ascent);
    set16(&hhea, 6, descent);
    set16(&hhea, 34, count);
    set16(&maxp, 4, count);
    for (const int value : {0, 1, 3, map_format == 12 ? 10 : 1, 0, 12}) put16(&cmap, value);
    const Bytes map = character_map(map_format, first_char, std::max(count - 1, 1));
    cmap.insert(cmap.end(), map.begin(), map.end());
    return join({{"cmap", cmap},
                 {"glyf", glyf},
                 {"head", head},
                 {"hhea", hhea},
                 {"hmtx", hmtx},
                 {"loca", loca},
                 {"maxp", maxp}});
  }

 private:
  static Bytes join(const std::vector<std::pair<std::string, Bytes>>& tables) {
    Bytes file;
    put32(&file, 0x00010000);
    put16(&file, static_cast<int>(tables.size()));
    for (int i = 0; i < 3; ++i) put16(&file, 0);
    std::size_t offset = 12 + 16 * tables.size();
    for (const auto& [tag, bytes] : tables) {
      file.insert(file.end(), tag.begin(), tag.end());
      put32(&file, 0);
      put32(&file, static_cast<std::uint32_t>(offset));
      put32(&file, static_cast<std::uint32_t>(bytes.size()));
      offset += (bytes.size() + 3) / 4 * 4;
    }
    for (const auto& [tag, bytes] : tables) {
      file.insert(file.end(), bytes.begin(), bytes.end());
      while (file.size() % 4 != 0) file.push_back(0);
    }
    return file;
  }
};

}  // namespace orv::test
