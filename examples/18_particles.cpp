// A fountain: an emitter, gravity, and a size that changes along each particle's life.
#include "common/example.h"

using namespace examples;
using orv::vec3;
using orv::vec4;

namespace {

// The system draws points: the size rides in the position's w, the time left in the alpha. Sizes
// are whole pixels, since profiles differ in what they make of fractions.
const char* const vertex = R"(
ATTRIBUTE vec4 orvex_Position;
ATTRIBUTE vec4 orvex_Color;
uniform mat4 orvex_ModelViewProjectionMatrix;
uniform float picture_height;
VARYING float life;

void main() {
  life = orvex_Color.a;
  gl_Position = orvex_ModelViewProjectionMatrix * vec4(orvex_Position.xyz, 1.0);
  gl_PointSize = floor(orvex_Position.w * picture_height * 1.4 / gl_Position.w + 0.5);
}
)";

const char* const pixel = R"(
VARYING float life;

void main() {
  float glow = max(1.0 - length(gl_PointCoord * 2.0 - 1.0), 0.0);
  vec3 color = mix(vec3(0.95, 0.22, 0.16), vec3(1.0, 0.52, 0.16), smoothstep(0.1, 0.5, life));
  color = mix(color, vec3(1.0, 0.86, 0.55), smoothstep(0.6, 1.0, life));
  PIXEL = vec4(color * glow * min(life * 5.0, 1.0) * 0.8, 1.0);
}
)";

}  // namespace

class Fountain : public Example {
 public:
  bool create() override {
    look(vec4(0.0f, 2.6f, 9.0f), vec4(0.0f, 1.1f, 0.0f), 28.0f);
    still_time = 4.0f;
    background_top = vec4(0.05f, 0.06f, 0.10f, 1.0f);
    background_bottom = vec4(0.13f, 0.14f, 0.20f, 1.0f);
    program_ = make_program("sparks", vertex, pixel);
    if (!program_) return false;

    orv::Math::srnd(3);  // the same sparks at every start
    system_ = keep(new orv::ParticleSystem);
    system_->set_particle_lifetime(1.9f);
    system_->initialize(4000);
    system_->get_particle_pool()->vertex_pool->set_point_sprite_state(true);

    orv::ParticleEmitter* emitter = system_->create_emitter();
    emitter->set_particle_rate(1100.0f);
    emitter->set_particle_speed(6.0f);
    emitter->set_particle_speed_variance(0.5f);
    emitter->set_spawn_positions(vec3(-0.06f, 0.0f, -0.06f), vec3(0.06f, 0.0f, 0.06f));
    emitter->set_spawn_directions(vec3(-0.24f, 0.9f, -0.24f), vec3(0.24f, 1.0f, 0.24f));

    // Gravity moves the particles, too. Of the sizes the last one is that at birth.
    system_->create_action()->set_gravity(0.0f, -7.5f, 0.0f);
    orv::ParticleAction* size = system_->create_action();
    size->set_action_type(orv::PARTICLE_ACTION_SIZE);
    for (float s : {0.06f, 0.12f, 0.14f, 0.14f, 0.10f}) size->add_size(s);

    bowl_ = keep(new orv::MeshTorus);
    bowl_->set_build_params(2.0f, 0.16f, 64);
    bowl_->build(nullptr);
    bowl_->set_vertices_color(GREY, nullptr);
    bowl_->add_material(lit_material(), nullptr);
    return true;
  }

  void draw(float time) override {
    constexpr float step = 1.0f / 60.0f;
    for (; clock_ + step <= time; clock_ += step) system_->update(step, nullptr);

    bowl_->render(renderer, nullptr);
    renderer->enable_blending(true);
    renderer->set_blend_func(orv::RENDERER_BLEND_FACTOR_ONE, orv::RENDERER_BLEND_FACTOR_ONE);
    renderer->set_depth_mask(false);
    program_->set_uniform_1f(nullptr, "picture_height", static_cast<float>(height));
    program_->bind(renderer);
    system_->render(renderer, nullptr);
    program_->unbind(renderer);
    renderer->set_depth_mask(true);
    renderer->enable_blending(false);
  }

 private:
  orv::GpuProgram* program_ = nullptr;
  orv::ParticleSystem* system_ = nullptr;
  orv::MeshTorus* bowl_ = nullptr;
  float clock_ = 0.0f;
};

int main(int argc, char** argv) { return run<Fountain>(argc, argv, "Particle fountain"); }
