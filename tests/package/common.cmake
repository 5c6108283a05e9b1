# What the scripts of this folder share.
cmake_minimum_required(VERSION 3.25)

# Runs a command and ends the test with its output when it fails.
function(must)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT status EQUAL 0)
    list(JOIN ARGV " " command)
    message(FATAL_ERROR "${command}\n${out}\n${err}")
  endif()
  set(must_output "${out}" PARENT_SCOPE)
endfunction()

# Runs a host and looks for the line that says it drew.
function(must_draw)
  must(${ARGV})
  if(NOT must_output MATCHES "drew a frame")
    message(FATAL_ERROR "the host said: ${must_output}")
  endif()
endfunction()

# Writes the first C++ program of README.md to a file: hosts are built from what readers copy.
function(extract_readme_program file)
  file(READ ${SOURCE}/README.md text)
  string(FIND "${text}" "```cpp\n" begin)
  if(begin LESS 0)
    message(FATAL_ERROR "README.md holds no program")
  endif()
  math(EXPR begin "${begin} + 7")
  string(SUBSTRING "${text}" ${begin} -1 text)
  string(FIND "${text}" "```" end)
  string(SUBSTRING "${text}" 0 ${end} text)
  string(REGEX REPLACE "[][;]" "" plain "${text}")
  string(REGEX MATCHALL "[^\n]+" lines "${plain}")
  list(LENGTH lines count)
  if(count GREATER 30 OR NOT text MATCHES "#include <orv/orv.h>")
    message(FATAL_ERROR "the program of README.md: ${count} lines\n${text}")
  endif()
  file(WRITE ${file} "${text}")
endfunction()

# Runs the program of README.md, which draws off screen and leaves a log, in a folder.
function(must_run_readme_program program folder)
  file(REMOVE ${folder}/orv.log)
  must(${CMAKE_COMMAND} -E chdir ${folder} ${program})
  file(READ ${folder}/orv.log log)
  if(NOT log MATCHES "bye")
    message(FATAL_ERROR "the program of README.md logged: ${log}")
  endif()
endfunction()

# Builds and runs both hosts of the folder host/: what README.md shows, and one with a module.
function(must_build_hosts folder)
  file(REMOVE_RECURSE ${folder})
  extract_readme_program(${folder}/readme.cpp)
  must(${CMAKE_COMMAND} -S ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/host -B ${folder}
    -DREADME_PROGRAM=${folder}/readme.cpp -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_BUILD_TYPE=Release
    -DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER} ${ARGN})
  # A bare -j would start a compiler for every source at once.
  cmake_host_system_information(RESULT cores QUERY NUMBER_OF_LOGICAL_CORES)
  must(${CMAKE_COMMAND} --build ${folder} -j ${cores})
  must_draw(${folder}/host ${folder}/)
  must_run_readme_program(${folder}/readme ${folder})
endfunction()

# With this tree as a part of the host's: nothing but the library may be built of it.
function(must_build_hosts_around_tree folder)
  # With the generator and the flags of the tree's own build: a compiler cache knows the objects.
  must_build_hosts(${folder} -DORV_TREE=${SOURCE} -DORV_WERROR=ON -G ${GENERATOR} ${ARGN})
  file(STRINGS ${folder}/CMakeCache.txt options REGEX "^ORV_(BUILD_[A-Z]+|INSTALL):")
  list(LENGTH options count)
  if(count LESS 6)
    message(FATAL_ERROR "options: ${options}")
  endif()
  foreach(option ${options})
    if(NOT option MATCHES "=OFF$")
      message(FATAL_ERROR "on in a subproject: ${option}")
    endif()
  endforeach()
endfunction()
