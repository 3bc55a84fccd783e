# Installs the build in one folder and moves it to another, where the other tests find it: the
# package must not remember where it was installed.

cmake_minimum_required(VERSION 3.25)

set(first ${PREFIX}.first)
file(REMOVE_RECURSE ${first} ${PREFIX})
execute_process(
    COMMAND ${CMAKE_COMMAND} --install ${BUILD} --config ${CONFIG} --prefix ${first}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(RENAME ${first} ${PREFIX})

foreach(file
        ${INCLUDEDIR}/qel/NumericalUtils.h
        ${INCLUDEDIR}/qel/QELException.h
        ${INCLUDEDIR}/qel/QELError.h
        ${INCLUDEDIR}/qel/QELStream.h
        ${LIBDIR}/cmake/QELDataHandling/QELDataHandlingConfig.cmake
        ${LIBDIR}/cmake/QELDataHandling/QELDataHandlingConfigVersion.cmake
        ${LIBDIR}/pkgconfig/QELDataHandling.pc)
    if(NOT EXISTS ${PREFIX}/${file})
        message(FATAL_ERROR "Not installed: ${file}")
    endif()
endforeach()

# The program, where it is built, finds its libraries at the new place.
if(PROGRAM)
    execute_process(COMMAND ${PREFIX}/${PROGRAM} --version OUTPUT_QUIET
                    COMMAND_ERROR_IS_FATAL ANY)
endif()

# No text of the package may name the folder of the build or of the installation.
file(GLOB_RECURSE texts ${PREFIX}/*.cmake ${PREFIX}/*.pc)
foreach(text IN LISTS texts)
    file(READ ${text} content)
    foreach(folder ${first} ${BUILD})
        string(FIND "${content}" "${folder}/" at)
        if(NOT at EQUAL -1)
            message(FATAL_ERROR "${text} names ${folder}")
        endif()
    endforeach()
endforeach()
