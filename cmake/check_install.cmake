# Installs the build into a fresh PREFIX and checks what arrives: in
# PREFIX/bin exactly the programs an engineer runs off the device, each of
# which starts from there (it finds the platform's libutils) and prints its
# usage; and the service library's CMake package, with which a project outside
# this tree (tests/package) builds the minimal service. The same outside
# project then builds it with this repository as its subdirectory.
# Usage: cmake -DBUILD_DIR=DIR -DPREFIX=DIR -DROOT=REPOSITORY -DGENERATOR=G -DCC=C_COMPILER -DCXX=CXX_COMPILER
#          [-DLAUNCHER=ccache] -P check_install.cmake
cmake_minimum_required(VERSION 3.16)
file(REMOVE_RECURSE ${PREFIX})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX}
  RESULT_VARIABLE status OUTPUT_QUIET)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "cmake --install failed: ${status}")
endif()
file(GLOB_RECURSE installed RELATIVE ${PREFIX} ${PREFIX}/*)
list(SORT installed)
set(programs ${installed})
list(FILTER programs INCLUDE REGEX "^bin/")
set(expected bin/zo_cmd_debug_host bin/zo_conf_check bin/zo_service_sim)
set(strays ${installed})
list(FILTER strays EXCLUDE REGEX "^(bin/|lib/libzo_[a-z_]+\\.a$|lib/cmake/ZoShmService/|include/zo_cmd_debug/.*\\.h$)")
if(NOT programs STREQUAL expected OR strays
    OR NOT "lib/cmake/ZoShmService/ZoShmServiceConfig.cmake" IN_LIST installed
    OR NOT "include/zo_cmd_debug/platform/include/binder/Parcel.h" IN_LIST installed)
  message(FATAL_ERROR "installed: ${installed}\nexpected the programs ${expected}, the package and headers")
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

# The outside project, built each way; its service starts and reports the
# directory it cannot open.
foreach(mode package subdirectory)
  set(dir ${PREFIX}-outside/${mode})
  file(REMOVE_RECURSE ${dir})
  if(mode STREQUAL "package")
    set(source -DCMAKE_PREFIX_PATH=${PREFIX})
  else()
    set(source -DZO_SOURCE_DIR=${ROOT})
  endif()
  execute_process(COMMAND ${CMAKE_COMMAND} -S ${ROOT}/tests/package -B ${dir} -G ${GENERATOR}
      -DCMAKE_C_COMPILER=${CC} -DCMAKE_CXX_COMPILER=${CXX}
      -DCMAKE_C_COMPILER_LAUNCHER=${LAUNCHER} -DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER} ${source}
    RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(status EQUAL 0)
    execute_process(COMMAND ${CMAKE_COMMAND} --build ${dir} --target outside_service
      RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE out)
  endif()
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "the outside project (${mode}) does not build:\n${out}")
  endif()
  execute_process(COMMAND ${dir}/outside_service ${dir}/missing TIMEOUT 20
    RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT status EQUAL 1 OR NOT err MATCHES "^minimal_service: ")
    message(FATAL_ERROR "the outside service (${mode}): status ${status}\nout: ${out}\nerr: ${err}")
  endif()
endforeach()
message(STATUS "installed and started: ${programs}; the package and the subdirectory build the minimal service")
