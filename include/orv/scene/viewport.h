/// @file
/// A rectangle of a window.
#pragma once

#include <orv/core/api.h>

namespace orv {

/// A rectangle of a window in pixels, from its lower left corner.
class ORV_API Viewport {
 public:
  /// No size.
  Viewport() = default;

  /// @{
  /// Copies the four numbers.
  Viewport(const Viewport&) = default;
  Viewport& operator=(const Viewport&) = default;
  /// @}

  virtual ~Viewport();

  /// Sets all four numbers.
  void set(int new_x, int new_y, int new_width, int new_height);

  int x = 0;       ///< left edge
  int y = 0;       ///< lower edge
  int width = 0;   ///< 0 or less draws nothing
  int height = 0;  ///< 0 or less draws nothing
};

}  // namespace orv
