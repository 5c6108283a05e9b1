#include "common/example.h"

#include <cstdio>
#include <string>

#include "common/shaders.h"

namespace examples {

void Example::look(const orv::vec4& eye, const orv::vec4& target, float fov) {
  eye_ = eye;
  target_ = target;
  fov_ = fov;
}

orv::Material* Example::lit_material() {
  orv::Material* known = static_cast<orv::Material*>(orv::MaterialMgr::get()->get_resource("lit"));
  return known ? known : make_material("lit", make_program("lit", surface_vertex, lit_pixel));
}

orv::Material* Example::textured_material(const char* name, orv::Texture* texture) {
  orv::Material* material = make_material(name, make_program(name, surface_vertex, textured_pixel));
  material->add_texture(texture);
  return material;
}

orv::Material* Example::flat_material() {
  orv::Material* known = static_cast<orv::Material*>(orv::MaterialMgr::get()->get_resource("flat"));
  return known ? known : make_material("flat", make_program("flat", surface_vertex, flat_pixel));
}

orv::GpuProgram* Example::make_program(const char* name, const char* vertex, const char* pixel) {
  const std::string text = sectioned_shader(vertex, pixel, renderer->is_api_version_at_least(3, 2));
  orv::GpuProgram* program = orv::GpuProgramMgr::get()->create_gpu_program_from_memory(
      renderer, text.c_str(), static_cast<unsigned int>(text.size()), name);
  if (program->is_valid()) return program;
  std::fprintf(stderr, "%s: %s\n", name, program->get_shaders_info_log());
  return nullptr;
}

orv::Material* Example::make_material(const char* name, orv::GpuProgram* program) {
  orv::Material* material = orv::MaterialMgr::get()->create_material(name);
  material->set_gpu_program(program);
  return material;
}

std::string Example::data(const char* file) { return std::string(EXAMPLES_DATA_DIR) + file; }

std::string Example::demo_data(const char* file) {
  return std::string(EXAMPLES_DATA_DIR) + "../../apps/demo/data/" + file;
}

bool Example::fail(const std::string& message) {
  problem_ = message;
  return false;
}

bool Example::missing(const std::string& feature) {
  missing_ = true;
  return fail("this OpenGL has no " + feature);
}

}  // namespace examples
