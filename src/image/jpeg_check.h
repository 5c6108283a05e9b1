/// @file
/// A look at JPEG files before they are decoded.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orv::detail {

/// False for a JPEG that the decoder must not see: one with a Huffman table of more codes than
/// there are symbols, which it would write past its own table. True for anything else, other
/// formats included. Counts the scans, each of which walks the whole picture.
bool is_sound_jpeg(const unsigned char* data, std::size_t size, std::uint64_t* num_scans);

}  // namespace orv::detail
