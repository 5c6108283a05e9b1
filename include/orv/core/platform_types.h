/// @file
/// The platforms that the library may be built for.
#pragma once

namespace orv {

/// What utils::get_platform_type() returns.
enum ORV_PLATFORM_TYPE : int {
  ORV_PLATFORM_TYPE_WINDOWS = 1,  ///< Windows
  ORV_PLATFORM_TYPE_OSX = 2,      ///< macOS
  ORV_PLATFORM_TYPE_LINUX = 3     ///< Linux
};

}  // namespace orv
