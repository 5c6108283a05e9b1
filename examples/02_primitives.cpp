// Every shape that a mesh can generate for itself.
#include "common/example.h"

using namespace examples;
using orv::vec4;

class Primitives : public Example {
 public:
  bool create() override {
    look(vec4(0.0f, 3.2f, 19.0f), vec4(0.0f, 0.0f, 0.0f), 28.0f);

    add<orv::MeshBox>(RED, 1.5f, 1.5f, 1.5f, 1, 1, 1);
    add<orv::MeshSphere>(ORANGE, 1.0f, 32, 48);
    add<orv::MeshTorus>(YELLOW, 1.15f, 0.35f, 48);
    add<orv::MeshPQTorus>(GREEN, 256, 24, 0.75f, 0.2f, 0.0f, 0.0f, 0.0f, 1.0f, 1.0f, 2.0f, 3.0f);

    add<orv::MeshCylinder>(TEAL, 0.7f, 1.6f, 3, 48);
    add<orv::MeshPlane>(BLUE, 2.0f, 2.0f, 4, 4);
    add<orv::MeshQuad>(VIOLET, 1.8f, 1.3f);
    add<orv::MeshTriangle>(RED, vec4(-1.0f, -0.8f, 0.0f), vec4(1.0f, -0.8f, 0.0f),
                           vec4(0.0f, 0.9f, 0.0f));

    add<orv::MeshDisc>(ORANGE, 1.1f, 0.5f, 48);
    add<orv::MeshEllipse>(YELLOW, 1.2f, 0.7f, 48, 2, 360.0f);
    add<orv::MeshEllipse>(GREEN, 1.1f, 1.1f, 48, 2, 270.0f);  // a sector of one
    add<orv::MeshBox8v>(TEAL, 1.6f, 1.2f, 1.2f);

    // Those that stand upright lean back, the others forward.
    shapes_[6]->set_orientation_euler_xyz(-20.0f, 25.0f, 0.0f);
    shapes_[7]->set_orientation_euler_xyz(-20.0f, 25.0f, 0.0f);
    return true;
  }

  void draw(float) override {
    for (std::size_t i = 0; i < shapes_.size(); ++i) {
      // The last one is a box of eight shared vertices, made for edges rather than for light.
      const bool edges = i + 1 == shapes_.size();
      renderer->rasterizer_set_polygon_mode(
          edges ? orv::RENDERER_POLYGON_MODE_LINE : orv::RENDERER_POLYGON_MODE_FILL,
          orv::RENDERER_POLYGON_FACE_FRONT_AND_BACK);
      renderer->rasterizer_apply();
      shapes_[i]->render(renderer, nullptr);
    }
    renderer->rasterizer_set_polygon_mode(orv::RENDERER_POLYGON_MODE_FILL,
                                          orv::RENDERER_POLYGON_FACE_FRONT_AND_BACK);
    renderer->rasterizer_apply();
  }

 private:
  // Parameters wait for the next build. Shapes are nodes, with a place in space and materials.
  template <class Shape, class... Parameters>
  void add(const vec4& color, Parameters... parameters) {
    Shape* shape = keep(new Shape);
    shape->set_build_params(parameters...);
    shape->build(nullptr);
    shape->set_vertices_color(color, nullptr);
    shape->add_material(lit_material(), nullptr);

    const int column = static_cast<int>(shapes_.size()) % 4;
    const int row = static_cast<int>(shapes_.size()) / 4;
    shape->set_position(static_cast<float>(column) * 3.0f - 4.5f,
                        2.8f - static_cast<float>(row) * 2.8f, 0.0f);
    shape->set_orientation_euler_xyz(35.0f, 25.0f, 0.0f);
    shapes_.push_back(shape);
  }

  std::vector<orv::Mesh*> shapes_;
};

int main(int argc, char** argv) { return run<Primitives>(argc, argv, "Mesh primitives"); }
