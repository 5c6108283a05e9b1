#include "desktop_window.h"

#include <cstdio>
#include <cstdlib>

#ifdef DEMO_WITH_WINDOW
#include <SDL.h>
#include <SDL_syswm.h>
#endif

namespace demo {

#ifdef DEMO_WITH_WINDOW

bool has_display() {
  const char* display = std::getenv("DISPLAY");
  return display && *display;
}

namespace {

// Puts a context of the renderer on a window of the toolkit.
bool create_context(orv::Renderer* renderer, SDL_Window* window) {
  SDL_SysWMinfo info;
  SDL_VERSION(&info.version);
  if (!SDL_GetWindowWMInfo(window, &info) || info.subsystem != SDL_SYSWM_X11) return false;
  orv::RenderWindowData data;
  data.app_instance = info.info.x11.display;
  data.native_window = reinterpret_cast<void*>(static_cast<std::uintptr_t>(info.info.x11.window));
  SDL_GetWindowSize(window, &data.width, &data.height);
  data.gl_major = 3;
  data.core_profile = true;
  std::snprintf(data.msaa, sizeof(data.msaa), "4X MSAA");
  orv::RenderWindow* render_window = renderer->render_window_alloc();
  if (renderer->render_window_create_context(render_window, &data, nullptr)) return true;
  renderer->render_window_free(render_window);
  return false;
}

// False when the window is to be closed.
bool handle_events(Orbit& orbit, bool* changed) {
  SDL_Event event;
  while (SDL_PollEvent(&event)) {
    if (event.type == SDL_QUIT) return false;
    if (event.type == SDL_KEYDOWN && event.key.keysym.sym == SDLK_ESCAPE) return false;
    *changed = true;
    if (event.type == SDL_MOUSEMOTION && (event.motion.state & SDL_BUTTON_LMASK)) {
      orbit.turn(static_cast<float>(-event.motion.xrel) * 0.4f,
                 static_cast<float>(event.motion.yrel) * 0.4f);
    }
    if (event.type == SDL_MOUSEWHEEL) orbit.zoom(event.wheel.y > 0 ? 0.9f : 1.1f);
  }
  return true;
}

void draw_until_closed(orv::Renderer* renderer, SDL_Window* window, DemoScene& scene) {
  orv::RenderWindow* render_window = renderer->get_current_render_window();
  renderer->render_window_set_swap_interval(render_window, true);
  orv::Camera camera;
  Orbit orbit;
  bool changed = true;
  while (handle_events(orbit, &changed)) {
    if (changed) {
      int width = 1;
      int height = 1;
      SDL_GetWindowSize(window, &width, &height);
      orbit.place(camera);
      scene.draw(renderer, camera, width, height);
      renderer->render_window_swap_buffers(render_window);
      changed = false;
    }
    SDL_WaitEventTimeout(nullptr, 50);
  }
}

bool draw_in(orv::Renderer* renderer, SDL_Window* window, const char* data_dir) {
  if (!create_context(renderer, window)) {
    std::fprintf(stderr, "no OpenGL context for the window\n");
    return false;
  }
  renderer->start();
  DemoScene scene;
  std::string reason;
  const bool created = scene.create(renderer, data_dir, &reason);
  if (created) {
    std::printf("drag to orbit, wheel to zoom, Escape to end\n");
    std::fflush(stdout);
    draw_until_closed(renderer, window, scene);
  } else {
    std::fprintf(stderr, "%s\n", reason.c_str());
  }
  scene.destroy(renderer);
  renderer->stop();
  renderer->render_window_free_all();
  return created;
}

}  // namespace

bool run_in_window(orv::Renderer* renderer, const char* data_dir) {
  SDL_SetHintWithPriority(SDL_HINT_VIDEODRIVER, "x11", SDL_HINT_DEFAULT);
  if (SDL_Init(SDL_INIT_VIDEO) != 0) {
    std::fprintf(stderr, "no window: %s\n", SDL_GetError());
    return false;
  }
  SDL_Window* window = SDL_CreateWindow("Orvane Core", SDL_WINDOWPOS_CENTERED,
                                        SDL_WINDOWPOS_CENTERED, 1280, 720, SDL_WINDOW_RESIZABLE);
  const bool done = window && draw_in(renderer, window, data_dir);
  if (window) SDL_DestroyWindow(window);
  SDL_Quit();
  return done;
}

#else

bool has_display() { return false; }

bool run_in_window(orv::Renderer*, const char*) { return false; }

#endif

}  // namespace demo
