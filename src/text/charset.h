/// @file
/// The characters of a bitmap font as its file describes them.
#pragma once

#include <memory>

namespace orv::detail {

/// A character in the page image, and how it is placed. Pixels; negative offsets are stored modulo
/// 65536.
struct CharsetChar {
  unsigned short x, y, width, height, xoffset, yoffset, xadvance, page;
};

/// What a BMFont file tells, for the characters 0 to 255.
struct Charset {
  static constexpr int NUM_CHARS = 256;

  unsigned short line_height;
  int padding[4];
  int spacing[2];  ///< the first one widens blanks
  unsigned short base;
  unsigned short scale_w, scale_h;  ///< size of the page image in pixels
  CharsetChar chars[NUM_CHARS];
  char image_filename[1024];
};

/// Reads the XML form of a BMFont file, a text that ends with a zero. Null, with the cause
/// in `fault` by a text that is never freed, when it is no XML.
std::unique_ptr<Charset> read_charset(const char* xml, const char** fault);

}  // namespace orv::detail
