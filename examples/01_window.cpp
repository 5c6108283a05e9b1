// A host from its first line to its last: start, a context, a few clears, a picture.
#include <orv/orv.h>

#include <cstdio>
#include <cstring>
#include <vector>

#include "common/png_writer.h"

constexpr int width = 480;
constexpr int height = 360;

bool create_context(orv::Renderer* renderer, orv::OffscreenWindow& surface, bool core) {
  orv::RenderWindowData data;
  data.native_window = surface.native_handle();
  data.gl_major = 3;  // anything above 2 asks for the highest version that the driver has
  data.core_profile = core;
  orv::RenderWindow* window = renderer->render_window_alloc();
  return renderer->render_window_create_context(window, &data, nullptr) && renderer->start();
}

// Clears one rectangle: the scissor keeps the clear from the rest of the window.
void fill(orv::Renderer* renderer, int x, int y, int w, int h, const orv::vec4& color) {
  renderer->enable_scissor_test(true);
  renderer->set_scissor(0, x, y, w, h);
  renderer->clear_color_buffer_rgba(color.x, color.y, color.z, color.w);
}

// A sunset over the sea, by clears alone.
void draw(orv::Renderer* renderer) {
  const orv::vec4 zenith(0.14f, 0.17f, 0.36f, 1.0f);
  const orv::vec4 horizon(0.96f, 0.58f, 0.36f, 1.0f);
  const orv::vec4 sun(1.00f, 0.86f, 0.55f, 1.0f);
  renderer->clear_color_depth_buffers_rgba(0.0f, 0.0f, 0.0f, 1.0f, 1.0f);
  for (int band = 0; band < 12; ++band) {  // y counts from the bottom
    const float share = static_cast<float>(band) / 11.0f;
    fill(renderer, 0, 120 + band * 20, width, 20, horizon + (zenith - horizon) * share);
  }
  for (int row = 0; row < 9; ++row) {
    const int half = 24 + 44 - row * row * 2 / 3;
    fill(renderer, width / 2 - half, 120 + row * 7, half * 2, 7, sun);
  }
  for (int band = 0; band < 12; ++band) {
    const float share = static_cast<float>(band) / 11.0f;
    fill(renderer, 0, 110 - band * 10, width, 10,
         zenith * 0.7f + horizon * (0.35f * (1.0f - share)));
    const int half = 64 - band * 4 + (band % 2) * 18;
    fill(renderer, width / 2 - half, 114 - band * 10, half * 2, 4, sun * 0.55f + horizon * 0.4f);
  }
}

int main(int argc, char** argv) {
  const char* picture = "window.png";
  bool core = true;
  for (int i = 1; i + 1 < argc; i += 2) {
    if (!std::strcmp(argv[i], "--output")) picture = argv[i + 1];
    if (!std::strcmp(argv[i], "--profile")) core = !std::strcmp(argv[i + 1], "core");
  }

  orv::core::start(nullptr, true, nullptr, nullptr);
  orv::Renderer* renderer = orv::Kernel::get()->load_core_opengl_renderer_plugin(true);
  renderer->initialize();

  // A window without a screen: with one, the native window of a toolkit stands here instead, as in
  // 28_glfw_host.cpp and 29_xlib_host.cpp.
  orv::OffscreenWindow surface(width, height);
  if (!create_context(renderer, surface, core)) {
    std::fprintf(stderr, "no OpenGL context\n");
    return 1;
  }
  std::printf("OpenGL %s\n", renderer->get_gl_version());

  draw(renderer);
  std::vector<unsigned char> rgba(std::size_t{width} * height * 4);
  renderer->read_back_buffer_rect_rgba(rgba.data(), 0, 0, width, height);
  const bool written = orv_app::write_png(picture, rgba.data(), width, height);

  renderer->stop();
  renderer->render_window_free_all();
  orv::core::stop(nullptr);
  return written ? 0 : 1;
}
