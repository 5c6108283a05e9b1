// Step 4: a model from a file, with a texture.
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

class World {
 public:
  bool create(orv::Renderer* renderer, const std::string& shaders, const std::string& models);
  void draw(orv::Renderer* renderer, orv::Camera& camera);
  void destroy(orv::Renderer* renderer);

 private:
  bool load_program(orv::Renderer* renderer, const std::string& path);
  bool load_model(const std::string& folder);
  orv::Material* create_material(const char* name);
  void set_look(float r, float g, float b, float textured, float lit);

  orv::GpuProgram* program_ = nullptr;
  orv::Model* model_ = nullptr;
  orv::MeshPlane* floor_ = nullptr;
  orv::Light light_;
};

bool World::create(orv::Renderer* renderer, const std::string& shaders, const std::string& models) {
  if (!load_program(renderer, shaders + "step4.glsl") || !load_model(models)) return false;

  floor_ = new orv::MeshPlane;
  floor_->set_build_params(8.0f, 8.0f, 1, 1);
  floor_->build(nullptr);
  floor_->add_material(create_material("floor"), nullptr);

  light_.set_position(3.0f, 6.0f, 4.0f);
  light_.set_diffuse(1.0f, 0.95f, 0.85f, 1.0f);
  light_.enable_fixed_pipeline(false);
  return true;
}

bool World::load_program(orv::Renderer* renderer, const std::string& path) {
  program_ =
      orv::GpuProgramMgr::get()->create_gpu_program_from_file(renderer, path.c_str(), "surface");
  if (program_->is_valid()) return true;
  std::fprintf(stderr, "%s\n", program_->get_shaders_info_log());
  return false;
}

bool World::load_model(const std::string& folder) {
  model_ = orv::Kernel::get()->load_model_from_file(orv::MeshDataVertexAttribsAllocParams(),
                                                    "spot.obj", folder.c_str(), nullptr);
  orv::Texture* texture = orv::TextureMgr::get()->create_texture_2d_from_file(
      (folder + "spot_texture.png").c_str(), false, orv::PF_RGB_U8);
  if (!model_ || !texture) {
    std::fprintf(stderr, "cannot load the model in %s\n", folder.c_str());
    return false;
  }
  auto* mesh = static_cast<orv::Mesh*>(model_->get_child(0));
  mesh->remove_all_materials(nullptr, nullptr);
  mesh->compute_faces_normal(nullptr);
  mesh->average_vertices_normal(1e-5f, nullptr);
  texture->flip_vertical();

  orv::Material* material = create_material("spot");
  material->add_texture(texture);
  mesh->add_material(material, nullptr);
  model_->set_position(0.0f, 0.736f, 0.0f);
  model_->set_orientation_euler_xyz(0.0f, 205.0f, 0.0f);
  return true;
}

orv::Material* World::create_material(const char* name) {
  orv::Material* material = orv::MaterialMgr::get()->create_material(name);
  material->set_gpu_program(program_);
  return material;
}

void World::set_look(float r, float g, float b, float textured, float lit) {
  program_->set_uniform_4f(nullptr, "surface_color", r, g, b, 1.0f);
  program_->set_uniform_4f(nullptr, "surface_options", textured, lit, 0.0f, 0.0f);
}

void World::draw(orv::Renderer* renderer, orv::Camera& camera) {
  camera.bind(renderer, true, true, true, true, true);
  renderer->clear_color_depth_buffers_rgba(0.16f, 0.22f, 0.36f, 1.0f, 1.0f);
  program_->bind(renderer);
  light_.bind(renderer);
  program_->set_uniform_1i(nullptr, "color_map", 0);
  set_look(0.5f, 0.5f, 0.55f, 0.0f, 1.0f);
  floor_->render(renderer, nullptr);
  set_look(1.0f, 1.0f, 1.0f, 1.0f, 1.0f);
  model_->render(renderer, nullptr);
}

void World::destroy(orv::Renderer* renderer) {
  if (floor_) floor_->release(renderer, nullptr);
  if (model_) model_->release(renderer, nullptr);
  orv::MaterialMgr::get()->release_all_resources(renderer, nullptr);
  orv::TextureMgr::get()->release_all_textures(renderer, nullptr);
  orv::GpuProgramMgr::get()->release_all_resources(renderer, nullptr);
}

bool take_picture(orv::Renderer* renderer, World& world, const char* picture) {
  orv::Camera camera;
  camera.build_projection_persp(40.0f, float(width) / float(height), 0.1f, 100.0f, true);
  camera.set_viewport(0, 0, width, height);
  camera.set_position(2.2f, 1.7f, 3.6f);
  camera.set_lookat(-0.3f, 0.7f, 0.0f);
  world.draw(renderer, camera);
  return orv::TextureMgr::get()->do_screenshot(renderer, picture, true);
}

int main(int argc, char** argv) {
  const char* picture = argc > 1 ? argv[1] : "step4.jpg";
  const std::string shaders = argc > 2 ? argv[2] : "docs/guide/";
  const std::string models = argc > 3 ? argv[3] : "apps/demo/data/";

  orv::core::start(nullptr, true, nullptr, nullptr);
  orv::Renderer* renderer = orv::Kernel::get()->load_core_opengl_renderer_plugin(true);
  renderer->initialize();
  orv::OffscreenWindow surface(width, height);
  if (!create_context(renderer, surface)) {
    std::fprintf(stderr, "no OpenGL context\n");
    return 1;
  }
  World world;
  const bool done =
      world.create(renderer, shaders, models) && take_picture(renderer, world, picture);
  world.destroy(renderer);
  renderer->stop();
  renderer->render_window_free_all();
  orv::core::stop(nullptr);
  return done ? 0 : 1;
}
