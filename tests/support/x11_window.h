#pragma once

// Keeps the names of Xlib out of tests: several collide with ours.
#include <memory>
#include <string>

namespace orv::test {

/// A connection to the X server.
class X11Display {
 public:
  X11Display();
  ~X11Display();
  X11Display(const X11Display&) = delete;
  X11Display& operator=(const X11Display&) = delete;

  /// False without an X server.
  bool ok() const { return display_ != nullptr; }
  /// What goes into RenderWindowData::app_instance.
  void* handle() const { return display_; }
  /// Waits until the server has done everything.
  void sync();
  /// Sets the text of the desktop's settings, such as "Xft.dpi: 120"; "" takes it away.
  void set_resources(const std::string& text);
  /// Id of the visual that windows have by default.
  unsigned long default_visual_id();

 private:
  void* display_;
};

/// A plain window of a host.
class X11Window {
 public:
  /// With a visual of 0 the default one is taken.
  X11Window(X11Display& display, int width, int height, unsigned long visual_id = 0);
  ~X11Window();
  X11Window(const X11Window&) = delete;
  X11Window& operator=(const X11Window&) = delete;

  /// What goes into RenderWindowData::native_window.
  void* handle() const { return reinterpret_cast<void*>(id_); }
  unsigned long id() const { return id_; }
  void resize(int width, int height);
  void destroy();
  /// Windows inside this one.
  int num_children();
  /// Size of the only window inside this one.
  bool get_child_size(int* width, int* height);
  /// Colour on the screen, 0xRRGGBB, from the upper left corner.
  unsigned long pixel(int x, int y);

 private:
  unsigned long child();

  X11Display& display_;
  unsigned long id_ = 0;
  unsigned long colormap_ = 0;
};

/// A context that the host makes itself, and its bindings on this thread.
class HostGlxContext {
 public:
  explicit HostGlxContext(X11Display& display);
  ~HostGlxContext();
  HostGlxContext(const HostGlxContext&) = delete;
  HostGlxContext& operator=(const HostGlxContext&) = delete;

  bool make_current(const X11Window& window);
  void unbind();
  void* handle() const { return context_; }
  static void* current();
  static unsigned long current_drawable();

 private:
  X11Display& display_;
  void* context_ = nullptr;
};

}  // namespace orv::test
