#include <orv/visual/mini_spline.h>

#include <orv/render/renderer.h>

#include <algorithm>

#include "visual/mini_spline_data.h"
#include "visual/parts.h"

namespace orv {

namespace {

constexpr int DIM = 3;
constexpr int KEY_SIZE = DIM + 1;

/// Weight of each of the four keys around a place: ((c0 * u + c1) * u + c2) * u + c3, halved.
constexpr float WEIGHTS[4][4] = {{-1.0f, 2.0f, -1.0f, 0.0f},
                                 {3.0f, -5.0f, 0.0f, 2.0f},
                                 {-3.0f, 4.0f, 1.0f, 0.0f},
                                 {1.0f, -1.0f, 0.0f, 0.0f}};

}  // namespace

// ---- life and drawing ----

MiniSpline::MiniSpline() : data_(new MiniSplineData) { set_type(NODE_TYPE_MINI_SPLINE); }

MiniSpline::~MiniSpline() {
  release_part(nullptr, data_->line);
  delete data_;
}

bool MiniSpline::_cleanup(Renderer* renderer) {
  release_part(renderer, data_->line);
  data_->dirty_line = true;
  return Object::_cleanup(renderer);
}

void MiniSpline::render(Renderer* renderer, Node*) {
  if (!renderer || data_->keyframes.empty()) return;
  if (data_->dirty_line && !update_line()) return;
  data_->line->render(renderer, nullptr);
}

bool MiniSpline::update_line() {
  if (!data_->line) {
    data_->line = make_part<Polyline>(*this);
    const auto n = static_cast<unsigned int>(data_->num_render_samples);
    if (!data_->line->initialize(n, LINE_RENDER_LINE_STRIP)) {
      release_part(nullptr, data_->line);
      return false;
    }
    data_->line->set_vertices_color(data_->color, nullptr);
  }
  data_->dirty_line = false;
  const float first = data_->keyframes.front().time;
  const float length = data_->keyframes.back().time - first;
  const auto last_sample = static_cast<float>(data_->num_render_samples - 1);
  for (int i = 0; i < data_->num_render_samples; ++i) {
    float place[DIM];
    get_value(first + length * (static_cast<float>(i) / last_sample), place);
    data_->line->set_vertex_position(static_cast<unsigned int>(i), place[0], place[1], place[2]);
  }
  return true;
}

void MiniSpline::set_vertices_color(const vec4& color, Node* node) {
  data_->color = color;
  if (data_->line) data_->line->set_vertices_color(color, nullptr);
  Object::set_vertices_color(color, node);
}

void MiniSpline::set_vertices_color(float r, float g, float b, float a, Node* node) {
  set_vertices_color(vec4(r, g, b, a), node);
}

// ---- keyframes ----

unsigned int MiniSpline::add_keyframe(float time, float x, float y, float z) {
  data_->keyframes.push_back({time, {x, y, z}});
  data_->dirty_size = data_->dirty_values = data_->dirty_line = true;
  return get_num_keyframes() - 1;
}

bool MiniSpline::set_keyframe(unsigned int index, float time, float x, float y, float z) {
  if (index >= data_->keyframes.size()) return false;
  data_->keyframes[index] = {time, {x, y, z}};
  data_->dirty_values = data_->dirty_line = true;
  return true;
}

unsigned int MiniSpline::get_num_keyframes() const {
  return static_cast<unsigned int>(data_->keyframes.size());
}

// ---- values ----

void MiniSpline::get_value(float t, float* out3) {
  if (!out3) return;
  pack_keys();
  eval_spline(data_->packed_keys.data(), static_cast<int>(get_num_keyframes()), DIM, t, out3);
}

void MiniSpline::pack_keys() {
  if (data_->dirty_size) {
    data_->dirty_size = false;
    data_->packed_keys.resize(data_->keyframes.size() * KEY_SIZE);
  }
  if (!data_->dirty_values) return;
  data_->dirty_values = false;
  float* packed = data_->packed_keys.data();
  for (const MiniSplineData::Keyframe& key : data_->keyframes) {
    *packed++ = key.time;
    packed = std::copy_n(key.values, DIM, packed);
  }
}

void MiniSpline::eval_spline(const float* keys, int num_keys, int dim, float t, float* out) {
  std::fill_n(out, dim, 0.0f);
  if (num_keys < 1) return;
  const int size = dim + 1;
  const auto key = [=](int i) { return keys + static_cast<std::ptrdiff_t>(i) * size; };
  const int last = num_keys - 1;
  if (num_keys == 1) {
    std::copy_n(key(0) + 1, dim, out);
    return;
  }
  // In this form a time that is no number counts as the first.
  if (!(t > *key(0))) t = *key(0);
  if (t > *key(last)) t = *key(last);
  int k = 0;
  while (k < last && !(t <= *key(k))) ++k;
  k = std::max(k, 1);
  const float length = *key(k) - *key(k - 1);
  const float u = length != 0.0f ? (t - *key(k - 1)) / length : 0.0f;
  for (int i = 0; i < 4; ++i) {
    const float* c = WEIGHTS[i];
    const float weight = 0.5f * (((c[0] * u + c[1]) * u + c[2]) * u + c[3]);
    const float* values = key(std::clamp(k - 2 + i, 0, last)) + 1;
    for (int d = 0; d < dim; ++d) out[d] += weight * values[d];
  }
}

}  // namespace orv
