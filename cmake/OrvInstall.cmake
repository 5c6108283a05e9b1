# Headers, library and package files for hosts outside this tree.
include(CMakePackageConfigHelpers)

install(TARGETS orv EXPORT orv-targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev)
install(DIRECTORY include/orv DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev)
install(EXPORT orv-targets NAMESPACE orv:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/orv
  COMPONENT dev)

configure_package_config_file(cmake/orv-config.cmake.in ${PROJECT_BINARY_DIR}/orv-config.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/orv)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/orv-config-version.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/orv-config.cmake ${PROJECT_BINARY_DIR}/orv-config-version.cmake
  cmake/OrvPlugin.cmake cmake/orv_plugin_exports.map
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/orv COMPONENT dev)

configure_file(cmake/orv.pc.in ${PROJECT_BINARY_DIR}/orv.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/orv.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
  COMPONENT dev)

if(TARGET orv-viewer)
  if(NOT ORV_DEBIAN_PACKAGES)
    # Installed anywhere, it finds the library beside it; packages put both where all look.
    file(RELATIVE_PATH libraries /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
    set_target_properties(orv-viewer PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
  endif()
  install(TARGETS orv-viewer RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
endif()
