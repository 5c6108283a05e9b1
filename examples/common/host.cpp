// The host of all examples: options, start and stop, a window or a picture.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "common/desktop_window.h"
#include "common/example.h"
#include "common/orbit.h"
#include "common/png_writer.h"
#include "common/shaders.h"

namespace examples {

namespace {

constexpr int exit_missing = 3;
constexpr int max_side = 16384;

struct Options {
  std::string output;
  int width = 480;
  int height = 360;
  bool core = true;
};

bool is_side(int pixels) { return pixels >= 1 && pixels <= max_side; }

bool parse(int argc, char** argv, Options* options) {
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string name = argv[i];
    const char* value = argv[i + 1];
    if (name == "--output") {
      options->output = value;
    } else if (name == "--size") {
      if (std::sscanf(value, "%dx%d", &options->width, &options->height) != 2) return false;
    } else if (name == "--profile") {
      options->core = !std::strcmp(value, "core");
      if (!options->core && std::strcmp(value, "compat") != 0) return false;
    } else {
      return false;
    }
  }
  return argc % 2 == 1 && is_side(options->width) && is_side(options->height);
}

void print_usage(std::FILE* file, const char* program) {
  std::fprintf(file,
               "usage: %s [--output FILE.png] [--size 480x360] [--profile core|compat]\n"
               "Without --output a window opens: drag to turn, wheel to zoom, Escape to end.\n",
               program);
}

void print_problem(const char* text, void*) { std::fprintf(stderr, "%s\n", text); }

}  // namespace

/// Runs one example.
class Host {
 public:
  Host(orv::Renderer* renderer, Example& example) : renderer_(renderer), example_(example) {}

  int draw_picture(const Options& options);
  int draw_in_window(const Options& options, const char* title);

 private:
  bool create_context(orv::OffscreenWindow& surface, const char* msaa, bool core);
  bool create();
  void draw_frame(float time, const orv_app::Orbit* orbit);
  void destroy();
  int report() const;

  orv::Renderer* renderer_;
  Example& example_;
  orv::MeshQuadHud* background_ = nullptr;
  orv::GpuProgram* background_program_ = nullptr;
};

bool Host::create_context(orv::OffscreenWindow& surface, const char* msaa, bool core) {
  orv::RenderWindowData data;
  data.native_window = surface.native_handle();
  data.gl_major = 3;  // the highest version there is
  data.core_profile = core;
  std::snprintf(data.msaa, sizeof(data.msaa), "%s", msaa);
  orv::RenderWindow* window = renderer_->render_window_alloc();
  if (renderer_->render_window_create_context(window, &data, nullptr)) return renderer_->start();
  renderer_->render_window_free(window);
  return false;
}

bool Host::create() {
  example_.renderer = renderer_;
  background_program_ = example_.make_program("background", background_vertex, background_pixel);
  background_ = example_.keep(new orv::MeshQuadHud);
  background_->build(nullptr);
  background_->add_material(example_.make_material("background", background_program_), nullptr);
  return background_program_ && example_.create();
}

void Host::draw_frame(float time, const orv_app::Orbit* orbit) {
  Example& e = example_;
  const float aspect = static_cast<float>(e.width) / static_cast<float>(e.height);
  e.camera.build_projection_persp(e.fov_, aspect, 0.1f, 500.0f, true);
  e.camera.set_viewport(0, 0, e.width, e.height);
  if (orbit) {
    orbit->place(e.camera);
  } else {
    e.camera.set_position(e.eye_);
    e.camera.set_lookat(e.target_);
  }
  e.camera.bind(renderer_, true, true, true, true, true);
  renderer_->clear_color_depth_buffers_rgba(0.0f, 0.0f, 0.0f, 1.0f, 1.0f);

  background_program_->set_uniform_4f(nullptr, "top", e.background_top);
  background_program_->set_uniform_4f(nullptr, "bottom", e.background_bottom);
  renderer_->enable_depth_test(false);
  background_->render(renderer_, nullptr);
  renderer_->enable_depth_test(true);
  e.draw(time);
}

void Host::destroy() {
  example_.destroy();
  for (std::size_t i = example_.nodes_.size(); i > 0; --i) {
    example_.nodes_[i - 1]->release(renderer_, nullptr);
  }
  orv::MaterialMgr::get()->release_all_resources(renderer_, nullptr);
  orv::TextureMgr::get()->release_all_textures(renderer_, nullptr);
  orv::GpuProgramMgr::get()->release_all_resources(renderer_, nullptr);
  renderer_->gpu_render_target_killall(nullptr);
}

int Host::report() const {
  if (example_.problem_.empty()) return 0;
  std::fprintf(stderr, "%s\n", example_.problem_.c_str());
  return example_.missing_ ? exit_missing : 1;
}

int Host::draw_picture(const Options& options) {
  orv::OffscreenWindow surface(options.width, options.height);
  if (!create_context(surface, "4X MSAA", options.core) &&
      !create_context(surface, "Off", options.core)) {
    std::fprintf(stderr, "no OpenGL context: install the package libgl1-mesa-dri\n");
    return 1;
  }
  example_.width = options.width;
  example_.height = options.height;
  if (create()) {
    draw_frame(example_.still_time, nullptr);
    std::vector<unsigned char> rgba(static_cast<std::size_t>(options.width) *
                                    static_cast<std::size_t>(options.height) * 4);
    renderer_->read_back_buffer_rect_rgba(rgba.data(), 0, 0, options.width, options.height);
    if (renderer_->check_gl_error(true, "example") != 0) example_.fail("OpenGL reports an error");
    if (!orv_app::write_png(options.output.c_str(), rgba.data(), options.width, options.height)) {
      example_.fail("cannot write " + options.output);
    }
  } else if (example_.problem_.empty()) {
    example_.fail("the example cannot be made");
  }
  destroy();
  renderer_->stop();
  renderer_->render_window_free_all();
  return report();
}

int Host::draw_in_window(const Options& options, const char* title) {
  orv_app::DesktopWindow window;
  orv_app::DesktopWindow::Settings settings;
  settings.title = title;
  settings.width = options.width * 2;
  settings.height = options.height * 2;
  settings.core = options.core;
  std::string reason;
  if (!window.open(renderer_, settings, &reason)) {
    std::fprintf(stderr, "%s; --output FILE.png draws a picture\n", reason.c_str());
    return 1;
  }
  example_.width = window.get_width();
  example_.height = window.get_height();
  bool open = create();
  if (!open && example_.problem_.empty()) example_.fail("the example cannot be made");

  orv_app::Orbit::Setup setup;
  setup.target = example_.target_;
  const orv::vec4 way = example_.eye_ - example_.target_;
  setup.distance = std::sqrt(way.x * way.x + way.y * way.y + way.z * way.z);
  setup.yaw = std::atan2(way.x, way.z) * 57.29578f;
  setup.pitch = std::asin(std::clamp(way.y / setup.distance, -1.0f, 1.0f)) * 57.29578f;
  orv_app::Orbit orbit(setup);

  const auto begin = std::chrono::steady_clock::now();
  while (open) {
    orv_app::DesktopEvent event;
    while (window.next_event(&event)) {
      using Event = orv_app::DesktopEvent;
      if (event.kind == Event::CLOSE) open = false;
      if (event.kind == Event::KEY && event.key == Event::KEY_ESCAPE) open = false;
      if (event.kind == Event::DRAG) orbit.turn(-event.x * 290.0f, event.y * 290.0f);
      if (event.kind == Event::WHEEL) orbit.zoom(event.y > 0.0f ? 0.9f : 1.1f);
    }
    example_.width = window.get_width();
    example_.height = window.get_height();
    const std::chrono::duration<float> age = std::chrono::steady_clock::now() - begin;
    draw_frame(age.count(), &orbit);
    window.swap();
  }
  destroy();
  window.close();
  return report();
}

int run_example(int argc, char** argv, const char* title, MakeExample make) {
  if (argc == 2 && !std::strcmp(argv[1], "--help")) {
    print_usage(stdout, argv[0]);
    return 0;
  }
  Options options;
  if (!parse(argc, argv, &options)) {
    print_usage(stderr, argv[0]);
    return 2;
  }
  orv::core::start(nullptr, true, print_problem, nullptr);
  orv::core::log_get_default()->set_trace_level_threshold(orv::LOG_LEVEL_WARNING);
  orv::Renderer* renderer = orv::Kernel::get()->load_core_opengl_renderer_plugin(true);
  renderer->initialize();
  int status = 1;
  {
    const std::unique_ptr<Example> example = make();
    Host host(renderer, *example);
    status =
        options.output.empty() ? host.draw_in_window(options, title) : host.draw_picture(options);
  }
  orv::core::stop(nullptr);
  return status;
}

}  // namespace examples
