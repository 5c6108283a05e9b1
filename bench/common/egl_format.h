/// @file
/// The format of the surfaces that the peers draw to: the one that the library asks for.
#pragma once

#include <EGL/egl.h>

namespace bench {

// clang-format off
inline constexpr EGLint OFFSCREEN_FORMAT[] = {
    EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
    EGL_RED_SIZE, 8, EGL_GREEN_SIZE, 8, EGL_BLUE_SIZE, 8, EGL_ALPHA_SIZE, 8,
    EGL_DEPTH_SIZE, 24, EGL_NONE};
// clang-format on

}  // namespace bench
