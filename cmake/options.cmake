# Switches of the build, and the compiler settings that hold for every target.

option(CORVANE_DEVELOPER_MODE "Strict warnings as errors, tests and graph checks" OFF)
option(CORVANE_DEFAULT_HOST "Build the default host and link the engine to it" ON)
option(CORVANE_MACHINE_CODE "Machine code of patterns, on x86-64" ON)
option(CORVANE_BUILD_C "Build the C interface" ON)
option(CORVANE_BUILD_TOOLS "Build the command line tool" ${PROJECT_IS_TOP_LEVEL})
option(CORVANE_BUILD_TESTS "Build the tests" ${CORVANE_DEVELOPER_MODE})
option(CORVANE_BUILD_BENCH "Build the benchmarks" OFF)
option(CORVANE_BUILD_FUZZ "Build the fuzz targets" OFF)
option(CORVANE_CHECK_GRAPH "Check the node graph around every compile pass" ${CORVANE_DEVELOPER_MODE})
option(CORVANE_PRECOMPILE_HEADERS "Read the headers of other libraries once per target" ${CORVANE_DEVELOPER_MODE})
option(CORVANE_UNITY_BUILD "Compile the sources of a target several at a time" ${CORVANE_DEVELOPER_MODE})
option(CORVANE_INSTALL "Generate the install rules" ${PROJECT_IS_TOP_LEVEL})

if(PROJECT_IS_TOP_LEVEL)
    if(NOT CMAKE_BUILD_TYPE)
        set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
    endif()
    set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
    set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
    set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
    set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
    find_program(CORVANE_CCACHE ccache)
    if(CORVANE_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
        set(CMAKE_CXX_COMPILER_LAUNCHER ${CORVANE_CCACHE})
        if(CORVANE_PRECOMPILE_HEADERS)
            set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
                CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime ${CORVANE_CCACHE})
        endif()
    endif()
endif()

# Everything that is ours compiles under the same rules; a consumer's build never sees the warnings.
function(corvane_compile_rules target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        POSITION_INDEPENDENT_CODE ON)
    # Calls within a library go straight to their functions; nobody is meant to replace them one by one.
    target_compile_options(${target} PRIVATE -fno-semantic-interposition)
    if(CORVANE_DEVELOPER_MODE)
        # Clang's -Wconversion asks for more than that of g++, and its -Wshadow looks at the other files of a unity build.
        target_compile_options(${target} PRIVATE -Wall -Wextra -Wconversion -Wshadow -Werror
            "$<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion;-Wno-shadow>")
    endif()
    if(CORVANE_CHECK_GRAPH)
        target_compile_definitions(${target} PRIVATE CORVANE_CHECK_GRAPH=1)
    endif()
endfunction()

# corvane_group_sources(TARGET AT_A_TIME HEADER...): so many sources are read together, which reads headers once for all of
# them; without that the headers given, and those of the standard library and of Boost that most sources read, are read
# once for the target. Reading headers is most of the work of a build. Sources still include what they use, as builds
# for users have neither; and what a file keeps to itself has a name of its own within the target.
function(corvane_group_sources target at_a_time)
    if(CORVANE_UNITY_BUILD)
        set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE ${at_a_time})
    elseif(CORVANE_PRECOMPILE_HEADERS)
        target_precompile_headers(${target} PRIVATE
            <algorithm> <cstdint> <functional> <map> <memory> <string> <string_view> <unordered_map> <utility> <vector>
            <boost/container/flat_map.hpp> <boost/container/flat_set.hpp> <boost/container/small_vector.hpp>
            ${ARGN})
    endif()
endfunction()
