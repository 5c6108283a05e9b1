/// @file
/// The interleaved vertex of geometry and its smaller relatives.
#pragma once

#include <orv/core/api.h>
#include <orv/math/vec2.h>
#include <orv/math/vec3.h>
#include <orv/math/vec4.h>

namespace orv {

/// Vertex of interleaved geometry, 64 bytes. Every field starts as (0, 0, 0, 1).
class ORV_API Vertex {
 public:
  vec4 position;  ///< x, y, z and w 1
  vec4 uv0;       ///< texture coordinates
  vec4 normal;    ///< direction of the surface
  vec4 color;     ///< RGBA
};

/// Compact vertex of 32 bytes, all zero at first. For the host's own buffers.
class ORV_API Vertex_32 {
 public:
  vec3 position;  ///< x, y, z
  vec2 uv0;       ///< texture coordinates
  vec3 normal;    ///< direction of the surface
};

/// Vertex of 64 bytes with a tangent; all zero but `color.w` and `tangent.w`, which are 1.
/// For the host's own buffers.
class ORV_API Vertex_64 {
 public:
  vec3 position;  ///< x, y, z
  vec2 uv0;       ///< texture coordinates
  vec3 normal;    ///< direction of the surface
  vec4 color;     ///< RGBA
  vec4 tangent;   ///< direction of u
};

/// Vertex of 64 bytes for cloth simulation; all zero but `position.w` and `color.w`, which are 1.
/// For the host's own buffers.
class ORV_API Vertex_PhysXCloth {
 public:
  vec4 position;  ///< x, y, z and w 1
  vec2 uv0;       ///< texture coordinates
  vec3 normal;    ///< direction of the surface
  vec4 color;     ///< RGBA
  vec3 tangent;   ///< direction of u
};

static_assert(sizeof(Vertex) == 64, "a vertex is copied to the GPU as it stands");
static_assert(sizeof(Vertex_32) == 32, "a vertex is copied to the GPU as it stands");
static_assert(sizeof(Vertex_64) == 64, "a vertex is copied to the GPU as it stands");
static_assert(sizeof(Vertex_PhysXCloth) == 64, "a vertex is copied to the GPU as it stands");

}  // namespace orv
