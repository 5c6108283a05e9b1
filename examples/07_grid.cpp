// A grid on the ground: main lines, lines between them, and the two axes in colours of their own.
#include "common/example.h"

using namespace examples;
using orv::vec4;

class GroundGrid : public Example {
 public:
  bool create() override {
    look(vec4(5.5f, 6.2f, 12.5f), vec4(0.2f, -0.35f, 0.0f), 40.0f);
    grid_ = keep(new orv::Grid);
    grid_->set_size(12.0f, 12.0f);
    grid_->set_num_subdiv(24, 24);
    grid_->set_lines_color(0.46f, 0.51f, 0.58f, 1.0f);
    grid_->set_main_lines_color(0.86f, 0.88f, 0.90f, 1.0f);
    grid_->set_main_x_axis_color(RED.x, RED.y, RED.z, 1.0f);
    grid_->set_main_z_axis_color(0.35f, 0.62f, 1.0f, 1.0f);

    add(new orv::MeshBox, vec4(-2.0f, 0.5f, -1.5f), ORANGE);
    add(new orv::MeshBox, vec4(1.5f, 1.0f, 1.0f), TEAL)->set_scale(0.5f, 1.0f, 0.5f);
    add(new orv::MeshBox, vec4(3.0f, 0.25f, -3.0f), YELLOW)->set_scale(1.0f, 0.25f, 1.0f);
    boxes_[0]->set_scale(0.5f, 0.5f, 0.5f);
    return true;
  }

  void draw(float) override {
    for (orv::Mesh* box : boxes_) box->render(renderer, nullptr);
    orv::GpuProgram* flat = flat_material()->get_gpu_program();
    flat->bind(renderer);  // a grid is drawn with the program that is bound
    grid_->render(renderer, nullptr);
    flat->unbind(renderer);
  }

 private:
  orv::Mesh* add(orv::Mesh* mesh, const vec4& place, const vec4& color) {
    keep(mesh)->build(nullptr);
    mesh->set_vertices_color(color, nullptr);
    mesh->set_position(place);
    mesh->add_material(lit_material(), nullptr);
    boxes_.push_back(mesh);
    return mesh;
  }

  orv::Grid* grid_ = nullptr;
  std::vector<orv::Mesh*> boxes_;
};

int main(int argc, char** argv) { return run<GroundGrid>(argc, argv, "Grid"); }
