#include "common/torus_scene.h"

#include <orv/orv.h>

#include <cstring>
#include <string>
#include <vector>

#include "common/png_writer.h"
#include "common/shaders.h"

namespace examples {

HostOptions::HostOptions(int argc, char** argv) {
  for (int i = 1; i + 1 < argc; i += 2) {
    if (!std::strcmp(argv[i], "--output")) picture = argv[i + 1];
    if (!std::strcmp(argv[i], "--profile")) core = !std::strcmp(argv[i + 1], "core");
  }
}

void draw_torus(orv::Renderer* renderer, orv::Mesh* torus, Size size, float angle) {
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

orv::Mesh* create_torus(orv::Renderer* renderer, const orv::vec4& color) {
  const std::string text =
      sectioned_shader(surface_vertex, lit_pixel, renderer->is_api_version_at_least(3, 2));
  orv::Material* material = orv::MaterialMgr::get()->create_material("lit");
  material->set_gpu_program(orv::GpuProgramMgr::get()->create_gpu_program_from_memory(
      renderer, text.c_str(), static_cast<unsigned int>(text.size()), "lit"));
  orv::MeshTorus* torus = new orv::MeshTorus;
  torus->set_build_params(1.9f, 0.6f, 64);
  torus->build(nullptr);
  torus->set_vertices_color(color.x, color.y, color.z, color.w, nullptr);
  torus->add_material(material, nullptr);
  return torus;
}

bool write_picture(orv::Renderer* renderer, const char* path, Size size) {
  std::vector<unsigned char> rgba(static_cast<std::size_t>(size.width) *
                                  static_cast<std::size_t>(size.height) * 4);
  renderer->read_back_buffer_rect_rgba(rgba.data(), 0, 0, size.width, size.height);
  return orv_app::write_png(path, rgba.data(), size.width, size.height);
}

}  // namespace examples
