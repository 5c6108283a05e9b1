#include <orv/orv.h>

#include <algorithm>
#include <cstdio>

#include "viewer/picture.h"
#include "viewer/run_modes.h"

namespace viewer {

namespace {

bool create_context(orv::Renderer* renderer, orv::OffscreenWindow& surface, const Options& options,
                    int msaa) {
  orv::RenderWindowData data;
  data.native_window = surface.native_handle();
  if (options.core) {
    data.gl_major = 3;
    data.core_profile = true;
  }
  if (msaa > 1) std::snprintf(data.msaa, sizeof(data.msaa), "%dX MSAA", msaa);
  orv::RenderWindow* window = renderer->render_window_alloc();
  if (renderer->render_window_create_context(window, &data, nullptr)) return true;
  renderer->render_window_free(window);
  return false;
}

bool draw_frames(orv::Renderer* renderer, Viewer& viewer, const Options& options,
                 std::string* reason) {
  const int frames = std::max(options.frames, 1);
  for (int i = 0; i < frames; ++i) viewer.draw(options.width, options.height);
  renderer->finish_gl();
  if (!options.output.empty() &&
      !write_picture(renderer, options.output, options.width, options.height, reason)) {
    return false;
  }
  if (options.stats) {
    viewer.print_file_stats();
    viewer.print_drawing_stats();
  }
  return true;
}

}  // namespace

bool run_headless(orv::Renderer* renderer, Viewer& viewer, const Options& options,
                  std::string* reason) {
  orv::OffscreenWindow surface(options.width, options.height);
  // A driver without these samples may have a context without any.
  if (!create_context(renderer, surface, options, options.msaa) &&
      (options.msaa == 0 || !create_context(renderer, surface, options, 0))) {
    *reason = "no OpenGL context off screen";
    return false;
  }
  bool done = renderer->start();
  *reason = "the driver's OpenGL cannot be used";
  done = done && viewer.start(renderer, 1.0f, reason) &&
         draw_frames(renderer, viewer, options, reason);
  viewer.stop(renderer);
  renderer->stop();
  renderer->render_window_free_all();
  return done;
}

}  // namespace viewer
