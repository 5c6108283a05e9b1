/// @file
/// Version of the headers. What the loaded library is tells Kernel::get_version_major() and its
/// kin.
#pragma once

#define ORV_VERSION_MAJOR 0
#define ORV_VERSION_MINOR 26
#define ORV_VERSION_PATCH 1

/// One number that grows with each version, for comparisons by the preprocessor.
#define ORV_VERSION (ORV_VERSION_MAJOR * 10000 + ORV_VERSION_MINOR * 100 + ORV_VERSION_PATCH)
