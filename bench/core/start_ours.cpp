// Starts the library, makes a context, clears one frame and says what that cost. With the argument
// "core" the context is one of the highest version with a core profile.
#include <orv/orv.h>

#include <cstring>

#include "first_frame.h"

int main(int argc, char** argv) {
  orv::core::start(nullptr, true, nullptr, nullptr);
  orv::Renderer* renderer = orv::Kernel::get()->load_core_opengl_renderer_plugin(true);
  renderer->initialize();
  orv::OffscreenWindow surface(640, 480, orv::OffscreenWindow::SOFTWARE);
  orv::RenderWindowData data;
  data.native_window = surface.native_handle();
  if (argc > 1 && std::strcmp(argv[1], "core") == 0) {
    data.gl_major = 3;
    data.core_profile = true;
  }
  orv::RenderWindow* window = renderer->render_window_alloc();
  if (!renderer->render_window_create_context(window, &data, nullptr) || !renderer->start()) {
    return 1;
  }
  renderer->clear_color_depth_buffers_rgba(0.2f, 0.4f, 0.6f, 1.0f, 1.0f);
  renderer->finish_gl();
  unsigned char pixel[4] = {};
  renderer->read_back_buffer_rect_rgba(pixel, 320, 240, 1, 1);
  if (pixel[0] != 51 || pixel[2] != 153) return 1;
  bench::report_first_frame();
  renderer->stop();
  renderer->render_window_free_all();
  orv::core::stop(nullptr);
  return 0;
}
