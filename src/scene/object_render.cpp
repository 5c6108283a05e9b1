// Object: engine uniforms, tripod and grid.
#include <orv/scene/object.h>

#include <orv/gpu/gpu_program_data.h>
#include <orv/render/renderer.h>

#include "scene/object_data.h"
#include "scene/object_walk.h"

#include <algorithm>

namespace orv {

namespace {

/// The APIs that take their uniforms from constant buffers.
bool takes_uniforms_from_buffers(const Renderer& renderer) {
  const ORV_API3D api = renderer.get_api_type();
  return api == ORV_API3D_VULKAN || api == ORV_API3D_D3D12;
}

/// Lines along one side of a grid: parallels to `along`, spread over `across`.
/// @param skip_middle  leave out the line through the origin, which an axis covers
void draw_grid_lines(Renderer* renderer, const vec4& along, const vec4& across, int cells,
                     bool skip_middle) {
  constexpr int MAX_CELLS = 4096;
  const vec4 color(0.5f, 0.5f, 0.5f, 1.0f);
  cells = std::min(cells, MAX_CELLS);
  for (int i = 0; cells > 0 && i <= cells; ++i) {
    if (skip_middle && 2 * i == cells) continue;
    const float t = static_cast<float>(i) / static_cast<float>(cells) - 0.5f;
    const vec4 middle(across.x * t, 0.0f, across.z * t, 1.0f);
    renderer->draw_immediate_line(
        vec4(middle.x - along.x * 0.5f, 0.0f, middle.z - along.z * 0.5f, 1.0f),
        vec4(middle.x + along.x * 0.5f, 0.0f, middle.z + along.z * 0.5f, 1.0f), color, color);
  }
}

void draw_line(Renderer* renderer, const vec4& from, const vec4& to, const vec4& color) {
  renderer->draw_immediate_line(from, to, color, color);
}

constexpr vec4 RED(1.0f, 0.0f, 0.0f, 1.0f);
constexpr vec4 GREEN(0.0f, 1.0f, 0.0f, 1.0f);
constexpr vec4 BLUE(0.0f, 0.0f, 1.0f, 1.0f);

}  // namespace

void Object::_render(Renderer* renderer) {
  if (data_->display_grid) display_grid(renderer, nullptr);
  if (data_->display_tripod) display_tripod(renderer, nullptr);
}

void Object::render_geometry(Renderer*) {}

void Object::render_geometry_prepare(Renderer*) {}

void Object::render_geometry_draw(Renderer*) {}

void Object::render_geometry_finish(Renderer*) {}

// ---- engine uniforms ------------------------------------------------------------------------

void Object::bind_gpu_program_uniforms(Renderer* renderer, GpuProgramData* program, bool fixed) {
  if (!renderer || takes_uniforms_from_buffers(*renderer)) return;
  _update_automatic_uniforms(renderer, program, fixed);
  renderer->gpu_program_apply_uniforms(program);
}

void Object::_update_automatic_uniforms(Renderer* renderer, GpuProgramData* program, bool fixed) {
  if (!renderer) return;
  const mat4& model = get_absolute_transform();
  const mat4& projection = renderer->get_projection_matrix();
  const mat4& view = renderer->get_modelview_matrix();
  const mat4 model_view = view * model;
  if (fixed || !program) {
    renderer->load_fixed_matrices(&projection, &model_view, nullptr, nullptr);
  }
  if (!program) return;

  // Products of matrices that the program lacks are spared.
  const auto set = [&](ENGINE_UNIFORM which, auto value) {
    if (!program->is_engine_uniform_unused(which)) program->set_engine_uniform_4x4f(which, value());
  };
  set(ENGINE_UNIFORM_MODEL_VIEW_PROJECTION_MATRIX, [&] { return projection * model_view; });
  set(ENGINE_UNIFORM_MODEL_MATRIX, [&] { return model; });
  set(ENGINE_UNIFORM_MODEL_VIEW_MATRIX, [&] { return model_view; });
  if (!data_->send_camera_matrices) return;
  set(ENGINE_UNIFORM_VIEW_MATRIX, [&] { return view; });
  set(ENGINE_UNIFORM_PROJECTION_MATRIX, [&] { return projection; });
  set(ENGINE_UNIFORM_VIEW_PROJECTION_MATRIX, [&] { return projection * view; });
  // The viewport is asked of the API, which costs a round trip on some drivers.
  if (program->is_engine_uniform_unused(ENGINE_UNIFORM_VIEWPORT)) return;
  const int* viewport = renderer->get_viewport_array(0);
  if (!viewport) return;
  program->set_engine_uniform_4f(ENGINE_UNIFORM_VIEWPORT, static_cast<float>(viewport[0]),
                                 static_cast<float>(viewport[1]), static_cast<float>(viewport[2]),
                                 static_cast<float>(viewport[3]));
}

void Object::_update_automatic_uniforms_gpu_buffer(Renderer* renderer, GpuProgramData*) {
  if (!renderer) return;
  const mat4& model = get_absolute_transform();
  const mat4& projection = renderer->get_projection_matrix();
  const mat4& view = renderer->get_modelview_matrix();
  GpuProgramModelViewParams& params = model_view_params_;
  params.model_view = view * model;
  params.model_view_2 = params.model_view;
  params.model_view_projection = projection * params.model_view;
  if (!data_->send_camera_matrices) return;
  params.view = view;
  params.projection = projection;
  params.view_projection = projection * view;
}

void Object::automatic_uniform_send_camera_matrices(bool state) {
  data_->send_camera_matrices = state;
}

const GpuProgramModelViewParams& Object::get_gpu_program_model_view_params() const {
  return model_view_params_;
}

// ---- tripod ---------------------------------------------------------------------------------

template <class Draw>
void Object::draw_with_fixed_matrices(Renderer* renderer, Draw draw) {
  GpuProgramData* program = renderer->get_current_gpu_program();
  renderer->gpu_program_unbind(program);
  bind_gpu_program_uniforms(renderer, nullptr, true);
  draw();
  if (program) renderer->gpu_program_bind(program);
}

void Object::display_tripod(Renderer* renderer, Node* node) {
  if (!renderer) return;
  draw_with_fixed_matrices(renderer, [&] { render_tripod(renderer, data_->tripod_size); });
  visit_object_children(node, [=](Object* child) { child->display_tripod(renderer, child); });
}

void Object::render_tripod(Renderer* renderer, const vec4& size) {
  if (!renderer) return;
  const vec4 origin(0.0f, 0.0f, 0.0f, 1.0f);
  renderer->set_line_width(2.0f);
  draw_line(renderer, origin, vec4(size.x, 0.0f, 0.0f, 1.0f), RED);
  draw_line(renderer, origin, vec4(0.0f, size.y, 0.0f, 1.0f), GREEN);
  draw_line(renderer, origin, vec4(0.0f, 0.0f, size.z, 1.0f), BLUE);
  renderer->set_line_width(1.0f);
}

void Object::set_display_tripod_state(bool state, Node* node) {
  data_->display_tripod = state;
  visit_object_children(node,
                        [=](Object* child) { child->set_display_tripod_state(state, child); });
}

bool Object::get_display_tripod_state() const { return data_->display_tripod; }

const vec4& Object::get_tripod_size() const { return data_->tripod_size; }

void Object::set_tripod_size(float x, float y, float z, Node* node) {
  data_->tripod_size = vec4(x, y, z, 1.0f);
  visit_object_children(node, [=](Object* child) { child->set_tripod_size(x, y, z, child); });
}

// ---- grid -----------------------------------------------------------------------------------

void Object::set_display_grid_state(bool state, Node* node) {
  data_->display_grid = state;
  visit_object_children(node, [=](Object* child) { child->set_display_grid_state(state, child); });
}

bool Object::get_display_grid_state() const { return data_->display_grid; }

void Object::set_grid_params(float width, float depth, int lines_x, int lines_z, bool show_axes,
                             bool show_lines) {
  data_->grid = {width, depth, lines_x, lines_z, show_axes, show_lines};
}

void Object::display_grid(Renderer* renderer, Node* node) {
  if (!renderer) return;
  const GridParams& grid = data_->grid;
  draw_with_fixed_matrices(renderer, [&] {
    render_grid(renderer, grid.width, grid.depth, grid.lines_x, grid.lines_z, grid.show_axes,
                grid.show_lines);
  });
  visit_object_children(node, [=](Object* child) { child->display_grid(renderer, child); });
}

void Object::render_grid(Renderer* renderer, float width, float depth, int lines_x, int lines_z,
                         bool show_axes, bool show_lines) {
  if (!renderer) return;
  const vec4 x_side(width, 0.0f, 0.0f, 1.0f);
  const vec4 z_side(0.0f, 0.0f, depth, 1.0f);
  renderer->set_line_width(1.0f);
  if (show_lines) {
    draw_grid_lines(renderer, z_side, x_side, lines_x, show_axes);
    draw_grid_lines(renderer, x_side, z_side, lines_z, show_axes);
  }
  if (show_axes) {
    draw_line(renderer, vec4(-width * 0.5f, 0.0f, 0.0f, 1.0f), vec4(width * 0.5f, 0.0f, 0.0f, 1.0f),
              RED);
    draw_line(renderer, vec4(0.0f, 0.0f, -depth * 0.5f, 1.0f), vec4(0.0f, 0.0f, depth * 0.5f, 1.0f),
              BLUE);
  }
  renderer->set_line_width(1.0f);
}

}  // namespace orv
