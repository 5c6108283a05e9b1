// Fonts and text.
#include <orv/core/log_mgr.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "core/read_file.h"
#include "text/nvg_globals.h"

namespace orv::nvg {

// ---- shared parts ----

FontName::FontName(const char* name) {
  if (name) std::memcpy(text_, name, strnlen(name, MAX_NAME));
}

const char* end_of_text(const char* text) { return text + strnlen(text, MAX_TEXT_BYTES); }

bool is_text_visible(NVGcontext* context, const char* text) {
  if (!text || *text == 0) return false;
  const float pixels = detail::vector_text_pixels(context);
  return pixels >= 1.0f && pixels <= detail::MAX_VECTOR_TEXT_PIXELS;
}

// ---- fonts ----

bool load_font(char const* name, char const* filename) {
  NVGcontext* context = current();
  if (!context || !name || *name == 0 || !filename) return false;
  const FontName font(name);
  std::vector<unsigned char> file;
  const char* fault = nullptr;
  if (!detail::read_whole_file(filename, file, &fault)) {
    LogMgr::get().tracef_debug("NanoVG - font \"%s\": %s: %s", font.text(), filename, fault);
    return false;
  }
  return detail::add_vector_font(context, font.text(), file);
}

void font_params(float size, char const* name, float blur) {
  NVGcontext* context = current();
  if (!context || !in_range({size})) return;
  nvgFontSize(context, size);
  nvgFontFace(context, FontName(name).text());
  // NanoVG draws outside of the glyph's place for less than 0.
  nvgFontBlur(context, blur > 0.0f ? std::min(blur, 20.0f) : 0.0f);
}

void text_params(int align, float letter_spacing, float line_height) {
  NVGcontext* context = current();
  if (!context || !in_range({letter_spacing, line_height})) return;
  nvgTextAlign(context, align);
  nvgTextLetterSpacing(context, letter_spacing);
  nvgTextLineHeight(context, line_height);
}

// ---- text ----

void text(float x, float y, char const* text) {
  NVGcontext* context = current();
  if (!context || !in_range({x, y}) || !is_text_visible(context, text)) return;
  if (!take_room(context)) return;
  detail::grow_vector_atlas(context);
  nvgText(context, x, y, text, end_of_text(text));
}

float text_bounds(float x, float y, float* bounds, char const* text) {
  if (bounds) std::fill_n(bounds, 4, 0.0f);
  NVGcontext* context = current();
  if (!context || !in_range({x, y}) || !is_text_visible(context, text)) return 0.0f;
  return nvgTextBounds(context, x, y, text, end_of_text(text), bounds);
}

void text_prepare(float size, char const* name, int align) {
  NVGcontext* context = current();
  if (!context || !in_range({size})) return;
  nvgFontSize(context, size);
  nvgFontFace(context, FontName(name).text());
  nvgTextAlign(context, align);
}

void text_render(float x, float y, float r, float g, float b, float a, char const* text) {
  NVGcontext* context = current();
  if (!context) return;
  nvgFillColor(context, to_color(r, g, b, a));
  nvg::text(x, y, text);
}

void text_draw(float size, char const* name, int align, float x, float y, float r, float g, float b,
               float a, char const* text) {
  if (!in_range({size})) return;
  text_prepare(size, name, align);
  text_render(x, y, r, g, b, a, text);
}

void text_color_background(float x, float y, float r, float g, float b, float a, float margin,
                           char const* text) {
  NVGcontext* context = current();
  if (!context || !in_range({x, y, margin}) || !is_text_visible(context, text)) return;
  float bounds[4];
  text_bounds(x, y, bounds, text);
  constexpr float CORNER = 3.0f;
  const Settings settings(context);
  rounded_rect_draw_fill_color(bounds[0] - margin, bounds[1] - margin,
                               bounds[2] - bounds[0] + 2.0f * margin,
                               bounds[3] - bounds[1] + 2.0f * margin, CORNER, r, g, b, a);
}

}  // namespace orv::nvg
