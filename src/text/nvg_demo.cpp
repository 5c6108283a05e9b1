// The demonstrations: eyes, a graph, and the place of the demo page.
#include <algorithm>
#include <cmath>

#include "text/nvg_widgets.h"

namespace orv::nvg {

// ---- eyes ----

namespace {

struct Eye {
  float x, y, rx, ry;
};

void trace(NVGcontext* context, const Eye& eye, float grow) {
  nvgBeginPath(context);
  nvgEllipse(context, eye.x, eye.y, eye.rx + grow, eye.ry + grow);
}

/// What lies between the upper half of the eye and another half ellipse, whose lowest point is
/// `edge` below the middle.
void trace_lid(NVGcontext* context, const Eye& eye, float edge) {
  const float low = std::min(edge, eye.ry);
  constexpr float KAPPA = 0.5522848f;  // a quarter of a circle by control points
  const float kx = eye.rx * KAPPA;
  nvgBeginPath(context);
  nvgMoveTo(context, eye.x - eye.rx, eye.y);
  nvgBezierTo(context, eye.x - eye.rx, eye.y - eye.ry * KAPPA, eye.x - kx, eye.y - eye.ry, eye.x,
              eye.y - eye.ry);
  nvgBezierTo(context, eye.x + kx, eye.y - eye.ry, eye.x + eye.rx, eye.y - eye.ry * KAPPA,
              eye.x + eye.rx, eye.y);
  nvgBezierTo(context, eye.x + eye.rx, eye.y + low * KAPPA, eye.x + kx, eye.y + low, eye.x,
              eye.y + low);
  nvgBezierTo(context, eye.x - kx, eye.y + low, eye.x - eye.rx, eye.y + low * KAPPA, eye.x - eye.rx,
              eye.y);
  nvgClosePath(context);
}

/// `closed` goes from 0, open, to 1.
void draw_eye(NVGcontext* context, const Eye& eye, float mx, float my, float closed) {
  const NVGcolor skin = nvgRGBAf(0.30f, 0.33f, 0.38f, 1.0f);
  const NVGcolor iris = nvgRGBAf(0.16f, 0.52f, 0.56f, 1.0f);
  const float small = std::min(eye.rx, eye.ry);

  // The white, rounded by shade towards its border.
  trace(context, eye, 0.0f);
  NVGpaint ball =
      nvgRadialGradient(context, eye.x, eye.y, eye.rx * 0.35f, eye.rx * 1.1f,
                        nvgRGBAf(0.97f, 0.97f, 0.95f, 1.0f), nvgRGBAf(0.66f, 0.68f, 0.70f, 1.0f));
  ball.xform[3] = eye.ry / eye.rx;
  nvgFillPaint(context, ball);
  fill(context);

  // The iris stays within the white, however far the point is.
  float dx = (mx - eye.x) / (eye.rx * 6.0f), dy = (my - eye.y) / (eye.ry * 6.0f);
  const float far_away = std::sqrt(dx * dx + dy * dy);
  if (far_away > 1.0f) {
    dx /= far_away;
    dy /= far_away;
  }
  const float ix = eye.x + dx * eye.rx * 0.45f, iy = eye.y + dy * eye.ry * 0.5f;
  const float radius = small * 0.46f;
  nvgBeginPath(context);
  nvgCircle(context, ix, iy, radius);
  nvgFillPaint(context, nvgRadialGradient(context, ix, iy, radius * 0.3f, radius,
                                          shaded(iris, 0.35f), shaded(iris, -0.45f)));
  fill(context);
  nvgBeginPath(context);
  nvgCircle(context, ix, iy, radius * 0.5f);
  nvgFillColor(context, nvgRGBAf(0.05f, 0.05f, 0.06f, 1.0f));
  fill(context);
  nvgBeginPath(context);
  nvgCircle(context, ix - radius * 0.35f, iy - radius * 0.4f, radius * 0.22f);
  nvgFillColor(context, with_alpha(WHITE, 0.85f));
  fill(context);

  // The lid comes down from the top, and its shade before it.
  const float lid = eye.ry * (-0.84f + 1.84f * closed);
  trace_lid(context, eye, lid + eye.ry * 0.16f);
  nvgFillColor(context, with_alpha(BLACK, 0.18f));
  fill(context);
  trace_lid(context, eye, lid);
  nvgFillPaint(context, nvgLinearGradient(context, eye.x, eye.y - eye.ry, eye.x, eye.y + lid,
                                          shaded(skin, 0.15f), shaded(skin, -0.2f)));
  fill(context);
  trace(context, eye, 0.0f);
  nvgStrokeColor(context, with_alpha(BLACK, 0.45f));
  nvgStrokeWidth(context, std::max(1.0f, small * 0.04f));
  stroke(context);
}

/// Shut for a moment every few seconds.
float lid_at(float t) {
  const float phase = std::fmod(std::fabs(t), 3.4f);
  constexpr float MOMENT = 0.24f;
  return phase < MOMENT ? std::sin(phase / MOMENT * NVG_PI) : 0.0f;
}

}  // namespace

void demo_eyes_draw(float x, float y, float w, float h, float mx, float my, float t) {
  NVGcontext* context = current();
  if (!context || !in_range({x, y, w, h, mx, my, t}) || !(w > 1.0f) || !(h > 1.0f)) return;
  const Settings settings(context);
  const float rx = w * 0.23f, ry = h * 0.48f;
  const Eye eyes[] = {{x + rx + 1.0f, y + h * 0.5f, rx, ry},
                      {x + w - rx - 1.0f, y + h * 0.5f, rx, ry}};
  for (const Eye& eye : eyes) {
    nvgBeginPath(context);
    nvgEllipse(context, eye.x + 2.0f, eye.y + ry * 0.2f, rx * 1.25f, ry * 1.2f);
    NVGpaint shadow =
        nvgRadialGradient(context, eye.x + 2.0f, eye.y + ry * 0.2f, rx * 0.7f, rx * 1.25f,
                          with_alpha(BLACK, 0.4f), with_alpha(BLACK, 0.0f));
    shadow.xform[3] = ry * 1.2f / (rx * 1.25f);
    nvgFillPaint(context, shadow);
    fill(context);
  }
  for (const Eye& eye : eyes) draw_eye(context, eye, mx, my, lid_at(t));
}

// ---- graph ----

namespace {

constexpr int NUM_VALUES = 7;

struct GraphPoint {
  float x, y;
};

/// Between 0 and 1, slow waves of different lengths.
float value_at(int index, float t) {
  const float k = static_cast<float>(index);
  return 0.5f + 0.24f * std::sin(t * 0.7f + k * 1.9f) + 0.16f * std::sin(t * 1.3f - k * 0.8f);
}

/// A smooth curve through the points, level at each of them.
void trace_curve(NVGcontext* context, const GraphPoint (&points)[NUM_VALUES], float shift) {
  nvgMoveTo(context, points[0].x, points[0].y + shift);
  for (int i = 1; i < NUM_VALUES; ++i) {
    const GraphPoint &from = points[i - 1], &to = points[i];
    const float reach = (to.x - from.x) * 0.5f;
    nvgBezierTo(context, from.x + reach, from.y + shift, to.x - reach, to.y + shift, to.x,
                to.y + shift);
  }
}

}  // namespace

void demo_graph_draw(float x, float y, float w, float h, float t) {
  NVGcontext* context = current();
  if (!context || !in_range({x, y, w, h, t}) || !(w > 1.0f) || !(h > 1.0f)) return;
  const Settings settings(context);
  const NVGcolor blue = nvgRGBAf(0.10f, 0.62f, 0.82f, 1.0f);
  GraphPoint points[NUM_VALUES];
  for (int i = 0; i < NUM_VALUES; ++i) {
    points[i] = {x + w * static_cast<float>(i) / (NUM_VALUES - 1),
                 y + h * (0.95f - 0.8f * value_at(i, t))};
  }

  // The area below the curve.
  nvgBeginPath(context);
  trace_curve(context, points, 0.0f);
  nvgLineTo(context, x + w, y + h);
  nvgLineTo(context, x, y + h);
  nvgClosePath(context);
  nvgFillPaint(context, nvgLinearGradient(context, x, y + h * 0.1f, x, y + h,
                                          with_alpha(blue, 0.45f), with_alpha(blue, 0.0f)));
  fill(context);

  // The curve over its shadow.
  const float width = std::clamp(h * 0.015f, 1.5f, 3.0f);
  nvgStrokeWidth(context, width);
  nvgBeginPath(context);
  trace_curve(context, points, 2.0f);
  nvgStrokeColor(context, with_alpha(BLACK, 0.25f));
  stroke(context);
  nvgBeginPath(context);
  trace_curve(context, points, 0.0f);
  nvgStrokeColor(context, blue);
  stroke(context);

  // The values, but those at the ends.
  for (int i = 1; i + 1 < NUM_VALUES; ++i) {
    const GraphPoint& point = points[i];
    const float halo = width * 4.0f;
    nvgBeginPath(context);
    nvgCircle(context, point.x, point.y + 2.0f, halo);
    nvgFillPaint(context, nvgRadialGradient(context, point.x, point.y + 2.0f, width, halo,
                                            with_alpha(BLACK, 0.35f), with_alpha(BLACK, 0.0f)));
    fill(context);
    nvgBeginPath(context);
    nvgCircle(context, point.x, point.y, width * 1.7f);
    nvgFillColor(context, blue);
    fill(context);
    nvgBeginPath(context);
    nvgCircle(context, point.x, point.y, width * 0.9f);
    nvgFillColor(context, nvgRGBAf(0.92f, 0.97f, 1.0f, 1.0f));
    fill(context);
  }
}

// ---- page ----

bool render_demo(int x, int y, int w, int h, float time) {
  NVGcontext* context = current();
  if (!context || w <= 0 || h <= 0) return false;
  constexpr float WIDTH = 800.0f, HEIGHT = 600.0f;
  const float left = static_cast<float>(x), top = static_cast<float>(y);
  const float wide = static_cast<float>(w), high = static_cast<float>(h);
  if (!in_range({left, top, wide, high, time})) return false;
  const bool own_frame = !globals().in_frame;
  if (own_frame) {
    int view_width = 0, view_height = 0;
    if (!detail::read_vector_viewport(context, &view_width, &view_height)) return false;
    begin_frame(view_width, view_height, 1.0f);
  }
  {
    const Settings settings(context);
    const WidgetBox page{left, top, wide, high};
    clip(context, page);
    fill_box(context, page, 0.0f,
             from_top_to_bottom(context, page, nvgRGBAf(0.235f, 0.25f, 0.275f, 1.0f),
                                nvgRGBAf(0.14f, 0.15f, 0.165f, 1.0f)));
    const float fit = std::min(wide / WIDTH, high / HEIGHT);
    nvgTranslate(context, left + (wide - WIDTH * fit) * 0.5f, top + (high - HEIGHT * fit) * 0.5f);
    nvgScale(context, fit, fit);
    draw_demo_page(context, time);
  }
  if (own_frame) end_frame();
  return true;
}

}  // namespace orv::nvg
