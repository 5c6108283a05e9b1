// Step 6: a window, the mouse, and an orbit camera.
#include <SDL.h>
#include <SDL_syswm.h>

#include <orv/orv.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

constexpr int width = 256;
constexpr int height = 256;
constexpr int screen_size = 256;

bool create_context(orv::Renderer* renderer, void* display, void* native_window) {
  orv::RenderWindowData data;
  data.app_instance = display;
  data.native_window = native_window;
  data.gl_major = 3;
  data.core_profile = true;
  orv::RenderWindow* window = renderer->render_window_alloc();
  return renderer->render_window_create_context(window, &data, nullptr) && renderer->start();
}

struct Size {
  int width;
  int height;
};

Size size_of(SDL_Window* window) {
  Size size{width, height};
  if (window) SDL_GetWindowSize(window, &size.width, &size.height);
  return size;
}

class Orbit {
 public:
  void turn(float yaw, float pitch) {
    yaw_ += yaw;
    pitch_ = std::clamp(pitch_ + pitch, 2.0f, 85.0f);
  }
  void zoom(float factor) { distance_ = std::clamp(distance_ * factor, 2.0f, 15.0f); }
  void place(orv::Camera& camera, Size size) const {
    constexpr float radians = 0.017453292f;
    const float flat = std::cos(pitch_ * radians) * distance_;
    const float aspect = float(size.width) / float(size.height);
    camera.build_projection_persp(40.0f, aspect, 0.1f, 100.0f, true);
    camera.set_viewport(0, 0, size.width, size.height);
    camera.set_position(-0.3f + std::sin(yaw_ * radians) * flat,
                        0.7f + std::sin(pitch_ * radians) * distance_,
                        std::cos(yaw_ * radians) * flat);
    camera.set_lookat(-0.3f, 0.7f, 0.0f);
  }

 private:
  float yaw_ = 36.0f;
  float pitch_ = 15.0f;
  float distance_ = 4.4f;
};

class World {
 public:
  bool create(orv::Renderer* renderer, const std::string& shaders, const std::string& models);
  void draw(orv::Renderer* renderer, orv::Camera& camera);
  void destroy(orv::Renderer* renderer);

 private:
  bool load_program(orv::Renderer* renderer, const std::string& path);
  bool load_model(const std::string& folder);
  bool add_screen(orv::Renderer* renderer);
  orv::Material* create_material(const char* name);
  void draw_objects(orv::Renderer* renderer);
  void set_look(float r, float g, float b, float textured, float lit);

  orv::GpuProgram* program_ = nullptr;
  orv::Model* model_ = nullptr;
  orv::MeshPlane* floor_ = nullptr;
  orv::MeshQuad* screen_ = nullptr;
  orv::GpuRenderTarget* target_ = nullptr;
  orv::Camera screen_camera_;
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
  return add_screen(renderer);
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

bool World::add_screen(orv::Renderer* renderer) {
  target_ = renderer->gpu_render_target_create_2d(nullptr, screen_size, screen_size,
                                                  orv::PF_RGBA_U8, 1, true, true, true, 0);
  if (!target_) return false;
  screen_camera_.build_projection_persp(35.0f, 1.0f, 0.1f, 100.0f, true);
  screen_camera_.set_viewport(0, 0, screen_size, screen_size);
  screen_camera_.set_position(0.9f, 1.1f, 2.4f);
  screen_camera_.set_lookat(0.2f, 0.9f, 0.3f);

  screen_ = new orv::MeshQuad;
  screen_->set_build_params(1.8f, 1.8f);
  screen_->build(nullptr);
  screen_->set_position(-1.8f, 0.9f, -0.8f);
  screen_->set_orientation_euler_xyz(0.0f, 30.0f, 0.0f);
  orv::Material* material = create_material("screen");
  material->add_texture(orv::Kernel::get()->create_color_texture_from_render_target(target_, 0));
  screen_->add_material(material, nullptr);
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
  renderer->gpu_render_target_bind(target_);
  screen_camera_.bind(renderer, true, true, true, true, true);
  renderer->clear_color_depth_buffers_rgba(0.55f, 0.35f, 0.3f, 1.0f, 1.0f);
  draw_objects(renderer);
  renderer->gpu_render_target_unbind(target_);

  camera.bind(renderer, true, true, true, true, true);
  renderer->clear_color_depth_buffers_rgba(0.16f, 0.22f, 0.36f, 1.0f, 1.0f);
  draw_objects(renderer);
  set_look(1.0f, 1.0f, 1.0f, 1.0f, 0.0f);
  screen_->render(renderer, nullptr);
}

void World::draw_objects(orv::Renderer* renderer) {
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
  if (screen_) screen_->release(renderer, nullptr);
  if (model_) model_->release(renderer, nullptr);
  orv::MaterialMgr::get()->release_all_resources(renderer, nullptr);
  orv::TextureMgr::get()->release_all_textures(renderer, nullptr);
  orv::GpuProgramMgr::get()->release_all_resources(renderer, nullptr);
  renderer->gpu_render_target_killall(nullptr);
}

bool take_picture(orv::Renderer* renderer, World& world, const Orbit& orbit, Size size,
                  const char* picture) {
  orv::Camera camera;
  orbit.place(camera, size);
  world.draw(renderer, camera);
  return orv::TextureMgr::get()->do_screenshot(renderer, picture, true);
}

bool handle_events(Orbit& orbit) {
  SDL_Event event;
  while (SDL_PollEvent(&event)) {
    if (event.type == SDL_QUIT) return false;
    if (event.type == SDL_KEYDOWN && event.key.keysym.sym == SDLK_ESCAPE) return false;
    if (event.type == SDL_MOUSEMOTION && (event.motion.state & SDL_BUTTON_LMASK)) {
      orbit.turn(float(-event.motion.xrel) * 0.4f, float(event.motion.yrel) * 0.4f);
    }
    if (event.type == SDL_MOUSEWHEEL) orbit.zoom(event.wheel.y > 0 ? 0.9f : 1.1f);
  }
  return true;
}

void draw_until_closed(orv::Renderer* renderer, SDL_Window* window, World& world, Orbit& orbit) {
  orv::RenderWindow* render_window = renderer->get_current_render_window();
  renderer->render_window_set_swap_interval(render_window, true);
  orv::Camera camera;
  while (handle_events(orbit)) {
    orbit.place(camera, size_of(window));
    world.draw(renderer, camera);
    renderer->render_window_swap_buffers(render_window);
  }
}

struct Paths {
  std::string picture;
  std::string shaders;
  std::string models;
};

bool run(orv::Renderer* renderer, SDL_Window* window, const Paths& paths) {
  void* display = nullptr;
  void* native_window = nullptr;
  orv::OffscreenWindow surface(width, height);
  if (window) {
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version);
    if (!SDL_GetWindowWMInfo(window, &info) || info.subsystem != SDL_SYSWM_X11) return false;
    display = info.info.x11.display;
    native_window = reinterpret_cast<void*>(std::uintptr_t{info.info.x11.window});
  } else {
    native_window = surface.native_handle();
  }
  if (!create_context(renderer, display, native_window)) {
    std::fprintf(stderr, "no OpenGL context\n");
    return false;
  }
  World world;
  Orbit orbit;
  bool done = world.create(renderer, paths.shaders, paths.models);
  if (done && window) draw_until_closed(renderer, window, world, orbit);
  if (done) done = take_picture(renderer, world, orbit, size_of(window), paths.picture.c_str());
  world.destroy(renderer);
  renderer->stop();
  renderer->render_window_free_all();
  return done;
}

int main(int argc, char** argv) {
  const Paths paths{argc > 1 ? argv[1] : "step6.jpg", argc > 2 ? argv[2] : "docs/guide/",
                    argc > 3 ? argv[3] : "apps/demo/data/"};

  SDL_SetHintWithPriority(SDL_HINT_VIDEODRIVER, "x11", SDL_HINT_DEFAULT);
  SDL_Window* window = nullptr;
  if (std::getenv("DISPLAY") && SDL_Init(SDL_INIT_VIDEO) == 0) {
    window = SDL_CreateWindow("Orvane Core", SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, 960,
                              720, SDL_WINDOW_RESIZABLE);
  }

  orv::core::start(nullptr, true, nullptr, nullptr);
  orv::Renderer* renderer = orv::Kernel::get()->load_core_opengl_renderer_plugin(true);
  renderer->initialize();
  const bool done = run(renderer, window, paths);
  orv::core::stop(nullptr);
  if (window) SDL_DestroyWindow(window);
  SDL_Quit();
  return done ? 0 : 1;
}
