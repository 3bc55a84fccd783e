# Checks that every test which a page names is there.
#
#     cmake -DPAGE=<file> -DTESTS=<folder> -P <this file>

cmake_minimum_required(VERSION 3.25)

file(GLOB_RECURSE sources ${TESTS}/*Test.cpp)
set(tests "")
foreach(source IN LISTS sources)
    file(STRINGS ${source} lines REGEX "^(TEST|TEST_F|TEST_P|TYPED_TEST)\\(")
    foreach(line IN LISTS lines)
        string(REGEX REPLACE "^[A-Z_]+\\(([A-Za-z0-9_]+), *([A-Za-z0-9_]+)\\).*" "\\1.\\2" test "${line}")
        list(APPEND tests ${test})
    endforeach()
endforeach()

file(READ ${PAGE} page)
string(REGEX MATCHALL "`[A-Za-z0-9_]+\\.[A-Za-z0-9_]+`" named "${page}")
if(NOT named)
    message(FATAL_ERROR "${PAGE} names no test")
endif()
foreach(name IN LISTS named)
    string(REPLACE "`" "" name "${name}")
    if(NOT name IN_LIST tests)
        message(SEND_ERROR "${PAGE} names ${name}, which is no test")
    endif()
endforeach()
