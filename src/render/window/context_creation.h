/// @file
/// The steps to a context, whatever the window system.
#pragma once

#include "render/window/context.h"

namespace orv::detail {

struct CreatedContext {
  void* context = nullptr;    ///< null on failure; not bound
  bool core_profile = false;  ///< asked for, and granted
};

/// Gives the surface a pixel format and makes a context for it. data is what the host asked for; it
/// takes the major version that the driver gave. The context shares the objects of shared_context
/// when the driver can.
CreatedContext create_context(WindowSurface& surface, RenderWindowData* data,
                              WindowSurface* shared_surface, void* shared_context);

/// Replaces a context without objects, current on this thread or nowhere, by a like one that shares
/// the objects of source. Null when it cannot be replaced; it is then left as it was. The new
/// context is not bound, and what else was current on this thread still is.
void* recreate_shared(WindowSurface& surface, void* context, void* source);

}  // namespace orv::detail
