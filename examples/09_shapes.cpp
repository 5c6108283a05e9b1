// Shapes by name: solids, surfaces, rocks, and plants that a small text program grows.
#include <cmath>
#include <cstring>

#include "common/example.h"

using namespace examples;
using orv::vec4;

namespace {

// Rings joined to a tube that winds in on itself.
const char* const shell = R"(
  call ring
  rule ring
    shape connect
    tz 0.55 ry 11 tx 0.04 rx 3 sa 0.968
    call ring
)";

// "call" runs a rule on a copy of the frame: the branch goes on where its stem ended, turned and
// smaller. Of the rules named "fork" the seed picks one, with the number for its weight.
const char* const tree = R"(
  rx -90
  call branch
  rule branch
    call stem
    tz 6.2
    sa 0.76
    call fork
  rule stem
    sz 7
    shape tube
  rule fork.3
    ry 24 call branch
    ry - 48 rz 40 call branch
  rule fork.2
    ry - 22 rz 50 call branch
    ry 46 rz 30 call branch
    ry - 24 rx 30 call branch
)";

}  // namespace

class Shapes : public Example {
 public:
  bool create() override {
    look(vec4(0.0f, 3.2f, 19.0f), vec4(0.0f, 0.15f, 0.0f), 28.0f);
    add("tetrahedron", RED);
    add("cube", ORANGE);
    add("octohedron", YELLOW);
    add("dodecahedron", GREEN);

    add("icosahedron", TEAL);
    add("subdivided_sphere", BLUE);
    add("sphere", VIOLET);
    add("rock", GREY);

    add("trefoil_knot", RED);
    add("klein_bottle", ORANGE);
    add("lsystem", YELLOW, shell, 24, 110);
    add("lsystem", GREEN, tree, 6, 15)->set_orientation_euler_xyz(0.0f, 0.0f, 0.0f);
    return true;
  }

  void draw(float) override {
    for (orv::Mesh* shape : shapes_) shape->render(renderer, nullptr);
  }

 private:
  orv::MeshParShape* add(const char* name, const vec4& color, const char* program = nullptr,
                         int slices = 0, int depth = 0) {
    orv::MeshParShape* shape = keep(new orv::MeshParShape);
    // The shape takes those parameters that it has, and leaves the others.
    shape->set_build_params_parametric_sphere(48, 32);
    shape->set_build_params_subdivided_sphere(3);
    shape->set_build_params_rock(5, 3);
    if (!std::strcmp(name, "trefoil_knot")) shape->set_build_params_trefoil_knot(20, 160);
    if (!std::strcmp(name, "klein_bottle")) shape->set_build_params_klein_bottle(40, 80);
    if (!std::strcmp(name, "lsystem")) shape->set_build_params_lsystem(slices, depth, program);
    shape->set_shape_type(name);
    shape->build(nullptr);
    // All in spheres of one size, in the middle of their places.
    const vec4 center = shape->get_bounding_sphere_center();
    shape->translate_vertices_position(vec4(-center.x, -center.y, -center.z), nullptr);
    float radius = 0.0f;
    for (unsigned int i = 0; i < shape->get_num_vertices(nullptr); ++i) {
      const vec4 p = shape->get_vertex_position(i);
      radius = std::fmax(radius, std::sqrt(p.x * p.x + p.y * p.y + p.z * p.z));
    }
    const float scale = 1.25f / radius;
    shape->scale_vertices_position(vec4(scale, scale, scale), nullptr);
    shape->set_vertices_color(color, nullptr);
    shape->add_material(lit_material(), nullptr);

    const int column = static_cast<int>(shapes_.size()) % 4;
    const int row = static_cast<int>(shapes_.size()) / 4;
    shape->set_position(static_cast<float>(column) * 3.0f - 4.5f,
                        2.8f - static_cast<float>(row) * 2.8f, 0.0f);
    shape->set_orientation_euler_xyz(25.0f, 25.0f, 0.0f);
    shapes_.push_back(shape);
    return shape;
  }

  std::vector<orv::Mesh*> shapes_;
};

int main(int argc, char** argv) { return run<Shapes>(argc, argv, "Parametric shapes"); }
