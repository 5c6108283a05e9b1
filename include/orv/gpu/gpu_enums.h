/// @file
/// Numbers that describe GPU programs, buffers and textures.
#pragma once

namespace orv {

/// Stage of a GPU program; indexes the per-stage arrays of GpuProgramData.
enum GPU_SHADER_TYPE : int {
  GPU_SHADER_VERTEX = 0,        ///< once for each vertex
  GPU_SHADER_PIXEL = 1,         ///< once for each pixel
  GPU_SHADER_GEOMETRY = 2,      ///< once for each primitive
  GPU_SHADER_TESS_CONTROL = 3,  ///< how finely a patch is cut
  GPU_SHADER_TESS_EVAL = 4,     ///< vertices of a cut patch
  GPU_SHADER_COMPUTE = 5,       ///< without drawing
  GPU_SHADER_D3D_EFFECT = 7     ///< effect file of a Direct3D back end
};

/// Type of a uniform value kept in a GpuProgramUniform.
enum GPU_SHADER_UNIFORM : int {
  GPU_SHADER_UNIFORM_1i = 0,
  GPU_SHADER_UNIFORM_2i = 1,
  GPU_SHADER_UNIFORM_3i = 2,
  GPU_SHADER_UNIFORM_4i = 3,
  GPU_SHADER_UNIFORM_1iv = 4,
  GPU_SHADER_UNIFORM_2iv = 5,
  GPU_SHADER_UNIFORM_3iv = 6,
  GPU_SHADER_UNIFORM_4iv = 7,
  GPU_SHADER_UNIFORM_1f = 8,
  GPU_SHADER_UNIFORM_2f = 9,
  GPU_SHADER_UNIFORM_3f = 10,
  GPU_SHADER_UNIFORM_4f = 11,
  GPU_SHADER_UNIFORM_1fv = 12,
  GPU_SHADER_UNIFORM_2fv = 13,
  GPU_SHADER_UNIFORM_3fv = 14,
  GPU_SHADER_UNIFORM_4fv = 15,
  GPU_SHADER_UNIFORM_1d = 16,
  GPU_SHADER_UNIFORM_2d = 17,
  GPU_SHADER_UNIFORM_3d = 18,
  GPU_SHADER_UNIFORM_4d = 19,
  GPU_SHADER_UNIFORM_1dv = 20,
  GPU_SHADER_UNIFORM_2dv = 21,
  GPU_SHADER_UNIFORM_3dv = 22,
  GPU_SHADER_UNIFORM_4dv = 23,
  GPU_SHADER_UNIFORM_3x3f = 24,
  GPU_SHADER_UNIFORM_4x4f = 25,
  GPU_SHADER_UNIFORM_3x3d = 26,
  GPU_SHADER_UNIFORM_4x4d = 27,
  GPU_SHADER_UNIFORM_1ui = 28,
  GPU_SHADER_UNIFORM_2ui = 29,
  GPU_SHADER_UNIFORM_3ui = 30,
  GPU_SHADER_UNIFORM_4ui = 31,
  GPU_SHADER_UNIFORM_1ui64 = 32,
  GPU_SHADER_UNIFORM_1ui64v = 33,
  GPU_SHADER_UNIFORM_subroutine = 37
};

/// What a GPU buffer is bound as.
enum GPU_BUFFER_TYPE : int {
  GPU_BUFFER_ARRAY = 0,           ///< vertices
  GPU_BUFFER_ELEMENT_ARRAY = 1,   ///< indices
  GPU_BUFFER_PIXEL_UNPACK = 2,    ///< pixels on their way to a texture
  GPU_BUFFER_UNIFORM = 3,         ///< uniform blocks
  GPU_BUFFER_SHADER_STORAGE = 4,  ///< storage blocks
  GPU_BUFFER_ATOMIC_COUNTER = 5,  ///< counters of shaders
  GPU_BUFFER_TEXTURE = 6          ///< texels of a buffer texture
};

/// How a buffer will be used. Any other value means static drawing.
enum BUFFER_OBJECT_USAGE : int {
  BUFFER_USAGE_STATIC_DRAW = 1,   ///< written once by the host, drawn often
  BUFFER_USAGE_STATIC_READ = 2,   ///< written once by the GPU, read by the host
  BUFFER_USAGE_STATIC_COPY = 3,   ///< written once by the GPU, used there
  BUFFER_USAGE_DYNAMIC_DRAW = 4,  ///< written often by the host, drawn often
  BUFFER_USAGE_DYNAMIC_READ = 5,  ///< written often by the GPU, read by the host
  BUFFER_USAGE_DYNAMIC_COPY = 6,  ///< written often by the GPU, used there
  BUFFER_USAGE_STREAM_DRAW = 7,   ///< written by the host for each use
  BUFFER_USAGE_STREAM_READ = 8,   ///< written by the GPU for each reading
  BUFFER_USAGE_STREAM_COPY = 9    ///< written by the GPU for each use there
};

/// Access wanted of mapped memory or of an image. Any other value means read and write.
enum DATA_ACCESS_TYPE : int {
  DATA_ACCESS_WRITE_ONLY = 1,  ///< old contents are not read
  DATA_ACCESS_READ_ONLY = 2,   ///< nothing is written
  DATA_ACCESS_READ_WRITE = 3   ///< both
};

/// Kind of a texture. Any other value is taken for TEXTURE_2D.
enum TEXTURE_TYPE : int {
  TEXTURE_1D = 1,              ///< a row
  TEXTURE_2D = 2,              ///< a picture
  TEXTURE_3D = 3,              ///< a block
  TEXTURE_CUBE = 4,            ///< six square pictures
  TEXTURE_2D_MULTISAMPLE = 5,  ///< several samples a pixel
  TEXTURE_RECTANGLE = 6,       ///< a picture with coordinates in pixels
  TEXTURE_2D_ARRAY = 7         ///< pictures of one size
};

/// Face of a cube map, in the order of the OpenGL face constants.
enum CUBEMAP_FACE : int {
  CUBEMAP_FACE_POSITIVE_X = 0,  ///< right
  CUBEMAP_FACE_NEGATIVE_X = 1,  ///< left
  CUBEMAP_FACE_POSITIVE_Y = 2,  ///< top
  CUBEMAP_FACE_NEGATIVE_Y = 3,  ///< bottom
  CUBEMAP_FACE_POSITIVE_Z = 4,  ///< along +Z
  CUBEMAP_FACE_NEGATIVE_Z = 5   ///< along -Z
};

/// How a texture is read between its pixels. Trilinear reads between its levels too.
enum SAMPLER_FILTERING_MODE : int {
  SAMPLER_FILTERING_NEAREST = 1,   ///< the closest texel
  SAMPLER_FILTERING_LINEAR = 2,    ///< a mix of the closest ones
  SAMPLER_FILTERING_TRILINEAR = 3  ///< a mix of two mipmap levels, too
};

/// What a texture gives outside 0 to 1.
enum SAMPLER_ADDRESSING_MODE : int {
  SAMPLER_ADDRESSING_WRAP = 1,   ///< the picture again
  SAMPLER_ADDRESSING_CLAMP = 2,  ///< its edge
  SAMPLER_ADDRESSING_MIRROR = 3  ///< the picture again, mirrored every other time
};

}  // namespace orv
