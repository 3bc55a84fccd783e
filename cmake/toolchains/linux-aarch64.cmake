# Cross-building for 64-bit ARM under Linux, whose programs run under QEMU's emulation of a process.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)

# Headers and libraries of the target, programs of this machine.
set(CMAKE_FIND_ROOT_PATH /usr/aarch64-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

find_program(QEL_QEMU NAMES qemu-aarch64)
if(QEL_QEMU)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${QEL_QEMU};-L;/usr/aarch64-linux-gnu)
endif()
