#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <orv/render/render_window.h>
#include <orv/render/renderer_gpu.h>

#include <cstring>
#include <string>

#include "render/opengl/renderer_opengl.h"
#include "support/fake_back_end.h"
#include "support/fake_gl.h"
#include "support/log_capture.h"

namespace orv::test {
namespace {

using testing::HasSubstr;

// ---- the plugin ------------------------------------------------------------------------------

TEST(RendererOpenGL, PluginRecord) {
  const RendererOpenGL renderer;
  EXPECT_STREQ(renderer.get_name(), "OpenGL");
  EXPECT_STREQ(renderer.get_description(), "OpenGL renderer (OpenGL 2, 3.x and 4.x supported).");
  EXPECT_STREQ(renderer.get_author(), "Orvane Core team");
  EXPECT_THAT(renderer.get_build_info(), HasSubstr("BUILD_DATE: ["));
  EXPECT_THAT(renderer.get_build_info(), HasSubstr("] - BUILD_TIME: ["));
  EXPECT_EQ(renderer.get_version_major(), 0);
  EXPECT_EQ(renderer.get_version_minor(), 1);
  EXPECT_EQ(renderer.get_version_patch(), 0);
  EXPECT_EQ(renderer.get_type(), PLUGIN_TYPE_RENDERER);
  EXPECT_EQ(renderer.get_api_type(), ORV_API3D_OPENGL);
  EXPECT_STREQ(renderer.get_api_name(), "OpenGL");
}

TEST(RendererOpenGL, InitializeAndTerminateLog) {
  RendererOpenGL renderer;
  LogCapture log;
  const std::string id = std::to_string(renderer.getid());
  EXPECT_TRUE(renderer.initialize());
  EXPECT_TRUE(renderer.terminate());
  EXPECT_TRUE(log.contains("plugin OpenGL (id=" + id + ") - initialize()"));
  EXPECT_TRUE(log.contains("plugin OpenGL (id=" + id + ") - terminate()"));
}

// ---- start and stop --------------------------------------------------------------------------

TEST(RendererOpenGL, StartLogsVersionAndRenderer) {
  FakeGl gl;
  gl.set_string(GL_VERSION, "4.5.0 Fake");
  RendererOpenGL renderer;
  gl.attach(renderer);
  LogCapture log;
  EXPECT_TRUE(renderer.start());
  EXPECT_TRUE(renderer.is_started());
  EXPECT_TRUE(
      log.contains("plugin OpenGL (id=" + std::to_string(renderer.getid()) + ") - start()"));
  EXPECT_TRUE(log.contains("start() - GL_VERSION: 4.5.0 Fake"));
  EXPECT_TRUE(log.contains("start() - GL_RENDERER: Fake renderer"));
  EXPECT_TRUE(log.contains("OpenGL version - GL_MAJOR_VERSION: 4 - GL_MINOR_VERSION: 5"));
}

TEST(RendererOpenGL, SecondStartDoesNothing) {
  FakeGl gl;
  RendererOpenGL renderer;
  ASSERT_TRUE(gl.start(renderer));
  EXPECT_TRUE(renderer.start());
  EXPECT_TRUE(gl.calls().empty());
  EXPECT_EQ(renderer.get_num_gpus(), 1u);
}

TEST(RendererOpenGL, StartMakesAGpuNamedAfterTheRenderer) {
  FakeGl gl;
  RendererOpenGL renderer;
  ASSERT_TRUE(gl.start(renderer));
  ASSERT_EQ(renderer.get_num_gpus(), 1u);
  EXPECT_EQ(renderer.gpu_get_by_index(0)->getindex(), 0u);
  EXPECT_STREQ(renderer.gpu_get_name(renderer.get_current_gpu()), "Fake renderer");
}

TEST(RendererOpenGL, StartWithoutARendererTextMakesNoGpu) {
  FakeGl gl;
  gl.remove_string(GL_RENDERER);
  RendererOpenGL renderer;
  EXPECT_TRUE(gl.start(renderer));
  EXPECT_EQ(renderer.get_num_gpus(), 0u);
}

TEST(RendererOpenGL, StartWithoutAContextFailsAndMayBeTriedAgain) {
  RendererOpenGL renderer;
  renderer.use_proc_address([](const char*) -> GlProc { return nullptr; });
  EXPECT_FALSE(renderer.start());
  EXPECT_FALSE(renderer.is_started());
  EXPECT_EQ(renderer.get_num_gpus(), 0u);
  EXPECT_EQ(renderer.get_major_version(), 0);
  FakeGl gl;
  EXPECT_TRUE(gl.start(renderer));
  EXPECT_EQ(renderer.get_major_version(), 4);
  renderer.stop();
}

TEST(RendererOpenGL, StopLogsAndClearsTheTables) {
  FakeGl gl;
  RendererOpenGL renderer;
  ASSERT_TRUE(gl.start(renderer));
  LogCapture log;
  EXPECT_TRUE(renderer.stop());
  EXPECT_TRUE(log.contains("plugin OpenGL (id=" + std::to_string(renderer.getid()) + ") - stop()"));
  EXPECT_FALSE(renderer.is_started());
  EXPECT_EQ(renderer.core_functions().glEnable, nullptr);
  EXPECT_EQ(renderer.gl().glUseProgram, nullptr);
  EXPECT_EQ(renderer.get_num_capabilities(), 0u);
}

TEST(RendererOpenGL, StopBeforeStartIsTrueAndSilent) {
  RendererOpenGL renderer;
  LogCapture log;
  EXPECT_TRUE(renderer.stop());
  EXPECT_TRUE(log.lines().empty());
}

// Writes down the end of the renderer's own resources.
class StopOrder : public RendererOpenGL {
 public:
  bool gpu_render_target_killall(RendererGpu* gpu) override {
    order += gpu ? "T! " : "T ";
    return RendererOpenGL::gpu_render_target_killall(gpu);
  }
  bool reserved_killall_1(RendererGpu* gpu) override { return note(gpu, "1"); }
  bool reserved_killall_2(RendererGpu* gpu) override { return note(gpu, "2"); }
  bool reserved_killall_3(RendererGpu* gpu) override { return note(gpu, "3"); }
  std::string order;

 private:
  bool note(const RendererGpu* gpu, const char* name) {
    order += std::string(name) + (gpu ? "! " : " ");
    return true;
  }
};

TEST(RendererOpenGL, StopKillsTargetsThenReservedTwoOneThreeWithNull) {
  FakeGl gl;
  StopOrder renderer;
  ASSERT_TRUE(gl.start(renderer));
  renderer.stop();
  EXPECT_EQ(renderer.order, "T 2 1 3 ");
}

TEST(RendererOpenGL, SecondStartAfterStopAppendsASecondGpu) {
  FakeGl gl;
  RendererOpenGL renderer;
  ASSERT_TRUE(gl.start(renderer));
  renderer.stop();
  EXPECT_EQ(renderer.get_num_gpus(), 1u);
  ASSERT_TRUE(renderer.start());
  EXPECT_EQ(renderer.get_num_gpus(), 2u);
  EXPECT_NE(renderer.core_functions().glEnable, nullptr);
  EXPECT_EQ(renderer.get_num_capabilities(), 91u);
}

// ---- version ---------------------------------------------------------------------------------

struct VersionText {
  const char* name;
  const char* text;
  int major_answer;  // of GL_MAJOR_VERSION, -1: the driver rejects the name
  int minor_answer;
  int major;
  int minor;
};

class GlVersionText : public testing::TestWithParam<VersionText> {};

TEST_P(GlVersionText, IsReadAs) {
  const VersionText& version = GetParam();
  FakeGl gl;
  if (version.major_answer < 0) {
    gl.reject_integer(GL_MAJOR_VERSION);
    gl.reject_integer(GL_MINOR_VERSION);
  } else {
    gl.set_integer(GL_MAJOR_VERSION, version.major_answer);
    gl.set_integer(GL_MINOR_VERSION, version.minor_answer);
  }
  gl.set_string(GL_VERSION, version.text);
  RendererOpenGL renderer;
  gl.attach(renderer);
  int major = -1;
  int minor = -1;
  EXPECT_EQ(renderer.get_api_version(&major, &minor), version.major > 0);
  EXPECT_EQ(major, version.major);
  EXPECT_EQ(minor, version.minor);
  EXPECT_TRUE(renderer.get_api_version(nullptr, nullptr) == (version.major > 0));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, GlVersionText,
    testing::Values(VersionText{"NumbersWinFromTwoUp", "2.1 Fake", 3, 2, 3, 2},
                    VersionText{"EmbeddedThreeOneGivesThreeZero", "OpenGL ES 3.1 Fake", 0, 0, 3, 0},
                    VersionText{"EmbeddedTwoGivesTwoZero", "OpenGL ES 2.0 Fake", 0, 0, 2, 0},
                    VersionText{"ThreeThreeZero", "3.3.0", 0, 0, 3, 3},
                    VersionText{"MinorIsTheThirdCharacter", "4.5.0 NVIDIA", 0, 0, 4, 5},
                    VersionText{"FourTenGivesOne", "4.10", 0, 0, 4, 1},
                    VersionText{"RejectedNames", "2.1 Fake", -1, -1, 2, 1},
                    VersionText{"NoVersionAtAll", "driver", 0, 0, 0, 0},
                    VersionText{"ShortText", "4", 0, 0, 0, 0},
                    VersionText{"EmptyText", "", 0, 0, 0, 0}),
    [](const auto& one) { return std::string(one.param.name); });

TEST(RendererOpenGL, VersionFromTheTextIsLogged) {
  FakeGl gl;
  gl.set_version(2, 1);
  gl.set_string(GL_VERSION, "2.1 Fake");
  RendererOpenGL renderer;
  gl.attach(renderer);
  LogCapture log;
  renderer.get_api_version(nullptr, nullptr);
  EXPECT_TRUE(log.contains("OpenGL version - GL_VERSION: 2.1 Fake"));
}

TEST(RendererOpenGL, RejectedVersionNamesLeaveNoError) {
  FakeGl gl;
  gl.set_version(2, 1);
  RendererOpenGL renderer;
  ASSERT_TRUE(gl.start(renderer));
  EXPECT_EQ(renderer.check_gl_error(false, nullptr), 0u);
}

TEST(RendererOpenGL, VersionAtLeast) {
  FakeGl gl;
  gl.set_version(3, 3);
  RendererOpenGL renderer;
  gl.attach(renderer);
  EXPECT_TRUE(renderer.is_api_version_at_least(3, 3));
  EXPECT_TRUE(renderer.is_api_version_at_least(3, 2));
  EXPECT_TRUE(renderer.is_api_version_at_least(2, 9));
  EXPECT_FALSE(renderer.is_api_version_at_least(3, 4));
  EXPECT_FALSE(renderer.is_api_version_at_least(4, 0));
}

TEST(RendererOpenGL, VersionNumbersAreThoseOfTheStart) {
  FakeGl gl;
  gl.set_version(3, 2);
  RendererOpenGL renderer;
  EXPECT_EQ(renderer.get_major_version(), 0);
  ASSERT_TRUE(gl.start(renderer));
  EXPECT_EQ(renderer.get_major_version(), 3);
  EXPECT_EQ(renderer.get_minor_version(), 2);
}

TEST(RendererOpenGL, TextsComeFromTheDriver) {
  FakeGl gl;
  RendererOpenGL renderer;
  ASSERT_TRUE(gl.start(renderer));
  EXPECT_STREQ(renderer.get_gl_renderer(), "Fake renderer");
  EXPECT_STREQ(renderer.get_gl_vendor(), "Fake vendor");
  EXPECT_STREQ(renderer.get_glsl_version(), "4.50");
  EXPECT_THAT(renderer.get_gl_version(), HasSubstr("4.5"));
}

TEST(RendererOpenGL, TextsAreNullWithoutAContext) {
  RendererOpenGL renderer;
  renderer.use_proc_address([](const char*) -> GlProc { return nullptr; });
  EXPECT_EQ(renderer.get_gl_renderer(), nullptr);
  EXPECT_EQ(renderer.get_gl_vendor(), nullptr);
  EXPECT_EQ(renderer.get_glsl_version(), nullptr);
  EXPECT_EQ(renderer.get_gl_version(), nullptr);
  EXPECT_EQ(renderer.get_gl_extensions(), nullptr);
}

// ---- paths -----------------------------------------------------------------------------------

struct PathCase {
  const char* name;
  int major;
  int minor;
  bool core;
  const char* text;  // null: the fake's own
  bool gl2_mode;
  bool core_context;
  bool vertex_arrays;
  bool subroutines;
};

class GlPaths : public testing::TestWithParam<PathCase> {};

TEST_P(GlPaths, WithoutAWindow) {
  const PathCase& path = GetParam();
  FakeGl gl;
  gl.set_version(path.major, path.minor, path.core);
  if (path.text) gl.set_string(GL_VERSION, path.text);
  gl.set_extensions({});
  RendererOpenGL renderer;
  ASSERT_TRUE(gl.start(renderer));
  EXPECT_EQ(renderer.facts().gl2_mode, path.gl2_mode);
  EXPECT_EQ(renderer.is_core_context(), path.core_context);
  EXPECT_EQ(renderer.use_vertex_arrays(), path.vertex_arrays);
  EXPECT_EQ(renderer.facts().subroutines_supported, path.subroutines);
  EXPECT_EQ(renderer.facts().s3tc_supported, -1);
  EXPECT_EQ(renderer.facts().rgtc_supported, -1);
}

INSTANTIATE_TEST_SUITE_P(
    Versions, GlPaths,
    testing::Values(
        PathCase{"v21", 2, 1, false, nullptr, true, false, false, false},
        PathCase{"v30Compatibility", 3, 0, false, "3.0 ompatibility", false, false, false, false},
        PathCase{"v30WithoutTheWord", 3, 0, false, "3.0 Mesa", false, false, true, false},
        PathCase{"v31WithoutTheWord", 3, 1, false, "3.1 Mesa", false, true, true, false},
        PathCase{"v33Compatibility", 3, 3, false, nullptr, false, false, false, false},
        PathCase{"v33Core", 3, 3, true, nullptr, false, true, true, false},
        PathCase{"v45Compatibility", 4, 5, false, nullptr, false, false, false, true},
        PathCase{"v45Core", 4, 5, true, nullptr, false, true, true, true}),
    [](const auto& one) { return std::string(one.param.name); });

TEST(RendererOpenGL, ThreeOneWithTheCompatibilityExtensionHasTheFixedPipeline) {
  FakeGl gl;
  gl.set_version(3, 1);
  gl.set_extensions({"GL_ARB_compatibility"});
  RendererOpenGL renderer;
  ASSERT_TRUE(gl.start(renderer));
  EXPECT_FALSE(renderer.is_core_context());
}

TEST(RendererOpenGL, RadeonIsSeenInTheRendererText) {
  FakeGl gl;
  RendererOpenGL plain;
  ASSERT_TRUE(gl.start(plain));
  EXPECT_FALSE(plain.facts().renderer_is_radeon);
  gl.set_string(GL_RENDERER, "AMD Radeon 9");
  RendererOpenGL renderer;
  ASSERT_TRUE(gl.start(renderer));
  EXPECT_TRUE(renderer.facts().renderer_is_radeon);
}

TEST(RendererOpenGL, InstancingNeedsBothFunctions) {
  for (const char* missing : {"", "glDrawElementsInstancedARB", "glVertexAttribDivisorARB"}) {
    FakeGl gl;
    gl.remove_function(missing);
    RendererOpenGL renderer;
    ASSERT_TRUE(gl.start(renderer));
    EXPECT_EQ(renderer.is_instancing_supported(), !*missing) << missing;
    EXPECT_EQ(renderer.facts().instancing_supported, !*missing) << missing;
  }
}

// ---- paths with a window ---------------------------------------------------------------------

class GlWindowPaths : public testing::Test {
 protected:
  bool start(bool core_profile) {
    renderer_.use_context_back_end(&back_end_);
    RenderWindow* window = renderer_.render_window_alloc();
    RenderWindowData data;
    data.native_window = this;
    data.gl_major = 3;
    data.core_profile = core_profile;
    return renderer_.render_window_create_context(window, &data, nullptr) && renderer_.start();
  }

  FakeGl gl_;
  FakeBackEnd back_end_{gl_};
  RendererOpenGL renderer_;
};

TEST_F(GlWindowPaths, GrantedCoreProfileMeansVertexArrays) {
  gl_.set_version(3, 3, true);
  ASSERT_TRUE(start(true));
  EXPECT_TRUE(renderer_.use_vertex_arrays());
}

TEST_F(GlWindowPaths, CompatibilityWindowMeansNone) {
  gl_.set_version(3, 1);
  gl_.set_extensions({"GL_ARB_compatibility"});
  gl_.set_string(GL_VERSION, "3.1 Mesa");
  ASSERT_TRUE(start(false));
  EXPECT_FALSE(renderer_.use_vertex_arrays());
}

TEST_F(GlWindowPaths, CoreContextOfAHostMeansVertexArraysToo) {
  gl_.set_version(3, 3, true);
  ASSERT_TRUE(start(false));
  EXPECT_FALSE(renderer_.get_current_render_window()->core_profile_granted);
  EXPECT_TRUE(renderer_.use_vertex_arrays());
}

TEST_F(GlWindowPaths, FormatsAndSubroutinesComeFromTheExtensionList) {
  gl_.set_version(4, 5);
  gl_.set_extensions({"GL_EXT_texture_compression_s3tc"});
  ASSERT_TRUE(start(false));
  EXPECT_EQ(renderer_.facts().s3tc_supported, 1);
  EXPECT_EQ(renderer_.facts().rgtc_supported, 0);
  EXPECT_FALSE(renderer_.facts().subroutines_supported);
}

TEST_F(GlWindowPaths, SubroutinesByExtension) {
  gl_.set_version(3, 3);
  gl_.set_extensions({"GL_ARB_shader_subroutine"});
  ASSERT_TRUE(start(false));
  EXPECT_TRUE(renderer_.facts().subroutines_supported);
}

// ---- vendor switch ---------------------------------------------------------------------------

TEST(RendererOpenGL, RadeonWorkaround) {
  RendererOpenGL renderer;
  EXPECT_TRUE(renderer.get_radeon_workaround());
  EXPECT_TRUE(renderer.set_radeon_workaround("my radeon switch", false));
  EXPECT_FALSE(renderer.get_radeon_workaround());
  EXPECT_FALSE(renderer.set_radeon_workaround("Radeon", true));
  EXPECT_FALSE(renderer.set_radeon_workaround(nullptr, true));
  EXPECT_FALSE(renderer.get_radeon_workaround());
}

}  // namespace
}  // namespace orv::test
