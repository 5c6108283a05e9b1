#include <orv/text/nvg.h>

#include <gtest/gtest.h>

#include <limits>

#include "render/opengl/renderer_opengl.h"
#include "support/log_capture.h"
#include "support/recording_renderer.h"
#include "text/nvg_widgets.h"

using namespace orv;
using namespace orv::test;

namespace {

constexpr char UNABLE[] = "NanoVG - unable to initialize!";

/// Every function but init() and terminate().
void call_everything() {
  const float color[] = {1, 0, 0, 1};
  nvg::begin_frame(64, 64, 1);
  nvg::reset();
  nvg::save();
  nvg::restore();
  nvg::reset_transform();
  nvg::translate(1, 2);
  nvg::rotate(1);
  nvg::scale(2, 2);
  nvg::begin_path();
  nvg::move_to(0, 0);
  nvg::line_to(1, 1);
  nvg::bezier_to(1, 2, 3, 4, 5, 6);
  nvg::rect(0, 0, 1, 1);
  nvg::rounded_rect(0, 0, 4, 4, 1);
  nvg::circle(1, 1, 1);
  nvg::ellipse(1, 1, 1, 1);
  nvg::path_winding(nvg::WINDING_HOLE);
  nvg::close_path();
  nvg::fill_color(1, 1, 1, 1);
  nvg::stroke(1, 1, 1, 1, 1);
  nvg::fill_paint_linear_gradient(0, 0, 1, 1, color, nullptr);
  nvg::fill_paint_box_gradient(0, 0, 1, 1, 1, 1, color, nullptr);
  nvg::fill_paint_radial_gradient(0, 0, 1, 1, color, nullptr);
  nvg::circle_draw_fill_color(1, 1, 1, 1, 1, 1, 1);
  nvg::circle_draw_fill_gradient(1, 1, 1, color, color);
  nvg::circle_draw_stroke(1, 1, 1, 1, 1, 1, 1, 1);
  nvg::ellipse_draw_fill_color(1, 1, 1, 1, 1, 1, 1, 1);
  nvg::ellipse_draw_fill_gradient(1, 1, 1, 1, color, color);
  nvg::ellipse_draw_stroke(1, 1, 1, 1, 1, 1, 1, 1, 1);
  nvg::rounded_rect_draw_fill_color(1, 1, 1, 1, 1, 1, 1, 1, 1);
  nvg::rounded_rect_draw_fill_gradient(1, 1, 1, 1, 1, color, color);
  nvg::rounded_rect_draw_stroke(1, 1, 1, 1, 1, 1, 1, 1, 1, 1);
  nvg::font_params(12, "sans", 0);
  nvg::text_params(nvg::ALIGN_LEFT, 0, 1);
  nvg::text(1, 1, "text");
  nvg::text(1, 1, nullptr);
  nvg::text_prepare(12, nullptr, 0);
  nvg::text_render(1, 1, 1, 1, 1, 1, "text");
  nvg::text_draw(12, "sans", 0, 1, 1, 1, 1, 1, 1, nullptr);
  nvg::text_color_background(1, 1, 1, 1, 1, 1, 1, "text");
  nvg::window_draw("title", 1, 1, 50, 50, color, color);
  nvg::button_draw(nvg::ICON_TRASH, "text", 1, 1, 50, 20, color);
  nvg::check_box_draw(1, 1, 50, 20, true, "text", color, color);
  nvg::slider_draw(0.5f, 1, 1, 50, 20, color);
  nvg::label_draw("text", 1, 1, 50, 20, color);
  nvg::demo_eyes_draw(1, 1, 50, 20, 0, 0, 0);
  nvg::demo_graph_draw(1, 1, 50, 20, 0);
  nvg::end_frame();
}

}  // namespace

TEST(Nvg, EverythingReturnsAtOnceWithoutAContext) {
  call_everything();
  EXPECT_FALSE(nvg::load_font("sans", ORV_TEST_DATA_DIR "/none.ttf"));
  EXPECT_FALSE(nvg::render_demo(0, 0, 100, 100, 0));
  float bounds[4] = {7, 7, 7, 7};
  EXPECT_EQ(nvg::text_bounds(5, 5, bounds, "text"), 0.0f);
  for (const float value : bounds) EXPECT_EQ(value, 0.0f);
  EXPECT_EQ(nvg::text_bounds(5, 5, nullptr, nullptr), 0.0f);
  EXPECT_EQ(nvg::get_num_contexts(), 0u);
}

TEST(Nvg, InitFailsWithoutARenderer) {
  const LogCapture log(LOG_LEVEL_ERROR);
  EXPECT_FALSE(nvg::init(nullptr, true));
  EXPECT_EQ(log.lines(), std::vector<std::string>{UNABLE});
  EXPECT_EQ(nvg::get_num_contexts(), 0u);
}

TEST(Nvg, InitFailsOnOtherRenderers) {
  const LogCapture log(LOG_LEVEL_INFO);
  RecordingRenderer renderer;
  EXPECT_FALSE(nvg::init(&renderer, true));
  EXPECT_EQ(log.lines(), std::vector<std::string>{UNABLE});
  EXPECT_TRUE(renderer.calls().empty());
}

TEST(Nvg, InitFailsBeforeTheRendererStarts) {
  const LogCapture log;
  RendererOpenGL renderer;
  EXPECT_FALSE(nvg::init(&renderer, true));
  EXPECT_TRUE(log.contains(UNABLE));
  EXPECT_TRUE(log.contains("NanoVG - no started OpenGL renderer with a current context"));
}

TEST(Nvg, CreateContextBeforeInitGivesNothing) {
  const LogCapture log;
  RecordingRenderer renderer;
  EXPECT_EQ(nvg::create_context(&renderer, true), 0);
  EXPECT_EQ(nvg::get_num_contexts(), 0u);
  EXPECT_TRUE(log.lines().empty());
}

TEST(Nvg, ContextIdPastTheEndIsZero) {
  EXPECT_EQ(nvg::get_context_id(0), 0);
  EXPECT_EQ(nvg::get_context_id(std::numeric_limits<unsigned int>::max()), 0);
}

TEST(Nvg, TerminateWithoutInitOnlyLogs) {
  const LogCapture log;
  nvg::terminate(nullptr);
  EXPECT_EQ(log.lines(), std::vector<std::string>{"NanoVG - terminated ok."});
}

TEST(Nvg, CodePointsBecomeText) {
  const struct {
    int code;
    const char* text;
  } cases[] = {{'A', "A"},
               {0x7F, "\x7F"},
               {0x80, "\xC2\x80"},
               {0x2713, "\xE2\x9C\x93"},
               {0xE729, "\xEE\x9C\xA9"},
               {0x1F50D, "\xF0\x9F\x94\x8D"},
               {0x10FFFF, "\xF4\x8F\xBF\xBF"},
               {0, ""},
               {-1, ""},
               {0x110000, ""}};
  for (const auto& one : cases) {
    char text[5];
    nvg::utf8_of(one.code, text);
    EXPECT_STREQ(text, one.text) << one.code;
  }
}

TEST(Nvg, ShadesGoToWhiteAndBlackAndKeepAlpha) {
  const NVGcolor color = nvgRGBAf(0.5f, 0.25f, 1.0f, 0.3f);
  EXPECT_FLOAT_EQ(nvg::shaded(color, 1.0f).r, 1.0f);
  EXPECT_FLOAT_EQ(nvg::shaded(color, -1.0f).b, 0.0f);
  EXPECT_FLOAT_EQ(nvg::shaded(color, 0.5f).g, 0.625f);
  EXPECT_FLOAT_EQ(nvg::shaded(color, -0.5f).r, 0.25f);
  EXPECT_FLOAT_EQ(nvg::shaded(color, 0.7f).a, 0.3f);
}

TEST(Nvg, NumbersOutOfRangeAreKnown) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float infinity = std::numeric_limits<float>::infinity();
  EXPECT_TRUE(nvg::in_range({}));
  EXPECT_TRUE(nvg::in_range({0, -1e7f, 1e7f}));
  EXPECT_FALSE(nvg::in_range({0, nan}));
  EXPECT_FALSE(nvg::in_range({infinity, 0}));
  EXPECT_FALSE(nvg::in_range({-1.1e7f}));
  EXPECT_EQ(nvg::to_color(nan, 0.5f, infinity, 1).r, 0.0f);
  EXPECT_EQ(nvg::to_color(nan, 0.5f, infinity, 1).b, 0.0f);
  EXPECT_EQ(nvg::to_color(nan, 0.5f, infinity, 1).g, 0.5f);
  EXPECT_EQ(nvg::to_color(nullptr).a, 1.0f);
}
