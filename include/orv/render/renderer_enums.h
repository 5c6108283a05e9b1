/// @file
/// Names for the numbers that renderer operations take.
#pragma once

namespace orv {

/// Graphics API behind a Renderer.
enum ORV_API3D : int {
  ORV_API3D_NONE = 0,    ///< none
  ORV_API3D_OPENGL = 1,  ///< OpenGL
  ORV_API3D_VULKAN = 5,  ///< Vulkan
  ORV_API3D_D3D12 = 12   ///< Direct3D 12
};

/// Factors of Renderer::set_blend_func. Any other value acts as RENDERER_BLEND_FACTOR_ONE.
enum RENDERER_BLEND_FACTOR : int {
  RENDERER_BLEND_FACTOR_ZERO = 0,                 ///< 0
  RENDERER_BLEND_FACTOR_ONE = 1,                  ///< 1
  RENDERER_BLEND_FACTOR_SRC_ALPHA = 2,            ///< alpha of what is drawn
  RENDERER_BLEND_FACTOR_ONE_MINUS_DST_ALPHA = 3,  ///< 1 less alpha of what is there
  RENDERER_BLEND_FACTOR_ONE_MINUS_DST_COLOR = 4,  ///< 1 less colour of what is there
  RENDERER_BLEND_FACTOR_ONE_MINUS_SRC_ALPHA = 5,  ///< 1 less alpha of what is drawn
  RENDERER_BLEND_FACTOR_DST_COLOR = 6,            ///< colour of what is there
  RENDERER_BLEND_FACTOR_DST_ALPHA = 7,            ///< alpha of what is there
  RENDERER_BLEND_FACTOR_SRC_COLOR = 8,            ///< colour of what is drawn
  RENDERER_BLEND_FACTOR_ONE_MINUS_SRC_COLOR = 9   ///< 1 less colour of what is drawn
};

/// Values of Renderer::set_depth_func. Any other value acts as LESS.
enum RENDERER_DEPTH_FUNC : int {
  RENDERER_DEPTH_FUNC_NEVER = 0,     ///< nothing passes
  RENDERER_DEPTH_FUNC_LESS = 1,      ///< what is nearer passes
  RENDERER_DEPTH_FUNC_LEQUAL = 2,    ///< what is nearer or as near passes
  RENDERER_DEPTH_FUNC_GREATER = 3,   ///< what is farther passes
  RENDERER_DEPTH_FUNC_GEQUAL = 4,    ///< what is farther or as far passes
  RENDERER_DEPTH_FUNC_EQUAL = 5,     ///< what is as near passes
  RENDERER_DEPTH_FUNC_NOTEQUAL = 6,  ///< what is nearer or farther passes
  RENDERER_DEPTH_FUNC_ALWAYS = 7     ///< everything passes
};

/// Values of Renderer::rasterizer_set_cull_face. Any other value acts as FRONT_AND_BACK.
enum RENDERER_CULL_FACE : int {
  RENDERER_CULL_FACE_BACK = 1,           ///< back faces are left out
  RENDERER_CULL_FACE_FRONT = 2,          ///< front faces are left out
  RENDERER_CULL_FACE_FRONT_AND_BACK = 3  ///< all faces are left out
};

/// First argument of Renderer::rasterizer_set_polygon_mode. Any other value fills.
enum RENDERER_POLYGON_MODE : int {
  RENDERER_POLYGON_MODE_POINT = 0,  ///< corners
  RENDERER_POLYGON_MODE_LINE = 1,   ///< edges
  RENDERER_POLYGON_MODE_FILL = 2    ///< filled
};

/// Second argument of Renderer::rasterizer_set_polygon_mode. Any other value means both faces.
enum RENDERER_POLYGON_FACE : int {
  RENDERER_POLYGON_FACE_BACK = 1,           ///< back faces
  RENDERER_POLYGON_FACE_FRONT = 2,          ///< front faces
  RENDERER_POLYGON_FACE_FRONT_AND_BACK = 3  ///< both
};

/// Bits of Renderer::memory_barrier.
enum RENDERER_BARRIER : unsigned int {
  RENDERER_BARRIER_VERTEX_ATTRIB_ARRAY = 0x1,   ///< before vertices are fetched
  RENDERER_BARRIER_ELEMENT_ARRAY = 0x2,         ///< before indices are fetched
  RENDERER_BARRIER_UNIFORM = 0x4,               ///< before uniform blocks are read
  RENDERER_BARRIER_TEXTURE_FETCH = 0x8,         ///< before textures are sampled
  RENDERER_BARRIER_SHADER_IMAGE_ACCESS = 0x20,  ///< before images are read or written
  RENDERER_BARRIER_COMMAND = 0x40,              ///< before commands are read from buffers
  RENDERER_BARRIER_PIXEL_BUFFER = 0x80,         ///< before pixels move through buffers
  RENDERER_BARRIER_TEXTURE_UPDATE = 0x100,      ///< before textures are written or read back
  RENDERER_BARRIER_BUFFER_UPDATE = 0x200,       ///< before buffers are written, copied or mapped
  RENDERER_BARRIER_FRAMEBUFFER = 0x400,         ///< before framebuffers are drawn to or read
  RENDERER_BARRIER_TRANSFORM_FEEDBACK = 0x800,  ///< before transform feedback writes
  RENDERER_BARRIER_ATOMIC_COUNTER = 0x1000,     ///< before atomic counters are used
  RENDERER_BARRIER_SHADER_STORAGE = 0x2000      ///< before storage blocks are used
};

/// Bits of Renderer::storage_buffer_map_range.
enum RENDERER_MAP : unsigned int {
  RENDERER_MAP_READ = 0x1,               ///< read through the pointer
  RENDERER_MAP_WRITE = 0x2,              ///< written through the pointer
  RENDERER_MAP_INVALIDATE_RANGE = 0x4,   ///< the old contents of the range are not needed
  RENDERER_MAP_INVALIDATE_BUFFER = 0x8,  ///< the old contents are not needed
  RENDERER_MAP_FLUSH_EXPLICIT = 0x10,    ///< written ranges are flushed one by one
  RENDERER_MAP_UNSYNCHRONIZED = 0x20,    ///< does not wait for the GPU
  RENDERER_MAP_PERSISTENT = 0x40,        ///< stays mapped while the GPU uses it
  RENDERER_MAP_COHERENT = 0x80           ///< writes are seen without a flush
};

}  // namespace orv
