# Cross build for the device's architecture: 32-bit ARM, hard-float ABI.
#
# Uses Debian's cross compiler (g++-arm-linux-gnueabihf). Libraries for the
# target come from the cross toolchain's sysroot and from Debian's multiarch
# folder /usr/lib/arm-linux-gnueabihf (libgtest-dev:armhf). Programs built
# here run on the host through qemu-arm, which CMake and CTest put in front of
# every target program they start (test discovery included).
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)

set(ZO_CROSS_TRIPLE arm-linux-gnueabihf)
set(CMAKE_C_COMPILER ${ZO_CROSS_TRIPLE}-gcc)
set(CMAKE_CXX_COMPILER ${ZO_CROSS_TRIPLE}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${ZO_CROSS_TRIPLE})

# qemu-arm finds the target's loader and shared libraries under -L.
find_program(ZO_QEMU_ARM qemu-arm)
if(ZO_QEMU_ARM)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${ZO_QEMU_ARM};-L;/usr/${ZO_CROSS_TRIPLE})
endif()

# Look for libraries and packages for the target only, programs on the host.
set(CMAKE_FIND_ROOT_PATH /usr/${ZO_CROSS_TRIPLE} /usr/lib/${ZO_CROSS_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE BOTH)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
