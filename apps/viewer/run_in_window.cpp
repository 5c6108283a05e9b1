#include <orv/render/renderer.h>

#include "common/desktop_window.h"
#include "viewer/picture.h"
#include "viewer/run_modes.h"

namespace viewer {

namespace {

using orv_app::DesktopEvent;
using orv_app::DesktopWindow;

// False when the window is to be closed.
bool handle(const DesktopEvent& event, Viewer& viewer) {
  switch (event.kind) {
    case DesktopEvent::CLOSE:
      return false;
    case DesktopEvent::KEY:
      return viewer.act(action_of_key(event.key));
    case DesktopEvent::DRAG:
      viewer.drag(event.x, event.y);
      return true;
    case DesktopEvent::WHEEL:
      viewer.zoom(event.y);
      return true;
    case DesktopEvent::REDRAW:
      break;
  }
  return true;
}

class WindowLoop {
 public:
  WindowLoop(orv::Renderer* renderer, DesktopWindow& window, Viewer& viewer, const Options& options)
      : renderer_(renderer), window_(window), viewer_(viewer), options_(options) {}

  /// Draws when something changed, or as many frames as were asked for, one after the other.
  bool run(std::string* reason) {
    bool changed = true;
    while (handle_events(&changed)) {
      if (changed || options_.frames > 0) {
        if (!draw(reason)) return false;
        changed = false;
      }
      if (options_.frames > 0 && num_frames_ >= options_.frames) break;
      if (options_.frames == 0) window_.wait(100);
    }
    return true;
  }

 private:
  bool handle_events(bool* changed) {
    DesktopEvent event;
    while (window_.next_event(&event)) {
      if (!handle(event, viewer_)) return false;
      *changed = true;
    }
    if (*changed) window_.set_title(viewer_.get_title());
    return true;
  }

  bool draw(std::string* reason) {
    const int width = window_.get_width();
    const int height = window_.get_height();
    viewer_.draw(width, height);
    ++num_frames_;
    const bool picture_due = num_frames_ == (options_.frames > 0 ? options_.frames : 1);
    if (picture_due && !options_.output.empty() &&
        !write_picture(renderer_, options_.output, width, height, reason)) {
      return false;
    }
    window_.swap();
    return true;
  }

  orv::Renderer* renderer_;
  DesktopWindow& window_;
  Viewer& viewer_;
  const Options& options_;
  int num_frames_ = 0;
};

}  // namespace

bool run_in_window(orv::Renderer* renderer, Viewer& viewer, const Options& options,
                   std::string* reason) {
  if (!orv_app::has_display()) {
    *reason = "no display to open a window on (--output FILE.png draws without one)";
    return false;
  }
  DesktopWindow window;
  DesktopWindow::Settings settings;
  settings.title = viewer.get_title();
  settings.width = options.width;
  settings.height = options.height;
  settings.msaa = options.msaa;
  settings.core = options.core;
  if (!window.open(renderer, settings, reason)) return false;
  bool done = viewer.start(renderer, window.get_scale(), reason);
  if (done) {
    if (options.stats) viewer.print_file_stats();
    done = WindowLoop(renderer, window, viewer, options).run(reason);
    if (done && options.stats) viewer.print_drawing_stats();
  }
  viewer.stop(renderer);
  return done;
}

}  // namespace viewer
