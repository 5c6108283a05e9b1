// A host on GLFW, which makes the window and gathers the input; the library makes the context.
#include <orv/orv.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "common/png_writer.h"
#include "common/shaders.h"

// After the library's headers: Xlib, which the second line needs, defines macros with common names.
#include <GLFW/glfw3.h>
#define GLFW_EXPOSE_NATIVE_X11
#include <GLFW/glfw3native.h>

namespace {

struct Size {
  int width = 480;
  int height = 360;
};

GLFWwindow* create_window(Size size) {
  glfwWindowHint(GLFW_CLIENT_API, GLFW_NO_API);  // no context of GLFW's
  GLFWwindow* window =
      glfwCreateWindow(size.width, size.height, "Orvane Core on GLFW", nullptr, nullptr);
  // A key that is let go again within one frame counts, too.
  if (window) glfwSetInputMode(window, GLFW_STICKY_KEYS, GLFW_TRUE);
  return window;
}

// False when the window is to be closed.
bool handle_events(GLFWwindow* window, Size* size) {
  glfwPollEvents();
  glfwGetFramebufferSize(window, &size->width, &size->height);
  if (size->width < 1 || size->height < 1) *size = {1, 1};  // minimised
  return !glfwWindowShouldClose(window) && glfwGetKey(window, GLFW_KEY_ESCAPE) != GLFW_PRESS;
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
  torus->set_vertices_color(0.17f, 0.62f, 0.62f, 1.0f, nullptr);
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
bool run(orv::Renderer* renderer, GLFWwindow* window, const char* picture, bool core) {
  Size size;
  orv::RenderWindowData data;
  data.gl_major = 3;
  data.core_profile = core;
  std::snprintf(data.msaa, sizeof(data.msaa), "4X MSAA");
  data.app_instance = glfwGetX11Display();
  data.native_window =
      reinterpret_cast<void*>(static_cast<std::uintptr_t>(glfwGetX11Window(window)));
  data.width = size.width;
  data.height = size.height;
  orv::RenderWindow* render_window = renderer->render_window_alloc();
  if (!renderer->render_window_create_context(render_window, &data, nullptr) ||
      !renderer->start()) {
    std::fprintf(stderr, "no OpenGL context\n");
    return false;
  }
  renderer->render_window_set_swap_interval(render_window, true);
  orv::Mesh* torus = create_torus(renderer);

  float angle = 30.0f;
  bool done = true;
  while (!picture && handle_events(window, &size)) {
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
  GLFWwindow* window = glfwInit() ? create_window(Size()) : nullptr;
  if (!window) {
    std::fprintf(stderr, "no window\n");
    glfwTerminate();
    return 1;
  }
  orv::core::start(nullptr, true, nullptr, nullptr);
  orv::Renderer* renderer = orv::Kernel::get()->load_core_opengl_renderer_plugin(true);
  renderer->initialize();
  const bool done = run(renderer, window, picture, core);
  orv::core::stop(nullptr);
  glfwTerminate();  // closes the window
  return done ? 0 : 1;
}
