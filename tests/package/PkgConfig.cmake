# Compiles an external consumer with the flags that pkg-config gives, and runs it.

cmake_minimum_required(VERSION 3.25)

if(NOT PKG_CONFIG)
    message("skipped: pkg-config is missing")
    return()
endif()

set(ENV{PKG_CONFIG_PATH} ${PREFIX}/${LIBDIR}/pkgconfig)
execute_process(
    COMMAND ${PKG_CONFIG} --modversion QELDataHandling
    OUTPUT_VARIABLE found OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
if(NOT found VERSION_EQUAL VERSION)
    message(FATAL_ERROR "pkg-config names version ${found}, not ${VERSION}")
endif()
execute_process(
    COMMAND ${PKG_CONFIG} --cflags --libs QELDataHandling
    OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${flags}")

execute_process(
    COMMAND ${CXX} -std=c++17 -O2 -Wall -Wextra -Wpedantic -Werror ${SOURCE} ${flags}
            -Wl,-rpath,${PREFIX}/${LIBDIR} -o ${PROGRAM}
    COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${PROGRAM} COMMAND_ERROR_IS_FATAL ANY)
