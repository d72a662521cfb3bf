# The programs an engineer runs off the device answer their command line
# alike (common/zo_usage_error.h): --help prints the usage on standard output
# with status 0; a usage error prints two lines on standard error, the reason
# and the usage line pointing at --help, with status 2.
#
# Then every example the README and docs/*.md show, an indented code line
# "$ build/PROGRAM ARGS" followed by the lines it prints, is run from the
# source folder and must print exactly those lines.
# Usage: cmake -DBUILD_DIR=DIR -DROOT=DIR -P check_programs.cmake

# program, then an argument that is a usage error ("none" for no argument)
foreach(run "zo_cmd_debug_host;none" "zo_cmd_debug_host;--quiet" "zo_service_sim;none" "zo_conf_check;--loud"
    "zo_demo_tv;none")
  list(GET run 0 program)
  list(GET run 1 arg)
  string(REGEX REPLACE "^none$" "" arg ${arg})
  execute_process(COMMAND ${BUILD_DIR}/${program} --help RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT status EQUAL 0 OR NOT out MATCHES "^usage: ${program} " OR NOT err STREQUAL "")
    message(FATAL_ERROR "${program} --help: status ${status}\nout: ${out}\nerr: ${err}")
  endif()
  execute_process(COMMAND ${BUILD_DIR}/${program} ${arg} RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT status EQUAL 2 OR NOT out STREQUAL ""
     OR NOT err MATCHES "^${program}: [^\n]+\nusage: ${program} [^\n]+ \\(${program} --help tells more\\)\n$")
    message(FATAL_ERROR "${program} ${arg}: status ${status}\nout: ${out}\nerr: ${err}")
  endif()
endforeach()

file(GLOB docs ${ROOT}/docs/*.md)
set(examples 0)
foreach(doc ${ROOT}/README.md ${docs})
  # Lines as a list: ";" and brackets, which a CMake list does not keep, stand in for themselves as codes.
  file(READ ${doc} text)
  string(REPLACE ";" "<semicolon>" text "${text}")
  string(REPLACE "[" "<open>" text "${text}")
  string(REPLACE "]" "<close>" text "${text}")
  string(REPLACE "\n" ";" lines "${text}")
  set(command "")
  # A line past the last one ends the last example.
  foreach(line IN LISTS lines ITEMS "<end>")
    string(REPLACE "<semicolon>" ";" line "${line}")
    string(REPLACE "<open>" "[" line "${line}")
    string(REPLACE "<close>" "]" line "${line}")
    if(NOT command STREQUAL "" AND line MATCHES "^    " AND NOT line MATCHES "^    \\$ ")
      string(SUBSTRING "${line}" 4 -1 line)
      string(APPEND shown "${line}\n")
      continue()
    endif()
    if(NOT command STREQUAL "")
      separate_arguments(args UNIX_COMMAND "${command}")
      list(POP_FRONT args program)
      string(REGEX REPLACE "^build/" "${BUILD_DIR}/" program ${program})
      execute_process(COMMAND ${program} ${args} WORKING_DIRECTORY ${ROOT} OUTPUT_VARIABLE out ERROR_VARIABLE out)
      if(NOT out STREQUAL shown)
        message(FATAL_ERROR "${doc} shows\n$ ${command}\n${shown}but it prints\n${out}")
      endif()
      math(EXPR examples "${examples} + 1")
      set(command "")
    endif()
    if(line MATCHES "^    \\$ (.*)$")
      set(command "${CMAKE_MATCH_1}")
      set(shown "")
    endif()
  endforeach()
endforeach()
if(examples EQUAL 0)
  message(FATAL_ERROR "no example found in ${ROOT}/README.md or ${ROOT}/docs/")
endif()
message(STATUS "4 programs follow the conventions; ${examples} examples print what they show")
