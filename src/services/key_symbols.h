/// @file
/// From symbols of the X Window System to virtual keys.
#pragma once

#include "services/key_source.h"

namespace orv::detail {

/// The virtual key of a symbol; 0 when it has none.
std::uint8_t vk_of_symbol(std::uint32_t symbol);

/// The virtual key of each key number of a keyboard with these symbols; 0 for keys without one.
/// Keys that carry another script than the Latin one count as the letter or digit of their place.
void map_keys(const std::uint32_t (&symbols)[NUM_KEYS], std::uint8_t (&vk_of_key)[NUM_KEYS]);

}  // namespace orv::detail
