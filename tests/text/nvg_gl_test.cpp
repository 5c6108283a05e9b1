// Contexts, shapes, paint and coordinates.
#include "text/nvg_fixture.h"

#include <limits>

#include "text/nvg_globals.h"

namespace orv::test {
namespace {

constexpr float PI = 3.14159265f;

class NvgShapes : public NvgGlTest {};
ORV_NVG_PROFILES(NvgShapes);

class NvgContexts : public NvgGlTest {};
ORV_NVG_PROFILES(NvgContexts);

// ---- contexts ----

TEST_P(NvgContexts, InitTwiceMakesOneContext) {
  EXPECT_TRUE(nvg::init(&renderer, true));
  EXPECT_TRUE(nvg::init(nullptr, false)) << "nothing is looked at any more";
  EXPECT_EQ(nvg::get_num_contexts(), 1u);
  EXPECT_GT(nvg::get_context_id(0), 0);
}

TEST_P(NvgContexts, NewContextIsAppendedAndNotMadeCurrent) {
  ASSERT_TRUE(load_fonts());
  const int first = nvg::get_context_id(0);
  const int id = nvg::create_context(&renderer, false);
  EXPECT_GT(id, first);
  EXPECT_EQ(nvg::get_num_contexts(), 2u);
  EXPECT_EQ(nvg::get_context_id(0), first);
  EXPECT_EQ(nvg::get_context_id(1), id);
  EXPECT_EQ(nvg::get_context_id(2), 0);
  nvg::font_params(16, "sans", 0);
  EXPECT_GT(nvg::text_bounds(0, 0, nullptr, "the fonts are those of the first"), 0.0f);
}

TEST_P(NvgContexts, FailingNewContextLeavesTheListAlone) {
  const LogCapture log(LOG_LEVEL_ERROR);
  EXPECT_EQ(nvg::create_context(nullptr, true), 0);
  EXPECT_EQ(log.lines(), std::vector<std::string>{"NanoVG - unable to create a new context!"});
  EXPECT_EQ(nvg::get_num_contexts(), 1u);
}

TEST_P(NvgContexts, TerminateThenInitWorksAgain) {
  const LogCapture log(LOG_LEVEL_INFO);
  ASSERT_NE(nvg::create_context(&renderer, true), 0);
  nvg::terminate(&renderer);
  EXPECT_EQ(nvg::get_num_contexts(), 0u);
  EXPECT_EQ(nvg::get_context_id(0), 0);
  EXPECT_EQ(nvg::create_context(&renderer, true), 0);
  ASSERT_TRUE(nvg::init(&renderer, true));
  EXPECT_EQ(log.lines(),
            (std::vector<std::string>{"NanoVG - terminated ok.", "NanoVG - initialized ok."}));
  frame([] { nvg::circle_draw_fill_color(64, 64, 20, 1, 0, 0, 1); });
  EXPECT_EQ(at(64, 64), RED_PIXEL);
}

TEST_P(NvgContexts, SecondArgumentSmoothsEdges) {
  const auto count_soft = [this] {
    int soft = 0;
    for (int x = 0; x < SIZE; ++x) {
      for (int y = 60; y < 68; ++y) soft += red(x, y) > 8 && red(x, y) < 247;
    }
    return soft;
  };
  const auto draw = [] { nvg::circle_draw_fill_color(64, 64, 40.3f, 1, 0, 0, 1); };
  fresh_frame(draw);
  EXPECT_GT(count_soft(), 0);
  nvg::terminate(&renderer);
  ASSERT_TRUE(nvg::init(&renderer, false));
  fresh_frame(draw);
  EXPECT_EQ(count_soft(), 0);
  EXPECT_EQ(at(64, 64), RED_PIXEL);
}

// ---- shapes ----

TEST_P(NvgShapes, CoordinatesRunFromTheUpperLeft) {
  frame([] {
    nvg::begin_path();
    nvg::rect(10, 20, 30, 40);
    nvg::fill_color(1, 0, 0, 1);
  });
  EXPECT_EQ(at(11, 21), RED_PIXEL);
  EXPECT_EQ(at(38, 58), RED_PIXEL);
  EXPECT_EQ(at(25, 61), BLACK_PIXEL);
  EXPECT_EQ(at(41, 40), BLACK_PIXEL);
  EXPECT_EQ(at(8, 40), BLACK_PIXEL);
}

TEST_P(NvgShapes, NothingIsDrawnBeforeEndFrame) {
  nvg::begin_frame(SIZE, SIZE, 1);
  nvg::circle_draw_fill_color(64, 64, 30, 1, 0, 0, 1);
  EXPECT_EQ(count_lit(), 0);
  nvg::end_frame();
  EXPECT_GT(count_lit(), 2000);
  nvg::end_frame();  // without a frame: nothing
  clear();
  nvg::end_frame();
  EXPECT_EQ(count_lit(), 0);
}

TEST_P(NvgShapes, FrameStretchesOverTheViewport) {
  nvg::begin_frame(64, 64, 2.0f);
  nvg::circle_draw_fill_color(32, 32, 10, 1, 0, 0, 1);
  nvg::end_frame();
  EXPECT_EQ(at(64, 64), RED_PIXEL);
  EXPECT_EQ(at(80, 64), RED_PIXEL);
  EXPECT_EQ(at(88, 64), BLACK_PIXEL);
}

TEST_P(NvgShapes, PathsOfLinesAndCurves) {
  frame([] {
    nvg::begin_path();
    nvg::move_to(10, 10);
    nvg::line_to(60, 10);
    nvg::line_to(10, 60);
    nvg::close_path();
    nvg::fill_color(1, 0, 0, 1);
    nvg::begin_path();
    nvg::move_to(70, 100);
    nvg::bezier_to(70, 60, 120, 60, 120, 100);
    nvg::close_path();
    nvg::fill_color(1, 1, 1, 1);
  });
  EXPECT_EQ(at(20, 20), RED_PIXEL);
  EXPECT_EQ(at(50, 50), BLACK_PIXEL);
  EXPECT_EQ(at(95, 75), WHITE_PIXEL) << "the curve reaches up to 70";
  EXPECT_EQ(at(95, 66), BLACK_PIXEL);
}

TEST_P(NvgShapes, RoundShapes) {
  frame([] {
    nvg::begin_path();
    nvg::rounded_rect(4, 4, 40, 40, 16);
    nvg::circle(90, 24, 20);
    nvg::ellipse(64, 90, 50, 20);
    nvg::fill_color(1, 0, 0, 1);
  });
  EXPECT_EQ(at(6, 6), BLACK_PIXEL) << "rounded off";
  EXPECT_EQ(at(24, 6), RED_PIXEL);
  EXPECT_EQ(at(108, 24), RED_PIXEL);
  EXPECT_EQ(at(106, 8), BLACK_PIXEL);
  EXPECT_EQ(at(112, 90), RED_PIXEL);
  EXPECT_EQ(at(64, 108), RED_PIXEL);
  EXPECT_EQ(at(64, 112), BLACK_PIXEL);
}

TEST_P(NvgShapes, ConcaveShapesKeepTheirNotch) {
  frame([] {
    nvg::begin_path();
    nvg::move_to(10, 10);
    nvg::line_to(64, 60);
    nvg::line_to(118, 10);
    nvg::line_to(118, 118);
    nvg::line_to(10, 118);
    nvg::close_path();
    nvg::fill_color(1, 0, 0, 1);
  });
  EXPECT_EQ(at(64, 30), BLACK_PIXEL);
  EXPECT_EQ(at(64, 80), RED_PIXEL);
  EXPECT_EQ(at(14, 30), RED_PIXEL);
}

TEST_P(NvgShapes, WindingMakesHoles) {
  frame([] {
    nvg::begin_path();
    nvg::rect(20, 20, 80, 80);
    nvg::circle(60, 60, 20);
    nvg::path_winding(nvg::WINDING_HOLE);
    nvg::fill_color(1, 0, 0, 1);
  });
  EXPECT_EQ(at(60, 60), BLACK_PIXEL);
  EXPECT_EQ(at(25, 25), RED_PIXEL);
}

TEST_P(NvgShapes, StrokeCoversEachPixelOnce) {
  frame([] {
    nvg::begin_path();
    nvg::move_to(20, 20);
    nvg::line_to(108, 108);
    nvg::line_to(108, 20);
    nvg::line_to(20, 108);
    nvg::stroke(1, 0, 0, 0.5f, 16);
  });
  EXPECT_NEAR(red(64, 64), 128, 2) << "the line crosses itself";
  EXPECT_NEAR(red(40, 40), 128, 2);
  EXPECT_EQ(at(64, 30), BLACK_PIXEL);
}

TEST_P(NvgShapes, OneCallShapes) {
  frame([this] {
    nvg::circle_draw_fill_color(20, 20, 12, 1, 0, 0, 1);
    nvg::circle_draw_stroke(60, 20, 12, 1, 1, 1, 1, 4);
    nvg::ellipse_draw_fill_color(100, 20, 16, 8, 1, 0, 0, 1);
    nvg::ellipse_draw_stroke(20, 64, 16, 8, 1, 1, 1, 1, 4);
    nvg::rounded_rect_draw_fill_color(46, 50, 28, 28, 4, 1, 0, 0, 1);
    nvg::rounded_rect_draw_stroke(86, 50, 28, 28, 4, 1, 1, 1, 1, 4);
    nvg::circle_draw_fill_gradient(20, 105, 16, red_, blue_);
    nvg::ellipse_draw_fill_gradient(60, 105, 16, 8, red_, blue_);
    nvg::rounded_rect_draw_fill_gradient(86, 90, 28, 28, 4, red_, blue_);
  });
  EXPECT_EQ(at(20, 20), RED_PIXEL);
  EXPECT_EQ(at(60, 20), BLACK_PIXEL);
  EXPECT_EQ(at(72, 20), WHITE_PIXEL);
  EXPECT_EQ(at(112, 20), RED_PIXEL);
  EXPECT_EQ(at(100, 30), BLACK_PIXEL);
  EXPECT_EQ(at(20, 64), BLACK_PIXEL);
  EXPECT_EQ(at(20, 56), WHITE_PIXEL);
  EXPECT_EQ(at(60, 64), RED_PIXEL);
  EXPECT_EQ(at(100, 64), BLACK_PIXEL);
  EXPECT_EQ(at(86, 64), WHITE_PIXEL);
  // From the middle to the border, and from top to bottom.
  EXPECT_GT(red(20, 105), 230);
  EXPECT_LT(red(20, 92), 80);
  EXPECT_GT(red(60, 105), 230);
  EXPECT_LT(red(60, 99), 100) << "the rings are flattened with the ellipse";
  EXPECT_NEAR(red(68, 105), 128, 20);
  EXPECT_NEAR(red(60, 101), 128, 24);
  EXPECT_GT(red(100, 92), 220);
  EXPECT_LT(red(100, 115), 35);
}

TEST_P(NvgShapes, Gradients) {
  frame([this] {
    nvg::begin_path();
    nvg::rect(0, 0, 128, 40);
    nvg::fill_paint_linear_gradient(20, 0, 108, 0, red_, blue_);
    nvg::begin_path();
    nvg::rect(0, 44, 128, 40);
    nvg::fill_paint_box_gradient(30, 54, 68, 20, 4, 6, red_, blue_);
    nvg::begin_path();
    nvg::rect(0, 88, 128, 40);
    nvg::fill_paint_radial_gradient(64, 108, 5, 15, red_, blue_);
  });
  EXPECT_EQ(at(10, 20), RED_PIXEL);
  EXPECT_EQ(at(120, 20), (std::vector<int>{0, 0, 255, 255}));
  EXPECT_NEAR(red(64, 20), 128, 3);
  EXPECT_EQ(at(64, 64), RED_PIXEL);
  EXPECT_EQ(red(10, 64), 0);
  EXPECT_EQ(at(64, 108), RED_PIXEL);
  EXPECT_EQ(red(64, 90), 0);
  EXPECT_NEAR(red(74, 108), 128, 16);
}

TEST_P(NvgShapes, NullColorsAreWhite) {
  frame([] { nvg::circle_draw_fill_gradient(64, 64, 30, nullptr, nullptr); });
  EXPECT_EQ(at(64, 64), WHITE_PIXEL);
}

// ---- coordinates ----

TEST_P(NvgShapes, TransformsAreSavedAndReset) {
  const auto dot = [] { nvg::circle_draw_fill_color(0, 0, 3, 1, 0, 0, 1); };
  frame([&] {
    nvg::translate(20, 20);
    dot();
    nvg::save();
    nvg::scale(2, 3);
    nvg::translate(20, 10);
    dot();  // at (60, 50)
    nvg::restore();
    nvg::rotate(PI / 2);
    nvg::translate(80, 0);
    dot();  // at (20, 100)
    nvg::reset_transform();
    nvg::translate(100, 20);
    dot();
    nvg::reset();
    nvg::translate(100, 100);
    dot();
  });
  EXPECT_EQ(at(20, 20), RED_PIXEL);
  EXPECT_EQ(at(60, 50), RED_PIXEL);
  EXPECT_EQ(at(20, 100), RED_PIXEL);
  EXPECT_EQ(at(100, 20), RED_PIXEL);
  EXPECT_EQ(at(100, 100), RED_PIXEL);
}

TEST_P(NvgShapes, SaveAndRestoreEndWell) {
  frame([] {
    for (int i = 0; i < 100; ++i) nvg::save();
    nvg::window_draw("", 2, 2, 40, 40, nullptr, nullptr);  // saves more
    nvg::translate(30, 0);
    for (int i = 0; i < 200; ++i) nvg::restore();
    nvg::circle_draw_fill_color(100, 100, 5, 1, 0, 0, 1);
  });
  EXPECT_EQ(at(100, 100), RED_PIXEL);
}

TEST_P(NvgShapes, SettingsStackHolds24) {
  frame([] {
    for (int i = 0; i < 24; ++i) {
      nvg::save();
      nvg::translate(4, 0);
    }
    nvg::save();  // left out
    nvg::restore();
    nvg::circle_draw_fill_color(0, 100, 3, 1, 0, 0, 1);
    for (int i = 0; i < 22; ++i) nvg::restore();
    nvg::circle_draw_fill_color(0, 20, 3, 1, 1, 1, 1);
    nvg::restore();
    nvg::circle_draw_fill_color(64, 64, 3, 1, 1, 1, 1);
  });
  EXPECT_EQ(at(23 * 4, 100), RED_PIXEL);
  EXPECT_EQ(at(24 * 4, 100), BLACK_PIXEL);
  EXPECT_EQ(at(4, 20), WHITE_PIXEL);
  EXPECT_EQ(at(64, 64), WHITE_PIXEL);
}

TEST_P(NvgShapes, ChangesOutOfRangeAreLeftOut) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float infinity = std::numeric_limits<float>::infinity();
  frame([&] {
    nvg::translate(64, 64);
    nvg::translate(nan, 0);
    nvg::translate(1e8f, 0);
    nvg::rotate(infinity);
    for (int i = 0; i < 100; ++i) nvg::scale(infinity, 1e30f);
    nvg::circle_draw_fill_color(0, 0, 5, 1, 0, 0, 1);
  });
  EXPECT_EQ(at(64, 64), RED_PIXEL);
}

TEST_P(NvgShapes, ScalingOnAndOnStaysInRange) {
  frame([] {
    for (int i = 0; i < 1000; ++i) nvg::scale(3, 3);
    nvg::circle_draw_stroke(1e7f, 1e7f, 1e7f, 1, 0, 0, 1, 1e7f);
    nvg::reset_transform();
    for (int i = 0; i < 1000; ++i) nvg::scale(0.1f, 0.1f);
    nvg::circle_draw_stroke(1e7f, 1e7f, 1e7f, 1, 0, 0, 1, 1e7f);
    nvg::reset_transform();
    nvg::circle_draw_fill_color(64, 64, 5, 1, 1, 1, 1);
  });
  EXPECT_EQ(at(64, 64), WHITE_PIXEL);
}

// ---- strange input ----

TEST_P(NvgShapes, NumbersThatAreNoneDrawNothing) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float infinity = std::numeric_limits<float>::infinity();
  for (const float bad : {nan, infinity, -infinity, 3e7f}) {
    fresh_frame([&] {
      nvg::begin_path();
      nvg::move_to(bad, 0);
      nvg::line_to(0, bad);
      nvg::bezier_to(0, 0, bad, 0, 0, 0);
      nvg::rect(0, 0, bad, 10);
      nvg::rounded_rect(0, 0, 10, 10, bad);
      nvg::circle(0, bad, 10);
      nvg::ellipse(0, 0, 10, bad);
      nvg::fill_color(1, 1, 1, 1);
      nvg::stroke(1, 1, 1, 1, bad);
      nvg::begin_path();
      nvg::rect(0, 0, 10, 10);
      nvg::fill_paint_linear_gradient(0, 0, bad, 0, red_, red_);
      nvg::fill_paint_box_gradient(0, 0, 10, 10, 1, bad, red_, red_);
      nvg::fill_paint_radial_gradient(0, 0, bad, 10, red_, red_);
      nvg::window_draw("title", 0, 0, bad, 50, red_, red_);
      nvg::button_draw(1, "text", bad, 0, 50, 50, red_);
      nvg::demo_eyes_draw(0, 0, 50, 50, bad, 0, 0);
      nvg::demo_graph_draw(0, 0, 50, 50, bad);
    });
    EXPECT_EQ(count_lit(), 0) << bad;
  }
}

TEST_P(NvgShapes, PathsOfOnePointAreNothing) {
  frame([] {
    nvg::begin_path();
    nvg::move_to(64, 64);
    nvg::fill_color(1, 1, 1, 1);
    nvg::stroke(1, 1, 1, 1, 20);
    nvg::close_path();
    nvg::stroke(1, 1, 1, 1, 20);
    nvg::begin_path();
    nvg::line_to(30, 30);
    nvg::bezier_to(1, 2, 3, 4, 5, 6);
    nvg::fill_color(1, 1, 1, 1);
    nvg::begin_path();
    nvg::fill_color(1, 1, 1, 1);
    nvg::stroke(1, 1, 1, 1, 20);
    nvg::rect(10, 10, 0, 0);
    nvg::circle(50, 50, 0);
    nvg::path_winding(12345);
    nvg::fill_color(1, 1, 1, 1);
    nvg::stroke(1, 1, 1, 1, -5);
  });
  EXPECT_EQ(count_lit(), 0);
}

TEST_P(NvgShapes, StrangeFramesAreLimited) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  for (const float ratio : {nan, -1.0f, 0.0f, 1e-30f, 1e30f}) {
    nvg::begin_frame(-5, 0, ratio);
    nvg::begin_path();
    nvg::move_to(0.5f, 0.5f);
    nvg::stroke(1, 1, 1, 1, 2);
    nvg::circle_draw_stroke(0.5f, 0.5f, 0.2f, 1, 1, 1, 1, 2);
    nvg::end_frame();
  }
  fresh_frame([] { nvg::circle_draw_fill_color(64, 64, 5, 1, 0, 0, 1); });
  EXPECT_EQ(at(64, 64), RED_PIXEL);
}

TEST_P(NvgShapes, PathsAreLimited) {
  frame([] {
    nvg::begin_path();
    nvg::circle(20, 20, 5);
    // Each circle may take 4096 points, of which a path holds 2^26.
    for (int i = 0; i < 16384; ++i) nvg::circle(-100, -100, 1);
    nvg::circle(100, 100, 5);
    nvg::fill_color(1, 0, 0, 1);
    nvg::begin_path();
    nvg::circle(20, 100, 5);
    nvg::fill_color(1, 1, 1, 1);
  });
  EXPECT_EQ(at(20, 20), RED_PIXEL);
  EXPECT_EQ(at(100, 100), BLACK_PIXEL);
  EXPECT_EQ(at(20, 100), WHITE_PIXEL) << "the next path begins anew";
}

TEST_P(NvgShapes, FramesAreLimited) {
  const LogCapture log;
  nvg::begin_frame(SIZE, SIZE, 1);
  nvg::begin_path();
  for (int i = 0; i < (1 << 20) + 5; ++i) nvg::fill_color(1, 1, 1, 1);
  EXPECT_EQ(log.count("NanoVG - frame is full: the rest of it is left out"), 1);
  nvg::terminate(&renderer);  // a million empty shapes take long to draw
  ASSERT_TRUE(nvg::init(&renderer, true));
}

// ---- contexts of OpenGL ----

TEST_P(NvgContexts, FramesAreDroppedWhileAnotherContextIsCurrent) {
  ASSERT_TRUE(load_fonts());
  const LogCapture log;
  const auto draw = [] {
    nvg::circle_draw_fill_color(64, 64, 20, 1, 0, 0, 1);
    nvg::text_draw(300, "sans", nvg::ALIGN_LEFT | nvg::ALIGN_TOP, 0, 0, 1, 1, 1, 1, "QWERTYUIOP");
    nvg::text_draw(200, "sans", nvg::ALIGN_LEFT | nvg::ALIGN_TOP, 0, 0, 1, 1, 1, 1, "QWERTYUIOP");
  };
  RenderWindow* own = context.window();
  ASSERT_TRUE(renderer.render_window_make_current(own, false));
  frame(draw);
  frame([] { EXPECT_TRUE(nvg::render_demo(0, 0, 100, 100, 0)) << "recorded all the same"; });
  EXPECT_FALSE(nvg::render_demo(0, 0, 100, 100, 0)) << "there is no viewport";
  EXPECT_TRUE(log.contains("NanoVG - frame dropped: its context is not current"));
  ASSERT_TRUE(renderer.render_window_make_current(own, true));
  EXPECT_EQ(count_lit(), 0);
  frame([] { nvg::circle_draw_fill_color(64, 64, 20, 1, 0, 0, 1); });
  EXPECT_EQ(at(64, 64), RED_PIXEL);
}

TEST_P(NvgContexts, TerminateWithoutACurrentContext) {
  ASSERT_TRUE(load_fonts());
  RenderWindow* own = context.window();
  ASSERT_TRUE(renderer.render_window_make_current(own, false));
  nvg::terminate(nullptr);
  EXPECT_EQ(nvg::get_num_contexts(), 0u);
  ASSERT_TRUE(renderer.render_window_make_current(own, true));
  ASSERT_TRUE(nvg::init(&renderer, true));
}

TEST_P(NvgContexts, TerminateAfterTheContextWasDestroyed) {
  ASSERT_TRUE(renderer.render_window_destroy_context(context.window()));
  frame([] { nvg::circle_draw_fill_color(64, 64, 20, 1, 0, 0, 1); });
  nvg::terminate(&renderer);
  EXPECT_EQ(nvg::get_num_contexts(), 0u);
}

TEST_P(NvgContexts, RendererStopsFirst) {
  ASSERT_TRUE(load_fonts());
  const auto draw = [] {
    nvg::circle_draw_fill_color(64, 64, 20, 1, 0, 0, 1);
    nvg::text_draw(30, "sans", nvg::ALIGN_LEFT | nvg::ALIGN_TOP, 0, 0, 1, 1, 1, 1, "text");
  };
  nvg::begin_frame(SIZE, SIZE, 1);
  draw();
  ASSERT_TRUE(renderer.stop());
  draw();
  nvg::end_frame();
  nvg::terminate(&renderer);
  ASSERT_TRUE(renderer.start());
  renderer.set_viewport(0, 0, 0, SIZE, SIZE);
  ASSERT_TRUE(nvg::init(&renderer, true));
  fresh_frame(draw);
  EXPECT_EQ(at(64, 64), RED_PIXEL);
}

TEST_P(NvgContexts, RendererIsGoneFirst) {
  nvg::terminate(&renderer);
  {
    GlContext other(GetParam());
    ORV_REQUIRE_GL(other);
    ASSERT_TRUE(nvg::init(&other.renderer(), true));
    ASSERT_TRUE(nvg::load_font("sans", SANS));
  }
  frame([] {
    nvg::circle_draw_fill_color(64, 64, 20, 1, 0, 0, 1);
    nvg::text_draw(30, "sans", nvg::ALIGN_LEFT, 0, 30, 1, 1, 1, 1, "text");
  });
  nvg::terminate(nullptr);
  renderer.render_window_make_current(context.window(), true);
}

// Runs with old versions of OpenGL, too.
TEST(NvgOldContext, InitNeedsVersion32) {
  GlContext context;
  ORV_REQUIRE_GL(context);
  const bool new_enough = context.renderer().facts().is_version_at_least(3, 2);
  const LogCapture log(LOG_LEVEL_INFO);
  EXPECT_EQ(nvg::init(&context.renderer(), true), new_enough);
  EXPECT_EQ(log.lines(), std::vector<std::string>{new_enough ? "NanoVG - initialized ok."
                                                             : "NanoVG - unable to initialize!"});
  EXPECT_EQ(nvg::get_num_contexts(), new_enough ? 1u : 0u);
  nvg::terminate(&context.renderer());
}

}  // namespace
}  // namespace orv::test
