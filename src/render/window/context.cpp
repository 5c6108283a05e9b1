#include "render/window/context.h"

#include <orv/core/log_mgr.h>
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

void report_no_format(const char* system, const PixelRequest& request) {
  if (request.existing) {
    LogMgr::get().tracef_debug("%s: no context can draw with the window's own format", system);
    return;
  }
  LogMgr::get().tracef_debug("%s: no format with %d samples, %d colour bits and %d depth bits",
                             system, request.samples, request.color_bits, request.depth_bits);
}

void report_refused_context(const char* system, const ContextRequest& request, unsigned int error) {
  if (request.major == 0) {
    LogMgr::get().tracef_debug("%s: context of the driver's choice refused (0x%04X)", system,
                               error);
    return;
  }
  const char* profile = request.core ? " core" : " compatibility";
  LogMgr::get().tracef_debug("%s: OpenGL %d.%d%s context%s refused (0x%04X)", system, request.major,
                             request.minor, request.with_profile ? profile : "",
                             request.with_profile && request.debug ? " for debugging" : "", error);
}

WindowSurface* surface_of(const RenderWindow* window) {
  return window && window->context_created ? static_cast<WindowSurface*>(window->device) : nullptr;
}

}  // namespace orv::detail
