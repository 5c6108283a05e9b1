#include "render/window/dynamic_library.h"

#include <dlfcn.h>

namespace orv::detail {

void* open_library(std::initializer_list<const char*> names, bool loaded_only) {
  for (const char* name : names) {
    if (void* library = dlopen(name, RTLD_LAZY | RTLD_LOCAL | (loaded_only ? RTLD_NOLOAD : 0))) {
      return library;
    }
  }
  return nullptr;
}

void* find_symbol(void* library, const char* name) {
  return library && name ? dlsym(library, name) : nullptr;
}

void* find_opengl_symbol(const char* name) {
  static void* const library = open_library({"libOpenGL.so.0", "libGL.so.1"});
  return find_symbol(library, name);
}

}  // namespace orv::detail
