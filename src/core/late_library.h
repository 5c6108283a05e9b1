/// @file
/// Libraries for tasks that few hosts have. Named at link time, each would be loaded, with all that
/// it needs in turn, before the host's first line.
#pragma once

#include "core/platform/platform.h"

#include <string>

namespace orv::detail {

/// A shared library, loaded where this is made and then kept for good.
class LateLibrary {
 public:
  /// The name as the linker's: "libzip.so.4".
  explicit LateLibrary(const char* name)
      : handle_(platform::open_library(name, &fault_)), complete_(handle_ != nullptr) {}

  /// A function of the library; null, and the library counts as incomplete, when it has none such.
  template <class Function>
  Function find(const char* name) {
    void* symbol = platform::find_symbol(handle_, name);
    if (!symbol) complete_ = false;
    if (!symbol && fault_.empty()) fault_ = std::string("no function ") + name;
    return reinterpret_cast<Function>(symbol);
  }

  /// Whether the library was there with every function that was asked for.
  bool complete() const { return complete_; }
  /// What was missing; "" when complete.
  const char* fault() const { return fault_.c_str(); }

 private:
  std::string fault_;
  void* handle_;
  bool complete_;
};

/// Stands for a library that is linked as usual, as static libraries are.
class LinkedLibrary {
 public:
  explicit LinkedLibrary(const char*) {}
  bool complete() const { return true; }
  const char* fault() const { return ""; }
};

/// Declares a member that is a function of the library held by the member `library`, under its own
/// name and type.
#ifdef ORV_LATE_LIBRARIES
using OptionalLibrary = LateLibrary;
#define ORV_LATE_FUNCTION(name) decltype(&::name) name = library.find<decltype(&::name)>(#name)
#else
using OptionalLibrary = LinkedLibrary;
#define ORV_LATE_FUNCTION(name) decltype(&::name) name = &::name
#define ORV_ZIP_SONAME ""
#define ORV_FONTCONFIG_SONAME ""
#endif

}  // namespace orv::detail
