#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// Reading and writing the chunks that 3DS files are made of.
namespace orv::tds {

using Bytes = std::span<const unsigned char>;

inline constexpr std::size_t HEADER_SIZE = 6;
/// Names with their end, as lib3ds keeps them.
inline constexpr std::size_t NAME_SIZE = 64;

/// Little-endian numbers. The caller has looked at the size.
inline std::uint16_t u16_at(Bytes bytes, std::size_t at) {
  return static_cast<std::uint16_t>(bytes[at] | bytes[at + 1] << 8);
}

inline std::uint32_t u32_at(Bytes bytes, std::size_t at) {
  return u16_at(bytes, at) | static_cast<std::uint32_t>(u16_at(bytes, at + 2)) << 16;
}

/// Calls `visit(id, body)` for each chunk; the visitor says false for a damaged one. False when
/// anything is damaged. Fewer bytes than a header at the end are padding.
template <class Visit>
bool for_each_chunk(Bytes bytes, Visit visit) {
  while (bytes.size() >= HEADER_SIZE) {
    const std::size_t length = u32_at(bytes, 2);
    if (length < HEADER_SIZE || length > bytes.size()) return false;
    if (!visit(u16_at(bytes, 0), bytes.subspan(HEADER_SIZE, length - HEADER_SIZE))) return false;
    bytes = bytes.subspan(length);
  }
  return true;
}

/// The text at the start with its end. Empty when it does not end within NAME_SIZE.
inline Bytes text_at_start(Bytes bytes) {
  const std::size_t limit = std::min(bytes.size(), NAME_SIZE);
  const auto end = std::find(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(limit),
                             static_cast<unsigned char>(0));
  const std::size_t length = static_cast<std::size_t>(end - bytes.begin());
  return length < limit ? bytes.first(length + 1) : Bytes();
}

/// The list behind a 16-bit count, without the count. False when it is cut short.
inline bool counted_list(Bytes body, std::size_t element_size, Bytes& list) {
  if (body.size() < 2) return false;
  const std::size_t size = u16_at(body, 0) * element_size;
  if (body.size() - 2 < size) return false;
  list = body.subspan(2, size);
  return true;
}

/// Appends chunks to a list of bytes. What is written between `begin` and `end` of a chunk becomes
/// its body.
class ChunkWriter {
 public:
  explicit ChunkWriter(std::vector<unsigned char>& out) : out_(out) {}

  /// Where the chunk starts, for `end`.
  std::size_t begin(unsigned id) {
    const std::size_t start = out_.size();
    u16(id);
    u32(0);
    return start;
  }
  void end(std::size_t start) {
    const std::size_t length = out_.size() - start;
    for (std::size_t i = 0; i < 4; ++i) {
      out_[start + 2 + i] = static_cast<unsigned char>(length >> (8 * i));
    }
  }
  void chunk(unsigned id, Bytes body) {
    const std::size_t start = begin(id);
    bytes(body);
    end(start);
  }
  void bytes(Bytes data) { out_.insert(out_.end(), data.begin(), data.end()); }
  void u16(std::size_t value) {
    out_.push_back(static_cast<unsigned char>(value));
    out_.push_back(static_cast<unsigned char>(value >> 8));
  }
  void u32(std::size_t value) {
    u16(value);
    u16(value >> 16);
  }

 private:
  std::vector<unsigned char>& out_;
};

}  // namespace orv::tds
