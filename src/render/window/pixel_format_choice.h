/// @file
/// Which of the window system's pixel formats comes closest to what is wanted.
#pragma once

namespace orv::detail {

/// What is wanted.
struct PixelRequest {
  int color_bits = 32;
  int depth_bits = 32;
  int samples = 0;        ///< at least so many, 0 for none
  bool existing = false;  ///< the window's own format, whatever it is
};

/// What a format has.
struct PixelTraits {
  int red = 0;
  int green = 0;
  int blue = 0;
  int alpha = 0;
  int depth = 0;
  int stencil = 0;
  int samples = 0;
  bool slow = false;         ///< the driver warns of it
  bool translucent = false;  ///< the desktop may let what is behind shine through
};

/// Samples that the text of RenderWindowData::msaa stands for: 0, 2, 4 or 8.
int samples_of_text(const char* msaa);

/// How far a format is from the request, 0 when it fits exactly; -1 when it will not do. Fewer
/// samples than wanted never do. Stencil counts most, then depth, then colour.
int pixel_penalty(const PixelTraits& traits, const PixelRequest& request);

}  // namespace orv::detail
