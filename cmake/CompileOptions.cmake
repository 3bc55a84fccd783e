# Compiler options shared by every target of the project.

# qel_compile_options(<target>) sets the warnings and, where asked for, the instrumentation.
function(qel_compile_options target)
    if(NOT MSVC)
        target_compile_options(
            ${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
                              $<$<BOOL:${QEL_WARNINGS_AS_ERRORS}>:-Werror>)
        if(QEL_SANITIZE)
            # A finding ends the program, so that no test passes over it.
            target_compile_options(${target} PRIVATE -fsanitize=${QEL_SANITIZE}
                                                     -fno-sanitize-recover=all
                                                     -fno-omit-frame-pointer)
            target_link_options(${target} PRIVATE -fsanitize=${QEL_SANITIZE})
        endif()
        if(QEL_COVERAGE)
            target_compile_options(${target} PRIVATE --coverage)
            target_link_options(${target} PRIVATE --coverage)
        endif()
    endif()
endfunction()

# qel_numeric_options(<target>) fixes the arithmetic of the library: the result of a formula is
# that of its stated order of operations, to the last bit, on every machine and in every build.
function(qel_numeric_options target)
    if(NOT MSVC)
        target_compile_options(
            ${target}
            PRIVATE
                # No fused multiply-add that the source does not ask for.
                -ffp-contract=off
                # Nobody reads errno or floating-point exception flags after the library's
                # calls. Both only permit vector code; neither changes a value.
                -fno-math-errno
                -fno-trapping-math
                $<$<CONFIG:Release,RelWithDebInfo>:-O3>)
        if(WIN32 AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
            # The stack is aligned to 16 bytes there, yet GCC takes registers of 32 and 64 bytes that
            # it spills for aligned (its bug 54412). Unaligned moves of aligned data cost nothing.
            target_compile_options(${target} PRIVATE -Wa,-muse-unaligned-vector-move)
        endif()
    endif()
endfunction()
