#include <orv/visual/graph2d.h>

#include <orv/geometry/shapes/curve.h>
#include <orv/geometry/shapes/line.h>
#include <orv/scene/viewport.h>

#include <algorithm>
#include <cstddef>
#include <vector>

#include "visual/parts.h"

namespace orv {

namespace {

constexpr vec4 WHITE(1.0f, 1.0f, 1.0f, 1.0f);

/// A curve with the values that were added to it.
struct Plot {
  Curve* curve;
  std::vector<vec4> scalars = {};
  unsigned long long forgotten = 0;  ///< values that were added before those

  unsigned int num_vertices() const { return curve->get_num_vertices(nullptr); }
  void add(const vec4& value);
};

// Plots run for days: of values that can't come into sight again only some are kept.
void Plot::add(const vec4& value) {
  constexpr std::size_t KEPT = 65536;
  scalars.push_back(value);
  const std::size_t kept = std::max(KEPT, std::size_t{4} * num_vertices());
  if (scalars.size() < 2 * kept) return;
  const std::size_t surplus = scalars.size() - kept;
  scalars.erase(scalars.begin(), scalars.begin() + static_cast<std::ptrdiff_t>(surplus));
  forgotten += surplus;
}

}  // namespace

struct Graph2dData {
  std::vector<Plot> plots;
  Line* axis_line = nullptr;
  Viewport viewport;
  bool viewport_enabled = true;
  vec4 x_axis_positions[2] = {vec4(), vec4(100.0f, 0.0f, 0.0f, 1.0f)};
  vec4 x_axis_colors[2] = {WHITE, WHITE};
  vec4 y_axis_positions[2] = {vec4(), vec4(0.0f, 100.0f, 0.0f, 1.0f)};
  vec4 y_axis_colors[2] = {WHITE, WHITE};
  vec4 plot_start;
  vec4 plot_end;

  Plot* plot(unsigned int i) { return i < plots.size() ? &plots[i] : nullptr; }
  /// Half the viewport, by which all is moved; nothing when that is switched off.
  vec4 shift() const {
    if (!viewport_enabled) return vec4(0.0f, 0.0f, 0.0f, 0.0f);
    return vec4(static_cast<float>(viewport.width) * 0.5f,
                static_cast<float>(viewport.height) * 0.5f, 0.0f, 0.0f);
  }
  // By value: hosts may hand in an end that is being stored.
  void store_axis(vec4 (&axis)[2], vec4 start, vec4 end) const {
    const vec4 offset = shift();
    axis[0] = vec4(start.x - offset.x, start.y - offset.y, start.z, start.w);
    axis[1] = vec4(end.x - offset.x, end.y - offset.y, end.z, end.w);
  }
  bool sync(const Plot& plot) const;
};

bool Graph2dData::sync(const Plot& plot) const {
  const unsigned int num_vertices = plot.num_vertices();
  const std::size_t num_scalars = plot.scalars.size();
  if (num_scalars == 0 || num_vertices == 0) return false;
  const std::size_t shown = std::min<std::size_t>(num_scalars, num_vertices);
  const vec4* scalar = plot.scalars.data() + (num_scalars - shown);
  const float step = (plot_end.x - plot_start.x) / static_cast<float>(num_vertices);
  const vec4 offset = shift();
  for (unsigned int i = 0; i < shown; ++i) {
    plot.curve->set_vertex_position(i, plot_start.x + step * static_cast<float>(i) - offset.x,
                                    scalar[i].y + plot_start.y - offset.y, scalar[i].z,
                                    scalar[i].w);
  }
  plot.curve->get_polyline_data()->set_vertex_draw_range(0, static_cast<int>(num_vertices));
  return true;
}

// ---- life and drawing ----

Graph2d::Graph2d() : data_(new Graph2dData) {
  set_type(NODE_TYPE_GRAPH2D);
  data_->axis_line = make_part<Line>(*this);
}

Graph2d::~Graph2d() {
  Graph2d::kill_all_curves(nullptr);
  release_part(nullptr, data_->axis_line);
  delete data_;
}

bool Graph2d::_cleanup(Renderer* renderer) {
  kill_all_curves(renderer);
  release_part(renderer, data_->axis_line);
  return Object::_cleanup(renderer);
}

void Graph2d::_render(Renderer* renderer) {
  draw_axis(renderer);
  draw_all_curves(renderer);
}

// ---- curves ----

Curve* Graph2d::create_curve(unsigned int num_vertices) {
  Curve* curve = make_part<Curve>(*this);
  if (!curve->alloc(num_vertices)) {
    release_part(nullptr, curve);
    return nullptr;
  }
  data_->plots.push_back({curve});
  return curve;
}

Curve* Graph2d::get_curve(unsigned int curve) const {
  const Plot* plot = data_->plot(curve);
  return plot ? plot->curve : nullptr;
}

unsigned int Graph2d::get_num_curves() const {
  return static_cast<unsigned int>(data_->plots.size());
}

bool Graph2d::kill_curve(Renderer* renderer, Curve* curve) {
  if (!curve) return false;
  std::vector<Plot>& plots = data_->plots;
  const auto found = std::find_if(plots.begin(), plots.end(),
                                  [=](const Plot& plot) { return plot.curve == curve; });
  if (found == plots.end()) return false;
  plots.erase(found);
  release_part(renderer, curve);
  return true;
}

bool Graph2d::kill_all_curves(Renderer* renderer) {
  for (Plot& plot : data_->plots) release_part(renderer, plot.curve);
  data_->plots.clear();
  return true;
}

// ---- values ----

unsigned int Graph2d::add_curve_scalar(unsigned int curve, float value) {
  return add_curve_position(curve, vec4(0.0f, value, 0.0f, 1.0f));
}

unsigned int Graph2d::add_curve_position(unsigned int curve, const vec4& position) {
  Plot* plot = data_->plot(curve);
  if (!plot) return 0;
  plot->add(position);
  return 1;
}

bool Graph2d::sync_curve_scalars(unsigned int curve) {
  const Plot* plot = data_->plot(curve);
  return plot && data_->sync(*plot);
}

unsigned int Graph2d::curve_get_diff_points(unsigned int curve) const {
  const Plot* plot = data_->plot(curve);
  if (!plot) return 0;
  const unsigned long long added = plot->forgotten + plot->scalars.size();
  const unsigned long long shown = plot->num_vertices();
  return added > shown ? static_cast<unsigned int>(added - shown) : 0;
}

bool Graph2d::set_curve_color(unsigned int curve, float r, float g, float b, float a) {
  const Plot* plot = data_->plot(curve);
  if (!plot) return false;
  plot->curve->set_vertices_color(r, g, b, a, nullptr);
  return true;
}

bool Graph2d::set_curve_value(unsigned int curve, unsigned int index, const vec4& value) {
  const Plot* plot = data_->plot(curve);
  return plot && plot->curve->set_value(index, value);
}

bool Graph2d::set_curve_value(unsigned int curve, unsigned int index, float x, float y, float z,
                              float w) {
  return set_curve_value(curve, index, vec4(x, y, z, w));
}

// ---- drawing ----

bool Graph2d::draw_axis(Renderer* renderer) {
  Line* line = data_->axis_line;
  if (!renderer || !line) return false;
  const auto draw = [=](const vec4(&positions)[2], const vec4(&colors)[2]) {
    line->set_start_position(positions[0].get_vec3());
    line->set_end_position(positions[1].get_vec3());
    line->set_start_color(colors[0]);
    line->set_end_color(colors[1]);
    line->render(renderer, nullptr);
  };
  draw(data_->x_axis_positions, data_->x_axis_colors);
  draw(data_->y_axis_positions, data_->y_axis_colors);
  return true;
}

bool Graph2d::draw_curve(Renderer* renderer, unsigned int curve) {
  const Plot* plot = data_->plot(curve);
  if (!renderer || !plot || !data_->sync(*plot)) return false;
  plot->curve->render(renderer, nullptr);
  return true;
}

bool Graph2d::draw_all_curves(Renderer* renderer) {
  if (!renderer) return false;
  for (unsigned int i = 0; i < get_num_curves(); ++i) draw_curve(renderer, i);
  return true;
}

// ---- axes and plot range ----

void Graph2d::set_x_axis_positions(const vec4& start, const vec4& end) {
  const vec4 ends[2] = {start, end};
  set_plot_range(ends[0], ends[1]);
  data_->store_axis(data_->x_axis_positions, ends[0], ends[1]);
}

void Graph2d::set_y_axis_positions(const vec4& start, const vec4& end) {
  data_->store_axis(data_->y_axis_positions, start, end);
}

void Graph2d::set_plot_range(const vec4& start, const vec4& end) {
  const vec4 new_end = end;  // `end` may be the old start
  data_->plot_start = start;
  data_->plot_end = new_end;
}

const vec4& Graph2d::get_plot_start() const { return data_->plot_start; }

const vec4& Graph2d::get_plot_end() const { return data_->plot_end; }

const vec4* Graph2d::get_x_axis_positions() const { return data_->x_axis_positions; }

const vec4* Graph2d::get_y_axis_positions() const { return data_->y_axis_positions; }

void Graph2d::set_x_axis_color(const vec4& start, const vec4& end) {
  data_->x_axis_colors[0] = start;
  data_->x_axis_colors[1] = end;
}

void Graph2d::set_y_axis_color(const vec4& start, const vec4& end) {
  data_->y_axis_colors[0] = start;
  data_->y_axis_colors[1] = end;
}

Line* Graph2d::get_axis_line() const { return data_->axis_line; }

// ---- viewport ----

void Graph2d::set_viewport(int x, int y, int width, int height) {
  data_->viewport.set(x, y, width, height);
}

const Viewport& Graph2d::get_viewport() const { return data_->viewport; }

void Graph2d::enable_viewport(bool state) { data_->viewport_enabled = state; }

bool Graph2d::is_viewport_enabled() const { return data_->viewport_enabled; }

}  // namespace orv
