#pragma once

#include <orv/math/mat4.h>
#include <orv/render/renderer.h>

namespace orv {

/// Drawing over a scene: switches the depth test off, and at its end puts back what overlays
/// change. The depth test is on then, as at the renderer's start: no operation reads it.
class OverlayState {
 public:
  explicit OverlayState(Renderer& renderer)
      : renderer_(renderer),
        projection_(renderer.get_projection_matrix()),
        modelview_(renderer.get_modelview_matrix()),
        program_(renderer.get_current_gpu_program()) {
    has_viewport_ = renderer.get_viewport(&x_, &y_, &width_, &height_);
    renderer.enable_depth_test(false);
  }
  ~OverlayState() {
    renderer_.gpu_program_bind(program_);
    renderer_.set_projection_matrix(projection_, false);
    renderer_.set_modelview_matrix(modelview_, false);
    if (has_viewport_) renderer_.set_viewport(0, x_, y_, width_, height_);
    renderer_.enable_depth_test(true);
  }
  OverlayState(const OverlayState&) = delete;
  OverlayState& operator=(const OverlayState&) = delete;

 private:
  Renderer& renderer_;
  const mat4 projection_;
  const mat4 modelview_;
  GpuProgramData* const program_;
  int x_ = 0, y_ = 0, width_ = 0, height_ = 0;
  bool has_viewport_;
};

}  // namespace orv
