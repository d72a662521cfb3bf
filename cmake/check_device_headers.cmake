# Compiles (syntax only) every source that Android.bp builds for the device
# (the console and the service library) against the platform's real headers,
# with each module's include folders,
# language standard and warning flags: binder/Parcel.h from Debian's
# android-platform-frameworks-native-headers, utils/ from android-libutils-dev.
# libbinder is not packaged, so nothing is linked.
#
# The support library is not packaged either: its header comes from our
# stand-in, copied alone into WORK_DIR so that no other stand-in can be
# found, and with its host-only hooks hidden (ZO_TV_SUPPORT_DEVICE_API).
# The device's clang and C++ library make <memory> and <limits> available to
# the platform headers without their including them; -include does the same
# here, and the packaged headers stay untouched.
#
# Usage: cmake [-DCXX=clang++] [-DWORK_DIR=DIR] -P cmake/check_device_headers.cmake
include(${CMAKE_CURRENT_LIST_DIR}/android_bp.cmake)
get_filename_component(root ${CMAKE_CURRENT_LIST_DIR}/.. ABSOLUTE)
if(NOT CXX)
  set(CXX clang++)
endif()
if(NOT WORK_DIR)
  set(WORK_DIR ${root}/build/device-headers)
endif()

set(platform_headers /usr/include/android)
foreach(header binder/Parcel.h utils/String16.h utils/String8.h utils/Errors.h)
  if(NOT EXISTS ${platform_headers}/${header})
    message(FATAL_ERROR "${platform_headers}/${header} is missing: install "
      "android-platform-frameworks-native-headers and android-libutils-dev (scripts/setup)")
  endif()
endforeach()
file(REMOVE_RECURSE ${WORK_DIR})
file(COPY ${root}/platform/include/zo_tv_support.h DESTINATION ${WORK_DIR}/support)

set(bp ${root}/Android.bp)
set(failed "")
set(count 0)
foreach(module zo_cmd_debug libzoshmservice)
  zo_bp_list(${bp} ${module} srcs sources)
  zo_bp_list(${bp} ${module} local_include_dirs include_dirs)
  zo_bp_list(${bp} ${module} export_include_dirs exported_dirs)
  zo_bp_list(${bp} ${module} cflags cflags)
  zo_bp_string(${bp} ${module} cpp_std std)
  if(NOT sources OR NOT std)
    message(FATAL_ERROR "${bp} names no srcs or no cpp_std for ${module}")
  endif()

  set(flags -std=${std} ${cflags} -fsyntax-only -include memory -include limits -DZO_TV_SUPPORT_DEVICE_API)
  foreach(dir IN LISTS include_dirs exported_dirs)
    list(APPEND flags -I${root}/${dir})
  endforeach()
  list(APPEND flags -I${platform_headers} -I${WORK_DIR}/support)

  foreach(src IN LISTS sources)
    execute_process(COMMAND ${CXX} ${flags} ${root}/${src}
      RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT status EQUAL 0)
      message("${output}")
      list(APPEND failed ${src})
    endif()
    math(EXPR count "${count} + 1")
  endforeach()
endforeach()
if(failed)
  list(JOIN failed ", " failed)
  message(FATAL_ERROR "device headers: these sources do not compile against the platform's headers: ${failed}")
endif()
message("device headers: ${count} sources compile against the platform's real headers")
