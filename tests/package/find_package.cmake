include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)
set(folder ${WORK}/find_package)
file(REMOVE_RECURSE ${folder})
must(${CMAKE_COMMAND} -S ${SOURCE}/tests/package/host -B ${folder} -DCMAKE_PREFIX_PATH=${PREFIX}
  -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_BUILD_TYPE=Release)
must(${CMAKE_COMMAND} --build ${folder})
must_draw(${folder}/host ${folder}/)
