/// @file
/// The image codec that comes with the library.
#pragma once

#include <orv/core/api.h>
#include <orv/image/image_codec.h>

namespace orv {

/// The core image codec, plugin name "stb". Reads JPEG, PNG, TGA, BMP, PSD, GIF, HDR and PIC, and
/// always writes baseline JPEG, whatever the file name says.
class ORV_API ImageCodecStb : public ImageCodec {
 public:
  /// Fills the plugin record.
  ImageCodecStb();
  ~ImageCodecStb() override;

  /// Reads the whole file and decodes it with load_image_from_memory(). False for null arguments,
  /// a missing or unreadable file and anything that is no plain file.
  bool load_image_from_file(Image* image, const char* filename, bool option,
                            PIXEL_FORMAT format) override;

  /// Decodes to bytes. The format chooses the number of channels: 3 gives PF_RGBA_U8, 12 PF_RG_U8,
  /// 11 PF_R_U8 and every other PF_RGB_U8, the reversed and the float formats included. option is
  /// ignored. False for null arguments and for what no decoder takes; the image is then untouched.
  bool load_image_from_memory(Image* image, unsigned char* data, unsigned int size, bool option,
                              PIXEL_FORMAT format) override;

  /// Writes a baseline JPEG of quality 90 without chroma subsampling. Alpha is dropped, floats are
  /// scaled by 255 and cut. False, and no file, for formats other than 1 to 6 and 11, for an image
  /// without pixels and for one that is empty or wider or higher than 65535.
  bool save_image_to_file(Image* image, const char* filename) override;

  /// Frees pixels made by new unsigned char[]; this codec leaves none behind itself.
  bool free_image_resources(Image* image) override;
};

}  // namespace orv
