#pragma once

#include <string>

namespace viewer {

/// Sources of the GPU program that draws models, for the oldest OpenGL that has the profile: 2.1
/// for compatibility, 3.2 for core.
std::string surface_vertex_shader(bool core);
std::string surface_pixel_shader(bool core);

}  // namespace viewer
