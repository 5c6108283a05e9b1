include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)
must_build_hosts(${WORK}/find_package -DCMAKE_PREFIX_PATH=${PREFIX})
