// Polylines: strips, loops and pairs of vertices, each vertex with a colour; and thick lines.
#include <cmath>

#include "common/example.h"

using namespace examples;
using orv::vec4;

class Lines : public Example {
 public:
  bool create() override {
    look(vec4(0.0f, 0.0f, 10.0f), vec4(0.0f, 0.0f, 0.0f), 40.0f);
    if (!renderer->is_api_version_at_least(3, 2)) return missing("geometry shaders (thick lines)");
    add_rosette();
    add_star();
    add_fan();
    for (int i = 0; i < 5; ++i) add_wave(i);
    return true;
  }

  void draw(float) override {
    for (orv::Polyline* line : lines_) line->render(renderer, nullptr);
  }

 private:
  static constexpr float turn = 6.2831853f;

  // A strip: a line through all vertices.
  void add_rosette() {
    constexpr unsigned int n = 1200;
    orv::Polyline* line = add(n, orv::LINE_RENDER_LINE_STRIP);
    for (unsigned int i = 0; i < n; ++i) {
      const float t = static_cast<float>(i) / static_cast<float>(n - 1);
      const float r = 1.35f * std::cos(turn * 7.0f * t / 5.0f * 5.0f) + 0.1f;
      const float a = turn * 5.0f * t;
      line->set_vertex_position(i, r * std::cos(a) - 2.9f, r * std::sin(a) + 1.7f, 0.0f);
      line->set_vertex_color(i, ORANGE * (1.0f - t) + YELLOW * t);
    }
  }

  // A loop: the same, closed.
  void add_star() {
    orv::Polyline* line = add(7, orv::LINE_RENDER_LINE_LOOP);
    for (unsigned int i = 0; i < 7; ++i) {
      const float a = turn * (static_cast<float>(i) * 3.0f / 7.0f + 0.25f);
      line->set_vertex_position(i, std::cos(a) * 1.4f, std::sin(a) * 1.4f + 1.7f, 0.0f);
      line->set_vertex_color(i, GREEN);
    }
  }

  // Pairs: a line of its own from each even vertex to the next.
  void add_fan() {
    constexpr unsigned int n = 48;
    orv::Polyline* line = add(n * 2, orv::LINE_RENDER_LINES);
    for (unsigned int i = 0; i < n; ++i) {
      const float a = turn * static_cast<float>(i) / static_cast<float>(n);
      const float b = a + 1.9f;
      line->set_vertex_position(i * 2, std::cos(a) * 1.4f + 2.9f, std::sin(a) * 1.4f + 1.7f, 0.0f);
      line->set_vertex_position(i * 2 + 1, std::cos(b) * 1.4f + 2.9f, std::sin(b) * 1.4f + 1.7f,
                                0.0f);
      line->set_vertex_color(i * 2, BLUE);
      line->set_vertex_color(i * 2 + 1, VIOLET);
    }
  }

  // A thick line needs two vertices more than it has points. It brings a program of its own.
  void add_wave(int index) {
    constexpr unsigned int points = 90;
    orv::Polyline* line = keep(new orv::Polyline);
    const float width_in_pixels = 1.5f + 2.0f * static_cast<float>(index);
    line->wideline_initialize(renderer, points + 2, width_in_pixels);
    for (unsigned int i = 0; i < points; ++i) {
      const float t = static_cast<float>(i) / static_cast<float>(points - 1);
      const float y = -0.35f - 0.62f * static_cast<float>(index) +
                      0.3f * std::sin(t * turn * 2.0f + static_cast<float>(index) * 0.7f);
      line->wideline_add_point(vec4(t * 8.4f - 4.2f, y, 0.0f), TEAL * (1.0f - t) + RED * t);
    }
    lines_.push_back(line);
  }

  orv::Polyline* add(unsigned int n, orv::LINE_RENDER_MODE mode) {
    orv::Polyline* line = keep(new orv::Polyline);
    line->initialize(n, mode);
    line->add_material(flat_material(), nullptr);
    lines_.push_back(line);
    return line;
  }

  std::vector<orv::Polyline*> lines_;
};

int main(int argc, char** argv) { return run<Lines>(argc, argv, "Polylines and thick lines"); }
