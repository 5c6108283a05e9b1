// A vertex pool draws points: a galaxy of 20,000 stars, each with a colour and a size.
#include <algorithm>
#include <cmath>

#include "common/example.h"

using namespace examples;
using orv::vec4;

namespace {

// The size rides in the position's w. On the screen it is a whole number of pixels, since profiles
// differ in what they make of fractions.
const char* const vertex = R"(
ATTRIBUTE vec4 orvex_Position;
ATTRIBUTE vec4 orvex_Color;
uniform mat4 orvex_ModelViewProjectionMatrix;
uniform float picture_height;
VARYING vec4 color;

void main() {
  color = orvex_Color;
  gl_Position = orvex_ModelViewProjectionMatrix * vec4(orvex_Position.xyz, 1.0);
  gl_PointSize = floor(orvex_Position.w * picture_height * 0.11 / gl_Position.w + 0.5);
}
)";

const char* const pixel = R"(
VARYING vec4 color;

void main() {
  float glow = max(1.0 - length(gl_PointCoord * 2.0 - 1.0), 0.0);
  PIXEL = vec4(color.rgb * glow * glow, 1.0);
}
)";

}  // namespace

class Stars : public Example {
 public:
  bool create() override {
    look(vec4(0.0f, 8.5f, 13.0f), vec4(0.0f, -0.4f, 0.0f), 38.0f);
    background_top = background_bottom = vec4(0.015f, 0.015f, 0.03f, 1.0f);
    program_ = make_program("stars", vertex, pixel);
    if (!program_) return false;

    stars_ = keep(new orv::VertexPool);
    if (!stars_->init_pool(count, false)) return fail("no memory for the stars");
    stars_->set_point_sprite_state(true);  // gl_PointCoord runs over each point
    orv::Math::srnd(11);
    for (unsigned int i = 0; i < count; ++i) place(i);
    return true;
  }

  void draw(float time) override {
    stars_->set_orientation_euler_xyz(0.0f, time * 12.0f, 0.0f);
    renderer->enable_blending(true);
    renderer->set_blend_func(orv::RENDERER_BLEND_FACTOR_ONE, orv::RENDERER_BLEND_FACTOR_ONE);
    renderer->set_depth_mask(false);  // light adds up, in any order
    program_->set_uniform_1f(nullptr, "picture_height", static_cast<float>(height));
    program_->bind(renderer);  // a pool is drawn with the program that is bound
    stars_->render(renderer, nullptr);
    program_->unbind(renderer);
    renderer->set_depth_mask(true);
    renderer->enable_blending(false);
  }

 private:
  static constexpr unsigned int count = 20000;

  // Two arms that wind round a bulge; stars scatter about them.
  void place(unsigned int i) {
    using orv::Math;
    const float t = std::pow(Math::rnd(1.0f), 1.3f);
    const float scatter = Math::rnd(-1.0f, 1.0f) * Math::rnd(1.0f) * 0.7f;
    const float angle = 8.5f * std::sqrt(t) + (i % 2 ? 3.1416f : 0.0f) + scatter;
    const float radius = 0.25f + 5.6f * t + Math::rnd(-0.35f, 0.35f);
    const float lift = Math::rnd(-1.0f, 1.0f) * Math::rnd(0.55f) * (1.2f - t);
    stars_->set_vertex_position(i, std::cos(angle) * radius, lift, std::sin(angle) * radius,
                                0.6f + 2.6f * std::pow(Math::rnd(1.0f), 9.0f));
    const vec4 warm(1.0f, 0.78f, 0.50f), cold(0.42f, 0.58f, 1.0f), rose(1.0f, 0.38f, 0.52f);
    vec4 color = warm + (cold - warm) * std::min(1.0f, t * 1.8f);
    if (Math::rnd(1.0f) < 0.06f) color = rose;
    stars_->set_vertex_color(i, color * (0.35f + Math::rnd(0.5f)));
  }

  orv::GpuProgram* program_ = nullptr;
  orv::VertexPool* stars_ = nullptr;
};

int main(int argc, char** argv) { return run<Stars>(argc, argv, "Vertex pool"); }
