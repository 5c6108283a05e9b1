// Step 1: start the library, make a context, clear it and take a picture.
#include <orv/orv.h>

#include <cstdio>

constexpr int width = 256;
constexpr int height = 256;

int main(int argc, char** argv) {
  const char* picture = argc > 1 ? argv[1] : "step1.jpg";

  orv::core::start(nullptr, true, nullptr, nullptr);
  orv::Renderer* renderer = orv::Kernel::get()->load_core_opengl_renderer_plugin(true);
  renderer->initialize();

  orv::OffscreenWindow surface(width, height);
  orv::RenderWindowData data;
  data.native_window = surface.native_handle();
  orv::RenderWindow* window = renderer->render_window_alloc();
  if (!renderer->render_window_create_context(window, &data, nullptr)) {
    std::fprintf(stderr, "no OpenGL context\n");
    return 1;
  }
  renderer->start();

  renderer->clear_color_depth_buffers_rgba(0.16f, 0.22f, 0.36f, 1.0f, 1.0f);
  const bool written = orv::TextureMgr::get()->do_screenshot(renderer, picture, true);

  renderer->stop();
  renderer->render_window_free_all();
  orv::core::stop(nullptr);
  return written ? 0 : 1;
}
