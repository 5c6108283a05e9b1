#include "demo_window.h"

#include <cstdio>
#include <string>

#include "common/desktop_window.h"
#include "demo_scene.h"

namespace demo {

namespace {

using orv_app::DesktopEvent;
using orv_app::DesktopWindow;
using orv_app::Orbit;

constexpr float degrees_per_height = 290.0f;

// False when the window is to be closed.
bool handle_events(DesktopWindow& window, Orbit& orbit, bool* changed) {
  DesktopEvent event;
  while (window.next_event(&event)) {
    if (event.kind == DesktopEvent::CLOSE) return false;
    if (event.kind == DesktopEvent::KEY && event.key == DesktopEvent::KEY_ESCAPE) return false;
    *changed = true;
    if (event.kind == DesktopEvent::DRAG) {
      orbit.turn(-event.x * degrees_per_height, event.y * degrees_per_height);
    }
    if (event.kind == DesktopEvent::WHEEL) orbit.zoom(event.y > 0.0f ? 0.9f : 1.1f);
  }
  return true;
}

void draw_until_closed(orv::Renderer* renderer, DesktopWindow& window, DemoScene& scene) {
  orv::Camera camera;
  Orbit orbit = DemoScene::make_orbit();
  bool changed = true;
  while (handle_events(window, orbit, &changed)) {
    if (changed) {
      orbit.place(camera);
      scene.draw(renderer, camera, window.get_width(), window.get_height());
      window.swap();
      changed = false;
    }
    window.wait(50);
  }
}

}  // namespace

bool run_in_window(orv::Renderer* renderer, const char* data_dir) {
  DesktopWindow window;
  DesktopWindow::Settings settings;
  settings.title = "Orvane Core";
  settings.core = true;
  std::string reason;
  if (!window.open(renderer, settings, &reason)) {
    std::fprintf(stderr, "%s\n", reason.c_str());
    return false;
  }
  DemoScene scene;
  const bool created = scene.create(renderer, data_dir, &reason);
  if (created) {
    std::printf("drag to orbit, wheel to zoom, Escape to end\n");
    std::fflush(stdout);
    draw_until_closed(renderer, window, scene);
  } else {
    std::fprintf(stderr, "%s\n", reason.c_str());
  }
  scene.destroy(renderer);
  return created;
}

}  // namespace demo
