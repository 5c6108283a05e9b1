// A host outside the library's tree: draws a frame off screen and loads a plugin module.
#include <orv/orv.h>

#include <cstdio>

int main(int argc, char** argv) {
  orv::core::start(nullptr, true, nullptr, nullptr);
  orv::Kernel* kernel = orv::Kernel::get();
  if (argc > 1) {
    kernel->plugin_search_path_add_dir(argv[1]);
    orv::Plugin* plugin = kernel->load_plugin("plugin_orv_outside_x64.so", false, true);
    if (!plugin) return 2;
    std::printf("plugin: %s\n", plugin->get_name());
  }
  orv::Renderer* renderer = kernel->load_core_opengl_renderer_plugin(true);
  orv::OffscreenWindow surface(32, 32);
  orv::RenderWindowData data;
  data.native_window = surface.native_handle();
  orv::RenderWindow* window = renderer->render_window_alloc();
  if (!renderer->render_window_create_context(window, &data, nullptr)) return 3;
  renderer->initialize();
  renderer->start();
  renderer->clear_color_buffer_rgba(1.0f, 0.0f, 0.0f, 1.0f);
  unsigned char pixel[4] = {};
  renderer->read_back_buffer_rect_rgba(pixel, 0, 0, 1, 1);
  if (pixel[0] == 255 && pixel[1] == 0) std::printf("drew a frame\n");
  renderer->stop();
  renderer->render_window_free_all();
  orv::core::stop(nullptr);
  return 0;
}
