#pragma once

#include <orv/fwd.h>

#include <string>

namespace orv_app {

/// What happened to a window, without the names of a toolkit.
struct DesktopEvent {
  enum Kind {
    CLOSE,   ///< the window is to be closed
    KEY,     ///< a key went down; none that repeats, and none with Ctrl, Alt or the system's key
    DRAG,    ///< the mouse moved with its left button held
    WHEEL,   ///< the wheel turned
    REDRAW,  ///< the window was uncovered or has another size
  };
  static constexpr int KEY_ESCAPE = 27;

  Kind kind = REDRAW;
  int key = 0;     ///< KEY: the character in lower case
  float x = 0.0f;  ///< DRAG: to the right, as a share of the window's height
  float y = 0.0f;  ///< DRAG: down, likewise; WHEEL: notches away from the user
};

/// Whether a window can be opened here.
bool has_display();

/// A window on the X server with a context of the renderer.
class DesktopWindow {
 public:
  struct Settings {
    std::string title;
    int width = 1280;  ///< wished for, in units of a screen of scale 1; a small screen gives less
    int height = 720;
    int msaa = 4;       ///< samples; below 2 for none
    bool core = false;  ///< a core profile, else compatibility
  };

  DesktopWindow() = default;
  ~DesktopWindow() { close(); }
  DesktopWindow(const DesktopWindow&) = delete;
  DesktopWindow& operator=(const DesktopWindow&) = delete;

  /// Opens the window, makes the context current and starts the renderer. False with a reason, and
  /// everything undone.
  bool open(orv::Renderer* renderer, const Settings& settings, std::string* reason);
  /// Stops the renderer and gives back context and window; nothing when not open.
  void close();

  /// The next event of the queue. False when there is none.
  bool next_event(DesktopEvent* event);
  /// Waits for events, at most this long.
  void wait(int milliseconds);
  void set_title(const std::string& title);
  /// Shows what was drawn.
  void swap();

  /// Size in pixels, at least 1.
  int get_width() const;
  int get_height() const;
  /// Pixels of the screen per unit of size: 1, 1.25, 1.5 ...
  float get_scale() const { return scale_; }

 private:
  bool create(const Settings& settings, std::string* reason);
  bool create_context(const Settings& settings, int msaa);

  orv::Renderer* renderer_ = nullptr;
  orv::RenderWindow* render_window_ = nullptr;
  void* window_ = nullptr;
  bool initialized_ = false;
  float scale_ = 1.0f;
};

}  // namespace orv_app
