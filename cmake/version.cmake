# The version, which stands in regexp/version.h and nowhere else, and the part of it that the binary interface goes by:
# 0.MINOR before 1.0, then MAJOR. The name of the shared library and the CMake package both follow that part.

function(corvane_read_version header)
    file(STRINGS ${header} lines REGEX "^#define CORVANE_REGEXP_VERSION_(MAJOR|MINOR|PATCH) ")
    foreach(line IN LISTS lines)
        string(REGEX MATCH "_VERSION_([A-Z]+) ([0-9]+)" found "${line}")
        set(${CMAKE_MATCH_1} ${CMAKE_MATCH_2})
    endforeach()
    set(corvane_version ${MAJOR}.${MINOR}.${PATCH} PARENT_SCOPE)
    if(MAJOR EQUAL 0)
        set(corvane_abi_version 0.${MINOR} PARENT_SCOPE)
        set(corvane_compatibility SameMinorVersion PARENT_SCOPE)
    else()
        set(corvane_abi_version ${MAJOR} PARENT_SCOPE)
        set(corvane_compatibility SameMajorVersion PARENT_SCOPE)
    endif()
endfunction()

corvane_read_version(${CMAKE_CURRENT_LIST_DIR}/../regexp/version.h)
