#pragma once

#include <orv/fwd.h>

namespace demo {

/// Opens a window and draws the scene in it until it is closed or Escape is pressed. The mouse
/// orbits with the left button held, the wheel zooms. False when no window could be opened.
bool run_in_window(orv::Renderer* renderer, const char* data_dir);

}  // namespace demo
