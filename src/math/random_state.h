// The random generator, for loops that draw in bulk.
#pragma once

namespace orv::detail {

inline constexpr unsigned int RANDOM_FACTOR = 214013u;
inline constexpr unsigned int RANDOM_ADDEND = 2531011u;
inline constexpr float RANDOM_SCALE = 1.0f / 32768.0f;

/// What the generator gives once its state has become `state`.
constexpr int random_number(unsigned int state) {
  return static_cast<int>((state >> 16) & 0x7fffu);
}

/// State of the calling thread's generator; a draw is a step and then random_number.
unsigned int& random_state();

/// `count` steps at once.
struct RandomStep {
  unsigned int factor = 1;
  unsigned int addend = 0;

  constexpr explicit RandomStep(unsigned int count) {
    for (unsigned int i = 0; i < count; ++i) {
      factor *= RANDOM_FACTOR;
      addend = addend * RANDOM_FACTOR + RANDOM_ADDEND;
    }
  }
  constexpr unsigned int operator()(unsigned int state) const { return state * factor + addend; }
};

}  // namespace orv::detail
