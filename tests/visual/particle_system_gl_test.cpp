// A fountain of particles as real OpenGL draws it.
#include <orv/math/math.h>
#include <orv/math/vec3.h>
#include <orv/visual/particle_action.h>
#include <orv/visual/particle_emitter.h>
#include <orv/visual/particle_pool.h>
#include <orv/visual/particle_system.h>

#include "render/opengl/gl_fixture.h"
#include "support/held.h"

namespace orv::test {
namespace {

class ParticleSystemGlTest : public GlTest {
 protected:
  void SetUp() override {
    GlTest::SetUp();
    if (IsSkipped()) return;
    Math::srnd(8);
    renderer.set_viewport(0, 0, 0, 64, 64);
    // Sizes arrive as w of the position.
    load_program(&program,
                 "ATTRIB vec4 orvex_Position; ATTRIB vec4 orvex_Color; OUT vec4 color;\n"
                 "void main() {\n"
                 "  color = vec4(orvex_Position.w, orvex_Color.ga, 1.0);\n"
                 "  gl_Position = vec4(orvex_Position.xyz, 1.0);\n"
                 "}",
                 "IN vec4 color; void main() { pixel = color; }");
    ASSERT_TRUE(renderer.gpu_program_bind(&program));
  }
  void TearDown() override {
    if (!IsSkipped()) {
      system->_cleanup(&renderer);
      renderer.gpu_program_unload(&program);
    }
    GlTest::TearDown();
  }

  // Every particle from one place, in one direction, at one speed.
  ParticleEmitter* add_nozzle(const vec3& place, const vec3& direction, float speed) {
    ParticleEmitter* emitter = system->create_emitter();
    emitter->set_spawn_positions(place, place);
    emitter->set_spawn_directions(direction, direction);
    emitter->set_particle_speed(speed);
    emitter->set_particle_speed_variance(0.0f);
    return emitter;
  }
  void draw() {
    clear();
    system->render(&renderer, nullptr);
  }
  int lit_pixels() {
    int count = 0;
    for (int y = 0; y < 64; ++y) {
      for (int x = 0; x < 64; ++x) count += context.pixel(x, y) != BLACK ? 1 : 0;
    }
    return count;
  }
  // Mean row of what is lit.
  double lit_height() {
    double sum = 0.0, count = 0.0;
    for (int y = 0; y < 64; ++y) {
      for (int x = 0; x < 64; ++x) {
        if (context.pixel(x, y) == BLACK) continue;
        sum += y;
        count += 1.0;
      }
    }
    return count > 0.0 ? sum / count : -1.0;
  }

  // The middle of pixel (32, 32).
  static constexpr float MIDDLE = 1.0f / 64.0f;

  Held<ParticleSystem> system;
  GpuProgramData program;
};

TEST_P(ParticleSystemGlTest, ParticleBringsPlaceSizeAndAlpha) {
  system->initialize(100);
  add_nozzle(vec3(MIDDLE, MIDDLE, 0), vec3(0, 1, 0), 0.5f)->set_particle_rate(1.0f);
  ParticleAction* size = system->create_action();
  size->set_action_type(PARTICLE_ACTION_SIZE);
  size->add_size(0.0f);
  size->add_size(1.0f);
  system->set_particle_lifetime(4.0f);
  system->update(1.0f, nullptr);
  draw();
  EXPECT_EQ(center(), (Pixel{255, 255, 191, 255})) << "size 1, alpha 3/4";
  EXPECT_EQ(lit_pixels(), 1);

  // From now on it moves: half the picture's half in a second.
  system->create_action()->set_gravity(0, 0, 0);
  system->get_emitter_by_index(0)->set_particle_rate(0.0f);
  system->update(1.0f, nullptr);
  draw();
  EXPECT_EQ(center(), BLACK);
  EXPECT_EQ(context.pixel(32, 48), (Pixel{191, 255, 128, 255})) << "size 3/4, alpha 1/2";
  EXPECT_EQ(lit_pixels(), 1);

  system->update(2.0f, nullptr);
  draw();
  EXPECT_EQ(lit_pixels(), 0) << "dead";
}

TEST_P(ParticleSystemGlTest, FountainRisesAndFalls) {
  system->initialize(500);
  system->set_particle_lifetime(1.6f);
  ParticleEmitter* jet = add_nozzle(vec3(0, -0.9f, 0), vec3(0, 1, 0), 3.0f);
  jet->set_spawn_directions(vec3(-0.2f, 0.9f, 0), vec3(0.2f, 1, 0));
  jet->set_particle_rate(2000.0f);
  system->create_action()->set_gravity(0, -4.0f, 0);
  for (int i = 0; i < 4; ++i) system->update(0.05f, nullptr);
  draw();
  const double young = lit_height();
  EXPECT_GT(lit_pixels(), 40);
  EXPECT_LT(lit_pixels(), 500);
  jet->set_particle_rate(0.0f);
  for (int i = 0; i < 11; ++i) system->update(0.05f, nullptr);
  draw();
  const double top = lit_height();
  EXPECT_GT(top, young + 5.0);
  for (int i = 0; i < 13; ++i) system->update(0.05f, nullptr);
  draw();
  const double falling = lit_height();
  EXPECT_GE(falling, 0.0) << "still in the picture";
  EXPECT_LT(falling, top - 5.0);
  for (int i = 0; i < 9; ++i) system->update(0.05f, nullptr);
  draw();
  EXPECT_EQ(lit_pixels(), 0);
  EXPECT_EQ(system->get_num_alive_particles(), 0u);
}

TEST_P(ParticleSystemGlTest, OnlyTheLivingAreDrawn) {
  system->initialize(64);
  ParticlePool& pool = *system->get_particle_pool();
  for (unsigned int i = 0; i < 64; ++i) {
    pool.positions[i] = vec3((static_cast<float>(i) - 31.5f) / 32.0f, MIDDLE, 0);
  }
  for (int frame = 0; frame < 8; ++frame) {
    for (unsigned int i = 0; i < 64; ++i) pool.lifetimes[i] = Math::rnd(-1.0f, 1.0f);
    draw();
    for (int x = 0; x < 64; ++x) {
      EXPECT_EQ(context.pixel(x, 32) != BLACK, pool.lifetimes[x] > 0.0f) << frame << ": " << x;
    }
  }
}

TEST_P(ParticleSystemGlTest, CanBeStartedAnew) {
  for (const unsigned int slots : {3u, 70u}) {
    ASSERT_TRUE(system->initialize(slots));
    add_nozzle(vec3(MIDDLE, MIDDLE, 0), vec3(), 0.0f);
    system->update(0.1f, nullptr);
    draw();
    EXPECT_EQ(lit_pixels(), 1);
    EXPECT_TRUE(system->terminate(&renderer));
    draw();
    EXPECT_EQ(lit_pixels(), 0);
  }
}

ORV_BOTH_PROFILES(ParticleSystemGlTest);

}  // namespace
}  // namespace orv::test
