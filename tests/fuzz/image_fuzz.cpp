// Any bytes as an image file of any format.
#include <orv/image/image.h>
#include <orv/image/image_codec_stb.h>

#include <cstddef>
#include <cstdint>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > (1u << 20)) return 0;
  static orv::ImageCodecStb codec;
  std::vector<unsigned char> copy(data, data + size);
  for (const orv::PIXEL_FORMAT format : {orv::PF_RGB_U8, orv::PF_RGBA_U8, orv::PF_R_U8}) {
    orv::Image image;
    if (!codec.load_image_from_memory(&image, copy.data(), static_cast<unsigned int>(size), false,
                                      format)) {
      continue;
    }
    image.flip_vertical();
    image.update_pixel_format(orv::PF_RGBA_F32);
  }
  return 0;
}
