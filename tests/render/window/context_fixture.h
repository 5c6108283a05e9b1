#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <orv/render/render_window.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "render/opengl/renderer_opengl.h"

namespace orv::test {

/// Whether the software driver was told to give all contexts the fixed pipeline.
inline bool is_fixed_pipeline_forced() {
  const char* version = std::getenv("MESA_GL_VERSION_OVERRIDE");
  return version && std::string(version).find("COMPAT") != std::string::npos;
}

/// A renderer on real contexts. Host is the kind of window that they are made for.
template <class Host>
class ContextTest : public testing::Test {
 protected:
  // Contexts go before the windows of the host, which the test classes hold.
  void TearDown() override {
    renderer_.stop();
    renderer_.render_window_free_all();
  }
  virtual RenderWindowData host_data(Host& host) = 0;

  RenderWindowData make_data(Host& host, int gl_major = 2, const char* msaa = "Off") {
    RenderWindowData data = host_data(host);
    data.gl_major = gl_major;
    std::snprintf(data.msaa, sizeof(data.msaa), "%s", msaa);
    return data;
  }
  bool create(RenderWindow* window, Host& host, int gl_major = 2, RenderWindow* shared = nullptr) {
    const RenderWindowData data = make_data(host, gl_major);
    return renderer_.render_window_create_context(window, &data, shared);
  }

  int read_samples() {
    int samples = -1;
    renderer_.core_functions().glGetIntegerv(GL_SAMPLES, &samples);
    return samples;
  }
  std::vector<int> read_pixel(int x = 3, int y = 3) {
    unsigned char pixel[4] = {};
    renderer_.read_back_buffer_rect_rgba(pixel, x, y, 1, 1);
    return {pixel[0], pixel[1], pixel[2]};
  }
  /// Draws a colour and reads it back.
  std::vector<int> draw(float r, float g, float b) {
    renderer_.clear_color_buffer_rgba(r, g, b, 1.0f);
    return read_pixel();
  }
  void expect_no_error() { EXPECT_EQ(renderer_.check_gl_error(true, nullptr), 0u); }

  /// A texture of the current context is one of the other window's context, too.
  void expect_shared_with(RenderWindow* other) {
    const GlCoreTable& gl = renderer_.core_functions();
    unsigned int texture = 0;
    gl.glGenTextures(1, &texture);
    gl.glBindTexture(GL_TEXTURE_2D, texture);
    ASSERT_TRUE(renderer_.render_window_make_current(other, true));
    EXPECT_TRUE(gl.glIsTexture(texture));
  }
  /// Starts on the current context, draws and stops, several times.
  void expect_start_after_stop() {
    for (unsigned int round = 1; round <= 3; ++round) {
      ASSERT_TRUE(renderer_.start());
      EXPECT_EQ(renderer_.get_num_gpus(), round);
      EXPECT_THAT(draw(1.0f, 1.0f, 0.0f), testing::ElementsAre(255, 255, 0));
      EXPECT_TRUE(renderer_.stop());
      EXPECT_EQ(renderer_.core_functions().glClear, nullptr);
    }
  }
  /// Draws on a window that was closed before.
  void expect_reopened(RenderWindow* window, const RenderWindowData& data) {
    ASSERT_TRUE(renderer_.render_window_create_context(window, &data, nullptr));
    ASSERT_TRUE(renderer_.start());
    EXPECT_THAT(draw(1.0f, 0.0f, 1.0f), testing::ElementsAre(255, 0, 255));
    expect_no_error();
    EXPECT_TRUE(renderer_.stop());
    EXPECT_TRUE(renderer_.render_window_destroy_context(window));
  }
  void expect_stop_without_context(RenderWindow* window) {
    ASSERT_TRUE(renderer_.start());
    EXPECT_TRUE(renderer_.render_window_destroy_context(window));
    EXPECT_TRUE(renderer_.stop());
    EXPECT_FALSE(renderer_.is_started());
  }

  RendererOpenGL renderer_;
};

}  // namespace orv::test
