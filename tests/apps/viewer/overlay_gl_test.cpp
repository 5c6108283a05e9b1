#include "viewer/overlay.h"

#include <gtest/gtest.h>
#include <orv/orv.h>

#include <vector>

namespace viewer {
namespace {

constexpr int width = 320;
constexpr int height = 200;

class OverlayGlTest : public testing::Test {
 protected:
  bool start(bool core) {
    orv::core::start(nullptr, true, nullptr, nullptr);
    renderer_ = orv::Kernel::get()->load_core_opengl_renderer_plugin(true);
    renderer_->initialize();
    orv::RenderWindowData data;
    data.native_window = surface_.native_handle();
    data.gl_major = core ? 3 : 2;
    data.core_profile = core;
    orv::RenderWindow* window = renderer_->render_window_alloc();
    if (!renderer_->render_window_create_context(window, &data, nullptr)) return false;
    renderer_->start();
    core_ = window->core_profile_granted;
    return true;
  }
  ~OverlayGlTest() override {
    if (!renderer_) return;
    renderer_->stop();
    renderer_->render_window_free_all();
    orv::core::stop(nullptr);
  }

  // Bright pixels of the rows from `begin` up to `end`, counted from the top.
  int count_bright(int begin, int end) {
    std::vector<unsigned char> rgba(std::size_t{width} * height * 4);
    renderer_->read_back_buffer_rect_rgba(rgba.data(), 0, 0, width, height);
    int count = 0;
    for (int y = begin; y < end; ++y) {
      for (int x = 0; x < width; ++x) {
        count +=
            rgba[(static_cast<std::size_t>(height - 1 - y) * width + static_cast<std::size_t>(x)) *
                 4] > 200;
      }
    }
    return count;
  }

  orv::OffscreenWindow surface_{width, height};
  orv::Renderer* renderer_ = nullptr;
  bool core_ = false;
};

TEST_F(OverlayGlTest, DrawsLinesFromTheTop) {
  ASSERT_TRUE(start(false)) << "no OpenGL context";
  Overlay overlay;
  ASSERT_TRUE(overlay.create(renderer_, 1.0f)) << "is a TrueType font installed?";
  renderer_->set_viewport(0, 0, 0, width, height);
  renderer_->clear_color_depth_buffers_rgba(0.3f, 0.3f, 0.3f, 1.0f, 1.0f);
  overlay.draw(renderer_, {"HHHH", "HHHHHHHH"}, width, height);
  const int first = count_bright(15, 37);
  const int second = count_bright(38, 60);
  EXPECT_GT(first, 100);
  EXPECT_GT(second, first * 3 / 2) << "the second line is twice as long";
  EXPECT_EQ(count_bright(70, height), 0);
  EXPECT_EQ(renderer_->check_gl_error(true, "overlay"), 0u);
  overlay.destroy(renderer_);
  EXPECT_FALSE(overlay.is_usable());
}

TEST_F(OverlayGlTest, LinesBelowTheWindowAreLeftOut) {
  ASSERT_TRUE(start(false)) << "no OpenGL context";
  Overlay overlay;
  ASSERT_TRUE(overlay.create(renderer_, 2.0f));
  overlay.draw(renderer_, std::vector<std::string>(50, "a line"), width, height);
  EXPECT_EQ(renderer_->check_gl_error(true, "overlay"), 0u);
  overlay.destroy(renderer_);
}

TEST_F(OverlayGlTest, CoreProfileHasNone) {
  ASSERT_TRUE(start(true)) << "no OpenGL context";
  if (!core_) GTEST_SKIP() << "this OpenGL version has no core profile";
  Overlay overlay;
  EXPECT_FALSE(overlay.create(renderer_, 1.0f));
  overlay.draw(renderer_, {"text"}, width, height);
  EXPECT_EQ(renderer_->check_gl_error(true, "overlay"), 0u);
}

}  // namespace
}  // namespace viewer
