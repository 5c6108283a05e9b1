/// @file
/// The keyboard of a window system, as Keyboard reads it.
#pragma once

#include <cstdint>
#include <memory>

namespace orv::detail {

/// Numbers of keys, given by the window system.
inline constexpr int NUM_KEYS = 256;

/// One reading. What a source does not write stays from the reading before.
struct KeyReading {
  std::uint8_t down[NUM_KEYS / 8] = {};  ///< a bit for each key, lowest first
  std::uint32_t locks = 0;               ///< on: 1 caps lock, 2 num lock, 4 scroll lock
  std::uint32_t symbols[NUM_KEYS] = {};  ///< X symbol of each key without modifiers, 0 without
  bool remapped = false;                 ///< the symbols are others than before

  bool is_down(int key) const { return down[key / 8] >> (key % 8) & 1; }
};

/// Where the state of keys comes from.
class KeySource {
 public:
  virtual ~KeySource() = default;
  /// False when there is no keyboard any more.
  virtual bool read(KeyReading* reading) = 0;
};

/// The keyboard of the system; null, with a line at debug level, when there is none.
std::unique_ptr<KeySource> open_key_source();

}  // namespace orv::detail
