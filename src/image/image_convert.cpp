// Image: changes of the pixel format.
#include <orv/image/image.h>

#include <orv/core/log_mgr.h>

#include "image/image_access.h"
#include "image/pixel_cast.h"

#include <cstddef>
#include <cstring>
#include <type_traits>

namespace orv {
namespace {

using detail::FormatInfo;
using detail::StoreKind;

template <typename Target, typename Source>
Target convert_channel(Source value) {
  if constexpr (std::is_same_v<Target, Source>) {
    return value;
  } else if constexpr (std::is_same_v<Target, float>) {
    return detail::byte_to_unit(value);
  } else {
    return detail::unit_to_byte(value);
  }
}

void convert_channels(const unsigned char* source, float* target, std::size_t count) {
  detail::bytes_to_units(source, target, count);
}
void convert_channels(const float* source, unsigned char* target, std::size_t count) {
  detail::units_to_bytes(source, target, count);
}
template <typename Channel>
void convert_channels(const Channel* source, Channel* target, std::size_t count) {
  std::memcpy(target, source, count * sizeof(Channel));
}

/// Channels go by position; G and B that the source lacks are 0, a missing alpha is opaque.
template <typename Source, int SOURCE_CHANNELS, typename Target, int TARGET_CHANNELS>
void convert_pixels(const void* source_pixels, void* target_pixels, std::size_t count) {
  constexpr Target OPAQUE = std::is_same_v<Target, float> ? Target{1} : Target(255);
  const Source* source = static_cast<const Source*>(source_pixels);
  Target* target = static_cast<Target*>(target_pixels);
  if constexpr (SOURCE_CHANNELS == TARGET_CHANNELS) {
    convert_channels(source, target, count * SOURCE_CHANNELS);
    return;
  }
  for (std::size_t i = 0; i < count; ++i) {
    for (int c = 0; c < TARGET_CHANNELS; ++c) {
      target[c] = c == 3 ? OPAQUE : Target{0};
      if (c < SOURCE_CHANNELS && (c != 3 || SOURCE_CHANNELS == 4)) {
        target[c] = convert_channel<Target>(source[c]);
      }
    }
    source += SOURCE_CHANNELS;
    target += TARGET_CHANNELS;
  }
}

using Converter = void (*)(const void* source, void* target, std::size_t count);

template <typename Source, int SOURCE_CHANNELS>
Converter converter_from(const FormatInfo& target) {
  using Byte = unsigned char;
  static constexpr Converter TO_BYTES[] = {convert_pixels<Source, SOURCE_CHANNELS, Byte, 1>,
                                           convert_pixels<Source, SOURCE_CHANNELS, Byte, 2>,
                                           convert_pixels<Source, SOURCE_CHANNELS, Byte, 3>,
                                           convert_pixels<Source, SOURCE_CHANNELS, Byte, 4>};
  static constexpr Converter TO_FLOATS[] = {convert_pixels<Source, SOURCE_CHANNELS, float, 1>,
                                            nullptr,
                                            convert_pixels<Source, SOURCE_CHANNELS, float, 3>,
                                            convert_pixels<Source, SOURCE_CHANNELS, float, 4>};
  return target.store == StoreKind::BYTES ? TO_BYTES[target.channels - 1]
                                          : TO_FLOATS[target.channels - 1];
}

Converter find_converter(const FormatInfo& source, const FormatInfo& target) {
  if (source.store == StoreKind::BYTES) {
    switch (source.channels) {
      case 1:
        return converter_from<unsigned char, 1>(target);
      case 2:
        return converter_from<unsigned char, 2>(target);
      case 3:
        return converter_from<unsigned char, 3>(target);
      default:
        return converter_from<unsigned char, 4>(target);
    }
  }
  switch (source.channels) {
    case 1:
      return converter_from<float, 1>(target);
    case 3:
      return converter_from<float, 3>(target);
    default:
      return converter_from<float, 4>(target);
  }
}

/// Installs the converted block in the store of its family. A change of family nulls the other
/// store, a change within one leaves it alone.
template <typename Target>
void install_converted(Image& image, const FormatInfo& source, Target* pixels, std::size_t bytes) {
  if (source.store == StoreKind::BYTES) {
    ImageAccess::release<unsigned char>(image);
  } else {
    ImageAccess::release<float>(image);
  }
  ImageAccess::release<Target>(image);
  ImageAccess::install(image, pixels, bytes);
  ImageAccess::mark_owner(image);
}

/// A block for converted pixels, or null; the log tells why.
template <typename Element>
Element* new_result(const Image& image, std::size_t bytes) {
  Element* pixels = detail::new_block<Element>(bytes);
  if (!pixels) {
    LogMgr::get().tracef_debug("image of %ux%ux%u pixels: allocation of %zu bytes failed",
                               image.width, image.height, image.depth, bytes);
  }
  return pixels;
}

template <typename Target>
bool convert_image(Image& image, const FormatInfo& source, const FormatInfo& target) {
  const void* source_pixels = source.store == StoreKind::BYTES
                                  ? static_cast<const void*>(image.get_u8_ptr())
                                  : static_cast<const void*>(image.get_f32_ptr());
  if (!source_pixels) return false;
  const std::size_t reachable = source.store == StoreKind::BYTES
                                    ? detail::reachable_pixels<unsigned char>(image, source.size)
                                    : detail::reachable_pixels<float>(image, source.size);
  std::size_t bytes = 0;
  if (!detail::block_size(detail::pixel_count(image), 1, target.size, &bytes)) return false;
  Target* pixels = new_result<Target>(image, bytes);
  if (!pixels) return false;
  if (reachable < detail::pixel_count(image)) std::memset(pixels, 0, bytes);
  find_converter(source, target)(source_pixels, pixels, reachable);
  install_converted(image, source, pixels, bytes);
  return true;
}

}  // namespace

bool Image::update_pixel_format(PIXEL_FORMAT target) {
  if (target == pixel_format) return false;
  const FormatInfo source_info = detail::format_info(pixel_format);
  const FormatInfo target_info = detail::format_info(target);
  if (target_info.store == StoreKind::NONE) return false;
  if (source_info.store != StoreKind::NONE) {
    const bool is_converted = target_info.store == StoreKind::BYTES
                                  ? convert_image<unsigned char>(*this, source_info, target_info)
                                  : convert_image<float>(*this, source_info, target_info);
    if (!is_converted) return false;
  }
  pixel_format = target;
  return true;
}

bool Image::convert_rgba_to_grey_alpha() {
  const FormatInfo info = detail::format_info(pixel_format);
  if (info.store != StoreKind::BYTES || info.channels != 4) return false;
  const unsigned char* source = get_u8_ptr();
  if (!source) return false;
  // The format still says four bytes a pixel, so the block keeps that size: whoever goes by the
  // format stays inside.
  std::size_t bytes = 0;
  if (!detail::block_size(detail::pixel_count(*this), 1, 4, &bytes)) return false;
  unsigned char* pixels = new_result<unsigned char>(*this, bytes);
  if (!pixels) return false;
  std::memset(pixels, 0, bytes);
  const std::size_t count = detail::reachable_pixels<unsigned char>(*this, 4);
  for (std::size_t i = 0; i < count; ++i) {
    pixels[2 * i] = source[4 * i];
    pixels[2 * i + 1] = source[4 * i + 3];
  }
  ImageAccess::release<unsigned char>(*this);
  ImageAccess::install(*this, pixels, bytes);
  ImageAccess::mark_owner(*this);
  return true;
}

}  // namespace orv
