# Builds the Debian packages, installs them into an empty root, uses what lies there (the library
# and headers from a host, the viewer if it was built), removes them, and looks for leftovers.
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)
set(folder ${WORK}/debian)
set(root ${folder}/root)
file(REMOVE_RECURSE ${folder})
file(MAKE_DIRECTORY ${root}/var/lib/dpkg/info ${root}/var/lib/dpkg/updates)
file(WRITE ${root}/var/lib/dpkg/status "")
foreach(program dpkg dpkg-deb dpkg-shlibdeps)
  find_program(found_${program} ${program})
  if(NOT found_${program})
    message(FATAL_ERROR "${program} not found: install the package dpkg-dev")
  endif()
endforeach()

# ---- build ----

set(build ${BUILD}-debian)
file(REMOVE_RECURSE ${build})
must(${CMAKE_COMMAND} -E chdir ${SOURCE} ${CMAKE_COMMAND} --preset package -B ${build}
  -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER})
must(${CMAKE_COMMAND} --build ${build})
must(${CMAKE_COMMAND} -E chdir ${folder} cpack --config ${build}/CPackConfig.cmake)
file(GLOB packages ${folder}/*.deb)
list(TRANSFORM packages REPLACE ".*/([^/]+)_0\\.26\\.[0-9]+-1_amd64\\.deb$" "\\1"
  OUTPUT_VARIABLE names)
list(SORT names)
set(expected liborv-dev liborv-x64-0.26)
if(EXISTS ${SOURCE}/apps/viewer/CMakeLists.txt)
  list(APPEND expected orv-tools)
endif()
if(NOT names STREQUAL expected)
  message(FATAL_ERROR "packages: ${names}")
endif()

# ---- what the packages say ----

function(must_say package field pattern)
  file(GLOB file ${folder}/${package}_*.deb)
  must(dpkg-deb --field ${file} ${field})
  if(NOT must_output MATCHES "${pattern}")
    message(FATAL_ERROR "${package}, ${field}: ${must_output}")
  endif()
endfunction()

foreach(package "libc6 " "libstdc\\+\\+6 " libtinyxml2 libfontconfig1 libzip4)
  must_say(liborv-x64-0.26 Depends ${package})
endforeach()
must_say(liborv-dev Depends "liborv-x64-0\\.26 \\(= 0\\.26\\.[0-9]+-1\\)")
if(orv-tools IN_LIST names)
  must_say(orv-tools Depends "libsdl2")
  must_say(orv-tools Depends "liborv-x64-0\\.26 \\(= 0\\.26\\.[0-9]+-1\\)")
endif()
file(GLOB library ${folder}/liborv-x64-*.deb)
must(dpkg-deb --info ${library} triggers)
if(NOT must_output MATCHES "activate-noawait ldconfig")
  message(FATAL_ERROR "the library's package does not call ldconfig: ${must_output}")
endif()
must(dpkg-deb --info ${library} shlibs)
if(NOT must_output MATCHES "liborv_x64 0\\.26 liborv-x64-0\\.26")
  message(FATAL_ERROR "shlibs: ${must_output}")
endif()

# ---- install ----

# The system's packages are not in this root's list, hence no dependencies; and the test may run as
# any user.
set(ENV{PATH} "$ENV{PATH}:/usr/sbin:/sbin")
set(dpkg dpkg --root=${root} --force-not-root --force-depends --log=${folder}/dpkg.log)
must(${dpkg} --install ${packages})
set(libraries ${root}/usr/lib/x86_64-linux-gnu)
foreach(file usr/lib/x86_64-linux-gnu/liborv_x64.so.0.26 usr/include/orv/orv.h
    usr/lib/x86_64-linux-gnu/liborv_x64.so usr/lib/x86_64-linux-gnu/pkgconfig/orv.pc
    usr/share/doc/liborv-x64-0.26/copyright usr/share/doc/liborv-x64-0.26/changelog.Debian.gz)
  if(NOT EXISTS ${root}/${file})
    message(FATAL_ERROR "not installed: ${file}")
  endif()
endforeach()
must(nm --quiet ${libraries}/liborv_x64.so)
if(must_output)
  message(FATAL_ERROR "the library is not stripped")
endif()

# ---- use ----

set(ENV{LD_LIBRARY_PATH} ${libraries})
must_build_hosts(${folder}/host -DCMAKE_PREFIX_PATH=${root}/usr -DCMAKE_SKIP_RPATH=ON)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${root})
set(ENV{PKG_CONFIG_LIBDIR} ${libraries}/pkgconfig)
must(pkg-config --cflags --libs orv)
string(STRIP "${must_output}" flags)
separate_arguments(flags)
must(${CXX} -std=c++17 ${folder}/host/readme.cpp -o ${folder}/by_pkg_config ${flags})
must_run_readme_program(${folder}/by_pkg_config ${folder})

if(orv-tools IN_LIST names)
  set(viewer ${root}/usr/bin/orv-viewer)
  must(${viewer} --headless --size 64x48 --output ${folder}/cube.png
    ${SOURCE}/tests/data/obj/box.obj)
  file(SIZE ${folder}/cube.png size)
  if(size LESS 100)
    message(FATAL_ERROR "the picture has ${size} bytes")
  endif()
  # The manual page tells of each option.
  must(${viewer} --help)
  string(REGEX MATCHALL "--[a-z]+" options "${must_output}")
  list(REMOVE_DUPLICATES options)
  must(gzip -dc ${root}/usr/share/man/man1/orv-viewer.1.gz)
  string(REPLACE "\\-" "-" manual "${must_output}")
  foreach(option ${options})
    string(FIND "${manual}" "${option}" at)
    if(at LESS 0)
      message(FATAL_ERROR "the manual page does not tell of ${option}")
    endif()
  endforeach()
endif()

# ---- remove ----

must(${dpkg} --purge ${names})
file(GLOB_RECURSE left LIST_DIRECTORIES true RELATIVE ${root} ${root}/*)
list(FILTER left EXCLUDE REGEX "^var(/lib(/dpkg(/.*)?)?)?$")
if(left)
  message(FATAL_ERROR "left behind: ${left}")
endif()

# ---- lint ----

find_program(LINTIAN lintian)
if(LINTIAN)
  must(${LINTIAN} --fail-on error,warning --allow-root --tag-display-limit 0 ${packages})
else()
  message(STATUS "lintian is not installed: packages not linted here; ./run check does it")
endif()
