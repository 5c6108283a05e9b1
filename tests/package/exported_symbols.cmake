# The library exports names of namespace orv and nothing else: no C name, no instance of a standard
# template, nothing of the libraries that are compiled into it.
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)
must(nm -D --defined-only ${LIBRARY})
string(REGEX MATCHALL "[^\n]+" lines "${must_output}")

set(known 0)
foreach(line ${lines})
  string(REGEX REPLACE "^[0-9a-f]* +[A-Za-z] +" "" symbol "${line}")
  if(NOT symbol MATCHES "^_Z(TI|TS|TV|TT|GV|T[hvc][0-9n_]+)?N[KV]?3orv")
    execute_process(COMMAND c++filt ${symbol} OUTPUT_VARIABLE name)
    message(SEND_ERROR "exported: ${name}")
  endif()
  # One of each kind that hosts and modules cannot do without.
  if(symbol MATCHES "^(_ZN3orv4core5startE|_ZN3orv6PluginC2Ev$|_ZTVN3orv8RendererE$|_ZTIN3orv4NodeE$|_ZN3orv6Kernel3getEv$)")
    math(EXPR known "${known} + 1")
  endif()
endforeach()

list(LENGTH lines count)
if(count LESS 1000 OR NOT known EQUAL 5)
  message(FATAL_ERROR "${count} exported names, ${known} of 5 known ones")
endif()
