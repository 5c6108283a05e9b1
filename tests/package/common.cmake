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
