#include "viewer/viewer_scene.h"

#include <algorithm>
#include <cmath>

#include "viewer/surface_shader.h"

namespace viewer {

using orv::vec4;
using orv_app::Orbit;

namespace {

constexpr float fov = 35.0f;
constexpr float first_pitch = 22.0f;

/// Half of the way from the nearest to the farthest thing: model, grid and axes.
constexpr float reach = 4.0f;

bool is_black(const vec4& color) { return color.x + color.y + color.z < 0.01f; }

}  // namespace

// ---- making ------------------------------------------------------------------------------------

Orbit ViewerScene::make_orbit() {
  Orbit::Setup setup;
  setup.yaw = 32.0f;
  setup.pitch = first_pitch;
  setup.distances = {0.02f, 20.0f};
  return Orbit(setup);
}

bool ViewerScene::create(orv::Renderer* renderer, bool core, std::string* reason) {
  program_ = orv::GpuProgramMgr::get()->create_gpu_program_from_shaders(
      renderer, surface_vertex_shader(core).c_str(), surface_pixel_shader(core).c_str(), nullptr,
      nullptr, nullptr, nullptr, "viewer_surface");
  if (!program_->is_valid()) {
    *reason = "the driver refuses the shaders";
    return false;
  }
  stage_ = new orv::Object;
  light_.set_diffuse(0.60f, 0.58f, 0.55f, 1.0f);
  light_.enable_fixed_pipeline(false);
  return true;
}

void ViewerScene::destroy(orv::Renderer* renderer) {
  if (stage_) stage_->release(renderer, nullptr);
  stage_ = nullptr;
  if (program_) orv::GpuProgramMgr::get()->release_resource(renderer, program_, nullptr);
  program_ = nullptr;
  file_ = nullptr;
}

void ViewerScene::set_model(ModelFile* file) {
  file_ = file;
  placement_ = place_in_unit(file->get_box());
  const float s = placement_.scale;
  file->get_model()->set_scale(s, s, s);
  file->get_model()->set_position(placement_.offset);
  const vec4& half = placement_.half_size;
  grid_step_ = round_step(2.0f * std::max(half.x, half.z) / s);
  // A little below: models often have a floor of their own.
  constexpr float gap = 0.002f;
  stage_->set_position(0.0f, -half.y - gap, 0.0f);
}

// ---- drawing -----------------------------------------------------------------------------------

void ViewerScene::draw(orv::Renderer* renderer, const Orbit& orbit, const Look& look, int width,
                       int height) {
  const float unit = place_camera(orbit, width, height);
  place_light(orbit, unit);
  camera_.bind(renderer, true, true, true, true, true);
  renderer->enable_depth_test(true);
  renderer->clear_color_depth_buffers_rgba(background[0], background[1], background[2], 1.0f, 1.0f);

  const int mode =
      look.wireframe ? orv::RENDERER_POLYGON_MODE_LINE : orv::RENDERER_POLYGON_MODE_FILL;
  renderer->rasterizer_set_polygon_mode(mode, orv::RENDERER_POLYGON_FACE_FRONT_AND_BACK);
  renderer->rasterizer_apply();
  draw_parts(renderer);
  renderer->rasterizer_set_polygon_mode(orv::RENDERER_POLYGON_MODE_FILL,
                                        orv::RENDERER_POLYGON_FACE_FRONT_AND_BACK);
  renderer->rasterizer_apply();
  draw_stage(renderer, look);
}

// Scene units of one unit of the orbit's distance.
float ViewerScene::place_camera(const Orbit& orbit, int width, int height) {
  const float aspect = static_cast<float>(width) / static_cast<float>(height);
  const float unit = fit_distance(placement_.half_size, first_pitch, fov, aspect);
  const float distance = orbit.get_distance() * unit;
  camera_.build_projection_persp(fov, aspect, std::max(distance - reach, distance * 0.02f),
                                 distance + reach, true);
  camera_.set_viewport(0, 0, width, height);
  orbit.place(camera_, unit);
  return unit;
}

void ViewerScene::place_light(const Orbit& orbit, float unit) {
  Orbit shoulder = orbit;
  shoulder.turn(-40.0f, 30.0f);
  light_.set_position(shoulder.get_position(unit * 3.0f / orbit.get_distance()));
}

void ViewerScene::draw_parts(orv::Renderer* renderer) {
  program_->bind(renderer);
  light_.bind(renderer);
  program_->set_uniform_4f(nullptr, "camera_position", camera_.get_position());
  program_->set_uniform_1i(nullptr, "color_map", 0);
  for (const Part& part : file_->get_parts()) {
    const orv::Material* material = part.material;
    const bool textured = material && material->get_num_textures() > 0;
    vec4 color = material ? material->get_diffuse() : vec4(0.75f, 0.75f, 0.75f, 1.0f);
    // Files often leave it black where a texture is to be seen alone.
    if (textured && is_black(color)) color = vec4(1.0f, 1.0f, 1.0f, 1.0f);
    const vec4 highlight = material ? material->get_specular() : vec4(0.3f, 0.3f, 0.3f, 1.0f);
    const float exponent =
        std::clamp(material ? material->get_shininess() * 2.0f + 8.0f : 32.0f, 8.0f, 264.0f);
    program_->set_uniform_4f(nullptr, "surface_color", color.x, color.y, color.z,
                             textured ? 1.0f : 0.0f);
    program_->set_uniform_4f(nullptr, "surface_highlight", highlight.x, highlight.y, highlight.z,
                             exponent);
    if (part.subset < 0) {
      part.mesh->_render(renderer);
    } else {
      part.mesh->render_subset(renderer, static_cast<unsigned int>(part.subset));
    }
  }
  program_->unbind(renderer);
}

void ViewerScene::draw_stage(orv::Renderer* renderer, const Look& look) {
  constexpr int most_cells = 200;
  const vec4& half = placement_.half_size;
  const float cell = grid_step_ * placement_.scale;
  const float side = 2.0f * std::max({half.x, half.z, 0.25f});
  // An even number, so that a line runs through the middle.
  const int cells = std::min(2 * static_cast<int>(std::ceil(side * 0.75f / cell)), most_cells);
  const float width = static_cast<float>(cells) * cell;
  stage_->set_grid_params(width, width, cells, cells, look.axes, true);
  stage_->set_display_grid_state(look.grid, nullptr);
  const float length = 1.3f * std::max({half.x, half.y * 2.0f, half.z, 0.2f});
  stage_->set_tripod_size(length, length, length, nullptr);
  stage_->set_display_tripod_state(look.axes, nullptr);
  stage_->_render(renderer);
}

}  // namespace viewer
