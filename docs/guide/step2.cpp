// Step 2: a generated shape and a camera.
#include <orv/orv.h>

#include <cstdio>

constexpr int width = 256;
constexpr int height = 256;

void place(orv::Camera& camera) {
  camera.build_projection_persp(40.0f, float(width) / float(height), 0.1f, 100.0f, true);
  camera.set_viewport(0, 0, width, height);
  camera.set_position(4.0f, 3.5f, 6.0f);
  camera.set_lookat(0.0f, 0.0f, 0.0f);
}

int main(int argc, char** argv) {
  const char* picture = argc > 1 ? argv[1] : "step2.jpg";

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

  auto* torus = new orv::MeshTorus;
  torus->set_build_params(2.0f, 0.6f, 32);
  torus->build(nullptr);
  torus->set_vertices_color(1.0f, 0.8f, 0.3f, 1.0f, nullptr);
  torus->set_orientation_euler_xyz(20.0f, 0.0f, 0.0f);

  orv::Camera camera;
  place(camera);
  camera.bind(renderer, true, true, true, true, true);
  renderer->clear_color_depth_buffers_rgba(0.16f, 0.22f, 0.36f, 1.0f, 1.0f);
  renderer->rasterizer_set_polygon_mode(orv::RENDERER_POLYGON_MODE_LINE,
                                        orv::RENDERER_POLYGON_FACE_FRONT_AND_BACK);
  renderer->rasterizer_apply();
  torus->render(renderer, nullptr);
  const bool written = orv::TextureMgr::get()->do_screenshot(renderer, picture, true);

  torus->release(renderer, nullptr);
  renderer->stop();
  renderer->render_window_free_all();
  orv::core::stop(nullptr);
  return written ? 0 : 1;
}
