/// @file
/// What a host asks of a window's context.
#pragma once

#include <orv/core/api.h>

namespace orv {

/// The native window and the wanted pixels and version, as Renderer::render_window_create_context
/// takes them.
///
/// On X11 `app_instance` is the `Display*` and `native_window` the id of the X11 window, cast to a
/// pointer through `uintptr_t`. Off screen `app_instance` stays null and `native_window` is
/// OffscreenWindow::native_handle().
class ORV_API RenderWindowData {
 public:
  void* app_instance = nullptr;   ///< X11: the `Display*`; null off screen
  void* parent = nullptr;         ///< for the host's own use
  void* native_window = nullptr;  ///< must be set
  int width = 0;                  ///< pixels
  int height = 0;                 ///< pixels
  int gl_major = 2;               ///< above 2 asks for a context with attributes
  int gl_minor = 1;               ///< not read
  bool core_profile = false;      ///< ask for a core profile, where `gl_major` is above 2
  bool debug_context =
      false;            ///< ask for a context that tells of errors, where `gl_major` is above 2
  int fullscreen = 0;   ///< for the host's own use
  int color_bits = 32;  ///< what is missing to 32 is asked for as alpha, 8 bits at most
  int reserved = 0;     ///< not used
  int depth_bits = 32;  ///< above 24 acts as 24
  bool use_existing_pixel_format = false;  ///< take the window's own format, whatever it is
  char msaa[64] = "Off";  ///< "Off", "2X MSAA", "4X MSAA" or "8X MSAA"; anything else means off
};

}  // namespace orv
