# orv_add_plugin(NAME name SOURCES file...)
#
# Adds a plugin module: plugin_orv_NAME_x64.so, without a "lib" prefix, everything hidden but what
# is marked ORV_PLUGIN_EXPORT. Libraries that the module brings along are found beside it.
function(orv_add_plugin)
  cmake_parse_arguments(PLUGIN "" "NAME" "SOURCES" ${ARGN})
  if(NOT PLUGIN_NAME OR NOT PLUGIN_SOURCES)
    message(FATAL_ERROR "orv_add_plugin needs NAME and SOURCES")
  endif()
  add_library(plugin_orv_${PLUGIN_NAME} MODULE ${PLUGIN_SOURCES})
  set_target_properties(plugin_orv_${PLUGIN_NAME} PROPERTIES
    PREFIX ""
    SUFFIX "_x64.so"
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    BUILD_RPATH_USE_ORIGIN ON
    INSTALL_RPATH "$ORIGIN")
  target_link_libraries(plugin_orv_${PLUGIN_NAME} PRIVATE orv::orv)
endfunction()
