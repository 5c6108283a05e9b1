#pragma once

#include <orv/geometry/geometry_core.h>

namespace orv {

/// Faces of three of a geometry, whatever their index width. Empty for a generic index list and
/// when the face array is missing.
class FaceAccess {
 public:
  explicit FaceAccess(const GeometryCore& data)
      : faces_u16_(data.index_bits == 16 ? data.faces_u16 : nullptr),
        faces_u32_(data.index_bits == 16 ? nullptr : data.faces_u32),
        size_(faces_u16_ || faces_u32_ ? data.num_faces : 0) {}

  unsigned int size() const { return size_; }

  /// A face of zeros when out of range.
  FaceU32 get(unsigned int face) const {
    if (face >= size_) return FaceU32();
    if (faces_u32_) return faces_u32_[face];
    return FaceU32(faces_u16_[face].a, faces_u16_[face].b, faces_u16_[face].c);
  }

  /// 16-bit faces keep the low 16 bits. Ignored when out of range.
  void set(unsigned int face, unsigned int a, unsigned int b, unsigned int c) {
    if (face >= size_) return;
    if (faces_u32_) {
      faces_u32_[face] = FaceU32(a, b, c);
    } else {
      faces_u16_[face] = FaceU16(static_cast<unsigned short>(a), static_cast<unsigned short>(b),
                                 static_cast<unsigned short>(c));
    }
  }

 private:
  FaceU16* faces_u16_;
  FaceU32* faces_u32_;
  unsigned int size_;
};

}  // namespace orv
