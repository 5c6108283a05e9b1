// Pictures of widgets, each clipped to its rectangle.
#include "text/nvg_widgets.h"

#include <algorithm>

namespace orv::nvg {

// ---- parts of widgets ----

NVGcolor with_alpha(NVGcolor color, float alpha) {
  color.a = alpha;
  return color;
}

NVGcolor shaded(NVGcolor color, float amount) {
  const NVGcolor end = amount < 0.0f ? BLACK : WHITE;
  const float alpha = color.a;
  return with_alpha(nvgLerpRGBA(color, end, amount < 0.0f ? -amount : amount), alpha);
}

void utf8_of(int code_point, char (&out)[5]) {
  std::fill(std::begin(out), std::end(out), '\0');
  const auto code = static_cast<unsigned int>(code_point);
  if (code > 0x10FFFF) return;
  const auto tail = [&](unsigned int shift) {
    return static_cast<char>(0x80 | ((code >> shift) & 0x3F));
  };
  if (code < 0x80) {
    out[0] = static_cast<char>(code);
  } else if (code < 0x800) {
    out[0] = static_cast<char>(0xC0 | code >> 6);
    out[1] = tail(0);
  } else if (code < 0x10000) {
    out[0] = static_cast<char>(0xE0 | code >> 12);
    out[1] = tail(6);
    out[2] = tail(0);
  } else {
    out[0] = static_cast<char>(0xF0 | code >> 18);
    out[1] = tail(12);
    out[2] = tail(6);
    out[3] = tail(0);
  }
}

bool select_font(NVGcontext* context, const char* font, float size, int align) {
  const int id = nvgFindFont(context, font);
  if (id < 0) return false;
  nvgFontFaceId(context, id);
  nvgFontSize(context, size);
  nvgFontBlur(context, 0.0f);
  nvgTextLetterSpacing(context, 0.0f);
  nvgTextAlign(context, align);
  return true;
}

void put_text(NVGcontext* context, float x, float y, NVGcolor color, const char* string) {
  if (!is_text_visible(context, string) || !take_room(context)) return;
  nvgFillColor(context, color);
  nvgText(context, x, y, string, end_of_text(string));
}

void put_text_with_shadow(NVGcontext* context, float x, float y, NVGcolor color, NVGcolor shadow,
                          float shadow_y, const char* string) {
  put_text(context, x, y + shadow_y, shadow, string);
  put_text(context, x, y, color, string);
}

float width_of_text(NVGcontext* context, const char* string) {
  if (!is_text_visible(context, string)) return 0.0f;
  return nvgTextBounds(context, 0.0f, 0.0f, string, end_of_text(string), nullptr);
}

void fill_box(NVGcontext* context, const WidgetBox& box, float corner, const NVGpaint& paint) {
  nvgBeginPath(context);
  nvgRoundedRect(context, box.x, box.y, box.w, box.h, corner);
  nvgFillPaint(context, paint);
  fill(context);
}

void fill_box(NVGcontext* context, const WidgetBox& box, float corner, NVGcolor color) {
  nvgBeginPath(context);
  nvgRoundedRect(context, box.x, box.y, box.w, box.h, corner);
  nvgFillColor(context, color);
  fill(context);
}

void stroke_box(NVGcontext* context, const WidgetBox& box, float corner, NVGcolor color) {
  nvgBeginPath(context);
  nvgRoundedRect(context, box.x, box.y, box.w, box.h, corner);
  nvgStrokeColor(context, color);
  nvgStrokeWidth(context, 1.0f);
  stroke(context);
}

NVGpaint from_top_to_bottom(NVGcontext* context, const WidgetBox& box, NVGcolor top,
                            NVGcolor bottom) {
  return nvgLinearGradient(context, box.x, box.y, box.x, box.y + box.h, top, bottom);
}

void fill_shadow(NVGcontext* context, const WidgetBox& box, float corner, float reach,
                 float alpha) {
  const NVGpaint paint = nvgBoxGradient(context, box.x, box.y + 2.0f, box.w, box.h, corner * 2.0f,
                                        reach, with_alpha(BLACK, alpha), with_alpha(BLACK, 0.0f));
  // Everything around the box, which may be translucent, and nothing below it.
  nvgBeginPath(context);
  nvgRect(context, box.x - reach, box.y - reach, box.w + 2.0f * reach, box.h + 2.5f * reach);
  nvgRoundedRect(context, box.x, box.y, box.w, box.h, corner);
  nvgPathWinding(context, NVG_HOLE);
  nvgFillPaint(context, paint);
  fill(context);
}

void fill_inset(NVGcontext* context, const WidgetBox& box, float corner, float depth) {
  fill_box(context, box, corner,
           nvgBoxGradient(context, box.x + 1.0f, box.y + 1.5f, box.w - 2.0f, box.h - 2.0f, corner,
                          4.0f, with_alpha(WHITE, 0.1f), with_alpha(BLACK, depth)));
  stroke_box(context, box.inner(0.5f), corner, with_alpha(BLACK, 0.2f));
}

void clip(NVGcontext* context, const WidgetBox& box) {
  nvgIntersectScissor(context, box.x, box.y, box.w, box.h);
}

// ---- the widgets ----

namespace {

constexpr float HEADER = 30.0f, MARGIN = 5.0f;
constexpr float WINDOW_CORNER = 3.0f, BUTTON_CORNER = 4.0f;
constexpr float TITLE_SIZE = 18.0f, TEXT_SIZE = 17.0f, BUTTON_TEXT_SIZE = 18.0f;
constexpr int CENTERED = NVG_ALIGN_CENTER | NVG_ALIGN_MIDDLE;
constexpr int LEFT = NVG_ALIGN_LEFT | NVG_ALIGN_MIDDLE;

bool is_drawable(const WidgetBox& box) {
  return in_range({box.x, box.y, box.w, box.h}) && box.w > 0.0f && box.h > 0.0f;
}

}  // namespace

void window_draw(char const* title, float x, float y, float w, float h, const float* c0,
                 const float* c1) {
  NVGcontext* context = current();
  const WidgetBox box{x, y, w, h};
  if (!context || !is_drawable(box)) return;
  const Settings settings(context);
  fill_shadow(context, box, WINDOW_CORNER, 12.0f, 0.5f);
  fill_box(context, box, WINDOW_CORNER, to_color(c0));

  const NVGcolor header = to_color(c1);
  const WidgetBox bar{x, y, w, std::min(HEADER, h)};
  fill_box(context, bar, WINDOW_CORNER,
           from_top_to_bottom(context, bar, shaded(header, 0.12f), shaded(header, -0.12f)));
  nvgBeginPath(context);
  nvgMoveTo(context, bar.x, bar.y + bar.h - 0.5f);
  nvgLineTo(context, bar.x + bar.w, bar.y + bar.h - 0.5f);
  nvgStrokeColor(context, with_alpha(BLACK, 0.25f));
  nvgStrokeWidth(context, 1.0f);
  stroke(context);
  stroke_box(context, box.inner(0.5f), WINDOW_CORNER, with_alpha(BLACK, 0.35f));

  if (!select_font(context, "sans-bold", TITLE_SIZE, CENTERED)) return;
  clip(context, bar.inner(MARGIN, 0.0f));
  nvgFontBlur(context, 2.0f);
  put_text(context, bar.center_x(), bar.center_y() + 1.0f, with_alpha(BLACK, 0.5f), title);
  nvgFontBlur(context, 0.0f);
  put_text(context, bar.center_x(), bar.center_y(), with_alpha(WHITE, 0.8f), title);
}

void button_draw(int icon, char const* text, float x, float y, float w, float h,
                 const float* color) {
  NVGcontext* context = current();
  const WidgetBox box{x, y, w, h};
  if (!context || !is_drawable(box)) return;
  const Settings settings(context);
  const NVGcolor body = to_color(color);
  const WidgetBox inner = box.inner(1.0f);
  if (body.a > 0.0f) fill_box(context, inner, BUTTON_CORNER - 1.0f, body);
  const float gloss = body.a > 0.0f ? 0.16f : 0.07f;
  fill_box(context, inner, BUTTON_CORNER - 1.0f,
           from_top_to_bottom(context, box, with_alpha(WHITE, gloss), with_alpha(BLACK, gloss)));
  stroke_box(context, box.inner(0.5f), BUTTON_CORNER - 0.5f, with_alpha(BLACK, 0.3f));

  clip(context, inner);
  const bool has_text = select_font(context, "sans-bold", BUTTON_TEXT_SIZE, LEFT);
  const float text_width = has_text ? width_of_text(context, text) : 0.0f;
  char symbol[5];
  utf8_of(icon, symbol);
  const float icon_size = std::min(h * 0.8f, BUTTON_TEXT_SIZE * 1.3f);
  float left = box.center_x() - text_width * 0.5f;
  if (icon > 0 && select_font(context, "icons", icon_size, LEFT)) {
    const float icon_width = width_of_text(context, symbol);
    const float gap = text_width > 0.0f ? MARGIN : 0.0f;
    left -= (icon_width + gap) * 0.5f;
    put_text_with_shadow(context, left, box.center_y(), with_alpha(WHITE, 0.5f),
                         with_alpha(BLACK, 0.4f), -1.0f, symbol);
    left += icon_width + gap;
  }
  if (!select_font(context, "sans-bold", BUTTON_TEXT_SIZE, LEFT)) return;
  put_text_with_shadow(context, left, box.center_y(), with_alpha(WHITE, 0.75f),
                       with_alpha(BLACK, 0.5f), -1.0f, text);
}

void check_box_draw(float x, float y, float w, float h, bool checked, char const* text,
                    const float* c0, const float* c1) {
  NVGcontext* context = current();
  const WidgetBox box{x, y, w, h};
  if (!context || !is_drawable(box)) return;
  const Settings settings(context);
  const float side = std::min({18.0f, w, h});
  const WidgetBox field{x, box.center_y() - side * 0.5f, side, side};
  fill_box(context, field, WINDOW_CORNER, to_color(c0));
  fill_inset(context, field, WINDOW_CORNER, 0.36f);
  if (checked) {
    // A tick of its own: it must not be missing with the font of icons.
    nvgBeginPath(context);
    nvgMoveTo(context, field.x + side * 0.22f, field.y + side * 0.52f);
    nvgLineTo(context, field.x + side * 0.43f, field.y + side * 0.73f);
    nvgLineTo(context, field.x + side * 0.79f, field.y + side * 0.27f);
    nvgStrokeColor(context, to_color(c1));
    nvgStrokeWidth(context, side * 0.14f);
    stroke(context);
  }
  if (!select_font(context, "sans", TEXT_SIZE, LEFT)) return;
  clip(context, box);
  put_text(context, field.x + side + 2.0f * MARGIN, box.center_y(), to_color(c1), text);
}

void slider_draw(float pos, float x, float y, float w, float h, const float* color) {
  NVGcontext* context = current();
  const WidgetBox box{x, y, w, h};
  if (!context || !is_drawable(box)) return;
  const Settings settings(context);
  const NVGcolor tint = to_color(color);
  const float part = pos > 0.0f ? std::min(pos, 1.0f) : 0.0f;
  const float radius = std::min(h * 0.36f, w * 0.5f);
  const WidgetBox slot{x, box.center_y() - 2.0f, w, 4.0f};
  const float knob = x + radius + part * (w - 2.0f * radius);

  fill_inset(context, slot, 2.0f, 0.5f);
  if (part > 0.0f) {
    fill_box(context, {slot.x, slot.y, knob - slot.x, slot.h}, 2.0f, with_alpha(tint, tint.a));
  }
  nvgBeginPath(context);
  nvgCircle(context, knob, box.center_y() + 1.0f, radius + 3.0f);
  nvgFillPaint(context,
               nvgRadialGradient(context, knob, box.center_y() + 1.0f, radius - 3.0f, radius + 3.0f,
                                 with_alpha(BLACK, 0.3f), with_alpha(BLACK, 0.0f)));
  fill(context);
  nvgBeginPath(context);
  nvgCircle(context, knob, box.center_y(), radius - 0.5f);
  nvgFillColor(context, shaded(tint, -0.35f));
  fill(context);
  nvgFillPaint(context,
               nvgLinearGradient(context, x, box.center_y() - radius, x, box.center_y() + radius,
                                 with_alpha(WHITE, 0.25f), with_alpha(BLACK, 0.25f)));
  fill(context);
  nvgStrokeColor(context, with_alpha(BLACK, 0.5f));
  nvgStrokeWidth(context, 1.0f);
  stroke(context);
}

void label_draw(char const* text, float x, float y, float w, float h, const float* color) {
  NVGcontext* context = current();
  const WidgetBox box{x, y, w, h};
  if (!context || !is_drawable(box)) return;
  const Settings settings(context);
  if (!select_font(context, "sans", TEXT_SIZE, LEFT)) return;
  clip(context, box);
  put_text(context, x, box.center_y(), to_color(color), text);
}

}  // namespace orv::nvg
