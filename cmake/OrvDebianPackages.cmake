# Debian packages by CPack: the library, its headers, and the tools when they are built. What
# lintian asks of their contents is installed here; `./run package` sets the options.

find_program(ORV_GZIP gzip)
if(NOT ORV_GZIP)
  message(FATAL_ERROR "gzip not found: install the package gzip")
endif()

# Compressed as Debian wants it: the same bytes each time.
function(orv_gzip file output)
  execute_process(COMMAND ${ORV_GZIP} -9nc ${file} OUTPUT_FILE ${output} COMMAND_ERROR_IS_FATAL ANY)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
endfunction()

set(debian ${PROJECT_SOURCE_DIR}/packaging/debian)
set(zipped ${PROJECT_BINARY_DIR}/debian)
file(MAKE_DIRECTORY ${zipped})
orv_gzip(${debian}/changelog ${zipped}/changelog.Debian.gz)
orv_gzip(${PROJECT_SOURCE_DIR}/CHANGELOG.md ${zipped}/changelog.gz)

# The name of a library's package follows from its SONAME.
set(abi ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME liborv-x64-${abi})
set(CPACK_DEBIAN_DEV_PACKAGE_NAME liborv-dev)
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME orv-tools)
set(CPACK_COMPONENTS_ALL runtime dev)
if(TARGET orv-viewer)
  list(APPEND CPACK_COMPONENTS_ALL tools)
  orv_gzip(${PROJECT_SOURCE_DIR}/packaging/man/orv-viewer.1 ${zipped}/orv-viewer.1.gz)
  install(FILES ${zipped}/orv-viewer.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
    COMPONENT tools)
endif()

foreach(component ${CPACK_COMPONENTS_ALL})
  string(TOUPPER ${component} upper)
  set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  install(FILES ${debian}/copyright ${zipped}/changelog.Debian.gz ${zipped}/changelog.gz
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
  install(FILES ${debian}/lintian-overrides RENAME ${package}
    DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides COMPONENT ${component})
endforeach()
install(DIRECTORY plugins/template/
  DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_DEV_PACKAGE_NAME}/examples/plugin
  COMPONENT dev)

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_PACKAGE_NAME orv)
set(CPACK_PACKAGE_VENDOR "Orvane Core team")
set(CPACK_PACKAGE_CONTACT "Orvane Core team <team@orvane-core.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SOURCE orv)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/src)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_POST_BUILD_SCRIPTS ${debian}/finish.cmake)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(about "Orvane Core draws scenes of nodes, meshes, materials, textures, lights and
cameras through OpenGL 2 to 4, on X11 windows and off screen. It loads OBJ, 3DS
and STL models and the common image formats, and has no main loop of its own.
")

set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "real-time 3D graphics framework, shared library
${about}
This package holds the shared library.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
# What is loaded by name is not found by looking at the library: the packages of the files do it.
if(ORV_LATE_LIBRARIES)
  foreach(library ${ORV_ZIP_LIBRARY} ${ORV_FONTCONFIG_LIBRARY})
    file(REAL_PATH ${library} file)
    execute_process(COMMAND dpkg-query --search ${file} OUTPUT_VARIABLE owner
      COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX REPLACE ":.*" "" owner "${owner}")
    list(APPEND late_packages ${owner})
  endforeach()
  list(JOIN late_packages ", " CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS)
endif()
# Loaded by name at run time, as far as they are there.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "libegl1, libgl1, libx11-6")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${debian}/triggers)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

set(CPACK_DEBIAN_DEV_DESCRIPTION "real-time 3D graphics framework, development files
${about}
This package holds the headers, the files for CMake and pkg-config, and a
template of a plugin module.")
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_SUGGESTS "cmake, pkgconf")
set(CPACK_COMPONENT_DEV_DEPENDS runtime)

set(CPACK_DEBIAN_TOOLS_DESCRIPTION "real-time 3D graphics framework, model viewer
${about}
This package holds orv-viewer, which shows models in a window and renders
pictures of them without one.")
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION graphics)
set(CPACK_COMPONENT_TOOLS_DEPENDS runtime)

include(CPack)
