/// @file
/// Maps from the numbers and names of textures and render targets to those of OpenGL. Pure
/// functions.
#pragma once

#include <GL/gl.h>
#include <orv/gpu/gpu_enums.h>
#include <orv/image/pixel_format.h>

namespace orv::detail {

/// How pixels of a format travel to OpenGL and what it keeps of them.
struct GlPixelFormat {
  GLenum internal_format = 0;
  GLenum format = 0;
  GLenum type = 0;
  GLenum compressed = 0;  ///< internal format of the driver's choice of compression
  bool integer = false;   ///< unnormalised integers: render targets only

  bool is_valid() const { return format != 0; }
};

/// Bytes of a pixel on its way to OpenGL.
unsigned int gl_pixel_size(const GlPixelFormat& format);

/// Format of texture pixels; invalid for unknown and integer formats.
GlPixelFormat gl_texture_format(PIXEL_FORMAT format);
/// The same with the integer formats.
GlPixelFormat gl_target_format(PIXEL_FORMAT format);
/// Internal format of renderbuffers.
GLenum gl_renderbuffer_format(const GlPixelFormat& format);
/// Format of image units; GL_RGBA for those without one of their own.
GLenum gl_image_format(PIXEL_FORMAT format);

/// What the driver must be able to do for a compression.
enum class GlCompressionGroup { GENERIC, S3TC, RGTC };

/// Internal format by name of compression, its first 31 characters; 0 for an unknown name.
GLenum gl_compressed_format(const char* name, GlCompressionGroup* group);

GLenum gl_texture_target(TEXTURE_TYPE type);
/// Mode at the borders of a texture.
GLint gl_wrap(SAMPLER_ADDRESSING_MODE mode);
GLint gl_mag_filter(SAMPLER_FILTERING_MODE mode);
GLint gl_min_filter(SAMPLER_FILTERING_MODE mode, bool mipmapped);

/// Largest of 8, 4, 2 and 1 that divides a width: rows of tightly packed pixels start at multiples
/// of it.
GLint gl_row_alignment(unsigned int width);

/// Targets of textures, in the order of GlUnitBindings.
inline constexpr GLenum GL_TEXTURE_TARGETS[] = {0x0DE0 /* 1D */,
                                                0x0DE1 /* 2D */,
                                                0x8C1A /* 2D array */,
                                                0x9100 /* multisample */,
                                                0x806F /* 3D */,
                                                0x8513 /* cube map */,
                                                0x84F5 /* rectangle */};
inline constexpr int NUM_GL_TEXTURE_TARGETS = 7;
/// Place of a target in GL_TEXTURE_TARGETS, -1 for another one.
int gl_texture_target_index(GLenum target);

}  // namespace orv::detail
