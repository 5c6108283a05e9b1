#pragma once

#include <gtest/gtest.h>

#include <orv/render/offscreen_window.h>
#include <orv/render/render_window.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "render/opengl/renderer_opengl.h"

namespace orv::test {

/// A started renderer on an offscreen window, in software. The context is a debug context where
/// OpenGL has them. Any error of OpenGL, and any message of the driver of type error or of high
/// severity, fails the test, at the latest when the object ends.
class GlContext {
 public:
  enum Profile { COMPATIBILITY, CORE };

  explicit GlContext(Profile profile = COMPATIBILITY, int width = 64, int height = 64,
                     const char* msaa = "Off", GlContext* shared = nullptr)
      : offscreen_(width, height, OffscreenWindow::SOFTWARE), profile_(profile) {
    RenderWindowData data;
    data.native_window = offscreen_.native_handle();
    data.gl_major = 3;  // asks for the driver's highest version with the flags below
    data.core_profile = profile == CORE;
    data.debug_context = true;
    std::snprintf(data.msaa, sizeof(data.msaa), "%s", msaa);
    RenderWindow* window = renderer_.render_window_alloc();
    if (!renderer_.render_window_create_context(window, &data,
                                                shared ? shared->window() : nullptr)) {
      return;
    }
    ok_ = renderer_.start();
    watch();
  }
  ~GlContext() {
    if (ok_) renderer_.render_window_make_current(window(), true);
    check();
    renderer_.stop();
    renderer_.render_window_free_all();
  }
  GlContext(const GlContext&) = delete;
  GlContext& operator=(const GlContext&) = delete;

  /// False on machines without EGL, and where the driver has no such profile.
  bool ok() const { return ok_ && (profile_ == COMPATIBILITY || renderer_.is_core_context()); }
  /// Why a test is skipped.
  std::string reason() const {
    if (!ok_) return "no software OpenGL through EGL here";
    return "this OpenGL version has no core profile";
  }
  RendererOpenGL& renderer() { return renderer_; }
  RenderWindow* window() { return renderer_.get_current_render_window(); }
  OffscreenWindow& offscreen() { return offscreen_; }
  /// OpenGL itself, for looking at what the renderer did.
  const GlCoreTable& core() const { return renderer_.core_functions(); }
  const GlTable& gl() const { return renderer_.gl(); }

  /// Four bytes of a pixel of what is drawn to, from the lower left corner.
  std::vector<int> pixel(int x, int y) {
    unsigned char bytes[4] = {};
    renderer_.read_back_buffer_rect_rgba(bytes, x, y, 1, 1);
    return {bytes[0], bytes[1], bytes[2], bytes[3]};
  }

  /// Fails the test when OpenGL reported anything since the last call.
  void check() {
    if (!core().glGetError) return;
    for (int i = 0; i < 16; ++i) {
      const GLenum code = core().glGetError();
      if (code == GL_NO_ERROR) break;
      ADD_FAILURE() << "OpenGL error " << renderer_.gl_error_to_string(code);
    }
    for (const std::string& message : messages_) ADD_FAILURE() << "OpenGL: " << message;
    messages_.clear();
  }
  /// Forgets errors that a test made on purpose; gives the driver's messages.
  std::vector<std::string> take_errors() {
    for (int i = 0; i < 16 && core().glGetError() != GL_NO_ERROR; ++i) {
    }
    return std::move(messages_);
  }

 private:
  void watch() {
    if (!ok_ || !gl().glDebugMessageCallbackARB) return;
    if (!renderer_.facts().is_version_at_least(3, 2)) return;
    core().glEnable(GL_DEBUG_OUTPUT_SYNCHRONOUS);
    renderer_.debug_callback_set(reinterpret_cast<void*>(&GlContext::receive), this);
  }

  static void APIENTRY receive(GLenum, GLenum type, GLuint, GLenum severity, GLsizei,
                               const GLchar* message, const void* self) {
    if (type != GL_DEBUG_TYPE_ERROR_ARB && severity != GL_DEBUG_SEVERITY_HIGH_ARB) return;
    auto* context = const_cast<GlContext*>(static_cast<const GlContext*>(self));
    context->messages_.emplace_back(message ? message : "");
  }

  OffscreenWindow offscreen_;
  RendererOpenGL renderer_;
  Profile profile_;
  bool ok_ = false;
  std::vector<std::string> messages_;
};

/// Ends a test with a reason where there is no such context.
#define ORV_REQUIRE_GL(context)                              \
  do {                                                       \
    if (!(context).ok()) GTEST_SKIP() << (context).reason(); \
  } while (false)

}  // namespace orv::test
