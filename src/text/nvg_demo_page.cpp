// What stands on the demo page.
#include <cmath>
#include <cstdio>
#include <iterator>

#include "text/nvg_widgets.h"

namespace orv::nvg {
namespace {

constexpr int LEFT = NVG_ALIGN_LEFT | NVG_ALIGN_MIDDLE;
constexpr int CENTERED = NVG_ALIGN_CENTER | NVG_ALIGN_MIDDLE;
constexpr NVGcolor TEXT = {{{0.88f, 0.90f, 0.92f, 1.0f}}};
constexpr NVGcolor FAINT = {{{0.88f, 0.90f, 0.92f, 0.45f}}};
constexpr NVGcolor BLUE = {{{0.10f, 0.62f, 0.82f, 1.0f}}};

// ---- the window ----

void draw_field(NVGcontext* context, const WidgetBox& box, const char* string, NVGcolor color) {
  fill_inset(context, box, 4.0f, 0.3f);
  if (!select_font(context, "sans", 16.0f, LEFT)) return;
  put_text(context, box.x + 8.0f, box.center_y(), color, string);
}

void draw_icon(NVGcontext* context, int icon, float x, float y, float size, NVGcolor color) {
  char symbol[5];
  utf8_of(icon, symbol);
  if (select_font(context, "icons", size, CENTERED)) put_text(context, x, y, color, symbol);
}

void draw_search_box(NVGcontext* context, const WidgetBox& box) {
  const float corner = box.h * 0.5f;
  fill_inset(context, box, corner, 0.4f);
  draw_icon(context, ICON_SEARCH, box.x + corner + 1.0f, box.center_y(), box.h * 0.85f,
            with_alpha(WHITE, 0.4f));
  draw_icon(context, ICON_CANCEL, box.x + box.w - corner, box.center_y(), box.h * 0.8f,
            with_alpha(WHITE, 0.25f));
  if (!select_font(context, "sans", 16.0f, LEFT)) return;
  put_text(context, box.x + box.h + 4.0f, box.center_y(), with_alpha(WHITE, 0.35f), "Search");
}

void draw_drop_down(NVGcontext* context, const WidgetBox& box, const char* string) {
  fill_box(context, box.inner(1.0f), 3.0f,
           from_top_to_bottom(context, box, with_alpha(WHITE, 0.08f), with_alpha(BLACK, 0.08f)));
  stroke_box(context, box.inner(0.5f), 3.5f, with_alpha(BLACK, 0.25f));
  draw_icon(context, ICON_CHEVRON_RIGHT, box.x + box.w - box.h * 0.5f, box.center_y(), box.h * 1.1f,
            with_alpha(WHITE, 0.4f));
  if (!select_font(context, "sans", 17.0f, LEFT)) return;
  put_text(context, box.x + 9.0f, box.center_y(), with_alpha(WHITE, 0.7f), string);
}

void draw_number_box(NVGcontext* context, const WidgetBox& box, float number, const char* unit) {
  fill_inset(context, box, 4.0f, 0.3f);
  char digits[32];
  std::snprintf(digits, sizeof(digits), "%.1f", static_cast<double>(number));
  constexpr int RIGHT = NVG_ALIGN_RIGHT | NVG_ALIGN_MIDDLE;
  if (!select_font(context, "sans", 13.0f, RIGHT)) return;
  const float unit_width = width_of_text(context, unit);
  put_text(context, box.x + box.w - 7.0f, box.center_y() + 1.0f, with_alpha(WHITE, 0.3f), unit);
  select_font(context, "sans", 16.0f, RIGHT);
  put_text(context, box.x + box.w - unit_width - 11.0f, box.center_y(), with_alpha(WHITE, 0.6f),
           digits);
}

void draw_window(NVGcontext* context, float time) {
  const float body[] = {0.115f, 0.12f, 0.135f, 0.92f}, header[] = {0.20f, 0.215f, 0.24f, 1.0f};
  const float text[] = {0.88f, 0.90f, 0.92f, 0.8f}, faint[] = {0.88f, 0.90f, 0.92f, 0.55f};
  const float blue[] = {0.0f, 0.38f, 0.50f, 1.0f}, red[] = {0.50f, 0.07f, 0.05f, 1.0f};
  const float plain[] = {0.0f, 0.0f, 0.0f, 0.0f}, field[] = {0.2f, 0.21f, 0.23f, 1.0f};
  const float tint[] = {0.10f, 0.62f, 0.82f, 1.0f};
  constexpr float X = 42.0f, W = 236.0f;
  window_draw("Widgets", 30.0f, 28.0f, 260.0f, 362.0f, body, header);
  draw_search_box(context, {X, 70.0f, W, 26.0f});
  draw_drop_down(context, {X, 106.0f, W, 28.0f}, "Effects");
  label_draw("Account", X, 142.0f, W, 20.0f, faint);
  draw_field(context, {X, 166.0f, W, 28.0f}, "E-mail", with_alpha(WHITE, 0.3f));
  draw_field(context, {X, 200.0f, W, 28.0f}, "Password", with_alpha(WHITE, 0.3f));
  check_box_draw(X, 238.0f, 124.0f, 28.0f, true, "Remember", field, text);
  button_draw(ICON_LOGIN, "Sign in", X + 124.0f, 238.0f, W - 124.0f, 28.0f, blue);
  label_draw("Diameter", X, 276.0f, W, 20.0f, faint);
  const float position = 0.5f + 0.35f * std::sin(time * 0.6f);
  slider_draw(position, X, 300.0f, 148.0f, 28.0f, tint);
  draw_number_box(context, {X + 160.0f, 300.0f, W - 160.0f, 28.0f}, position * 200.0f, "px");
  button_draw(ICON_TRASH, "Delete", X, 346.0f, 128.0f, 28.0f, red);
  button_draw(ICON_NONE, "Cancel", X + 136.0f, 346.0f, W - 136.0f, 28.0f, plain);
}

// ---- text ----

constexpr char PARAGRAPH[] =
    "Paths, gradients and letters are cut into triangles where they are needed, so this page is "
    "as sharp at any size.\n\nText breaks between words at the width of its column, with kerning: "
    "AV, To, Ty, and with letters of all alphabets: \xC3\xA9\xC3\xBC\xC3\xB8 \xCE\xB1\xCE\xB2\xCE"
    "\xB3 \xD0\x96\xD0\xA9\xD0\xAE.";

/// The rows of a column; one after the other is marked and numbered at its side.
void draw_paragraph(NVGcontext* context, const WidgetBox& column, float time) {
  constexpr int MAX_ROWS = 16;
  if (!select_font(context, "sans", 15.5f, NVG_ALIGN_LEFT | NVG_ALIGN_TOP)) return;
  NVGtextRow rows[MAX_ROWS];
  const int count = nvgTextBreakLines(context, PARAGRAPH, nullptr, column.w, rows, MAX_ROWS);
  if (count <= 0) return;
  float line_height = 0.0f;
  nvgTextMetrics(context, nullptr, nullptr, &line_height);
  line_height *= 1.15f;
  const int marked = static_cast<int>(std::fmod(std::fabs(time) * 0.8f, static_cast<float>(count)));
  for (int i = 0; i < count; ++i) {
    const NVGtextRow& row = rows[i];
    const float y = column.y + static_cast<float>(i) * line_height;
    if (i == marked && row.width > 0.0f) {
      fill_box(context, {column.x - 4.0f, y - 1.0f, row.width + 8.0f, line_height}, 3.0f,
               with_alpha(BLUE, 0.35f));
    }
    if (!take_room(context)) return;
    nvgFillColor(context, TEXT);
    nvgText(context, column.x, y, row.start, row.end);
  }
  char number[16];
  std::snprintf(number, sizeof(number), "%d", marked + 1);
  const float middle = column.y + (static_cast<float>(marked) + 0.5f) * line_height - 1.0f;
  fill_box(context, {column.x - 30.0f, middle - 8.0f, 20.0f, 16.0f}, 8.0f, with_alpha(BLUE, 0.9f));
  select_font(context, "sans-bold", 11.0f, CENTERED);
  put_text(context, column.x - 20.0f, middle + 0.5f, WHITE, number);
}

void draw_caption(NVGcontext* context, float x, float y, const char* string) {
  if (!select_font(context, "sans", 12.0f, LEFT)) return;
  put_text(context, x, y, FAINT, string);
}

void draw_icons(NVGcontext* context, float x, float y) {
  constexpr int icons[] = {0x2665, 0x2605, 0x1F464, 0x1F4F7, 0x1F4C1, 0x1F514, 0x2709, 0x2699};
  for (std::size_t i = 0; i < std::size(icons); ++i) {
    const auto k = static_cast<float>(i);
    const NVGcolor color = nvgHSLA(0.52f + 0.05f * k, 0.55f, 0.65f, 255);
    draw_icon(context, icons[i], x + 27.0f * k, y, 25.0f, color);
  }
}

// ---- colours ----

void draw_color_wheel(NVGcontext* context, float x, float y, float radius, float time) {
  const float inner = radius * 0.78f;
  constexpr int PARTS = 6;
  // Neighbours overlap by half a pixel, so that no seam shows.
  const float overlap = 0.5f / radius;
  for (int i = 0; i < PARTS; ++i) {
    const float a0 = static_cast<float>(i) / PARTS * NVG_PI * 2.0f - overlap;
    const float a1 = static_cast<float>(i + 1) / PARTS * NVG_PI * 2.0f + overlap;
    const float middle = (inner + radius) * 0.5f;
    nvgBeginPath(context);
    nvgArc(context, x, y, inner, a0, a1, NVG_CW);
    nvgArc(context, x, y, radius, a1, a0, NVG_CCW);
    nvgClosePath(context);
    nvgFillPaint(context,
                 nvgLinearGradient(context, x + std::cos(a0) * middle, y + std::sin(a0) * middle,
                                   x + std::cos(a1) * middle, y + std::sin(a1) * middle,
                                   nvgHSLA(a0 / (NVG_PI * 2.0f), 1.0f, 0.55f, 255),
                                   nvgHSLA(a1 / (NVG_PI * 2.0f), 1.0f, 0.55f, 255)));
    fill(context);
  }
  nvgBeginPath(context);
  nvgCircle(context, x, y, inner - 0.5f);
  nvgCircle(context, x, y, radius + 0.5f);
  nvgStrokeColor(context, with_alpha(BLACK, 0.3f));
  nvgStrokeWidth(context, 1.0f);
  stroke(context);

  const Settings settings(context);
  const float hue = time * 0.12f;
  nvgTranslate(context, x, y);
  nvgRotate(context, hue * NVG_PI * 2.0f);

  // The mark on the ring.
  stroke_box(context, {inner - 1.0f, -3.5f, radius - inner + 2.0f, 7.0f}, 2.0f, WHITE);
  stroke_box(context, {inner - 2.0f, -4.5f, radius - inner + 4.0f, 9.0f}, 3.0f,
             with_alpha(BLACK, 0.4f));

  // The triangle from the colour to white and to black.
  const float reach = inner - 6.0f;
  const float bx = std::cos(120.0f / 180.0f * NVG_PI) * reach;
  const float by = std::sin(120.0f / 180.0f * NVG_PI) * reach;
  nvgBeginPath(context);
  nvgMoveTo(context, reach, 0.0f);
  nvgLineTo(context, bx, -by);
  nvgLineTo(context, bx, by);
  nvgClosePath(context);
  nvgFillPaint(context, nvgLinearGradient(context, reach, 0.0f, bx, -by,
                                          nvgHSLA(hue, 1.0f, 0.5f, 255), WHITE));
  fill(context);
  nvgFillPaint(context, nvgLinearGradient(context, (reach + bx) * 0.5f, -by * 0.5f, bx, by,
                                          with_alpha(BLACK, 0.0f), BLACK));
  fill(context);
  nvgStrokeColor(context, with_alpha(BLACK, 0.3f));
  nvgStrokeWidth(context, 1.0f);
  stroke(context);
  nvgBeginPath(context);
  nvgCircle(context, reach * 0.35f, -by * 0.12f, 4.5f);
  nvgStrokeColor(context, WHITE);
  nvgStrokeWidth(context, 1.5f);
  stroke(context);
}

// ---- lines ----

void draw_widths(NVGcontext* context, float x, float y) {
  nvgStrokeColor(context, with_alpha(TEXT, 0.9f));
  for (int i = 0; i < 9; ++i) {
    const float width = 0.25f + static_cast<float>(i) * 0.6f;
    nvgBeginPath(context);
    nvgMoveTo(context, x, y);
    nvgLineTo(context, x + 82.0f, y - 10.0f);
    nvgStrokeWidth(context, width);
    stroke(context);
    y += 9.0f;
  }
}

void draw_caps(NVGcontext* context, float x, float y) {
  constexpr int caps[] = {NVG_BUTT, NVG_ROUND, NVG_SQUARE};
  const WidgetBox length{x + 10.0f, y, 62.0f, 78.0f};
  fill_box(context, length, 0.0f, with_alpha(WHITE, 0.1f));
  for (const int cap : caps) {
    nvgBeginPath(context);
    nvgMoveTo(context, length.x, y + 14.0f);
    nvgLineTo(context, length.x + length.w, y + 14.0f);
    nvgLineCap(context, cap);
    nvgStrokeColor(context, with_alpha(BLUE, 0.9f));
    nvgStrokeWidth(context, 14.0f);
    stroke(context);
    y += 25.0f;
  }
  nvgLineCap(context, NVG_BUTT);
}

/// A sheet, and what it leaves of a band that turns over it.
void draw_scissor(NVGcontext* context, float x, float y, float time) {
  const Settings settings(context);
  nvgTranslate(context, x, y);
  nvgRotate(context, 0.09f);
  const WidgetBox sheet{-30.0f, -30.0f, 64.0f, 60.0f};
  const WidgetBox band{-28.0f, -11.0f, 70.0f, 28.0f};
  fill_box(context, sheet, 0.0f, nvgRGBAf(0.92f, 0.42f, 0.18f, 1.0f));
  nvgRotate(context, time);
  fill_box(context, band, 0.0f, with_alpha(nvgRGBAf(1.0f, 0.83f, 0.35f, 1.0f), 0.15f));
  nvgRotate(context, -time);
  nvgScissor(context, sheet.x, sheet.y, sheet.w, sheet.h);
  nvgRotate(context, time);
  fill_box(context, band, 0.0f, nvgRGBAf(1.0f, 0.83f, 0.35f, 1.0f));
}

/// Every join with every cap, along one line with two corners that open and close.
void draw_joins(NVGcontext* context, const WidgetBox& box, float time) {
  constexpr int joins[] = {NVG_MITER, NVG_ROUND, NVG_BEVEL};
  constexpr int caps[] = {NVG_BUTT, NVG_ROUND, NVG_SQUARE};
  const float step = box.w / 9.0f, y = box.center_y();
  const float swing = box.h * 0.5f, reach = step * 0.28f;
  const float angle = 0.9f + time * 0.3f;
  const float ends[][2] = {
      {-reach + std::cos(angle) * swing * 0.5f, std::sin(angle) * swing},
      {-reach * 0.35f, 0.0f},
      {reach * 0.35f, 0.0f},
      {reach + std::cos(-angle) * swing * 0.5f, std::sin(-angle) * swing},
  };
  float x = box.x + step * 0.5f;
  const Settings settings(context);
  const auto trace = [&] {
    nvgBeginPath(context);
    nvgMoveTo(context, x + ends[0][0], y + ends[0][1]);
    for (int i = 1; i < 4; ++i) nvgLineTo(context, x + ends[i][0], y + ends[i][1]);
  };
  for (const int cap : caps) {
    for (const int join : joins) {
      nvgLineCap(context, cap);
      nvgLineJoin(context, join);
      trace();
      nvgStrokeWidth(context, 10.0f);
      nvgStrokeColor(context, with_alpha(BLACK, 0.55f));
      stroke(context);
      nvgLineCap(context, NVG_BUTT);
      nvgLineJoin(context, NVG_BEVEL);
      nvgStrokeWidth(context, 1.0f);
      nvgStrokeColor(context, shaded(BLUE, 0.4f));
      stroke(context);
      x += step;
    }
  }
}

}  // namespace

void draw_demo_page(NVGcontext* context, float time) {
  // The graph lies below all else.
  demo_graph_draw(0.0f, 400.0f, 800.0f, 200.0f, time);
  draw_joins(context, {40.0f, 540.0f, 720.0f, 36.0f}, time);

  demo_eyes_draw(590.0f, 32.0f, 170.0f, 104.0f, 400.0f + 380.0f * std::cos(time * 0.9f),
                 300.0f + 260.0f * std::sin(time * 0.9f), time);
  draw_paragraph(context, {350.0f, 34.0f, 200.0f, 200.0f}, time);
  draw_icons(context, 582.0f, 170.0f);

  draw_caption(context, 320.0f, 268.0f, "Widths");
  draw_widths(context, 320.0f, 292.0f);
  draw_caption(context, 420.0f, 268.0f, "Caps");
  draw_caps(context, 410.0f, 281.0f);
  draw_caption(context, 510.0f, 268.0f, "Scissor");
  draw_scissor(context, 538.0f, 321.0f, time);

  draw_color_wheel(context, 676.0f, 294.0f, 92.0f, time);
  draw_window(context, time);
}

}  // namespace orv::nvg
