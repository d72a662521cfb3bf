# What the device build (Android.bp) must agree with.
#
# Writes device/zo_cmd_debug_sources.txt in the build folder: every source
# CMake compiles into the program zo_cmd_debug, found by walking its link
# libraries, less the targets of platform/ (the device links its own libraries
# instead). With the tests on, CTest checks that Android.bp lists exactly
# these sources and that bpfmt leaves Android.bp as it is.

function(zo_collect_sources target out_var)
  set(seen ${ARGN})
  set(sources "")
  if(NOT TARGET ${target} OR target IN_LIST seen)
    set(${out_var} "" PARENT_SCOPE)
    return()
  endif()
  get_target_property(imported ${target} IMPORTED)
  get_target_property(dir ${target} SOURCE_DIR)
  file(RELATIVE_PATH rel_dir ${CMAKE_SOURCE_DIR} ${dir})
  if(imported OR rel_dir MATCHES "^platform(/|$)")
    set(${out_var} "" PARENT_SCOPE)
    return()
  endif()
  list(APPEND seen ${target})
  get_target_property(own ${target} SOURCES)
  foreach(src IN LISTS own)
    if(src MATCHES "\\.(c|cc|cpp)$")
      if(NOT IS_ABSOLUTE ${src})
        set(src ${dir}/${src})
      endif()
      file(RELATIVE_PATH src ${CMAKE_SOURCE_DIR} ${src})
      list(APPEND sources ${src})
    endif()
  endforeach()
  get_target_property(deps ${target} LINK_LIBRARIES)
  foreach(dep IN LISTS deps)
    string(REGEX REPLACE "^\\$<LINK_ONLY:(.*)>$" "\\1" dep "${dep}")
    zo_collect_sources(${dep} dep_sources ${seen})
    list(APPEND sources ${dep_sources})
    list(APPEND seen ${dep})
  endforeach()
  set(${out_var} ${sources} PARENT_SCOPE)
endfunction()

zo_collect_sources(zo_cmd_debug zo_cmd_debug_sources)
list(REMOVE_DUPLICATES zo_cmd_debug_sources)
list(SORT zo_cmd_debug_sources)
list(JOIN zo_cmd_debug_sources "\n" zo_sources_text)
set(ZO_DEVICE_SOURCES_FILE ${CMAKE_BINARY_DIR}/device/zo_cmd_debug_sources.txt)
file(GENERATE OUTPUT ${ZO_DEVICE_SOURCES_FILE} CONTENT "${zo_sources_text}\n")

if(ZO_BUILD_TESTS AND NOT CMAKE_CROSSCOMPILING)
  add_test(NAME android_bp_sources
    COMMAND ${CMAKE_COMMAND} -DANDROID_BP=${CMAKE_SOURCE_DIR}/Android.bp
      -DCMAKE_SOURCES=${ZO_DEVICE_SOURCES_FILE} -P ${CMAKE_SOURCE_DIR}/cmake/check_android_bp_sources.cmake)
  find_program(ZO_BPFMT bpfmt)
  if(NOT ZO_BPFMT)
    set(ZO_BPFMT bpfmt)  # the test then fails, naming the missing tool
  endif()
  add_test(NAME android_bp_format
    COMMAND ${CMAKE_COMMAND} -DANDROID_BP=${CMAKE_SOURCE_DIR}/Android.bp -DBPFMT=${ZO_BPFMT}
      -P ${CMAKE_SOURCE_DIR}/cmake/check_android_bp_format.cmake)
endif()
