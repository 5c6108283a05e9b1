// Clearing and reading back what is drawn to.
#include <climits>

#include "render/opengl/renderer_opengl.h"

namespace orv {

// ---- clears ----

void RendererOpenGL::clear_color_buffer() { clear_buffers(GL_COLOR_BUFFER_BIT); }

void RendererOpenGL::clear_color_buffer_rgba(float r, float g, float b, float a) {
  if (core_.glClearColor) core_.glClearColor(r, g, b, a);
  clear_buffers(GL_COLOR_BUFFER_BIT);
}

void RendererOpenGL::clear_depth_buffer(float depth) {
  if (core_.glClearDepth) core_.glClearDepth(static_cast<double>(depth));
  clear_buffers(GL_DEPTH_BUFFER_BIT);
}

void RendererOpenGL::clear_stencil_buffer(int stencil) {
  if (core_.glClearStencil) core_.glClearStencil(stencil);
  clear_buffers(GL_STENCIL_BUFFER_BIT);
}

void RendererOpenGL::clear_color_depth_buffers() {
  clear_buffers(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

void RendererOpenGL::clear_color_depth_buffers_rgba(float r, float g, float b, float a,
                                                    float depth) {
  if (core_.glClearColor) core_.glClearColor(r, g, b, a);
  if (core_.glClearDepth) core_.glClearDepth(static_cast<double>(depth));
  clear_buffers(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

void RendererOpenGL::clear_color_depth_stencil_buffers(float r, float g, float b, float a,
                                                       float depth, int stencil) {
  if (core_.glClearColor) core_.glClearColor(r, g, b, a);
  if (core_.glClearDepth) core_.glClearDepth(static_cast<double>(depth));
  if (core_.glClearStencil) core_.glClearStencil(stencil);
  clear_buffers(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
}

void RendererOpenGL::clear_buffers(unsigned int mask) {
  if (core_.glClear) core_.glClear(mask);
}

// ---- reading back ----

bool RendererOpenGL::get_back_buffer_size(unsigned int* size, unsigned int* width,
                                          unsigned int* height) {
  const int* viewport = get_viewport_array(0);
  if (lacks(viewport, "viewport")) return false;
  const auto w = static_cast<unsigned int>(viewport[2]);
  const auto h = static_cast<unsigned int>(viewport[3]);
  const unsigned long long bytes = 4ull * w * h;
  if (bytes > UINT_MAX) return false;
  if (size) *size = static_cast<unsigned int>(bytes);
  if (width) *width = w;
  if (height) *height = h;
  return true;
}

bool RendererOpenGL::read_back_buffer_rgba(unsigned char* pixels) {
  if (!pixels) return false;
  const int* viewport = get_viewport_array(0);
  if (lacks(viewport, "viewport")) return false;
  return read_back_buffer_rect_rgba(pixels, viewport[0], viewport[1], viewport[2], viewport[3]);
}

bool RendererOpenGL::read_back_buffer_rect_rgba(unsigned char* pixels, int x, int y, int width,
                                                int height) {
  if (!pixels || width <= 0 || height <= 0 || lacks(core_.glReadPixels, "glReadPixels"))
    return false;
  int alignment = 8;
  while (width % alignment != 0) alignment /= 2;
  core_.glPixelStorei(GL_PACK_ALIGNMENT, alignment);
  core_.glPixelStorei(GL_PACK_ROW_LENGTH, 0);
  core_.glPixelStorei(GL_PACK_SKIP_ROWS, 0);
  core_.glPixelStorei(GL_PACK_SKIP_PIXELS, 0);
  core_.glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
  // A framebuffer object has no back buffer.
  core_.glReadBuffer(read_framebuffer() == 0 ? GL_BACK : GL_COLOR_ATTACHMENT0);
  core_.glReadPixels(x, y, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
  core_.glPixelStorei(GL_PACK_ALIGNMENT, 1);
  return true;
}

unsigned int RendererOpenGL::read_framebuffer() {
  if (!gl_.glBindFramebuffer) return 0;
  int id = 0;
  // Contexts that cannot blit have one binding for drawing and reading.
  core_.glGetIntegerv(gl_.glBlitFramebuffer ? GL_READ_FRAMEBUFFER_BINDING : GL_FRAMEBUFFER_BINDING,
                      &id);
  return static_cast<unsigned int>(id);
}

}  // namespace orv
