// Ribbons: bands along points, here the trails of three balls that fly upwards round each other.
#include <cmath>

#include "common/example.h"
#include "common/shaders.h"

using namespace examples;
using orv::vec4;

namespace {

// The second texture coordinate of a ribbon runs from 0 at its first point to 1 at its last.
const char* const pixel = R"(
VARYING vec3 view_normal;
VARYING vec2 uv;
uniform vec4 tint;

void main() {
  float light = abs(dot(normalize(view_normal), normalize(vec3(-0.3, 0.6, 0.7))));
  float edge = smoothstep(0.0, 0.16, 0.5 - abs(uv.x - 0.5));
  vec3 color = mix(vec3(1.0), tint.rgb, edge) * (0.4 + 0.7 * light);
  PIXEL = vec4(color, smoothstep(0.0, 0.5, uv.y));
}
)";

}  // namespace

class Ribbons : public Example {
 public:
  bool create() override {
    look(vec4(0.0f, 6.0f, 15.0f), vec4(0.0f, 2.1f, 0.0f), 30.0f);
    program_ = make_program("ribbon", surface_vertex, pixel);
    if (!program_) return false;
    orv::Material* material = make_material("ribbon", program_);
    for (int i = 0; i < 3; ++i) {
      ribbons_[i] = keep(new orv::MeshRibbon);
      ribbons_[i]->set_thickness(0.55f);
      ribbons_[i]->set_cross_vector(vec4(0.0f, 1.0f, 0.0f, 0.0f));  // the band stands upright
      ribbons_[i]->add_material(material, nullptr);
      balls_[i] = keep(new orv::MeshSphere);
      balls_[i]->set_build_params(0.36f, 32, 48);
      balls_[i]->build(nullptr);
      balls_[i]->set_vertices_color(tints[i], nullptr);
      balls_[i]->add_material(lit_material(), nullptr);
    }
    return true;
  }

  void draw(float time) override {
    renderer->set_blend_func(orv::RENDERER_BLEND_FACTOR_SRC_ALPHA,
                             orv::RENDERER_BLEND_FACTOR_ONE_MINUS_SRC_ALPHA);
    for (int i = 0; i < 3; ++i) {
      fly(i, time);
      balls_[i]->render(renderer, nullptr);
    }
    renderer->enable_blending(true);
    for (int i = 0; i < 3; ++i) {
      program_->set_uniform_4f(nullptr, "tint", tints[i]);
      ribbons_[i]->render(renderer, nullptr);
    }
    renderer->enable_blending(false);
  }

 private:
  // Where a ball is at `t`, from 0 at the start of its trail to 1.
  static vec4 place(int i, float t, float time) {
    const float angle = 7.5f * t + static_cast<float>(i) * 2.0944f + time * 0.6f;
    const float radius = 4.3f - 2.4f * t;
    return vec4(std::cos(angle) * radius, 4.6f * t, std::sin(angle) * radius);
  }

  // A trail that moves is built anew: points are cleared, added, and the next build uses them.
  void fly(int i, float time) {
    constexpr int points = 120;
    ribbons_[i]->clear_points_list();
    for (int k = 0; k <= points; ++k) {
      ribbons_[i]->add_point(place(i, static_cast<float>(k) / static_cast<float>(points), time));
    }
    ribbons_[i]->build(nullptr);
    balls_[i]->set_position(place(i, 1.0f, time));
  }

  orv::GpuProgram* program_ = nullptr;
  orv::MeshRibbon* ribbons_[3] = {};
  orv::MeshSphere* balls_[3] = {};
  const vec4 tints[3] = {RED, TEAL, YELLOW};
};

int main(int argc, char** argv) { return run<Ribbons>(argc, argv, "Ribbons"); }
