#include "render/window/pixel_format_choice.h"

#include <gtest/gtest.h>

#include <vector>

namespace orv::test {
namespace {

using detail::pixel_penalty;
using detail::PixelRequest;
using detail::PixelTraits;

PixelTraits make_traits(int depth, int stencil, int alpha = 0, int samples = 0) {
  PixelTraits traits;
  traits.red = traits.green = traits.blue = 8;
  traits.alpha = alpha;
  traits.depth = depth;
  traits.stencil = stencil;
  traits.samples = samples;
  return traits;
}

// Index of the closest format; -1 when none will do.
int best(const std::vector<PixelTraits>& all, const PixelRequest& request) {
  int found = -1;
  int least = 0;
  for (int i = 0; i < static_cast<int>(all.size()); ++i) {
    const int penalty = pixel_penalty(all[static_cast<std::size_t>(i)], request);
    if (penalty < 0 || (found >= 0 && penalty >= least)) continue;
    found = i;
    least = penalty;
  }
  return found;
}

TEST(PixelFormatChoice, SamplesOfTexts) {
  EXPECT_EQ(detail::samples_of_text("Off"), 0);
  EXPECT_EQ(detail::samples_of_text("2X MSAA"), 2);
  EXPECT_EQ(detail::samples_of_text("4X MSAA"), 4);
  EXPECT_EQ(detail::samples_of_text("8X MSAA"), 8);
  EXPECT_EQ(detail::samples_of_text("3X MSAA"), 0);
  EXPECT_EQ(detail::samples_of_text("16X MSAA"), 0);
  EXPECT_EQ(detail::samples_of_text("4X MSAA "), 0);
  EXPECT_EQ(detail::samples_of_text(""), 0);
  EXPECT_EQ(detail::samples_of_text(nullptr), 0);
}

TEST(PixelFormatChoice, DepthOf32ActsAs24WithStencil) {
  PixelRequest request;
  request.depth_bits = 32;
  EXPECT_EQ(best({make_traits(32, 0), make_traits(24, 0), make_traits(24, 8), make_traits(16, 0)},
                 request),
            2);
  EXPECT_EQ(pixel_penalty(make_traits(24, 8, 8), request), 0);
}

TEST(PixelFormatChoice, WithoutStencilDepthComesFirst) {
  EXPECT_EQ(best({make_traits(16, 0), make_traits(24, 0), make_traits(32, 0)}, PixelRequest()), 1);
}

TEST(PixelFormatChoice, DepthOf16IsTheLastResort) {
  EXPECT_EQ(best({make_traits(0, 8), make_traits(16, 0)}, PixelRequest()), 1);
  EXPECT_EQ(best({make_traits(0, 8)}, PixelRequest()), -1);
}

TEST(PixelFormatChoice, NoDepthWantedTakesAnyDepth) {
  PixelRequest request;
  request.depth_bits = 0;
  EXPECT_EQ(best({make_traits(0, 0)}, request), 0);
}

TEST(PixelFormatChoice, AlphaIsWhatIsMissingTo32) {
  PixelTraits translucent = make_traits(24, 8, 8);
  translucent.translucent = true;
  PixelRequest request;
  EXPECT_EQ(best({translucent, make_traits(24, 8, 0)}, request), 1);
  request.color_bits = 24;
  EXPECT_EQ(best({make_traits(24, 8, 0), translucent}, request), 1);
}

TEST(PixelFormatChoice, AlphaIsTakenUnasked) {
  EXPECT_EQ(best({make_traits(24, 8, 0), make_traits(24, 8, 8)}, PixelRequest()), 1);
}

TEST(PixelFormatChoice, SixteenBitsOfColorWillDoWithFewerChannels) {
  PixelTraits low = make_traits(24, 8);
  low.red = low.blue = 5;
  low.green = 6;
  EXPECT_EQ(best({low}, PixelRequest()), -1);
  PixelRequest request;
  request.color_bits = 16;
  EXPECT_EQ(best({make_traits(24, 8, 8), low}, request), 1);
}

TEST(PixelFormatChoice, DeepColorIsNotTakenUnasked) {
  PixelTraits deep = make_traits(24, 8);
  deep.red = deep.green = deep.blue = 10;
  EXPECT_EQ(best({deep, make_traits(24, 8, 8)}, PixelRequest()), 1);
}

TEST(PixelFormatChoice, FewerSamplesNeverDo) {
  PixelRequest request;
  request.samples = 4;
  EXPECT_EQ(best({make_traits(24, 8), make_traits(24, 8, 0, 2)}, request), -1);
  EXPECT_EQ(best({make_traits(24, 8, 0, 8), make_traits(24, 8, 0, 4)}, request), 1);
  EXPECT_EQ(best({make_traits(24, 8, 0, 8)}, request), 0);
}

TEST(PixelFormatChoice, SamplesAreAvoidedUnasked) {
  EXPECT_EQ(best({make_traits(24, 8, 0, 4), make_traits(16, 0)}, PixelRequest()), 1);
}

TEST(PixelFormatChoice, SlowFormatsComeLast) {
  PixelTraits slow = make_traits(24, 8);
  slow.slow = true;
  EXPECT_EQ(best({slow, make_traits(16, 0)}, PixelRequest()), 1);
}

TEST(PixelFormatChoice, ExistingFormatIsTakenWhateverItIs) {
  PixelRequest request;
  request.existing = true;
  EXPECT_EQ(best({make_traits(0, 0)}, request), 0);
}

}  // namespace
}  // namespace orv::test
