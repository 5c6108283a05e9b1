#include "render/window/context.h"

#include <orv/render/render_window.h>

namespace orv::detail {

ContextBackEnd* current_back_end() {
  for (ContextBackEnd* back_end : {&glx_back_end(), &egl_back_end()}) {
    if (back_end->current_context()) return back_end;
  }
  return nullptr;
}

bool bind_context(WindowSurface& surface, void* context) {
  ContextBackEnd* other = context ? current_back_end() : nullptr;
  if (!other || other == surface.back_end) {
    return surface.back_end->make_current(surface, context);
  }
  const std::unique_ptr<WindowSurface> old_surface = other->open_current();
  void* old_context = other->current_context();
  other->make_current(*old_surface, nullptr);
  if (surface.back_end->make_current(surface, context)) return true;
  other->make_current(*old_surface, old_context);
  return false;
}

WindowSurface* surface_of(const RenderWindow* window) {
  return window && window->context_created ? static_cast<WindowSurface*>(window->device) : nullptr;
}

}  // namespace orv::detail
