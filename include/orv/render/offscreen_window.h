/// @file
/// A window without a screen.
#pragma once

#include <orv/core/api.h>

namespace orv {

struct OffscreenWindowData;

/// A surface to draw to on machines with or without a screen, a GPU or a window system. Its handle
/// stands where a host window's would:
///
///     orv::OffscreenWindow offscreen(640, 480);
///     orv::RenderWindowData data;
///     data.native_window = offscreen.native_handle();
///     renderer->render_window_create_context(window, &data, nullptr);
///
/// The surface itself is made with the context, when the number of samples is known. Its size wins
/// over the one in RenderWindowData. Once the object is gone, operations on a window made of it
/// answer false; destroying its context still frees the context.
class ORV_API OffscreenWindow {
 public:
  /// Which device draws.
  enum Preference : int {
    ANY,       ///< a GPU where there is one, else software
    HARDWARE,  ///< a GPU or nothing
    SOFTWARE   ///< the software device
  };

  /// Sizes in pixels; below 1 they count as 1. Above 16384 there will be no context.
  OffscreenWindow(int width, int height, Preference preference = ANY);
  ~OffscreenWindow();
  OffscreenWindow(const OffscreenWindow&) = delete;
  OffscreenWindow& operator=(const OffscreenWindow&) = delete;

  /// What goes into RenderWindowData::native_window. Never null, never used twice.
  void* native_handle();

  /// @{
  /// Size in pixels, as made or as last resized.
  int get_width() const;
  int get_height() const;
  /// @}

  /// Changes the size. The contents are lost; the context stays, and stays current. False for sizes
  /// below 1 or above 16384 and where the driver cannot give such a surface; then nothing changes.
  bool resize(int width, int height);

 private:
  OffscreenWindowData* data_;
};

}  // namespace orv
