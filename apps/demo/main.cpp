// Renders the demo scene to a picture; with a display also shows it in a window.
#include <orv/orv.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "common/desktop_window.h"
#include "common/png_writer.h"
#include "demo_scene.h"
#include "demo_window.h"

namespace {

constexpr int width = 1280;
constexpr int height = 720;

struct Options {
  std::string output = "demo.png";
  bool headless = false;
};

void print_usage(std::FILE* file) {
  std::fprintf(file, "usage: orv-demo [--headless] [--output FILE.png]\n");
}

bool parse(int argc, char** argv, Options* options) {
  for (int i = 1; i < argc; ++i) {
    if (!std::strcmp(argv[i], "--headless")) {
      options->headless = true;
    } else if (!std::strcmp(argv[i], "--output") && i + 1 < argc) {
      options->output = argv[++i];
    } else {
      print_usage(stderr);
      return false;
    }
  }
  return true;
}

bool create_context(orv::Renderer* renderer, orv::OffscreenWindow& surface) {
  orv::RenderWindowData data;
  data.native_window = surface.native_handle();
  data.gl_major = 3;
  data.core_profile = true;
  std::snprintf(data.msaa, sizeof(data.msaa), "4X MSAA");
  orv::RenderWindow* window = renderer->render_window_alloc();
  return renderer->render_window_create_context(window, &data, nullptr) && renderer->start();
}

// Draws one frame off screen and writes it to a file.
bool render_picture(orv::Renderer* renderer, const Options& options) {
  const auto begin = std::chrono::steady_clock::now();
  orv::OffscreenWindow surface(width, height);
  if (!create_context(renderer, surface)) {
    std::fprintf(stderr, "no OpenGL context: install the package libgl1-mesa-dri\n");
    return false;
  }
  demo::DemoScene scene;
  std::string reason;
  bool done = scene.create(renderer, DEMO_DATA_DIR, &reason);
  if (done) {
    orv::Camera camera;
    demo::DemoScene::make_orbit().place(camera);
    scene.draw(renderer, camera, width, height);
    std::vector<unsigned char> pixels(std::size_t{width} * height * 4);
    renderer->read_back_buffer_rect_rgba(pixels.data(), 0, 0, width, height);
    done = renderer->check_gl_error(true, "demo") == 0;
    reason = "OpenGL reported an error";
    if (done && !orv_app::write_png(options.output.c_str(), pixels.data(), width, height)) {
      done = false;
      reason = "cannot write " + options.output + ": " + std::strerror(errno);
    }
  }
  scene.destroy(renderer);
  renderer->stop();
  renderer->render_window_free_all();
  if (!done) {
    std::fprintf(stderr, "%s\n", reason.c_str());
    return false;
  }
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
  std::printf("%s (%dx%d, rendered in %.2f s)\n", options.output.c_str(), width, height,
              took.count());
  std::fflush(stdout);
  return true;
}

void show_window(orv::Renderer* renderer) {
  if (orv_app::has_display()) {
    demo::run_in_window(renderer, DEMO_DATA_DIR);
  } else {
    std::fprintf(stderr, "no display: no window is opened\n");
  }
}

void print_problem(const char* text, void*) { std::fprintf(stderr, "%s\n", text); }

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && !std::strcmp(argv[1], "--help")) {
    print_usage(stdout);
    return 0;
  }
  Options options;
  if (!parse(argc, argv, &options)) return 2;
  orv::core::start(nullptr, true, print_problem, nullptr);
  orv::core::log_get_default()->set_trace_level_threshold(orv::LOG_LEVEL_WARNING);
  orv::Renderer* renderer = orv::Kernel::get()->load_core_opengl_renderer_plugin(true);
  renderer->initialize();
  const bool done = render_picture(renderer, options);
  if (done && !options.headless) show_window(renderer);
  orv::core::stop(nullptr);
  return done ? 0 : 1;
}
