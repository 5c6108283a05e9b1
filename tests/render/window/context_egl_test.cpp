// Offscreen windows on real contexts, in software.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <orv/render/offscreen_window.h>
#include <orv/render/render_window.h>

#include <memory>
#include <thread>
#include <utility>

#include "render/opengl/renderer_opengl.h"
#include "render/window/context.h"
#include "render/window/context_fixture.h"
#include "support/gl_context.h"
#include "support/log_capture.h"

namespace orv::test {
namespace {

using testing::ElementsAre;

class EglContexts : public ContextTest<OffscreenWindow> {
 protected:
  RenderWindowData host_data(OffscreenWindow& offscreen) override {
    RenderWindowData data;
    data.native_window = offscreen.native_handle();
    return data;
  }
  static bool has_software_egl() {
    RendererOpenGL renderer;
    OffscreenWindow offscreen(8, 8, OffscreenWindow::SOFTWARE);
    RenderWindowData data;
    data.native_window = offscreen.native_handle();
    return renderer.render_window_create_context(renderer.render_window_alloc(), &data, nullptr);
  }
  void SetUp() override {
    if (!has_software_egl()) GTEST_SKIP() << "no software OpenGL through EGL here";
  }

  OffscreenWindow offscreen_{64, 48, OffscreenWindow::SOFTWARE};
};

// ---- one window ------------------------------------------------------------------------------

TEST_F(EglContexts, DrawsAndReadsBack) {
  RenderWindow* window = renderer_.render_window_alloc();
  ASSERT_TRUE(create(window, offscreen_));
  ASSERT_TRUE(renderer_.start());
  EXPECT_THAT(draw(1.0f, 0.0f, 0.0f), ElementsAre(255, 0, 0));
  EXPECT_THAT(draw(0.0f, 1.0f, 0.0f), ElementsAre(0, 255, 0));
  EXPECT_TRUE(renderer_.render_window_swap_buffers(window));
  expect_no_error();
}

TEST_F(EglContexts, SizeOfTheOffscreenWindowWins) {
  RenderWindow* window = renderer_.render_window_alloc();
  RenderWindowData data = make_data(offscreen_);
  data.width = 1;
  data.height = 2;
  ASSERT_TRUE(renderer_.render_window_create_context(window, &data, nullptr));
  EXPECT_EQ(window->get_width(), 64);
  EXPECT_EQ(window->get_height(), 48);
  ASSERT_TRUE(renderer_.start());
  unsigned int size = 0;
  unsigned int width = 0;
  unsigned int height = 0;
  EXPECT_TRUE(renderer_.get_back_buffer_size(&size, &width, &height));
  EXPECT_EQ(width, 64u);
  EXPECT_EQ(height, 48u);
}

TEST_F(EglContexts, ResizeKeepsTheContextCurrent) {
  RenderWindow* window = renderer_.render_window_alloc();
  ASSERT_TRUE(create(window, offscreen_));
  ASSERT_TRUE(renderer_.start());
  EXPECT_TRUE(offscreen_.resize(200, 100));
  EXPECT_EQ(offscreen_.get_width(), 200);
  renderer_.set_viewport(0, 0, 0, 200, 100);
  renderer_.clear_color_buffer_rgba(0.0f, 0.0f, 1.0f, 1.0f);
  EXPECT_THAT(read_pixel(199, 99), ElementsAre(0, 0, 255));
  EXPECT_TRUE(renderer_.render_window_swap_buffers(window));
  EXPECT_EQ(window->get_width(), 200);
  EXPECT_EQ(window->get_height(), 100);
  EXPECT_FALSE(offscreen_.resize(0, 5));
  EXPECT_FALSE(offscreen_.resize(5, -1));
  EXPECT_EQ(offscreen_.get_width(), 200);
  expect_no_error();
}

TEST_F(EglContexts, TooLargeResizeChangesNothing) {
  RenderWindow* window = renderer_.render_window_alloc();
  ASSERT_TRUE(create(window, offscreen_));
  ASSERT_TRUE(renderer_.start());
  EXPECT_FALSE(offscreen_.resize(1 << 30, 1 << 30));
  EXPECT_FALSE(offscreen_.resize(16385, 1));
  EXPECT_EQ(offscreen_.get_width(), 64);
  EXPECT_THAT(draw(1.0f, 1.0f, 0.0f), ElementsAre(255, 255, 0));
}

TEST_F(EglContexts, TooLargeWindowGetsNoContext) {
  OffscreenWindow large(1 << 30, 1 << 30, OffscreenWindow::SOFTWARE);
  EXPECT_FALSE(create(renderer_.render_window_alloc(), large));
}

TEST_F(EglContexts, HasStencilAndDepth) {
  RenderWindow* window = renderer_.render_window_alloc();
  ASSERT_TRUE(create(window, offscreen_));
  ASSERT_TRUE(renderer_.start());
  if (renderer_.is_core_context()) GTEST_SKIP() << "core contexts do not tell the bits so";
  int stencil = 0;
  int depth = 0;
  renderer_.core_functions().glGetIntegerv(GL_STENCIL_BITS, &stencil);
  renderer_.core_functions().glGetIntegerv(GL_DEPTH_BITS, &depth);
  EXPECT_EQ(stencil, 8);
  EXPECT_EQ(depth, 24);
}

TEST_F(EglContexts, SamplesEndAtWhatTheDriverHas) {
  const std::pair<const char*, int> cases[] = {{"Off", 0}, {"3X MSAA", 0}, {"4X MSAA", 4}};
  for (const auto& [text, samples] : cases) {
    OffscreenWindow offscreen(16, 16, OffscreenWindow::SOFTWARE);
    RendererOpenGL renderer;
    RenderWindow* window = renderer.render_window_alloc();
    const RenderWindowData data = make_data(offscreen, 2, text);
    ASSERT_TRUE(renderer.render_window_create_context(window, &data, nullptr));
    ASSERT_TRUE(renderer.start());
    int found = -1;
    renderer.core_functions().glGetIntegerv(GL_SAMPLES, &found);
    EXPECT_EQ(found, samples) << text;
  }
}

TEST_F(EglContexts, EightSamplesEndAtFewer) {
  RenderWindow* window = renderer_.render_window_alloc();
  const RenderWindowData data = make_data(offscreen_, 2, "8X MSAA");
  ASSERT_TRUE(renderer_.render_window_create_context(window, &data, nullptr));
  ASSERT_TRUE(renderer_.start());
  EXPECT_GE(read_samples(), 2);
  EXPECT_LE(read_samples(), 8);
}

// ---- versions --------------------------------------------------------------------------------

TEST_F(EglContexts, LegacyRequestGivesTheDriversVersion) {
  RenderWindow* window = renderer_.render_window_alloc();
  ASSERT_TRUE(create(window, offscreen_));
  ASSERT_TRUE(renderer_.start());
  EXPECT_EQ(window->data.gl_major, renderer_.get_major_version());
  EXPECT_FALSE(window->core_profile_granted);
  EXPECT_EQ(renderer_.facts().gl2_mode, renderer_.get_major_version() == 2);
  expect_no_error();
}

TEST_F(EglContexts, CoreProfileIsGrantedFromThreeTwoUp) {
  RenderWindow* window = renderer_.render_window_alloc();
  RenderWindowData data = make_data(offscreen_, 3);
  data.core_profile = true;
  ASSERT_TRUE(renderer_.render_window_create_context(window, &data, nullptr));
  ASSERT_TRUE(renderer_.start());
  if (!renderer_.facts().is_version_at_least(3, 2)) {
    EXPECT_EQ(window->core_profile_granted, renderer_.get_major_version() >= 3);
    return;
  }
  EXPECT_TRUE(window->core_profile_granted);
  EXPECT_TRUE(renderer_.use_vertex_arrays());
  EXPECT_THAT(draw(0.0f, 0.0f, 1.0f), ElementsAre(0, 0, 255));
  expect_no_error();
  EXPECT_EQ(renderer_.is_core_context(), !is_fixed_pipeline_forced());
  if (is_fixed_pipeline_forced()) return;
  EXPECT_EQ(renderer_.core_functions().glMatrixMode, nullptr);
  EXPECT_EQ(renderer_.gl().glClientActiveTexture, nullptr);
}

TEST_F(EglContexts, DebugContextReportsErrors) {
  GlContext context(GlContext::COMPATIBILITY);
  ORV_REQUIRE_GL(context);
  if (!context.renderer().facts().is_version_at_least(3, 2)) {
    GTEST_SKIP() << "this OpenGL version has no debug contexts";
  }
  context.core().glEnable(0x1234);
  EXPECT_FALSE(context.take_errors().empty());
}

TEST_F(EglContexts, AbsentFunctionsAreNullOnARealDriver) {
  RenderWindow* window = renderer_.render_window_alloc();
  ASSERT_TRUE(create(window, offscreen_));
  ASSERT_TRUE(renderer_.start());
  const auto has = [&](const char* name) { return renderer_.facts().has_extension(name); };
  EXPECT_EQ(renderer_.gl().glApplyFramebufferAttachmentCMAAINTEL != nullptr,
            has("GL_INTEL_framebuffer_CMAA"));
  EXPECT_EQ(renderer_.gl().glGetTextureHandleARB != nullptr, has("GL_ARB_bindless_texture"));
  EXPECT_EQ(renderer_.gl().glDepthBounds != nullptr, has("GL_EXT_depth_bounds_test"));
  EXPECT_EQ(renderer_.gl().glClipControl != nullptr,
            has("GL_ARB_clip_control") || renderer_.facts().is_version_at_least(4, 5));
  EXPECT_NE(detail::egl_back_end().proc_address("glClipControl"), nullptr);
}

TEST_F(EglContexts, ExtensionsOfOpenGLAndOfEgl) {
  RenderWindow* window = renderer_.render_window_alloc();
  ASSERT_TRUE(create(window, offscreen_));
  EXPECT_GT(renderer_.get_num_gl_extensions(), 10u);
  EXPECT_GT(renderer_.get_num_wgl_extensions(), 5u);
  EXPECT_EQ(renderer_.get_num_extensions(),
            renderer_.get_num_gl_extensions() + renderer_.get_num_wgl_extensions());
  EXPECT_TRUE(renderer_.is_extension_supported(window, "EGL_KHR_create_context"));
}

TEST_F(EglContexts, NothingAboutTheContextIsAnError) {
  RenderWindow* window = renderer_.render_window_alloc();
  ASSERT_TRUE(create(window, offscreen_, 3));
  ASSERT_TRUE(renderer_.start());
  renderer_.get_gl_extensions();
  renderer_.get_max_anisotropy();
  renderer_.get_max_texture_size();
  renderer_.get_max_texture_image_units();
  renderer_.get_current_program_id();
  renderer_.get_texture_2d_binding_of_unit(3);
  renderer_.get_gpu_total_memory_nvx();
  renderer_.get_gpu_used_memory_ati();
  renderer_.get_free_memory_ati_0x87FE();
  for (unsigned int i = 0; i < renderer_.get_num_capabilities(); ++i) {
    renderer_.get_capability_values(renderer_.get_capability_name(i), nullptr, nullptr, nullptr,
                                    nullptr);
  }
  expect_no_error();
}

// ---- several windows -------------------------------------------------------------------------

TEST_F(EglContexts, TwoWindowsKeepTheirOwnPictures) {
  OffscreenWindow other(64, 48, OffscreenWindow::SOFTWARE);
  RenderWindow* first = renderer_.render_window_alloc();
  RenderWindow* second = renderer_.render_window_alloc();
  ASSERT_TRUE(create(first, offscreen_));
  ASSERT_TRUE(create(second, other));
  ASSERT_TRUE(renderer_.start());
  draw(0.0f, 1.0f, 0.0f);
  ASSERT_TRUE(renderer_.render_window_make_current(first, true));
  EXPECT_THAT(draw(1.0f, 0.0f, 0.0f), ElementsAre(255, 0, 0));
  ASSERT_TRUE(renderer_.render_window_make_current(second, true));
  EXPECT_THAT(read_pixel(), ElementsAre(0, 255, 0));
}

TEST_F(EglContexts, SharedWindowsSeeEachOthersObjects) {
  OffscreenWindow other(64, 48, OffscreenWindow::SOFTWARE);
  RenderWindow* first = renderer_.render_window_alloc();
  RenderWindow* second = renderer_.render_window_alloc();
  ASSERT_TRUE(create(first, offscreen_));
  LogCapture log;
  ASSERT_TRUE(create(second, other, 2, first));
  ASSERT_TRUE(renderer_.start());
  if (renderer_.get_major_version() < 3) {
    EXPECT_TRUE(log.contains("OpenGL context sharing based on wglShareLists no longer supported."));
    return;
  }
  expect_shared_with(first);
}

TEST_F(EglContexts, ShareListsAfterCreation) {
  OffscreenWindow other(64, 48, OffscreenWindow::SOFTWARE);
  RenderWindow* first = renderer_.render_window_alloc();
  RenderWindow* second = renderer_.render_window_alloc();
  ASSERT_TRUE(create(first, offscreen_, 3));
  ASSERT_TRUE(create(second, other, 3));
  EXPECT_TRUE(renderer_.render_window_share_lists(first, second));
  ASSERT_TRUE(renderer_.start());
  expect_shared_with(first);
  ASSERT_TRUE(renderer_.render_window_make_current(second, true));
  EXPECT_FALSE(renderer_.render_window_share_lists(first, second)) << "now it holds objects";
  EXPECT_THAT(draw(1.0f, 0.0f, 0.0f), ElementsAre(255, 0, 0));
}

TEST_F(EglContexts, ContextOnAnotherThreadIsNotBound) {
  RenderWindow* window = renderer_.render_window_alloc();
  ASSERT_TRUE(create(window, offscreen_));
  bool bound = true;
  std::thread([&] { bound = renderer_.render_window_make_current(window, true); }).join();
  EXPECT_FALSE(bound);
  EXPECT_TRUE(renderer_.render_window_make_current(window, false));
  std::thread([&] {
    bound = renderer_.render_window_make_current(window, true);
    renderer_.render_window_make_current(window, false);
  }).join();
  EXPECT_TRUE(bound);
}

TEST_F(EglContexts, TwoContextsMayDrawToOneOffscreenWindow) {
  RenderWindow* first = renderer_.render_window_alloc();
  RenderWindow* second = renderer_.render_window_alloc();
  ASSERT_TRUE(create(first, offscreen_));
  ASSERT_TRUE(create(second, offscreen_));
  ASSERT_TRUE(renderer_.start());
  EXPECT_THAT(draw(0.0f, 1.0f, 0.0f), ElementsAre(0, 255, 0));
  EXPECT_TRUE(renderer_.render_window_destroy_context(second));
  ASSERT_TRUE(renderer_.render_window_make_current(first, true));
  EXPECT_THAT(draw(0.0f, 0.0f, 1.0f), ElementsAre(0, 0, 255));
}

// ---- life ------------------------------------------------------------------------------------

TEST_F(EglContexts, WindowClosedAndReopened) {
  RenderWindow* window = renderer_.render_window_alloc();
  for (int round = 0; round < 3; ++round) {
    expect_reopened(window, make_data(offscreen_, 2 + round % 2));
  }
}

TEST_F(EglContexts, StopAndSecondStart) {
  RenderWindow* window = renderer_.render_window_alloc();
  ASSERT_TRUE(create(window, offscreen_));
  expect_start_after_stop();
}

TEST_F(EglContexts, StopAfterTheContextIsGone) {
  RenderWindow* window = renderer_.render_window_alloc();
  ASSERT_TRUE(create(window, offscreen_));
  expect_stop_without_context(window);
}

TEST_F(EglContexts, DestroyedOffscreenWindowMakesOperationsFalse) {
  auto gone = std::make_unique<OffscreenWindow>(32, 32, OffscreenWindow::SOFTWARE);
  RenderWindow* window = renderer_.render_window_alloc();
  ASSERT_TRUE(create(window, *gone));
  ASSERT_TRUE(renderer_.start());
  gone.reset();
  int interval = 0;
  EXPECT_FALSE(renderer_.render_window_swap_buffers(window));
  EXPECT_FALSE(renderer_.render_window_make_current(window, true));
  EXPECT_FALSE(renderer_.render_window_set_swap_interval(window, true));
  EXPECT_FALSE(renderer_.render_window_get_swap_interval(window, &interval));
  draw(1.0f, 0.0f, 0.0f);
  EXPECT_TRUE(renderer_.render_window_destroy_context(window));
  EXPECT_EQ(detail::current_back_end(), nullptr);
}

TEST_F(EglContexts, DeadHandleIsRefusedWithADebugLine) {
  RenderWindowData data;
  {
    OffscreenWindow gone(32, 32);
    data.native_window = gone.native_handle();
  }
  LogCapture log;
  RenderWindow* window = renderer_.render_window_alloc();
  EXPECT_FALSE(renderer_.render_window_create_context(window, &data, nullptr));
  EXPECT_TRUE(log.contains("offscreen window"));
  data.native_window = &log;
  EXPECT_FALSE(renderer_.render_window_create_context(window, &data, nullptr));
}

TEST_F(EglContexts, ExistingFormatNeedsASurface) {
  RenderWindow* window = renderer_.render_window_alloc();
  RenderWindowData data = make_data(offscreen_);
  data.use_existing_pixel_format = true;
  EXPECT_FALSE(renderer_.render_window_create_context(window, &data, nullptr));
  RenderWindow* first = renderer_.render_window_alloc();
  ASSERT_TRUE(create(first, offscreen_));
  EXPECT_TRUE(renderer_.render_window_create_context(window, &data, nullptr));
}

TEST_F(EglContexts, PreferencesChooseADevice) {
  LogCapture log;
  RenderWindow* window = renderer_.render_window_alloc();
  OffscreenWindow any(16, 16, OffscreenWindow::ANY);
  EXPECT_TRUE(create(window, any));
  OffscreenWindow hardware(16, 16, OffscreenWindow::HARDWARE);
  RenderWindow* second = renderer_.render_window_alloc();
  if (!create(second, hardware)) {
    EXPECT_FALSE(second->context_created);
    EXPECT_TRUE(log.contains("EGL:"));
  }
}

// ---- hosts -----------------------------------------------------------------------------------

TEST_F(EglContexts, SavedContextIsRestored) {
  OffscreenWindow other(16, 16, OffscreenWindow::SOFTWARE);
  RendererOpenGL host;
  RenderWindow* host_window = host.render_window_alloc();
  const RenderWindowData host_data = make_data(other);
  ASSERT_TRUE(host.render_window_create_context(host_window, &host_data, nullptr));
  void* host_context = detail::egl_back_end().current_context();

  RenderWindow* window = renderer_.render_window_alloc();
  EXPECT_TRUE(renderer_.render_window_save_current_context(window));
  ASSERT_TRUE(create(window, offscreen_));
  EXPECT_NE(detail::egl_back_end().current_context(), host_context);
  EXPECT_TRUE(renderer_.render_window_restore_saved_context(window));
  EXPECT_EQ(detail::egl_back_end().current_context(), host_context);
}

TEST_F(EglContexts, HostMadeContext) {
  RendererOpenGL host;
  RenderWindow* host_window = host.render_window_alloc();
  const RenderWindowData host_data = make_data(offscreen_, 3);
  ASSERT_TRUE(host.render_window_create_context(host_window, &host_data, nullptr));
  void* context = detail::egl_back_end().current_context();

  RenderWindow* window = renderer_.render_window_alloc();
  EXPECT_TRUE(renderer_.render_window_mark_context_created(window));
  ASSERT_TRUE(renderer_.start());
  EXPECT_THAT(draw(0.0f, 1.0f, 1.0f), ElementsAre(0, 255, 255));
  EXPECT_TRUE(renderer_.render_window_swap_buffers(window));
  EXPECT_TRUE(renderer_.stop());
  EXPECT_TRUE(renderer_.render_window_destroy_context(window));
  EXPECT_EQ(detail::current_back_end(), nullptr);
  EXPECT_TRUE(host.render_window_make_current(host_window, true)) << "it is the host's still";
  EXPECT_EQ(detail::egl_back_end().current_context(), context);
}

TEST_F(EglContexts, StartWithoutAWindowTakesTheCurrentContext) {
  RendererOpenGL host;
  RenderWindow* host_window = host.render_window_alloc();
  const RenderWindowData host_data = make_data(offscreen_);
  ASSERT_TRUE(host.render_window_create_context(host_window, &host_data, nullptr));
  ASSERT_TRUE(renderer_.start());
  EXPECT_EQ(renderer_.get_num_gpus(), 1u);
  EXPECT_THAT(draw(1.0f, 0.0f, 0.0f), ElementsAre(255, 0, 0));
}

TEST_F(EglContexts, StartWithoutAContextIsFalse) {
  EXPECT_FALSE(renderer_.start());
  EXPECT_EQ(renderer_.get_num_gpus(), 0u);
  EXPECT_EQ(renderer_.get_gl_version(), nullptr);
  EXPECT_TRUE(renderer_.stop());
}

// ---- swap interval ---------------------------------------------------------------------------

TEST_F(EglContexts, SwapIntervalOfTheCurrentWindow) {
  RenderWindow* window = renderer_.render_window_alloc();
  ASSERT_TRUE(create(window, offscreen_));
  int interval = -1;
  EXPECT_TRUE(renderer_.render_window_set_swap_interval(window, true));
  EXPECT_TRUE(renderer_.render_window_get_swap_interval(window, &interval));
  EXPECT_EQ(interval, 1);
  EXPECT_TRUE(renderer_.render_window_set_swap_interval(window, false));
  EXPECT_TRUE(renderer_.render_window_get_swap_interval(window, &interval));
  EXPECT_EQ(interval, 0);
  EXPECT_FALSE(renderer_.render_window_delay_before_swap(window, 0.01f));
  EXPECT_TRUE(renderer_.render_window_make_current(window, false));
  EXPECT_FALSE(renderer_.render_window_set_swap_interval(window, true));
}

}  // namespace
}  // namespace orv::test
