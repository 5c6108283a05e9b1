# A port that builds the tree it stands in; see the README of the folder packaging.
vcpkg_check_linkage(ONLY_DYNAMIC_LIBRARY)

get_filename_component(SOURCE_PATH "${CMAKE_CURRENT_LIST_DIR}/../../.." ABSOLUTE)

# Not among vcpkg's ports: they come from the system.
find_path(LIB3DS_INCLUDE lib3ds/types.h PATHS /usr/include NO_DEFAULT_PATH)
find_path(NANOVG_INCLUDE nanovg_gl.h PATHS /usr/share/dpf/dgl/src/nanovg NO_DEFAULT_PATH)
find_path(X11_INCLUDE X11/Xlib.h PATHS /usr/include NO_DEFAULT_PATH)
find_path(GLX_INCLUDE GL/glx.h PATHS /usr/include NO_DEFAULT_PATH)
find_library(LIB3DS_LIBRARY 3ds PATHS /usr/lib/x86_64-linux-gnu /usr/lib64 /usr/lib NO_DEFAULT_PATH)
if(NOT LIB3DS_INCLUDE OR NOT LIB3DS_LIBRARY OR NOT NANOVG_INCLUDE OR NOT X11_INCLUDE
    OR NOT GLX_INCLUDE)
  message(FATAL_ERROR
    "install the system's packages lib3ds-dev, dpf-source, libx11-dev and libgl-dev")
endif()

# The sources include <stb/...>; vcpkg lays these headers flat.
set(stb "${CURRENT_BUILDTREES_DIR}/stb-headers")
file(GLOB stb_headers "${CURRENT_INSTALLED_DIR}/include/stb_*.h")
file(COPY ${stb_headers} DESTINATION "${stb}/stb")

vcpkg_cmake_configure(
  SOURCE_PATH "${SOURCE_PATH}"
  OPTIONS
    -DORV_BUILD_TESTS=OFF
    -DORV_BUILD_EXAMPLES=OFF
    -DORV_BUILD_APPS=OFF
    -DORV_BUILD_BENCH=OFF
    -DORV_BUILD_PLUGINS=OFF
    -DORV_WERROR=OFF
    "-DORV_STB_INCLUDE=${stb}"
    "-DORV_LIB3DS_INCLUDE=${LIB3DS_INCLUDE}"
    "-DORV_LIB3DS_LIBRARY=${LIB3DS_LIBRARY}"
    "-DORV_NANOVG_INCLUDE=${NANOVG_INCLUDE}"
    "-DORV_X11_INCLUDE=${X11_INCLUDE}"
    "-DORV_GLX_INCLUDE=${GLX_INCLUDE}"
)
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(PACKAGE_NAME orv CONFIG_PATH lib/cmake/orv)
vcpkg_fixup_pkgconfig()

file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include")
file(INSTALL "${CMAKE_CURRENT_LIST_DIR}/usage" DESTINATION "${CURRENT_PACKAGES_DIR}/share/${PORT}")
vcpkg_install_copyright(FILE_LIST "${SOURCE_PATH}/LICENSE")
