// Bars of lights, as on an amplifier: each light is a point with a colour of its own.
#include <cmath>

#include "common/example.h"

using namespace examples;
using orv::vec3;
using orv::vec4;

namespace {

// A bar hands its size to the uniform "point_size".
const char* const vertex = R"(
ATTRIBUTE vec4 orvex_Position;
ATTRIBUTE vec4 orvex_Color;
uniform mat4 orvex_ModelViewProjectionMatrix;
uniform float point_size;
VARYING vec4 color;

void main() {
  color = orvex_Color;
  gl_Position = orvex_ModelViewProjectionMatrix * vec4(orvex_Position.xyz, 1.0);
  gl_PointSize = point_size;
}
)";

const char* const pixel = R"(
VARYING vec4 color;

void main() {
  float r = length(gl_PointCoord * 2.0 - 1.0);
  float lamp = 1.0 - smoothstep(0.56, 0.66, r);
  float shine = exp(-r * r * 7.0) * 0.14;
  float halo = max(1.0 - r, 0.0) * 0.22 * color.a;
  PIXEL = vec4(color.rgb * (lamp + halo) + vec3(shine) * color.a * lamp, 1.0);
}
)";

}  // namespace

class LedBars : public Example {
 public:
  bool create() override {
    look(vec4(0.0f, 0.0f, 10.0f), vec4(0.0f, 0.0f, 0.0f), 36.0f);
    background_top = background_bottom = vec4(0.05f, 0.055f, 0.07f, 1.0f);
    program_ = make_program("lights", vertex, pixel);
    if (!program_) return false;
    for (int i = 0; i < bars; ++i) {
      const float x = (static_cast<float>(i) - (bars - 1) * 0.5f) * 0.47f;
      bars_[i] = keep(new orv::MadLedBar);
      // The last light stands one step short of the end.
      if (!bars_[i]->initialize(vec3(x, -2.5f, 0.0f), vec3(x, 2.75f, 0.0f), lights, 22.0f)) {
        return fail("no memory for the lights");
      }
      bars_[i]->get_vertex_pool()->set_point_sprite_state(true);
    }
    return true;
  }

  void draw(float time) override {
    renderer->enable_blending(true);
    renderer->set_blend_func(orv::RENDERER_BLEND_FACTOR_ONE, orv::RENDERER_BLEND_FACTOR_ONE);
    renderer->enable_depth_test(false);
    program_->bind(renderer);
    for (int i = 0; i < bars; ++i) {
      show_level(*bars_[i], level(static_cast<float>(i), time));
      bars_[i]->render(renderer, nullptr);
    }
    program_->unbind(renderer);
    renderer->enable_depth_test(true);
    renderer->enable_blending(false);
  }

 private:
  static constexpr int bars = 16;
  static constexpr unsigned int lights = 15;

  // From 0 to 1.
  static float level(float i, float time) {
    const float hill = std::exp(-(i - 4.0f) * (i - 4.0f) / 22.0f);
    const float wave = 0.5f + 0.5f * std::sin(i * 1.9f + time * 5.0f);
    return 0.12f + 0.62f * hill + 0.25f * wave;
  }

  static void show_level(orv::MadLedBar& bar, float level) {
    for (unsigned int k = 0; k < lights; ++k) {
      const float share = (static_cast<float>(k) + 0.5f) / static_cast<float>(lights);
      const vec4 color = share > 0.8f ? RED : share > 0.6f ? YELLOW : GREEN;
      const bool on = share < level;
      bar.set_led_color(k, color.x * (on ? 1.0f : 0.16f), color.y * (on ? 1.0f : 0.16f),
                        color.z * (on ? 1.0f : 0.16f), on ? 1.0f : 0.0f);
    }
  }

  orv::GpuProgram* program_ = nullptr;
  orv::MadLedBar* bars_[bars] = {};
};

int main(int argc, char** argv) { return run<LedBars>(argc, argv, "LED bars"); }
