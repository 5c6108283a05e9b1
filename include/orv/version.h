/// @file
/// Version of the headers. What the loaded library is tells Kernel::get_version_major() and its
/// kin.
#pragma once

/// Changes when hosts have to be changed.
#define ORV_VERSION_MAJOR 0
/// Changes when hosts have to be built again; part of the name of the library.
#define ORV_VERSION_MINOR 26
/// Changes when neither is needed.
#define ORV_VERSION_PATCH 1

/// One number that grows with each version, for comparisons by the preprocessor.
#define ORV_VERSION (ORV_VERSION_MAJOR * 10000 + ORV_VERSION_MINOR * 100 + ORV_VERSION_PATCH)
