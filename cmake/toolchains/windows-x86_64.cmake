# Cross-building for 64-bit Windows by MinGW-w64, whose programs run under Wine. The variant with
# POSIX threads is the one with std::thread and std::mutex.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# Headers and libraries of the target, programs of this machine.
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Windows looks for a program's libraries beside it: all of both go to one folder.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

# Wine without its own messages, in a prefix of this build's own.
find_program(QEL_WINE NAMES wine64 wine PATHS /usr/lib/wine)
if(QEL_WINE)
    set(CMAKE_CROSSCOMPILING_EMULATOR
        env;WINEDEBUG=-all;WINEPREFIX=${CMAKE_BINARY_DIR}/wine;${QEL_WINE})
endif()
