#include <orv/gpu/gpu_program_data.h>

#include <cstring>

#include "render/opengl/fake_gl_fixture.h"
#include "support/log_capture.h"

using namespace orv;
using namespace orv::test;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

constexpr char TEXT[] = "void main() {}";

class ProgramsTest : public FakeGlTest {
 protected:
  bool load(GPU_SHADER_TYPE type) {
    return renderer.gpu_shader_load(&program, type, TEXT, sizeof(TEXT));
  }
  /// A vertex and a pixel stage, calls forgotten.
  void load_stages() {
    program.set_gpu_program_name("prog");
    ASSERT_TRUE(load(GPU_SHADER_VERTEX));
    ASSERT_TRUE(load(GPU_SHADER_PIXEL));
    gl.clear();
  }
  int count_links() { return gl.count("glLinkProgram"); }
  std::string id() { return std::to_string(program.program_id); }
  void TearDown() override { renderer.gpu_program_unload(&program); }

  GpuProgramData program;
};

}  // namespace

// ---- loading ----

TEST_F(ProgramsTest, FirstStageMakesTheProgram) {
  start();
  EXPECT_TRUE(load(GPU_SHADER_VERTEX));
  EXPECT_NE(0u, program.program_id);
  EXPECT_NE(0u, program.shader_id[GPU_SHADER_VERTEX]);
  EXPECT_EQ(renderer.getid(), program.renderer_gpu_id);
  EXPECT_TRUE(program.check_thread());
  const std::string shader = std::to_string(program.shader_id[GPU_SHADER_VERTEX]);
  EXPECT_THAT(take_changes(), ElementsAre("glCreateProgram()", "glCreateShader(GL_VERTEX_SHADER)",
                                          "glShaderSource(" + shader + ", 1, ptr, ptr)",
                                          "glCompileShader(" + shader + ")",
                                          "glAttachShader(" + id() + ", " + shader + ")"));
  EXPECT_TRUE(load(GPU_SHADER_PIXEL));
  EXPECT_EQ(0, gl.count("glCreateProgram"));
  EXPECT_FALSE(program.linked);
}

TEST_F(ProgramsTest, StagesHaveTheirShaderTypes) {
  struct Row {
    GPU_SHADER_TYPE type;
    const char* name;
  };
  start();
  for (const Row& row :
       {Row{GPU_SHADER_VERTEX, "GL_VERTEX_SHADER"}, Row{GPU_SHADER_PIXEL, "GL_FRAGMENT_SHADER"},
        Row{GPU_SHADER_GEOMETRY, "GL_GEOMETRY_SHADER"},
        Row{GPU_SHADER_TESS_CONTROL, "GL_TESS_CONTROL_SHADER"},
        Row{GPU_SHADER_TESS_EVAL, "GL_TESS_EVALUATION_SHADER"},
        Row{GPU_SHADER_COMPUTE, "GL_COMPUTE_SHADER"}}) {
    gl.clear();
    EXPECT_TRUE(load(row.type));
    EXPECT_TRUE(gl.called(std::string("glCreateShader(") + row.name + ")")) << row.name;
  }
}

TEST_F(ProgramsTest, BadArgumentsLoadNothing) {
  start();
  EXPECT_FALSE(renderer.gpu_shader_load(nullptr, GPU_SHADER_VERTEX, TEXT, sizeof(TEXT)));
  EXPECT_FALSE(renderer.gpu_shader_load(&program, GPU_SHADER_VERTEX, nullptr, 5));
  EXPECT_FALSE(renderer.gpu_shader_load(&program, GPU_SHADER_VERTEX, TEXT, 0));
  EXPECT_FALSE(load(GPU_SHADER_D3D_EFFECT));
  EXPECT_FALSE(load(static_cast<GPU_SHADER_TYPE>(6)));
  EXPECT_FALSE(load(static_cast<GPU_SHADER_TYPE>(-1)));
  EXPECT_THAT(take(), IsEmpty());
}

TEST_F(ProgramsTest, SecondNameOfTheLoaderForwards) {
  start();
  EXPECT_TRUE(renderer.gpu_shader_load_v2(&program, GPU_SHADER_VERTEX, TEXT, sizeof(TEXT)));
  EXPECT_NE(0u, program.shader_id[0]);
}

TEST_F(ProgramsTest, InfoLogIsStoredAlsoOnSuccess) {
  start();
  gl.shader_log = "warning: fine";
  EXPECT_TRUE(load(GPU_SHADER_VERTEX));
  EXPECT_STREQ("warning: fine", program.get_shader_info_log(GPU_SHADER_VERTEX));
}

TEST_F(ProgramsTest, FailedShaderIsKeptUntilTheProgramGoes) {
  start();
  load_stages();
  gl.compile_result = false;
  gl.shader_log = "error";
  const unsigned int failed = gl.next_id();
  EXPECT_FALSE(load(GPU_SHADER_GEOMETRY));
  EXPECT_STREQ("error", program.get_shader_info_log(GPU_SHADER_GEOMETRY));
  EXPECT_EQ(0u, program.shader_id[GPU_SHADER_GEOMETRY]);
  EXPECT_EQ(1u, gl.live_ids().count(failed)) << "not deleted by the load";
  EXPECT_EQ(0, gl.count("glAttachShader"));
  EXPECT_TRUE(renderer.gpu_program_unload(&program));
  EXPECT_THAT(gl.live_ids(), IsEmpty());
}

TEST_F(ProgramsTest, StageLoadedTwiceReplacesTheFirst) {
  start();
  load_stages();
  ASSERT_TRUE(renderer.gpu_program_link(&program));
  const std::string old = std::to_string(program.shader_id[GPU_SHADER_PIXEL]);
  gl.clear();
  EXPECT_TRUE(load(GPU_SHADER_PIXEL));
  EXPECT_TRUE(gl.called("glDetachShader(" + id() + ", " + old + ")"));
  EXPECT_TRUE(gl.called("glDeleteShader(" + old + ")"));
  EXPECT_FALSE(program.linked);
  EXPECT_EQ(3u, gl.live_ids().size());
}

// ---- check and reload ----

TEST_F(ProgramsTest, CheckCompileThrowsTheShaderAway) {
  start();
  char log[8] = "xxxxxxx";
  EXPECT_TRUE(renderer.gpu_shader_check_compile(GPU_SHADER_PIXEL, TEXT, log, sizeof(log)));
  EXPECT_THAT(gl.live_ids(), IsEmpty());
  EXPECT_STREQ("", log);
}

TEST_F(ProgramsTest, CheckCompileWarnsAndCutsTheLog) {
  LogCapture lines;
  start();
  gl.compile_result = false;
  gl.shader_log = "0123456789";
  char log[8] = {};
  EXPECT_FALSE(renderer.gpu_shader_check_compile(GPU_SHADER_PIXEL, TEXT, log, sizeof(log)));
  EXPECT_STREQ("0123456", log);
  EXPECT_TRUE(lines.contains("GPU shader compilation info log - 0123456789"));
  EXPECT_THAT(gl.live_ids(), IsEmpty());
  log[0] = 'k';
  EXPECT_FALSE(renderer.gpu_shader_check_compile(GPU_SHADER_PIXEL, TEXT, log, 0));
  EXPECT_EQ('k', log[0]) << "no room, nothing written";
  EXPECT_FALSE(renderer.gpu_shader_check_compile(GPU_SHADER_PIXEL, TEXT, nullptr, 8));
  EXPECT_FALSE(renderer.gpu_shader_check_compile(GPU_SHADER_PIXEL, nullptr, log, 8));
  EXPECT_FALSE(renderer.gpu_shader_check_compile(GPU_SHADER_D3D_EFFECT, TEXT, log, 8));
}

TEST_F(ProgramsTest, ReloadKeepsTheOldStageWhenTheNewOneFails) {
  start();
  load_stages();
  const unsigned int old = program.shader_id[GPU_SHADER_PIXEL], old_program = program.program_id;
  gl.compile_result = false;
  gl.shader_log = "bad";
  EXPECT_FALSE(renderer.gpu_shader_reload(&program, GPU_SHADER_PIXEL, TEXT, sizeof(TEXT)));
  EXPECT_EQ(old, program.shader_id[GPU_SHADER_PIXEL]);
  EXPECT_EQ(old_program, program.program_id);
  EXPECT_STREQ("bad", program.get_shader_info_log(GPU_SHADER_PIXEL));
  EXPECT_EQ(3u, gl.live_ids().size()) << "the failed shader is deleted";
}

TEST_F(ProgramsTest, ReloadMakesANewProgramOfAllStages) {
  start();
  load_stages();
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  const unsigned int old = program.program_id;
  gl.clear();
  EXPECT_TRUE(renderer.gpu_shader_reload(&program, GPU_SHADER_PIXEL, TEXT, sizeof(TEXT)));
  EXPECT_NE(old, program.program_id);
  EXPECT_EQ(2, gl.count("glAttachShader"));
  EXPECT_EQ(3u, gl.live_ids().size());
  EXPECT_FALSE(program.linked);
  EXPECT_EQ(nullptr, renderer.get_current_gpu_program()) << "the program that was bound is gone";
  EXPECT_FALSE(renderer.gpu_shader_reload(nullptr, GPU_SHADER_PIXEL, TEXT, sizeof(TEXT)));
  EXPECT_FALSE(renderer.gpu_shader_reload(&program, GPU_SHADER_PIXEL, nullptr, 3));
  EXPECT_FALSE(renderer.gpu_shader_reload(&program, GPU_SHADER_PIXEL, TEXT, 0));
}

TEST_F(ProgramsTest, AttachSetsAllAttributeFlagsAndClearsTheCaches) {
  start();
  load_stages();
  ASSERT_TRUE(renderer.gpu_program_use(&program));
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  renderer.gpu_program_bind_vertex_attrib_locations(&program);
  renderer.gpu_program_bind_vertex_attrib_locations_v2(&program);
  program._update_uniform_location_cache("x", 3);
  ASSERT_TRUE(renderer.gpu_program_attach_shaders(&program));
  EXPECT_TRUE(program.generic_attribs_detection_needed);
  EXPECT_TRUE(program.generic_attrib_names_binding_needed);
  EXPECT_TRUE(program.attrib_locations_dirty);
  EXPECT_TRUE(program.attrib_group_1_dirty);
  EXPECT_TRUE(program.attrib_group_2_dirty);
  EXPECT_FALSE(program.linked);
  EXPECT_EQ(-1, program._get_uniform_location_from_cache("x"));
  EXPECT_FALSE(renderer.gpu_program_attach_shaders(nullptr));
}

// ---- unloading ----

TEST_F(ProgramsTest, UnloadDeletesStagesAndProgramAndSaysSo) {
  LogCapture log;
  start();
  load_stages();
  program.set_gpu_program_id(12);
  ASSERT_TRUE(renderer.gpu_program_link(&program));
  const std::string text = "GPU program (prog / 12 / " + id() + ") unloaded from GPU memory";
  EXPECT_TRUE(renderer.gpu_program_unload(&program));
  EXPECT_TRUE(log.contains(text));
  EXPECT_THAT(gl.live_ids(), IsEmpty());
  EXPECT_EQ(0u, program.program_id);
  EXPECT_EQ(0u, program.shader_id[0]);
  EXPECT_FALSE(program.linked);
  EXPECT_FALSE(renderer.gpu_program_unload(&program));
  EXPECT_FALSE(renderer.gpu_program_unload(nullptr));
}

TEST_F(ProgramsTest, UnloadTakesEightStagesAndAttachingSix) {
  start();
  load_stages();
  program.shader_id[6] = renderer.gl().glCreateShader(GL_VERTEX_SHADER);
  program.shader_id[7] = renderer.gl().glCreateShader(GL_VERTEX_SHADER);
  const std::string stages[] = {std::to_string(program.shader_id[6]),
                                std::to_string(program.shader_id[7])};
  ASSERT_TRUE(renderer.gpu_program_attach_shaders(&program));
  EXPECT_EQ(2, gl.count("glAttachShader"));
  const std::string old_id = id();
  EXPECT_TRUE(renderer.gpu_program_unload(&program));
  for (const std::string& stage : stages) {
    EXPECT_FALSE(gl.called("glAttachShader(" + old_id + ", " + stage + ")"));
    EXPECT_TRUE(gl.called("glDetachShader(" + old_id + ", " + stage + ")"));
    EXPECT_TRUE(gl.called("glDeleteShader(" + stage + ")"));
  }
  EXPECT_EQ(0u, program.shader_id[7]);
}

TEST_F(ProgramsTest, UnloadOfTheCurrentProgramLeavesNoneCurrent) {
  start();
  load_stages();
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  EXPECT_EQ(&program, renderer.get_current_gpu_program());
  gl.clear();
  EXPECT_TRUE(renderer.gpu_program_unload(&program));
  EXPECT_EQ(nullptr, renderer.get_current_gpu_program());
  EXPECT_TRUE(gl.called("glUseProgram(0)"));
}

TEST_F(ProgramsTest, ProgramCanBeLoadedAgainAfterItWasUnloaded) {
  start();
  load_stages();
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  ASSERT_TRUE(renderer.gpu_program_unload(&program));
  load_stages();
  EXPECT_TRUE(program.generic_attribs_detection_needed);
  EXPECT_TRUE(program.attrib_locations_dirty);
  EXPECT_TRUE(renderer.gpu_program_bind(&program));
}

// ---- linking ----

TEST_F(ProgramsTest, LinkingHappensOnce) {
  start();
  load_stages();
  EXPECT_TRUE(renderer.gpu_program_link(&program));
  EXPECT_TRUE(renderer.gpu_program_link(&program));
  EXPECT_EQ(1, count_links());
  EXPECT_FALSE(renderer.gpu_program_link(nullptr));
  GpuProgramData empty;
  EXPECT_FALSE(renderer.gpu_program_link(&empty));
}

TEST_F(ProgramsTest, LinkLogIsStoredAndWarnedAlsoOnSuccess) {
  LogCapture log;
  start();
  load_stages();
  gl.program_log = "note";
  EXPECT_TRUE(renderer.gpu_program_link(&program));
  EXPECT_STREQ("note", program.get_info_log());
  EXPECT_TRUE(log.contains("GPU program (prog) linking info log - note"));
}

TEST_F(ProgramsTest, FailedLinkStoresItsLogAndBindsNothing) {
  start();
  load_stages();
  gl.link_result = false;
  gl.program_log = "no main";
  EXPECT_FALSE(renderer.gpu_program_bind(&program));
  EXPECT_STREQ("no main", program.get_info_log());
  EXPECT_FALSE(program.linked);
  EXPECT_EQ(0, gl.count("glUseProgram"));
  EXPECT_EQ(nullptr, renderer.get_current_gpu_program());
}

TEST_F(ProgramsTest, LinkForgetsLocationsAndMarksAllUniforms) {
  start();
  load_stages();
  gl.uniform_locations["color"] = 2;
  program.set_uniform_4f("color", 1, 2, 3, 4);
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  ASSERT_TRUE(renderer.gpu_program_apply_uniforms(&program));
  ASSERT_FALSE(program.find_uniform("color")->dirty);
  program.linked = false;
  gl.uniform_locations["color"] = 5;
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  EXPECT_TRUE(program.find_uniform("color")->dirty);
  gl.clear();
  ASSERT_TRUE(renderer.gpu_program_apply_uniforms(&program));
  EXPECT_TRUE(gl.called("glUniform4f(5, 1, 2, 3, 4)"));
}

TEST_F(ProgramsTest, ValidationGivesTheDriversAnswer) {
  start();
  load_stages();
  EXPECT_TRUE(renderer.gpu_program_validate(&program));
  EXPECT_TRUE(gl.called("glValidateProgram(" + id() + ")"));
  gl.validate_result = false;
  EXPECT_FALSE(renderer.gpu_program_validate(&program));
  EXPECT_FALSE(renderer.gpu_program_validate(nullptr));
}

// ---- binding ----

TEST_F(ProgramsTest, TwoBindsLinkOnce) {
  start();
  load_stages();
  EXPECT_TRUE(renderer.gpu_program_bind(&program));
  EXPECT_TRUE(renderer.gpu_program_bind(&program));
  EXPECT_EQ(1, count_links());
  EXPECT_EQ(2, gl.count("glUseProgram")) << "binding always makes its call";
}

TEST_F(ProgramsTest, BindOfNullUnbinds) {
  start();
  load_stages();
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  gl.clear();
  EXPECT_TRUE(renderer.gpu_program_bind(nullptr));
  EXPECT_THAT(take(), ElementsAre("glUseProgram(0)"));
  EXPECT_EQ(nullptr, renderer.get_current_gpu_program());
  EXPECT_TRUE(renderer.gpu_program_unbind(nullptr));
}

TEST_F(ProgramsTest, BuiltInVertexMeansNoGenericAttributes) {
  start();
  load_stages();
  gl.active_attribs = {{"gl_Color", -1}, {"gl_Vertex", -1}};
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  EXPECT_FALSE(program.get_use_generic_vertex_attribs_state());
  EXPECT_FALSE(program.generic_attribs_detection_needed);
}

TEST_F(ProgramsTest, NamesThatOnlyBeginLikeTheBuiltInVertexAreGeneric) {
  start();
  load_stages();
  gl.active_attribs = {{"gl_VertexID", -1}, {"orvex_Position", 0}};
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  EXPECT_TRUE(program.get_use_generic_vertex_attribs_state());
}

TEST_F(ProgramsTest, SlotsGetTheirLocationsAndOneNewLink) {
  start();
  load_stages();
  gl.active_attribs = {{"orvex_Color", 0}, {"orvex_Position", 1}, {"orvex_Normal", 2}};
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  EXPECT_THAT(gl.calls_of({"glBindAttribLocation"}),
              ElementsAre("glBindAttribLocation(" + id() + ", 0, \"orvex_Position\")",
                          "glBindAttribLocation(" + id() + ", 3, \"orvex_Color\")"));
  EXPECT_EQ(2, count_links());
  EXPECT_FALSE(program.attrib_locations_dirty);
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  EXPECT_EQ(2, count_links());
}

TEST_F(ProgramsTest, BindPutsNumberedAttributesAtFreeLocations) {
  start();
  load_stages();
  gl.active_attribs = {{"orvex_Position", 0}, {"orvex_Attrib4", 1}, {"orvex_Attrib12", 2}};
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  EXPECT_EQ(4, gl.active_attribs[1].location);
  EXPECT_EQ(12, gl.active_attribs[2].location);
}

TEST_F(ProgramsTest, BindLeavesANumberedAttributeWhoseLocationIsTaken) {
  start();
  load_stages();
  gl.active_attribs = {
      {"orvex_Instance_Position", 4}, {"orvex_Attrib4", 1}, {"other", 5}, {"orvex_Attrib5", 6}};
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  EXPECT_EQ(1, gl.active_attribs[1].location);
  EXPECT_EQ(6, gl.active_attribs[3].location);
  EXPECT_EQ(1, count_links());
}

TEST_F(ProgramsTest, UseBindsNumberedAttributesAndMarksTheProgramActive) {
  start();
  load_stages();
  gl.active_attribs = {{"orvex_Attrib3", 0},
                       {"my_orvex_Attrib7x", 1},
                       {"orvex_Attrib", 2},
                       {"orvex_Attrib99", 3},
                       {"orvex_Position", 4}};
  ASSERT_TRUE(renderer.gpu_program_use(&program));
  EXPECT_THAT(gl.calls_of({"glBindAttribLocation"}),
              ElementsAre("glBindAttribLocation(" + id() + ", 3, \"orvex_Attrib3\")",
                          "glBindAttribLocation(" + id() + ", 7, \"my_orvex_Attrib7x\")"));
  EXPECT_TRUE(program.active);
  EXPECT_EQ(&program, renderer.get_current_gpu_program());
  EXPECT_FALSE(program.generic_attrib_names_binding_needed);
  EXPECT_EQ(2, count_links());
  EXPECT_TRUE(renderer.gpu_program_unuse(&program));
  EXPECT_FALSE(program.active);
  EXPECT_EQ(nullptr, renderer.get_current_gpu_program());
}

TEST_F(ProgramsTest, UseLeavesNumberedAttributesThatAreRight) {
  start();
  load_stages();
  gl.active_attribs = {{"orvex_Attrib0", 0}, {"orvex_Attrib1", 1}};
  ASSERT_TRUE(renderer.gpu_program_use(&program));
  EXPECT_THAT(gl.calls_of({"glBindAttribLocation"}), IsEmpty());
  EXPECT_EQ(1, count_links());
}

TEST_F(ProgramsTest, ProgramsGoByTheirIdsToo) {
  start();
  EXPECT_TRUE(renderer.gpu_program_use_id(7));
  EXPECT_EQ(nullptr, renderer.get_current_gpu_program());
  EXPECT_TRUE(renderer.gpu_program_unuse_id());
  EXPECT_THAT(take(), ElementsAre("glUseProgram(7)", "glUseProgram(0)"));
}

// ---- attribute locations ----

TEST_F(ProgramsTest, AttributeLocationIsAskedOfTheDriver) {
  start();
  load_stages();
  gl.active_attribs = {{"a", 3}};
  EXPECT_EQ(3, renderer.gpu_program_get_vertex_attrib_location(&program, "a"));
  EXPECT_EQ(-1, renderer.gpu_program_get_vertex_attrib_location(&program, "b"));
  EXPECT_EQ(-1, renderer.gpu_program_get_vertex_attrib_location(&program, nullptr));
  EXPECT_EQ(-1, renderer.gpu_program_get_vertex_attrib_location(nullptr, "a"));
}

TEST_F(ProgramsTest, UnlinkedProgramHasNoLocationsAndRaisesNoError) {
  start();
  load_stages();
  gl.link_result = false;
  EXPECT_EQ(-1, renderer.gpu_program_get_vertex_attrib_location(&program, "a"));
  EXPECT_EQ(-1, renderer.gpu_program_get_uniform_location(&program, "a"));
  EXPECT_EQ(0, gl.count("glGetAttribLocation"));
  EXPECT_EQ(0, gl.count("glGetUniformLocation"));
}

TEST_F(ProgramsTest, BindingAnAttributeAsksForALinkAndDoesNotLink) {
  start();
  load_stages();
  ASSERT_TRUE(renderer.gpu_program_link(&program));
  gl.active_attribs = {{"a", 3}};
  gl.clear();
  EXPECT_TRUE(renderer.gpu_program_bind_vertex_attrib_location(&program, "a", 3));
  EXPECT_TRUE(gl.called("glBindAttribLocation(" + id() + ", 3, \"a\")")) << "also where it is";
  EXPECT_FALSE(program.linked);
  EXPECT_EQ(0, count_links());
  gl.clear();
  EXPECT_FALSE(renderer.gpu_program_bind_vertex_attrib_location(&program, "unknown", 1));
  EXPECT_FALSE(renderer.gpu_program_bind_vertex_attrib_location(&program, "a", 16));
  EXPECT_FALSE(renderer.gpu_program_bind_vertex_attrib_location(nullptr, "a", 1));
  EXPECT_EQ(0, gl.count("glBindAttribLocation"));
}

TEST_F(ProgramsTest, AttributeGroupsAreBoundOnceEach) {
  start();
  load_stages();
  ASSERT_TRUE(renderer.gpu_program_link(&program));
  gl.active_attribs = {{"orvex_Position", 9},
                       {"orvex_Instance_Position", 9},
                       {"orvex_Instance_Misc", 9},
                       {"orvex_Normal", 2}};
  gl.clear();
  EXPECT_TRUE(renderer.gpu_program_bind_vertex_attrib_locations(&program));
  EXPECT_THAT(gl.calls_of({"glBindAttribLocation"}),
              ElementsAre("glBindAttribLocation(" + id() + ", 0, \"orvex_Position\")",
                          "glBindAttribLocation(" + id() + ", 4, \"orvex_Instance_Position\")"));
  gl.active_attribs[1].location = 9;
  gl.clear();
  EXPECT_TRUE(renderer.gpu_program_bind_vertex_attrib_locations_v2(&program));
  EXPECT_THAT(gl.calls_of({"glBindAttribLocation"}),
              ElementsAre("glBindAttribLocation(" + id() + ", 4, \"orvex_Instance_Position\")",
                          "glBindAttribLocation(" + id() + ", 8, \"orvex_Instance_Misc\")"));
  gl.active_attribs[0].location = 9;
  gl.clear();
  EXPECT_TRUE(renderer.gpu_program_bind_vertex_attrib_locations(&program));
  EXPECT_TRUE(renderer.gpu_program_bind_vertex_attrib_locations_v2(&program));
  EXPECT_THAT(take_changes(), IsEmpty()) << "once each";
  EXPECT_FALSE(renderer.gpu_program_bind_vertex_attrib_locations(nullptr));
  EXPECT_FALSE(renderer.gpu_program_bind_vertex_attrib_locations_v2(nullptr));
}

TEST_F(ProgramsTest, AttributeGroupThatIsRightKeepsTheLinkAndTheUniforms) {
  start();
  load_stages();
  ASSERT_TRUE(renderer.gpu_program_link(&program));
  gl.active_attribs = {{"orvex_Position", 0}, {"orvex_Normal", 2}};
  EXPECT_TRUE(renderer.gpu_program_bind_vertex_attrib_locations(&program));
  EXPECT_TRUE(program.linked);
}

// ---- the rest ----

TEST_F(ProgramsTest, LogsAreReadFromTheDriver) {
  start();
  load_stages();
  gl.shader_log = "shader says";
  gl.program_log = "program says";
  EXPECT_STREQ("shader says", renderer.gpu_program_get_shader_log(&program, GPU_SHADER_VERTEX));
  EXPECT_STREQ("program says", renderer.gpu_program_get_program_log(&program));
  EXPECT_STREQ("", renderer.gpu_program_get_shader_log(&program, GPU_SHADER_COMPUTE));
  EXPECT_EQ(nullptr, renderer.gpu_program_get_shader_log(nullptr, GPU_SHADER_VERTEX));
  EXPECT_EQ(nullptr, renderer.gpu_program_get_shader_log(&program, GPU_SHADER_D3D_EFFECT));
  EXPECT_EQ(nullptr, renderer.gpu_program_get_program_log(nullptr));
}

TEST_F(ProgramsTest, ComputeIsDispatchedBehindItsUniforms) {
  start();
  load_stages();
  gl.uniform_locations["n"] = 1;
  program.set_uniform_1i("n", 5);
  ASSERT_TRUE(renderer.gpu_program_use(&program));
  gl.clear();
  EXPECT_TRUE(renderer.gpu_program_dispatch_compute(&program, 2, 3, 4));
  EXPECT_THAT(take_changes(), ElementsAre("glUniform1i(1, 5)", "glDispatchCompute(2, 3, 4)"));
  EXPECT_FALSE(renderer.gpu_program_dispatch_compute(nullptr, 1, 1, 1));
}

TEST_F(ProgramsTest, ComputeIsFalseWhereAbsent) {
  gl.remove_function("glDispatchCompute");
  start();
  load_stages();
  EXPECT_FALSE(renderer.gpu_program_dispatch_compute(&program, 1, 1, 1));
}

TEST_F(ProgramsTest, CompilerThreadsWhereThereAreAny) {
  start();
  EXPECT_TRUE(renderer.set_max_shader_compiler_threads(4));
  EXPECT_THAT(take(), ElementsAre("glMaxShaderCompilerThreadsARB(4)"));
}

TEST_F(ProgramsTest, CompilerThreadsAreFalseWhereAbsent) {
  gl.remove_function("glMaxShaderCompilerThreadsARB");
  start();
  EXPECT_FALSE(renderer.set_max_shader_compiler_threads(4));
}

TEST_F(ProgramsTest, StoppedRendererHasNoPrograms) {
  start();
  load_stages();
  renderer.stop();
  EXPECT_FALSE(load(GPU_SHADER_VERTEX));
  EXPECT_FALSE(renderer.gpu_program_link(&program));
  EXPECT_FALSE(renderer.gpu_program_bind(&program));
  EXPECT_FALSE(renderer.gpu_program_unload(&program));
  EXPECT_FALSE(renderer.gpu_program_validate(&program));
  EXPECT_FALSE(renderer.gpu_program_use_id(1));
  EXPECT_TRUE(renderer.gpu_program_unbind(&program));
}

TEST_F(ProgramsTest, StoppedRendererBindsNoLinkedProgramEither) {
  start();
  load_stages();
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  renderer.stop();
  EXPECT_EQ(nullptr, renderer.get_current_gpu_program()) << "the record may be gone by the start";
  EXPECT_FALSE(renderer.gpu_program_bind(&program));
  EXPECT_FALSE(renderer.gpu_program_use(&program));
  EXPECT_EQ(nullptr, renderer.get_current_gpu_program());
  EXPECT_FALSE(renderer.gpu_program_dispatch_compute(&program, 1, 1, 1));
}
