#include <orv/geometry/polyline.h>

#include <orv/core/log_mgr.h>
#include <orv/gpu/gpu_buffer_data.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/render/renderer.h>

#include <algorithm>

#include "geometry/counted_data.h"
#include "geometry/limits.h"
#include "geometry/material_binding.h"

namespace orv {

namespace {

PRIMITIVE_TYPE primitive_of(LINE_RENDER_MODE mode) {
  switch (mode) {
    case LINE_RENDER_LINE_STRIP:
      return PRIMITIVE_LINE_STRIP;
    case LINE_RENDER_LINE_LOOP:
      return PRIMITIVE_LINE_LOOP;
    case LINE_RENDER_LINES_ADJACENCY:
      return PRIMITIVE_LINES_ADJACENCY;
    case LINE_RENDER_LINE_STRIP_ADJACENCY:
      return PRIMITIVE_LINE_STRIP_ADJACENCY;
    default:
      return PRIMITIVE_LINES;
  }
}

}  // namespace

Polyline::Polyline() : wideline_(new PolylineWideLine) {
  set_type(NODE_TYPE_POLYLINE);
  init_polyline_data(nullptr);
}

Polyline::~Polyline() {
  _set_polyline_data(nullptr, nullptr);
  free_wideline(nullptr, false);
  delete wideline_;
}

// ---- data ----

bool Polyline::_set_polyline_data(Renderer* renderer, PolylineData* data) {
  replace_counted_data(renderer, polyline_data_, data);
  return true;
}

bool Polyline::share_polyline_data(Renderer* renderer, Polyline* other) {
  return other && _set_polyline_data(renderer, other->polyline_data_);
}

bool Polyline::init_polyline_data(Renderer* renderer) {
  return _set_polyline_data(renderer, new PolylineData);
}

bool Polyline::cleanup_polyline_data(Renderer* renderer) {
  return _set_polyline_data(renderer, nullptr);
}

bool Polyline::free_polyline_data() { return polyline_data_ && polyline_data_->free_data(); }

bool Polyline::alloc_vertex_data(unsigned int n) {
  if (!polyline_data_) return false;
  polyline_data_->set_alloc_params_num_vertices(n);
  return polyline_data_->alloc_vertex_data();
}

bool Polyline::initialize(unsigned int n, LINE_RENDER_MODE mode) {
  return initialize_v2(n, primitive_of(mode));
}

bool Polyline::initialize_v2(unsigned int n, PRIMITIVE_TYPE primitive) {
  if (!alloc_vertex_data(n)) return false;
  polyline_data_->set_primitive_type(primitive);
  return true;
}

bool Polyline::start_shape(unsigned long long n, PRIMITIVE_TYPE primitive) {
  if (!free_polyline_data()) return false;
  if (n > MAX_GEOMETRY_BYTES / sizeof(vec4)) {
    LogMgr::get().tracef_error("Polyline %s - %llu vertices don't fit in memory.", get_name(), n);
    return false;
  }
  return initialize_v2(static_cast<unsigned int>(n), primitive);
}

// ---- life and drawing ----

bool Polyline::_cleanup(Renderer* renderer) {
  cleanup_polyline_data(renderer);
  free_wideline(renderer, true);
  return Object::_cleanup(renderer);
}

bool Polyline::_build() {
  if (!get_build_state()) return Object::_build();
  update_build_state(false);
  return true;
}

void Polyline::_render(Renderer* renderer) {
  if (!renderer || !polyline_data_) return;
  Material* material = get_material_by_index(0);
  if (material) bind_material(*renderer, *material);
  const bool wide = wideline_->program && wideline_bind_gpu_program(renderer);

  GpuProgramData* program = renderer->get_current_gpu_program();
  const bool fixed_texturing = !program && material && material->get_num_textures() > 0;
  if (fixed_texturing) renderer->enable_texture_2d(true);
  if (program) {
    set_opengl_2_3_rendering_states(!program->get_use_generic_vertex_attribs_state(), nullptr);
  }
  bind_gpu_program_uniforms(renderer, program, get_use_fixed_mvp_matrices_state());
  render_geometry(renderer);

  if (wide) renderer->gpu_program_bind(nullptr);
  if (material) unbind_material(*renderer, *material);
  if (fixed_texturing) renderer->enable_texture_2d(false);
}

int Polyline::get_renderer_id() { return polyline_data_ ? polyline_data_->vb()->renderer_id : 0; }

void Polyline::render_geometry(Renderer* renderer) {
  render_geometry_prepare(renderer);
  render_geometry_draw(renderer);
  render_geometry_finish(renderer);
}

void Polyline::render_geometry_prepare(Renderer* renderer) {
  if (!renderer || !polyline_data_) return;
  const GpuProgramData* program = renderer->get_current_gpu_program();
  polyline_data_->set_use_generic_vertex_attribs_state(
      program && program->get_use_generic_vertex_attribs_state());
  renderer->geometry_vbo_create(nullptr, polyline_data_);
  renderer->geometry_vbo_update(polyline_data_);
  renderer->geometry_vbo_bind(polyline_data_);
}

void Polyline::render_geometry_draw(Renderer* renderer) {
  if (renderer && polyline_data_) renderer->geometry_vbo_draw(polyline_data_);
}

void Polyline::render_geometry_finish(Renderer* renderer) {
  if (renderer && polyline_data_) renderer->geometry_vbo_unbind(polyline_data_);
}

void Polyline::set_tessellation_state(bool state, Node* node) {
  if (polyline_data_) polyline_data_->tessellation = state;
  Object::set_tessellation_state(state, node);
}

// ---- vertices ----

unsigned int Polyline::get_num_vertices(Node*) {
  return polyline_data_ ? polyline_data_->get_num_vertices() : 0;
}

void Polyline::set_vertices_color(float r, float g, float b, float a, Node* node) {
  set_vertices_color(vec4(r, g, b, a), node);
}

void Polyline::set_vertices_color(const vec4& color, Node* node) {
  const unsigned int n = get_num_vertices(nullptr);
  // Without colours, or after an allocation that failed, the first is refused and so is the rest.
  for (unsigned int i = 0; i < n && polyline_data_->set_color(i, color); ++i) {
  }
  Object::set_vertices_color(color, node);
}

bool Polyline::set_vertex_position(unsigned int i, float x, float y, float z) {
  return set_vertex_position(i, vec4(x, y, z, 1.0f));
}

bool Polyline::set_vertex_position(unsigned int i, float x, float y, float z, float w) {
  return set_vertex_position(i, vec4(x, y, z, w));
}

bool Polyline::set_vertex_position(unsigned int i, const vec3& v) {
  return set_vertex_position(i, vec4(v));
}

bool Polyline::set_vertex_position(unsigned int i, const vec4& v) {
  return polyline_data_ && polyline_data_->set_position(i, v);
}

bool Polyline::set_vertex_color(unsigned int i, const vec4& v) {
  return polyline_data_ && polyline_data_->set_color(i, v);
}

vec4 Polyline::get_vertex_position(unsigned int i) const {
  return polyline_data_ ? polyline_data_->get_position_4f(i) : vec4();
}

vec4 Polyline::get_vertex_color(unsigned int i) const {
  return polyline_data_ ? polyline_data_->get_color(i) : vec4();
}

void Polyline::set_vertex_start_offset(unsigned int n) {
  if (!polyline_data_) return;
  polyline_data_->draw_start = static_cast<int>(std::min(n, polyline_data_->num_vertices));
}

unsigned int Polyline::get_vertex_start_offset() const {
  return polyline_data_ ? static_cast<unsigned int>(polyline_data_->draw_start) : 0;
}

void Polyline::set_vertex_end_offset(unsigned int n) {
  if (!polyline_data_) return;
  PolylineData& data = *polyline_data_;
  const auto start = static_cast<unsigned int>(data.draw_start);
  data.draw_count = static_cast<int>(data.num_vertices - start - std::min(n, data.num_vertices));
}

unsigned int Polyline::get_vertex_end_offset() const {
  if (!polyline_data_) return 0;
  const PolylineData& data = *polyline_data_;
  return data.num_vertices - static_cast<unsigned int>(data.draw_start) -
         static_cast<unsigned int>(data.draw_count);
}

// ---- buffer ----

Vertex* Polyline::map_vertex_buffer(Renderer* renderer) {
  if (!renderer || !polyline_data_) return nullptr;
  polyline_data_->mapped_ptr = renderer->gpu_buffer_map(polyline_data_->vb(), "GL_WRITE_ONLY");
  return static_cast<Vertex*>(polyline_data_->mapped_ptr);
}

bool Polyline::unmap_vertex_buffer(Renderer* renderer) {
  if (!renderer || !polyline_data_) return false;
  renderer->gpu_buffer_unmap(polyline_data_->vb());
  polyline_data_->mapped_ptr = nullptr;
  return true;
}

void* Polyline::get_mapped_vertex_buffer() const {
  return polyline_data_ ? polyline_data_->mapped_ptr : nullptr;
}

}  // namespace orv
