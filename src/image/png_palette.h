/// @file
/// Completion of palettes of PNG files.
#pragma once

#include <cstddef>
#include <vector>

namespace orv::detail {

/// Copies a PNG whose palette has fewer colours than its pixels can name, with the palette filled
/// up with black: the decoder would take those colours from memory that nobody wrote. False, with
/// nothing copied, for all other files: decode them as they are.
bool fill_png_palette(const unsigned char* data, std::size_t size,
                      std::vector<unsigned char>* filled);

}  // namespace orv::detail
