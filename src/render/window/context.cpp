#include "render/window/context.h"

#include <orv/render/render_window.h>

namespace orv::detail {

ContextBackEnd* current_back_end() {
  for (ContextBackEnd* back_end : {&glx_back_end(), &egl_back_end()}) {
    if (back_end->current_context()) return back_end;
  }
  return nullptr;
}

WindowSurface* surface_of(const RenderWindow* window) {
  return window && window->context_created ? static_cast<WindowSurface*>(window->device) : nullptr;
}

}  // namespace orv::detail
