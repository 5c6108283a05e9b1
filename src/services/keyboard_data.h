/// @file
/// Private block of Keyboard.
#pragma once

#include <orv/services/keyboard.h>

#include "services/key_source.h"

namespace orv {

struct KeyboardData {
  std::uint8_t key_buffer[256] = {};
  std::uint8_t vk_of_code[256] = {};              // all 0 before init
  std::uint8_t vk_of_key[detail::NUM_KEYS] = {};  // of the source's keys
  std::uint8_t last[256] = {};                    // the last reading
  bool pressed[256] = {};                         // came down since asked
  bool opened = false;                            // the source was looked for
  std::unique_ptr<detail::KeySource> source;
  detail::KeyReading reading;

  static KeyboardData& of(Keyboard& keyboard) { return *keyboard.data_; }

  /// Has the keyboard read from this source; null for none at all.
  void set_source(std::unique_ptr<detail::KeySource> replacement) {
    source = std::move(replacement);
    opened = true;
  }
  /// The byte of a code, known or not.
  std::uint8_t& byte_of(KeyCode code);
  /// Brings `last` and `pressed` up to date; false without a keyboard.
  bool read();

 private:
  void read_keys();
};

}  // namespace orv
