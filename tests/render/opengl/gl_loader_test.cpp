#include "render/opengl/gl_loader.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "render/opengl/renderer_opengl.h"
#include "support/fake_gl.h"
#include "support/log_capture.h"

namespace orv::test {
namespace {

using detail::find_granted;

void first() {}
void second() {}

// Gives any name a function, as the loaders of window systems do.
GlProcAddress all_stubs() {
  return [](const char*) { return &first; };
}

GlFacts facts_of(int major, int minor, std::set<std::string> extensions = {}, bool core = false) {
  GlFacts facts;
  facts.version_major = major;
  facts.version_minor = minor;
  facts.core_context = core;
  for (const std::string& name : extensions) facts.extensions.insert(name);
  return facts;
}

TEST(GlLoader, VersionGrants) {
  const auto granted = [](int major, int minor) {
    return find_granted(all_stubs(), facts_of(major, minor), "glX", "3.1") != nullptr;
  };
  EXPECT_FALSE(granted(2, 1));
  EXPECT_FALSE(granted(3, 0));
  EXPECT_TRUE(granted(3, 1));
  EXPECT_TRUE(granted(4, 0));
}

TEST(GlLoader, StubForAnAbsentExtensionIsNotTaken) {
  EXPECT_EQ(find_granted(all_stubs(), facts_of(4, 5), "glX", "GL_ARB_x"), nullptr);
  EXPECT_NE(find_granted(all_stubs(), facts_of(2, 1, {"GL_ARB_x"}), "glX", "GL_ARB_x"), nullptr);
}

TEST(GlLoader, NameThatBelongsToTheGrantIsFetched) {
  const std::map<std::string, GlProc> known = {{"glX", &first}, {"glXARB", &second}};
  const GlProcAddress source = [&](const char* name) { return known.at(name); };
  const char* grants = "3.0=glX GL_ARB_x=glXARB";
  EXPECT_EQ(find_granted(source, facts_of(3, 0, {"GL_ARB_x"}), "glXARB", grants), &first);
  EXPECT_EQ(find_granted(source, facts_of(2, 1, {"GL_ARB_x"}), "glXARB", grants), &second);
  EXPECT_EQ(find_granted(source, facts_of(2, 1), "glXARB", grants), nullptr);
}

TEST(GlLoader, NextGrantIsTriedWhenTheFirstHasNoFunction) {
  const GlProcAddress source = [](const char* name) {
    return std::string(name) == "glXARB" ? &first : nullptr;
  };
  EXPECT_EQ(find_granted(source, facts_of(3, 0, {"GL_ARB_x"}), "glX", "3.0 GL_ARB_x=glXARB"),
            &first);
}

TEST(GlLoader, FixedPipelineIsNotGrantedInCoreContexts) {
  EXPECT_NE(find_granted(all_stubs(), facts_of(4, 5), "glX", "fixed:1.3"), nullptr);
  EXPECT_EQ(find_granted(all_stubs(), facts_of(4, 5, {}, true), "glX", "fixed:1.3"), nullptr);
}

TEST(GlLoader, NullArgumentsGiveNull) {
  EXPECT_EQ(find_granted(nullptr, facts_of(4, 5), "glX", "1.0"), nullptr);
  EXPECT_EQ(find_granted(all_stubs(), facts_of(4, 5), nullptr, "1.0"), nullptr);
  EXPECT_EQ(find_granted(all_stubs(), facts_of(4, 5), "glX", nullptr), nullptr);
}

TEST(GlLoader, ListHasAllEntryPointsOnce) {
  std::set<std::string> names;
  int count = 0;
#define ORV_GL(result, name, parameters, arguments, grants) \
  names.insert(#name);                                      \
  ++count;
#include "render/opengl/gl_entry_points.inc"
  EXPECT_EQ(count, 166);
  EXPECT_EQ(names.size(), 166u);
}

TEST(GlLoader, ListBeginsAndEndsInTheOrderOfLoading) {
  std::vector<std::string> names;
#define ORV_GL(result, name, parameters, arguments, grants) names.push_back(#name);
#include "render/opengl/gl_entry_points.inc"
  EXPECT_EQ(names[0], "glDrawArraysInstancedARB");
  EXPECT_EQ(names[1], "glDrawElementsInstancedARB");
  EXPECT_EQ(names[2], "glVertexAttribDivisorARB");
  EXPECT_EQ(names[3], "glPatchParameteri");
  EXPECT_EQ(names[4], "glDeleteBuffers");
  EXPECT_EQ(names.back(), "glTexSubImage3D");
}

struct VersionCase {
  const char* name;
  int major;
  int minor;
  bool core;
  bool vertex_arrays;    // glBindVertexArray
  bool instancing;       // glDrawArraysInstancedARB
  bool subroutines;      // glUniformSubroutinesuiv
  bool clip_control;     // glClipControl
  bool client_textures;  // glClientActiveTexture
  bool matrix_mode;      // glMatrixMode
};

class GlLoaderVersions : public testing::TestWithParam<VersionCase> {};

TEST_P(GlLoaderVersions, PointersAreSetExactlyWhereTheVersionHasThem) {
  const VersionCase& version = GetParam();
  FakeGl gl;
  gl.set_version(version.major, version.minor, version.core);
  gl.set_extensions({});
  RendererOpenGL renderer;
  ASSERT_TRUE(gl.start(renderer));
  EXPECT_EQ(renderer.gl().glBindVertexArray != nullptr, version.vertex_arrays);
  EXPECT_EQ(renderer.gl().glDrawArraysInstancedARB != nullptr, version.instancing);
  EXPECT_EQ(renderer.gl().glUniformSubroutinesuiv != nullptr, version.subroutines);
  EXPECT_EQ(renderer.gl().glClipControl != nullptr, version.clip_control);
  EXPECT_EQ(renderer.gl().glClientActiveTexture != nullptr, version.client_textures);
  EXPECT_EQ(renderer.core_functions().glMatrixMode != nullptr, version.matrix_mode);
  EXPECT_NE(renderer.core_functions().glDrawArrays, nullptr);
  EXPECT_EQ(renderer.gl().glApplyFramebufferAttachmentCMAAINTEL, nullptr);
  EXPECT_EQ(renderer.gl().glGetTextureHandleARB, nullptr);
  EXPECT_EQ(renderer.gl().glDepthBounds, nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Versions, GlLoaderVersions,
    testing::Values(VersionCase{"v21", 2, 1, false, false, false, false, false, true, true},
                    VersionCase{"v30", 3, 0, false, true, false, false, false, true, true},
                    VersionCase{"v33compat", 3, 3, false, true, true, false, false, true, true},
                    VersionCase{"v33core", 3, 3, true, true, true, false, false, false, false},
                    VersionCase{"v45compat", 4, 5, false, true, true, true, true, true, true},
                    VersionCase{"v45core", 4, 5, true, true, true, true, true, false, false}),
    [](const auto& one) { return std::string(one.param.name); });

TEST(GlLoader, DepthBoundsComeFromTheirExtension) {
  FakeGl gl;
  gl.set_extensions({"GL_EXT_depth_bounds_test"});
  RendererOpenGL renderer;
  ASSERT_TRUE(gl.start(renderer));
  EXPECT_NE(renderer.gl().glDepthBounds, nullptr);
}

TEST(GlLoader, EachFetchedFunctionIsLoggedOnDemand) {
  FakeGl gl;
  gl.remove_function("glClipControl");
  RendererOpenGL renderer;
  gl.attach(renderer);
  LogCapture log;
  EXPECT_TRUE(renderer.start_v2(true));
  EXPECT_EQ(log.count("OpenGL function pointer - "), 166);
  EXPECT_EQ(log.count("OpenGL function pointer - glClipControl NOT AVAILABLE!"), 1);
  EXPECT_EQ(log.count("OpenGL function pointer - glTexImage3D FETCHED OK."), 1);
}

TEST(GlLoader, NothingIsLoggedByThePlainStart) {
  FakeGl gl;
  RendererOpenGL renderer;
  gl.attach(renderer);
  LogCapture log;
  EXPECT_TRUE(renderer.start());
  EXPECT_EQ(log.count("OpenGL function pointer"), 0);
}

TEST(GlLoader, MissingFunctionsDoNotStopTheStart) {
  FakeGl gl;
#define ORV_GL(result, name, parameters, arguments, grants) gl.remove_function(#name);
#include "render/opengl/gl_entry_points.inc"
  RendererOpenGL renderer;
  EXPECT_TRUE(gl.start(renderer));
  EXPECT_FALSE(renderer.is_instancing_supported());
}

}  // namespace
}  // namespace orv::test
