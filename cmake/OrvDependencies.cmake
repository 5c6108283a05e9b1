# Looks up what the library is built with, and names the Debian package of what is missing.

function(orv_require_header variable header package)
  find_path(${variable} ${header} ${ARGN})
  if(NOT ${variable})
    message(FATAL_ERROR "${header} not found: install the package ${package}")
  endif()
endfunction()

function(orv_require_library variable library package)
  find_library(${variable} ${library})
  if(NOT ${variable})
    message(FATAL_ERROR "lib${library} not found: install the package ${package}")
  endif()
endfunction()

orv_require_header(ORV_STB_INCLUDE stb/stb_image.h libstb-dev)
orv_require_header(ORV_LIB3DS_INCLUDE lib3ds/types.h lib3ds-dev)
orv_require_library(ORV_LIB3DS_LIBRARY 3ds lib3ds-dev)
orv_require_header(ORV_TINYOBJ_INCLUDE tiny_obj_loader.h libtinyobjloader-dev)
orv_require_library(ORV_TINYOBJ_LIBRARY tinyobjloader libtinyobjloader-dev)
orv_require_header(ORV_ZIP_INCLUDE zip.h libzip-dev)
orv_require_library(ORV_ZIP_LIBRARY zip libzip-dev)
orv_require_header(ORV_FONTCONFIG_INCLUDE fontconfig/fontconfig.h libfontconfig-dev)
orv_require_library(ORV_FONTCONFIG_LIBRARY fontconfig libfontconfig-dev)

# The name that programs linked with a shared library ask the system for.
function(orv_read_soname variable file)
  set(soname "")
  if(file MATCHES "\\.so[.0-9]*$" AND CMAKE_OBJDUMP)
    execute_process(COMMAND ${CMAKE_OBJDUMP} -p ${file} OUTPUT_VARIABLE headers ERROR_QUIET)
    if(headers MATCHES "SONAME +([^ \n]+)")
      set(soname ${CMAKE_MATCH_1})
    endif()
  endif()
  set(${variable} "${soname}" PARENT_SCOPE)
endfunction()

# libzip and fontconfig bring ten libraries with them. As shared libraries they are loaded by name
# with the first archive and the first system font; static ones are linked.
orv_read_soname(ORV_ZIP_SONAME ${ORV_ZIP_LIBRARY})
orv_read_soname(ORV_FONTCONFIG_SONAME ${ORV_FONTCONFIG_LIBRARY})
if(ORV_ZIP_SONAME AND ORV_FONTCONFIG_SONAME)
  set(ORV_LATE_LIBRARIES ON)
else()
  set(ORV_LATE_LIBRARIES OFF)
endif()

orv_require_header(ORV_NANOVG_INCLUDE nanovg_gl.h dpf-source PATHS /usr/share/dpf/dgl/src/nanovg)
orv_require_header(ORV_X11_INCLUDE X11/Xlib.h libx11-dev)
orv_require_header(ORV_GL_INCLUDE GL/glext.h libgl-dev)
orv_require_header(ORV_GLX_INCLUDE GL/glx.h libgl-dev)
orv_require_header(ORV_EGL_INCLUDE EGL/egl.h libegl-dev)
