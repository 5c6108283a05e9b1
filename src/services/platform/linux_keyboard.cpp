#include <orv/core/log_mgr.h>

#include <X11/XKBlib.h>
#include <X11/Xlib.h>

#include <atomic>
#include <cstring>
#include <mutex>

#include "core/late_library.h"
#include "services/key_source.h"

namespace orv::detail {
namespace {

#define ORV_X11_FUNCTION(name) decltype(&::name) name = library.find<decltype(&::name)>(#name)

struct X11Library {
  LateLibrary library{"libX11.so.6"};
  ORV_X11_FUNCTION(XOpenDisplay);
  ORV_X11_FUNCTION(XCloseDisplay);
  ORV_X11_FUNCTION(XQueryKeymap);
  ORV_X11_FUNCTION(XkbGetIndicatorState);
  ORV_X11_FUNCTION(XkbSelectEvents);
  ORV_X11_FUNCTION(XDisplayKeycodes);
  ORV_X11_FUNCTION(XGetKeyboardMapping);
  ORV_X11_FUNCTION(XEventsQueued);
  ORV_X11_FUNCTION(XNextEvent);
  ORV_X11_FUNCTION(XFree);
  ORV_X11_FUNCTION(XSetIOErrorHandler);
  bool usable = library.complete();
  // Null before version 1.7.
  ORV_X11_FUNCTION(XSetIOErrorExitHandler);

  static const X11Library& get() {
    static const X11Library loaded;
    return loaded;
  }
};

#undef ORV_X11_FUNCTION

// A server that goes away would end the process: by the handler of all connections, which is ours
// while this lives, then by the one of the connection, which X11KeySource sets.
class ServerLossTrap {
 public:
  explicit ServerLossTrap(const X11Library& x11) : x11_(x11), lock_(mutex()) {
    old_ = x11_.XSetIOErrorHandler(&ServerLossTrap::handle);
    inside_ = true;
  }
  ~ServerLossTrap() {
    inside_ = false;
    x11_.XSetIOErrorHandler(old_);
  }
  ServerLossTrap(const ServerLossTrap&) = delete;
  ServerLossTrap& operator=(const ServerLossTrap&) = delete;

 private:
  static std::mutex& mutex() {
    static std::mutex one;
    return one;
  }
  // Other threads have connections of their own.
  static int handle(Display* display) {
    const XIOErrorHandler old = old_.load();
    return inside_ || !old ? 0 : old(display);
  }

  static inline thread_local bool inside_ = false;
  static inline std::atomic<XIOErrorHandler> old_{nullptr};

  const X11Library& x11_;
  std::lock_guard<std::mutex> lock_;
};

class X11KeySource final : public KeySource {
 public:
  X11KeySource(const X11Library& x11, Display* display) : x11_(x11), display_(display) {
    if (x11_.XSetIOErrorExitHandler) {
      x11_.XSetIOErrorExitHandler(
          display, [](Display*, void* lost) { *static_cast<bool*>(lost) = true; }, &lost_);
    }
    constexpr unsigned int EVENTS = XkbMapNotifyMask | XkbNewKeyboardNotifyMask;
    const ServerLossTrap trap(x11_);
    x11_.XkbSelectEvents(display, XkbUseCoreKbd, EVENTS, EVENTS);
  }
  ~X11KeySource() override {
    const ServerLossTrap trap(x11_);
    x11_.XCloseDisplay(display_);
  }

  bool read(KeyReading* reading) override {
    if (lost_) return false;
    char keys[NUM_KEYS / 8] = {};
    unsigned int indicators = 0;
    if (!ask(keys, &indicators, reading)) {
      LogMgr::get().tracef_debug("Keyboard - the X server went away");
      return false;
    }
    std::memcpy(reading->down, keys, sizeof(keys));
    reading->locks = indicators;
    return true;
  }

 private:
  bool ask(char* keys, unsigned int* indicators, KeyReading* reading) {
    const ServerLossTrap trap(x11_);
    x11_.XQueryKeymap(display_, keys);
    if (!lost_) x11_.XkbGetIndicatorState(display_, XkbUseCoreKbd, indicators);
    if (!lost_) receive_events();
    if (!lost_ && remapped_) read_symbols(reading);
    return !lost_;
  }

  // Only those that tell of another map or another keyboard come at all.
  void receive_events() {
    while (x11_.XEventsQueued(display_, QueuedAlready) > 0) {
      XEvent event;
      x11_.XNextEvent(display_, &event);
      remapped_ = true;
    }
  }

  void read_symbols(KeyReading* reading) {
    int first = 0, last = -1, per_key = 0;
    x11_.XDisplayKeycodes(display_, &first, &last);
    KeySym* symbols = x11_.XGetKeyboardMapping(display_, static_cast<::KeyCode>(first),
                                               last - first + 1, &per_key);
    if (!symbols) return;
    for (int key = first; key <= last && key < NUM_KEYS && per_key > 0; ++key) {
      reading->symbols[key] = static_cast<std::uint32_t>(symbols[(key - first) * per_key]);
    }
    x11_.XFree(symbols);
    reading->remapped = true;
    remapped_ = false;
  }

  const X11Library& x11_;
  Display* display_;
  bool lost_ = false;
  bool remapped_ = true;
};

}  // namespace

std::unique_ptr<KeySource> open_key_source() {
  const X11Library& x11 = X11Library::get();
  if (!x11.usable) {
    LogMgr::get().tracef_debug("Keyboard - X11 is missing or incomplete: %s", x11.library.fault());
    return nullptr;
  }
  Display* display = x11.XOpenDisplay(nullptr);
  if (!display) {
    LogMgr::get().tracef_debug("Keyboard - no X server");
    return nullptr;
  }
  return std::make_unique<X11KeySource>(x11, display);
}

}  // namespace orv::detail
