/// @file
/// Triangles as three vertex indices.
#pragma once

#include <orv/core/api.h>

namespace orv {

/// Triangle with 16-bit vertex indices.
class ORV_API FaceU16 {
 public:
  /// The first vertex three times.
  FaceU16() = default;
  /// A triangle of these vertices.
  FaceU16(unsigned short index_a, unsigned short index_b, unsigned short index_c)
      : a(index_a), b(index_b), c(index_c) {}

  unsigned short a = 0;  ///< index of the first vertex
  unsigned short b = 0;  ///< index of the second vertex
  unsigned short c = 0;  ///< index of the third vertex
};

/// Triangle with 32-bit vertex indices.
class ORV_API FaceU32 {
 public:
  /// The first vertex three times.
  FaceU32() = default;
  /// A triangle of these vertices.
  FaceU32(unsigned int index_a, unsigned int index_b, unsigned int index_c)
      : a(index_a), b(index_b), c(index_c) {}

  unsigned int a = 0;  ///< index of the first vertex
  unsigned int b = 0;  ///< index of the second vertex
  unsigned int c = 0;  ///< index of the third vertex
};

static_assert(sizeof(FaceU16) == 6, "an index buffer is a straight copy of the faces");
static_assert(sizeof(FaceU32) == 12, "an index buffer is a straight copy of the faces");

}  // namespace orv
