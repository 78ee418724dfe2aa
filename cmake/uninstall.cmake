# Removes the files of the last installation, which are listed in `manifest`, and folders of ours that are then empty.
# DESTDIR counts as it does for the installation.

cmake_policy(VERSION 3.25)

if(NOT EXISTS ${manifest})
    message(FATAL_ERROR "${manifest} is missing: nothing was installed from this build folder")
endif()

# A folder is ours when its path has our name; share and lib belong to everybody.
function(remove_empty_folders file)
    cmake_path(GET file PARENT_PATH folder)
    while(folder MATCHES "/corvane")
        file(GLOB left LIST_DIRECTORIES ON ${folder}/* ${folder}/.[!.]*)
        if(left OR IS_SYMLINK ${folder} OR NOT folder MATCHES "/corvane[^/]*(/(regexp|host)(/.*)?)?$")
            return()
        endif()
        file(REMOVE_RECURSE ${folder})
        cmake_path(GET folder PARENT_PATH folder)
    endwhile()
endfunction()

file(STRINGS ${manifest} installed)
foreach(file IN LISTS installed)
    set(file "$ENV{DESTDIR}${file}")
    if(EXISTS ${file} OR IS_SYMLINK ${file})
        file(REMOVE ${file})
        message(STATUS "Removed ${file}")
    endif()
    remove_empty_folders(${file})
endforeach()
file(REMOVE ${manifest})
