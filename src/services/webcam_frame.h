/// @file
/// Frames as cameras deliver them, and as the library hands them out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace orv::detail {

/// How a camera lays out its pixels.
enum class CameraFormat {
  BGR24,
  RGB24,
  YUYV,   ///< Y0 U Y1 V: two pixels share their colour
  NV12,   ///< a plane of Y, then a plane of U V pairs, each for four pixels
  MJPEG,  ///< a JPEG file for each frame
};

/// How Y, U, V become R, G, B, in units of 1/8192:
///
///     R = y * (Y - y_zero) + r_v * (V - 128)
///     G = y * (Y - y_zero) - g_u * (U - 128) - g_v * (V - 128)
///     B = y * (Y - y_zero) + b_u * (U - 128)
///
/// rounded to the nearest whole number and clamped to 0..255, which is at most 1 beside what the
/// recommendations (ITU-R BT.601, BT.709) give.
struct YuvScale {
  int y_zero;
  int y;
  int r_v;
  int g_u;
  int g_v;
  int b_u;
};

/// To the nearest whole number, of what is above 0.
constexpr int round_scale(double scale) { return static_cast<int>(scale * 2.0 + 1.0) / 2; }

/// Scales for the weights of red and blue in Y, in units of 1/10000, and for Y from 16 to 235 with
/// U and V from 16 to 240 (limited range), or all of them from 0 to 255.
constexpr YuvScale make_yuv_scale(int red, int blue, bool full_range) {
  const double kr = red / 1e4, kb = blue / 1e4, kg = 1.0 - kr - kb;
  const double luma = 8192.0 * (full_range ? 1.0 : 255.0 / 219.0);
  const double chroma = 8192.0 * (full_range ? 1.0 : 255.0 / 224.0);
  return {full_range ? 0 : 16,
          round_scale(luma),
          round_scale(chroma * 2.0 * (1.0 - kr)),
          round_scale(chroma * 2.0 * (1.0 - kb) * kb / kg),
          round_scale(chroma * 2.0 * (1.0 - kr) * kr / kg),
          round_scale(chroma * 2.0 * (1.0 - kb))};
}

inline constexpr YuvScale BT601_LIMITED = make_yuv_scale(2990, 1140, false);
inline constexpr YuvScale BT601_FULL = make_yuv_scale(2990, 1140, true);
inline constexpr YuvScale BT709_LIMITED = make_yuv_scale(2126, 722, false);
inline constexpr YuvScale BT709_FULL = make_yuv_scale(2126, 722, true);

/// Frames of one stream.
struct FrameLayout {
  CameraFormat format = CameraFormat::BGR24;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::uint32_t stride = 0;  ///< bytes from a row to the next; of MJPEG nothing
  YuvScale yuv = BT601_LIMITED;

  /// Whether sizes that a camera told can be true. A stride of 0 becomes that of packed rows.
  bool check();
  /// Bytes that a frame has at least; 1 for MJPEG.
  std::uint64_t bytes_needed() const;
};

/// A block of bytes that is made anew only for another size.
struct FrameBytes {
  std::unique_ptr<unsigned char[]> bytes;
  std::size_t size = 0;

  /// False, with the old block kept, when there is no memory.
  bool resize(std::size_t new_size);
};

/// A frame for the host: rows bottom-up without gaps, a pixel is B, G, R.
struct WebcamFrame : FrameBytes {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
};

/// Takes `size` bytes that a camera delivered. False, with the frame as it was, when they are no
/// whole frame of this layout. A picture in an MJPEG stream brings its own size.
bool convert_frame(const FrameLayout& layout, const unsigned char* data, std::size_t size,
                   WebcamFrame* frame);

}  // namespace orv::detail
