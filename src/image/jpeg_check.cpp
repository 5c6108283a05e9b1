#include "image/jpeg_check.h"

#include <cstring>

namespace orv::detail {
namespace {

constexpr unsigned int MAX_SYMBOLS = 256;

constexpr unsigned int START_OF_IMAGE = 0xD8;
constexpr unsigned int END_OF_IMAGE = 0xD9;
constexpr unsigned int START_OF_SCAN = 0xDA;
constexpr unsigned int HUFFMAN_TABLES = 0xC4;

/// Walks the segments of a file as the decoder does. Behind the end there are zeros.
class JpegWalk {
 public:
  JpegWalk(const unsigned char* data, std::size_t size) : data_(data), size_(size) {}

  bool starts_as_jpeg() { return byte(0) == 0xFF && next_marker() && marker_ == START_OF_IMAGE; }

  /// Goes to the next marker, over data of a scan and over padding. False at the end.
  bool next_marker() {
    while (at_ < size_) {
      const void* found = std::memchr(data_ + at_, 0xFF, size_ - at_);
      if (!found) break;
      at_ = static_cast<std::size_t>(static_cast<const unsigned char*>(found) - data_);
      while (at_ < size_ && byte(at_) == 0xFF) ++at_;
      marker_ = byte(at_++);
      if (marker_ != 0) return true;  // a zero marks a byte of ones within a scan
    }
    at_ = size_;
    return false;
  }

  unsigned int marker() const { return marker_; }

  bool has_segment() const {
    return marker_ != 0x01 && (marker_ < 0xD0 || marker_ > START_OF_IMAGE);
  }

  void skip_segment() { at_ += word(at_) < 2 ? 2 : word(at_); }

  bool are_huffman_tables_sound() const {
    const std::size_t end = at_ + word(at_);
    for (std::size_t table = at_ + 2; table < end && table < size_;) {
      unsigned int symbols = 0;
      for (std::size_t i = 1; i <= 16; ++i) symbols += byte(table + i);
      if (symbols > MAX_SYMBOLS) return false;
      table += 17 + symbols;
    }
    return true;
  }

 private:
  unsigned int byte(std::size_t at) const { return at < size_ ? data_[at] : 0u; }
  unsigned int word(std::size_t at) const { return byte(at) << 8 | byte(at + 1); }

  const unsigned char* data_;
  std::size_t size_;
  std::size_t at_ = 0;
  unsigned int marker_ = 0;
};

}  // namespace

bool is_sound_jpeg(const unsigned char* data, std::size_t size, std::uint64_t* num_scans) {
  *num_scans = 0;
  JpegWalk walk(data, size);
  if (!walk.starts_as_jpeg()) return true;
  while (walk.next_marker() && walk.marker() != END_OF_IMAGE) {
    if (!walk.has_segment()) continue;
    if (walk.marker() == HUFFMAN_TABLES && !walk.are_huffman_tables_sound()) return false;
    if (walk.marker() == START_OF_SCAN) ++*num_scans;
    walk.skip_segment();
  }
  return true;
}

}  // namespace orv::detail
