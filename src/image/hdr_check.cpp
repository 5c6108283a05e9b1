#include "image/hdr_check.h"

#include <cstring>

namespace orv::detail {
namespace {

constexpr std::uint64_t MIN_PACKED_WIDTH = 8;
constexpr std::uint64_t END_OF_PACKED_WIDTH = 32768;
constexpr int NUM_CHANNELS = 4;
constexpr unsigned int MAX_LITERAL = 128;

/// Walks a file as the decoder does. Behind the end there are zeros.
class HdrWalk {
 public:
  HdrWalk(const unsigned char* data, std::size_t size) : data_(data), size_(size) {}

  /// The header ends with an empty line, behind which one line tells the sizes.
  void skip_header() {
    while (!is_at_end() && !is_empty_line()) skip_line();
    skip_line();
    skip_line();
  }

  /// Whether a row of this width follows that the decoder takes for a packed one.
  bool starts_row(std::uint64_t width) {
    const unsigned int first = byte(), second = byte(), high = byte(), low = byte();
    return first == 2 && second == 2 && high < 128 && (high << 8 | low) == width;
  }

  /// Goes over one channel of a row. False when the file ends within it.
  bool skip_channel(std::uint64_t width) {
    for (std::uint64_t left = width; left > 0;) {
      if (is_at_end()) return false;
      const unsigned int count = byte();
      const unsigned int pixels = count > MAX_LITERAL ? count - MAX_LITERAL : count;
      if (pixels > left) return true;  // the decoder refuses that
      at_ += count > MAX_LITERAL ? 1 : count;
      left -= pixels;
    }
    return true;
  }

 private:
  bool is_at_end() const { return at_ >= size_; }
  unsigned int byte() { return at_ < size_ ? data_[at_++] : 0u; }
  bool is_empty_line() const { return data_[at_] == '\n' || data_[at_] == 0; }

  void skip_line() {
    if (is_at_end()) return;
    const void* end = std::memchr(data_ + at_, '\n', size_ - at_);
    at_ =
        end ? static_cast<std::size_t>(static_cast<const unsigned char*>(end) - data_) + 1 : size_;
  }

  const unsigned char* data_;
  std::size_t size_;
  std::size_t at_ = 0;
};

}  // namespace

bool is_sound_hdr(const unsigned char* data, std::size_t size, std::uint64_t width,
                  std::uint64_t height) {
  if (width < MIN_PACKED_WIDTH || width >= END_OF_PACKED_WIDTH) return true;
  HdrWalk walk(data, size);
  walk.skip_header();
  for (std::uint64_t y = 0; y < height && walk.starts_row(width); ++y) {
    for (int channel = 0; channel < NUM_CHANNELS; ++channel) {
      if (!walk.skip_channel(width)) return false;
    }
  }
  return true;
}

}  // namespace orv::detail
