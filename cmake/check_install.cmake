# Installs the build into a fresh PREFIX and checks what arrives: exactly the
# programs an engineer runs off the device, in PREFIX/bin, each of which
# starts from there (it finds the platform's libutils) and prints its usage.
# Usage: cmake -DBUILD_DIR=DIR -DPREFIX=DIR -P check_install.cmake
file(REMOVE_RECURSE ${PREFIX})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX}
  RESULT_VARIABLE status OUTPUT_QUIET)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "cmake --install failed: ${status}")
endif()
file(GLOB_RECURSE installed RELATIVE ${PREFIX} ${PREFIX}/*)
list(SORT installed)
set(expected bin/zo_cmd_debug_host bin/zo_conf_check bin/zo_service_sim)
if(NOT installed STREQUAL expected)
  message(FATAL_ERROR "installed: ${installed}\nexpected: ${expected}")
endif()

# --help: usage on standard output, status 0; the console takes no options:
# a missing directory is a usage error, status 2, the reason and the usage on standard error.
# Each run: program, argument ("none" for none), status, start of standard output ("none" for nothing).
foreach(run "zo_service_sim;--help;0;usage" "zo_conf_check;--help;0;usage" "zo_cmd_debug_host;none;2;none")
  list(GET run 0 program)
  list(GET run 1 arg)
  list(GET run 2 want)
  list(GET run 3 out_word)
  string(REGEX REPLACE "^none$" "" arg ${arg})
  string(REGEX REPLACE "^none$" "" out_word ${out_word})
  execute_process(COMMAND ${PREFIX}/bin/${program} ${arg}
    RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT status STREQUAL want OR NOT out MATCHES "^${out_word}" OR (want EQUAL 2 AND NOT err MATCHES "\nusage: "))
    message(FATAL_ERROR "${program} ${arg}: status ${status} (want ${want})\nout: ${out}\nerr: ${err}")
  endif()
endforeach()
message(STATUS "installed and started: ${installed}")
