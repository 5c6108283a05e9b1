#pragma once

#include <vector>

// Keeps the names of Xlib out of tests: several collide with ours.

namespace orv::test {

/// The keyboard of the X server, changed as the desktop's settings would change it.
class X11Keys {
 public:
  X11Keys();
  ~X11Keys();
  X11Keys(const X11Keys&) = delete;
  X11Keys& operator=(const X11Keys&) = delete;

  /// False without an X server.
  bool ok() const { return display_ != nullptr; }
  /// All that a key carries, first what it carries without modifiers.
  std::vector<unsigned long> symbols(int key);
  /// Has a key carry these.
  void carry(int key, std::vector<unsigned long> symbols);
  /// Turns one of the small lights on or off, counted from 1.
  void set_light(int light, bool on);

 private:
  void* display_;
};

}  // namespace orv::test
