/// @file
/// Repair of palettes of BMP files.
#pragma once

#include <cstddef>
#include <vector>

namespace orv::detail {

/// What there is to do about the palette of a file.
enum class BmpPalette {
  NONE,     ///< no BMP with a palette: decode it as it is
  REBUILT,  ///< decode the rebuilt file
  BROKEN    ///< the palette is missing, too large or cut off: do not decode
};

/// Rebuilds a BMP of 1, 4 or 8 bits a pixel with a palette of 256 colours, those that the file does
/// not tell being black. The decoder leaves them undefined, and pixels may name them.
BmpPalette rebuild_bmp_palette(const unsigned char* data, std::size_t size,
                               std::vector<unsigned char>* rebuilt);

}  // namespace orv::detail
