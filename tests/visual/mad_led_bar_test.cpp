#include <orv/visual/mad_led_bar.h>

#include <orv/geometry/vertex_pool.h>
#include <orv/gpu/gpu_program.h>
#include <orv/gpu/gpu_program_data.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/held.h"
#include "support/log_capture.h"
#include "visual/draw_watcher.h"

namespace orv {
namespace {

using test::DrawWatcher;
using test::Held;
using test::LogCapture;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using testing::StartsWith;

TEST(MadLedBar, StartsWithoutLights) {
  const Held<MadLedBar> bar;
  EXPECT_EQ(bar->get_type(), NODE_TYPE_MAD_LED_BAR);
  EXPECT_EQ(bar->get_num_leds(), 0u);
  EXPECT_EQ(bar->get_vertex_pool(), nullptr);
  EXPECT_EQ(bar->get_num_vertices(nullptr), 0u);
  EXPECT_EQ(bar->get_vertex(0), nullptr);
  EXPECT_EQ(bar->get_vertex_v2(0).position, Vertex().position);
  EXPECT_FALSE(bar->set_led_color(0, vec4()));
  bar->set_opengl_2_3_rendering_states(true, nullptr);
  DrawWatcher renderer;
  bar->render(&renderer, nullptr);
  EXPECT_TRUE(renderer.calls().empty());
}

TEST(MadLedBar, FourLightsFromZeroToOneStandAQuarterApart) {
  const Held<MadLedBar> bar;
  EXPECT_TRUE(bar->initialize(vec3(0, 0, 0), vec3(1, 0, 0), 4));
  EXPECT_EQ(bar->get_num_leds(), 4u);
  const float expected[] = {0.0f, 0.25f, 0.5f, 0.75f};
  for (unsigned int i = 0; i < 4; ++i) {
    EXPECT_EQ(bar->get_vertex_v2(i).position, vec4(expected[i], 0, 0, 1)) << i;
    EXPECT_EQ(bar->get_vertex_v2(i).color, vec4(0.2f, 0.2f, 0.2f, 1)) << i;
  }
}

TEST(MadLedBar, PoolIsInterleavedCountedAndMovesWithTheBar) {
  const Held<MadLedBar> bar;
  ASSERT_TRUE(bar->initialize(vec3(1, 2, 3), vec3(5, 6, 7), 2));
  VertexPool* pool = bar->get_vertex_pool();
  ASSERT_NE(pool, nullptr);
  EXPECT_EQ(pool->get_ref(), 1);
  EXPECT_EQ(pool->get_parent(), bar.get());
  EXPECT_NE(pool->get_pool_ptr(), nullptr);
  EXPECT_EQ(pool->get_vertex_position(1), vec4(3, 4, 5, 1));
  EXPECT_EQ(bar->get_vertex(1), pool->get_vertex(1));
  EXPECT_EQ(bar->get_num_vertices(nullptr), 2u);
  EXPECT_EQ(bar->get_num_vertices_v2(nullptr), 2u) << "counted once";
}

TEST(MadLedBar, ColorsAreSetLightByLight) {
  const Held<MadLedBar> bar;
  ASSERT_TRUE(bar->initialize(vec3(), vec3(1, 0, 0), 3));
  EXPECT_TRUE(bar->set_led_color(1, vec4(1, 0, 0, 1)));
  EXPECT_TRUE(bar->set_led_color(2, 0, 1, 0, 0.5f));
  EXPECT_FALSE(bar->set_led_color(3, vec4(1, 1, 1, 1)));
  EXPECT_EQ(bar->get_vertex_v2(0).color, vec4(0.2f, 0.2f, 0.2f, 1));
  EXPECT_EQ(bar->get_vertex_v2(1).color, vec4(1, 0, 0, 1));
  EXPECT_EQ(bar->get_vertex_v2(2).color, vec4(0, 1, 0, 0.5f));
}

TEST(MadLedBar, MayBeInitialisedAgain) {
  const LogCapture log(LOG_LEVEL_ERROR);
  const Held<MadLedBar> bar;
  ASSERT_TRUE(bar->initialize(vec3(), vec3(1, 0, 0), 3));
  const VertexPool* pool = bar->get_vertex_pool();
  bar->set_led_color(0, vec4(1, 0, 0, 1));
  ASSERT_TRUE(bar->initialize(vec3(), vec3(0, 8, 0), 8));
  EXPECT_EQ(bar->get_vertex_pool(), pool);
  EXPECT_EQ(bar->get_num_leds(), 8u);
  EXPECT_EQ(bar->get_vertex_v2(7).position, vec4(0, 7, 0, 1));
  EXPECT_EQ(bar->get_vertex_v2(0).color, vec4(0.2f, 0.2f, 0.2f, 1));
  EXPECT_TRUE(log.lines().empty());
  EXPECT_FALSE(bar->initialize(vec3(), vec3(1, 0, 0), 0));
  EXPECT_FALSE(log.lines().empty());
  EXPECT_EQ(bar->get_num_leds(), 0u);
  EXPECT_FALSE(bar->set_led_color(0, vec4()));
}

TEST(MadLedBar, RenderDrawsThePoolAsPoints) {
  DrawWatcher renderer;
  const Held<MadLedBar> bar;
  ASSERT_TRUE(bar->initialize(vec3(), vec3(1, 0, 0), 3));
  bar->render(&renderer, nullptr);
  bar->render(nullptr, nullptr);
  ASSERT_EQ(renderer.draws.size(), 1u);
  EXPECT_EQ(renderer.draws[0].primitive, PRIMITIVE_POINTS);
  EXPECT_EQ(renderer.draws[0].count, 3);
}

TEST(MadLedBar, SizeGoesToTheCurrentProgramOnlyWhenGiven) {
  DrawWatcher renderer;
  const Held<GpuProgram> program;
  renderer.label(program->get_data_ptr(), "program");
  const Held<MadLedBar> bar;
  ASSERT_TRUE(bar->initialize(vec3(), vec3(1, 0, 0), 2));
  renderer.set_current_program(program->get_data_ptr());
  bar->render(&renderer, nullptr);
  EXPECT_EQ(renderer.count("gpu_program_set_uniform_1f"), 0);
  ASSERT_TRUE(bar->initialize(vec3(), vec3(1, 0, 0), 2, 12.0f));
  bar->render(&renderer, nullptr);
  EXPECT_THAT(renderer.calls(),
              Contains("gpu_program_set_uniform_1f(program, \"point_size\", 12)"));
  renderer.clear();
  renderer.set_current_program(nullptr);
  bar->render(&renderer, nullptr);
  EXPECT_THAT(renderer.names(), Not(Contains(StartsWith("gpu_program_set_uniform"))));
}

TEST(MadLedBar, RenderingStatesReachThePool) {
  const Held<MadLedBar> bar;
  ASSERT_TRUE(bar->initialize(vec3(), vec3(1, 0, 0), 2));
  for (const bool legacy : {true, false}) {
    bar->set_opengl_2_3_rendering_states(legacy, nullptr);
    EXPECT_EQ(bar->get_use_generic_vertex_attribs_state(), !legacy);
    EXPECT_EQ(bar->get_vertex_pool()->get_use_generic_vertex_attribs_state(), !legacy);
  }
}

TEST(MadLedBar, CleanupReleasesThePoolWithTheRenderer) {
  DrawWatcher renderer;
  const Held<MadLedBar> bar;
  ASSERT_TRUE(bar->initialize(vec3(), vec3(1, 0, 0), 2));
  EXPECT_TRUE(bar->cleanup(&renderer, nullptr));
  EXPECT_EQ(renderer.count("geometry_vbo_destroy"), 1);
  EXPECT_EQ(bar->get_vertex_pool(), nullptr);
  EXPECT_EQ(bar->get_num_leds(), 0u);
  EXPECT_FALSE(bar->set_led_color(0, vec4()));
  EXPECT_TRUE(bar->initialize(vec3(), vec3(1, 0, 0), 2)) << "it can be made again";
}

}  // namespace
}  // namespace orv
