#include "services/key_symbols.h"

#include "services/key_table.h"

namespace orv::detail {
namespace {

// A run of symbols whose virtual keys are a run too.
struct SymbolRun {
  std::uint32_t first;
  std::uint8_t count;
  std::uint8_t vk;
};

constexpr SymbolRun SYMBOL_RUNS[] = {
    // digits, letters of both cases
    {0x30, 10, 48},
    {0x61, 26, 65},
    {0x41, 26, 65},
    // backspace, tab, return, escape, space
    {0xff08, 1, 8},
    {0xff09, 1, 9},
    {0xff0d, 1, 13},
    {0xff1b, 1, 27},
    {0x20, 1, 32},
    // pad: digits with and without num lock, then the others
    {0xffb0, 10, 96},
    {0xff9e, 1, 96},
    {0xff9c, 1, 97},
    {0xff99, 1, 98},
    {0xff9b, 1, 99},
    {0xff96, 1, 100},
    {0xff9d, 1, 101},
    {0xff98, 1, 102},
    {0xff95, 1, 103},
    {0xff97, 1, 104},
    {0xff9a, 1, 105},
    {0xffaa, 2, 106},
    {0xffad, 3, 109},
    {0xff9f, 1, 110},
    {0xffac, 1, 110},
    {0xff8d, 1, 156},
    // num lock, scroll lock, caps lock, menu, sleep
    {0xff7f, 1, 144},
    {0xff14, 1, 145},
    {0xffe5, 1, 20},
    {0xff67, 1, 93},
    {0x1008ff2f, 1, 95},
    // home, then left, up, right, down, then prior, next, end; insert, delete
    {0xff50, 1, 36},
    {0xff51, 4, 37},
    {0xff55, 2, 33},
    {0xff57, 1, 35},
    {0xff63, 1, 45},
    {0xffff, 1, 46},
    // shift and control on both sides, alt, meta in place of alt, AltGr, Windows
    {0xffe1, 4, 160},
    {0xffe9, 2, 164},
    {0xffe7, 2, 164},
    {0xfe03, 1, 165},
    {0xffeb, 2, 91},
    // F1 to F24, pause, print
    {0xffbe, 24, 112},
    {0xff13, 1, 19},
    {0xff61, 1, 44},
    // ; = , - . / ` [ \ ] ' and the key beside the left shift
    {0x3b, 1, 186},
    {0x3d, 1, 187},
    {0x2c, 3, 188},
    {0x2f, 1, 191},
    {0x60, 1, 192},
    {0x5b, 3, 219},
    {0x27, 1, 222},
    {0x3c, 1, 226},
};

}  // namespace

std::uint8_t vk_of_symbol(std::uint32_t symbol) {
  for (const SymbolRun& run : SYMBOL_RUNS) {
    // Wraps to a great number below the first one.
    if (symbol - run.first < run.count) {
      return static_cast<std::uint8_t>(run.vk + (symbol - run.first));
    }
  }
  return 0;
}

void map_keys(const std::uint32_t (&symbols)[NUM_KEYS], std::uint8_t (&vk_of_key)[NUM_KEYS]) {
  bool taken[256] = {};
  for (int key = 0; key < NUM_KEYS; ++key) {
    vk_of_key[key] = vk_of_symbol(symbols[key]);
    taken[vk_of_key[key]] = true;
  }
  // Linux numbers the keys of the main block by scan code, and X servers count from 8 on.
  for (const KeyRow& row : KEY_TABLE) {
    const int key = row.code + 8;
    const bool letter_or_digit = row.vk >= 48 && row.vk <= 90;
    if (letter_or_digit && !taken[row.vk] && symbols[key] && !vk_of_key[key]) {
      vk_of_key[key] = row.vk;
    }
  }
}

}  // namespace orv::detail
