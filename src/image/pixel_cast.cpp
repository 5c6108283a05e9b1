#include "image/pixel_cast.h"

#include <emmintrin.h>

#include <cstdint>

namespace orv::detail {

namespace {

constexpr std::size_t GROUP = 16;

struct FourInts {
  __m128i low_bytes;
  __m128i out_of_range;  ///< all bits of a lane that no 32-bit integer holds
};

inline FourInts cut_four(const float* values) {
  const __m128i cut = _mm_cvttps_epi32(_mm_mul_ps(_mm_loadu_ps(values), _mm_set1_ps(255.0f)));
  return {_mm_and_si128(cut, _mm_set1_epi32(0xFF)),
          _mm_cmpeq_epi32(cut, _mm_set1_epi32(INT32_MIN))};
}

/// Sixteen values at a time. False, with nothing written, when one of them is out of range.
inline bool convert_group(const float* values, unsigned char* bytes) {
  const FourInts a = cut_four(values), b = cut_four(values + 4);
  const FourInts c = cut_four(values + 8), d = cut_four(values + 12);
  const __m128i out_of_range = _mm_or_si128(_mm_or_si128(a.out_of_range, b.out_of_range),
                                            _mm_or_si128(c.out_of_range, d.out_of_range));
  if (_mm_movemask_epi8(out_of_range) != 0) return false;
  const __m128i packed = _mm_packus_epi16(_mm_packs_epi32(a.low_bytes, b.low_bytes),
                                          _mm_packs_epi32(c.low_bytes, d.low_bytes));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), packed);
  return true;
}

}  // namespace

void bytes_to_units(const unsigned char* bytes, float* values, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) values[i] = static_cast<float>(bytes[i]) / 255.0f;
}

void units_to_bytes(const float* values, unsigned char* bytes, std::size_t count) {
  std::size_t i = 0;
  while (i < count) {
    if (count - i >= GROUP && convert_group(values + i, bytes + i)) {
      i += GROUP;
      continue;
    }
    const std::size_t end = count - i >= GROUP ? i + GROUP : count;
    for (; i < end; ++i) bytes[i] = unit_to_byte(values[i]);
  }
}

}  // namespace orv::detail
