#include <cstdio>
#include <cstdlib>

// What stands in the tables of the library's interfaces for operations that a plugin fills. With a
// handler of its own the library needs no symbol of the C++ runtime looked up for each of these
// hundreds of entries when it is loaded, and no room for the look-ups.

extern "C" [[noreturn]] __attribute__((visibility("hidden"))) void
__cxa_pure_virtual() {  // NOLINT(bugprone-reserved-identifier): the name is the compiler's
  std::fputs("orv: an operation was called that no plugin fills\n", stderr);
  std::abort();
}
