# Fails when the sources Android.bp lists for MODULE differ from the ones
# CMake builds into it (CMAKE_SOURCES, written by cmake/device_build.cmake).
# Usage: cmake -DANDROID_BP=FILE -DMODULE=NAME -DCMAKE_SOURCES=FILE -P check_android_bp_sources.cmake
include(${CMAKE_CURRENT_LIST_DIR}/android_bp.cmake)

zo_bp_list(${ANDROID_BP} ${MODULE} srcs bp_sources)
file(STRINGS ${CMAKE_SOURCES} cmake_sources)
if(NOT cmake_sources)
  message(FATAL_ERROR "CMake builds no source into ${MODULE}: ${CMAKE_SOURCES} is empty")
endif()

set(only_bp ${bp_sources})
list(REMOVE_ITEM only_bp ${cmake_sources})
set(only_cmake ${cmake_sources})
if(bp_sources)
  list(REMOVE_ITEM only_cmake ${bp_sources})
endif()
set(twice ${bp_sources})
list(REMOVE_DUPLICATES twice)
list(LENGTH twice distinct)
list(LENGTH bp_sources listed)

if(only_bp OR only_cmake OR NOT distinct EQUAL listed)
  list(JOIN only_bp ", " only_bp)
  list(JOIN only_cmake ", " only_cmake)
  message(FATAL_ERROR "Android.bp and CMake build different sources into ${MODULE}:\n"
    "  only in Android.bp: ${only_bp}\n  only in CMake: ${only_cmake}\n"
    "  listed in Android.bp: ${listed}, of them distinct: ${distinct}")
endif()
list(LENGTH cmake_sources count)
message(STATUS "Android.bp lists the ${count} sources CMake builds into ${MODULE}")
