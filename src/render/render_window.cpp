#include <orv/render/render_window.h>

#include <orv/core/utils.h>

#include <algorithm>

#include "render/window/context.h"

namespace orv {

RenderWindow::RenderWindow() : id(utils::gen_id()) {}

RenderWindow::~RenderWindow() = default;

void RenderWindow::update_size(int width, int height) {
  data.width = std::max(width, 0);
  data.height = std::max(height, 0);
}

unsigned long RenderWindow::find_x11_visual_id(const RenderWindowData& data) {
  return detail::find_glx_visual_id(data);
}

}  // namespace orv
