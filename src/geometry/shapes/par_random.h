#pragma once

#include <cstdint>

namespace orv::detail {

/// Spreads all bits of `x` over the result.
constexpr std::uint64_t mix_bits(std::uint64_t x) {
  x += 0x9E3779B97F4A7C15u;
  x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9u;
  x = (x ^ (x >> 27)) * 0x94D049BB133111EBu;
  return x ^ (x >> 31);
}

/// Numbers that depend on the seed alone, apart from those of Math.
class ParRandom {
 public:
  explicit ParRandom(int seed) : state_(static_cast<std::uint32_t>(seed)) {}

  /// In 0 to 1, 1 excluded.
  double next() { return static_cast<double>(mix_bits(state_++) >> 11) * 0x1p-53; }

 private:
  std::uint64_t state_;
};

}  // namespace orv::detail
