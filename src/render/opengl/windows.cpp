// Windows and their contexts, over whichever window system a window belongs to.
#include <orv/core/log_mgr.h>
#include <orv/render/render_window.h>

#include <algorithm>

#include "render/opengl/renderer_opengl.h"
#include "render/window/context.h"
#include "render/window/context_creation.h"

namespace orv {

using detail::ContextBackEnd;
using detail::WindowSurface;

namespace {

constexpr const char* NOT_SHARED = "lists not shared";

RenderWindowContextRecord* record_of(RenderWindow* window) {
  return window ? static_cast<RenderWindowContextRecord*>(window->getrdata()) : nullptr;
}

void* context_of(RenderWindow* window) {
  const RenderWindowContextRecord* record = record_of(window);
  return record ? record->context : nullptr;
}

void drop_surface(void** pointer) {
  delete static_cast<WindowSurface*>(*pointer);
  *pointer = nullptr;
}

void delete_window(RenderWindow* window) {
  drop_surface(&window->device);
  drop_surface(&window->saved_device);
  delete record_of(window);
  delete window;
}

void follow_size(RenderWindow* window, WindowSurface* surface) {
  int width = 0;
  int height = 0;
  if (surface->back_end->get_size(*surface, &width, &height)) window->update_size(width, height);
}

// The surface of a window with a context; for one without, the log names what is not done.
WindowSurface* surface_for(RenderWindow* window, const char* what) {
  WindowSurface* surface = detail::surface_of(window);
  if (surface && context_of(window)) return surface;
  if (window) LogMgr::get().tracef_debug("window %d - %s: no context", window->getid(), what);
  return nullptr;
}

// Binds a context to a surface, or unbinds it, and remembers the thread.
bool bind(WindowSurface* surface, void* context) {
  if (!detail::bind_context(*surface, context)) return false;
  surface->current_on = context ? std::this_thread::get_id() : std::thread::id();
  return true;
}

}  // namespace

// ---- where OpenGL comes from -----------------------------------------------------------------

GlProcAddress RendererOpenGL::find_proc_address() const {
  if (forced_proc_address_) return forced_proc_address_;
  const WindowSurface* surface = detail::surface_of(get_current_render_window());
  ContextBackEnd* back_end = surface ? surface->back_end : detail::current_back_end();
  if (!back_end) return nullptr;
  return [back_end](const char* name) { return back_end->proc_address(name); };
}

detail::GlQuestions RendererOpenGL::find_questions() const {
  detail::GlQuestions questions;
  if (core_.glGetString) {
    questions.glGetIntegerv = core_.glGetIntegerv;
    questions.glGetString = core_.glGetString;
    questions.glGetError = core_.glGetError;
    questions.glGetStringi = gl_.glGetStringi;
    // While start fills the tables, this one comes last.
    if (started_) return questions;
  }
  return detail::fetch_questions(find_proc_address());
}

bool RendererOpenGL::has_current_context() const {
  if (forced_proc_address_) return true;
  if (forced_back_end_ && forced_back_end_->current_context()) return true;
  return detail::current_back_end() != nullptr;
}

// ---- list of windows -------------------------------------------------------------------------

RenderWindow* RendererOpenGL::render_window_alloc() {
  auto window = std::make_unique<RenderWindow>();
  windows_.push_back(window.get());
  window->setrdata(new RenderWindowContextRecord);
  set_current_render_window(window.get());
  return window.release();
}

bool RendererOpenGL::render_window_free(RenderWindow* window) {
  if (!window) return false;
  const auto place = std::find(windows_.begin(), windows_.end(), window);
  if (place == windows_.end()) return false;
  windows_.erase(place);
  if (get_current_render_window() == window || windows_.empty()) {
    set_current_render_window(windows_.empty() ? nullptr : windows_.back());
  }
  delete_window(window);
  return true;
}

bool RendererOpenGL::render_window_free_all() {
  for (RenderWindow* window : windows_) {
    render_window_destroy_context(window);
    delete_window(window);
  }
  windows_.clear();
  set_current_render_window(nullptr);
  return true;
}

// ---- contexts --------------------------------------------------------------------------------

ContextBackEnd* RendererOpenGL::back_end_for(const RenderWindowData& data) const {
  if (forced_back_end_) return forced_back_end_;
  for (ContextBackEnd* back_end : {&detail::glx_back_end(), &detail::egl_back_end()}) {
    if (back_end->takes(data)) return back_end;
  }
  return nullptr;
}

bool RendererOpenGL::render_window_create_context(RenderWindow* window,
                                                  const RenderWindowData* data,
                                                  RenderWindow* shared) {
  if (!window || !data || !record_of(window)) return false;
  if (window->context_created) return true;
  window->data = *data;
  window->data.msaa[sizeof(window->data.msaa) - 1] = '\0';
  window->native_handle = data->native_window;
  ContextBackEnd* back_end = data->native_window ? back_end_for(*data) : nullptr;
  if (!back_end) {
    LogMgr::get().tracef_error("OpenGL renderer - no window to make a context for");
    return false;
  }
  std::unique_ptr<WindowSurface> surface = back_end->open(window->data);
  if (!surface) return false;
  detail::CreatedContext created = detail::create_context(
      *surface, &window->data, detail::surface_of(shared), context_of(shared));
  if (!created.context) {
    back_end->close(*surface);
    return false;
  }
  drop_surface(&window->device);
  window->device = surface.release();
  record_of(window)->context = created.context;
  window->core_profile_granted = created.core_profile;
  window->context_created = true;
  note_context_created(window);
  if (!render_window_make_current(window, true)) {
    render_window_destroy_context(window);
    return false;
  }
  follow_size(window, detail::surface_of(window));
  extensions_load(window);
  window->ati_meminfo = is_extension_supported(window, "GL_ATI_meminfo");
  return true;
}

bool RendererOpenGL::render_window_destroy_context(RenderWindow* window) {
  if (!window) return false;
  if (!window->context_created) return true;
  extensions_free(window);
  note_context_destroyed(window);
  void* context = context_of(window);
  if (WindowSurface* surface = detail::surface_of(window)) {
    ContextBackEnd* back_end = surface->back_end;
    if (context && back_end->current_context() == context)
      back_end->make_current(*surface, nullptr);
    if (!surface->host_made) {
      if (context) back_end->destroy_context(*surface, context);
      back_end->close(*surface);
    }
  }
  drop_surface(&window->device);
  if (RenderWindowContextRecord* record = record_of(window)) record->context = nullptr;
  window->context_created = false;
  window->core_profile_granted = false;
  return true;
}

bool RendererOpenGL::render_window_make_current(RenderWindow* window, bool current) {
  WindowSurface* surface = surface_for(window, "not made current");
  if (!surface) return false;
  void* context = context_of(window);
  if (!current && surface->back_end->current_context() != context) return true;
  if (!bind(surface, current ? context : nullptr)) return false;
  note_context_bound(current ? window : nullptr);
  if (current) follow_size(window, surface);
  return true;
}

bool RendererOpenGL::render_window_mark_context_created(RenderWindow* window) {
  if (!window) return false;
  window->context_created = true;
  ContextBackEnd* back_end = forced_back_end_ ? forced_back_end_ : detail::current_back_end();
  void* context = back_end ? back_end->current_context() : nullptr;
  RenderWindowContextRecord* record = record_of(window);
  if (!context || !record || window->device) return true;
  window->device = back_end->open_current().release();
  record->context = window->device ? context : nullptr;
  note_context_bound(window);
  return true;
}

bool RendererOpenGL::render_window_share_lists(RenderWindow* a, RenderWindow* b) {
  if (!a || !b || a == b) return false;
  WindowSurface* source = surface_for(a, NOT_SHARED);
  WindowSurface* surface = source ? surface_for(b, NOT_SHARED) : nullptr;
  if (!surface) return false;
  if (source->back_end != surface->back_end || surface->host_made) {
    LogMgr::get().tracef_debug("context not shared: it is %s",
                               surface->host_made ? "the host's" : "of another window system");
    return false;
  }
  const bool was_current = surface->back_end->current_context() == context_of(b);
  void* shared = detail::recreate_shared(*surface, context_of(b), context_of(a));
  if (!shared) return false;
  record_of(b)->context = shared;
  note_context_destroyed(b);
  note_context_created(b);
  if (!was_current) return true;
  if (!bind(surface, shared)) return false;
  note_context_bound(b);
  return true;
}

void* RendererOpenGL::render_window_get_context_record(RenderWindow* window) {
  return window ? window->getrdata() : nullptr;
}

// ---- a context of the host -------------------------------------------------------------------

bool RendererOpenGL::render_window_save_current_context(RenderWindow* window) {
  RenderWindowContextRecord* record = record_of(window);
  if (!record) return false;
  drop_surface(&window->saved_device);
  record->saved_context = nullptr;
  ContextBackEnd* back_end = forced_back_end_ && forced_back_end_->current_context()
                                 ? forced_back_end_
                                 : detail::current_back_end();
  if (!back_end) return true;
  note_context_saved(window);
  window->saved_device = back_end->open_current().release();
  if (window->saved_device) record->saved_context = back_end->current_context();
  return true;
}

bool RendererOpenGL::render_window_restore_saved_context(RenderWindow* window) {
  const RenderWindowContextRecord* record = record_of(window);
  if (!record || !record->saved_context || !window->saved_device) return false;
  auto* surface = static_cast<WindowSurface*>(window->saved_device);
  if (!detail::bind_context(*surface, record->saved_context)) return false;
  note_context_restored(window);
  return true;
}

// ---- swapping --------------------------------------------------------------------------------

bool RendererOpenGL::render_window_swap_buffers(RenderWindow* window) {
  WindowSurface* surface = surface_for(window, "buffers not swapped");
  if (!surface || !surface->back_end->swap(*surface)) return false;
  follow_size(window, surface);
  return true;
}

bool RendererOpenGL::render_window_set_swap_interval(RenderWindow* window, bool enabled) {
  WindowSurface* surface = surface_for(window, "swap interval not set");
  return surface && surface->back_end->set_interval(*surface, enabled ? 1 : 0);
}

bool RendererOpenGL::render_window_get_swap_interval(RenderWindow* window, int* interval) {
  if (!interval) return false;
  WindowSurface* surface = surface_for(window, "swap interval not read");
  return surface && surface->back_end->get_interval(*surface, interval);
}

bool RendererOpenGL::render_window_delay_before_swap(RenderWindow*, float) {
  return false;  // neither GLX nor EGL can
}

// ---- reserved --------------------------------------------------------------------------------

bool RendererOpenGL::render_window_reserved_1(RenderWindow*) { return true; }

bool RendererOpenGL::render_window_reserved_2(RenderWindow*) { return true; }

bool RendererOpenGL::render_window_reserved_3(RenderWindow*) { return true; }

}  // namespace orv
