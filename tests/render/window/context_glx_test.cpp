// Contexts on real X11 windows.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <orv/render/offscreen_window.h>
#include <orv/render/render_window.h>

#include <memory>
#include <thread>
#include <vector>

#include "render/opengl/renderer_opengl.h"
#include "render/window/context.h"
#include "render/window/context_fixture.h"
#include "support/log_capture.h"
#include "support/x11_window.h"

namespace orv::test {
namespace {

using testing::ElementsAre;

class GlxContexts : public ContextTest<X11Window> {
 protected:
  void SetUp() override {
    if (!display_.ok()) GTEST_SKIP() << "no X server here";
    host_ = std::make_unique<X11Window>(display_, 64, 48);
  }
  RenderWindowData host_data(X11Window& host) override {
    RenderWindowData data;
    data.app_instance = display_.handle();
    data.native_window = host.handle();
    return data;
  }

  X11Display display_;
  std::unique_ptr<X11Window> host_;
};

// ---- one window ------------------------------------------------------------------------------

TEST_F(GlxContexts, DrawsIntoTheHostsWindowAndShowsIt) {
  RenderWindow* window = renderer_.render_window_alloc();
  ASSERT_TRUE(create(window, *host_));
  ASSERT_TRUE(renderer_.start());
  EXPECT_EQ(host_->num_children(), 0);
  EXPECT_THAT(draw(1.0f, 0.0f, 0.0f), ElementsAre(255, 0, 0));
  EXPECT_TRUE(renderer_.render_window_swap_buffers(window));
  renderer_.finish_gl();
  display_.sync();
  EXPECT_EQ(host_->pixel(10, 10), 0xFF0000u);
  expect_no_error();
}

TEST_F(GlxContexts, VersionsAndProfiles) {
  for (const bool core : {false, true}) {
    RendererOpenGL renderer;
    RenderWindow* window = renderer.render_window_alloc();
    X11Window host(display_, 32, 32);
    RenderWindowData data = make_data(host, 3);
    data.core_profile = core;
    data.debug_context = true;
    ASSERT_TRUE(renderer.render_window_create_context(window, &data, nullptr));
    ASSERT_TRUE(renderer.start());
    EXPECT_EQ(window->data.gl_major, renderer.get_major_version());
    if (renderer.facts().is_version_at_least(3, 2)) {
      EXPECT_EQ(window->core_profile_granted, core);
      if (core) {
        EXPECT_EQ(renderer.is_core_context(), !is_fixed_pipeline_forced());
      }
    }
    EXPECT_EQ(renderer.check_gl_error(true, nullptr), 0u);
  }
}

TEST_F(GlxContexts, HasStencil) {
  RenderWindow* window = renderer_.render_window_alloc();
  ASSERT_TRUE(create(window, *host_));
  ASSERT_TRUE(renderer_.start());
  if (renderer_.is_core_context()) GTEST_SKIP() << "core contexts do not tell the bits so";
  int stencil = 0;
  renderer_.core_functions().glGetIntegerv(GL_STENCIL_BITS, &stencil);
  EXPECT_EQ(stencil, 8);
}

TEST_F(GlxContexts, ExtensionsOfOpenGLAndOfGlx) {
  RenderWindow* window = renderer_.render_window_alloc();
  ASSERT_TRUE(create(window, *host_));
  EXPECT_GT(renderer_.get_num_gl_extensions(), 10u);
  EXPECT_GT(renderer_.get_num_wgl_extensions(), 5u);
  EXPECT_TRUE(renderer_.is_extension_supported(window, "GLX_ARB_create_context"));
}

TEST_F(GlxContexts, AbsentSwapControlIsFalse) {
  RenderWindow* window = renderer_.render_window_alloc();
  ASSERT_TRUE(create(window, *host_));
  const bool listed = renderer_.is_extension_supported(window, "GLX_EXT_swap_control") ||
                      renderer_.is_extension_supported(window, "GLX_MESA_swap_control") ||
                      renderer_.is_extension_supported(window, "GLX_SGI_swap_control");
  int interval = 0;
  EXPECT_EQ(renderer_.render_window_set_swap_interval(window, true), listed);
  EXPECT_EQ(renderer_.render_window_get_swap_interval(window, &interval), listed);
  if (listed) {
    EXPECT_EQ(interval, 1);
  }
  EXPECT_FALSE(renderer_.render_window_delay_before_swap(window, 0.01f));
}

// ---- formats ---------------------------------------------------------------------------------

TEST_F(GlxContexts, UnfittingVisualGetsAnInnerWindowThatFollows) {
  RenderWindow* window = renderer_.render_window_alloc();
  const RenderWindowData data = make_data(*host_, 2, "4X MSAA");
  ASSERT_TRUE(renderer_.render_window_create_context(window, &data, nullptr));
  ASSERT_TRUE(renderer_.start());
  if (read_samples() == 0) GTEST_SKIP() << "no multisampled visuals here";
  EXPECT_EQ(host_->num_children(), 1);
  EXPECT_EQ(window->get_width(), 64);
  EXPECT_EQ(window->get_height(), 48);
  EXPECT_THAT(draw(0.0f, 0.0f, 1.0f), ElementsAre(0, 0, 255));
  EXPECT_TRUE(renderer_.render_window_swap_buffers(window));
  renderer_.finish_gl();
  display_.sync();
  EXPECT_EQ(host_->pixel(10, 10), 0x0000FFu);

  host_->resize(120, 90);
  EXPECT_TRUE(renderer_.render_window_swap_buffers(window));
  EXPECT_EQ(window->get_width(), 120);
  EXPECT_EQ(window->get_height(), 90);
  int width = 0;
  int height = 0;
  display_.sync();
  ASSERT_TRUE(host_->get_child_size(&width, &height));
  EXPECT_EQ(width, 120);
  EXPECT_EQ(height, 90);
  expect_no_error();

  EXPECT_TRUE(renderer_.render_window_destroy_context(window));
  display_.sync();
  EXPECT_EQ(host_->num_children(), 0);
}

TEST_F(GlxContexts, FoundVisualNeedsNoInnerWindow) {
  const RenderWindowData wanted = make_data(*host_, 2, "4X MSAA");
  const unsigned long visual = RenderWindow::find_x11_visual_id(wanted);
  ASSERT_NE(visual, 0u);
  X11Window host(display_, 64, 48, visual);
  RenderWindow* window = renderer_.render_window_alloc();
  const RenderWindowData data = make_data(host, 2, "4X MSAA");
  ASSERT_TRUE(renderer_.render_window_create_context(window, &data, nullptr));
  ASSERT_TRUE(renderer_.start());
  EXPECT_EQ(host.num_children(), 0);
  EXPECT_THAT(draw(0.0f, 1.0f, 0.0f), ElementsAre(0, 255, 0));
  expect_no_error();
}

TEST_F(GlxContexts, VisualIsFoundWithoutADisplayOfTheHost) {
  RenderWindowData wanted = make_data(*host_);
  const unsigned long visual = RenderWindow::find_x11_visual_id(wanted);
  EXPECT_NE(visual, 0u);
  wanted.app_instance = nullptr;
  EXPECT_EQ(RenderWindow::find_x11_visual_id(wanted), visual);
}

TEST_F(GlxContexts, ExistingFormatIsTheWindowsOwn) {
  RenderWindow* window = renderer_.render_window_alloc();
  RenderWindowData data = make_data(*host_, 2, "4X MSAA");
  data.use_existing_pixel_format = true;
  ASSERT_TRUE(renderer_.render_window_create_context(window, &data, nullptr));
  EXPECT_EQ(host_->num_children(), 0);
}

TEST_F(GlxContexts, EightSamplesEndAtFewer) {
  RenderWindow* window = renderer_.render_window_alloc();
  const RenderWindowData data = make_data(*host_, 2, "8X MSAA");
  ASSERT_TRUE(renderer_.render_window_create_context(window, &data, nullptr));
  ASSERT_TRUE(renderer_.start());
  EXPECT_LE(read_samples(), 8);
  EXPECT_NE(read_samples(), 1);
}

std::vector<int> read_bits(const RendererOpenGL& renderer) {
  std::vector<int> bits;
  for (const int name : {GL_RED_BITS, GL_GREEN_BITS, GL_BLUE_BITS, GL_ALPHA_BITS, GL_DEPTH_BITS,
                         GL_STENCIL_BITS, GL_SAMPLES}) {
    bits.push_back(-1);
    renderer.core_functions().glGetIntegerv(static_cast<GLenum>(name), &bits.back());
  }
  return bits;
}

TEST_F(GlxContexts, HasTheSameBitsAsOffScreen) {
  for (const char* msaa : {"Off", "4X MSAA"}) {
    X11Window host(display_, 32, 32);
    RendererOpenGL on_screen;
    RenderWindowData data = make_data(host, 2, msaa);
    ASSERT_TRUE(
        on_screen.render_window_create_context(on_screen.render_window_alloc(), &data, nullptr));
    ASSERT_TRUE(on_screen.start());
    if (on_screen.is_core_context()) GTEST_SKIP() << "core contexts do not tell the bits so";
    const std::vector<int> bits = read_bits(on_screen);
    OffscreenWindow offscreen(32, 32, OffscreenWindow::SOFTWARE);
    data.app_instance = nullptr;
    data.native_window = offscreen.native_handle();
    RendererOpenGL off_screen;
    ASSERT_TRUE(
        off_screen.render_window_create_context(off_screen.render_window_alloc(), &data, nullptr));
    ASSERT_TRUE(off_screen.start());
    EXPECT_EQ(read_bits(off_screen), bits) << msaa;
  }
}

// ---- failures --------------------------------------------------------------------------------

TEST_F(GlxContexts, WindowThatIsNoneGivesFalse) {
  RenderWindow* window = renderer_.render_window_alloc();
  RenderWindowData data = make_data(*host_);
  data.native_window = reinterpret_cast<void*>(0x7FFFFFFu);
  LogCapture log;
  EXPECT_FALSE(renderer_.render_window_create_context(window, &data, nullptr));
  EXPECT_TRUE(log.contains("X error"));
  EXPECT_FALSE(window->context_created);
}

TEST_F(GlxContexts, WindowOfTheHostThatIsGoneCrashesNothing) {
  RenderWindow* window = renderer_.render_window_alloc();
  ASSERT_TRUE(create(window, *host_));
  ASSERT_TRUE(renderer_.start());
  EXPECT_TRUE(renderer_.render_window_make_current(window, false));
  host_->destroy();
  LogCapture log;
  EXPECT_FALSE(renderer_.render_window_make_current(window, true));
  EXPECT_TRUE(log.contains("X error"));
  EXPECT_TRUE(renderer_.stop());
  EXPECT_TRUE(renderer_.render_window_destroy_context(window));
  display_.sync();
}

TEST_F(GlxContexts, InnerWindowThatIsGoneWithTheHostsCrashesNothing) {
  RenderWindow* window = renderer_.render_window_alloc();
  const RenderWindowData data = make_data(*host_, 2, "4X MSAA");
  ASSERT_TRUE(renderer_.render_window_create_context(window, &data, nullptr));
  host_->destroy();
  EXPECT_TRUE(renderer_.render_window_destroy_context(window));
  display_.sync();
}

TEST_F(GlxContexts, ContextMovesToAnotherThread) {
  RenderWindow* window = renderer_.render_window_alloc();
  ASSERT_TRUE(create(window, *host_));
  EXPECT_TRUE(renderer_.render_window_make_current(window, false));
  bool bound = false;
  std::thread([&] {
    bound = renderer_.render_window_make_current(window, true);
    renderer_.render_window_make_current(window, false);
  }).join();
  EXPECT_TRUE(bound);
  EXPECT_TRUE(renderer_.render_window_make_current(window, true));
}

TEST_F(GlxContexts, ShareListsRefusesAContextOnAnotherThread) {
  X11Window other(display_, 32, 32);
  RenderWindow* first = renderer_.render_window_alloc();
  RenderWindow* second = renderer_.render_window_alloc();
  ASSERT_TRUE(create(first, *host_, 3));
  ASSERT_TRUE(create(second, other, 3));
  EXPECT_TRUE(renderer_.render_window_make_current(second, false));
  std::thread([&] {
    EXPECT_TRUE(renderer_.render_window_make_current(second, true));
    std::thread([&] { EXPECT_FALSE(renderer_.render_window_share_lists(first, second)); }).join();
    renderer_.render_window_make_current(second, false);
  }).join();
}

// ---- several windows -------------------------------------------------------------------------

TEST_F(GlxContexts, SharedWindowsSeeEachOthersObjects) {
  X11Window other(display_, 32, 32);
  RenderWindow* first = renderer_.render_window_alloc();
  RenderWindow* second = renderer_.render_window_alloc();
  ASSERT_TRUE(create(first, *host_));
  ASSERT_TRUE(create(second, other, 2, first));
  ASSERT_TRUE(renderer_.start());
  if (renderer_.get_major_version() < 3) GTEST_SKIP() << "sharing needs OpenGL 3";
  expect_shared_with(first);
}

TEST_F(GlxContexts, ShareListsAfterCreation) {
  X11Window other(display_, 32, 32);
  RenderWindow* first = renderer_.render_window_alloc();
  RenderWindow* second = renderer_.render_window_alloc();
  ASSERT_TRUE(create(first, *host_, 3));
  ASSERT_TRUE(create(second, other, 3));
  EXPECT_TRUE(renderer_.render_window_share_lists(first, second));
  ASSERT_TRUE(renderer_.start());
  expect_shared_with(first);
}

TEST_F(GlxContexts, WindowAndOffscreenWindowTogether) {
  OffscreenWindow offscreen(32, 32, OffscreenWindow::SOFTWARE);
  RenderWindow* first = renderer_.render_window_alloc();
  ASSERT_TRUE(create(first, *host_));
  RenderWindow* second = renderer_.render_window_alloc();
  RenderWindowData data;
  data.native_window = offscreen.native_handle();
  ASSERT_TRUE(renderer_.render_window_create_context(second, &data, nullptr));
  ASSERT_TRUE(renderer_.start());
  EXPECT_THAT(draw(0.0f, 1.0f, 0.0f), ElementsAre(0, 255, 0));
  ASSERT_TRUE(renderer_.render_window_make_current(first, true));
  EXPECT_THAT(draw(1.0f, 0.0f, 0.0f), ElementsAre(255, 0, 0));
  ASSERT_TRUE(renderer_.render_window_make_current(second, true));
  EXPECT_THAT(read_pixel(), ElementsAre(0, 255, 0));
}

// ---- life ------------------------------------------------------------------------------------

TEST_F(GlxContexts, WindowClosedAndReopened) {
  RenderWindow* window = renderer_.render_window_alloc();
  for (const char* msaa : {"Off", "4X MSAA", "Off", "4X MSAA"}) {
    expect_reopened(window, make_data(*host_, 3, msaa));
  }
}

TEST_F(GlxContexts, WindowReopenedOnAnotherWindowOfTheHost) {
  RenderWindow* window = renderer_.render_window_alloc();
  ASSERT_TRUE(create(window, *host_));
  EXPECT_TRUE(renderer_.render_window_destroy_context(window));
  host_ = std::make_unique<X11Window>(display_, 20, 20);
  ASSERT_TRUE(create(window, *host_));
  ASSERT_TRUE(renderer_.start());
  EXPECT_THAT(draw(0.0f, 1.0f, 0.0f), ElementsAre(0, 255, 0));
}

TEST_F(GlxContexts, StopAndSecondStart) {
  RenderWindow* window = renderer_.render_window_alloc();
  ASSERT_TRUE(create(window, *host_));
  expect_start_after_stop();
}

TEST_F(GlxContexts, StopAfterTheContextIsGone) {
  RenderWindow* window = renderer_.render_window_alloc();
  ASSERT_TRUE(create(window, *host_));
  expect_stop_without_context(window);
}

TEST_F(GlxContexts, ContextOfTheOtherWindowSystemIsSavedAndRestored) {
  OffscreenWindow offscreen(16, 16, OffscreenWindow::SOFTWARE);
  RendererOpenGL host;
  RenderWindow* host_window = host.render_window_alloc();
  RenderWindowData data;
  data.native_window = offscreen.native_handle();
  ASSERT_TRUE(host.render_window_create_context(host_window, &data, nullptr));
  void* host_context = detail::egl_back_end().current_context();
  RenderWindow* window = renderer_.render_window_alloc();
  EXPECT_TRUE(renderer_.render_window_save_current_context(window));
  ASSERT_TRUE(create(window, *host_));
  EXPECT_EQ(detail::current_back_end(), &detail::glx_back_end());
  EXPECT_TRUE(renderer_.render_window_restore_saved_context(window));
  EXPECT_EQ(detail::egl_back_end().current_context(), host_context);
}

// ---- hosts -----------------------------------------------------------------------------------

TEST_F(GlxContexts, ForeignContextIsSavedAndRestored) {
  X11Window foreign_window(display_, 16, 16);
  HostGlxContext foreign(display_);
  ASSERT_TRUE(foreign.make_current(foreign_window));
  RenderWindow* window = renderer_.render_window_alloc();
  EXPECT_TRUE(renderer_.render_window_save_current_context(window));
  ASSERT_TRUE(create(window, *host_));
  EXPECT_NE(HostGlxContext::current(), foreign.handle());
  EXPECT_TRUE(renderer_.render_window_restore_saved_context(window));
  EXPECT_EQ(HostGlxContext::current(), foreign.handle());
  EXPECT_EQ(HostGlxContext::current_drawable(), foreign_window.id());
}

TEST_F(GlxContexts, HostMadeContext) {
  HostGlxContext host_context(display_);
  ASSERT_TRUE(host_context.make_current(*host_));
  RenderWindow* window = renderer_.render_window_alloc();
  EXPECT_TRUE(renderer_.render_window_mark_context_created(window));
  ASSERT_TRUE(renderer_.start());
  EXPECT_THAT(draw(0.0f, 1.0f, 1.0f), ElementsAre(0, 255, 255));
  EXPECT_TRUE(renderer_.render_window_swap_buffers(window));
  EXPECT_TRUE(renderer_.render_window_make_current(window, false));
  EXPECT_EQ(HostGlxContext::current(), nullptr);
  EXPECT_TRUE(renderer_.render_window_make_current(window, true));
  EXPECT_EQ(HostGlxContext::current(), host_context.handle());
  EXPECT_TRUE(renderer_.stop());
  EXPECT_TRUE(renderer_.render_window_destroy_context(window));
  EXPECT_TRUE(host_context.make_current(*host_)) << "it is the host's still";
}

}  // namespace
}  // namespace orv::test
