/// @file
/// Four floats handled as one: what the matrix products are made of.
///
/// Each lane gives the same bits as the scalar formula written in the same order.
#pragma once

namespace orv {
namespace lanes {

/// Four single-precision lanes, in a vector register.
using float4 = float __attribute__((vector_size(16)));

/// Four floats in memory, aligned as a float is. It counts as floats to the compiler, so that a
/// loop which stores results may keep everything but floats in registers.
using float4_in_memory __attribute__((aligned(4))) = float4;

/// Reads four floats; `p` needs no alignment.
inline float4 load(const float* p) { return *reinterpret_cast<const float4_in_memory*>(p); }

/// Writes four floats; `p` needs no alignment.
inline void store(float* p, float4 v) { *reinterpret_cast<float4_in_memory*>(p) = v; }

/// The same value in all four lanes.
inline float4 splat(float s) { return float4{s, s, s, s}; }

/// One lane of `v` in all four: one load for four factors, where splat() takes four. Lanes of
/// integers are moved by an instruction that leaves its source alone, lanes of floats by one that
/// needs a copy first.
template <int LANE>
inline float4 spread(float4 v) {
  using Bits = int __attribute__((vector_size(16)));
  const auto bits = reinterpret_cast<Bits>(v);
  return reinterpret_cast<float4>(__builtin_shufflevector(bits, bits, LANE, LANE, LANE, LANE));
}

/// Lanes 1, 2, 0, 3.
inline float4 rotate3(float4 v) { return __builtin_shufflevector(v, v, 1, 2, 0, 3); }

/// Right-handed cross product of the first three lanes; the fourth means nothing.
inline float4 cross(float4 a, float4 b) { return rotate3(a * rotate3(b) - rotate3(a) * b); }

}  // namespace lanes
}  // namespace orv
