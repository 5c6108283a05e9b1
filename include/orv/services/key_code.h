/// @file
/// Numbers of the keys of a keyboard.
#pragma once

namespace orv {

/// A key by its scan code, that is by its place: the same number whatever is printed on it. Letters
/// are named as on a US keyboard.
enum KeyCode : int {
  KEY_ESCAPE = 1,

  KEY_1 = 2,
  KEY_2 = 3,
  KEY_3 = 4,
  KEY_4 = 5,
  KEY_5 = 6,
  KEY_6 = 7,
  KEY_7 = 8,
  KEY_8 = 9,
  KEY_9 = 10,
  KEY_0 = 11,

  KEY_BACKSPACE = 14,
  KEY_TAB = 15,
  KEY_RETURN = 28,
  KEY_SPACE = 57,

  KEY_A = 30,
  KEY_B = 48,
  KEY_C = 46,
  KEY_D = 32,
  KEY_E = 18,
  KEY_F = 33,
  KEY_G = 34,
  KEY_H = 35,
  KEY_I = 23,
  KEY_J = 36,
  KEY_K = 37,
  KEY_L = 38,
  KEY_M = 50,
  KEY_N = 49,
  KEY_O = 24,
  KEY_P = 25,
  KEY_Q = 16,
  KEY_R = 19,
  KEY_S = 31,
  KEY_T = 20,
  KEY_U = 22,
  KEY_V = 47,
  KEY_W = 17,
  KEY_X = 45,
  KEY_Y = 21,
  KEY_Z = 44,

  KEY_NUMPAD0 = 82,
  KEY_NUMPAD1 = 79,
  KEY_NUMPAD2 = 80,
  KEY_NUMPAD3 = 81,
  KEY_NUMPAD4 = 75,
  KEY_NUMPAD5 = 76,
  KEY_NUMPAD6 = 77,
  KEY_NUMPAD7 = 71,
  KEY_NUMPAD8 = 72,
  KEY_NUMPAD9 = 73,
  KEY_NUMPAD_DECIMAL = 83,
  KEY_NUMPAD_ENTER = 156,
  KEY_NUMPAD_MULTIPLY = 55,
  KEY_NUMPAD_ADD = 78,
  KEY_NUMPAD_SUBTRACT = 74,
  KEY_NUMPAD_DIVIDE = 181,

  KEY_NUMLOCK = 69,
  KEY_SCROLL = 70,
  KEY_CAPSLOCK = 58,
  KEY_APPS = 221,
  KEY_SLEEP = 223,

  KEY_LEFT = 203,
  KEY_RIGHT = 205,
  KEY_UP = 200,
  KEY_DOWN = 208,
  KEY_PRIOR = 201,  ///< page up
  KEY_NEXT = 209,   ///< page down
  KEY_HOME = 199,
  KEY_END = 207,
  KEY_INSERT = 210,
  KEY_DELETE = 211,

  KEY_LSHIFT = 42,
  KEY_RSHIFT = 54,
  KEY_LCONTROL = 29,
  KEY_RCONTROL = 157,
  KEY_LALT = 56,
  KEY_RALT = 184,
  KEY_LWIN = 219,
  KEY_RWIN = 220,
};

}  // namespace orv
