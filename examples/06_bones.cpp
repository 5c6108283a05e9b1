// Wire shapes: bones that hang on one another, boxes round what they carry, circles, a pyramid.
#include "common/example.h"

using namespace examples;
using orv::vec4;

class Bones : public Example {
 public:
  bool create() override {
    look(vec4(0.0f, 3.4f, 18.0f), vec4(0.1f, 2.6f, 0.0f), 23.0f);
    add_arm();
    add_marks();
    return true;
  }

  void draw(float time) override {
    const float bend = 33.0f + 6.0f * (time - still_time);
    for (std::size_t i = 1; i < arm_.size(); ++i) {
      arm_[i]->set_orientation_euler_xyz(0.0f, 0.0f, -bend);
    }
    for (orv::Bone* bone : arm_) bone->render(renderer, nullptr);
    knot_->render(renderer, nullptr);
    for (orv::Object* mark : marks_) mark->render(renderer, nullptr);
  }

 private:
  // Each bone starts at the tip of the one that it is a child of, and moves along with it.
  void add_arm() {
    const vec4 colors[] = {ORANGE, YELLOW, GREEN, TEAL};
    const float radius = 0.25f;
    float length = 1.8f;
    for (const vec4& color : colors) {
      orv::Bone* bone = new orv::Bone;
      bone->set_build_params(radius, 32, length, color.x, color.y, color.z, 1.0f);
      bone->build(nullptr);
      bone->add_material(flat_material(), nullptr);
      if (arm_.empty()) {
        keep(bone)->set_position(-3.7f, 0.2f, 0.0f);
        bone->set_orientation_euler_xyz(0.0f, 0.0f, 8.0f);
      } else {
        arm_.back()->add_child(bone);
        bone->set_position(0.0f, radius + arm_.back()->get_length(), 0.0f);
      }
      arm_.push_back(bone);
      length *= 0.84f;
    }
  }

  // A mesh, and what its bounding volume says of it.
  void add_marks() {
    knot_ = keep(new orv::MeshPQTorus);
    knot_->set_build_params(256, 24, 1.0f, 0.22f, 0.0f, 0.0f, 0.0f, 1.0f, 1.0f, 2.0f, 3.0f);
    knot_->bounding_sphere_use_inscribed_sphere(false);  // the sphere round the box, not in it
    knot_->build(nullptr);
    knot_->set_vertices_color(BLUE, nullptr);
    knot_->set_position(2.1f, 2.5f, 0.0f);
    knot_->set_orientation_euler_xyz(0.0f, 25.0f, 0.0f);
    knot_->add_material(lit_material(), nullptr);
    knot_->bounding_volume_update(true, nullptr);  // in the world, too

    orv::Box* box = mark(new orv::Box, *knot_);
    box->set_build_params(1.0f, 1.0f, 1.0f, 0.95f, 0.95f, 0.95f, 1.0f);
    box->build(nullptr);
    box->update_size_from_bv(knot_->bounding_volume_get());

    orv::Sphere* sphere = mark(new orv::Sphere, *knot_);
    sphere->set_build_params(knot_->get_bounding_sphere_radius(), 64, 1.0f, 1.0f, 1.0f, 1.0f);
    sphere->enable_rgb_color(true);
    sphere->build(nullptr);
    sphere->set_position(knot_->get_global_bounding_sphere_center());

    orv::Pyramid* light = mark(new orv::Pyramid, *knot_);
    light->set_build_params(0.7f, 0.9f, YELLOW.x, YELLOW.y, YELLOW.z, 1.0f);
    light->build(nullptr);
    light->set_position(-1.7f, 0.2f, 0.0f);
    orv::Circle* circle = mark(new orv::Circle, *knot_);
    circle->set_build_params(0.55f, 48, YELLOW.x, YELLOW.y, YELLOW.z, 1.0f);
    circle->build(nullptr);
    circle->set_position(-1.7f, 0.2f, 0.0f);
    circle->set_orientation_euler_xyz(90.0f, 0.0f, 0.0f);
  }

  template <class Shape>
  Shape* mark(Shape* shape, orv::Object& at) {
    shape->add_material(flat_material(), nullptr);
    shape->set_position(at.get_position());
    shape->set_orientation(at.get_orientation());
    marks_.push_back(keep(shape));
    return shape;
  }

  std::vector<orv::Bone*> arm_;
  orv::MeshPQTorus* knot_ = nullptr;
  std::vector<orv::Object*> marks_;
};

int main(int argc, char** argv) { return run<Bones>(argc, argv, "Bones and boxes"); }
