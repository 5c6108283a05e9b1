# The template of a module, copied out of the tree as its README says, builds against the installed
# package, exports nothing but the functions of a plugin, and loads models for a host.
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)
set(folder ${WORK}/template_plugin)
file(REMOVE_RECURSE ${folder})
file(COPY ${SOURCE}/plugins/template DESTINATION ${folder})

must(${CMAKE_COMMAND} -S ${folder}/template -B ${folder}/build -DCMAKE_BUILD_TYPE=Release
  -DCMAKE_PREFIX_PATH=${PREFIX} -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_CXX_FLAGS=-Werror)
must(${CMAKE_COMMAND} --build ${folder}/build)
must(${CMAKE_COMMAND} --install ${folder}/build --prefix ${folder}/installed)
set(modules ${folder}/installed/lib/orv/plugins/)
set(module ${modules}plugin_orv_off_x64.so)

must(nm -D --defined-only --format=just-symbols ${module})
string(REGEX MATCHALL "[^\n]+" names "${must_output}")
list(SORT names)
if(NOT names STREQUAL "orv_plugin_create;orv_plugin_destroy")
  message(FATAL_ERROR "the module exports ${names}")
endif()

must(${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR}/plugin_host -B ${folder}/host
  -DCMAKE_BUILD_TYPE=Release -DCMAKE_PREFIX_PATH=${PREFIX} -DCMAKE_CXX_COMPILER=${CXX})
must(${CMAKE_COMMAND} --build ${folder}/host)
must(${folder}/host/plugin_host ${modules} ${folder}/template/models/ ${folder}/)
if(NOT must_output MATCHES "all well")
  message(FATAL_ERROR "the host said: ${must_output}")
endif()
