#include <orv/gpu/gpu_buffer_data.h>

#include "render/opengl/gl_fixture.h"

using namespace orv;
using namespace orv::test;

namespace {

class ProgramsGlTest : public GlTest {
 protected:
  void SetUp() override {
    GlTest::SetUp();
    if (IsSkipped()) return;
    triangle.set_alloc_params_num_vertices(3);
    ASSERT_TRUE(triangle.alloc_vertex_data());
    triangle.set_position(0, -1, -1, 0, 1);
    triangle.set_position(1, 3, -1, 0, 1);
    triangle.set_position(2, -1, 3, 0, 1);
  }
  void TearDown() override {
    if (triangle.vb_uploaded) renderer.geometry_vbo_destroy(&triangle);
    renderer.gpu_program_unload(&program);
    GlTest::TearDown();
  }
  /// A program whose colour comes from the given expression of a pixel stage.
  void load_expression(const std::string& declarations, const std::string& expression) {
    load_program(&program,
                 "ATTRIB vec4 orvex_Position; void main() { gl_Position = orvex_Position; }",
                 declarations + "void main() { pixel = " + expression + "; }");
  }
  Pixel draw_triangle() {
    clear();
    draw(&triangle);
    return center();
  }
  GpuProgramData program;
  GeometryCore triangle;
};

}  // namespace

ORV_BOTH_PROFILES(ProgramsGlTest);

TEST_P(ProgramsGlTest, ProgramDrawsAndGoes) {
  load_expression("", "vec4(0, 1, 0, 1)");
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  EXPECT_EQ(&program, renderer.get_current_gpu_program());
  EXPECT_EQ(program.program_id, renderer.get_current_program_id());
  EXPECT_TRUE(program.get_use_generic_vertex_attribs_state());
  EXPECT_EQ(GREEN, draw_triangle());
  EXPECT_TRUE(renderer.gpu_program_validate(&program));
  EXPECT_TRUE(renderer.gpu_program_unbind(&program));
  EXPECT_TRUE(renderer.gpu_program_unload(&program));
}

TEST_P(ProgramsGlTest, BrokenShaderLeavesItsLog) {
  const std::string text = pixel_header() + "void main() { pixel = nonsense; }";
  EXPECT_FALSE(renderer.gpu_shader_load(&program, GPU_SHADER_PIXEL, text.c_str(),
                                        static_cast<unsigned int>(text.size())));
  ASSERT_NE(nullptr, program.get_shader_info_log(GPU_SHADER_PIXEL));
  EXPECT_NE(std::string::npos,
            std::string(program.get_shader_info_log(GPU_SHADER_PIXEL)).find("nonsense"));
  char log[32] = {};
  EXPECT_FALSE(renderer.gpu_shader_check_compile(GPU_SHADER_PIXEL, text.c_str(), log, sizeof(log)));
  EXPECT_NE(0, log[0]);
  context.take_errors();  // the driver tells of the broken shader, too
}

TEST_P(ProgramsGlTest, TextWithoutItsTerminatorIsReadToItsSize) {
  const std::string good = pixel_header() + "void main() { pixel = vec4(1); }";
  const std::string text = good + "@@@ no part of it";
  EXPECT_TRUE(renderer.gpu_shader_load(&program, GPU_SHADER_PIXEL, text.c_str(),
                                       static_cast<unsigned int>(good.size())));
}

TEST_P(ProgramsGlTest, BrokenReloadKeepsThePicture) {
  load_expression("", "vec4(0, 1, 0, 1)");
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  const std::string bad = pixel_header() + "void main() { oops }";
  EXPECT_FALSE(renderer.gpu_shader_reload(&program, GPU_SHADER_PIXEL, bad.c_str(),
                                          static_cast<unsigned int>(bad.size())));
  context.take_errors();  // the driver tells of the broken shader, too
  EXPECT_EQ(GREEN, draw_triangle());
  const std::string good = pixel_header() + "void main() { pixel = vec4(0, 0, 1, 1); }";
  EXPECT_TRUE(renderer.gpu_shader_reload(&program, GPU_SHADER_PIXEL, good.c_str(),
                                         static_cast<unsigned int>(good.size())));
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  EXPECT_EQ(BLUE, draw_triangle());
}

TEST_P(ProgramsGlTest, StageLoadedTwiceReplacesTheFirst) {
  load_expression("", "vec4(1, 0, 0, 1)");
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  EXPECT_EQ(RED, draw_triangle());
  ASSERT_TRUE(load(&program, GPU_SHADER_PIXEL,
                   pixel_header() + "void main() { pixel = vec4(0, 0, 1, 1); }"));
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  EXPECT_EQ(BLUE, draw_triangle());
}

TEST_P(ProgramsGlTest, ProgramWithTheBuiltInVertexUsesTheFixedArrays) {
  if (renderer.is_core_context()) GTEST_SKIP() << "no built-in attributes in core profile";
  ASSERT_TRUE(
      load(&program, GPU_SHADER_VERTEX, "#version 120\nvoid main() { gl_Position = gl_Vertex; }"));
  ASSERT_TRUE(load(&program, GPU_SHADER_PIXEL,
                   "#version 120\nvoid main() { gl_FragColor = vec4(1, 0, 0, 1); }"));
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  EXPECT_FALSE(program.get_use_generic_vertex_attribs_state());
  triangle.set_use_generic_vertex_attribs_state(program.get_use_generic_vertex_attribs_state());
  EXPECT_EQ(RED, draw_triangle());
}

TEST_P(ProgramsGlTest, MatrixGoesTheSameWayByBothRoads) {
  load_program(&program,
               "uniform mat4 m; ATTRIB vec4 orvex_Position;\n"
               "void main() { gl_Position = orvex_Position; gl_Position.xy += m[3].xy; }",
               "void main() { pixel = vec4(1, 0, 0, 1); }");
  triangle.set_position(0, -1, -1, 0, 1);
  triangle.set_position(1, 0, -1, 0, 1);
  triangle.set_position(2, -1, 0, 0, 1);
  // Moves to the right alone; transposed it would not move at all.
  const float matrix[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 1};
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  ASSERT_TRUE(renderer.gpu_program_set_uniform_4x4fv(&program, "m", 1, matrix));
  draw_triangle();
  EXPECT_EQ(RED, context.pixel(40, 8));
  EXPECT_EQ(BLACK, context.pixel(8, 8));
  const float none[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  renderer.gpu_program_set_uniform_4x4fv(&program, "m", 1, none);
  program.set_uniform_4x4f("m", matrix);
  ASSERT_TRUE(renderer.gpu_program_apply_uniforms(&program));
  draw_triangle();
  EXPECT_EQ(RED, context.pixel(40, 8));
  EXPECT_EQ(BLACK, context.pixel(8, 8));
}

TEST_P(ProgramsGlTest, ThreeByThreeMatrixIsKeptColumnByColumn) {
  load_expression("uniform mat3 m;\n", "vec4(m[2], 1)");
  const float matrix[9] = {1, 1, 1, 1, 1, 1, 0, 1, 0};
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  program.set_uniform_3x3f("m", matrix);
  ASSERT_TRUE(renderer.gpu_program_apply_uniforms(&program));
  EXPECT_EQ(GREEN, draw_triangle());
}

TEST_P(ProgramsGlTest, RecordedUniformsSurviveANewLink) {
  load_expression("uniform vec4 color; uniform float list[3];\n", "color * list[2]");
  const float list[3] = {0, 0, 1};
  program.set_uniform_4f("color", 0, 1, 0, 1);
  program.set_uniform_1fv("list", 3, list);
  program.set_uniform_1f("missing", 1);
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  ASSERT_TRUE(renderer.gpu_program_apply_uniforms(&program));
  EXPECT_EQ(GREEN, draw_triangle());
  EXPECT_EQ(1, program.find_uniform("color")->num_uploads);
  EXPECT_EQ(0, program.find_uniform("missing")->num_uploads);
  program.set_vertex_attrib("orvex_Position", 0);
  ASSERT_FALSE(program.linked);
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  ASSERT_TRUE(renderer.gpu_program_apply_uniforms(&program));
  EXPECT_EQ(GREEN, draw_triangle()) << "linking zeroed them";
}

TEST_P(ProgramsGlTest, ValuesByNameAndLocation) {
  load_expression("uniform vec4 a; uniform vec2 b; uniform int c;\n",
                  "vec4(a.x, b.y, float(c), 1)");
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  renderer.gpu_program_set_uniform_4f(&program, "a", 1, 0, 0, 0);
  renderer.gpu_program_set_uniform_2f(&program, "b", 0, 1);
  renderer.gpu_program_set_uniform_1i(&program, "c", 1);
  renderer.gpu_program_set_uniform_1i(&program, "missing", 1);
  EXPECT_EQ(WHITE, draw_triangle());
  const int location = renderer.gpu_program_get_uniform_location(&program, "c");
  EXPECT_GE(location, 0);
  renderer.gpu_program_set_uniform_location_1i(&program, location, 0);
  EXPECT_EQ(Pixel({255, 255, 0, 255}), draw_triangle());
  EXPECT_EQ(-1, renderer.gpu_program_get_uniform_location(&program, "missing"));
}

TEST_P(ProgramsGlTest, QuestionsBeforeTheFirstLinkRaiseNoError) {
  load_expression("uniform vec4 a;\n", "a");
  EXPECT_EQ(-1, renderer.gpu_program_get_uniform_location(&program, "a"));
  EXPECT_EQ(-1, renderer.gpu_program_get_vertex_attrib_location(&program, "orvex_Position"));
  EXPECT_EQ(0xFFFFFFFFu, renderer.gpu_program_get_uniform_block_index(&program, "B"));
  EXPECT_FALSE(renderer.gpu_program_apply_uniforms(&program));
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  EXPECT_GE(renderer.gpu_program_get_uniform_location(&program, "a"), 0);
}

TEST_P(ProgramsGlTest, UseBindsNumberedAttributes) {
  load_program(&program,
               "ATTRIB vec4 orvex_Attrib3; ATTRIB vec4 orvex_Attrib0; OUT vec4 color;\n"
               "void main() { color = orvex_Attrib3; gl_Position = orvex_Attrib0; }",
               "IN vec4 color; void main() { pixel = color; }");
  for (unsigned int i = 0; i < 3; ++i) triangle.set_color(i, 0, 1, 0, 1);
  ASSERT_TRUE(renderer.gpu_program_use(&program));
  EXPECT_EQ(3, renderer.gpu_program_get_vertex_attrib_location(&program, "orvex_Attrib3"));
  EXPECT_EQ(GREEN, draw_triangle());
  EXPECT_TRUE(renderer.gpu_program_unuse(&program));
}

TEST_P(ProgramsGlTest, UniformBlockIsFedFromABuffer) {
  if (!renderer.facts().is_version_at_least(3, 2)) GTEST_SKIP() << "no uniform blocks";
  load_expression("layout(std140) uniform Block { vec4 first; vec4 second[2]; };\n", "second[1]");
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  const float values[12] = {1, 1, 1, 1, 1, 0, 0, 1, 0, 1, 0, 1};
  GpuBufferData buffer;
  ASSERT_TRUE(renderer.gpu_buffer_alloc_uniform_buffer(nullptr, &buffer, BUFFER_USAGE_STATIC_DRAW,
                                                       &program, "Block", values));
  EXPECT_EQ(48, renderer.gpu_program_get_uniform_block_size(&program, "Block", 0));
  const unsigned int index = renderer.gpu_program_get_uniform_block_index(&program, "Block");
  EXPECT_TRUE(renderer.gpu_program_set_uniform_block_binding(&program, index, 2));
  EXPECT_TRUE(renderer.gpu_buffer_bind_base(&buffer, 2));
  EXPECT_EQ(GREEN, draw_triangle());
  const char* names[] = {"second", "nothing"};
  int sizes[2], offsets[2], strides[2];
  EXPECT_FALSE(
      renderer.gpu_program_get_uniform_size_and_offset(&program, names, 2, sizes, offsets));
  EXPECT_EQ(2, sizes[0]);
  EXPECT_EQ(16, offsets[0]);
  EXPECT_EQ(-1, offsets[1]);
  EXPECT_TRUE(renderer.gpu_program_get_uniform_array_stride(&program, names, 1, strides));
  EXPECT_EQ(16, strides[0]);
  EXPECT_FALSE(renderer.gpu_buffer_alloc_uniform_buffer(nullptr, &buffer, BUFFER_USAGE_STATIC_DRAW,
                                                        &program, "Other", nullptr));
  renderer.gpu_buffer_free(&buffer);
}

TEST_P(ProgramsGlTest, SubroutineIsChosenByName) {
  if (!renderer.facts().subroutines_supported) GTEST_SKIP() << "no subroutines";
  ASSERT_TRUE(load(&program, GPU_SHADER_VERTEX,
                   "#version 400 core\nin vec4 orvex_Position;\n"
                   "void main() { gl_Position = orvex_Position; }"));
  ASSERT_TRUE(load(&program, GPU_SHADER_PIXEL,
                   "#version 400 core\nout vec4 pixel; subroutine vec4 Shade();\n"
                   "subroutine uniform Shade shade; subroutine uniform Shade other;\n"
                   "subroutine(Shade) vec4 red() { return vec4(1, 0, 0, 1); }\n"
                   "subroutine(Shade) vec4 green() { return vec4(0, 1, 0, 1); }\n"
                   "void main() { pixel = shade() + 0.0 * other(); }"));
  program.set_uniform_subroutine(GPU_SHADER_PIXEL, "shade", "green");
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  ASSERT_TRUE(renderer.gpu_program_apply_uniforms(&program));
  EXPECT_EQ(GREEN, draw_triangle());
  program.set_uniform_subroutine(GPU_SHADER_PIXEL, "shade", "red");
  ASSERT_TRUE(renderer.gpu_program_apply_uniforms(&program));
  EXPECT_EQ(RED, draw_triangle());
}

TEST_P(ProgramsGlTest, ComputeProgramWritesAStorageBuffer) {
  if (!renderer.gl().glDispatchCompute) GTEST_SKIP() << "no compute programs";
  GpuProgramData compute;
  ASSERT_TRUE(
      load(&compute, GPU_SHADER_COMPUTE,
           "#version 430\nlayout(local_size_x = 1) in; uniform int factor;\n"
           "layout(std430) buffer Data { int values[]; };\n"
           "void main() { uint i = gl_GlobalInvocationID.x; values[i] = int(i) * factor; }"));
  compute.set_uniform_1i("factor", 3);
  ASSERT_TRUE(renderer.gpu_program_use(&compute));
  GpuBufferData buffer;
  ASSERT_TRUE(renderer.gpu_buffer_alloc(nullptr, &buffer, GPU_BUFFER_SHADER_STORAGE,
                                        BUFFER_USAGE_DYNAMIC_COPY, 64, nullptr));
  const unsigned int block = renderer.gpu_program_get_shader_storage_block_index(&compute, "Data");
  EXPECT_TRUE(renderer.gpu_program_set_shader_storage_block_binding(&compute, block, 1));
  EXPECT_TRUE(renderer.gpu_buffer_bind_base(&buffer, 1));
  EXPECT_TRUE(renderer.gpu_program_dispatch_compute(&compute, 4, 1, 1));
  EXPECT_TRUE(renderer.memory_barrier_by_name("GL_BUFFER_UPDATE_BARRIER_BIT"));
  renderer.atomic_counter_barrier();
  int values[4] = {};
  EXPECT_TRUE(renderer.gpu_buffer_sub_data_read(&buffer, 0, sizeof(values), values));
  EXPECT_EQ(9, values[3]);
  renderer.gpu_program_unuse(&compute);
  renderer.gpu_program_unload(&compute);
  renderer.gpu_buffer_free(&buffer);
}

TEST_P(ProgramsGlTest, QueriesCountAndMeasure) {
  load_expression("", "vec4(0, 1, 0, 1)");
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  const unsigned int id = renderer.query_create();
  ASSERT_NE(0u, id);
  unsigned int result = 0;
  if (renderer.query_begin(id, "GL_PRIMITIVES_SUBMITTED_ARB")) {
    draw_triangle();
    EXPECT_TRUE(renderer.query_end("GL_PRIMITIVES_SUBMITTED_ARB"));
    EXPECT_TRUE(renderer.query_get_result(id, &result));
    EXPECT_EQ(1u, result);
    EXPECT_TRUE(renderer.query_is_available(id));
  }
  const unsigned int timer = renderer.query_create();
  if (renderer.time_query_begin(timer)) {
    draw_triangle();
    EXPECT_TRUE(renderer.time_query_end());
    EXPECT_TRUE(renderer.time_query_get_result(timer, &result));
  }
  EXPECT_TRUE(renderer.query_delete(id));
  EXPECT_TRUE(renderer.query_delete(timer));
}

TEST_P(ProgramsGlTest, LogsAndCompilerThreads) {
  load_expression("", "vec4(0, 1, 0, 1)");
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  EXPECT_NE(nullptr, renderer.gpu_program_get_shader_log(&program, GPU_SHADER_VERTEX));
  EXPECT_NE(nullptr, renderer.gpu_program_get_program_log(&program));
  EXPECT_EQ(renderer.gl().glMaxShaderCompilerThreadsARB != nullptr,
            renderer.set_max_shader_compiler_threads(1));
}
