include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)
must_build_hosts(${WORK}/find_package -DCMAKE_PREFIX_PATH=${PREFIX})

# The host by which the Conan recipe tests its package.
set(folder ${WORK}/conan_test_package)
file(REMOVE_RECURSE ${folder})
must(${CMAKE_COMMAND} -S ${SOURCE}/packaging/conan/test_package -B ${folder}
  -DCMAKE_PREFIX_PATH=${PREFIX} -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_BUILD_TYPE=Release)
must(${CMAKE_COMMAND} --build ${folder})
must(${folder}/host)
if(NOT must_output MATCHES "a torus of [1-9]")
  message(FATAL_ERROR "the host said: ${must_output}")
endif()
