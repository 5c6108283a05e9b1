#include "render/window/pixel_format_choice.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace orv::detail {
namespace {

constexpr int WANTED_STENCIL = 8;
constexpr int DEEPEST_DEPTH = 24;  // deeper formats come without stencil
constexpr int LEAST_DEPTH = 16;

constexpr int SLOW = 1'000'000;
constexpr int PER_SAMPLE = 10'000'000;
constexpr int DEPTH_SHORT = 400'000;
constexpr int STENCIL_SHORT = 200'000;
constexpr int PER_EXCESS_COLOR_BIT = 2'000;
constexpr int PER_MISSING_ALPHA_BIT = 1'000;
constexpr int PER_DEPTH_BIT = 20;
constexpr int TRANSLUCENT = 100;
constexpr int PER_EXCESS_BIT = 1;
constexpr int FULL_ALPHA = 8;  // taken unasked, so that all ways give the same pixels

struct ChannelBits {
  int red = 8;
  int green = 8;
  int blue = 8;
  int alpha = 0;
};

ChannelBits wanted_channels(int color_bits) {
  ChannelBits bits;
  if (color_bits < 24) bits = {5, color_bits < 16 ? 5 : 6, 5, 0};
  bits.alpha = std::clamp(32 - color_bits, 0, 8);
  return bits;
}

}  // namespace

int samples_of_text(const char* msaa) {
  if (!msaa) return 0;
  if (std::strcmp(msaa, "2X MSAA") == 0) return 2;
  if (std::strcmp(msaa, "4X MSAA") == 0) return 4;
  if (std::strcmp(msaa, "8X MSAA") == 0) return 8;
  return 0;
}

int pixel_penalty(const PixelTraits& traits, const PixelRequest& request) {
  const ChannelBits want = wanted_channels(request.color_bits);
  const int depth = std::clamp(request.depth_bits, 0, DEEPEST_DEPTH);
  if (!request.existing) {
    if (traits.red < want.red || traits.green < want.green || traits.blue < want.blue) return -1;
    if (traits.depth < std::min(depth, LEAST_DEPTH)) return -1;
    if (traits.samples < request.samples) return -1;
  }
  int penalty = traits.slow ? SLOW : 0;
  penalty += std::abs(traits.samples - request.samples) * PER_SAMPLE;
  if (traits.depth < depth) penalty += DEPTH_SHORT;
  if (traits.stencil < WANTED_STENCIL) penalty += STENCIL_SHORT;
  penalty += std::abs(traits.depth - depth) * PER_DEPTH_BIT;
  penalty += std::max(traits.stencil - WANTED_STENCIL, 0) * PER_EXCESS_BIT;
  penalty += (std::max(traits.red - want.red, 0) + std::max(traits.green - want.green, 0) +
              std::max(traits.blue - want.blue, 0)) *
             PER_EXCESS_COLOR_BIT;
  penalty += std::max(want.alpha - traits.alpha, 0) * PER_MISSING_ALPHA_BIT;
  penalty += std::abs(FULL_ALPHA - traits.alpha);
  if (traits.translucent) penalty += TRANSLUCENT;
  return penalty;
}

}  // namespace orv::detail
