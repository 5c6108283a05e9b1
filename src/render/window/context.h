/// @file
/// What the renderer needs of a window system. One back end stands for each; they are chosen at run
/// time, and load their libraries only when asked.
#pragma once

#include <memory>
#include <thread>

#include <orv/fwd.h>

#include "render/opengl/gl_loader.h"
#include "render/window/pixel_format_choice.h"

namespace orv::detail {

class ContextBackEnd;

/// What a context is asked to be. With major 0 the driver chooses, which gives its highest version
/// with the fixed pipeline.
struct ContextRequest {
  int major = 0;
  int minor = 0;
  bool with_profile = false;  ///< the next two are passed on
  bool debug = false;
  bool core = false;
};

/// The window system's side of a window. Back ends derive from it. Destroying it frees the record
/// alone: ContextBackEnd::close gives the window system's objects back.
class WindowSurface {
 public:
  explicit WindowSurface(ContextBackEnd* owner) : back_end(owner) {}
  virtual ~WindowSurface() = default;
  WindowSurface(const WindowSurface&) = delete;
  WindowSurface& operator=(const WindowSurface&) = delete;

  ContextBackEnd* back_end;
  bool host_made = false;      ///< the context is the host's
  ContextRequest made;         ///< what the context was made with
  std::thread::id current_on;  ///< thread that it was bound on through the renderer
  int interval = 1;            ///< as last set, where the system does not tell
};

/// A window system.
class ContextBackEnd {
 public:
  virtual ~ContextBackEnd() = default;

  /// Whether the data names a window of this system.
  virtual bool takes(const RenderWindowData& data) const = 0;
  /// The drawing side of the native window, or null.
  virtual std::unique_ptr<WindowSurface> open(const RenderWindowData& data) = 0;
  /// Gives back what was made for the window; contexts are destroyed before.
  virtual void close(WindowSurface& surface) = 0;

  /// Whether formats can be chosen by their number of samples.
  virtual bool has_multisample(WindowSurface& surface) = 0;
  /// Picks the format that comes closest. False when none will do.
  virtual bool choose_format(WindowSurface& surface, const PixelRequest& request) = 0;
  /// Gives the window the format picked last.
  virtual bool set_format(WindowSurface& surface) = 0;

  /// Whether contexts of a wanted version, profile and kind can be made.
  virtual bool has_attributes(WindowSurface& surface) = 0;
  /// Null when the driver refuses. The context is not bound.
  virtual void* create_context(WindowSurface& surface, const ContextRequest& request,
                               void* shared) = 0;
  virtual void destroy_context(WindowSurface& surface, void* context) = 0;
  /// Binds a context to the window on this thread; null unbinds what is bound.
  virtual bool make_current(WindowSurface& surface, void* context) = 0;

  virtual bool swap(WindowSurface& surface) = 0;
  virtual bool set_interval(WindowSurface& surface, int interval) = 0;
  virtual bool get_interval(WindowSurface& surface, int* interval) = 0;
  /// Size of a window that the back end follows; false where the host tells.
  virtual bool get_size(WindowSurface& surface, int* width, int* height) = 0;

  /// Names of the window system's extensions, blank separated; null when there are none.
  virtual const char* extension_names(const WindowSurface& surface) = 0;
  /// A function of OpenGL or of the window system by its exact name.
  virtual GlProc proc_address(const char* name) = 0;
  /// The context current on this thread, whoever made it; null when none of this system is.
  virtual void* current_context() = 0;
  /// The surface that it is bound to, as a host's.
  virtual std::unique_ptr<WindowSurface> open_current() = 0;
};

/// X11 through GLX: windows of the host.
ContextBackEnd& glx_back_end();
/// EGL: OffscreenWindow.
ContextBackEnd& egl_back_end();
/// The back end with a context current on this thread, or null.
ContextBackEnd* current_back_end();

/// Binds a context to a surface on this thread; null unbinds what is bound. A current context of
/// another window system is unbound first: systems do not take each other's away.
bool bind_context(WindowSurface& surface, void* context);

/// The window system's side of a window that has a context; null for null and without one.
WindowSurface* surface_of(const RenderWindow* window);

/// Says in the log that a window system has no format for a request.
void report_no_format(const char* system, const PixelRequest& request);
/// Says in the log what context a driver refused. `error` is the window system's number, 0 for
/// none.
void report_refused_context(const char* system, const ContextRequest& request, unsigned int error);

/// Id of the visual that GLX would draw to; see RenderWindow::find_x11_visual_id.
unsigned long find_glx_visual_id(const RenderWindowData& data);

}  // namespace orv::detail
