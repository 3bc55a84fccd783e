# Runs an example and compares its output with the expected text.
#
#     cmake -DPROGRAM=<program> [-DEMULATOR=<command|argument|...>] -DEXPECTED=<file> -P <this file>

cmake_minimum_required(VERSION 3.25)

string(REPLACE "|" ";" emulator "${EMULATOR}")
execute_process(COMMAND ${emulator} ${PROGRAM} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
file(READ ${EXPECTED} expected)
string(REPLACE "\r\n" "\n" output "${output}")
if(NOT output STREQUAL expected)
    message(FATAL_ERROR "The output\n${output}\nis not that of ${EXPECTED}:\n${expected}")
endif()
