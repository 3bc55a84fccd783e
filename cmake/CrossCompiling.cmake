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
