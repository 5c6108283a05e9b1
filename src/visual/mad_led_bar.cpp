#include <orv/visual/mad_led_bar.h>

#include <orv/geometry/vertex_pool.h>
#include <orv/render/renderer.h>

#include "visual/parts.h"

namespace orv {

namespace {

constexpr vec4 LED_OFF(0.2f, 0.2f, 0.2f, 1.0f);

}  // namespace

struct MadLedBarData {
  VertexPool* vertex_pool = nullptr;
  unsigned int num_leds = 0;
  vec3 start;
  vec3 end;
  float size = 0.0f;
  bool use_vertex_pool = false;
};

// ---- life and drawing ----

MadLedBar::MadLedBar() : data_(new MadLedBarData) { set_type(NODE_TYPE_MAD_LED_BAR); }

MadLedBar::~MadLedBar() {
  release_part(nullptr, data_->vertex_pool);
  delete data_;
}

bool MadLedBar::_cleanup(Renderer* renderer) {
  release_part(renderer, data_->vertex_pool);
  data_->num_leds = 0;
  return Object::_cleanup(renderer);
}

void MadLedBar::_render(Renderer* renderer) {
  if (!renderer || !data_->vertex_pool) return;
  GpuProgramData* program = renderer->get_current_gpu_program();
  if (program && data_->size > 0.0f) {
    renderer->gpu_program_set_uniform_1f(program, "point_size", data_->size);
  }
  data_->vertex_pool->_render(renderer);
}

void MadLedBar::set_opengl_2_3_rendering_states(bool legacy, Node* node) {
  if (data_->vertex_pool) data_->vertex_pool->set_opengl_2_3_rendering_states(legacy, nullptr);
  Object::set_opengl_2_3_rendering_states(legacy, node);
}

unsigned int MadLedBar::get_num_vertices(Node*) {
  return data_->vertex_pool ? data_->vertex_pool->get_num_vertices(nullptr) : 0;
}

Vertex* MadLedBar::get_vertex(unsigned int index) {
  return data_->vertex_pool ? data_->vertex_pool->get_vertex(index) : nullptr;
}

Vertex MadLedBar::get_vertex_v2(unsigned int index) {
  return data_->vertex_pool ? data_->vertex_pool->get_vertex_v2(index) : Vertex();
}

VertexPool* MadLedBar::get_vertex_pool() const { return data_->vertex_pool; }

// ---- lights ----

bool MadLedBar::initialize(const vec3& start, const vec3& end, unsigned int num_leds) {
  data_->start = start;
  data_->end = end;
  data_->use_vertex_pool = true;
  if (!data_->vertex_pool) data_->vertex_pool = make_part<VertexPool>(*this);
  const bool made = data_->vertex_pool->init_pool(num_leds, false);
  data_->num_leds = made ? num_leds : 0;
  _vp_update_leds_positions();
  for (unsigned int i = 0; i < data_->num_leds; ++i) set_led_color(i, LED_OFF);
  return made;
}

bool MadLedBar::initialize(const vec3& start, const vec3& end, unsigned int num_leds, float size) {
  data_->size = size;
  return initialize(start, end, num_leds);
}

unsigned int MadLedBar::get_num_leds() const { return data_->num_leds; }

bool MadLedBar::set_led_color(unsigned int led, const vec4& color) {
  if (!data_->use_vertex_pool) return _plane_set_led_color(led, color);
  return data_->vertex_pool && data_->vertex_pool->set_vertex_color(led, color);
}

bool MadLedBar::set_led_color(unsigned int led, float r, float g, float b, float a) {
  return set_led_color(led, vec4(r, g, b, a));
}

void MadLedBar::_vp_update_leds_positions() {
  const vec3 way = data_->end - data_->start;
  const auto n = static_cast<float>(data_->num_leds);
  for (unsigned int i = 0; i < data_->num_leds; ++i) {
    const vec3 share = way * static_cast<float>(i) / vec3(n, n, n);
    data_->vertex_pool->set_vertex_position(i, vec4(data_->start + share));
  }
}

bool MadLedBar::_plane_set_led_color(unsigned int, const vec4&) { return false; }

bool MadLedBar::_plane_set_led_normal(unsigned int, const vec3&) { return false; }

}  // namespace orv
