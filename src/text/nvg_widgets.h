/// @file
/// Parts that the widgets and the demo page are made of. The context is never null here, and the
/// settings are those of the caller.
#pragma once

#include "text/nvg_globals.h"

namespace orv::nvg {

inline constexpr NVGcolor WHITE = {{{1.0f, 1.0f, 1.0f, 1.0f}}};
inline constexpr NVGcolor BLACK = {{{0.0f, 0.0f, 0.0f, 1.0f}}};

struct WidgetBox {
  float x, y, w, h;

  float center_x() const { return x + w * 0.5f; }
  float center_y() const { return y + h * 0.5f; }
  WidgetBox inner(float dx, float dy) const {
    return {x + dx, y + dy, w - 2.0f * dx, h - 2.0f * dy};
  }
  WidgetBox inner(float distance) const { return inner(distance, distance); }
};

NVGcolor with_alpha(NVGcolor color, float alpha);
/// Lighter above 0 up to white at 1, darker below up to black at -1.
NVGcolor shaded(NVGcolor color, float amount);

/// A code point as text; empty for what is none.
void utf8_of(int code_point, char (&out)[5]);

/// False when there is no font of that name.
bool select_font(NVGcontext* context, const char* font, float size, int align);
void put_text(NVGcontext* context, float x, float y, NVGcolor color, const char* string);
void put_text_with_shadow(NVGcontext* context, float x, float y, NVGcolor color, NVGcolor shadow,
                          float shadow_y, const char* string);
float width_of_text(NVGcontext* context, const char* string);

/// @{
/// Rectangles with corners of the radius `corner`.
void fill_box(NVGcontext* context, const WidgetBox& box, float corner, const NVGpaint& paint);
void fill_box(NVGcontext* context, const WidgetBox& box, float corner, NVGcolor color);
void stroke_box(NVGcontext* context, const WidgetBox& box, float corner, NVGcolor color);
NVGpaint from_top_to_bottom(NVGcontext* context, const WidgetBox& box, NVGcolor top,
                            NVGcolor bottom);
/// Around the box, not below it.
void fill_shadow(NVGcontext* context, const WidgetBox& box, float corner, float reach, float alpha);
/// A hollow: darker at its border.
void fill_inset(NVGcontext* context, const WidgetBox& box, float corner, float depth);
/// @}

/// Clips what follows to a rectangle, too.
void clip(NVGcontext* context, const WidgetBox& box);

/// The demo page at 800 by 600 units.
void draw_demo_page(NVGcontext* context, float time);

}  // namespace orv::nvg
