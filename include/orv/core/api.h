/// @file
/// Marks what the shared library exports.
#pragma once

/// Marks what the library exports; everything else is hidden.
#if defined(ORV_STATIC)
#define ORV_API
#elif defined(_WIN32)
#if defined(ORV_BUILDING)
#define ORV_API __declspec(dllexport)
#else
#define ORV_API __declspec(dllimport)
#endif
#else
#define ORV_API __attribute__((visibility("default")))
#endif

/// Marks the functions that a plugin module exports.
#if defined(_WIN32)
#define ORV_PLUGIN_EXPORT extern "C" __declspec(dllexport)
#else
#define ORV_PLUGIN_EXPORT extern "C" __attribute__((visibility("default")))
#endif

/// Lets the compiler check printf-like arguments: positions of the format and of the first value.
#if defined(__GNUC__)
#define ORV_PRINTF_LIKE(format_index, first_argument) \
  __attribute__((format(printf, format_index, first_argument)))
#else
#define ORV_PRINTF_LIKE(format_index, first_argument)
#endif
