#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdio>

namespace orv {

/// vsnprintf whose result is a text in every case: cut when too long, empty when the format fails.
inline void format_message(char* buffer, size_t size, const char* format, va_list arguments) {
  if (std::vsnprintf(buffer, size, format, arguments) < 0) buffer[0] = 0;
}

}  // namespace orv
