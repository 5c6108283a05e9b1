// A host on bare Xlib: it makes the window and runs the loop, the library draws into it.
#include <orv/orv.h>

#include <cstdint>
#include <cstdio>

#include "common/torus_scene.h"

// After the library's headers: Xlib defines macros with common names.
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>

using namespace examples;

namespace {

// A window of the visual that the context wants, so that it is drawn to directly.
Window create_window(Display* display, const orv::RenderWindowData& data, Size size) {
  XVisualInfo wanted{};
  wanted.visualid = orv::RenderWindow::find_x11_visual_id(data);
  int found = 0;
  XVisualInfo* visual = XGetVisualInfo(display, VisualIDMask, &wanted, &found);
  if (!visual) return 0;
  const Window root = RootWindow(display, visual->screen);
  XSetWindowAttributes attributes{};
  attributes.colormap = XCreateColormap(display, root, visual->visual, AllocNone);
  attributes.event_mask = KeyPressMask | StructureNotifyMask;
  const Window window =
      XCreateWindow(display, root, 0, 0, static_cast<unsigned int>(size.width),
                    static_cast<unsigned int>(size.height), 0, visual->depth, InputOutput,
                    visual->visual, CWBorderPixel | CWColormap | CWEventMask, &attributes);
  XFree(visual);
  XStoreName(display, window, "Orvane Core on Xlib");
  Atom close = XInternAtom(display, "WM_DELETE_WINDOW", False);
  XSetWMProtocols(display, window, &close, 1);
  XMapWindow(display, window);
  return window;
}

// False when the window is to be closed.
bool handle_events(Display* display, Size* size) {
  while (XPending(display) > 0) {
    XEvent event;
    XNextEvent(display, &event);
    if (event.type == ClientMessage) return false;
    if (event.type == ConfigureNotify) {
      *size = {event.xconfigure.width, event.xconfigure.height};
    }
    if (event.type == KeyPress && XLookupKeysym(&event.xkey, 0) == XK_Escape) return false;
  }
  return true;
}

// Until the window is closed, or once with a picture to write.
bool run(orv::Renderer* renderer, Display* display, const HostOptions& options) {
  Size size;
  orv::RenderWindowData data;
  data.gl_major = 3;
  data.core_profile = options.core;
  std::snprintf(data.msaa, sizeof(data.msaa), "4X MSAA");
  const Window window = create_window(display, data, size);
  data.app_instance = display;
  data.native_window = reinterpret_cast<void*>(static_cast<std::uintptr_t>(window));
  data.width = size.width;
  data.height = size.height;
  orv::RenderWindow* render_window = renderer->render_window_alloc();
  if (!window || !renderer->render_window_create_context(render_window, &data, nullptr) ||
      !renderer->start()) {
    std::fprintf(stderr, "no OpenGL context\n");
    return false;
  }
  renderer->render_window_set_swap_interval(render_window, true);
  orv::Mesh* torus = create_torus(renderer, orv::vec4(0.94f, 0.56f, 0.22f, 1.0f));

  float angle = 30.0f;
  bool done = true;
  while (!options.picture && handle_events(display, &size)) {
    draw_torus(renderer, torus, size, angle += 0.7f);
    renderer->render_window_swap_buffers(render_window);
  }
  if (options.picture) {
    draw_torus(renderer, torus, size, angle);
    done = write_picture(renderer, options.picture, size);
  }
  torus->release(renderer, nullptr);
  renderer->stop();
  renderer->render_window_free_all();
  XDestroyWindow(display, window);
  return done;
}

}  // namespace

int main(int argc, char** argv) {
  const HostOptions options(argc, argv);
  Display* display = XOpenDisplay(nullptr);
  if (!display) {
    std::fprintf(stderr, "no X server\n");
    return 1;
  }
  orv::core::start(nullptr, true, nullptr, nullptr);
  orv::Renderer* renderer = orv::Kernel::get()->load_core_opengl_renderer_plugin(true);
  renderer->initialize();
  const bool done = run(renderer, display, options);
  orv::core::stop(nullptr);
  XCloseDisplay(display);
  return done ? 0 : 1;
}
