/// @file
/// The functions of OpenGL that the renderer calls. There is no other way to OpenGL: what stands
/// in these two tables can be replaced whole.
#pragma once

#include <GL/gl.h>
#include <GL/glext.h>

#include <orv/fwd.h>

namespace orv {

/// Functions beyond OpenGL 1.1. A pointer is set exactly when the function works in the context
/// that the table was filled for.
struct GlTable {
#define ORV_GL(result, name, parameters, arguments, grants) \
  result(APIENTRY* name) parameters = nullptr;
#include "render/opengl/gl_entry_points.inc"
};

/// Functions of OpenGL 1.1. In core profile contexts those of the fixed pipeline are null.
struct GlCoreTable {
#define ORV_GL(result, name, parameters, arguments, grants) \
  result(APIENTRY* name) parameters = nullptr;
#include "render/opengl/gl_core_functions.inc"
};

}  // namespace orv
