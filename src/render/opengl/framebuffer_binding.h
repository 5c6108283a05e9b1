/// @file
/// Binding of framebuffers for the length of a block.
#pragma once

#include "render/opengl/renderer_opengl.h"

namespace orv {

/// Binds framebuffers for drawing and reading for as long as it lives, and then those that were
/// bound before.
class RendererOpenGL::FramebufferBinding {
 public:
  FramebufferBinding(RendererOpenGL* renderer, unsigned int draw, unsigned int read)
      : renderer_(renderer),
        old_draw_(renderer->framebuffer_get_current()),
        old_read_(renderer->read_framebuffer()) {
    bind(draw, read, old_draw_, old_read_);
    draw_ = draw;
    read_ = read;
  }
  ~FramebufferBinding() { bind(old_draw_, old_read_, draw_, read_); }
  FramebufferBinding(const FramebufferBinding&) = delete;
  FramebufferBinding& operator=(const FramebufferBinding&) = delete;

 private:
  void bind(unsigned int draw, unsigned int read, unsigned int bound_draw,
            unsigned int bound_read) {
    const GlTable& gl = renderer_->gl_;
    // Contexts that cannot blit have one binding for both.
    if (!gl.glBlitFramebuffer) {
      if (draw != bound_draw) gl.glBindFramebuffer(GL_FRAMEBUFFER, draw);
      return;
    }
    if (draw != bound_draw) gl.glBindFramebuffer(GL_DRAW_FRAMEBUFFER, draw);
    if (read != bound_read) gl.glBindFramebuffer(GL_READ_FRAMEBUFFER, read);
  }

  RendererOpenGL* renderer_;
  unsigned int old_draw_;
  unsigned int old_read_;
  unsigned int draw_ = 0;
  unsigned int read_ = 0;
};

}  // namespace orv
