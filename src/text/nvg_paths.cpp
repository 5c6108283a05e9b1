// Paths, paint, and shapes in one call.
#include <algorithm>
#include <cmath>

#include "text/nvg_globals.h"

namespace orv::nvg {
namespace {

// A curve is cut in two ten times at most.
constexpr unsigned int POINTS_OF_CURVE = 1u << 10;

/// Adds a part to the path unless a number is out of range or the path is too long.
template <class Add>
void add(unsigned int points, std::initializer_list<float> numbers, Add part) {
  NVGcontext* context = current();
  if (!context || !in_range(numbers) || !take_points(points)) return;
  part(context);
}

}  // namespace

// ---- paths ----

void begin_path() {
  NVGcontext* context = current();
  if (!context) return;
  nvgBeginPath(context);
  globals().path_points = 0;
}

void close_path() {
  add(1, {}, [](NVGcontext* context) { nvgClosePath(context); });
}

void path_winding(int direction) {
  add(1, {}, [=](NVGcontext* context) { nvgPathWinding(context, direction); });
}

void move_to(float x, float y) {
  add(1, {x, y}, [=](NVGcontext* context) { nvgMoveTo(context, x, y); });
}

void line_to(float x, float y) {
  add(1, {x, y}, [=](NVGcontext* context) { nvgLineTo(context, x, y); });
}

void bezier_to(float c1x, float c1y, float c2x, float c2y, float x, float y) {
  add(POINTS_OF_CURVE, {c1x, c1y, c2x, c2y, x, y},
      [=](NVGcontext* context) { nvgBezierTo(context, c1x, c1y, c2x, c2y, x, y); });
}

void rect(float x, float y, float w, float h) {
  add(5, {x, y, w, h}, [=](NVGcontext* context) { nvgRect(context, x, y, w, h); });
}

void rounded_rect(float x, float y, float w, float h, float r) {
  add(5 + 4 * POINTS_OF_CURVE, {x, y, w, h, r},
      [=](NVGcontext* context) { nvgRoundedRect(context, x, y, w, h, r); });
}

void circle(float x, float y, float r) {
  add(4 * POINTS_OF_CURVE, {x, y, r}, [=](NVGcontext* context) { nvgCircle(context, x, y, r); });
}

void ellipse(float x, float y, float rx, float ry) {
  add(4 * POINTS_OF_CURVE, {x, y, rx, ry},
      [=](NVGcontext* context) { nvgEllipse(context, x, y, rx, ry); });
}

// ---- paint ----

void fill(NVGcontext* context) {
  if (take_room(context)) nvgFill(context);
}

void stroke(NVGcontext* context) {
  if (take_room(context)) nvgStroke(context);
}

void fill_color(float r, float g, float b, float a) {
  NVGcontext* context = current();
  if (!context) return;
  nvgFillColor(context, to_color(r, g, b, a));
  fill(context);
}

void stroke(float r, float g, float b, float a, float width) {
  NVGcontext* context = current();
  if (!context || !in_range({width})) return;
  nvgStrokeColor(context, to_color(r, g, b, a));
  nvgStrokeWidth(context, width);
  stroke(context);
}

namespace {

template <class MakePaint>
void fill_with(std::initializer_list<float> numbers, MakePaint make_paint) {
  NVGcontext* context = current();
  if (!context || !in_range(numbers)) return;
  nvgFillPaint(context, make_paint(context));
  fill(context);
}

}  // namespace

void fill_paint_linear_gradient(float sx, float sy, float ex, float ey, const float* c0,
                                const float* c1) {
  fill_with({sx, sy, ex, ey}, [=](NVGcontext* context) {
    return nvgLinearGradient(context, sx, sy, ex, ey, to_color(c0), to_color(c1));
  });
}

void fill_paint_box_gradient(float x, float y, float w, float h, float r, float f, const float* c0,
                             const float* c1) {
  fill_with({x, y, w, h, r, f}, [=](NVGcontext* context) {
    return nvgBoxGradient(context, x, y, w, h, r, f, to_color(c0), to_color(c1));
  });
}

void fill_paint_radial_gradient(float cx, float cy, float inr, float outr, const float* c0,
                                const float* c1) {
  fill_with({cx, cy, inr, outr}, [=](NVGcontext* context) {
    return nvgRadialGradient(context, cx, cy, inr, outr, to_color(c0), to_color(c1));
  });
}

// ---- shapes in one call ----

void circle_draw_fill_color(float x, float y, float radius, float r, float g, float b, float a) {
  begin_path();
  circle(x, y, radius);
  fill_color(r, g, b, a);
}

void circle_draw_fill_gradient(float x, float y, float radius, const float* c0, const float* c1) {
  begin_path();
  circle(x, y, radius);
  fill_paint_radial_gradient(x, y, 0.0f, std::fabs(radius), c0, c1);
}

void circle_draw_stroke(float x, float y, float radius, float r, float g, float b, float a,
                        float width) {
  begin_path();
  circle(x, y, radius);
  stroke(r, g, b, a, width);
}

void ellipse_draw_fill_color(float x, float y, float rx, float ry, float r, float g, float b,
                             float a) {
  begin_path();
  ellipse(x, y, rx, ry);
  fill_color(r, g, b, a);
}

void ellipse_draw_fill_gradient(float x, float y, float rx, float ry, const float* c0,
                                const float* c1) {
  begin_path();
  ellipse(x, y, rx, ry);
  fill_with({x, y, rx, ry}, [=](NVGcontext* context) {
    const float wide = std::max(std::fabs(rx), 1e-3f);
    NVGpaint paint = nvgRadialGradient(context, x, y, 0.0f, wide, to_color(c0), to_color(c1));
    // The rings of the gradient are circles, flattened to the form of the ellipse.
    paint.xform[3] = std::max(std::fabs(ry), 1e-3f) / wide;
    return paint;
  });
}

void ellipse_draw_stroke(float x, float y, float rx, float ry, float r, float g, float b, float a,
                         float width) {
  begin_path();
  ellipse(x, y, rx, ry);
  stroke(r, g, b, a, width);
}

void rounded_rect_draw_fill_color(float x, float y, float w, float h, float radius, float r,
                                  float g, float b, float a) {
  begin_path();
  rounded_rect(x, y, w, h, radius);
  fill_color(r, g, b, a);
}

void rounded_rect_draw_fill_gradient(float x, float y, float w, float h, float radius,
                                     const float* c0, const float* c1) {
  begin_path();
  rounded_rect(x, y, w, h, radius);
  fill_paint_linear_gradient(x, y, x, y + h, c0, c1);
}

void rounded_rect_draw_stroke(float x, float y, float w, float h, float radius, float r, float g,
                              float b, float a, float width) {
  begin_path();
  rounded_rect(x, y, w, h, radius);
  stroke(r, g, b, a, width);
}

}  // namespace orv::nvg
