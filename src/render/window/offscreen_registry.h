/// @file
/// The living offscreen windows, as EGL sees them.
#pragma once

#include <cstdint>
#include <mutex>
#include <unordered_map>

#include <orv/render/offscreen_window.h>

namespace orv {

/// What an OffscreenWindow holds. The surface is made with the first context.
struct OffscreenWindowData {
  std::uintptr_t id = 0;  ///< also the handle; never used twice
  int width = 1;
  int height = 1;
  OffscreenWindow::Preference preference = OffscreenWindow::ANY;
  void* display = nullptr;  ///< of EGL, with the surface
  void* config = nullptr;
  void* surface = nullptr;
  int num_users = 0;  ///< windows that hold the surface
};

namespace detail {

constexpr int MAX_OFFSCREEN_SIZE = 16384;

/// Finds offscreen windows by handle. All access to their data holds the lock.
class OffscreenRegistry {
 public:
  static OffscreenRegistry& get();

  std::recursive_mutex& mutex() { return mutex_; }
  /// Gives the data an id.
  void add(OffscreenWindowData* data);
  void remove(const OffscreenWindowData* data);
  /// Null for a handle that is none.
  OffscreenWindowData* find(std::uintptr_t id) const;

 private:
  std::recursive_mutex mutex_;
  std::unordered_map<std::uintptr_t, OffscreenWindowData*> living_;
  std::uintptr_t last_id_ = 0;
};

/// Frees the surface of an offscreen window. Where it is current it stays until it no longer is.
void destroy_offscreen_surface(OffscreenWindowData* data);
/// Gives an offscreen window a surface of another size, current wherever the old one was current on
/// this thread. False when there can be none.
bool resize_offscreen_surface(OffscreenWindowData* data, int width, int height);

}  // namespace detail
}  // namespace orv
