#include <orv/image/image_codec_stb.h>

#include <orv/core/log_mgr.h>

#include "core/core_author.h"
#include "core/read_file.h"
#include "core/repeated_attempt.h"
#include "image/image_access.h"
#include "image/jpeg_writer.h"
#include "image/pixel_cast.h"
#include "image/stb_image_decode.h"

#include <cstddef>
#include <cstdio>
#include <memory>
#include <vector>

namespace orv {
namespace {

int wanted_channels(PIXEL_FORMAT format) {
  switch (static_cast<int>(format)) {
    case PF_RGBA_U8:
      return 4;
    case PF_RG_U8:
      return 2;
    case PF_R_U8:
      return 1;
    default:
      return 3;
  }
}

PIXEL_FORMAT format_of_channels(int channels) {
  constexpr PIXEL_FORMAT FORMATS[] = {PF_R_U8, PF_RG_U8, PF_RGB_U8, PF_RGBA_U8};
  return FORMATS[channels - 1];
}

/// Name of the file whose contents this thread decodes, for as long as one lives.
class FileName {
 public:
  explicit FileName(const char* name) { name_ = name; }
  ~FileName() { name_ = nullptr; }
  FileName(const FileName&) = delete;
  FileName& operator=(const FileName&) = delete;

  static const char* current() { return name_ ? name_ : "in memory"; }

 private:
  static inline thread_local const char* name_ = nullptr;
};

/// Tells in the log why a codec operation failed, unless that was told a moment ago.
void report(const char* operation, const char* name, const char* fault) {
  if (detail::RepeatedAttempt::is_active()) return;
  LogMgr::get().tracef_debug("image %s: %s: %s", name, operation, fault);
}

/// Writes a float image: red, green and blue scaled to bytes.
bool save_floats(const Image& image, const char* filename, const char** fault) {
  const std::size_t channels = image.get_pixel_format_num_channels();
  const std::size_t count = static_cast<std::size_t>(detail::pixel_count(image));
  const std::unique_ptr<unsigned char[]> bytes(detail::new_block<unsigned char>(count * 3));
  if (!bytes) {
    *fault = "memory is exhausted";
    return false;
  }
  const float* source = image.get_f32_ptr();
  unsigned char* target = bytes.get();
  for (std::size_t i = 0; i < count; ++i, source += channels, target += 3) {
    for (std::size_t c = 0; c < 3; ++c) target[c] = detail::unit_to_byte(source[c]);
  }
  return detail::write_jpeg(filename, image.width, image.height, 3, bytes.get(), fault);
}

bool save_image(const Image& image, const char* filename, const char** fault) {
  const auto save_bytes = [&](int components) {
    return detail::write_jpeg(filename, image.width, image.height, components, image.get_u8_ptr(),
                              fault);
  };
  switch (static_cast<int>(image.pixel_format)) {
    case PF_RGB_U8:
    case PF_BGR_U8:
      return save_bytes(3);
    case PF_RGBA_U8:
    case PF_BGRA_U8:
      return save_bytes(4);
    case PF_R_U8:
      return save_bytes(1);
    case PF_RGB_F32:
    case PF_RGBA_F32:
      return save_floats(image, filename, fault);
    default:
      *fault = "no JPEG has its pixel format";
      return false;
  }
}

}  // namespace

ImageCodecStb::ImageCodecStb() {
  char build[128];
  std::snprintf(build, sizeof(build), "BUILD_DATE: [%s] - BUILD_TIME: [%s]", __DATE__, __TIME__);
  set_type(PLUGIN_TYPE_IMAGE_CODEC);
  set_name("stb");
  set_description(
      "STB image loader. Supported formats: *.JPEG, *.PNG, *.TGA, *.BMP, *.PSD, *.GIF, *.HDR, "
      "*.PIC");
  set_author(CORE_AUTHOR);
  set_build_info(build);
  set_version(0, 1, 0);
}

ImageCodecStb::~ImageCodecStb() = default;

bool ImageCodecStb::load_image_from_file(Image* image, const char* filename, bool option,
                                         PIXEL_FORMAT format) {
  if (!image || !filename) return false;
  std::vector<unsigned char> data;
  const char* fault = nullptr;
  if (!detail::read_whole_file(filename, data, &fault)) {
    report("cannot be read", filename, fault);
    return false;
  }
  // The zero behind the data belongs to what the decoder sees.
  data.push_back(0);
  const FileName name(filename);
  return load_image_from_memory(image, data.data(), static_cast<unsigned int>(data.size()), option,
                                format);
}

bool ImageCodecStb::load_image_from_memory(Image* image, unsigned char* data, unsigned int size,
                                           bool /*option*/, PIXEL_FORMAT format) {
  if (!image || !data || size == 0) return false;
  const int channels = wanted_channels(format);
  detail::DecodedImage decoded;
  if (!decoded.decode(data, size, channels)) {
    report("cannot be decoded", FileName::current(), decoded.fault());
    return false;
  }
  ImageAccess::release<unsigned char>(*image);
  image->create(decoded.width(), decoded.height(), 1, format_of_channels(channels), false, false);
  ImageAccess::install(
      *image, decoded.release_pixels(),
      static_cast<std::size_t>(detail::pixel_count(*image)) * static_cast<std::size_t>(channels));
  ImageAccess::mark_owner(*image);
  return true;
}

bool ImageCodecStb::save_image_to_file(Image* image, const char* filename) {
  if (!image || !filename) return false;
  const char* fault = "no pixels";
  if (image->has_pixels() && save_image(*image, filename, &fault)) return true;
  report("cannot be written", filename, fault);
  return false;
}

bool ImageCodecStb::free_image_resources(Image* image) {
  if (!image || !image->codec_pixels) return false;
  delete[] image->codec_pixels;
  image->codec_pixels = nullptr;
  return true;
}

}  // namespace orv
