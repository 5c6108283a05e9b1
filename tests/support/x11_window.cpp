#include "support/x11_window.h"

#include <dlfcn.h>

#include <GL/glx.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace orv::test {
namespace {

// GLX is loaded by name here too, so that the tests link no OpenGL.
template <class Function>
Function glx(const char* name) {
  static void* const library = dlopen("libGLX.so.0", RTLD_LAZY);
  return reinterpret_cast<Function>(library ? dlsym(library, name) : nullptr);
}

::Display* x(void* display) { return static_cast<::Display*>(display); }

// The driver goes with its last display, and leak reports could then no longer name it: one
// display stays.
void keep_driver_loaded() {
  static ::Display* const kept = XOpenDisplay(nullptr);
  if (!kept) return;
  int count = 0;
  const auto get_configs = glx<decltype(&glXGetFBConfigs)>("glXGetFBConfigs");
  ::GLXFBConfig* configs = get_configs ? get_configs(kept, DefaultScreen(kept), &count) : nullptr;
  if (configs) XFree(configs);
}

}  // namespace

// ---- display ---------------------------------------------------------------------------------

X11Display::X11Display() : display_(XOpenDisplay(nullptr)) { keep_driver_loaded(); }

X11Display::~X11Display() {
  if (display_) XCloseDisplay(x(display_));
}

void X11Display::sync() { XSync(x(display_), False); }

void X11Display::set_resources(const std::string& text) {
  auto* display = static_cast<Display*>(display_);
  const auto* bytes = reinterpret_cast<const unsigned char*>(text.c_str());
  if (text.empty()) {
    XDeleteProperty(display, DefaultRootWindow(display), XA_RESOURCE_MANAGER);
  } else {
    XChangeProperty(display, DefaultRootWindow(display), XA_RESOURCE_MANAGER, XA_STRING, 8,
                    PropModeReplace, bytes, static_cast<int>(text.size()));
  }
  sync();
}

unsigned long X11Display::default_visual_id() {
  return XVisualIDFromVisual(DefaultVisual(x(display_), DefaultScreen(x(display_))));
}

// ---- window ----------------------------------------------------------------------------------

X11Window::X11Window(X11Display& display, int width, int height, unsigned long visual_id)
    : display_(display) {
  ::Display* d = x(display.handle());
  const ::Window root = DefaultRootWindow(d);
  ::XVisualInfo wanted = {};
  wanted.visualid = visual_id ? visual_id : display.default_visual_id();
  int count = 0;
  ::XVisualInfo* info = XGetVisualInfo(d, VisualIDMask, &wanted, &count);
  if (!info || count < 1) return;
  colormap_ = XCreateColormap(d, root, info->visual, AllocNone);
  ::XSetWindowAttributes attributes = {};
  attributes.colormap = colormap_;
  id_ = XCreateWindow(d, root, 0, 0, static_cast<unsigned int>(width),
                      static_cast<unsigned int>(height), 0, info->depth, InputOutput, info->visual,
                      CWColormap | CWBorderPixel | CWBackPixel, &attributes);
  XFree(info);
  XMapWindow(d, id_);
  display_.sync();
}

X11Window::~X11Window() {
  destroy();
  if (colormap_) XFreeColormap(x(display_.handle()), colormap_);
}

void X11Window::resize(int width, int height) {
  XResizeWindow(x(display_.handle()), id_, static_cast<unsigned int>(width),
                static_cast<unsigned int>(height));
  display_.sync();
}

void X11Window::destroy() {
  if (!id_) return;
  XDestroyWindow(x(display_.handle()), id_);
  display_.sync();
  id_ = 0;
}

int X11Window::num_children() {
  ::Window root = 0;
  ::Window parent = 0;
  ::Window* children = nullptr;
  unsigned int count = 0;
  XQueryTree(x(display_.handle()), id_, &root, &parent, &children, &count);
  if (children) XFree(children);
  return static_cast<int>(count);
}

unsigned long X11Window::child() {
  ::Window root = 0;
  ::Window parent = 0;
  ::Window* children = nullptr;
  unsigned int count = 0;
  XQueryTree(x(display_.handle()), id_, &root, &parent, &children, &count);
  const ::Window first = count > 0 ? children[0] : 0;
  if (children) XFree(children);
  return first;
}

bool X11Window::get_child_size(int* width, int* height) {
  const ::Window window = child();
  ::XWindowAttributes attributes = {};
  if (!window || !XGetWindowAttributes(x(display_.handle()), window, &attributes)) return false;
  *width = attributes.width;
  *height = attributes.height;
  return true;
}

unsigned long X11Window::pixel(int px, int py) {
  ::XImage* image = XGetImage(x(display_.handle()), DefaultRootWindow(x(display_.handle())), px, py,
                              1, 1, AllPlanes, ZPixmap);
  if (!image) return 0xFFFFFFFF;
  const unsigned long value = XGetPixel(image, 0, 0) & 0xFFFFFF;
  XDestroyImage(image);
  return value;
}

// ---- context of a host -----------------------------------------------------------------------

HostGlxContext::HostGlxContext(X11Display& display) : display_(display) {
  ::Display* d = x(display.handle());
  int attributes[] = {GLX_RGBA, GLX_DOUBLEBUFFER, GLX_RED_SIZE, 8, GLX_DEPTH_SIZE, 16, 0};
  auto* visual =
      glx<decltype(&glXChooseVisual)>("glXChooseVisual")(d, DefaultScreen(d), attributes);
  if (!visual) return;
  context_ = glx<decltype(&glXCreateContext)>("glXCreateContext")(d, visual, nullptr, True);
  XFree(visual);
}

HostGlxContext::~HostGlxContext() {
  if (!context_) return;
  if (current() == context_) unbind();
  glx<decltype(&glXDestroyContext)>("glXDestroyContext")(x(display_.handle()),
                                                         static_cast<::GLXContext>(context_));
}

bool HostGlxContext::make_current(const X11Window& window) {
  return glx<decltype(&glXMakeCurrent)>("glXMakeCurrent")(
             x(display_.handle()), window.id(), static_cast<::GLXContext>(context_)) == True;
}

void HostGlxContext::unbind() {
  glx<decltype(&glXMakeCurrent)>("glXMakeCurrent")(x(display_.handle()), 0, nullptr);
}

void* HostGlxContext::current() {
  return glx<decltype(&glXGetCurrentContext)>("glXGetCurrentContext")();
}

unsigned long HostGlxContext::current_drawable() {
  return glx<decltype(&glXGetCurrentDrawable)>("glXGetCurrentDrawable")();
}

}  // namespace orv::test
