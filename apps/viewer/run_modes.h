#pragma once

#include <orv/fwd.h>

#include <string>

#include "viewer/viewer.h"

namespace viewer {

/// Draws off screen and writes the picture that was asked for. False with a reason.
bool run_headless(orv::Renderer* renderer, Viewer& viewer, const Options& options,
                  std::string* reason);

/// Shows the model in a window until the user ends it. False with a reason.
bool run_in_window(orv::Renderer* renderer, Viewer& viewer, const Options& options,
                   std::string* reason);

}  // namespace viewer
