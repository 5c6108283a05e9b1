#include "demo_scene.h"

namespace demo {

using orv::vec4;

namespace {

constexpr int shadow_size = 2048;
constexpr int portrait_width = 640;
constexpr int portrait_height = 360;
constexpr unsigned int shadow_unit = 3;

template <class Shape, class... Parameters>
Shape* make_shape(const vec4& position, Parameters... parameters) {
  Shape* shape = new Shape;
  shape->set_build_params(parameters...);
  shape->build(nullptr);
  shape->set_position(position);
  return shape;
}

}  // namespace

orv_app::Orbit DemoScene::make_orbit() {
  orv_app::Orbit::Setup setup;
  setup.target = vec4(0.1f, 0.85f, 0.0f, 1.0f);
  setup.yaw = 33.0f;
  setup.pitch = 14.0f;
  setup.distance = 7.0f;
  setup.pitches = {2.0f, 85.0f};
  setup.distances = {2.5f, 20.0f};
  return orv_app::Orbit(setup);
}

bool DemoScene::create(orv::Renderer* renderer, const std::string& data_dir, std::string* reason) {
  auto* programs = orv::GpuProgramMgr::get();
  const std::string shaders = data_dir + "shaders/";
  surface_ = programs->create_gpu_program_from_file(renderer, (shaders + "surface.glsl").c_str(),
                                                    "demo_surface");
  depth_ = programs->create_gpu_program_from_file(renderer, (shaders + "depth.glsl").c_str(),
                                                  "demo_depth");
  for (orv::GpuProgram* program : {surface_, depth_}) {
    if (program->is_valid()) continue;
    *reason = std::string("GPU program ") + program->get_name() + program->get_shaders_info_log();
    return false;
  }

  scene_ = orv::SceneMgr::get()->create_scene();
  light_ = new orv::Light;
  light_->set_position(4.5f, 7.5f, 3.5f);
  light_->set_radius(40.0f);
  light_->set_diffuse(1.0f, 0.93f, 0.82f, 1.0f);
  light_->set_specular(1.0f, 0.97f, 0.9f, 1.0f);
  light_->enable_fixed_pipeline(false);
  scene_->add_node(light_);
  light_camera_.build_projection_persp(46.0f, 1.0f, 3.0f, 18.0f, true);
  light_camera_.set_viewport(0, 0, shadow_size, shadow_size);
  light_camera_.set_position(light_->get_position());
  light_camera_.set_lookat(0.0f, 0.4f, 0.0f);

  if (!load_model(renderer, data_dir, reason)) return false;
  add_shapes();
  if (!add_screen(renderer)) {
    *reason = "the driver gives no render targets";
    return false;
  }
  return true;
}

DemoScene::Item& DemoScene::add(orv::Mesh* mesh, const char* material_name, const Look& look) {
  orv::Material* material = orv::MaterialMgr::get()->create_material(material_name);
  mesh->remove_all_materials(nullptr, nullptr);
  mesh->add_material(material, nullptr);
  if (!mesh->get_parent()) scene_->add_node(mesh);
  items_.push_back({mesh, material, look, true, true});
  return items_.back();
}

// ---- what is in the scene ----------------------------------------------------------------------

bool DemoScene::load_model(orv::Renderer* renderer, const std::string& data_dir,
                           std::string* reason) {
  orv::Model* model = orv::aux::load_model_from_file(orv::MeshDataVertexAttribsAllocParams(),
                                                     "spot.obj", data_dir.c_str(), nullptr);
  if (!model || model->get_num_children() == 0) {
    *reason = "cannot load " + data_dir + "spot.obj";
    return false;
  }
  scene_->add_node(model);
  model->set_position(0.15f, 0.736f, 0.15f);
  model->set_orientation_euler_xyz(0.0f, 205.0f, 0.0f);

  // The file has neither normals nor a material: both are made here.
  auto* mesh = static_cast<orv::Mesh*>(model->get_child(0));
  mesh->compute_faces_normal(nullptr);
  mesh->average_vertices_normal(1e-5f, nullptr);
  Item& item = add(mesh, "spot", {vec4(1.0f, 1.0f, 1.0f, 1.0f), 1.0f, 0.0f, 0.0f, 0.45f});
  orv::Texture* texture = orv::TextureMgr::get()->create_texture_2d_from_file(
      (data_dir + "spot_texture.png").c_str(), false, orv::PF_RGB_U8);
  if (!texture) {
    *reason = "cannot load " + data_dir + "spot_texture.png";
    return false;
  }
  texture->flip_vertical();  // the file's first row is the top one
  texture->upload(renderer, 0, 0);
  item.material->add_texture(texture);
  return true;
}

void DemoScene::add_shapes() {
  Item& floor = add(make_shape<orv::MeshPlane>(vec4(0, 0, 0, 1), 120.0f, 120.0f, 1, 1), "floor",
                    {vec4(0.62f, 0.60f, 0.57f, 1), 0.0f, 1.0f, 0.0f, 0.25f});
  floor.casts_shadow = false;
  Item& sky = add(make_shape<orv::MeshSphere>(vec4(0, 0, 0, 1), 90.0f, 24, 48), "sky",
                  {vec4(1, 1, 1, 1), 0.0f, 0.0f, 2.0f, 0.0f});
  sky.casts_shadow = false;

  add(make_shape<orv::MeshSphere>(vec4(1.85f, 0.42f, 1.0f, 1), 0.42f, 48, 64), "brass",
      {vec4(0.85f, 0.52f, 0.12f, 1), 0.0f, 0.0f, 0.0f, 0.9f});
  orv::Mesh* torus = make_shape<orv::MeshTorus>(vec4(-1.75f, 0.17f, 1.35f, 1), 0.55f, 0.17f, 64);
  add(torus, "teal", {vec4(0.03f, 0.40f, 0.42f, 1), 0.0f, 0.0f, 0.0f, 0.7f});
  orv::Mesh* knot = make_shape<orv::MeshPQTorus>(vec4(2.2f, 1.22f, -0.75f, 1), 320, 24, 0.42f,
                                                 0.085f, 0.0f, 0.0f, 0.0f, 1.0f, 8.0f, 2.0f, 3.0f);
  knot->set_orientation_euler_xyz(20.0f, 25.0f, 0.0f);
  add(knot, "magenta", {vec4(0.60f, 0.05f, 0.24f, 1), 0.0f, 0.0f, 0.0f, 0.85f});
  orv::Mesh* box =
      make_shape<orv::MeshBox>(vec4(0.55f, 0.24f, 1.9f, 1), 0.48f, 0.48f, 0.48f, 1, 1, 1);
  box->set_orientation_euler_xyz(0.0f, 32.0f, 0.0f);
  add(box, "blue", {vec4(0.05f, 0.16f, 0.55f, 1), 0.0f, 0.0f, 0.0f, 0.35f});
  orv::Mesh* pillar =
      make_shape<orv::MeshCylinder>(vec4(2.2f, 0.2f, -0.75f, 1), 0.55f, 0.4f, 3, 64);
  pillar->set_orientation_euler_xyz(90.0f, 0.0f, 0.0f);
  add(pillar, "stone", {vec4(0.5f, 0.48f, 0.45f, 1), 0.0f, 0.0f, 0.0f, 0.15f});
  add(make_shape<orv::MeshEllipse>(vec4(2.2f, 0.4f, -0.75f, 1), 0.55f, 0.55f, 64, 2, 360.0f),
      "stone top", {vec4(0.5f, 0.48f, 0.45f, 1), 0.0f, 0.0f, 0.0f, 0.15f});
  orv::Mesh* pyramid = make_shape<orv::MeshSphere>(vec4(-0.9f, 0.3f, 2.15f, 1), 0.3f, 2, 4);
  pyramid->set_orientation_euler_xyz(90.0f, 0.0f, 20.0f);
  add(pyramid, "green", {vec4(0.16f, 0.45f, 0.08f, 1), 0.0f, 0.0f, 0.0f, 0.5f});
}

bool DemoScene::add_screen(orv::Renderer* renderer) {
  shadow_map_ =
      renderer->gpu_render_target_create_depth_2d(nullptr, shadow_size, shadow_size, false, true);
  portrait_ = renderer->gpu_render_target_create_2d(nullptr, portrait_width, portrait_height,
                                                    orv::PF_RGBA_U8, 1, true, true, true, 0);
  if (!shadow_map_ || !portrait_) return false;
  portrait_camera_.build_projection_persp(30.0f, 16.0f / 9.0f, 0.1f, 120.0f, true);
  portrait_camera_.set_viewport(0, 0, portrait_width, portrait_height);
  portrait_camera_.set_position(1.35f, 1.5f, 2.3f);
  portrait_camera_.set_lookat(0.3f, 1.2f, 0.3f);

  const vec4 place(-2.75f, 1.25f, -1.6f, 1.0f);
  orv::Mesh* frame = make_shape<orv::MeshBox>(place, 3.0f, 1.78f, 0.12f, 1, 1, 1);
  frame->set_orientation_euler_xyz(0.0f, 32.0f, 0.0f);
  add(frame, "frame", {vec4(0.02f, 0.02f, 0.025f, 1), 0.0f, 0.0f, 0.0f, 0.6f}).in_portrait = false;
  orv::Mesh* foot =
      make_shape<orv::MeshBox>(vec4(-2.75f, 0.2f, -1.6f, 1), 0.9f, 0.4f, 0.3f, 1, 1, 1);
  foot->set_orientation_euler_xyz(0.0f, 32.0f, 0.0f);
  add(foot, "foot", {vec4(0.02f, 0.02f, 0.025f, 1), 0.0f, 0.0f, 0.0f, 0.6f}).in_portrait = false;

  orv::Mesh* screen = make_shape<orv::MeshQuad>(vec4(0, 0, 0.065f, 1), 2.84f, 1.6f);
  frame->add_child(screen);
  Item& item = add(screen, "screen", {vec4(1, 1, 1, 1), 1.0f, 0.0f, 1.0f, 0.0f});
  item.casts_shadow = false;
  item.in_portrait = false;
  item.material->add_texture(
      orv::Kernel::get()->create_color_texture_from_render_target(portrait_, 0));
  return true;
}

// ---- drawing -----------------------------------------------------------------------------------

void DemoScene::draw(orv::Renderer* renderer, orv::Camera& camera, int width, int height) {
  draw_shadows(renderer);
  const orv::mat4 shadow = light_camera_.get_view_projection_matrix();
  surface_->set_uniform_4x4f(nullptr, "shadow_matrix", shadow);
  surface_->set_uniform_1i(nullptr, "color_map", 0);
  surface_->set_uniform_1i(nullptr, "shadow_map", static_cast<int>(shadow_unit));
  renderer->gpu_render_target_bind_depth_texture(shadow_map_, shadow_unit);
  draw_portrait(renderer);

  camera.build_projection_persp(38.0f, static_cast<float>(width) / static_cast<float>(height), 0.1f,
                                200.0f, true);
  camera.set_viewport(0, 0, width, height);
  camera.bind(renderer, true, true, true, true, true);
  renderer->clear_color_depth_buffers_rgba(0.7f, 0.8f, 0.9f, 1.0f, 1.0f);
  draw_items(renderer, camera.get_position(), false);
}

void DemoScene::draw_shadows(orv::Renderer* renderer) {
  renderer->gpu_render_target_bind(shadow_map_);
  light_camera_.bind(renderer, true, true, true, true, true);
  renderer->shadow_map_pass_begin_v2(0);
  for (const Item& item : items_) {
    if (!item.casts_shadow) continue;
    item.material->set_gpu_program(depth_);
    item.mesh->render(renderer, nullptr);
  }
  renderer->shadow_map_pass_end_v2(0);
  renderer->gpu_render_target_unbind(shadow_map_);
}

void DemoScene::draw_portrait(orv::Renderer* renderer) {
  renderer->gpu_render_target_bind(portrait_);
  portrait_camera_.bind(renderer, true, true, true, true, true);
  renderer->clear_color_depth_buffers_rgba(0.7f, 0.8f, 0.9f, 1.0f, 1.0f);
  draw_items(renderer, portrait_camera_.get_position(), true);
  renderer->gpu_render_target_unbind(portrait_);
}

void DemoScene::draw_items(orv::Renderer* renderer, const vec4& eye, bool portrait) {
  surface_->bind(renderer);
  light_->bind(renderer);
  surface_->set_uniform_4f(nullptr, "camera_position", eye);
  for (const Item& item : items_) {
    if (portrait && !item.in_portrait) continue;
    const Look& look = item.look;
    surface_->set_uniform_4f(nullptr, "surface_color", look.color);
    surface_->set_uniform_4f(nullptr, "surface_options", look.textured, look.checker, look.unlit,
                             look.gloss);
    item.material->set_gpu_program(surface_);
    item.mesh->render(renderer, nullptr);
  }
}

void DemoScene::destroy(orv::Renderer* renderer) {
  items_.clear();
  if (scene_) orv::SceneMgr::get()->kill_scene(renderer, scene_);
  scene_ = nullptr;
  orv::MaterialMgr::get()->release_all_resources(renderer, nullptr);
  orv::TextureMgr::get()->release_all_textures(renderer, nullptr);
  orv::GpuProgramMgr::get()->release_all_resources(renderer, nullptr);
  renderer->gpu_render_target_killall(nullptr);
}

}  // namespace demo
