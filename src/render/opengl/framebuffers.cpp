// Framebuffers by their API ids, and copies between them.
#include <orv/gpu/gpu_render_target.h>

#include "render/opengl/framebuffer_binding.h"
#include "render/opengl/renderer_opengl.h"

namespace orv {

/// One end of a copy.
struct RendererOpenGL::BlitSide {
  unsigned int fbo = 0;
  unsigned int attachment = 0;  // of framebuffers that are not the window
  int rect[4] = {};             // x0, y0, x1, y1

  BlitSide at(const int* wanted) const {
    BlitSide side = *this;
    for (int i = 0; wanted && i < 4; ++i) side.rect[i] = wanted[i];
    return side;
  }
  BlitSide of(int wanted_attachment) const {
    BlitSide side = *this;
    side.attachment = static_cast<unsigned int>(wanted_attachment);
    return side;
  }
  bool has_attachment() const {
    return fbo == 0 || attachment < GpuRenderTargetDataGL::MAX_COLOR_TARGETS;
  }
};

// ---- binding ----

bool RendererOpenGL::framebuffer_bind(unsigned int id) {
  if (lacks(gl_.glBindFramebuffer, "glBindFramebuffer")) return false;
  gl_.glBindFramebuffer(GL_FRAMEBUFFER, id);
  return true;
}

unsigned int RendererOpenGL::framebuffer_get_current() {
  if (!gl_.glBindFramebuffer) return 0;
  return static_cast<unsigned int>(read_integer(GL_FRAMEBUFFER_BINDING));
}

// ---- ends of copies ----

RendererOpenGL::BlitSide RendererOpenGL::blit_side(const GpuRenderTarget* target) {
  if (!target) return blit_side_of_id(0);
  BlitSide side;
  side.fbo = target->gl.fbo;
  side.rect[2] = target->width;
  side.rect[3] = target->height;
  return side;
}

RendererOpenGL::BlitSide RendererOpenGL::blit_side_of_id(unsigned int id) {
  for (unsigned int i = 0; id != 0 && i < gpu_render_target_get_num(); ++i) {
    const GpuRenderTarget* target = gpu_render_target_get_by_index(i);
    if (target->gl.fbo == id) return blit_side(target);
  }
  BlitSide side;
  side.fbo = id;
  if (const int* viewport = get_viewport_array(0)) {
    side.rect[0] = viewport[0];
    side.rect[1] = viewport[1];
    side.rect[2] = viewport[0] + viewport[2];
    side.rect[3] = viewport[1] + viewport[3];
  }
  return side;
}

// ---- copies ----

bool RendererOpenGL::framebuffer_blit(GpuRenderTarget* source, GpuRenderTarget* target, bool color,
                                      bool depth, bool linear) {
  return framebuffer_blit_region(source, 0, target, 0, nullptr, nullptr, color, depth, linear);
}

bool RendererOpenGL::framebuffer_blit_to_current(GpuRenderTarget* source, bool color, bool depth,
                                                 bool linear) {
  if (source && source->gl.fbo == 0) return false;
  return blit(blit_side(source), blit_side_of_id(framebuffer_get_current()), color, depth, linear);
}

bool RendererOpenGL::framebuffer_blit_region(GpuRenderTarget* source, int source_attachment,
                                             GpuRenderTarget* target, int target_attachment,
                                             const int source_rect[4], const int target_rect[4],
                                             bool color, bool depth, bool linear) {
  // A target without a framebuffer must not pass for the window.
  if ((source && source->gl.fbo == 0) || (target && target->gl.fbo == 0)) return false;
  return blit(blit_side(source).of(source_attachment).at(source_rect),
              blit_side(target).of(target_attachment).at(target_rect), color, depth, linear);
}

bool RendererOpenGL::framebuffer_blit_region_v2(unsigned int source, int source_attachment,
                                                unsigned int target, int target_attachment,
                                                const int source_rect[4], const int target_rect[4],
                                                bool color, bool depth, bool linear) {
  return blit(blit_side_of_id(source).of(source_attachment).at(source_rect),
              blit_side_of_id(target).of(target_attachment).at(target_rect), color, depth, linear);
}

bool RendererOpenGL::framebuffer_blit_rect_a(GpuRenderTarget* source, GpuRenderTarget* target,
                                             const int source_rect[4], const int target_rect[4]) {
  return framebuffer_blit_region(source, 0, target, 0, source_rect, target_rect, true, false,
                                 false);
}

bool RendererOpenGL::framebuffer_blit_rect_b(GpuRenderTarget* source, int source_attachment,
                                             GpuRenderTarget* target, int target_attachment) {
  return framebuffer_blit_region(source, source_attachment, target, target_attachment, nullptr,
                                 nullptr, true, false, false);
}

bool RendererOpenGL::framebuffer_blit_rect_c(GpuRenderTarget* source, const int rect[4]) {
  return framebuffer_blit_region(source, 0, nullptr, 0, rect, rect, true, false, false);
}

bool RendererOpenGL::blit(const BlitSide& source, const BlitSide& target, bool color, bool depth,
                          bool linear) {
  if (lacks(gl_.glBlitFramebuffer, "glBlitFramebuffer") ||
      lacks(gl_.glBindFramebuffer, "glBindFramebuffer") || source.fbo == target.fbo)
    return false;
  if (color && (!source.has_attachment() || !target.has_attachment())) return false;
  const FramebufferBinding binding(this, target.fbo, source.fbo);
  if (color) blit_color(source, target, linear);
  if (!depth) return true;
  // Depth is never blended.
  const int* s = source.rect;
  const int* t = target.rect;
  gl_.glBlitFramebuffer(s[0], s[1], s[2], s[3], t[0], t[1], t[2], t[3], GL_DEPTH_BUFFER_BIT,
                        GL_NEAREST);
  return true;
}

void RendererOpenGL::blit_color(const BlitSide& source, const BlitSide& target, bool linear) {
  constexpr unsigned int MAX_BUFFERS = GpuRenderTargetDataGL::MAX_COLOR_TARGETS;
  // Which buffers are drawn to and read is part of a framebuffer, not of the copy.
  GLenum draw_buffers[MAX_BUFFERS] = {};
  GLsizei num_draw_buffers = 0;
  const int limit = read_integer(GL_MAX_DRAW_BUFFERS);
  const int old_read_buffer = source.fbo != 0 ? read_integer(GL_READ_BUFFER) : 0;
  if (target.fbo != 0) {
    for (unsigned int i = 0; i < MAX_BUFFERS && static_cast<int>(i) < limit; ++i) {
      draw_buffers[i] = static_cast<GLenum>(read_integer(GL_DRAW_BUFFER0 + i));
      ++num_draw_buffers;
    }
    core_.glDrawBuffer(GL_COLOR_ATTACHMENT0 + target.attachment);
  }
  if (source.fbo != 0) core_.glReadBuffer(GL_COLOR_ATTACHMENT0 + source.attachment);
  const int* s = source.rect;
  const int* t = target.rect;
  gl_.glBlitFramebuffer(s[0], s[1], s[2], s[3], t[0], t[1], t[2], t[3], GL_COLOR_BUFFER_BIT,
                        static_cast<GLenum>(linear ? GL_LINEAR : GL_NEAREST));
  if (source.fbo != 0) core_.glReadBuffer(static_cast<GLenum>(old_read_buffer));
  if (num_draw_buffers > 0 && gl_.glDrawBuffers) gl_.glDrawBuffers(num_draw_buffers, draw_buffers);
}

}  // namespace orv
