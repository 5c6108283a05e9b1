#include "render/window/context_creation.h"

#include <orv/core/log_mgr.h>
#include <orv/render/render_window.h>

#include "render/opengl/gl_questions.h"

namespace orv::detail {
namespace {

// Searches a multisampled format from the wanted number of samples down.
bool choose_multisampled(WindowSurface& surface, PixelRequest request, int wanted_samples) {
  if (!surface.back_end->has_multisample(surface)) return false;
  for (const int samples : {32, 16, 8, 4, 2}) {
    if (samples > wanted_samples) continue;
    request.samples = samples;
    if (surface.back_end->choose_format(surface, request)) return true;
  }
  return false;
}

bool choose_format(WindowSurface& surface, const RenderWindowData& data) {
  PixelRequest request;
  request.color_bits = data.color_bits;
  request.depth_bits = data.depth_bits;
  request.existing = data.use_existing_pixel_format;
  const int samples = samples_of_text(data.msaa);
  if (!request.existing && samples > 1 && choose_multisampled(surface, request, samples)) {
    return true;
  }
  return surface.back_end->choose_format(surface, request);
}

GlVersion version_of_current(ContextBackEnd* back_end) {
  return read_gl_version(
      fetch_questions([back_end](const char* name) { return back_end->proc_address(name); }));
}

// Contexts of 3.0 and 3.1 have no profiles.
ContextRequest request_for(const GlVersion& version, const RenderWindowData& data) {
  ContextRequest request;
  request.major = version.major;
  request.minor = version.minor;
  request.with_profile = version.major > 3 || version.minor >= 2;
  request.debug = data.debug_context;
  request.core = data.core_profile;
  return request;
}

void* create(WindowSurface& surface, const ContextRequest& request, void* shared) {
  void* context = surface.back_end->create_context(surface, request, shared);
  if (context) surface.made = request;
  return context;
}

}  // namespace

CreatedContext create_context(WindowSurface& surface, RenderWindowData* data,
                              WindowSurface* shared_surface, void* shared_context) {
  ContextBackEnd* back_end = surface.back_end;
  CreatedContext created;
  if (!choose_format(surface, *data) || !back_end->set_format(surface)) return created;
  created.context = create(surface, ContextRequest(), nullptr);
  if (!created.context) return created;
  if (!bind_context(surface, created.context)) {
    back_end->destroy_context(surface, created.context);
    created.context = nullptr;
    return created;
  }
  const GlVersion version = version_of_current(back_end);
  const int wanted_major = data->gl_major;
  data->gl_major = version.major;
  // Objects cannot be shared across window systems.
  const bool share = shared_context && shared_surface && shared_surface->back_end == back_end;
  if (version.major < 3) {
    if (shared_context) {
      LogMgr::get().tracef_warning(
          "OpenGL context sharing based on wglShareLists no longer supported. Context sharing "
          "requires OpenGL3+ support and wglCreateContextAttribsARB().");
    }
    return created;
  }
  if (!share && wanted_major <= 2) return created;
  if (!back_end->has_attributes(surface)) return created;

  back_end->make_current(surface, nullptr);
  back_end->destroy_context(surface, created.context);
  const ContextRequest request = request_for(version, *data);
  created.context = create(surface, request, share ? shared_context : nullptr);
  if (created.context) {
    created.core_profile = data->core_profile;
  } else {
    LogMgr::get().tracef_debug("OpenGL %d.%d context refused: a legacy context takes its place",
                               request.major, request.minor);
    created.context = create(surface, ContextRequest(), nullptr);
  }
  return created;
}

// ---- sharing ---------------------------------------------------------------------------------

namespace {

/// What is current on this thread, to be bound again.
class CurrentBinding {
 public:
  explicit CurrentBinding(ContextBackEnd* asked_first)
      : back_end_(asked_first->current_context() ? asked_first : current_back_end()) {
    if (!back_end_) return;
    context_ = back_end_->current_context();
    surface_ = back_end_->open_current();
  }
  void restore() {
    if (surface_) bind_context(*surface_, context_);
  }

 private:
  ContextBackEnd* back_end_;
  void* context_ = nullptr;
  std::unique_ptr<WindowSurface> surface_;
};

// Whether the current context gives the first names to new objects: then there are no others.
bool is_current_context_empty(ContextBackEnd* back_end) {
  using Gen = void (*)(int, unsigned int*);
  using Delete = void (*)(int, const unsigned int*);
  constexpr const char* KINDS[][2] = {{"glGenTextures", "glDeleteTextures"},
                                      {"glGenBuffers", "glDeleteBuffers"}};
  for (const auto& kind : KINDS) {
    const auto gen = reinterpret_cast<Gen>(back_end->proc_address(kind[0]));
    const auto release = reinterpret_cast<Delete>(back_end->proc_address(kind[1]));
    if (!gen || !release) continue;
    unsigned int name = 0;
    gen(1, &name);
    release(1, &name);
    if (name > 1) return false;
  }
  using CreateShader = unsigned int (*)(unsigned int);
  using DeleteShader = void (*)(unsigned int);
  const auto create_shader =
      reinterpret_cast<CreateShader>(back_end->proc_address("glCreateShader"));
  const auto delete_shader =
      reinterpret_cast<DeleteShader>(back_end->proc_address("glDeleteShader"));
  if (!create_shader || !delete_shader) return true;
  constexpr unsigned int VERTEX_SHADER = 0x8B31;
  const unsigned int shader = create_shader(VERTEX_SHADER);
  delete_shader(shader);
  return shader <= 1;
}

}  // namespace

void* recreate_shared(WindowSurface& surface, void* context, void* source) {
  ContextBackEnd* back_end = surface.back_end;
  const std::thread::id nowhere;
  if (surface.current_on != nowhere && surface.current_on != std::this_thread::get_id()) {
    LogMgr::get().trace_debug("context not shared: it is current on another thread");
    return nullptr;
  }
  const bool was_current = back_end->current_context() == context;
  CurrentBinding before(back_end);
  if (!was_current && !bind_context(surface, context)) return nullptr;
  const bool empty = is_current_context_empty(back_end);
  if (!empty) LogMgr::get().trace_debug("context not shared: it has objects already");
  back_end->make_current(surface, nullptr);
  void* shared = empty ? back_end->create_context(surface, surface.made, source) : nullptr;
  if (shared) back_end->destroy_context(surface, context);
  if (!shared || !was_current) before.restore();
  return shared;
}

}  // namespace orv::detail
