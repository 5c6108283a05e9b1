/// @file
/// Direct3D 12 side of a render target.
#pragma once

#include <orv/core/api.h>
#include <orv/math/vec4.h>

namespace orv {

/// Handles and options of a GpuRenderTarget, filled and read by a Direct3D 12 renderer.
class ORV_API GpuRenderTargetDataD3D12 {
 public:
  static constexpr unsigned int MAX_COLOR_TARGETS = 8;  ///< entries of the arrays below

  unsigned long long color_handles[MAX_COLOR_TARGETS] = {};  ///< of the colour attachments
  void* resources[MAX_COLOR_TARGETS] = {};                   ///< of the colour attachments
  unsigned long long depth_handle = 0;                       ///< of the depth attachment
  vec4 optimized_clear_color = vec4(0, 0, 0, 1);  ///< colour that clears are fastest with
  int texture_update_options[2] = {};             ///< the renderer's own
};

}  // namespace orv
