/// @file
/// Record of a font of the window system.
#pragma once

#include <orv/core/api.h>

namespace orv {

/// What a renderer needs to draw text with a font of the window system. A plain record: the host
/// fills the name and the height, the renderer fills the rest.
class ORV_API FontData {
 public:
  /// Family name, zero terminated. An empty name stands for "Arial".
  char font_name[128] = "Arial";
  /// Height of a character cell in pixels.
  int height = 14;

  /// @{
  /// Rectangle in which the text is placed, in pixels.
  int viewport_x = 0;
  int viewport_y = 0;
  int viewport_width = 0;
  int viewport_height = 0;
  /// @}

  /// Window in which the font is used, as its window system names it. Not owned.
  void* window_handle = nullptr;
  /// Plugin id of the renderer that made the font, 0 for none.
  int renderer_id = 0;
  /// First of the 256 display lists, one per character code. 0 while the font is not created;
  /// owned by the renderer, freed by Renderer::bitmap_font_destroy.
  unsigned int list_base = 0;
};

}  // namespace orv
