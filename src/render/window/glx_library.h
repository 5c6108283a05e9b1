/// @file
/// The functions of Xlib and GLX, from libraries that are loaded when first needed.
#pragma once

#include "render/window/dynamic_library.h"

#include <GL/glx.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace orv::detail {

// clang-format off
#define ORV_X11_FUNCTIONS(F) \
  F(XSync)                   \
  F(XFree)                   \
  F(XSetErrorHandler)        \
  F(XOpenDisplay)            \
  F(XCloseDisplay)           \
  F(XGetWindowAttributes)    \
  F(XGetGeometry)            \
  F(XCreateColormap)         \
  F(XFreeColormap)           \
  F(XCreateWindow)           \
  F(XDestroyWindow)          \
  F(XMapWindow)              \
  F(XResizeWindow)           \
  F(XVisualIDFromVisual)     \
  F(XScreenNumberOfScreen)

#define ORV_GLX_FUNCTIONS(F)   \
  F(glXQueryExtension)         \
  F(glXGetFBConfigs)           \
  F(glXGetFBConfigAttrib)      \
  F(glXGetVisualFromFBConfig)  \
  F(glXCreateNewContext)       \
  F(glXDestroyContext)         \
  F(glXMakeContextCurrent)     \
  F(glXSwapBuffers)            \
  F(glXGetCurrentContext)      \
  F(glXGetCurrentDisplay)      \
  F(glXGetCurrentDrawable)     \
  F(glXGetCurrentReadDrawable) \
  F(glXQueryExtensionsString)  \
  F(glXQueryDrawable)          \
  F(glXGetProcAddressARB)
// clang-format on

struct GlxLibrary {
#define ORV_MEMBER(name) decltype(&::name) name = nullptr;
  ORV_X11_FUNCTIONS(ORV_MEMBER)
  ORV_GLX_FUNCTIONS(ORV_MEMBER)
#undef ORV_MEMBER

  bool fill(void* x11, void* glx) {
    bool complete = x11 && glx;
#define ORV_FIND(name) complete = complete && find_function(x11, #name, &name);
    ORV_X11_FUNCTIONS(ORV_FIND)
#undef ORV_FIND
#define ORV_FIND(name) complete = complete && find_function(glx, #name, &name);
    ORV_GLX_FUNCTIONS(ORV_FIND)
#undef ORV_FIND
    return complete;
  }

  template <class Function>
  Function fetch(const char* name) const {
    return reinterpret_cast<Function>(glXGetProcAddressARB(reinterpret_cast<const GLubyte*>(name)));
  }
};

/// Null when the machine has no X11 or GLX. With loaded_only, nothing is loaded for the question.
const GlxLibrary* glx_library(bool loaded_only = false);

}  // namespace orv::detail
