# qel_find_libraries_in(<folder> <target>...): once installed, the targets find the libraries that they
# need in a folder, given relative to their own, wherever all of it is moved.
function(qel_find_libraries_in folder)
    if(APPLE)
        set(own "@loader_path")
    else()
        set(own "$ORIGIN")
    endif()
    if(UNIX)
        set_target_properties(${ARGN} PROPERTIES INSTALL_RPATH "${own}/${folder}")
    endif()
endfunction()
