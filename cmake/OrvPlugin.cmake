# orv_add_plugin(NAME name SOURCES file...)
#
# Adds a plugin module: plugin_orv_NAME_x64.so, without a "lib" prefix, everything hidden but what
# is marked ORV_PLUGIN_EXPORT. Libraries that the module brings along are found beside it.
set(ORV_PLUGIN_EXPORTS ${CMAKE_CURRENT_LIST_DIR}/orv_plugin_exports.map CACHE INTERNAL "")

function(orv_add_plugin)
  cmake_parse_arguments(PLUGIN "" "NAME" "SOURCES" ${ARGN})
  # Compared as texts: "off" is a name, too.
  if("${PLUGIN_NAME}" STREQUAL "" OR "${PLUGIN_SOURCES}" STREQUAL "")
    message(FATAL_ERROR "orv_add_plugin needs NAME and SOURCES")
  endif()
  add_library(plugin_orv_${PLUGIN_NAME} MODULE ${PLUGIN_SOURCES})
  set_target_properties(plugin_orv_${PLUGIN_NAME} PROPERTIES
    PREFIX ""
    SUFFIX "_x64.so"
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    BUILD_RPATH_USE_ORIGIN ON
    INSTALL_RPATH "$ORIGIN"
    LINK_DEPENDS ${ORV_PLUGIN_EXPORTS})
  target_link_libraries(plugin_orv_${PLUGIN_NAME} PRIVATE orv::orv)
  target_link_options(plugin_orv_${PLUGIN_NAME} PRIVATE
    -Wl,--version-script=${ORV_PLUGIN_EXPORTS})
endfunction()
