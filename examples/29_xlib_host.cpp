// A host on bare Xlib: it makes the window and runs the loop, the library draws into it.
#include <orv/orv.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "common/png_writer.h"
#include "common/shaders.h"

// After the library's headers: Xlib defines macros with common names.
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>

namespace {

struct Size {
  int width = 480;
  int height = 360;
};

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

void draw(orv::Renderer* renderer, orv::Mesh* torus, Size size, float angle) {
  orv::Camera camera;
  const float aspect = static_cast<float>(size.width) / static_cast<float>(size.height);
  camera.build_projection_persp(32.0f, aspect, 0.1f, 100.0f, true);
  camera.set_viewport(0, 0, size.width, size.height);
  camera.set_position(0.0f, 4.0f, 8.0f);
  camera.set_lookat(0.0f, 0.0f, 0.0f);
  camera.bind(renderer, true, true, true, true, true);
  renderer->clear_color_depth_buffers_rgba(0.20f, 0.24f, 0.31f, 1.0f, 1.0f);
  torus->set_orientation_euler_xyz(35.0f, angle, 0.0f);
  torus->render(renderer, nullptr);
}

orv::Mesh* create_torus(orv::Renderer* renderer) {
  const std::string text = examples::sectioned_shader(examples::surface_vertex, examples::lit_pixel,
                                                      renderer->is_api_version_at_least(3, 2));
  orv::Material* material = orv::MaterialMgr::get()->create_material("lit");
  material->set_gpu_program(orv::GpuProgramMgr::get()->create_gpu_program_from_memory(
      renderer, text.c_str(), static_cast<unsigned int>(text.size()), "lit"));
  orv::MeshTorus* torus = new orv::MeshTorus;
  torus->set_build_params(1.9f, 0.6f, 64);
  torus->build(nullptr);
  torus->set_vertices_color(0.94f, 0.56f, 0.22f, 1.0f, nullptr);
  torus->add_material(material, nullptr);
  return torus;
}

bool write_picture(orv::Renderer* renderer, const char* path, Size size) {
  std::vector<unsigned char> rgba(static_cast<std::size_t>(size.width) *
                                  static_cast<std::size_t>(size.height) * 4);
  renderer->read_back_buffer_rect_rgba(rgba.data(), 0, 0, size.width, size.height);
  return orv_app::write_png(path, rgba.data(), size.width, size.height);
}

// Until the window is closed, or once with a picture to write.
bool run(orv::Renderer* renderer, Display* display, const char* picture, bool core) {
  Size size;
  orv::RenderWindowData data;
  data.gl_major = 3;
  data.core_profile = core;
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
  orv::Mesh* torus = create_torus(renderer);

  float angle = 30.0f;
  bool done = true;
  while (!picture && handle_events(display, &size)) {
    draw(renderer, torus, size, angle += 0.7f);
    renderer->render_window_swap_buffers(render_window);
  }
  if (picture) {
    draw(renderer, torus, size, angle);
    done = write_picture(renderer, picture, size);
  }
  torus->release(renderer, nullptr);
  renderer->stop();
  renderer->render_window_free_all();
  XDestroyWindow(display, window);
  return done;
}

}  // namespace

int main(int argc, char** argv) {
  const char* picture = nullptr;
  bool core = true;
  for (int i = 1; i + 1 < argc; i += 2) {
    if (!std::strcmp(argv[i], "--output")) picture = argv[i + 1];
    if (!std::strcmp(argv[i], "--profile")) core = !std::strcmp(argv[i + 1], "core");
  }
  Display* display = XOpenDisplay(nullptr);
  if (!display) {
    std::fprintf(stderr, "no X server\n");
    return 1;
  }
  orv::core::start(nullptr, true, nullptr, nullptr);
  orv::Renderer* renderer = orv::Kernel::get()->load_core_opengl_renderer_plugin(true);
  renderer->initialize();
  const bool done = run(renderer, display, picture, core);
  orv::core::stop(nullptr);
  XCloseDisplay(display);
  return done ? 0 : 1;
}
