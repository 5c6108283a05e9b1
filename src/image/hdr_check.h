/// @file
/// A look at HDR files before they are decoded.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orv::detail {

/// False for an HDR file of this size in pixels whose packed rows end early: the decoder would wait
/// for the rest for ever. True for anything else that is wrong with it.
bool is_sound_hdr(const unsigned char* data, std::size_t size, std::uint64_t width,
                  std::uint64_t height);

}  // namespace orv::detail
