# Flags of our own targets: orv_options for all code, orv_warnings on top.
find_package(Threads REQUIRED)

add_library(orv_options INTERFACE)
target_compile_features(orv_options INTERFACE cxx_std_20)
# Exact comparisons are part of the library's behaviour: no contraction to fused operations.
target_compile_options(orv_options INTERFACE -ffp-contract=off)
if(ORV_SANITIZE)
  target_compile_options(orv_options INTERFACE -fsanitize=${ORV_SANITIZE} -fno-omit-frame-pointer
                                               -fno-sanitize-recover=all)
  target_link_options(orv_options INTERFACE -fsanitize=${ORV_SANITIZE})
endif()
if(ORV_COVERAGE)
  target_compile_options(orv_options INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(orv_options INTERFACE --coverage)
endif()

add_library(orv_warnings INTERFACE)
target_compile_options(orv_warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # g++ 12 sees overlapping copies in any "literal" + std::string at -O3: a false alarm.
  target_compile_options(orv_warnings INTERFACE -Wno-restrict)
endif()
if(ORV_WERROR)
  target_compile_options(orv_warnings INTERFACE -Werror)
endif()
