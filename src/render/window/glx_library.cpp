#include "render/window/glx_library.h"

#include <orv/core/log_mgr.h>

#include <mutex>

namespace orv::detail {

const GlxLibrary* glx_library(bool loaded_only) {
  static std::mutex mutex;
  static GlxLibrary library;
  static bool filled = false;
  const std::lock_guard<std::mutex> lock(mutex);
  if (filled) return &library;
  void* x11 = open_library({"libX11.so.6"}, loaded_only);
  void* glx = x11 ? open_library({"libGLX.so.0", "libGL.so.1"}, loaded_only) : nullptr;
  filled = library.fill(x11, glx);
  if (!filled && !loaded_only) {
    LogMgr::get().tracef_debug("GLX: %s is missing or incomplete",
                               x11 ? "libGLX.so.0" : "libX11.so.6");
  }
  return filled ? &library : nullptr;
}

}  // namespace orv::detail
