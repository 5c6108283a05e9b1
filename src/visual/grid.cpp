#include <orv/visual/grid.h>

#include <orv/geometry/polyline.h>
#include <orv/math/vec4.h>

#include <algorithm>
#include <vector>

#include "visual/parts.h"

namespace orv {

namespace {

/// Lines as they are gathered, two vertices each.
class LineList {
 public:
  void add(const vec4& from, const vec4& to, const vec4& color) {
    positions_.push_back(from);
    positions_.push_back(to);
    colors_.insert(colors_.end(), 2, color);
  }
  /// Makes them the vertices of a polyline, which has none when there are no lines.
  void write_to(Polyline& polyline) const {
    const auto n = static_cast<unsigned int>(positions_.size());
    polyline.free_polyline_data();
    if (n == 0 || !polyline.initialize(n, LINE_RENDER_LINES)) return;
    for (unsigned int i = 0; i < n; ++i) {
      polyline.set_vertex_position(i, positions_[i]);
      polyline.set_vertex_color(i, colors_[i]);
    }
  }

 private:
  std::vector<vec4> positions_;
  std::vector<vec4> colors_;
};

/// One set of parallel lines.
struct Side {
  bool along_x;
  float length;  ///< of a line
  float spread;  ///< from the first line to the last
  int cells;
  vec4 axis_color;

  void add_line(LineList& list, float place, const vec4& color) const {
    const float end = length * 0.5f;
    if (along_x) {
      list.add(vec4(-end, 0.0f, place, 1.0f), vec4(end, 0.0f, place, 1.0f), color);
    } else {
      list.add(vec4(place, 0.0f, -end, 1.0f), vec4(place, 0.0f, end, 1.0f), color);
    }
  }
  float place(int i) const {
    // The border is met exactly, whatever the cells' size is rounded to.
    if (i == cells) return spread * 0.5f;
    return spread * -0.5f + spread / static_cast<float>(cells) * static_cast<float>(i);
  }
};

}  // namespace

struct GridData {
  float width = 10.0f;
  float depth = 10.0f;
  int num_subdiv_x = 10;
  int num_subdiv_z = 10;
  bool display_main_lines = true;
  bool display_subdiv_lines = true;
  vec4 main_lines_color = vec4(1.0f, 1.0f, 0.0f, 1.0f);
  vec4 lines_color = vec4(0.7f, 0.7f, 0.7f, 1.0f);
  vec4 main_x_axis_color = vec4(1.0f, 0.0f, 0.0f, 1.0f);
  vec4 main_z_axis_color = vec4(0.0f, 0.0f, 1.0f, 1.0f);
  Polyline* main_lines = nullptr;
  Polyline* subdiv_lines = nullptr;
  bool dirty = true;

  void rebuild();
};

void GridData::rebuild() {
  constexpr int MAX_CELLS = 4096;
  const Side sides[2] = {
      {true, width, depth, std::min(num_subdiv_z, MAX_CELLS), main_x_axis_color},
      {false, depth, width, std::min(num_subdiv_x, MAX_CELLS), main_z_axis_color}};
  LineList main_list, subdiv_list;
  // Where lines cross at the same depth, the first one drawn is seen: the axes.
  for (const Side& side : sides) {
    if (display_main_lines) side.add_line(main_list, 0.0f, side.axis_color);
  }
  for (const Side& side : sides) {
    for (int i = 0; side.cells > 0 && i <= side.cells; ++i) {
      if (2 * i == side.cells) continue;
      const bool outer = i == 0 || i == side.cells;
      if (outer && display_main_lines) side.add_line(main_list, side.place(i), main_lines_color);
      if (!outer && display_subdiv_lines) side.add_line(subdiv_list, side.place(i), lines_color);
    }
  }
  main_list.write_to(*main_lines);
  subdiv_list.write_to(*subdiv_lines);
}

// ---- life and drawing ----

Grid::Grid() : data_(new GridData) { set_type(NODE_TYPE_GRID); }

Grid::~Grid() {
  release_part(nullptr, data_->main_lines);
  release_part(nullptr, data_->subdiv_lines);
  delete data_;
}

bool Grid::_cleanup(Renderer* renderer) {
  release_part(renderer, data_->main_lines);
  release_part(renderer, data_->subdiv_lines);
  data_->dirty = true;
  return Object::_cleanup(renderer);
}

void Grid::_render(Renderer* renderer) {
  if (!renderer) return;
  if (!data_->main_lines) {
    data_->main_lines = make_part<Polyline>(*this);
    data_->subdiv_lines = make_part<Polyline>(*this);
  }
  if (data_->dirty) {
    data_->dirty = false;
    data_->rebuild();
  }
  for (Polyline* lines : {data_->main_lines, data_->subdiv_lines}) {
    if (lines->get_num_vertices(nullptr) > 0) lines->render(renderer, nullptr);
  }
}

// ---- parameters ----

void Grid::set_size(float width, float depth) {
  data_->width = width;
  data_->depth = depth;
  data_->dirty = true;
}

void Grid::set_num_subdiv(int num_x, int num_z) {
  data_->num_subdiv_x = num_x;
  data_->num_subdiv_z = num_z;
  data_->dirty = true;
}

void Grid::set_display_lines_options(bool main_lines, bool subdiv_lines) {
  data_->display_main_lines = main_lines;
  data_->display_subdiv_lines = subdiv_lines;
  data_->dirty = true;
}

void Grid::set_lines_color(float r, float g, float b, float a) {
  data_->lines_color = vec4(r, g, b, a);
  data_->dirty = true;
}

void Grid::set_main_lines_color(float r, float g, float b, float a) {
  data_->main_lines_color = vec4(r, g, b, a);
  data_->dirty = true;
}

void Grid::set_main_x_axis_color(float r, float g, float b, float a) {
  data_->main_x_axis_color = vec4(r, g, b, a);
  data_->dirty = true;
}

void Grid::set_main_z_axis_color(float r, float g, float b, float a) {
  data_->main_z_axis_color = vec4(r, g, b, a);
  data_->dirty = true;
}

}  // namespace orv
