# The platform's own libutils (String16, String8, status_t) from Debian's
# android-libutils-dev: headers in /usr/include/android, the library in the
# android/ folder of the target's multiarch library directory. Cross builds
# find the armhf library that the multiarch package installs beside the host's.
#
# Defines the imported target android::libutils. Its headers are system
# headers to every consumer, so the -I folders of the project are searched
# first: that is how <binder/Parcel.h> keeps resolving to the stand-in in
# platform/include although the real one sits in the same folder.
#
# Cross builds, two traps of the multiarch packages, both handled here:
# - libutils needs its libbacktrace, which needs 7-Zip's 7z.so from
#   /usr/lib/p7zip. That folder is not per architecture: beside the host's
#   package it holds the host's library, which neither the cross linker nor
#   the armhf loader can use. scripts/test-armhf unpacks the armhf 7z.so from
#   its package and names the folder in ZO_ARMHF_7Z_DIR.
# - The packages bring the armhf C library (libc6:armhf), whose entries in the
#   host's loader cache win over the cross toolchain's copy that qemu-arm -L
#   provides: the loader of one and the C library of the other crash threads
#   and fork. qemu-arm therefore puts the toolchain's lib folder first on the
#   programs' library path, followed by the 7z.so folder.
if(TARGET android::libutils)
  return()
endif()

set(ZO_ANDROID_INCLUDE_DIR /usr/include/android)
set(ZO_ANDROID_LIB_DIR /usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/android)
find_library(ZO_ANDROID_LIBUTILS NAMES utils libutils.so.0
  PATHS ${ZO_ANDROID_LIB_DIR} NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
if(NOT ZO_ANDROID_LIBUTILS OR NOT EXISTS ${ZO_ANDROID_INCLUDE_DIR}/utils/String16.h)
  message(FATAL_ERROR "The platform's libutils is missing (looked in ${ZO_ANDROID_LIB_DIR} and "
    "${ZO_ANDROID_INCLUDE_DIR}): install android-libutils-dev for this architecture (scripts/setup, "
    "scripts/test-armhf)")
endif()

# Without a 7z.so the programs still link (libbacktrace's references to it are
# left open), which is enough to measure them, but they cannot start.
if(CMAKE_CROSSCOMPILING)
  if(ZO_ARMHF_7Z_DIR AND EXISTS ${ZO_ARMHF_7Z_DIR}/7z.so)
    add_link_options(-Wl,-rpath-link,${ZO_ARMHF_7Z_DIR})
    if(CMAKE_CROSSCOMPILING_EMULATOR)
      list(APPEND CMAKE_CROSSCOMPILING_EMULATOR
        -E LD_LIBRARY_PATH=/usr/${CMAKE_LIBRARY_ARCHITECTURE}/lib:${ZO_ARMHF_7Z_DIR})
    endif()
  else()
    message(WARNING "No 7z.so for ${CMAKE_LIBRARY_ARCHITECTURE} (ZO_ARMHF_7Z_DIR): the programs link but "
      "cannot start; scripts/test-armhf provides it")
    add_link_options(-Wl,--allow-shlib-undefined)
  endif()
endif()

# Installed programs find the library where the package put it, off the
# loader's default path.
if(NOT CMAKE_CROSSCOMPILING)
  set(CMAKE_INSTALL_RPATH ${ZO_ANDROID_LIB_DIR})
endif()

add_library(android::libutils SHARED IMPORTED)
set_target_properties(android::libutils PROPERTIES
  IMPORTED_LOCATION ${ZO_ANDROID_LIBUTILS}
  INTERFACE_INCLUDE_DIRECTORIES ${ZO_ANDROID_INCLUDE_DIR})
