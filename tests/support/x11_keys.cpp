#include "support/x11_keys.h"

#include <X11/Xlib.h>

namespace orv::test {
namespace {

::Display* x(void* display) { return static_cast<::Display*>(display); }

}  // namespace

X11Keys::X11Keys() : display_(XOpenDisplay(nullptr)) {}

X11Keys::~X11Keys() {
  if (display_) XCloseDisplay(x(display_));
}

std::vector<unsigned long> X11Keys::symbols(int key) {
  int per_key = 0;
  ::KeySym* row = XGetKeyboardMapping(x(display_), static_cast<::KeyCode>(key), 1, &per_key);
  std::vector<unsigned long> all(row, row + per_key);
  XFree(row);
  return all;
}

void X11Keys::carry(int key, std::vector<unsigned long> symbols) {
  XChangeKeyboardMapping(x(display_), key, static_cast<int>(symbols.size()), symbols.data(), 1);
  XSync(x(display_), False);
}

void X11Keys::set_light(int light, bool on) {
  ::XKeyboardControl control{};
  control.led = light;
  control.led_mode = on ? LedModeOn : LedModeOff;
  XChangeKeyboardControl(x(display_), KBLed | KBLedMode, &control);
  XSync(x(display_), False);
}

}  // namespace orv::test
