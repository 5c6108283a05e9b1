// Fonts of the system drawn as bitmaps, one display list a character. Compatibility contexts only.
#include <orv/core/log_mgr.h>
#include <orv/text/font_data.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <vector>

#include "core/read_file.h"
#include "render/opengl/platform/system_font.h"
#include "render/opengl/renderer_opengl.h"
#include "text/stb_truetype.h"

namespace orv {

using namespace detail;

namespace {

constexpr int NUM_CHARACTERS = 256;
constexpr unsigned char COVERAGE_THRESHOLD = 128;
constexpr char DEFAULT_FAMILY[] = "Arial";

/// One bit a pixel, lower row first, rows padded to bytes, as glBitmap takes it.
std::vector<unsigned char> to_bits(const GlyphBitmap& glyph) {
  const auto width = static_cast<std::size_t>(glyph.width);
  const auto height = static_cast<std::size_t>(glyph.height);
  const std::size_t row_bytes = (width + 7) / 8;
  std::vector<unsigned char> bits(row_bytes * height);
  for (std::size_t y = 0; y < height; ++y) {
    const unsigned char* from = glyph.coverage.data() + (height - 1 - y) * width;
    unsigned char* to = bits.data() + y * row_bytes;
    for (std::size_t x = 0; x < width; ++x) {
      if (from[x] < COVERAGE_THRESHOLD) continue;
      to[x / 8] = static_cast<unsigned char>(to[x / 8] | (0x80u >> (x % 8)));
    }
  }
  return bits;
}

bool load_face(const FontData& font, TrueTypeFace* face) {
  char family[sizeof(font.font_name) + 1] = {};
  std::memcpy(family, font.font_name, sizeof(font.font_name));
  const FontFileName file = find_bold_font_file(family[0] != 0 ? family : DEFAULT_FAMILY);
  std::vector<unsigned char> bytes;
  if (file.path.empty() || !read_whole_file(file.path.c_str(), bytes)) return false;
  return face->load(bytes.data(), bytes.size(), file.face_index);
}

}  // namespace

// ---- creating and deleting ----

bool RendererOpenGL::bitmap_font_create(FontData* font) {
  if (!font || lacks(has_fixed_function(), "bitmap fonts")) return false;
  TrueTypeFace face;
  if (!load_face(*font, &face)) {
    LogMgr::get().tracef_debug("bitmap font \"%.127s\" - no usable font file", font->font_name);
    return false;
  }
  bitmap_font_destroy(font);
  const GLuint base = core_.glGenLists(NUM_CHARACTERS);
  if (base == 0) {
    LogMgr::get().tracef_debug("bitmap font \"%.127s\" - the driver gives no display lists",
                               font->font_name);
    return false;
  }
  const float height = std::fabs(static_cast<float>(font->height));
  core_.glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  bool drawn = true;
  for (int code = 0; drawn && code < NUM_CHARACTERS; ++code) {
    GlyphBitmap glyph;
    drawn = face.rasterize(code, height, &glyph);
    if (glyph.coverage.empty()) {
      // Some drivers take an empty bitmap for a lack of memory.
      glyph.width = glyph.height = 1;
      glyph.coverage.assign(1, 0);
    }
    const std::vector<unsigned char> bits = to_bits(glyph);
    core_.glNewList(base + static_cast<GLuint>(code), GL_COMPILE);
    core_.glBitmap(glyph.width, glyph.height, static_cast<float>(-glyph.left),
                   static_cast<float>(glyph.top + glyph.height), std::round(glyph.advance), 0.0f,
                   bits.data());
    core_.glEndList();
  }
  core_.glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
  if (!drawn) {
    LogMgr::get().tracef_debug("bitmap font \"%.127s\" - a glyph cannot be drawn", font->font_name);
    core_.glDeleteLists(base, NUM_CHARACTERS);
    return false;
  }
  font->list_base = base;
  font->renderer_id = getid();
  return true;
}

bool RendererOpenGL::bitmap_font_destroy(FontData* font) {
  if (!font || font->list_base == 0) return false;
  if (has_fixed_function()) core_.glDeleteLists(font->list_base, NUM_CHARACTERS);
  font->list_base = 0;
  return true;
}

// ---- drawing ----

bool RendererOpenGL::draw_bitmap_text(const FontData* font, float x, float y, float z,
                                      const char* text, unsigned int length) {
  if (!font || font->list_base == 0 || !text || !has_fixed_function()) return false;
  const std::size_t count = strnlen(text, length < INT_MAX ? length : INT_MAX);
  core_.glRasterPos4f(x, y, z, 1.0f);
  core_.glListBase(font->list_base);
  core_.glCallLists(static_cast<GLsizei>(count), GL_UNSIGNED_BYTE, text);
  return true;
}

bool RendererOpenGL::bitmap_font_render(FontData* font, int x, int y, float r, float g, float b,
                                        float a, const char* text, unsigned int length) {
  return bitmap_font_render_b(font, static_cast<float>(x), static_cast<float>(y), 0.0f, r, g, b, a,
                              text, length);
}

bool RendererOpenGL::bitmap_font_render_b(FontData* font, float x, float y, float z, float r,
                                          float g, float b, float a, const char* text,
                                          unsigned int length) {
  if (!font || font->list_base == 0 || !text) return false;
  // The raster position takes the colour along.
  return bitmap_font_set_color(r, g, b, a) && draw_bitmap_text(font, x, y, z, text, length);
}

bool RendererOpenGL::bitmap_font_begin(FontData* font) {
  if (!font || font->list_base == 0 || !has_fixed_function()) return false;
  core_.glListBase(font->list_base);
  return true;
}

bool RendererOpenGL::bitmap_font_render_c(FontData* font, float x, float y, float z,
                                          const char* text, unsigned int length) {
  return draw_bitmap_text(font, x, y, z, text, length);
}

bool RendererOpenGL::bitmap_font_set_color(float r, float g, float b, float a) {
  if (!has_fixed_function()) return false;
  core_.glColor4f(r, g, b, a);
  return true;
}

bool RendererOpenGL::bitmap_font_reserved_a(FontData*) { return false; }
bool RendererOpenGL::bitmap_font_reserved_b(FontData*) { return false; }

}  // namespace orv
