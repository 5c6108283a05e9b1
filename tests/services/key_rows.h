#pragma once

#include <orv/services/key_code.h>

namespace orv::test {

/// A key by its name, its code, its virtual key and its number at an X server that Linux's drivers
/// or their likes feed.
struct KeyRow {
  const char* name;
  KeyCode key;
  int code;
  int vk;
  int x11;
};

// clang-format off
inline constexpr KeyRow key_rows[] = {
    {"0", KEY_0, 11, 48, 19},
    {"1", KEY_1, 2, 49, 10}, {"2", KEY_2, 3, 50, 11}, {"3", KEY_3, 4, 51, 12},
    {"4", KEY_4, 5, 52, 13}, {"5", KEY_5, 6, 53, 14}, {"6", KEY_6, 7, 54, 15},
    {"7", KEY_7, 8, 55, 16}, {"8", KEY_8, 9, 56, 17}, {"9", KEY_9, 10, 57, 18},
    {"A", KEY_A, 30, 65, 38}, {"B", KEY_B, 48, 66, 56}, {"C", KEY_C, 46, 67, 54},
    {"D", KEY_D, 32, 68, 40}, {"E", KEY_E, 18, 69, 26}, {"F", KEY_F, 33, 70, 41},
    {"G", KEY_G, 34, 71, 42}, {"H", KEY_H, 35, 72, 43}, {"I", KEY_I, 23, 73, 31},
    {"J", KEY_J, 36, 74, 44}, {"K", KEY_K, 37, 75, 45}, {"L", KEY_L, 38, 76, 46},
    {"M", KEY_M, 50, 77, 58}, {"N", KEY_N, 49, 78, 57}, {"O", KEY_O, 24, 79, 32},
    {"P", KEY_P, 25, 80, 33}, {"Q", KEY_Q, 16, 81, 24}, {"R", KEY_R, 19, 82, 27},
    {"S", KEY_S, 31, 83, 39}, {"T", KEY_T, 20, 84, 28}, {"U", KEY_U, 22, 85, 30},
    {"V", KEY_V, 47, 86, 55}, {"W", KEY_W, 17, 87, 25}, {"X", KEY_X, 45, 88, 53},
    {"Y", KEY_Y, 21, 89, 29}, {"Z", KEY_Z, 44, 90, 52},
    {"escape", KEY_ESCAPE, 1, 27, 9}, {"backspace", KEY_BACKSPACE, 14, 8, 22},
    {"space", KEY_SPACE, 57, 32, 65}, {"return", KEY_RETURN, 28, 13, 36},
    {"tab", KEY_TAB, 15, 9, 23},
    {"pad 0", KEY_NUMPAD0, 82, 96, 90}, {"pad 1", KEY_NUMPAD1, 79, 97, 87},
    {"pad 2", KEY_NUMPAD2, 80, 98, 88}, {"pad 3", KEY_NUMPAD3, 81, 99, 89},
    {"pad 4", KEY_NUMPAD4, 75, 100, 83}, {"pad 5", KEY_NUMPAD5, 76, 101, 84},
    {"pad 6", KEY_NUMPAD6, 77, 102, 85}, {"pad 7", KEY_NUMPAD7, 71, 103, 79},
    {"pad 8", KEY_NUMPAD8, 72, 104, 80}, {"pad 9", KEY_NUMPAD9, 73, 105, 81},
    {"pad decimal", KEY_NUMPAD_DECIMAL, 83, 110, 91},
    {"pad enter", KEY_NUMPAD_ENTER, 156, 156, 104},
    {"pad multiply", KEY_NUMPAD_MULTIPLY, 55, 106, 63}, {"pad add", KEY_NUMPAD_ADD, 78, 107, 86},
    {"pad subtract", KEY_NUMPAD_SUBTRACT, 74, 109, 82},
    {"pad divide", KEY_NUMPAD_DIVIDE, 181, 111, 106},
    {"num lock", KEY_NUMLOCK, 69, 144, 77}, {"scroll lock", KEY_SCROLL, 70, 145, 78},
    {"caps lock", KEY_CAPSLOCK, 58, 20, 66},
    {"apps", KEY_APPS, 221, 93, 135}, {"sleep", KEY_SLEEP, 223, 95, 150},
    {"left", KEY_LEFT, 203, 37, 113}, {"right", KEY_RIGHT, 205, 39, 114},
    {"up", KEY_UP, 200, 38, 111}, {"down", KEY_DOWN, 208, 40, 116},
    {"prior", KEY_PRIOR, 201, 33, 112}, {"next", KEY_NEXT, 209, 34, 117},
    {"home", KEY_HOME, 199, 36, 110}, {"end", KEY_END, 207, 35, 115},
    {"insert", KEY_INSERT, 210, 45, 118}, {"delete", KEY_DELETE, 211, 46, 119},
    {"left shift", KEY_LSHIFT, 42, 160, 50}, {"right shift", KEY_RSHIFT, 54, 161, 62},
    {"left control", KEY_LCONTROL, 29, 162, 37}, {"right control", KEY_RCONTROL, 157, 163, 105},
    {"right alt", KEY_RALT, 184, 165, 108}, {"left alt", KEY_LALT, 56, 164, 64},
    {"left Windows", KEY_LWIN, 219, 91, 133}, {"right Windows", KEY_RWIN, 220, 92, 134},
};
// clang-format on
static_assert(sizeof(key_rows) / sizeof(key_rows[0]) == 80);

/// The virtual key that is down besides: that of both sides, return for the pad's; 0 for most.
inline int second_vk(int vk) {
  if (vk >= 160 && vk <= 165) return 16 + (vk - 160) / 2;
  return vk == 156 ? 13 : 0;
}

}  // namespace orv::test
