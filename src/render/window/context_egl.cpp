// Off screen contexts through EGL.
#include <orv/core/log_mgr.h>
#include <orv/render/render_window_data.h>

#include <string>
#include <vector>

#include "render/window/context.h"
#include "render/window/dynamic_library.h"
#include "render/window/offscreen_registry.h"

#define EGL_NO_X11
#include <EGL/egl.h>
#include <EGL/eglext.h>

namespace orv::detail {
namespace {

using Lock = std::lock_guard<std::recursive_mutex>;

// ---- the library -----------------------------------------------------------------------------

// clang-format off
#define ORV_EGL_FUNCTIONS(F) \
  F(eglGetProcAddress)       \
  F(eglGetError)             \
  F(eglGetDisplay)           \
  F(eglInitialize)           \
  F(eglQueryString)          \
  F(eglBindAPI)              \
  F(eglQueryAPI)             \
  F(eglGetConfigs)           \
  F(eglChooseConfig)         \
  F(eglGetConfigAttrib)      \
  F(eglCreateContext)        \
  F(eglDestroyContext)       \
  F(eglMakeCurrent)          \
  F(eglCreatePbufferSurface) \
  F(eglDestroySurface)       \
  F(eglSwapBuffers)          \
  F(eglSwapInterval)         \
  F(eglGetCurrentContext)    \
  F(eglGetCurrentDisplay)    \
  F(eglGetCurrentSurface)
// clang-format on

struct EglLibrary {
#define ORV_EGL_MEMBER(name) decltype(&::name) name = nullptr;
  ORV_EGL_FUNCTIONS(ORV_EGL_MEMBER)
#undef ORV_EGL_MEMBER
  PFNEGLQUERYDEVICESEXTPROC eglQueryDevicesEXT = nullptr;
  PFNEGLQUERYDEVICESTRINGEXTPROC eglQueryDeviceStringEXT = nullptr;
  PFNEGLGETPLATFORMDISPLAYEXTPROC eglGetPlatformDisplayEXT = nullptr;

  bool fill(void* library) {
    bool complete = library != nullptr;
#define ORV_EGL_FIND(name) complete = complete && find_function(library, #name, &name);
    ORV_EGL_FUNCTIONS(ORV_EGL_FIND)
#undef ORV_EGL_FIND
    return complete;
  }

  bool has_client_extension(const char* name) const {
    const char* names = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    return names && (" " + std::string(names) + " ").find(" " + std::string(name) + " ") !=
                        std::string::npos;
  }

  // Functions of extensions are there only when the extension is: the loader gives stubs.
  void fill_extensions() {
    if (has_client_extension("EGL_EXT_platform_base")) {
      fetch("eglGetPlatformDisplayEXT", &eglGetPlatformDisplayEXT);
    }
    if (has_client_extension("EGL_EXT_device_base") ||
        has_client_extension("EGL_EXT_device_enumeration")) {
      fetch("eglQueryDevicesEXT", &eglQueryDevicesEXT);
      fetch("eglQueryDeviceStringEXT", &eglQueryDeviceStringEXT);
    }
  }

  template <class Function>
  void fetch(const char* name, Function* function) const {
    *function = reinterpret_cast<Function>(eglGetProcAddress(name));
  }
};

// Null when the machine has no EGL. With loaded_only, nothing is loaded for the question.
const EglLibrary* egl_library(bool loaded_only = false) {
  static std::recursive_mutex mutex;
  static EglLibrary egl;
  static bool filled = false;
  const Lock lock(mutex);
  if (filled) return &egl;
  void* library = open_library({"libEGL.so.1"}, loaded_only);
  if (library) {
    filled = egl.fill(library);
    if (filled) egl.fill_extensions();
  }
  if (!filled && !loaded_only) {
    LogMgr::get().trace_debug("EGL: libEGL.so.1 is missing or incomplete");
  }
  return filled ? &egl : nullptr;
}

// Which API contexts are made for belongs to the thread, and the host may have set another.
class OpenGLBound {
 public:
  explicit OpenGLBound(const EglLibrary& egl) : egl_(egl), old_api_(egl.eglQueryAPI()) {
    egl_.eglBindAPI(EGL_OPENGL_API);
  }
  ~OpenGLBound() {
    if (old_api_ != EGL_OPENGL_API && old_api_ != EGL_NONE) egl_.eglBindAPI(old_api_);
  }
  OpenGLBound(const OpenGLBound&) = delete;
  OpenGLBound& operator=(const OpenGLBound&) = delete;

 private:
  const EglLibrary& egl_;
  EGLenum old_api_;
};

// ---- displays --------------------------------------------------------------------------------

std::vector<EGLConfig> list_configs(const EglLibrary& egl, EGLDisplay display) {
  const EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
                           EGL_NONE};
  EGLint count = 0;
  if (!egl.eglChooseConfig(display, wanted, nullptr, 0, &count) || count < 1) return {};
  std::vector<EGLConfig> configs(static_cast<std::size_t>(count));
  if (!egl.eglChooseConfig(display, wanted, configs.data(), count, &count)) return {};
  configs.resize(static_cast<std::size_t>(count));
  return configs;
}

/// Finds a display for each preference once. Displays are never terminated: the host may use the
/// same one.
class Displays {
 public:
  explicit Displays(const EglLibrary& egl) : egl_(egl) {}

  EGLDisplay find(OffscreenWindow::Preference preference) {
    EGLDisplay& display = found_[preference];
    if (display != EGL_NO_DISPLAY) return display;
    if (preference != OffscreenWindow::SOFTWARE) display = try_devices(false);
    if (display == EGL_NO_DISPLAY && preference != OffscreenWindow::HARDWARE) {
      display = try_devices(true);
    }
    if (display == EGL_NO_DISPLAY && preference == OffscreenWindow::ANY) display = try_others();
    return display;
  }

 private:
  EGLDisplay try_devices(bool software) {
    if (!egl_.eglQueryDevicesEXT || !egl_.eglGetPlatformDisplayEXT ||
        !egl_.has_client_extension("EGL_EXT_platform_device")) {
      LogMgr::get().trace_debug("EGL: device platform passed over: not supported");
      return EGL_NO_DISPLAY;
    }
    constexpr EGLint MAX_DEVICES = 64;
    EGLDeviceEXT devices[MAX_DEVICES];
    EGLint count = 0;
    if (!egl_.eglQueryDevicesEXT(MAX_DEVICES, devices, &count)) count = 0;
    for (EGLint i = 0; i < count; ++i) {
      if (is_software(devices[i]) != software) continue;
      const std::string name = "device " + std::to_string(i) + (software ? " (software)" : "");
      const EGLDisplay display = try_display(
          egl_.eglGetPlatformDisplayEXT(EGL_PLATFORM_DEVICE_EXT, devices[i], nullptr), name);
      if (display != EGL_NO_DISPLAY) return display;
    }
    LogMgr::get().tracef_debug("EGL: no usable %s device", software ? "software" : "hardware");
    return EGL_NO_DISPLAY;
  }

  EGLDisplay try_others() {
    EGLDisplay display = EGL_NO_DISPLAY;
    if (egl_.eglGetPlatformDisplayEXT &&
        egl_.has_client_extension("EGL_MESA_platform_surfaceless")) {
      display = try_display(egl_.eglGetPlatformDisplayEXT(EGL_PLATFORM_SURFACELESS_MESA,
                                                          EGL_DEFAULT_DISPLAY, nullptr),
                            "surfaceless platform");
    } else {
      LogMgr::get().trace_debug("EGL: surfaceless platform passed over: not supported");
    }
    if (display != EGL_NO_DISPLAY) return display;
    return try_display(egl_.eglGetDisplay(EGL_DEFAULT_DISPLAY), "default display");
  }

  bool is_software(EGLDeviceEXT device) const {
    if (!egl_.eglQueryDeviceStringEXT) return false;
    const char* names = egl_.eglQueryDeviceStringEXT(device, EGL_EXTENSIONS);
    return names && std::string(names).find("EGL_MESA_device_software") != std::string::npos;
  }

  EGLDisplay try_display(EGLDisplay display, const std::string& name) {
    const char* fault = nullptr;
    if (display == EGL_NO_DISPLAY) {
      fault = "no display";
    } else if (!egl_.eglInitialize(display, nullptr, nullptr)) {
      fault = "initialisation failed";
    } else if (const OpenGLBound bound(egl_); list_configs(egl_, display).empty()) {
      fault = "no format for OpenGL off screen";
    }
    if (fault) {
      LogMgr::get().tracef_debug("EGL: %s passed over: %s (0x%04X)", name.c_str(), fault,
                                 static_cast<unsigned int>(egl_.eglGetError()));
      return EGL_NO_DISPLAY;
    }
    LogMgr::get().tracef_debug("EGL: %s taken", name.c_str());
    return display;
  }

  const EglLibrary& egl_;
  EGLDisplay found_[3] = {EGL_NO_DISPLAY, EGL_NO_DISPLAY, EGL_NO_DISPLAY};
};

EGLDisplay find_display(const EglLibrary& egl, OffscreenWindow::Preference preference) {
  static Displays displays(egl);
  return displays.find(preference);
}

// ---- surfaces --------------------------------------------------------------------------------

class EglWindowSurface : public WindowSurface {
 public:
  using WindowSurface::WindowSurface;

  EGLDisplay display = EGL_NO_DISPLAY;
  EGLConfig config = nullptr;
  std::uintptr_t window_id = 0;  ///< of the offscreen window; 0 for a surface of the host
  bool holds_surface = false;    ///< counted as a user of the offscreen window's surface
  EGLSurface host_draw = EGL_NO_SURFACE;
  EGLSurface host_read = EGL_NO_SURFACE;
};

EglWindowSurface& own(WindowSurface& surface) { return static_cast<EglWindowSurface&>(surface); }

// The offscreen window behind a surface; null when it is gone. The caller holds the lock.
OffscreenWindowData* window_of(const EglWindowSurface& surface) {
  OffscreenWindowData* data = OffscreenRegistry::get().find(surface.window_id);
  if (!data && surface.window_id != 0) {
    LogMgr::get().trace_debug("EGL: the offscreen window is gone");
  }
  return data;
}

EGLSurface create_pbuffer(const EglLibrary& egl, EGLDisplay display, EGLConfig config, int width,
                          int height) {
  // Some drivers take any size and fail when the memory is touched.
  if (width > MAX_OFFSCREEN_SIZE || height > MAX_OFFSCREEN_SIZE) {
    LogMgr::get().tracef_debug("EGL: a surface of %dx%d is too large", width, height);
    return EGL_NO_SURFACE;
  }
  const EGLint attributes[] = {EGL_WIDTH, width, EGL_HEIGHT, height, EGL_NONE};
  const EGLSurface surface = egl.eglCreatePbufferSurface(display, config, attributes);
  if (surface == EGL_NO_SURFACE) {
    LogMgr::get().tracef_debug("EGL: no surface of %dx%d (0x%04X)", width, height,
                               static_cast<unsigned int>(egl.eglGetError()));
  }
  return surface;
}

PixelTraits read_traits(const EglLibrary& egl, EGLDisplay display, EGLConfig config) {
  const auto read = [&](EGLint name) {
    EGLint value = 0;
    egl.eglGetConfigAttrib(display, config, name, &value);
    return static_cast<int>(value);
  };
  PixelTraits traits;
  traits.red = read(EGL_RED_SIZE);
  traits.green = read(EGL_GREEN_SIZE);
  traits.blue = read(EGL_BLUE_SIZE);
  traits.alpha = read(EGL_ALPHA_SIZE);
  traits.depth = read(EGL_DEPTH_SIZE);
  traits.stencil = read(EGL_STENCIL_SIZE);
  traits.samples = read(EGL_SAMPLES);
  traits.slow = read(EGL_CONFIG_CAVEAT) != EGL_NONE;
  return traits;
}

// ---- the back end ----------------------------------------------------------------------------

class EglBackEnd : public ContextBackEnd {
 public:
  bool takes(const RenderWindowData& data) const override {
    return !data.app_instance && data.native_window;
  }

  std::unique_ptr<WindowSurface> open(const RenderWindowData& data) override {
    const Lock lock(OffscreenRegistry::get().mutex());
    const auto id = reinterpret_cast<std::uintptr_t>(data.native_window);
    const OffscreenWindowData* window = OffscreenRegistry::get().find(id);
    if (!window) {
      LogMgr::get().trace_debug("EGL: the handle is of no living offscreen window");
      return nullptr;
    }
    const EglLibrary* egl = egl_library();
    if (!egl) return nullptr;
    const EGLDisplay display = find_display(*egl, window->preference);
    if (display == EGL_NO_DISPLAY) return nullptr;
    auto surface = std::make_unique<EglWindowSurface>(this);
    surface->display = display;
    surface->window_id = id;
    return surface;
  }

  void close(WindowSurface& surface) override {
    EglWindowSurface& mine = own(surface);
    if (!mine.holds_surface) return;
    mine.holds_surface = false;
    const Lock lock(OffscreenRegistry::get().mutex());
    OffscreenWindowData* window = OffscreenRegistry::get().find(mine.window_id);
    if (window && --window->num_users == 0) destroy_offscreen_surface(window);
  }

  // ---- formats ----

  bool has_multisample(WindowSurface&) override { return true; }

  bool choose_format(WindowSurface& surface, const PixelRequest& request) override {
    EglWindowSurface& mine = own(surface);
    const Lock lock(OffscreenRegistry::get().mutex());
    const OffscreenWindowData* window = window_of(mine);
    if (!window) return false;
    if (window->surface && window->num_users > 0) {
      // A window has one format for as long as anyone draws to it.
      mine.config = window->config;
      return true;
    }
    if (request.existing) {
      report_no_format("EGL", request);
      return false;
    }
    const EglLibrary& egl = *egl_library();
    const OpenGLBound bound(egl);
    int best = -1;
    for (const EGLConfig config : list_configs(egl, mine.display)) {
      const int penalty = pixel_penalty(read_traits(egl, mine.display, config), request);
      if (penalty < 0 || (best >= 0 && penalty >= best)) continue;
      best = penalty;
      mine.config = config;
    }
    if (best < 0) report_no_format("EGL", request);
    return best >= 0;
  }

  bool set_format(WindowSurface& surface) override {
    EglWindowSurface& mine = own(surface);
    const Lock lock(OffscreenRegistry::get().mutex());
    OffscreenWindowData* window = window_of(mine);
    if (!window) return false;
    if (window->num_users == 0) {
      destroy_offscreen_surface(window);
      window->surface =
          create_pbuffer(*egl_library(), mine.display, mine.config, window->width, window->height);
      if (!window->surface) return false;
      window->display = mine.display;
      window->config = mine.config;
    }
    ++window->num_users;
    mine.holds_surface = true;
    return true;
  }

  // ---- contexts ----

  bool has_attributes(WindowSurface& surface) override {
    const char* names = extension_names(surface);
    return names && std::string(names).find("EGL_KHR_create_context") != std::string::npos;
  }

  void* create_context(WindowSurface& surface, const ContextRequest& request,
                       void* shared) override {
    const EglLibrary& egl = *egl_library();
    const EglWindowSurface& mine = own(surface);
    std::vector<EGLint> attributes;
    if (request.major > 0) {
      attributes = {EGL_CONTEXT_MAJOR_VERSION_KHR, request.major, EGL_CONTEXT_MINOR_VERSION_KHR,
                    request.minor};
    }
    if (request.major > 0 && request.with_profile) {
      const EGLint flags = request.debug ? EGL_CONTEXT_OPENGL_DEBUG_BIT_KHR : 0;
      const EGLint profile = request.core ? EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT_KHR
                                          : EGL_CONTEXT_OPENGL_COMPATIBILITY_PROFILE_BIT_KHR;
      attributes.insert(attributes.end(), {EGL_CONTEXT_FLAGS_KHR, flags,
                                           EGL_CONTEXT_OPENGL_PROFILE_MASK_KHR, profile});
    }
    attributes.push_back(EGL_NONE);
    const OpenGLBound bound(egl);
    const EGLContext context =
        egl.eglCreateContext(mine.display, mine.config, shared, attributes.data());
    if (context == EGL_NO_CONTEXT) {
      report_refused_context("EGL", request, static_cast<unsigned int>(egl.eglGetError()));
    }
    return context;
  }

  void destroy_context(WindowSurface& surface, void* context) override {
    if (context) egl_library()->eglDestroyContext(own(surface).display, context);
  }

  bool make_current(WindowSurface& surface, void* context) override {
    const EglLibrary& egl = *egl_library();
    const EglWindowSurface& mine = own(surface);
    EGLSurface draw = EGL_NO_SURFACE;
    EGLSurface read = EGL_NO_SURFACE;
    const Lock lock(OffscreenRegistry::get().mutex());
    if (context && mine.window_id == 0) {
      draw = mine.host_draw;
      read = mine.host_read;
    } else if (context) {
      const OffscreenWindowData* window = window_of(mine);
      if (!window) return false;
      if (!window->surface) {
        LogMgr::get().trace_debug("EGL: context not bound: the offscreen window has no surface");
        return false;
      }
      draw = read = window->surface;
    }
    if (egl.eglMakeCurrent(mine.display, draw, read, context)) return true;
    LogMgr::get().tracef_debug("EGL: context not bound (0x%04X)",
                               static_cast<unsigned int>(egl.eglGetError()));
    return false;
  }

  // ---- swapping ----

  bool swap(WindowSurface& surface) override {
    const EglWindowSurface& mine = own(surface);
    const Lock lock(OffscreenRegistry::get().mutex());
    EGLSurface target = mine.host_draw;
    if (mine.window_id != 0) {
      const OffscreenWindowData* window = window_of(mine);
      target = window ? window->surface : EGL_NO_SURFACE;
    }
    if (target == EGL_NO_SURFACE) return false;
    const EglLibrary& egl = *egl_library();
    if (egl.eglSwapBuffers(mine.display, target)) return true;
    LogMgr::get().tracef_debug("EGL: buffers not swapped (0x%04X)",
                               static_cast<unsigned int>(egl.eglGetError()));
    return false;
  }

  bool set_interval(WindowSurface& surface, int interval) override {
    EglWindowSurface& mine = own(surface);
    if (!is_current_surface(mine)) {
      LogMgr::get().trace_debug("EGL: swap interval not set: the window is not current");
      return false;
    }
    const EglLibrary& egl = *egl_library();
    if (!egl.eglSwapInterval(mine.display, interval)) {
      LogMgr::get().tracef_debug("EGL: swap interval of %d refused (0x%04X)", interval,
                                 static_cast<unsigned int>(egl.eglGetError()));
      return false;
    }
    mine.interval = interval;
    return true;
  }

  bool get_interval(WindowSurface& surface, int* interval) override {
    const EglWindowSurface& mine = own(surface);
    const Lock lock(OffscreenRegistry::get().mutex());
    if (mine.window_id != 0 && !window_of(mine)) return false;
    *interval = mine.interval;
    return true;
  }

  bool get_size(WindowSurface& surface, int* width, int* height) override {
    const Lock lock(OffscreenRegistry::get().mutex());
    const OffscreenWindowData* window = OffscreenRegistry::get().find(own(surface).window_id);
    if (!window) return false;
    *width = window->width;
    *height = window->height;
    return true;
  }

  // ---- names and functions ----

  const char* extension_names(const WindowSurface& surface) override {
    const auto& mine = static_cast<const EglWindowSurface&>(surface);
    return egl_library()->eglQueryString(mine.display, EGL_EXTENSIONS);
  }

  GlProc proc_address(const char* name) override {
    const EglLibrary* egl = egl_library();
    GlProc function = egl ? reinterpret_cast<GlProc>(egl->eglGetProcAddress(name)) : nullptr;
    return function ? function : reinterpret_cast<GlProc>(find_opengl_symbol(name));
  }

  void* current_context() override {
    const EglLibrary* egl = egl_library(true);
    return egl ? egl->eglGetCurrentContext() : nullptr;
  }

  std::unique_ptr<WindowSurface> open_current() override {
    if (!current_context()) return nullptr;
    const EglLibrary& egl = *egl_library();
    auto surface = std::make_unique<EglWindowSurface>(this);
    surface->host_made = true;
    surface->display = egl.eglGetCurrentDisplay();
    surface->host_draw = egl.eglGetCurrentSurface(EGL_DRAW);
    surface->host_read = egl.eglGetCurrentSurface(EGL_READ);
    return surface;
  }

 private:
  static bool is_current_surface(const EglWindowSurface& surface) {
    const EGLSurface current = egl_library()->eglGetCurrentSurface(EGL_DRAW);
    if (current == EGL_NO_SURFACE) return false;
    if (surface.window_id == 0) return current == surface.host_draw;
    const Lock lock(OffscreenRegistry::get().mutex());
    const OffscreenWindowData* window = window_of(surface);
    return window && window->surface == current;
  }
};

}  // namespace

ContextBackEnd& egl_back_end() {
  // Never destroyed: windows may outlive static objects.
  static auto* const back_end = new EglBackEnd;
  return *back_end;
}

// ---- surfaces of offscreen windows -----------------------------------------------------------

void destroy_offscreen_surface(OffscreenWindowData* data) {
  if (!data->surface) return;
  egl_library()->eglDestroySurface(data->display, data->surface);
  data->surface = nullptr;
}

bool resize_offscreen_surface(OffscreenWindowData* data, int width, int height) {
  const EglLibrary& egl = *egl_library();
  const EGLSurface fresh = create_pbuffer(egl, data->display, data->config, width, height);
  if (fresh == EGL_NO_SURFACE) return false;
  if (egl.eglGetCurrentSurface(EGL_DRAW) == data->surface &&
      !egl.eglMakeCurrent(data->display, fresh, fresh, egl.eglGetCurrentContext())) {
    LogMgr::get().tracef_debug("EGL: context not bound to a surface of %dx%d (0x%04X)", width,
                               height, static_cast<unsigned int>(egl.eglGetError()));
    egl.eglDestroySurface(data->display, fresh);
    return false;
  }
  egl.eglDestroySurface(data->display, data->surface);
  data->surface = fresh;
  return true;
}

}  // namespace orv::detail
