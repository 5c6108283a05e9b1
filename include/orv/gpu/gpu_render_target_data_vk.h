/// @file
/// Vulkan side of a render target.
#pragma once

#include <orv/core/api.h>

namespace orv {

/// One word of a GpuRenderTarget for a Vulkan renderer.
class ORV_API GpuRenderTargetDataVK {
 public:
  unsigned long long word = 0;  ///< the renderer's own
};

}  // namespace orv
