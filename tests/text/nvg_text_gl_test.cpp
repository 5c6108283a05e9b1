// Fonts, text, widgets and the demonstrations.
#include "text/nvg_fixture.h"

#include <functional>
#include <limits>

#include "core/read_file.h"
#include "support/temp_folder.h"

namespace orv::test {
namespace {

class NvgText : public NvgGlTest {
 protected:
  void SetUp() override {
    NvgGlTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    ASSERT_TRUE(load_fonts());
  }
};
ORV_NVG_PROFILES(NvgText);

class NvgFonts : public NvgGlTest {
 protected:
  bool load_bytes(const std::vector<unsigned char>& bytes, const char* name = "spoiled") {
    const std::string path = folder.write("font.ttf", std::string(bytes.begin(), bytes.end()));
    return nvg::load_font(name, path.c_str());
  }
  void draw_with(const char* font) {
    fresh_frame([&] {
      nvg::text_draw(24, font, nvg::ALIGN_LEFT | nvg::ALIGN_TOP, 0, 0, 1, 1, 1, 1,
                     "Qgj\xC3\xA9 AV");
      nvg::text_draw(90, font, nvg::ALIGN_LEFT | nvg::ALIGN_TOP, 0, 30, 1, 1, 1, 1, "%&@");
    });
  }

  TempFolder folder;
};
ORV_NVG_PROFILES(NvgFonts);

// ---- fonts ----

TEST_P(NvgFonts, LoadsOnlyWhatIsAFont) {
  const LogCapture log;
  EXPECT_FALSE(nvg::load_font(nullptr, SANS));
  EXPECT_FALSE(nvg::load_font("", SANS));
  EXPECT_FALSE(nvg::load_font("sans", nullptr));
  EXPECT_FALSE(nvg::load_font("sans", ""));
  EXPECT_FALSE(nvg::load_font("sans", "/none/font.ttf"));
  EXPECT_TRUE(log.contains("NanoVG - font \"sans\": /none/font.ttf: "));
  EXPECT_FALSE(nvg::load_font("sans", ORV_TEST_DATA_DIR));
  EXPECT_FALSE(nvg::load_font("sans", ORV_SOURCE_DIR "/README.md"));
  EXPECT_TRUE(log.contains("NanoVG - font \"sans\": no TrueType font"));
  EXPECT_FALSE(load_bytes({}));
  EXPECT_TRUE(nvg::load_font("sans", SANS)) << "none of these took the name";
  EXPECT_TRUE(nvg::load_font("icons", ICONS));
}

TEST_P(NvgFonts, TakenNameKeepsItsFont) {
  ASSERT_TRUE(nvg::load_font("font", SANS));
  nvg::font_params(20, "font", 0);
  const float width = nvg::text_bounds(0, 0, nullptr, "same width");
  EXPECT_TRUE(nvg::load_font("font", SANS_BOLD));
  nvg::font_params(20, "font", 0);
  EXPECT_EQ(nvg::text_bounds(0, 0, nullptr, "same width"), width);
  EXPECT_FALSE(nvg::load_font("font", ORV_SOURCE_DIR "/README.md"));
}

TEST_P(NvgFonts, LongNamesAreCutEverywhere) {
  const std::string name(200, 'n');
  ASSERT_TRUE(nvg::load_font(name.c_str(), SANS));
  nvg::font_params(20, name.c_str(), 0);
  EXPECT_GT(nvg::text_bounds(0, 0, nullptr, "text"), 0.0f);
}

TEST_P(NvgFonts, EveryTruncationIsRefusedOrDraws) {
  std::vector<unsigned char> whole;
  ASSERT_TRUE(detail::read_whole_file(ICONS, whole));
  int refused = 0, tried = 0;
  for (std::size_t size = 0; size < whole.size(); size += size < 1024 ? 61 : 2503, ++tried) {
    const std::string name = "cut" + std::to_string(tried);
    const std::vector<unsigned char> cut(whole.begin(),
                                         whole.begin() + static_cast<std::ptrdiff_t>(size));
    if (load_bytes(cut, name.c_str())) {
      draw_with(name.c_str());
    } else {
      ++refused;
    }
  }
  EXPECT_GT(refused, tried / 2);
  EXPECT_TRUE(load_bytes(whole, "whole"));
}

TEST_P(NvgFonts, SpoiledBytesAreRefusedOrDraw) {
  std::vector<unsigned char> whole;
  ASSERT_TRUE(detail::read_whole_file(ICONS, whole));
  unsigned int seed = 12345;
  const auto random = [&] { return (seed = seed * 1664525u + 1013904223u) >> 8; };
  int drawn = 0;
  for (int i = 0; i < 60; ++i) {
    std::vector<unsigned char> spoiled = whole;
    // Every third time in the directory, else anywhere.
    for (int k = 0; k < 4; ++k) {
      const std::size_t range = i % 3 == 0 ? 300 : spoiled.size();
      spoiled[random() % range] = static_cast<unsigned char>(random());
    }
    const std::string name = "bad" + std::to_string(i);
    if (!load_bytes(spoiled, name.c_str())) continue;
    draw_with(name.c_str());
    ++drawn;
  }
  EXPECT_GT(drawn, 0);
}

// ---- text ----

TEST_P(NvgText, DrawsInItsColor) {
  frame([] {
    nvg::text_draw(100, "sans-bold", nvg::ALIGN_CENTER | nvg::ALIGN_MIDDLE, 64, 64, 1, 0, 0, 1,
                   "I");
  });
  EXPECT_EQ(at(64, 64), RED_PIXEL);
  EXPECT_EQ(at(10, 64), BLACK_PIXEL);
}

TEST_P(NvgText, PlainTextTakesTheFillColor) {
  frame([] {
    nvg::text_prepare(100, "sans-bold", nvg::ALIGN_CENTER | nvg::ALIGN_MIDDLE);
    nvg::begin_path();
    nvg::fill_color(1, 0, 0, 1);
    nvg::text(64, 64, "I");
  });
  EXPECT_EQ(at(64, 64), RED_PIXEL);
}

TEST_P(NvgText, AlignmentMovesTheText) {
  const auto text_at = [](int align) {
    return [align] { nvg::text_draw(20, "sans", align, 64, 64, 1, 1, 1, 1, "HHH"); };
  };
  fresh_frame(text_at(nvg::ALIGN_LEFT | nvg::ALIGN_TOP));
  EXPECT_GT(count_lit(64, 64), 50);
  EXPECT_EQ(count_lit(), count_lit(63, 63));
  fresh_frame(text_at(nvg::ALIGN_RIGHT | nvg::ALIGN_BOTTOM));
  EXPECT_GT(count_lit(), 50);
  EXPECT_EQ(count_lit(), count_lit(0, 0, 65, 65));
  fresh_frame(text_at(nvg::ALIGN_CENTER | nvg::ALIGN_BASELINE));
  EXPECT_GT(count_lit(0, 0, 64, 65), 20);
  EXPECT_GT(count_lit(64, 0, 128, 65), 20);
  EXPECT_EQ(count_lit(0, 66, 128, 128), 0);
}

TEST_P(NvgText, BoundsHoldTheText) {
  float bounds[4];
  nvg::text_prepare(30, "sans", nvg::ALIGN_LEFT | nvg::ALIGN_TOP);
  const float width = nvg::text_bounds(10, 20, bounds, "Hello");
  EXPECT_NEAR(width, bounds[2] - bounds[0], 8.0f);
  EXPECT_NEAR(bounds[1], 20.0f, 1.0f);
  EXPECT_NEAR(bounds[3] - bounds[1], 30.0f, 1.0f);
  EXPECT_EQ(nvg::text_bounds(10, 20, nullptr, "Hello"), width);
  frame([] {
    nvg::text_draw(30, "sans", nvg::ALIGN_LEFT | nvg::ALIGN_TOP, 10, 20, 1, 1, 1, 1, "Hello");
  });
  EXPECT_GT(count_lit(), 100);
  EXPECT_EQ(count_lit(),
            count_lit(static_cast<int>(bounds[0]), static_cast<int>(bounds[1]),
                      static_cast<int>(bounds[2]) + 1, static_cast<int>(bounds[3]) + 1));
}

TEST_P(NvgText, SpacingAndKerningSetTheWidth) {
  nvg::text_prepare(30, "sans", nvg::ALIGN_LEFT);
  const float plain = nvg::text_bounds(0, 0, nullptr, "HHHH");
  nvg::text_params(nvg::ALIGN_LEFT, 5, 1);
  EXPECT_EQ(nvg::text_bounds(0, 0, nullptr, "HHHH"), plain + 15);
  nvg::text_params(nvg::ALIGN_LEFT, 0, 1);
  const auto width = [](const char* text) { return nvg::text_bounds(0, 0, nullptr, text); };
  EXPECT_LT(width("AV"), width("A") + width("V")) << "the two letters move together";
}

TEST_P(NvgText, BlurSpreadsTheText) {
  const auto text_with = [](float blur) {
    return [blur] {
      nvg::font_params(40, "sans-bold", blur);
      nvg::text_params(nvg::ALIGN_CENTER | nvg::ALIGN_MIDDLE, 0, 1);
      nvg::text_render(64, 64, 1, 1, 1, 1, "I");
    };
  };
  fresh_frame(text_with(0));
  const int sharp = count_lit();
  fresh_frame(text_with(4));
  EXPECT_GT(count_lit(), sharp + 50);
  for (const float blur : {-100.0f, -1.0f, std::numeric_limits<float>::quiet_NaN()}) {
    fresh_frame(text_with(blur));
    EXPECT_EQ(count_lit(), sharp) << blur;
  }
  fresh_frame(text_with(1e30f));
  EXPECT_GE(red(64, 64), 0);
}

TEST_P(NvgText, BackgroundCoversTextAndMarginAlone) {
  float bounds[4] = {};
  frame([&] {
    nvg::text_prepare(20, "sans", nvg::ALIGN_LEFT | nvg::ALIGN_TOP);
    nvg::text_bounds(30, 40, bounds, "Hello");
    nvg::text_color_background(30, 40, 1, 0, 0, 1, 6, "Hello");
  });
  const int left = static_cast<int>(bounds[0]), top = static_cast<int>(bounds[1]);
  const int right = static_cast<int>(bounds[2]), bottom = static_cast<int>(bounds[3]);
  EXPECT_EQ(at(left - 4, top + 5), RED_PIXEL);
  EXPECT_EQ(at(right + 4, bottom - 5), RED_PIXEL);
  EXPECT_EQ(at((left + right) / 2, (top + bottom) / 2), RED_PIXEL) << "no text in it";
  EXPECT_EQ(at(left - 8, top + 5), BLACK_PIXEL);
  EXPECT_EQ(at(right + 9, top + 5), BLACK_PIXEL);
}

TEST_P(NvgText, WithoutAFontNothingIsDrawn) {
  frame([] {
    nvg::text_draw(30, "none", nvg::ALIGN_LEFT, 10, 60, 1, 1, 1, 1, "Hello");
    float bounds[4] = {1, 2, 3, 4};
    EXPECT_EQ(nvg::text_bounds(10, 60, bounds, "Hello"), 0.0f);
    EXPECT_EQ(bounds[2], 0.0f);
    nvg::text_color_background(10, 60, 1, 1, 1, 1, 10, "Hello");
    nvg::text_draw(30, nullptr, nvg::ALIGN_LEFT, 10, 60, 1, 1, 1, 1, "Hello");
  });
  EXPECT_EQ(count_lit(), 0);
}

TEST_P(NvgText, SizesBeyondTheLimitsAreNotDrawn) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  for (const float size : {nan, -5.0f, 0.0f, 0.5f, 1001.0f, 1e6f, 1e30f}) {
    fresh_frame([&] {
      nvg::text_prepare(0, "sans", nvg::ALIGN_LEFT);
      nvg::text_prepare(size, "sans", nvg::ALIGN_LEFT);
      nvg::text_render(10, 60, 1, 1, 1, 1, "Hello");
      nvg::font_params(size, "sans", 0);
      nvg::text_render(10, 60, 1, 1, 1, 1, "Hello");
      nvg::text_prepare(30, "sans", nvg::ALIGN_LEFT);
      nvg::text_draw(size, "sans", nvg::ALIGN_LEFT, 10, 60, 1, 1, 1, 1, "Hello");
    });
    EXPECT_EQ(count_lit(), 0) << size;
  }
  fresh_frame([] {
    nvg::text_draw(1000, "sans", nvg::ALIGN_CENTER | nvg::ALIGN_MIDDLE, 64, 64, 1, 1, 1, 1, "I");
  });
  EXPECT_GT(count_lit(), 5000);
}

TEST_P(NvgText, MoreGlyphsThanTheAtlasHolds) {
  frame([] {
    for (int size = 100; size < 900; size += 10) {
      nvg::text_draw(static_cast<float>(size), "sans", nvg::ALIGN_LEFT, 0, 500, 1, 1, 1, 1,
                     "QWERTYUIOPASDFGHJKL");
    }
  });
  fresh_frame([] {
    nvg::text_draw(100, "sans-bold", nvg::ALIGN_CENTER | nvg::ALIGN_MIDDLE, 64, 64, 1, 0, 0, 1,
                   "I");
  });
  EXPECT_EQ(at(64, 64), RED_PIXEL) << "the next frame has room again";
}

TEST_P(NvgText, AnyBytesAreText) {
  std::string bytes;
  for (int i = 1; i < 256; ++i) bytes += static_cast<char>(i);
  const std::string huge(3u << 20, 'i');
  frame([&] {
    nvg::text_draw(12, "sans", nvg::ALIGN_LEFT, 0, 20, 1, 1, 1, 1, bytes.c_str());
    nvg::text_draw(12, "sans", nvg::ALIGN_LEFT, 0, 40, 1, 1, 1, 1, "\xF0\x9F");
    nvg::text_draw(12, "sans", nvg::ALIGN_LEFT, 0, 60, 1, 1, 1, 1, "");
    nvg::text_prepare(12, "sans", -1);
    const float width = nvg::text_bounds(0, 0, nullptr, huge.c_str());
    const float part = nvg::text_bounds(0, 0, nullptr, huge.c_str() + (2u << 20));
    EXPECT_EQ(width, part) << "only the first million bytes count";
  });
  EXPECT_GT(count_lit(), 100);
}

TEST_P(NvgText, FirstTextMayHaveNoGlyph) {
  frame([] { nvg::text_draw(12, "sans", nvg::ALIGN_LEFT, 0, 60, 1, 1, 1, 1, "\xF0"); });
  EXPECT_EQ(count_lit(), 0);
}

// ---- widgets ----

struct Widget {
  const char* name;
  std::function<void(const char* text)> draw;
};

const float BODY[] = {0.3f, 0.3f, 0.35f, 1}, HEAD[] = {0.5f, 0.2f, 0.2f, 1};
const Widget WIDGETS[] = {
    {"window", [](const char* t) { nvg::window_draw(t, 24, 24, 80, 60, BODY, HEAD); }},
    {"button", [](const char* t) { nvg::button_draw(0, t, 24, 24, 80, 60, HEAD); }},
    {"plain button",
     [](const char* t) {
       const float none[4] = {};
       nvg::button_draw(nvg::ICON_TRASH, t, 24, 24, 80, 60, none);
     }},
    {"check box", [](const char* t) { nvg::check_box_draw(24, 24, 80, 60, true, t, BODY, HEAD); }},
    {"slider", [](const char*) { nvg::slider_draw(0.5f, 24, 24, 80, 60, HEAD); }},
    {"label", [](const char* t) { nvg::label_draw(t, 24, 24, 80, 60, HEAD); }},
};

TEST_P(NvgText, WidgetsStayInTheirRectangle) {
  for (const Widget& widget : WIDGETS) {
    fresh_frame([&] { widget.draw("a text much too long for the widget"); });
    EXPECT_GT(count_lit(24, 24, 104, 84), 40) << widget.name;
    // Shadows are black here.
    EXPECT_EQ(count_lit(), count_lit(23, 23, 105, 85)) << widget.name;
  }
}

TEST_P(NvgText, WidgetsShowTheirText) {
  for (const Widget& widget : WIDGETS) {
    if (std::string(widget.name) == "slider") continue;
    std::vector<unsigned char> with(std::size_t{4} * SIZE * SIZE), without(with.size());
    fresh_frame([&] { widget.draw("text"); });
    renderer.read_back_buffer_rect_rgba(with.data(), 0, 0, SIZE, SIZE);
    fresh_frame([&] { widget.draw(nullptr); });
    renderer.read_back_buffer_rect_rgba(without.data(), 0, 0, SIZE, SIZE);
    EXPECT_NE(with, without) << widget.name;
  }
}

TEST_P(NvgFonts, WidgetsAreDrawnWithoutFonts) {
  for (const Widget& widget : WIDGETS) {
    fresh_frame([&] { widget.draw("text"); });
    if (std::string(widget.name) == "label") {
      EXPECT_EQ(count_lit(), 0) << "nothing but text";
    } else {
      EXPECT_GT(count_lit(), 40) << widget.name;
    }
  }
}

TEST_P(NvgFonts, WidgetsTakeColorsAsTheyAre) {
  frame([] { nvg::window_draw(nullptr, 10, 10, 100, 100, nullptr, HEAD); });
  EXPECT_EQ(at(60, 80), WHITE_PIXEL) << "null is white";
  EXPECT_NEAR(red(60, 25), 128, 12);
  fresh_frame([this] { nvg::check_box_draw(54, 54, 20, 20, true, nullptr, white_, red_); });
  EXPECT_GT(count_lit(), 100);
  const auto tick = [this] { return at(62, 67); };
  EXPECT_GT(tick()[0], tick()[1] + 60) << "the tick is red";
  fresh_frame([this] { nvg::check_box_draw(54, 54, 20, 20, false, nullptr, white_, red_); });
  EXPECT_EQ(tick()[0], tick()[1]);
}

TEST_P(NvgFonts, SliderShowsItsPosition) {
  const auto knob = [this](float position) {
    fresh_frame([&] { nvg::slider_draw(position, 14, 44, 100, 40, white_); });
    int best = 0, where = 0;
    for (int x = 0; x < SIZE; ++x) {
      const int lit = count_lit(x, 50, x + 1, 60);
      if (lit > best) best = lit, where = x;
    }
    return where;
  };
  const int left = knob(0), middle = knob(0.5f), right = knob(1);
  EXPECT_LT(left + 25, middle);
  EXPECT_LT(middle + 25, right);
  EXPECT_EQ(knob(-7), left);
  EXPECT_EQ(knob(7), right);
  EXPECT_EQ(knob(std::numeric_limits<float>::quiet_NaN()), left);
}

// ---- demonstrations ----

TEST_P(NvgFonts, EyesFollowAndBlink) {
  const auto eyes = [this](float mx, float t) {
    fresh_frame([=] { nvg::demo_eyes_draw(4, 34, 120, 60, mx, 64, t); });
    std::vector<unsigned char> pixels(std::size_t{4} * SIZE * SIZE);
    renderer.read_back_buffer_rect_rgba(pixels.data(), 0, 0, SIZE, SIZE);
    return pixels;
  };
  const auto left = eyes(-1000, 2), right = eyes(1000, 2), shut = eyes(1000, 0.12f);
  EXPECT_NE(left, right);
  EXPECT_NE(right, shut);
  EXPECT_EQ(right, eyes(1e7f, 2)) << "not out of the eye";
}

TEST_P(NvgFonts, GraphFillsItsRectangle) {
  frame([] { nvg::demo_graph_draw(0, 20, 128, 80, 1); });
  EXPECT_GT(count_lit(0, 20, 128, 100), 1500);
  EXPECT_EQ(count_lit(0, 0, 128, 16), 0);
  EXPECT_EQ(count_lit(0, 104, 128, 128), 0);
}

TEST_P(NvgFonts, DemoPageDrawsWithoutFonts) {
  EXPECT_TRUE(nvg::render_demo(0, 0, SIZE, SIZE, 1));
  EXPECT_EQ(count_lit(), SIZE * SIZE);
}

TEST_P(NvgText, DemoPageStaysInItsRectangle) {
  for (const bool within_frame : {false, true}) {
    clear();
    if (within_frame) nvg::begin_frame(SIZE, SIZE, 1);
    EXPECT_TRUE(nvg::render_demo(20, 30, 60, 50, 2.5f));
    if (within_frame) {
      EXPECT_EQ(count_lit(), 0) << "the frame is still open";
      nvg::end_frame();
    }
    EXPECT_GE(count_lit(20, 30, 80, 80), 60 * 50 - 4);
    EXPECT_EQ(count_lit(), count_lit(19, 29, 81, 81));
  }
}

TEST_P(NvgText, DemoPageNeedsAnArea) {
  EXPECT_FALSE(nvg::render_demo(0, 0, 0, 100, 0));
  EXPECT_FALSE(nvg::render_demo(0, 0, 100, -1, 0));
  EXPECT_FALSE(nvg::render_demo(0, 0, 100, 100, std::numeric_limits<float>::quiet_NaN()));
  EXPECT_FALSE(nvg::render_demo(std::numeric_limits<int>::min(), 0, 100, 100, 0));
  EXPECT_EQ(count_lit(), 0);
  EXPECT_TRUE(nvg::render_demo(0, 0, 1, 1, -1e6f));
}

TEST_P(NvgText, DemoPageChangesWithTime) {
  std::vector<unsigned char> one(std::size_t{4} * SIZE * SIZE), two(one.size()), again(one.size());
  const auto draw = [&](float time, std::vector<unsigned char>* pixels) {
    clear();
    nvg::render_demo(0, 0, SIZE, SIZE, time);
    renderer.read_back_buffer_rect_rgba(pixels->data(), 0, 0, SIZE, SIZE);
  };
  draw(1, &one);
  draw(2, &two);
  draw(1, &again);
  EXPECT_NE(one, two);
  EXPECT_EQ(one, again);
}

}  // namespace
}  // namespace orv::test
