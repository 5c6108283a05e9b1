// A plot of curves that scroll: when there are more values than vertices, the newest are shown.
#include <cmath>

#include "common/example.h"

using namespace examples;
using orv::vec4;

class Graph : public Example {
 public:
  bool create() override {
    background_top = background_bottom = vec4(0.11f, 0.13f, 0.17f, 1.0f);
    still_time = 6.0f;
    graph_ = keep(new orv::Graph2d);
    const vec4 colors[] = {ORANGE, TEAL + vec4(0.1f, 0.15f, 0.15f, 0.0f), VIOLET, GREEN};
    for (unsigned int i = 0; i < 4; ++i) {
      if (!graph_->create_curve(400)) return fail("no memory for a curve");
      graph_->set_curve_color(i, colors[i].x, colors[i].y, colors[i].z, 1.0f);
    }
    orv::Math::srnd(5);
    return true;
  }

  void draw(float time) override {
    for (; clock_ + 0.01f <= time; clock_ += 0.01f) add_values();

    // The graph has a viewport of its own; the camera's projection is centred in it.
    const int w = width - 48, h = height - 48;
    graph_->set_viewport(24, 24, w, h);
    const float right = static_cast<float>(w - 1), top = static_cast<float>(h - 1);
    const float middle = std::floor(top * 0.5f) + 0.5f;
    graph_->set_x_axis_positions(vec4(1.0f, middle, 0.0f), vec4(right, middle, 0.0f));
    graph_->set_y_axis_positions(vec4(1.0f, 0.0f, 0.0f), vec4(1.0f, top, 0.0f));
    graph_->set_x_axis_color(WHITE, GREY);
    graph_->set_y_axis_color(WHITE, GREY);
    flat_camera_.build_projection_ortho(-static_cast<float>(w) * 0.5f, static_cast<float>(w) * 0.5f,
                                        -static_cast<float>(h) * 0.5f, static_cast<float>(h) * 0.5f,
                                        -1.0f, 1.0f, true);
    flat_camera_.set_viewport(24, 24, w, h);
    flat_camera_.set_position(0.0f, 0.0f, 0.0f);
    flat_camera_.bind(renderer, true, true, true, true, true);

    orv::GpuProgram* flat = flat_material()->get_gpu_program();
    flat->bind(renderer);  // a graph is drawn with the program that is bound
    graph_->render(renderer, nullptr);
    flat->unbind(renderer);
  }

 private:
  // One value for each curve, in pixels from the middle.
  void add_values() {
    const float t = clock_;
    noise_ = noise_ * 0.96f + orv::Math::rnd(-6.0f, 6.0f);
    graph_->add_curve_scalar(0, (56.0f + 28.0f * std::sin(t * 1.3f)) * std::sin(t * 6.0f));
    graph_->add_curve_scalar(1, 60.0f * std::sin(t * 2.1f) + 25.0f * std::sin(t * 9.7f));
    graph_->add_curve_scalar(2, -60.0f + noise_);
    graph_->add_curve_scalar(3, std::fmod(t, 1.5f) < 0.75f ? 125.0f : 95.0f);
  }

  orv::Graph2d* graph_ = nullptr;
  orv::Camera flat_camera_;
  float clock_ = 0.0f;
  float noise_ = 0.0f;
};

int main(int argc, char** argv) { return run<Graph>(argc, argv, "Graph"); }
