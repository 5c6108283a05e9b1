#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "render/opengl/renderer_opengl.h"
#include "support/fake_gl.h"
#include "support/log_capture.h"

namespace orv {

/// Reaches what the renderer's own operations use among themselves.
struct RendererOpenGLTestAccess {
  static void log_error(RendererOpenGL& renderer, const std::string& text) {
    renderer.log_error("%s", text.c_str());
  }
};

}  // namespace orv

namespace orv::test {
namespace {

class Diagnostics : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(gl_.start(renderer_)); }

  FakeGl gl_;
  RendererOpenGL renderer_;
};

// ---- errors ----

TEST_F(Diagnostics, UncheckedErrorIsTheNextOne) {
  gl_.push_error(GL_INVALID_VALUE);
  gl_.push_error(GL_INVALID_ENUM);
  LogCapture log;
  EXPECT_EQ(renderer_.check_gl_error(false, "here"), static_cast<unsigned int>(GL_INVALID_VALUE));
  EXPECT_TRUE(log.lines().empty());
  EXPECT_EQ(renderer_.check_gl_error(false, nullptr), static_cast<unsigned int>(GL_INVALID_ENUM));
}

TEST_F(Diagnostics, CheckedErrorsAreAllNamedAndTheFirstKept) {
  gl_.push_error(GL_INVALID_VALUE);
  gl_.push_error(GL_OUT_OF_MEMORY);
  LogCapture log;
  EXPECT_EQ(renderer_.check_gl_error(true, "here"), static_cast<unsigned int>(GL_INVALID_VALUE));
  EXPECT_TRUE(log.contains("GL_ERROR - here -  GL_INVALID_VALUE GL_OUT_OF_MEMORY (1281)"));
  EXPECT_EQ(renderer_.check_gl_error(false, nullptr), 0u);
}

TEST_F(Diagnostics, CheckedErrorWithoutAPlace) {
  gl_.push_error(GL_INVALID_ENUM);
  LogCapture log;
  renderer_.check_gl_error(true, nullptr);
  EXPECT_TRUE(log.contains("GL_ERROR -  GL_INVALID_ENUM (1280)"));
}

TEST_F(Diagnostics, NoErrorIsLoggedAsOk) {
  LogCapture log;
  EXPECT_EQ(renderer_.check_gl_error(true, "here"), 0u);
  EXPECT_TRUE(log.contains("GL_OK - here"));
  log.clear();
  EXPECT_EQ(renderer_.check_gl_error(true, nullptr), 0u);
  EXPECT_EQ(log.count("GL_OK"), 1);
  EXPECT_EQ(log.count("GL_OK -"), 0);
}

TEST_F(Diagnostics, EndlessErrorsOfALostContextEnd) {
  gl_.set_endless_error(GL_CONTEXT_LOST);
  LogCapture log;
  EXPECT_EQ(renderer_.check_gl_error(true, "here"), static_cast<unsigned int>(GL_CONTEXT_LOST));
  EXPECT_EQ(gl_.count("glGetError"), 64);
  ASSERT_EQ(log.lines().size(), 1u);
  EXPECT_LT(log.lines()[0].size(), 600u);
  gl_.set_endless_error(0);
}

TEST(RendererOpenGLErrors, WithoutAContextThereAreNone) {
  RendererOpenGL renderer;
  EXPECT_EQ(renderer.check_gl_error(true, "here"), 0u);
  EXPECT_EQ(renderer.check_gl_error(false, nullptr), 0u);
}

TEST(RendererOpenGLErrors, Names) {
  RendererOpenGL renderer;
  const std::pair<unsigned int, const char*> names[] = {
      {0, "GL_NO_ERROR"},
      {0x0500, "GL_INVALID_ENUM"},
      {0x0501, "GL_INVALID_VALUE"},
      {0x0502, "GL_INVALID_OPERATION"},
      {0x0503, "GL_STACK_OVERFLOW"},
      {0x0504, "GL_STACK_UNDERFLOW"},
      {0x0505, "GL_OUT_OF_MEMORY"},
      {0x0506, "GL_INVALID_FRAMEBUFFER_OPERATION"},
      {0x0507, "GL_CONTEXT_LOST"},
      {0x8031, "GL_TABLE_TOO_LARGE"},
      {0x1234, "GL_UNKNOWN_ERROR"}};
  for (const auto& [code, name] : names) EXPECT_STREQ(renderer.gl_error_to_string(code), name);
}

TEST(RendererOpenGLErrors, OwnErrorsNameTheRenderer) {
  RendererOpenGL renderer;
  LogCapture log;
  RendererOpenGLTestAccess::log_error(renderer, "something failed");
  EXPECT_TRUE(log.contains("OpenGL renderer - something failed"));
}

TEST(RendererOpenGLErrors, OwnErrorsAreCutAtTheirBuffer) {
  RendererOpenGL renderer;
  LogCapture log;
  RendererOpenGLTestAccess::log_error(renderer, std::string(20000, 'x'));
  ASSERT_EQ(log.lines().size(), 1u);
  EXPECT_EQ(log.lines()[0].find_last_of('x') - log.lines()[0].find('x') + 1, 16383u);
}

// ---- debug output ----

GLDEBUGPROCARB installed_callback = nullptr;
const void* installed_data = nullptr;

void APIENTRY install(GLDEBUGPROCARB callback, const void* data) {
  installed_callback = callback;
  installed_data = data;
}

class DebugOutput : public testing::Test {
 protected:
  void SetUp() override {
    renderer_.use_proc_address([this](const char* name) -> GlProc {
      if (std::string(name).find("glDebugMessageCallback") == 0) {
        return reinterpret_cast<GlProc>(&install);
      }
      return gl_.proc_address(name);
    });
    ASSERT_TRUE(renderer_.start());
    installed_callback = nullptr;
    installed_data = nullptr;
  }

  FakeGl gl_;
  RendererOpenGL renderer_;
};

void APIENTRY user_callback(GLenum, GLenum, GLuint, GLenum, GLsizei, const GLchar*, const void*) {}

TEST_F(DebugOutput, UsersCallbackIsInstalled) {
  int user_data = 0;
  EXPECT_TRUE(renderer_.debug_callback_set(reinterpret_cast<void*>(&user_callback), &user_data));
  EXPECT_EQ(installed_callback, &user_callback);
  EXPECT_EQ(installed_data, &user_data);
}

TEST_F(DebugOutput, NullInstallsTheOwnOneThatLogs) {
  EXPECT_TRUE(renderer_.debug_callback_set(nullptr, nullptr));
  ASSERT_NE(installed_callback, nullptr);
  LogCapture log;
  installed_callback(GL_DEBUG_SOURCE_API_ARB, GL_DEBUG_TYPE_ERROR_ARB, 1,
                     GL_DEBUG_SEVERITY_HIGH_ARB, 4, "text", nullptr);
  EXPECT_TRUE(
      log.contains("[OpenGL Debug] source: GL_DEBUG_SOURCE_API_ARB - type: "
                   "GL_DEBUG_TYPE_ERROR_ARB - message: text"));
}

TEST_F(DebugOutput, EachSourceAndTypeHasItsName) {
  renderer_.debug_callback_set(nullptr, nullptr);
  ASSERT_NE(installed_callback, nullptr);
  const std::pair<GLenum, const char*> sources[] = {
      {GL_DEBUG_SOURCE_SHADER_COMPILER_ARB, "GL_DEBUG_SOURCE_SHADER_COMPILER_ARB"},
      {GL_DEBUG_SOURCE_WINDOW_SYSTEM_ARB, "GL_DEBUG_SOURCE_WINDOW_SYSTEM_ARB"},
      {GL_DEBUG_SOURCE_THIRD_PARTY_ARB, "GL_DEBUG_SOURCE_THIRD_PARTY_ARB"},
      {GL_DEBUG_SOURCE_APPLICATION_ARB, "GL_DEBUG_SOURCE_APPLICATION_ARB"},
      {GL_DEBUG_SOURCE_OTHER_ARB, "GL_DEBUG_SOURCE_OTHER_ARB"}};
  const std::pair<GLenum, const char*> types[] = {
      {GL_DEBUG_TYPE_DEPRECATED_BEHAVIOR_ARB, "GL_DEBUG_TYPE_DEPRECATED_BEHAVIOR_ARB"},
      {GL_DEBUG_TYPE_UNDEFINED_BEHAVIOR_ARB, "GL_DEBUG_TYPE_UNDEFINED_BEHAVIOR_ARB"},
      {GL_DEBUG_TYPE_PERFORMANCE_ARB, "GL_DEBUG_TYPE_PERFORMANCE_ARB"},
      {GL_DEBUG_TYPE_PORTABILITY_ARB, "GL_DEBUG_TYPE_PORTABILITY_ARB"},
      {GL_DEBUG_TYPE_OTHER_ARB, "GL_DEBUG_TYPE_OTHER_ARB"}};
  for (const auto& [source, source_name] : sources) {
    for (const auto& [type, type_name] : types) {
      LogCapture log;
      installed_callback(source, type, 1, 0, 1, "m", nullptr);
      EXPECT_TRUE(log.contains("source: " + std::string(source_name) + " - type: " + type_name));
    }
  }
}

TEST(DebugOutputAbsent, GivesFalse) {
  FakeGl gl;
  gl.remove_function("glDebugMessageCallbackARB");
  RendererOpenGL renderer;
  ASSERT_TRUE(gl.start(renderer));
  EXPECT_FALSE(renderer.debug_callback_set(nullptr, nullptr));
}

}  // namespace
}  // namespace orv::test
