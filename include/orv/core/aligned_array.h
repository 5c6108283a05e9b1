/// @file
/// Arrays of numbers, vectors and vertices that start at an aligned address.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>

namespace orv {

/// AlignedNew_T makes `count` elements, set to their initial values, at an address that is a
/// multiple of `alignment` (a power of two; 1 or less means none in particular). `*raw` receives
/// the block to free when `raw` is not null. Throws std::bad_alloc when memory is exhausted.
///
/// AlignedDelete_T sets `*array` to null, frees `*raw` and sets it to null. With a null `raw` the
/// block stays allocated and only the pointer is cleared. Null arguments are ignored.
ORV_API unsigned int* AlignedNew_u32(unsigned int count, int alignment, unsigned char** raw);
/// Frees what AlignedNew_u32 made, see there.
ORV_API void AlignedDelete_u32(unsigned int** array, unsigned int count, unsigned char** raw);

/// Elements start as (0, 0).
ORV_API vec2* AlignedNew_vec2(unsigned int count, int alignment, unsigned char** raw);
/// Frees what AlignedNew_vec2 made, see AlignedNew_u32.
ORV_API void AlignedDelete_vec2(vec2** array, unsigned int count, unsigned char** raw);

/// Elements start as (0, 0, 0).
ORV_API vec3* AlignedNew_vec3(unsigned int count, int alignment, unsigned char** raw);
/// Frees what AlignedNew_vec3 made, see AlignedNew_u32.
ORV_API void AlignedDelete_vec3(vec3** array, unsigned int count, unsigned char** raw);

/// Elements start as (0, 0, 0, 1).
ORV_API vec4* AlignedNew_vec4(unsigned int count, int alignment, unsigned char** raw);
/// Frees what AlignedNew_vec4 made, see AlignedNew_u32.
ORV_API void AlignedDelete_vec4(vec4** array, unsigned int count, unsigned char** raw);

/// Elements start with four times (0, 0, 0, 1).
ORV_API Vertex* AlignedNew_Vertex(unsigned int count, int alignment, unsigned char** raw);
/// Frees what AlignedNew_Vertex made, see AlignedNew_u32.
ORV_API void AlignedDelete_Vertex(Vertex** array, unsigned int count, unsigned char** raw);

/// Elements start as 0 but for the w of colour and tangent, which is 1.
ORV_API Vertex_64* AlignedNew_Vertex_64(unsigned int count, int alignment, unsigned char** raw);
/// Frees what AlignedNew_Vertex_64 made, see AlignedNew_u32.
ORV_API void AlignedDelete_Vertex_64(Vertex_64** array, unsigned int count, unsigned char** raw);

/// Elements start as 0.
ORV_API Vertex_32* AlignedNew_Vertex_32(unsigned int count, int alignment, unsigned char** raw);
/// Frees what AlignedNew_Vertex_32 made, see AlignedNew_u32.
ORV_API void AlignedDelete_Vertex_32(Vertex_32** array, unsigned int count, unsigned char** raw);

/// Elements start as 0 but for the w of position and colour, which is 1.
ORV_API Vertex_PhysXCloth* AlignedNew_Vertex_PhysXCloth(unsigned int count, int alignment,
                                                        unsigned char** raw);
/// Frees what AlignedNew_Vertex_PhysXCloth made, see AlignedNew_u32.
ORV_API void AlignedDelete_Vertex_PhysXCloth(Vertex_PhysXCloth** array, unsigned int count,
                                             unsigned char** raw);

}  // namespace orv
