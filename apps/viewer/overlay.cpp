#include "viewer/overlay.h"

#include <orv/math/mat4.h>
#include <orv/render/renderer.h>

#include <cmath>
#include <cstdio>

namespace viewer {

namespace {

constexpr float text_height = 17.0f;

/// From pixels, the origin in the lower left corner.
orv::mat4 pixel_matrix(int width, int height) {
  orv::mat4 matrix;
  matrix.m[0] = 2.0f / static_cast<float>(width);
  matrix.m[5] = 2.0f / static_cast<float>(height);
  matrix.m[12] = matrix.m[13] = -1.0f;
  return matrix;
}

}  // namespace

bool Overlay::create(orv::Renderer* renderer, float scale) {
  std::snprintf(font_.font_name, sizeof(font_.font_name), "DejaVu Sans Mono");
  font_.height = static_cast<int>(std::lround(text_height * scale));
  return renderer->bitmap_font_create(&font_);
}

void Overlay::destroy(orv::Renderer* renderer) { renderer->bitmap_font_destroy(&font_); }

void Overlay::draw(orv::Renderer* renderer, const std::vector<std::string>& lines, int width,
                   int height) {
  if (!is_usable() || lines.empty()) return;
  renderer->enable_depth_test(false);
  renderer->set_projection_matrix(pixel_matrix(width, height), true);
  renderer->set_modelview_matrix(orv::mat4(), true);
  int y = height - font_.height * 2;
  for (const std::string& line : lines) {
    draw_line(renderer, line, font_.height, y);
    y -= font_.height * 4 / 3;
  }
  renderer->enable_depth_test(true);
}

void Overlay::draw_line(orv::Renderer* renderer, const std::string& line, int x, int y) {
  // Text that begins outside of the window would not be drawn at all.
  if (y < 0) return;
  const auto length = static_cast<unsigned int>(line.size());
  renderer->bitmap_font_render(&font_, x + 1, y - 1, 0.0f, 0.0f, 0.0f, 1.0f, line.c_str(), length);
  renderer->bitmap_font_render(&font_, x, y, 1.0f, 1.0f, 0.9f, 1.0f, line.c_str(), length);
}

}  // namespace viewer
