// Lines, thick lines and points as real OpenGL draws them.
#include <orv/geometry/point.h>
#include <orv/geometry/polyline.h>
#include <orv/geometry/shapes/line.h>
#include <orv/geometry/vertex_pool.h>
#include <orv/gpu/gpu_program.h>

#include "render/opengl/gl_fixture.h"
#include "support/held.h"

namespace orv::test {
namespace {

class LinesAndPointsGlTest : public GlTest {
 protected:
  void SetUp() override {
    GlTest::SetUp();
    if (IsSkipped()) return;
    renderer.set_viewport(0, 0, 0, 64, 64);
  }

  // The middle of pixel (32, 32).
  static constexpr float MIDDLE = 1.0f / 64.0f;
};

TEST_P(LinesAndPointsGlTest, LineIsDrawnWithoutAProgram) {
  Line line(vec3(-0.9f, MIDDLE, 0), vec3(0.9f, MIDDLE, 0));
  line.set_vertices_color(vec4(0, 1, 0, 1), nullptr);
  line.render(&renderer, nullptr);
  EXPECT_EQ(center(), GREEN);
  EXPECT_EQ(context.pixel(32, 34), BLACK);
  line._cleanup(&renderer);
}

TEST_P(LinesAndPointsGlTest, LineIsDrawnWithAProgram) {
  GpuProgramData program;
  load_color_program(&program);
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  Line line(vec3(-0.9f, MIDDLE, 0), vec3(0.9f, MIDDLE, 0));
  line.render(&renderer, nullptr);
  EXPECT_EQ(center(), WHITE);
  EXPECT_EQ(renderer.get_current_gpu_program(), &program) << "it bound none of its own";
  line._cleanup(&renderer);
  renderer.gpu_program_unload(&program);
}

TEST_P(LinesAndPointsGlTest, ThickLineIsAsWideAsTold) {
  Polyline line;
  if (!has_modern_shaders()) {
    EXPECT_FALSE(line.wideline_initialize_gpu_program(&renderer));
    context.take_errors();
    GTEST_SKIP() << "no geometry shaders in this OpenGL version";
  }
  ASSERT_TRUE(line.wideline_initialize(&renderer, 4, 16.0f));
  ASSERT_NE(line.get_wideline()->program, nullptr);
  EXPECT_EQ(line.wideline_add_point(vec4(-0.75f, 0, 0, 1), vec4(1, 0, 0, 1)), -1);
  EXPECT_EQ(line.wideline_add_point(vec4(0.75f, 0, 0, 1), vec4(0, 0, 1, 1)), 2);
  line.render(&renderer, nullptr);
  EXPECT_EQ(renderer.get_current_gpu_program(), nullptr);
  for (const int y : {25, 32, 38}) EXPECT_EQ(context.pixel(32, y), BLUE) << y;
  for (const int y : {22, 41}) EXPECT_EQ(context.pixel(32, y), BLACK) << y;
  EXPECT_EQ(context.pixel(4, 32), BLACK) << "before its start";
  EXPECT_EQ(context.pixel(60, 32), BLACK) << "behind its end";

  clear();
  EXPECT_TRUE(line.wideline_set_line_width(&renderer, 32.0f));
  line.render(&renderer, nullptr);
  EXPECT_EQ(context.pixel(32, 46), BLUE);
  EXPECT_EQ(context.pixel(32, 50), BLACK);
  line._cleanup(&renderer);
}

TEST_P(LinesAndPointsGlTest, ThickLineIsThinWithoutItsProgram) {
  Polyline line;
  ASSERT_TRUE(line.wideline_initialize(nullptr, 5, 16.0f));
  for (const float x : {-0.9f, -0.2f, 0.9f}) {
    line.wideline_add_point(vec4(x, MIDDLE, 0, 1), vec4(0, 1, 0, 1));
  }
  line.render(&renderer, nullptr);
  for (const int x : {8, 32, 58}) EXPECT_EQ(context.pixel(x, 32), GREEN) << x;
  for (const int y : {29, 35}) EXPECT_EQ(context.pixel(32, y), BLACK) << y;
  EXPECT_EQ(context.pixel(1, 32), BLACK) << "the first vertex gives adjacency alone";
  line._cleanup(&renderer);
}

// Without a geometry shader the inner two vertices of each line are what is drawn, in every
// version.
TEST_P(LinesAndPointsGlTest, AdjacencyIsDrawnWithoutAGeometryShader) {
  GpuProgramData program;
  load_color_program(&program);
  Polyline lines;
  ASSERT_TRUE(lines.initialize(8, LINE_RENDER_LINES_ADJACENCY));
  for (unsigned int i = 0; i < 8; ++i) {
    // From x -0.75 to 0.75 at two heights; the outer vertices of each line stand far above.
    const bool inner = i % 4 == 1 || i % 4 == 2;
    const float y = i < 4 ? MIDDLE : MIDDLE - 0.5f;
    lines.set_vertex_position(i, i % 4 < 2 ? -0.75f : 0.75f, inner ? y : 0.75f, 0);
    lines.set_vertex_color(i, inner ? vec4(1, 1, 1, 1) : vec4(1, 0, 0, 1));
  }
  for (const bool programmed : {false, true}) {
    clear();
    renderer.gpu_program_bind(programmed ? &program : nullptr);
    lines.render(&renderer, nullptr);
    EXPECT_EQ(center(), WHITE) << programmed;
    EXPECT_EQ(context.pixel(32, 16), WHITE) << programmed;
    for (const int y : {24, 40, 56}) EXPECT_EQ(context.pixel(32, y), BLACK) << y << programmed;
  }
  renderer.gpu_program_bind(nullptr);
  lines._cleanup(&renderer);
  renderer.gpu_program_unload(&program);
}

TEST_P(LinesAndPointsGlTest, DrawRangeStaysWithinTheVertices) {
  Polyline line;
  ASSERT_TRUE(line.initialize(2, LINE_RENDER_LINES));
  line.set_vertex_position(0, -0.9f, MIDDLE, 0);
  line.set_vertex_position(1, 0.9f, MIDDLE, 0);
  line.set_vertices_color(vec4(0, 1, 0, 1), nullptr);
  line.set_vertex_start_offset(2);
  line.set_vertex_end_offset(2);
  EXPECT_EQ(line.get_polyline_data()->get_draw_count(), -2);
  line.render(&renderer, nullptr);
  EXPECT_EQ(center(), BLACK);
  line.get_polyline_data()->set_vertex_draw_range(0, 1000);
  line.render(&renderer, nullptr);
  EXPECT_EQ(center(), GREEN);
  line._cleanup(&renderer);
}

TEST_P(LinesAndPointsGlTest, PointsOfBothFormsAreDrawn) {
  GpuProgramData program;
  load_color_program(&program);
  for (const bool separate : {false, true}) {
    clear();
    VertexPool pool;
    ASSERT_TRUE(pool.init_pool(2, separate));
    pool.set_vertex_position(0, vec3(MIDDLE, MIDDLE, 0));
    pool.set_vertex_position(1, vec3(MIDDLE + 0.5f, MIDDLE, 0));
    pool.set_vertex_color(0, vec4(1, 0, 0, 1));
    pool.set_vertex_color(1, vec4(0, 1, 0, 1));
    ASSERT_TRUE(renderer.gpu_program_bind(&program));
    pool.render(&renderer, nullptr);
    EXPECT_EQ(center(), RED) << separate;
    EXPECT_EQ(context.pixel(48, 32), GREEN) << separate;
    EXPECT_EQ(context.pixel(40, 32), BLACK) << separate;
    pool._cleanup(&renderer);
  }
  renderer.gpu_program_unload(&program);
}

TEST_P(LinesAndPointsGlTest, PointWritesThroughItsMappedBuffer) {
  Point point(vec3(MIDDLE, MIDDLE, 0));
  point.render(&renderer, nullptr);
  EXPECT_EQ(center(), WHITE);
  Vertex* vertex = point.map_vertex_buffer(&renderer);
  ASSERT_NE(vertex, nullptr);
  vertex->position = vec4(MIDDLE + 0.5f, MIDDLE, 0, 1);
  vertex->color = vec4(0, 0, 1, 1);
  EXPECT_TRUE(point.unmap_vertex_buffer(&renderer));
  clear();
  point.render(&renderer, nullptr);
  EXPECT_EQ(center(), BLACK);
  EXPECT_EQ(context.pixel(48, 32), BLUE);
  point._cleanup(&renderer);
}

ORV_BOTH_PROFILES(LinesAndPointsGlTest);

}  // namespace
}  // namespace orv::test
