# Cross build for the TV's own architecture, 32-bit ARM with hard float (armhf), with clang
# and lld: Debian's GCC cross compiler cannot be installed beside gcc-multilib, which the
# i386 build needs. The C and C++ runtimes come from Debian's armhf cross packages, the
# libraries from its armhf multiarch packages; test binaries run through qemu-arm.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)

set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET arm-linux-gnueabihf)
set(CMAKE_CXX_COMPILER_TARGET arm-linux-gnueabihf)
set(CMAKE_EXE_LINKER_FLAGS_INIT "-fuse-ld=lld")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-fuse-ld=lld")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-fuse-ld=lld")

# The multiarch loader and libraries are where qemu-arm finds them without -L (a -L of the
# cross runtimes' folder would mix two builds of glibc).
find_program(ORVELLA_QEMU_ARM qemu-arm REQUIRED)
set(CMAKE_CROSSCOMPILING_EMULATOR ${ORVELLA_QEMU_ARM})

set(CMAKE_PREFIX_PATH /usr/lib/arm-linux-gnueabihf/cmake)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
