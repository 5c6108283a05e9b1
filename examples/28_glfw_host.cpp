// A host on GLFW, which makes the window and gathers the input; the library makes the context.
#include <orv/orv.h>

#include <cstdint>
#include <cstdio>

#include "common/torus_scene.h"

// After the library's headers: Xlib, which the second line needs, defines macros with common names.
#include <GLFW/glfw3.h>
#define GLFW_EXPOSE_NATIVE_X11
#include <GLFW/glfw3native.h>

using namespace examples;

namespace {

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

// Until the window is closed, or once with a picture to write.
bool run(orv::Renderer* renderer, GLFWwindow* window, const HostOptions& options) {
  Size size;
  orv::RenderWindowData data;
  data.gl_major = 3;
  data.core_profile = options.core;
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
  orv::Mesh* torus = create_torus(renderer, orv::vec4(0.17f, 0.62f, 0.62f, 1.0f));

  float angle = 30.0f;
  bool done = true;
  while (!options.picture && handle_events(window, &size)) {
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
  return done;
}

}  // namespace

int main(int argc, char** argv) {
  const HostOptions options(argc, argv);
  GLFWwindow* window = glfwInit() ? create_window(Size()) : nullptr;
  if (!window) {
    std::fprintf(stderr, "no window\n");
    glfwTerminate();
    return 1;
  }
  orv::core::start(nullptr, true, nullptr, nullptr);
  orv::Renderer* renderer = orv::Kernel::get()->load_core_opengl_renderer_plugin(true);
  renderer->initialize();
  const bool done = run(renderer, window, options);
  orv::core::stop(nullptr);
  glfwTerminate();  // closes the window
  return done ? 0 : 1;
}
