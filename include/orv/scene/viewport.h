/// @file
/// A rectangle of a window.
#pragma once

#include <orv/core/api.h>

namespace orv {

/// A rectangle of a window in pixels, from its lower left corner.
class ORV_API Viewport {
 public:
  Viewport() = default;
  Viewport(const Viewport&) = default;
  Viewport& operator=(const Viewport&) = default;
  virtual ~Viewport();

  void set(int new_x, int new_y, int new_width, int new_height);

  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

}  // namespace orv
