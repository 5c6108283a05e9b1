#include <orv/gpu/gpu_program_data.h>
#include <orv/math/mat4.h>

#include "render/opengl/fake_gl_fixture.h"

using namespace orv;
using namespace orv::test;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

constexpr char TEXT[] = "void main() {}";

class UniformsTest : public FakeGlTest {
 protected:
  /// A bound program; every name begins at location 3.
  void bind_program() {
    ASSERT_TRUE(renderer.gpu_shader_load(&program, GPU_SHADER_VERTEX, TEXT, sizeof(TEXT)));
    ASSERT_TRUE(renderer.gpu_program_bind(&program));
    gl.clear();
  }
  void locate(const char* name, int location) { gl.uniform_locations[name] = location; }
  Calls apply() {
    gl.clear();
    EXPECT_TRUE(renderer.gpu_program_apply_uniforms(&program));
    return gl.changes();
  }
  void TearDown() override { renderer.gpu_program_unload(&program); }

  GpuProgramData program;
};

constexpr float F[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
constexpr int I[8] = {1, 2, 3, 4, 5, 6, 7, 8};
constexpr double D[8] = {1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 7.5, 8.5};

}  // namespace

// ---- single values ----

TEST_F(UniformsTest, ValuesByNameAreSentAtOnce) {
  start();
  bind_program();
  locate("u", 3);
  RendererOpenGL& r = renderer;
  GpuProgramData* p = &program;
  EXPECT_TRUE(r.gpu_program_set_uniform_1i(p, "u", 1));
  EXPECT_TRUE(r.gpu_program_set_uniform_2i(p, "u", 1, 2));
  EXPECT_TRUE(r.gpu_program_set_uniform_3i(p, "u", 1, 2, 3));
  EXPECT_TRUE(r.gpu_program_set_uniform_4i(p, "u", 1, 2, 3, 4));
  EXPECT_TRUE(r.gpu_program_set_uniform_1f(p, "u", 1));
  EXPECT_TRUE(r.gpu_program_set_uniform_2f(p, "u", 1, 2));
  EXPECT_TRUE(r.gpu_program_set_uniform_3f(p, "u", 1, 2, 3));
  EXPECT_TRUE(r.gpu_program_set_uniform_4f(p, "u", 1, 2, 3, 4));
  EXPECT_TRUE(r.gpu_program_set_uniform_1ui(p, "u", 1));
  EXPECT_TRUE(r.gpu_program_set_uniform_2ui(p, "u", 1, 2));
  EXPECT_TRUE(r.gpu_program_set_uniform_3ui(p, "u", 1, 2, 3));
  EXPECT_TRUE(r.gpu_program_set_uniform_4ui(p, "u", 1, 2, 3, 4));
  EXPECT_TRUE(r.gpu_program_set_uniform_1d(p, "u", 1.5));
  EXPECT_TRUE(r.gpu_program_set_uniform_2d(p, "u", 1.5, 2));
  EXPECT_TRUE(r.gpu_program_set_uniform_3d(p, "u", 1.5, 2, 3));
  EXPECT_TRUE(r.gpu_program_set_uniform_4d(p, "u", 1.5, 2, 3, 4));
  EXPECT_THAT(
      take_changes(),
      ElementsAre("glUniform1i(3, 1)", "glUniform2i(3, 1, 2)", "glUniform3i(3, 1, 2, 3)",
                  "glUniform4i(3, 1, 2, 3, 4)", "glUniform1f(3, 1)", "glUniform2f(3, 1, 2)",
                  "glUniform3f(3, 1, 2, 3)", "glUniform4f(3, 1, 2, 3, 4)", "glUniform1ui(3, 1)",
                  "glUniform2ui(3, 1, 2)", "glUniform3ui(3, 1, 2, 3)",
                  "glUniform4ui(3, 1, 2, 3, 4)", "glUniform1d(3, 1.5)", "glUniform2d(3, 1.5, 2)",
                  "glUniform3d(3, 1.5, 2, 3)", "glUniform4d(3, 1.5, 2, 3, 4)"));
}

TEST_F(UniformsTest, ArraysByNameAreSentAtOnce) {
  start();
  bind_program();
  locate("u", 3);
  RendererOpenGL& r = renderer;
  GpuProgramData* p = &program;
  EXPECT_TRUE(r.gpu_program_set_uniform_1iv(p, "u", 2, I));
  EXPECT_TRUE(r.gpu_program_set_uniform_2iv(p, "u", 2, I));
  EXPECT_TRUE(r.gpu_program_set_uniform_3iv(p, "u", 2, I));
  EXPECT_TRUE(r.gpu_program_set_uniform_4iv(p, "u", 2, I));
  EXPECT_TRUE(r.gpu_program_set_uniform_1fv(p, "u", 2, F));
  EXPECT_TRUE(r.gpu_program_set_uniform_2fv(p, "u", 2, F));
  EXPECT_TRUE(r.gpu_program_set_uniform_3fv(p, "u", 2, F));
  EXPECT_TRUE(r.gpu_program_set_uniform_4fv(p, "u", 2, F));
  EXPECT_TRUE(r.gpu_program_set_uniform_1dv(p, "u", 2, D));
  EXPECT_TRUE(r.gpu_program_set_uniform_2dv(p, "u", 2, D));
  EXPECT_TRUE(r.gpu_program_set_uniform_3dv(p, "u", 2, D));
  EXPECT_TRUE(r.gpu_program_set_uniform_4dv(p, "u", 2, D));
  EXPECT_THAT(
      take_changes(),
      ElementsAre("glUniform1iv(3, 2, [1 2])", "glUniform2iv(3, 2, [1 2 3 4])",
                  "glUniform3iv(3, 2, [1 2 3 4 5 6])", "glUniform4iv(3, 2, [1 2 3 4 5 6 7 8])",
                  "glUniform1fv(3, 2, [1 2])", "glUniform2fv(3, 2, [1 2 3 4])",
                  "glUniform3fv(3, 2, [1 2 3 4 5 6])", "glUniform4fv(3, 2, [1 2 3 4 5 6 7 8])",
                  "glUniform1dv(3, 2, [1.5 2.5])", "glUniform2dv(3, 2, [1.5 2.5 3.5 4.5])",
                  "glUniform3dv(3, 2, [1.5 2.5 3.5 4.5 5.5 6.5])",
                  "glUniform4dv(3, 2, [1.5 2.5 3.5 4.5 5.5 6.5 7.5 8.5])"));
  EXPECT_FALSE(r.gpu_program_set_uniform_1fv(p, "u", 2, nullptr));
  EXPECT_FALSE(r.gpu_program_set_uniform_4iv(p, "u", 2, nullptr));
  EXPECT_FALSE(r.gpu_program_set_uniform_4dv(p, "u", 2, nullptr));
}

TEST_F(UniformsTest, MatricesAreSentUntransposed) {
  start();
  bind_program();
  locate("m", 4);
  EXPECT_TRUE(renderer.gpu_program_set_uniform_3x3fv(&program, "m", 1, F));
  EXPECT_TRUE(renderer.gpu_program_set_uniform_4x4fv(&program, "m", 1, F));
  EXPECT_TRUE(renderer.gpu_program_set_uniform_location_3x3fv(&program, 5, 1, F));
  EXPECT_TRUE(renderer.gpu_program_set_uniform_location_4x4fv(&program, 6, 1, F));
  const std::string nine = "[1 2 3 4 5 6 7 8 9]",
                    sixteen = "[1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16]";
  EXPECT_THAT(take_changes(), ElementsAre("glUniformMatrix3fv(4, 1, GL_FALSE, " + nine + ")",
                                          "glUniformMatrix4fv(4, 1, GL_FALSE, " + sixteen + ")",
                                          "glUniformMatrix3fv(5, 1, GL_FALSE, " + nine + ")",
                                          "glUniformMatrix4fv(6, 1, GL_FALSE, " + sixteen + ")"));
  EXPECT_FALSE(renderer.gpu_program_set_uniform_4x4fv(&program, "m", 1, nullptr));
  EXPECT_FALSE(renderer.gpu_program_set_uniform_location_3x3fv(&program, 1, 1, nullptr));
}

TEST_F(UniformsTest, ValuesByLocationAreSentAsGiven) {
  start();
  bind_program();
  RendererOpenGL& r = renderer;
  GpuProgramData* p = &program;
  EXPECT_TRUE(r.gpu_program_set_uniform_location_1i(p, 7, 1));
  EXPECT_TRUE(r.gpu_program_set_uniform_location_2i(p, 7, 1, 2));
  EXPECT_TRUE(r.gpu_program_set_uniform_location_3i(p, 7, 1, 2, 3));
  EXPECT_TRUE(r.gpu_program_set_uniform_location_4i(p, 7, 1, 2, 3, 4));
  EXPECT_TRUE(r.gpu_program_set_uniform_location_1f(p, 7, 1));
  EXPECT_TRUE(r.gpu_program_set_uniform_location_2f(p, 7, 1, 2));
  EXPECT_TRUE(r.gpu_program_set_uniform_location_3f(p, 7, 1, 2, 3));
  EXPECT_TRUE(r.gpu_program_set_uniform_location_4f(p, 7, 1, 2, 3, 4));
  EXPECT_TRUE(r.gpu_program_set_uniform_location_4fv(p, 7, 1, F));
  EXPECT_THAT(take_changes(),
              ElementsAre("glUniform1i(7, 1)", "glUniform2i(7, 1, 2)", "glUniform3i(7, 1, 2, 3)",
                          "glUniform4i(7, 1, 2, 3, 4)", "glUniform1f(7, 1)", "glUniform2f(7, 1, 2)",
                          "glUniform3f(7, 1, 2, 3)", "glUniform4f(7, 1, 2, 3, 4)",
                          "glUniform4fv(7, 1, [1 2 3 4])"));
  EXPECT_FALSE(r.gpu_program_set_uniform_location_1i(nullptr, 7, 1));
  EXPECT_FALSE(r.gpu_program_set_uniform_location_4fv(p, 7, 1, nullptr));
}

TEST_F(UniformsTest, HandlesAreSentWhereThereAreAny) {
  start();
  bind_program();
  locate("h", 2);
  const unsigned long long handles[2] = {5000000000ull, 6};
  EXPECT_TRUE(renderer.gpu_program_set_uniform_1ui64(&program, "h", 5000000000ull));
  EXPECT_TRUE(renderer.gpu_program_set_uniform_1ui64v(&program, "h", handles, 2));
  EXPECT_TRUE(renderer.gpu_program_set_uniform_location_1ui64(&program, 9, 8));
  EXPECT_TRUE(renderer.gpu_program_set_uniform_location_1ui64v(&program, 9, handles, 2));
  EXPECT_EQ(2, gl.count("glUniformHandleui64ARB"));
  EXPECT_EQ(2, gl.count("glUniformHandleui64vARB"));
  EXPECT_TRUE(gl.called("glUniformHandleui64ARB(2, 5000000000)"));
}

TEST_F(UniformsTest, HandlesAreSkippedWhereAbsent) {
  gl.remove_function("glUniformHandleui64ARB");
  gl.remove_function("glUniformHandleui64vARB");
  start();
  bind_program();
  locate("h", 2);
  const unsigned long long handle = 5;
  EXPECT_TRUE(renderer.gpu_program_set_uniform_1ui64(&program, "h", 5));
  EXPECT_TRUE(renderer.gpu_program_set_uniform_1ui64v(&program, "h", &handle, 1));
  program.set_uniform_1ui64("h", 5);
  EXPECT_THAT(apply(), IsEmpty());
}

TEST_F(UniformsTest, UnknownNamesAreNotSentAndNullIsFalse) {
  start();
  bind_program();
  EXPECT_TRUE(renderer.gpu_program_set_uniform_1f(&program, "missing", 1));
  EXPECT_TRUE(renderer.gpu_program_set_uniform_4x4fv(&program, "missing", 1, F));
  EXPECT_FALSE(renderer.gpu_program_set_uniform_1f(nullptr, "u", 1));
  EXPECT_FALSE(renderer.gpu_program_set_uniform_1f(&program, nullptr, 1));
  EXPECT_FALSE(renderer.gpu_program_set_uniform_1ui64(nullptr, "u", 1));
  EXPECT_THAT(take_changes(), IsEmpty());
}

TEST_F(UniformsTest, LocationIsAskedOfTheDriverOnce) {
  start();
  bind_program();
  locate("u", 3);
  EXPECT_EQ(3, renderer.gpu_program_get_uniform_location(&program, "u"));
  EXPECT_EQ(3, renderer.gpu_program_get_uniform_location(&program, "u"));
  EXPECT_EQ(1, gl.count("glGetUniformLocation"));
  EXPECT_EQ(-1, renderer.gpu_program_get_uniform_location(nullptr, "u"));
  EXPECT_EQ(-1, renderer.gpu_program_get_uniform_location(&program, nullptr));
}

// ---- flush ----

TEST_F(UniformsTest, FlushSendsEveryTypeItsWay) {
  start();
  bind_program();
  struct Row {
    const char* call;
    void (*set)(GpuProgramData*);
  };
  const Row rows[] = {
      {"glUniform1i(3, 1)", [](GpuProgramData* p) { p->set_uniform_1i("u", 1); }},
      {"glUniform2i(3, 1, 2)", [](GpuProgramData* p) { p->set_uniform_2i("u", 1, 2); }},
      {"glUniform3i(3, 1, 2, 3)", [](GpuProgramData* p) { p->set_uniform_3i("u", 1, 2, 3); }},
      {"glUniform4i(3, 1, 2, 3, 4)", [](GpuProgramData* p) { p->set_uniform_4i("u", 1, 2, 3, 4); }},
      {"glUniform1iv(3, 2, [1 2])", [](GpuProgramData* p) { p->set_uniform_1iv("u", 2, I); }},
      {"glUniform2iv(3, 1, [1 2])", [](GpuProgramData* p) { p->set_uniform_2iv("u", 1, I); }},
      {"glUniform3iv(3, 1, [1 2 3])", [](GpuProgramData* p) { p->set_uniform_3iv("u", 1, I); }},
      {"glUniform4iv(3, 1, [1 2 3 4])", [](GpuProgramData* p) { p->set_uniform_4iv("u", 1, I); }},
      {"glUniform1f(3, 1)", [](GpuProgramData* p) { p->set_uniform_1f("u", 1); }},
      {"glUniform2f(3, 1, 2)", [](GpuProgramData* p) { p->set_uniform_2f("u", 1, 2); }},
      {"glUniform3f(3, 1, 2, 3)", [](GpuProgramData* p) { p->set_uniform_3f("u", 1, 2, 3); }},
      {"glUniform4f(3, 1, 2, 3, 4)", [](GpuProgramData* p) { p->set_uniform_4f("u", 1, 2, 3, 4); }},
      {"glUniform1fv(3, 2, [1 2])", [](GpuProgramData* p) { p->set_uniform_1fv("u", 2, F); }},
      {"glUniform2fv(3, 1, [1 2])", [](GpuProgramData* p) { p->set_uniform_2fv("u", 1, F); }},
      {"glUniform3fv(3, 1, [1 2 3])", [](GpuProgramData* p) { p->set_uniform_3fv("u", 1, F); }},
      {"glUniform4fv(3, 1, [1 2 3 4])", [](GpuProgramData* p) { p->set_uniform_4fv("u", 1, F); }},
      {"glUniform1d(3, 1.5)", [](GpuProgramData* p) { p->set_uniform_1d("u", 1.5); }},
      {"glUniform2d(3, 1.5, 2)", [](GpuProgramData* p) { p->set_uniform_2d("u", 1.5, 2); }},
      {"glUniform3d(3, 1.5, 2, 3)", [](GpuProgramData* p) { p->set_uniform_3d("u", 1.5, 2, 3); }},
      {"glUniform4d(3, 1.5, 2, 3, 4)",
       [](GpuProgramData* p) { p->set_uniform_4d("u", 1.5, 2, 3, 4); }},
      {"glUniform1dv(3, 2, [1.5 2.5])", [](GpuProgramData* p) { p->set_uniform_1dv("u", 2, D); }},
      {"glUniform2dv(3, 1, [1.5 2.5])", [](GpuProgramData* p) { p->set_uniform_2dv("u", 1, D); }},
      {"glUniform3dv(3, 1, [1.5 2.5 3.5])",
       [](GpuProgramData* p) { p->set_uniform_3dv("u", 1, D); }},
      {"glUniform4dv(3, 1, [1.5 2.5 3.5 4.5])",
       [](GpuProgramData* p) { p->set_uniform_4dv("u", 1, D); }},
      {"glUniformMatrix3fv(3, 1, GL_FALSE, [1 2 3 4 5 6 7 8 9])",
       [](GpuProgramData* p) { p->set_uniform_3x3f("u", F); }},
      {"glUniformMatrix4fv(3, 1, GL_FALSE, [1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16])",
       [](GpuProgramData* p) { p->set_uniform_4x4f("u", F); }},
      {"glUniform1ui(3, 1)", [](GpuProgramData* p) { p->set_uniform_1ui("u", 1); }},
      {"glUniform2ui(3, 1, 2)", [](GpuProgramData* p) { p->set_uniform_2ui("u", 1, 2); }},
      {"glUniform3ui(3, 1, 2, 3)", [](GpuProgramData* p) { p->set_uniform_3ui("u", 1, 2, 3); }},
      {"glUniform4ui(3, 1, 2, 3, 4)",
       [](GpuProgramData* p) { p->set_uniform_4ui("u", 1, 2, 3, 4); }},
      {"glUniformHandleui64ARB(3, 5000000000)",
       [](GpuProgramData* p) { p->set_uniform_1ui64("u", 5000000000ull); }},
  };
  locate("u", 3);
  for (const Row& row : rows) {
    row.set(&program);
    EXPECT_THAT(apply(), ElementsAre(row.call));
  }
  const unsigned long long handles[2] = {5, 6};
  program.set_uniform_1ui64v("u", 2, handles);
  apply();
  EXPECT_EQ(1, gl.count("glUniformHandleui64vARB"));
}

TEST_F(UniformsTest, DoubleMatricesAndSubroutinesSendNothingButCount) {
  start();
  bind_program();
  locate("m3", 1);
  locate("m4", 2);
  const double nine[9] = {}, sixteen[16] = {};
  program.set_uniform_3x3d("m3", nine);
  program.set_uniform_4x4d("m4", sixteen);
  EXPECT_THAT(apply(), IsEmpty());
  EXPECT_EQ(1, program.find_uniform("m3")->num_uploads);
  EXPECT_EQ(1, program.find_uniform("m4")->num_uploads);
  EXPECT_FALSE(program.find_uniform("m3")->dirty);
}

TEST_F(UniformsTest, MissingUniformIsNotSentAndCountsNoUpload) {
  start();
  bind_program();
  program.set_uniform_1f("missing", 1);
  EXPECT_THAT(apply(), IsEmpty());
  const GpuProgramUniform* uniform = program.find_uniform("missing");
  EXPECT_EQ(0, uniform->num_uploads);
  EXPECT_FALSE(uniform->dirty);
  EXPECT_LT(uniform->location, 0);
}

TEST_F(UniformsTest, CleanUniformsAreNotSentAgain) {
  start();
  bind_program();
  locate("a", 1);
  locate("b", 2);
  program.set_uniform_1f("a", 1);
  program.set_uniform_1f("b", 2);
  EXPECT_EQ(2u, apply().size());
  EXPECT_THAT(apply(), IsEmpty());
  program.set_uniform_1f("b", 3);
  EXPECT_THAT(apply(), ElementsAre("glUniform1f(2, 3)"));
  EXPECT_EQ(2, program.find_uniform("b")->num_uploads);
}

TEST_F(UniformsTest, UniformFirstSetAfterAFlushIsFoundAndSent) {
  start();
  bind_program();
  locate("a", 1);
  locate("late", 2);
  program.set_uniform_1f("a", 1);
  apply();
  program.set_uniform_1f("late", 5);
  EXPECT_THAT(apply(), Contains("glUniform1f(2, 5)"));
}

TEST_F(UniformsTest, NullSlotStopsTheUploadOfThoseBehindIt) {
  start();
  bind_program();
  locate("a", 1);
  locate("b", 2);
  locate("c", 3);
  program.set_uniform_1f("a", 1);
  program.set_uniform_1f("b", 2);
  program.set_uniform_1f("c", 3);
  delete program.uniforms[1];
  program.uniforms[1] = nullptr;
  EXPECT_THAT(apply(), ElementsAre("glUniform1f(1, 1)"));
}

TEST_F(UniformsTest, CachePassMarksFoundRecordsAndCleansMissingOnes) {
  start();
  bind_program();
  locate("a", 1);
  program.set_uniform_1f("a", 1);
  program.set_uniform_1f("missing", 1);
  EXPECT_TRUE(renderer.gpu_program_cache_uniform_location(&program));
  EXPECT_TRUE(program._are_uniforms_optimized());
  EXPECT_EQ(1, program.find_uniform("a")->location);
  EXPECT_TRUE(program.find_uniform("a")->dirty);
  EXPECT_FALSE(program.find_uniform("missing")->dirty);
  EXPECT_EQ(1, program._get_uniform_location_from_cache("a"));
  gl.clear();
  EXPECT_TRUE(renderer.gpu_program_cache_uniform_location(&program)) << "done already";
  EXPECT_THAT(take(), IsEmpty());
  EXPECT_FALSE(renderer.gpu_program_cache_uniform_location(nullptr));
}

TEST_F(UniformsTest, UnsignedSetResendsEverything) {
  start();
  bind_program();
  locate("a", 1);
  locate("n", 2);
  program.set_uniform_1f("a", 1);
  program.set_uniform_1ui("n", 1);
  apply();
  program.set_uniform_1ui("n", 1);
  EXPECT_EQ(2u, apply().size());
}

TEST_F(UniformsTest, FlushOfNothingIsFine) {
  start();
  EXPECT_FALSE(renderer.gpu_program_apply_uniforms(nullptr));
  EXPECT_FALSE(renderer.gpu_program_apply_uniforms(&program)) << "there is no program to send to";
  bind_program();
  EXPECT_THAT(apply(), IsEmpty());
  program.kill_uniforms();
  EXPECT_TRUE(renderer.gpu_program_apply_uniforms(&program));
}

// ---- subroutines ----

TEST_F(UniformsTest, SubroutinesAreSentStageByStage) {
  start();
  bind_program();
  gl.num_subroutine_locations = 3;
  gl.subroutine_locations = {{"shade", 1}, {"light", 2}, {"far", 9}};
  gl.subroutine_indices = {{"flat", 4}, {"phong", 5}};
  program.set_uniform_subroutine(GPU_SHADER_PIXEL, "shade", "phong");
  program.set_uniform_subroutine(GPU_SHADER_PIXEL, "light", "flat");
  program.set_uniform_subroutine(GPU_SHADER_PIXEL, "far", "flat");
  program.set_uniform_subroutine(GPU_SHADER_PIXEL, "missing", "flat");
  EXPECT_THAT(apply(), ElementsAre("glUniformSubroutinesuiv(GL_FRAGMENT_SHADER, 3, [0 5 4])"));
  EXPECT_EQ(4, gl.count("glGetSubroutineUniformLocation"));
  apply();
  EXPECT_EQ(1, gl.count("glGetSubroutineUniformLocation")) << "only the missing one is asked again";
  EXPECT_EQ(0, gl.count("glGetSubroutineIndex"));
  EXPECT_EQ(0, gl.count("glGetProgramStageiv"));
}

TEST_F(UniformsTest, SubroutineArrayGrowsWithLaterRecords) {
  start();
  bind_program();
  gl.num_subroutine_locations = 1;
  gl.subroutine_locations = {{"s0", 0}, {"s1", 1}};
  gl.subroutine_indices = {{"x", 7}};
  program.set_uniform_subroutine(GPU_SHADER_VERTEX, "s0", "x");
  EXPECT_THAT(apply(), ElementsAre("glUniformSubroutinesuiv(GL_VERTEX_SHADER, 1, [7])"));
  gl.num_subroutine_locations = 2;
  program.linked = false;
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  for (int i = 0; i < 20; ++i) {
    program.set_uniform_subroutine(GPU_SHADER_VERTEX, ("s" + std::to_string(i)).c_str(), "x");
  }
  EXPECT_THAT(apply(), ElementsAre("glUniformSubroutinesuiv(GL_VERTEX_SHADER, 2, [7 7])"));
}

TEST_F(UniformsTest, StagesWithOneNameDoNotMixTheirSubroutines) {
  start();
  bind_program();
  gl.num_subroutine_locations = 1;
  gl.subroutine_locations = {{"s", 0}};
  gl.subroutine_indices = {{"x", 7}, {"y", 8}};
  program.set_uniform_subroutine(GPU_SHADER_VERTEX, "s", "x");
  program.uniforms[1] = new GpuProgramUniform(*program.uniforms[0]);
  program.uniforms[1]->shader_type = GPU_SHADER_PIXEL;
  std::snprintf(program.uniforms[1]->subroutine_name, 64, "y");
  program.num_subroutine_uniforms[GPU_SHADER_PIXEL] = 1;
  EXPECT_THAT(apply(), ElementsAre("glUniformSubroutinesuiv(GL_VERTEX_SHADER, 1, [7])",
                                   "glUniformSubroutinesuiv(GL_FRAGMENT_SHADER, 1, [8])"));
}

TEST_F(UniformsTest, SubroutineSetToTheSameNameTwiceStaysClean) {
  start();
  bind_program();
  program.set_uniform_subroutine(GPU_SHADER_PIXEL, "shade", "phong");
  GpuProgramUniform* uniform = program.find_uniform("shade");
  uniform->dirty = false;
  program.set_uniform_subroutine(GPU_SHADER_PIXEL, "shade", "phong");
  EXPECT_FALSE(uniform->dirty);
}

TEST_F(UniformsTest, SubroutinesAreLeftOutWhereAbsent) {
  gl.set_extensions({});
  start(3, 3, false);
  bind_program();
  gl.num_subroutine_locations = 1;
  program.set_uniform_subroutine(GPU_SHADER_PIXEL, "shade", "phong");
  EXPECT_THAT(apply(), IsEmpty());
}
