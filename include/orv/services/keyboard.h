/// @file
/// Which keys are down.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/services/key_code.h>

namespace orv {

struct KeyboardData;

/// The state of the keyboard at one moment. The host owns it and reads the state once a frame:
///
///     Keyboard keyboard;
///     keyboard.init();
///     while (running) {
///       keyboard.update_key_buffer();
///       if (keyboard.is_key_down(KEY_W)) move_forward();
///       ...
///     }
///
/// The state is a buffer of 256 bytes, one for each virtual key: letters and digits stand at their
/// ASCII code, others where the Windows system has them, whose numbers these are (13 return, 27
/// escape, 37 to 40 the arrows, 112 F1 ...). The high bit of a byte says that the key is down. It
/// is the state of the whole keyboard, whichever window has the focus. One thread only.
///
/// On Linux the state comes from the X server that the environment's DISPLAY names, by a connection
/// of this object's own, made when it is first asked for.
class ORV_API Keyboard {
 public:
  /// All keys up, and no KeyCode known before init().
  Keyboard();
  /// Closes the connection to the X server.
  ~Keyboard();
  Keyboard(const Keyboard&) = delete;
  Keyboard& operator=(const Keyboard&) = delete;

  /// Fills the map from the 80 codes of KeyCode to virtual keys. True.
  bool init();
  /// Reads the state of all keys into the buffer. Shift, control and alt (16, 17, 18) are down when
  /// one of their sides is; the enter key of the pad is return (13) besides its own number (156).
  /// The low bit at caps lock, num lock and scroll lock (20, 144, 145) says that the lock is on.
  /// Keys of the pad keep their numbers whether num lock is on or not. True; without an X server
  /// the buffer stays as it was.
  bool update_key_buffer();
  /// Marks all keys as up. True.
  bool clear_key_buffer();

  /// Whether a key was down. A code without a virtual key reads that of number 0.
  bool is_key_down(KeyCode code) const;
  /// The same by virtual key; false from 256 on.
  bool is_key_down_raw(unsigned int vk) const;
  /// False, always: ask is_key_down_raw().
  bool is_virtual_key_down(int vk) const;

  /// Marks a key as down when `state` is above 0, else as up: for hosts that are told of keys by
  /// events. A code without a virtual key changes that of number 0, which all of them share. True.
  bool set_key_state(KeyCode code, char state);
  /// Stores 1 in the byte of a virtual key when the key came down since this was last asked for
  /// this key, else 0; never the bit that says down. `state` has no use. A press that came and went
  /// between two readings is not seen. False for numbers outside 0 to 255, else true.
  bool set_virtual_key_state(int vk, char state);

 private:
  friend struct KeyboardData;

  KeyboardData* data_;
};

}  // namespace orv
