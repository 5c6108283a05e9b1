# orv.h brings in every public header; and no public header brings in a header of a graphics system
# or of another library.
cmake_minimum_required(VERSION 3.25)
execute_process(COMMAND ${CXX} -std=c++17 -M -I${SOURCE}/include -include orv/orv.h -x c++ /dev/null
  OUTPUT_VARIABLE reached ERROR_VARIABLE errors RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "${errors}")
endif()
string(REGEX MATCHALL "[^ \n\\]+\\.(h|inc|hpp)" files "${reached}")

file(GLOB_RECURSE headers RELATIVE ${SOURCE}/include ${SOURCE}/include/orv/*.h)
list(LENGTH headers count)
if(count LESS 50)
  message(FATAL_ERROR "only ${count} public headers found")
endif()
foreach(header ${headers})
  if(NOT "${SOURCE}/include/${header}" IN_LIST files)
    message(SEND_ERROR "orv.h does not include ${header}")
  endif()
endforeach()

foreach(file ${files})
  if(file MATCHES "/(GL|GLES|GLES2|GLES3|EGL|KHR|X11|xcb|stb|lib3ds|fontconfig)/|/(stb_|tiny|zip)[^/]*$")
    message(SEND_ERROR "a public header includes ${file}")
  endif()
endforeach()
