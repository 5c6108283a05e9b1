// A spline: places at given times, and a smooth way through them on which things travel.
#include <cmath>

#include "common/example.h"

using namespace examples;
using orv::vec4;

class Spline : public Example {
 public:
  bool create() override {
    look(vec4(4.0f, 6.0f, 13.5f), vec4(0.0f, 0.75f, 0.0f), 33.0f);
    spline_ = keep(new orv::MiniSpline);
    spline_->set_vertices_color(YELLOW, nullptr);
    for (int i = 0; i <= stations; ++i) {
      const float angle = static_cast<float>(i % stations) / stations * 6.2831853f;
      const float radius = i % 2 ? 3.0f : 4.2f;
      const float lift = 1.3f + 1.1f * std::sin(angle * 2.0f + 0.6f);
      const vec4 place(std::cos(angle) * radius, lift, std::sin(angle) * radius);
      spline_->add_keyframe(static_cast<float>(i), place.x, place.y, place.z);
      if (i < stations) add_station(place);
    }
    for (int i = 0; i < beads; ++i) add_ball(0.13f, ORANGE);

    floor_ = keep(new orv::MeshEllipse);
    floor_->set_build_params(5.0f, 5.0f, 96, 2, 360.0f);
    floor_->build(nullptr);
    floor_->set_vertices_color(GREY, nullptr);
    floor_->add_material(lit_material(), nullptr);
    return true;
  }

  void draw(float time) override {
    floor_->render(renderer, nullptr);
    for (int i = 0; i < beads; ++i) {
      const float t = time * 0.5f + static_cast<float>(i) * 0.2f;
      float place[3];
      spline_->get_value(std::fmod(t, static_cast<float>(stations)), place);
      balls_[static_cast<std::size_t>(stations + i)]->set_position(place[0], place[1], place[2]);
    }
    for (orv::Mesh* ball : balls_) ball->render(renderer, nullptr);
    for (orv::Line* post : posts_) post->render(renderer, nullptr);
    orv::GpuProgram* flat = flat_material()->get_gpu_program();
    flat->bind(renderer);  // a spline is drawn with the program that is bound
    spline_->render(renderer, nullptr);
    flat->unbind(renderer);
  }

 private:
  static constexpr int stations = 8;
  static constexpr int beads = 10;

  orv::Mesh* add_ball(float radius, const vec4& color) {
    orv::MeshSphere* ball = keep(new orv::MeshSphere);
    ball->set_build_params(radius, 24, 32);
    ball->build(nullptr);
    ball->set_vertices_color(color, nullptr);
    ball->add_material(lit_material(), nullptr);
    balls_.push_back(ball);
    return ball;
  }

  // A ball at the place of a keyframe, on a post.
  void add_station(const vec4& place) {
    add_ball(0.2f, BLUE)->set_position(place);
    orv::Line* post = keep(new orv::Line);
    post->set_build_params(place.get_vec3(), orv::vec3(place.x, 0.0f, place.z));
    post->build(nullptr);
    post->set_vertices_color(WHITE, nullptr);
    post->add_material(flat_material(), nullptr);
    posts_.push_back(post);
  }

  orv::MiniSpline* spline_ = nullptr;
  orv::MeshEllipse* floor_ = nullptr;
  std::vector<orv::Mesh*> balls_;
  std::vector<orv::Line*> posts_;
};

int main(int argc, char** argv) { return run<Spline>(argc, argv, "Spline"); }
