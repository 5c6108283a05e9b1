// Axes: those of each object at its place, and those of the world in a corner of the window.
#include "common/example.h"

using namespace examples;
using orv::vec4;

class Tripods : public Example {
 public:
  bool create() override {
    look(vec4(2.5f, 3.6f, 9.0f), vec4(0.0f, -0.1f, 0.0f), 28.0f);
    const vec4 colors[] = {ORANGE, TEAL, VIOLET};
    for (int i = 0; i < 3; ++i) {
      orv::MeshBox* box = keep(new orv::MeshBox);
      box->set_build_params(1.1f, 0.7f, 0.9f, 1, 1, 1);
      box->build(nullptr);
      box->set_vertices_color(colors[i], nullptr);
      box->add_material(lit_material(), nullptr);
      boxes_[i] = box;
    }
    boxes_[0]->set_position(-2.1f, 0.0f, 0.0f);
    boxes_[1]->set_position(0.0f, 0.0f, 0.0f);
    boxes_[2]->set_position(2.1f, 0.0f, 0.0f);
    axes_.set_scale(1.25f);
    return axes_.init(renderer) && compass_.init(renderer);
  }

  void draw(float time) override {
    boxes_[1]->set_orientation_euler_xyz(0.0f, time * 20.0f, 0.0f);
    boxes_[2]->set_orientation_euler_xyz(30.0f, time * 20.0f, 20.0f);
    for (orv::MeshBox* box : boxes_) box->render(renderer, nullptr);
    // x red, y green, z blue; one visualizer serves any number of objects.
    for (orv::MeshBox* box : boxes_) axes_.render(renderer, box);
    compass_.render(renderer, &camera, 12, 12, height / 4, height / 4);
  }

  void destroy() override {
    axes_.cleanup(renderer);
    compass_.cleanup(renderer);
  }

 private:
  orv::MeshBox* boxes_[3] = {};
  orv::aux::TripodVisualizerObject axes_;
  orv::aux::TripodVisualizerCamera compass_;
};

int main(int argc, char** argv) { return run<Tripods>(argc, argv, "Tripod visualizers"); }
