/// @file
/// Who made the plugins inside the library.
#pragma once

namespace orv {

inline constexpr char CORE_AUTHOR[] = "Orvane Core team";

}  // namespace orv
