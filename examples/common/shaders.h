#pragma once

#include <string>

namespace examples {

/// The vertex shader of lit and flat surfaces.
extern const char* const surface_vertex;
/// Light from over the viewer's left shoulder, from the sky and from the ground.
extern const char* const lit_pixel;
/// A texture in the same light.
extern const char* const textured_pixel;
/// The vertex colour alone.
extern const char* const flat_pixel;
/// What is behind all: a square in clip space whose colour runs from bottom to top.
extern const char* const background_vertex;
extern const char* const background_pixel;

/// Both shaders in the form that GpuProgram loads, in GLSL 1.50 or else 1.20.
std::string sectioned_shader(const char* vertex, const char* pixel, bool modern);

}  // namespace examples
