/// @file
/// Libraries of the window systems, loaded when first needed and then kept.
#pragma once

#include <initializer_list>

namespace orv::detail {

/// Opens the first of these that there is; null when there is none. With loaded_only, only those
/// that are in the process already.
void* open_library(std::initializer_list<const char*> names, bool loaded_only = false);

/// Symbol of an open library; null for a null library and unknown names.
void* find_symbol(void* library, const char* name);

/// Fills a function pointer; false when the library lacks the function.
template <class Function>
bool find_function(void* library, const char* name, Function* function) {
  *function = reinterpret_cast<Function>(find_symbol(library, name));
  return *function != nullptr;
}

/// Function of OpenGL from the system's OpenGL library by name.
void* find_opengl_symbol(const char* name);

}  // namespace orv::detail
