// Contexts for the host's X11 windows through GLX.
#include <orv/core/log_mgr.h>
#include <orv/render/render_window_data.h>

#include <mutex>
#include <string>
#include <vector>

#include "render/window/context.h"
#include "render/window/glx_library.h"

namespace orv::detail {
namespace {

// ---- X errors --------------------------------------------------------------------------------

/// Takes the X errors of one display for as long as it lives. By default they end the process.
/// Errors of other displays go on to the handler before.
class XErrorTrap {
 public:
  XErrorTrap(const GlxLibrary& glx, ::Display* display)
      : lock_(mutex()), glx_(glx), display_(display) {
    glx_.XSync(display_, False);  // what came before is the host's
    active() = this;
    old_handler_ = glx_.XSetErrorHandler(&XErrorTrap::handle);
  }
  ~XErrorTrap() {
    glx_.XSync(display_, False);
    glx_.XSetErrorHandler(old_handler_);
    active() = nullptr;
  }
  XErrorTrap(const XErrorTrap&) = delete;
  XErrorTrap& operator=(const XErrorTrap&) = delete;

  /// Waits for the server. True when an error came; says so in the log.
  bool failed(const char* what) {
    glx_.XSync(display_, False);
    if (code_ == 0) return false;
    LogMgr::get().tracef_debug("GLX: %s failed with X error %d (request %d.%d)", what, code_,
                               request_, minor_);
    code_ = 0;
    return true;
  }

 private:
  static std::recursive_mutex& mutex() {
    static std::recursive_mutex one;
    return one;
  }
  static XErrorTrap*& active() {
    static XErrorTrap* trap = nullptr;
    return trap;
  }
  static int handle(::Display* display, ::XErrorEvent* event) {
    XErrorTrap* trap = active();
    if (trap && trap->display_ == display) {
      trap->code_ = event->error_code;
      trap->request_ = event->request_code;
      trap->minor_ = event->minor_code;
      return 0;
    }
    return trap && trap->old_handler_ ? trap->old_handler_(display, event) : 0;
  }

  std::lock_guard<std::recursive_mutex> lock_;
  const GlxLibrary& glx_;
  ::Display* display_;
  ::XErrorHandler old_handler_ = nullptr;
  int code_ = 0;
  int request_ = 0;
  int minor_ = 0;
};

// ---- surfaces --------------------------------------------------------------------------------

class GlxWindowSurface : public WindowSurface {
 public:
  using WindowSurface::WindowSurface;

  ::Display* display = nullptr;
  int screen = 0;
  ::Window host_window = 0;
  ::VisualID host_visual = 0;
  ::GLXFBConfig config = nullptr;
  ::Window child = 0;  ///< our own window in the host's, when the host's visual would not do
  ::Colormap colormap = 0;
  int child_width = 0;
  int child_height = 0;
  ::GLXDrawable draw = 0;  ///< what contexts are bound to
  ::GLXDrawable read = 0;
};

GlxWindowSurface& own(WindowSurface& surface) { return static_cast<GlxWindowSurface&>(surface); }

int read_attrib(const GlxLibrary& glx, ::Display* display, ::GLXFBConfig config, int name) {
  int value = 0;
  glx.glXGetFBConfigAttrib(display, config, name, &value);
  return value;
}

constexpr int OPAQUE_DEPTH = 30;  // deeper visuals have alpha, which compositors look at

PixelTraits read_traits(const GlxLibrary& glx, ::Display* display, ::GLXFBConfig config) {
  PixelTraits traits;
  traits.red = read_attrib(glx, display, config, GLX_RED_SIZE);
  traits.green = read_attrib(glx, display, config, GLX_GREEN_SIZE);
  traits.blue = read_attrib(glx, display, config, GLX_BLUE_SIZE);
  traits.alpha = read_attrib(glx, display, config, GLX_ALPHA_SIZE);
  traits.depth = read_attrib(glx, display, config, GLX_DEPTH_SIZE);
  traits.stencil = read_attrib(glx, display, config, GLX_STENCIL_SIZE);
  traits.samples = read_attrib(glx, display, config, GLX_SAMPLES);
  traits.slow = read_attrib(glx, display, config, GLX_CONFIG_CAVEAT) != GLX_NONE;
  if (::XVisualInfo* visual = glx.glXGetVisualFromFBConfig(display, config)) {
    traits.translucent = visual->depth > OPAQUE_DEPTH;
    glx.XFree(visual);
  }
  return traits;
}

// ---- formats ---------------------------------------------------------------------------------

/// The screen's formats that windows can have.
class FormatList {
 public:
  FormatList(const GlxLibrary& glx, ::Display* display, int screen) : glx_(glx), display_(display) {
    int count = 0;
    ::GLXFBConfig* all = glx_.glXGetFBConfigs(display_, screen, &count);
    for (int i = 0; i < count; ++i) {
      if (suits_windows(all[i])) configs_.push_back(all[i]);
    }
    if (all) glx_.XFree(all);
  }

  /// The closest one among those of a visual (0 for any); null when none will do.
  ::GLXFBConfig find(::VisualID visual, const PixelRequest& request) const {
    ::GLXFBConfig best = nullptr;
    int best_penalty = -1;
    for (const ::GLXFBConfig config : configs_) {
      if (visual != 0 && visual_of(config) != visual) continue;
      const int penalty = pixel_penalty(read_traits(glx_, display_, config), request);
      if (penalty < 0 || (best && penalty >= best_penalty)) continue;
      best = config;
      best_penalty = penalty;
    }
    return best;
  }

  ::VisualID visual_of(::GLXFBConfig config) const {
    return static_cast<::VisualID>(read_attrib(glx_, display_, config, GLX_VISUAL_ID));
  }

 private:
  bool suits_windows(::GLXFBConfig config) const {
    const auto read = [&](int name) { return read_attrib(glx_, display_, config, name); };
    return (read(GLX_DRAWABLE_TYPE) & GLX_WINDOW_BIT) && (read(GLX_RENDER_TYPE) & GLX_RGBA_BIT) &&
           read(GLX_DOUBLEBUFFER) && !read(GLX_STEREO) && read(GLX_VISUAL_ID) != 0;
  }

  const GlxLibrary& glx_;
  ::Display* display_;
  std::vector<::GLXFBConfig> configs_;
};

bool is_listed(const char* names, const char* name) {
  return names &&
         (" " + std::string(names) + " ").find(" " + std::string(name) + " ") != std::string::npos;
}

// ---- the back end ----------------------------------------------------------------------------

class GlxBackEnd : public ContextBackEnd {
 public:
  bool takes(const RenderWindowData& data) const override {
    return data.app_instance && data.native_window;
  }

  std::unique_ptr<WindowSurface> open(const RenderWindowData& data) override {
    const GlxLibrary* glx = glx_library();
    if (!glx) return nullptr;
    auto surface = std::make_unique<GlxWindowSurface>(this);
    surface->display = static_cast<::Display*>(data.app_instance);
    surface->host_window = reinterpret_cast<::Window>(data.native_window);
    XErrorTrap trap(*glx, surface->display);
    if (!glx->glXQueryExtension(surface->display, nullptr, nullptr)) {
      LogMgr::get().trace_debug("GLX: the display has no GLX");
      return nullptr;
    }
    ::XWindowAttributes attributes = {};
    const int known =
        glx->XGetWindowAttributes(surface->display, surface->host_window, &attributes);
    if (trap.failed("looking at the host's window") || !known) return nullptr;
    surface->screen = glx->XScreenNumberOfScreen(attributes.screen);
    surface->host_visual = glx->XVisualIDFromVisual(attributes.visual);
    return surface;
  }

  void close(WindowSurface& surface) override {
    GlxWindowSurface& mine = own(surface);
    if (mine.host_made) return;
    const GlxLibrary& glx = *glx_library();
    XErrorTrap trap(glx, mine.display);
    if (mine.child) glx.XDestroyWindow(mine.display, mine.child);
    if (mine.colormap) glx.XFreeColormap(mine.display, mine.colormap);
    trap.failed("destroying the inner window");
    mine.child = 0;
    mine.colormap = 0;
  }

  // ---- formats ----

  bool has_multisample(WindowSurface& surface) override {
    return is_listed(extension_names(surface), "GLX_ARB_multisample");
  }

  bool choose_format(WindowSurface& surface, const PixelRequest& request) override {
    GlxWindowSurface& mine = own(surface);
    const GlxLibrary& glx = *glx_library();
    XErrorTrap trap(glx, mine.display);
    const FormatList formats(glx, mine.display, mine.screen);
    mine.config = formats.find(mine.host_visual, request);
    if (!mine.config && !request.existing) mine.config = formats.find(0, request);
    if (!mine.config) report_no_format("GLX", request);
    return mine.config && !trap.failed("choosing a pixel format");
  }

  bool set_format(WindowSurface& surface) override {
    GlxWindowSurface& mine = own(surface);
    const GlxLibrary& glx = *glx_library();
    const auto visual =
        static_cast<::VisualID>(read_attrib(glx, mine.display, mine.config, GLX_VISUAL_ID));
    if (visual != mine.host_visual) return create_child(&mine);
    mine.draw = mine.read = mine.host_window;
    return true;
  }

  // ---- contexts ----

  bool has_attributes(WindowSurface& surface) override {
    return is_listed(extension_names(surface), "GLX_ARB_create_context");
  }

  void* create_context(WindowSurface& surface, const ContextRequest& request,
                       void* shared) override {
    const GlxWindowSurface& mine = own(surface);
    const GlxLibrary& glx = *glx_library();
    const auto share = static_cast<::GLXContext>(shared);
    XErrorTrap trap(glx, mine.display);
    ::GLXContext context = nullptr;
    if (request.major == 0) {
      context = glx.glXCreateNewContext(mine.display, mine.config, GLX_RGBA_TYPE, share, True);
    } else {
      context = create_with_attributes(mine, request, share);
    }
    const bool failed = trap.failed("creating a context");
    if (failed && context) {
      glx.glXDestroyContext(mine.display, context);
      trap.failed("destroying a refused context");
      context = nullptr;
    }
    if (!context) report_refused_context("GLX", request, 0);
    return context;
  }

  void destroy_context(WindowSurface& surface, void* context) override {
    if (!context) return;
    const GlxLibrary& glx = *glx_library();
    XErrorTrap trap(glx, own(surface).display);
    glx.glXDestroyContext(own(surface).display, static_cast<::GLXContext>(context));
    trap.failed("destroying a context");
  }

  bool make_current(WindowSurface& surface, void* context) override {
    const GlxWindowSurface& mine = own(surface);
    const GlxLibrary& glx = *glx_library();
    XErrorTrap trap(glx, mine.display);
    // Drivers may bind to a window that is gone; drawing to it would be an X error later.
    if (context && !mine.host_made && !is_alive(mine, &trap)) return false;
    const ::GLXDrawable draw = context ? mine.draw : 0;
    const ::GLXDrawable read = context ? mine.read : 0;
    const bool bound = glx.glXMakeContextCurrent(mine.display, draw, read,
                                                 static_cast<::GLXContext>(context)) == True;
    if (trap.failed("binding a context")) return false;
    if (!bound) LogMgr::get().trace_debug("GLX: context not bound");
    return bound;
  }

  // ---- swapping ----

  bool swap(WindowSurface& surface) override {
    const GlxWindowSurface& mine = own(surface);
    if (!mine.draw) {
      LogMgr::get().trace_debug("GLX: buffers not swapped: nothing is drawn to");
      return false;
    }
    glx_library()->glXSwapBuffers(mine.display, mine.draw);
    return true;
  }

  bool set_interval(WindowSurface& surface, int interval) override {
    GlxWindowSurface& mine = own(surface);
    const GlxLibrary& glx = *glx_library();
    const char* names = extension_names(surface);
    XErrorTrap trap(glx, mine.display);
    bool set = false;
    if (is_listed(names, "GLX_EXT_swap_control")) {
      using SetExt = void (*)(::Display*, ::GLXDrawable, int);
      if (const auto call = glx.fetch<SetExt>("glXSwapIntervalEXT")) {
        call(mine.display, mine.draw, interval);
        set = true;
      }
    } else if (is_listed(names, "GLX_MESA_swap_control") && is_current(mine)) {
      using SetMesa = int (*)(unsigned int);
      const auto call = glx.fetch<SetMesa>("glXSwapIntervalMESA");
      set = call && call(static_cast<unsigned int>(interval)) == 0;
    } else if (is_listed(names, "GLX_SGI_swap_control") && is_current(mine) && interval > 0) {
      using SetSgi = int (*)(int);
      const auto call = glx.fetch<SetSgi>("glXSwapIntervalSGI");
      set = call && call(interval) == 0;
    }
    if (trap.failed("setting the swap interval")) return false;
    if (!set) {
      LogMgr::get().tracef_debug("GLX: swap interval of %d not set: no swap control", interval);
      return false;
    }
    mine.interval = interval;
    return true;
  }

  bool get_interval(WindowSurface& surface, int* interval) override {
    const GlxWindowSurface& mine = own(surface);
    const GlxLibrary& glx = *glx_library();
    const char* names = extension_names(surface);
    if (is_listed(names, "GLX_EXT_swap_control")) {
      XErrorTrap trap(glx, mine.display);
      unsigned int value = 0;
      glx.glXQueryDrawable(mine.display, mine.draw, GLX_SWAP_INTERVAL_EXT, &value);
      if (trap.failed("reading the swap interval")) return false;
      *interval = static_cast<int>(value);
      return true;
    }
    if (is_listed(names, "GLX_MESA_swap_control") && is_current(mine)) {
      using GetMesa = int (*)();
      const auto call = glx.fetch<GetMesa>("glXGetSwapIntervalMESA");
      if (!call) return false;
      *interval = call();
      return true;
    }
    if (!is_listed(names, "GLX_SGI_swap_control")) {
      LogMgr::get().trace_debug("GLX: swap interval unknown: no swap control");
      return false;
    }
    *interval = mine.interval;
    return true;
  }

  bool get_size(WindowSurface& surface, int* width, int* height) override {
    GlxWindowSurface& mine = own(surface);
    if (!mine.child) return false;
    const GlxLibrary& glx = *glx_library();
    XErrorTrap trap(glx, mine.display);
    if (!read_host_size(mine, width, height) || trap.failed("following the host's window")) {
      return false;
    }
    if (*width != mine.child_width || *height != mine.child_height) {
      mine.child_width = *width;
      mine.child_height = *height;
      glx.XResizeWindow(mine.display, mine.child, static_cast<unsigned int>(*width),
                        static_cast<unsigned int>(*height));
      trap.failed("resizing the inner window");
    }
    return true;
  }

  // ---- names and functions ----

  const char* extension_names(const WindowSurface& surface) override {
    const auto& mine = static_cast<const GlxWindowSurface&>(surface);
    return glx_library()->glXQueryExtensionsString(mine.display, mine.screen);
  }

  GlProc proc_address(const char* name) override {
    const GlxLibrary* glx = glx_library();
    const GlProc function = glx ? glx->fetch<GlProc>(name) : nullptr;
    return function ? function : reinterpret_cast<GlProc>(find_opengl_symbol(name));
  }

  void* current_context() override {
    const GlxLibrary* glx = glx_library(true);
    return glx ? glx->glXGetCurrentContext() : nullptr;
  }

  std::unique_ptr<WindowSurface> open_current() override {
    if (!current_context()) return nullptr;
    const GlxLibrary& glx = *glx_library();
    auto surface = std::make_unique<GlxWindowSurface>(this);
    surface->host_made = true;
    surface->display = glx.glXGetCurrentDisplay();
    surface->screen = DefaultScreen(surface->display);
    surface->draw = glx.glXGetCurrentDrawable();
    surface->read = glx.glXGetCurrentReadDrawable();
    return surface;
  }

 private:
  static bool is_current(const GlxWindowSurface& surface) {
    return glx_library()->glXGetCurrentDrawable() == surface.draw;
  }

  static ::GLXContext create_with_attributes(const GlxWindowSurface& mine,
                                             const ContextRequest& request, ::GLXContext share) {
    const auto create =
        glx_library()->fetch<PFNGLXCREATECONTEXTATTRIBSARBPROC>("glXCreateContextAttribsARB");
    if (!create) return nullptr;
    std::vector<int> attributes = {GLX_CONTEXT_MAJOR_VERSION_ARB, request.major,
                                   GLX_CONTEXT_MINOR_VERSION_ARB, request.minor};
    if (request.with_profile) {
      const int flags = request.debug ? GLX_CONTEXT_DEBUG_BIT_ARB : 0;
      const int profile = request.core ? GLX_CONTEXT_CORE_PROFILE_BIT_ARB
                                       : GLX_CONTEXT_COMPATIBILITY_PROFILE_BIT_ARB;
      attributes.insert(attributes.end(),
                        {GLX_CONTEXT_FLAGS_ARB, flags, GLX_CONTEXT_PROFILE_MASK_ARB, profile});
    }
    attributes.push_back(0);
    return create(mine.display, mine.config, share, True, attributes.data());
  }

  static bool is_alive(const GlxWindowSurface& surface, XErrorTrap* trap) {
    ::XWindowAttributes attributes = {};
    const int known =
        glx_library()->XGetWindowAttributes(surface.display, surface.draw, &attributes);
    return !trap->failed("looking at the window") && known;
  }

  static bool read_host_size(const GlxWindowSurface& mine, int* width, int* height) {
    ::Window root = 0;
    int x = 0;
    int y = 0;
    unsigned int w = 0;
    unsigned int h = 0;
    unsigned int border = 0;
    unsigned int depth = 0;
    if (!glx_library()->XGetGeometry(mine.display, mine.host_window, &root, &x, &y, &w, &h, &border,
                                     &depth)) {
      return false;
    }
    *width = static_cast<int>(w);
    *height = static_cast<int>(h);
    return true;
  }

  // The inner window takes no events: they go on to the host's.
  static bool create_child(GlxWindowSurface* mine) {
    const GlxLibrary& glx = *glx_library();
    XErrorTrap trap(glx, mine->display);
    ::XVisualInfo* visual = glx.glXGetVisualFromFBConfig(mine->display, mine->config);
    if (!visual || !read_host_size(*mine, &mine->child_width, &mine->child_height)) {
      if (visual) glx.XFree(visual);
      if (!trap.failed("looking at the host's window")) {
        LogMgr::get().trace_debug("GLX: no inner window: its format has no visual");
      }
      return false;
    }
    mine->colormap =
        glx.XCreateColormap(mine->display, mine->host_window, visual->visual, AllocNone);
    ::XSetWindowAttributes attributes = {};
    attributes.colormap = mine->colormap;
    mine->child = glx.XCreateWindow(
        mine->display, mine->host_window, 0, 0, static_cast<unsigned int>(mine->child_width),
        static_cast<unsigned int>(mine->child_height), 0, visual->depth, InputOutput,
        visual->visual, CWColormap | CWBorderPixel | CWBackPixel, &attributes);
    glx.XFree(visual);
    glx.XMapWindow(mine->display, mine->child);
    mine->draw = mine->read = mine->child;
    LogMgr::get().trace_debug("GLX: the host's visual will not do: drawing to an inner window");
    return !trap.failed("creating the inner window");
  }
};

}  // namespace

ContextBackEnd& glx_back_end() {
  // Never destroyed: windows may outlive static objects.
  static auto* const back_end = new GlxBackEnd;
  return *back_end;
}

unsigned long find_glx_visual_id(const RenderWindowData& data) {
  const GlxLibrary* glx = glx_library();
  if (!glx) return 0;
  auto* display = static_cast<::Display*>(data.app_instance);
  const bool opened_here = display == nullptr;
  if (opened_here) display = glx->XOpenDisplay(nullptr);
  if (!display) {
    LogMgr::get().trace_debug("GLX: no visual: the X display cannot be opened");
    return 0;
  }
  unsigned long id = 0;
  if (glx->glXQueryExtension(display, nullptr, nullptr)) {
    const FormatList formats(*glx, display, DefaultScreen(display));
    PixelRequest request;
    request.color_bits = data.color_bits;
    request.depth_bits = data.depth_bits;
    const int wanted_samples = samples_of_text(data.msaa);
    for (const int samples : {8, 4, 2, 0}) {
      if (samples > wanted_samples) continue;
      request.samples = samples;
      const ::GLXFBConfig config = formats.find(0, request);
      if (config) id = formats.visual_of(config);
      if (config) break;
    }
    if (id == 0) report_no_format("GLX", request);
  } else {
    LogMgr::get().trace_debug("GLX: the display has no GLX");
  }
  if (opened_here) glx->XCloseDisplay(display);
  return id;
}

}  // namespace orv::detail
