/// @file
/// Virtual keys of scan codes.
#pragma once

#include <orv/services/key_code.h>

#include <cstdint>

namespace orv::detail {

struct KeyRow {
  std::uint8_t code;
  std::uint8_t vk;
};

inline constexpr KeyRow KEY_TABLE[] = {
    {KEY_0, '0'},
    {KEY_1, '1'},
    {KEY_2, '2'},
    {KEY_3, '3'},
    {KEY_4, '4'},
    {KEY_5, '5'},
    {KEY_6, '6'},
    {KEY_7, '7'},
    {KEY_8, '8'},
    {KEY_9, '9'},
    {KEY_A, 'A'},
    {KEY_B, 'B'},
    {KEY_C, 'C'},
    {KEY_D, 'D'},
    {KEY_E, 'E'},
    {KEY_F, 'F'},
    {KEY_G, 'G'},
    {KEY_H, 'H'},
    {KEY_I, 'I'},
    {KEY_J, 'J'},
    {KEY_K, 'K'},
    {KEY_L, 'L'},
    {KEY_M, 'M'},
    {KEY_N, 'N'},
    {KEY_O, 'O'},
    {KEY_P, 'P'},
    {KEY_Q, 'Q'},
    {KEY_R, 'R'},
    {KEY_S, 'S'},
    {KEY_T, 'T'},
    {KEY_U, 'U'},
    {KEY_V, 'V'},
    {KEY_W, 'W'},
    {KEY_X, 'X'},
    {KEY_Y, 'Y'},
    {KEY_Z, 'Z'},
    {KEY_ESCAPE, 27},
    {KEY_BACKSPACE, 8},
    {KEY_SPACE, 32},
    {KEY_RETURN, 13},
    {KEY_TAB, 9},
    {KEY_NUMPAD0, 96},
    {KEY_NUMPAD1, 97},
    {KEY_NUMPAD2, 98},
    {KEY_NUMPAD3, 99},
    {KEY_NUMPAD4, 100},
    {KEY_NUMPAD5, 101},
    {KEY_NUMPAD6, 102},
    {KEY_NUMPAD7, 103},
    {KEY_NUMPAD8, 104},
    {KEY_NUMPAD9, 105},
    {KEY_NUMPAD_DECIMAL, 110},
    {KEY_NUMPAD_ENTER, 156},
    {KEY_NUMPAD_MULTIPLY, 106},
    {KEY_NUMPAD_ADD, 107},
    {KEY_NUMPAD_SUBTRACT, 109},
    {KEY_NUMPAD_DIVIDE, 111},
    {KEY_NUMLOCK, 144},
    {KEY_SCROLL, 145},
    {KEY_CAPSLOCK, 20},
    {KEY_APPS, 93},
    {KEY_SLEEP, 95},
    {KEY_LEFT, 37},
    {KEY_RIGHT, 39},
    {KEY_UP, 38},
    {KEY_DOWN, 40},
    {KEY_PRIOR, 33},
    {KEY_NEXT, 34},
    {KEY_HOME, 36},
    {KEY_END, 35},
    {KEY_INSERT, 45},
    {KEY_DELETE, 46},
    {KEY_LSHIFT, 160},
    {KEY_RSHIFT, 161},
    {KEY_LCONTROL, 162},
    {KEY_RCONTROL, 163},
    {KEY_LALT, 164},
    {KEY_RALT, 165},
    {KEY_LWIN, 91},
    {KEY_RWIN, 92},
};
static_assert(sizeof(KEY_TABLE) / sizeof(KEY_TABLE[0]) == 80);

}  // namespace orv::detail
