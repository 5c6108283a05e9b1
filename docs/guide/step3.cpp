// Step 3: a program from a sectioned shader file, a material and a light.
#include <orv/orv.h>

#include <cstdio>
#include <string>

constexpr int width = 256;
constexpr int height = 256;

bool create_context(orv::Renderer* renderer, orv::OffscreenWindow& surface) {
  orv::RenderWindowData data;
  data.native_window = surface.native_handle();
  data.gl_major = 3;
  data.core_profile = true;
  orv::RenderWindow* window = renderer->render_window_alloc();
  return renderer->render_window_create_context(window, &data, nullptr) && renderer->start();
}

void place(orv::Camera& camera) {
  camera.build_projection_persp(40.0f, float(width) / float(height), 0.1f, 100.0f, true);
  camera.set_viewport(0, 0, width, height);
  camera.set_position(4.0f, 3.5f, 6.0f);
  camera.set_lookat(0.0f, 0.0f, 0.0f);
}

bool draw(orv::Renderer* renderer, const std::string& folder) {
  orv::GpuProgram* program = orv::GpuProgramMgr::get()->create_gpu_program_from_file(
      renderer, (folder + "step3.glsl").c_str(), "surface");
  if (!program->is_valid()) {
    std::fprintf(stderr, "%s\n", program->get_shaders_info_log());
    return false;
  }
  orv::Material* material = orv::MaterialMgr::get()->create_material("gold");
  material->set_gpu_program(program);

  auto* torus = new orv::MeshTorus;
  torus->set_build_params(2.0f, 0.6f, 32);
  torus->build(nullptr);
  torus->set_orientation_euler_xyz(20.0f, 0.0f, 0.0f);
  torus->add_material(material, nullptr);

  orv::Light light;
  light.set_position(3.0f, 6.0f, 4.0f);
  light.set_diffuse(1.0f, 0.95f, 0.85f, 1.0f);
  light.enable_fixed_pipeline(false);

  orv::Camera camera;
  place(camera);
  camera.bind(renderer, true, true, true, true, true);
  renderer->clear_color_depth_buffers_rgba(0.16f, 0.22f, 0.36f, 1.0f, 1.0f);
  program->bind(renderer);
  light.bind(renderer);
  program->set_uniform_4f(renderer, "surface_color", 1.0f, 0.8f, 0.3f, 1.0f);
  torus->render(renderer, nullptr);

  torus->release(renderer, nullptr);
  orv::MaterialMgr::get()->release_all_resources(renderer, nullptr);
  orv::GpuProgramMgr::get()->release_all_resources(renderer, nullptr);
  return true;
}

int main(int argc, char** argv) {
  const char* picture = argc > 1 ? argv[1] : "step3.jpg";
  const std::string folder = argc > 2 ? argv[2] : "docs/guide/";

  orv::core::start(nullptr, true, nullptr, nullptr);
  orv::Renderer* renderer = orv::Kernel::get()->load_core_opengl_renderer_plugin(true);
  renderer->initialize();
  orv::OffscreenWindow surface(width, height);
  if (!create_context(renderer, surface)) {
    std::fprintf(stderr, "no OpenGL context\n");
    return 1;
  }
  const bool done =
      draw(renderer, folder) && orv::TextureMgr::get()->do_screenshot(renderer, picture, true);
  renderer->stop();
  renderer->render_window_free_all();
  orv::core::stop(nullptr);
  return done ? 0 : 1;
}
