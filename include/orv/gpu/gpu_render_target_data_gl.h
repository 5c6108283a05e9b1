/// @file
/// OpenGL side of a render target.
#pragma once

#include <orv/core/api.h>

namespace orv {

/// OpenGL objects and settings of a GpuRenderTarget, filled by the OpenGL renderer. The numbers are
/// OpenGL constants.
class ORV_API GpuRenderTargetDataGL {
 public:
  static constexpr unsigned int MAX_COLOR_TARGETS = 8;  ///< entries of the arrays below

  unsigned int fbo = 0;                                      ///< framebuffer object, 0 without one
  unsigned int target = 0x0DE1;                              ///< GL_TEXTURE_2D
  bool is_rectangle = false;                                 ///< attachments are rectangle textures
  bool is_cube = false;                                      ///< attachments are cube maps
  unsigned int num_color_renderbuffers = 0;                  ///< entries in use
  unsigned int color_renderbuffers[MAX_COLOR_TARGETS] = {};  ///< 0 where there is none
  unsigned int depth_renderbuffer = 0;                       ///< 0 without one
  unsigned int color_textures[MAX_COLOR_TARGETS] = {};       ///< 0 where there is none
  unsigned int color_filter = 0x2600;                        ///< GL_NEAREST
  unsigned int color_wrap = 0x2900;                          ///< GL_CLAMP
  unsigned int color_internal_format = 0x1908;               ///< GL_RGBA
  unsigned int color_format = 0x1908;                        ///< GL_RGBA
  unsigned int color_type = 0x1401;                          ///< GL_UNSIGNED_BYTE
  unsigned int depth_internal_format = 0x81A6;               ///< GL_DEPTH_COMPONENT24
  unsigned int depth_texture = 0;                            ///< 0 without one
  unsigned int depth_filter = 0x2600;                        ///< GL_NEAREST
  unsigned int depth_wrap = 0x2900;                          ///< GL_CLAMP
  unsigned int color_cube_texture = 0;                       ///< 0 without one
  unsigned int depth_cube_texture = 0;                       ///< 0 without one
};

}  // namespace orv
