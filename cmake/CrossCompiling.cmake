# What builds for another system need beside their toolchain file.

# The compiler's own libraries go beside the programs.
if(WIN32 AND CMAKE_CROSSCOMPILING AND CMAKE_RUNTIME_OUTPUT_DIRECTORY)
    foreach(name libgcc_s_seh-1.dll libstdc++-6.dll libwinpthread-1.dll)
        execute_process(
            COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
            OUTPUT_VARIABLE library
            OUTPUT_STRIP_TRAILING_WHITESPACE)
        if(EXISTS ${library})
            file(COPY ${library} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
        endif()
    endforeach()
endif()

# The folder in which Wine keeps its settings is made before any test: programs that start side by
# side in a missing one fail. The first start may ask for a second, as it mends a temporary folder.
if(WIN32 AND CMAKE_CROSSCOMPILING_EMULATOR AND NOT EXISTS ${CMAKE_BINARY_DIR}/wine/system.reg)
    set(status 1)
    foreach(attempt RANGE 1 3)
        if(NOT status EQUAL 0)
            execute_process(
                COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} wineboot --init
                RESULT_VARIABLE status
                OUTPUT_VARIABLE output
                ERROR_VARIABLE output)
        endif()
    endforeach()
    if(NOT status EQUAL 0)
        message(WARNING "Wine could not be set up:\n${output}")
    endif()
endif()
