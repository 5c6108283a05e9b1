/// @file
/// Plugins that read and write image files.
#pragma once

#include <orv/core/api.h>
#include <orv/core/plugin.h>
#include <orv/fwd.h>
#include <orv/image/pixel_format.h>

namespace orv {

/// A plugin that turns encoded bytes into an Image and an Image into a file. TextureMgr addresses
/// it by its plugin name.
///
/// Pixels belong into the image's own store (make it with Image::create). A codec that keeps the
/// pixels itself puts them into Image::codec_pixels and frees them in free_image_resources().
///
/// The order of the operations is a contract with codecs built apart.
class ORV_API ImageCodec : public Plugin {
 public:
  /// A plugin of the type of image codecs.
  ImageCodec();
  ~ImageCodec() override;

  /// Decodes a file. option is the flip wish of TextureMgr's calls, format the wanted pixel format;
  /// a codec may ignore both. False leaves the image untouched.
  virtual bool load_image_from_file(Image* image, const char* filename, bool option,
                                    PIXEL_FORMAT format) = 0;

  /// Decodes size bytes at data, which stay the caller's.
  virtual bool load_image_from_memory(Image* image, unsigned char* data, unsigned int size,
                                      bool option, PIXEL_FORMAT format) = 0;

  /// Encodes an image into a file, replacing it. False when the codec cannot write this format.
  virtual bool save_image_to_file(Image* image, const char* filename) = 0;

  /// Frees Image::codec_pixels and nulls it. False when the image or the pointer is null.
  virtual bool free_image_resources(Image* image) = 0;
};

}  // namespace orv
