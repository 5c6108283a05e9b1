include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)
must_build_hosts_around_tree(${BUILD}-add_subdirectory)
