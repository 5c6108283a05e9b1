#include "common/desktop_window.h"

#include <orv/orv.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#ifdef ORV_APP_WITH_WINDOW
#include <SDL.h>
#include <SDL_syswm.h>
#include <X11/Xlib.h>
#endif

namespace orv_app {

#ifdef ORV_APP_WITH_WINDOW

bool has_display() {
  const char* display = std::getenv("DISPLAY");
  return display && *display;
}

namespace {

SDL_Window* as_sdl(void* window) { return static_cast<SDL_Window*>(window); }

struct Size {
  int width;
  int height;
};

Size size_in_pixels(SDL_Window* window) {
  Size size{1, 1};
#if SDL_VERSION_ATLEAST(2, 26, 0)
  SDL_GetWindowSizeInPixels(window, &size.width, &size.height);
#else
  SDL_GetWindowSize(window, &size.width, &size.height);
#endif
  return {std::max(size.width, 1), std::max(size.height, 1)};
}

// The desktop's scale, in quarters, by the setting that desktops make for programs on X11. The
// millimetres that monitors tell are no setting.
float screen_scale() {
  constexpr float plain_dpi = 96.0f;
  Display* display = XOpenDisplay(nullptr);
  if (!display) return 1.0f;
  const char* setting = XGetDefault(display, "Xft", "dpi");
  const float dpi = setting ? std::strtof(setting, nullptr) : plain_dpi;
  XCloseDisplay(display);
  if (!(dpi > plain_dpi)) return 1.0f;
  return std::min(std::floor(dpi / plain_dpi * 4.0f) / 4.0f, 4.0f);
}

Size fit_screen(Size wished) {
  SDL_Rect room;
  if (SDL_GetDisplayUsableBounds(0, &room) != 0 || room.w < 1 || room.h < 1) return wished;
  // Both sides shrink alike: what is in the picture stays the same.
  const float share = std::min({1.0f, static_cast<float>(room.w) / static_cast<float>(wished.width),
                                static_cast<float>(room.h) / static_cast<float>(wished.height)});
  return {std::max(1, static_cast<int>(static_cast<float>(wished.width) * share)),
          std::max(1, static_cast<int>(static_cast<float>(wished.height) * share))};
}

void fill_data(orv::RenderWindowData& data, const DesktopWindow::Settings& settings, int msaa) {
  if (settings.core) {
    data.gl_major = 3;
    data.core_profile = true;
  }
  if (msaa > 1) std::snprintf(data.msaa, sizeof(data.msaa), "%dX MSAA", msaa);
}

// A window of the right visual is drawn to directly.
void wish_visual(const DesktopWindow::Settings& settings) {
  orv::RenderWindowData data;
  fill_data(data, settings, settings.msaa);
  const unsigned long id = orv::RenderWindow::find_x11_visual_id(data);
  if (id == 0) return;
  SDL_SetHint(SDL_HINT_VIDEO_X11_WINDOW_VISUALID, std::to_string(id).c_str());
}

bool is_typed(const SDL_KeyboardEvent& key) {
  return key.repeat == 0 && (key.keysym.mod & (KMOD_CTRL | KMOD_ALT | KMOD_GUI)) == 0;
}

bool translate(const SDL_Event& from, SDL_Window* window, DesktopEvent* to) {
  *to = DesktopEvent();
  switch (from.type) {
    case SDL_QUIT:
      to->kind = DesktopEvent::CLOSE;
      return true;
    case SDL_KEYDOWN:
      if (!is_typed(from.key)) return false;
      to->kind = DesktopEvent::KEY;
      to->key = from.key.keysym.sym;
      return true;
    case SDL_MOUSEMOTION: {
      if (!(from.motion.state & SDL_BUTTON_LMASK)) return false;
      int height = 1;
      SDL_GetWindowSize(window, nullptr, &height);
      to->kind = DesktopEvent::DRAG;
      to->x = static_cast<float>(from.motion.xrel) / static_cast<float>(std::max(height, 1));
      to->y = static_cast<float>(from.motion.yrel) / static_cast<float>(std::max(height, 1));
      return true;
    }
    case SDL_MOUSEWHEEL:
      to->kind = DesktopEvent::WHEEL;
      to->y = static_cast<float>(from.wheel.y);
      return true;
    case SDL_WINDOWEVENT:
      return from.window.event == SDL_WINDOWEVENT_EXPOSED ||
             from.window.event == SDL_WINDOWEVENT_SIZE_CHANGED;
    default:
      return false;
  }
}

}  // namespace

// ---- opening and closing -----------------------------------------------------------------------

bool DesktopWindow::open(orv::Renderer* renderer, const Settings& settings, std::string* reason) {
  close();
  renderer_ = renderer;
  if (create(settings, reason)) return true;
  close();
  return false;
}

bool DesktopWindow::create(const Settings& settings, std::string* reason) {
  SDL_SetHintWithPriority(SDL_HINT_VIDEODRIVER, "x11", SDL_HINT_DEFAULT);
  if (SDL_Init(SDL_INIT_VIDEO) != 0) {
    *reason = std::string("no window: ") + SDL_GetError();
    return false;
  }
  initialized_ = true;
  scale_ = screen_scale();
  wish_visual(settings);
  const auto scaled = [this](int size) {
    return std::max(1, static_cast<int>(std::lround(static_cast<float>(size) * scale_)));
  };
  const Size size = fit_screen({scaled(settings.width), scaled(settings.height)});
  window_ =
      SDL_CreateWindow(settings.title.c_str(), SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED,
                       size.width, size.height, SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI);
  if (!window_) {
    *reason = std::string("no window: ") + SDL_GetError();
    return false;
  }
  if ((settings.msaa > 1 && create_context(settings, settings.msaa)) ||
      create_context(settings, 0)) {
    if (!renderer_->start()) {
      *reason = "the window's OpenGL cannot be used";
      return false;
    }
    renderer_->render_window_set_swap_interval(render_window_, true);
    return true;
  }
  *reason = "no OpenGL context for the window";
  return false;
}

bool DesktopWindow::create_context(const Settings& settings, int msaa) {
  SDL_SysWMinfo info;
  SDL_VERSION(&info.version);
  if (!SDL_GetWindowWMInfo(as_sdl(window_), &info) || info.subsystem != SDL_SYSWM_X11) return false;
  orv::RenderWindowData data;
  fill_data(data, settings, msaa);
  data.app_instance = info.info.x11.display;
  data.native_window = reinterpret_cast<void*>(static_cast<std::uintptr_t>(info.info.x11.window));
  data.width = get_width();
  data.height = get_height();
  render_window_ = renderer_->render_window_alloc();
  if (renderer_->render_window_create_context(render_window_, &data, nullptr)) return true;
  renderer_->render_window_free(render_window_);
  render_window_ = nullptr;
  return false;
}

void DesktopWindow::close() {
  if (render_window_) {
    renderer_->stop();
    renderer_->render_window_free_all();
  }
  render_window_ = nullptr;
  if (window_) SDL_DestroyWindow(as_sdl(window_));
  window_ = nullptr;
  if (initialized_) SDL_Quit();
  initialized_ = false;
}

// ---- life --------------------------------------------------------------------------------------

bool DesktopWindow::next_event(DesktopEvent* event) {
  SDL_Event each;
  while (SDL_PollEvent(&each)) {
    if (translate(each, as_sdl(window_), event)) return true;
  }
  return false;
}

void DesktopWindow::wait(int milliseconds) { SDL_WaitEventTimeout(nullptr, milliseconds); }

void DesktopWindow::set_title(const std::string& title) {
  SDL_SetWindowTitle(as_sdl(window_), title.c_str());
}

void DesktopWindow::swap() {
  render_window_->update_size(get_width(), get_height());
  renderer_->render_window_swap_buffers(render_window_);
}

int DesktopWindow::get_width() const { return size_in_pixels(as_sdl(window_)).width; }

int DesktopWindow::get_height() const { return size_in_pixels(as_sdl(window_)).height; }

#else

bool has_display() { return false; }

bool DesktopWindow::open(orv::Renderer*, const Settings&, std::string* reason) {
  *reason = "no window: built without SDL2";
  return false;
}

void DesktopWindow::close() {}
bool DesktopWindow::next_event(DesktopEvent*) { return false; }
void DesktopWindow::wait(int) {}
void DesktopWindow::set_title(const std::string&) {}
void DesktopWindow::swap() {}
int DesktopWindow::get_width() const { return 1; }
int DesktopWindow::get_height() const { return 1; }

#endif

}  // namespace orv_app
