/// @file
/// Changes between byte and float channels. All of them go through these functions, so that all
/// ways give the same bits.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace orv::detail {

/// Cuts a number to an integer and keeps its low byte: 382.5 gives 126, -1 gives 255. What no
/// 64-bit integer holds, NaN included, gives 0.
template <typename Number>
inline unsigned char wrap_to_byte(Number value) {
  constexpr Number LIMIT = static_cast<Number>(9.0e18);
  if (!(value > -LIMIT && value < LIMIT)) return 0;
  return static_cast<unsigned char>(static_cast<std::int64_t>(value));
}

/// byte / 255.0f for every byte.
inline constexpr std::array<float, 256> BYTE_TO_UNIT = [] {
  std::array<float, 256> table{};
  for (std::size_t i = 0; i < table.size(); ++i) table[i] = static_cast<float>(i) / 255.0f;
  return table;
}();

inline float byte_to_unit(unsigned char byte) { return BYTE_TO_UNIT[byte]; }
inline unsigned char unit_to_byte(float value) { return wrap_to_byte(value * 255.0f); }

/// The same for many values at once, with the same bits.
void bytes_to_units(const unsigned char* bytes, float* values, std::size_t count);
void units_to_bytes(const float* values, unsigned char* bytes, std::size_t count);

}  // namespace orv::detail
