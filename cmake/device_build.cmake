# What the device build (Android.bp) must agree with.
#
# For each module of Android.bp and the CMake target it is built from (the
# program zo_cmd_debug, the service library libzoshmservice from
# zo_shm_service), writes device/MODULE_sources.txt in the build folder: every
# source CMake compiles into the target, found by walking its link libraries,
# less the targets of platform/ (the device links its own libraries instead).
# With the tests on, CTest checks that Android.bp lists exactly these sources
# and that bpfmt leaves Android.bp as it is.

function(zo_collect_sources target out_var)
  set(seen ${ARGN})
  set(sources "")
  if(NOT TARGET ${target} OR target IN_LIST seen)
    set(${out_var} "" PARENT_SCOPE)
    return()
  endif()
  get_target_property(imported ${target} IMPORTED)
  get_target_property(dir ${target} SOURCE_DIR)
  file(RELATIVE_PATH rel_dir ${PROJECT_SOURCE_DIR} ${dir})
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
      file(RELATIVE_PATH src ${PROJECT_SOURCE_DIR} ${src})
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

set(ZO_DEVICE_MODULES zo_cmd_debug:zo_cmd_debug libzoshmservice:zo_shm_service)
foreach(pair IN LISTS ZO_DEVICE_MODULES)
  string(REPLACE ":" ";" pair ${pair})
  list(GET pair 0 module)
  list(GET pair 1 target)
  zo_collect_sources(${target} sources)
  list(REMOVE_DUPLICATES sources)
  list(SORT sources)
  list(JOIN sources "\n" sources_text)
  set(sources_file ${PROJECT_BINARY_DIR}/device/${module}_sources.txt)
  file(GENERATE OUTPUT ${sources_file} CONTENT "${sources_text}\n")
  if(ZO_BUILD_TESTS AND NOT CMAKE_CROSSCOMPILING)
    add_test(NAME android_bp_sources_${module}
      COMMAND ${CMAKE_COMMAND} -DANDROID_BP=${PROJECT_SOURCE_DIR}/Android.bp -DMODULE=${module}
        -DCMAKE_SOURCES=${sources_file} -P ${PROJECT_SOURCE_DIR}/cmake/check_android_bp_sources.cmake)
  endif()
endforeach()

if(ZO_BUILD_TESTS AND NOT CMAKE_CROSSCOMPILING)
  find_program(ZO_BPFMT bpfmt)
  if(NOT ZO_BPFMT)
    set(ZO_BPFMT bpfmt)  # the test then fails, naming the missing tool
  endif()
  add_test(NAME android_bp_format
    COMMAND ${CMAKE_COMMAND} -DANDROID_BP=${PROJECT_SOURCE_DIR}/Android.bp -DBPFMT=${ZO_BPFMT}
      -P ${PROJECT_SOURCE_DIR}/cmake/check_android_bp_format.cmake)
endif()
