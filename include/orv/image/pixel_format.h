/// @file
/// Names of pixel layouts.
#pragma once

namespace orv {

/// Layout of one pixel. Byte formats (U8) use an Image's byte store, all float formats its float
/// store; the integer formats from PF_R_U32 on serve render targets only.
///
/// A name tells the channels in their order and the kind of each: U unsigned, I signed, F floating
/// point, and its bits. Bytes of the formats up to PF_RG_U8 stand for 0 to 1; the formats from
/// PF_R_U32 on hold whole numbers.
enum PIXEL_FORMAT : int {
  PF_UNKNOWN = 0,
  PF_RGB_U8 = 1,
  PF_BGR_U8 = 2,
  PF_RGBA_U8 = 3,
  PF_BGRA_U8 = 4,
  PF_RGB_F32 = 5,
  PF_RGBA_F32 = 6,
  PF_R_F32 = 7,
  PF_RGB_F16 = 8,
  PF_RGBA_F16 = 9,
  PF_R_F16 = 10,
  PF_R_U8 = 11,
  PF_RG_U8 = 12,
  PF_R_U32 = 13,
  PF_RG_U32 = 14,
  PF_RGBA_U32 = 15,
  PF_R_I32 = 16,
  PF_RG_I32 = 17,
  PF_RGBA_I32 = 18,
  PF_R_U16 = 19,
  PF_RG_U16 = 20,
  PF_RGBA_U16 = 21,
  PF_R_I16 = 22,
  PF_RG_I16 = 23,
  PF_RGBA_I16 = 24,
  PF_R_U8I = 25,
  PF_RG_U8I = 26,
  PF_RGBA_U8I = 27,
  PF_R_I8I = 28,
  PF_RG_I8I = 29,
  PF_RGBA_I8I = 30
};

}  // namespace orv
