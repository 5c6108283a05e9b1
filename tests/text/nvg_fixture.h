#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <orv/text/nvg.h>

#include <cstdio>
#include <string>
#include <vector>

#include "support/gl_context.h"
#include "support/log_capture.h"

namespace orv::test {

inline constexpr char SANS[] = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
inline constexpr char SANS_BOLD[] = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf";
inline constexpr char ICONS[] = "/usr/share/fonts/truetype/fonts-entypo/entypo.ttf";

/// Vector graphics on real OpenGL in software, once with and once without the fixed pipeline.
/// Pictures are 128 by 128, black at first; their rows count downwards.
class NvgGlTest : public ::testing::TestWithParam<GlContext::Profile> {
 protected:
  static constexpr int SIZE = 128;
  using Pixel = std::vector<int>;

  void SetUp() override {
    ORV_REQUIRE_GL(context);
    if (!renderer.facts().is_version_at_least(3, 2)) GTEST_SKIP() << "NanoVG needs OpenGL 3.2";
    renderer.set_viewport(0, 0, 0, SIZE, SIZE);
    clear();
    ASSERT_TRUE(nvg::init(&renderer, true));
  }
  void TearDown() override {
    nvg::terminate(&renderer);
    context.check();
  }

  void clear() { renderer.clear_color_depth_stencil_buffers(0, 0, 0, 1, 1, 0); }
  Pixel at(int x, int y) { return context.pixel(x, SIZE - 1 - y); }
  int red(int x, int y) { return at(x, y)[0]; }
  template <class Draw>
  void frame(Draw draw) {
    nvg::begin_frame(SIZE, SIZE, 1);
    draw();
    nvg::end_frame();
  }
  /// The same on a black picture.
  template <class Draw>
  void fresh_frame(Draw draw) {
    clear();
    frame(draw);
  }
  /// How many pixels are not black within columns and rows.
  int count_lit(int x0 = 0, int y0 = 0, int x1 = SIZE, int y1 = SIZE) {
    std::vector<unsigned char> pixels(std::size_t{4} * SIZE * SIZE);
    renderer.read_back_buffer_rect_rgba(pixels.data(), 0, 0, SIZE, SIZE);
    int count = 0;
    for (int y = y0; y < y1; ++y) {
      for (int x = x0; x < x1; ++x) {
        const int at = 4 * (SIZE * (SIZE - 1 - y) + x);
        const unsigned char* pixel = &pixels[static_cast<std::size_t>(at)];
        count += pixel[0] + pixel[1] + pixel[2] > 24;
      }
    }
    return count;
  }
  bool load_fonts() {
    return nvg::load_font("sans", SANS) && nvg::load_font("sans-bold", SANS_BOLD) &&
           nvg::load_font("icons", ICONS);
  }

  GlContext context{GetParam(), SIZE, SIZE};
  RendererOpenGL& renderer = context.renderer();
  const float white_[4] = {1, 1, 1, 1};
  const float red_[4] = {1, 0, 0, 1};
  const float blue_[4] = {0, 0, 1, 1};
};

inline const std::vector<int> BLACK_PIXEL = {0, 0, 0, 255}, RED_PIXEL = {255, 0, 0, 255},
                              WHITE_PIXEL = {255, 255, 255, 255};

inline std::string nvg_profile_name(const ::testing::TestParamInfo<GlContext::Profile>& info) {
  return info.param == GlContext::CORE ? "Core" : "Compatibility";
}

#define ORV_NVG_PROFILES(suite)                                                                   \
  INSTANTIATE_TEST_SUITE_P(, suite, ::testing::Values(GlContext::COMPATIBILITY, GlContext::CORE), \
                           nvg_profile_name)

}  // namespace orv::test
