#include <orv/geometry/shapes/sphere.h>

#include <orv/geometry/shapes/circle.h>

#include "geometry/shapes/line_shapes.h"

namespace orv {

namespace {

/// One drawing of the circle: the axis it goes round and the angles that turn Z there.
struct Turn {
  int axis;
  float x, y;
};

constexpr Turn TURNS[3] = {{2, 0.0f, 0.0f}, {0, 0.0f, 90.0f}, {1, 90.0f, 0.0f}};
constexpr vec4 AXIS_COLORS[3] = {{1.0f, 0.0f, 0.0f}, {0.0f, 1.0f, 0.0f}, {0.0f, 0.0f, 1.0f}};

}  // namespace

Sphere::Sphere() { set_type(NODE_TYPE_SPHERE); }

Sphere::~Sphere() { release_circle(nullptr); }

bool Sphere::set_params(float radius, unsigned int num_segments, float r, float g, float b,
                        float a) {
  radius_ = radius;
  num_segments_ = num_segments;
  color_ = vec4(r, g, b, a);
  update_build_state(true);
  return true;
}

bool Sphere::set_build_params(float radius, unsigned int num_segments, float r, float g, float b,
                              float a) {
  return set_params(radius, num_segments, r, g, b, a);
}

// ---- life and drawing ----

void Sphere::release_circle(Renderer* renderer) {
  if (!circle_) return;
  Circle* circle = circle_;
  circle_ = nullptr;
  if (circle->get_parent() == this) remove_child(circle);
  circle->release(renderer, nullptr);
}

bool Sphere::_cleanup(Renderer* renderer) {
  release_circle(renderer);
  return Object::_cleanup(renderer);
}

bool Sphere::build(Node*) { return build_line_shape(*this); }

bool Sphere::_build() {
  update_build_state(false);
  if (!circle_) {
    circle_ = new Circle;
    circle_->add_ref();
    add_child(circle_);
  }
  circle_->set_params(radius_, num_segments_, color_.x, color_.y, color_.z, color_.w);
  if (!circle_->build(nullptr)) return false;
  return Object::_build();
}

void Sphere::_render(Renderer* renderer) {
  if (!renderer || !circle_) return;
  for (const Turn& turn : TURNS) {
    circle_->set_orientation_euler_xyz(turn.x, turn.y, 0.0f);
    if (axis_color_[turn.axis]) {
      circle_->set_vertices_color(AXIS_COLORS[turn.axis], nullptr);
    }
    circle_->_render(renderer);
  }
  circle_->set_orientation_euler_xyz(0.0f, 0.0f, 0.0f);
}

// ---- changes ----

bool Sphere::update_radius(float radius) {
  radius_ = radius;
  if (circle_) circle_->update_radius(radius);
  return true;
}

bool Sphere::update_color(float r, float g, float b, float a) {
  color_ = vec4(r, g, b, a);
  if (circle_) circle_->update_color(r, g, b, a);
  return true;
}

void Sphere::enable_rgb_color(bool state) {
  for (bool& axis : axis_color_) axis = state;
  if (!state && circle_) circle_->set_vertices_color(color_, nullptr);
}

bool Sphere::get_rgb_color_state(int axis) const {
  return axis >= 0 && axis < 3 && axis_color_[axis];
}

}  // namespace orv
