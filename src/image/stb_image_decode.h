/// @file
/// The image decoder behind ImageCodecStb.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

namespace orv::detail {

/// A decoded picture: tightly packed bytes, top row first. Empty after a failure.
class DecodedImage {
 public:
  DecodedImage() = default;
  ~DecodedImage();
  DecodedImage(const DecodedImage&) = delete;
  DecodedImage& operator=(const DecodedImage&) = delete;

  /// Decodes JPEG, PNG, TGA, BMP, PSD, GIF (first frame), HDR and PIC to this many channels, 1 to
  /// 4. False for what is none of these, for a picture whose size is out of all proportion to the
  /// data, and for one of more than `max_pixels`, before memory is taken for it.
  bool decode(const unsigned char* data, std::size_t size, int channels,
              std::uint64_t max_pixels = UINT64_MAX);

  /// Why the last decode() failed, by a text that is never freed; null when it did not.
  const char* fault() const { return fault_; }

  const unsigned char* pixels() const { return pixels_; }
  /// Hands the pixels over, to be freed with delete[].
  unsigned char* release_pixels() { return std::exchange(pixels_, nullptr); }
  unsigned int width() const { return width_; }
  unsigned int height() const { return height_; }

 private:
  unsigned char* pixels_ = nullptr;
  unsigned int width_ = 0;
  unsigned int height_ = 0;
  const char* fault_ = nullptr;
};

}  // namespace orv::detail
