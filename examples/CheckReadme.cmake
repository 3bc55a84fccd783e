# Checks that the README shows the named examples as they are.
#
#     cmake -DREADME=<file> -DFOLDER=<folder> -DFILES=<name>|<name>... -P <this file>

cmake_minimum_required(VERSION 3.25)

file(READ ${README} readme)
string(REPLACE "|" ";" files "${FILES}")
foreach(file IN LISTS files)
    file(READ ${FOLDER}/${file} content)
    string(FIND "${readme}" "\n${content}```\n" at)
    if(at EQUAL -1)
        message(SEND_ERROR "The README does not show ${file} as it is")
    endif()
endforeach()
