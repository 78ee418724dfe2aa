# Everything that runs on top of the libraries: the command line tool, tests, benchmarks and fuzz targets.
# All of them need the default host.

if(NOT CORVANE_DEFAULT_HOST)
    return()
endif()

file(GLOB_RECURSE tool_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tools/*.cpp)
if(CORVANE_BUILD_TOOLS AND tool_sources)
    find_package(nlohmann_json 3.2 QUIET)
    if(NOT nlohmann_json_FOUND)
        message(STATUS "nlohmann-json was not found: cvregexp is not built")
    endif()
endif()
if(CORVANE_BUILD_TOOLS AND tool_sources AND nlohmann_json_FOUND)
    # Without an interpreter the tool still does all but evaluate expressions.
    find_package(Lua 5.4 QUIET)
    if(LUA_FOUND)
        list(FILTER tool_sources EXCLUDE REGEX "/script_host_none\\.cpp$")
    else()
        message(STATUS "Lua 5.4 was not found: cvregexp is built without --lua")
        list(FILTER tool_sources EXCLUDE REGEX "/lua_[a-z]+\\.cpp$")
    endif()
    add_executable(cvregexp ${tool_sources})
    corvane_compile_rules(cvregexp)
    corvane_group_sources(cvregexp 10 <iostream> <boost/program_options.hpp> <nlohmann/json.hpp>
        ${PROJECT_SOURCE_DIR}/regexp/regexp.h)
    target_include_directories(cvregexp PRIVATE ${PROJECT_SOURCE_DIR})
    target_compile_definitions(cvregexp PRIVATE CORVANE_VERSION="${PROJECT_VERSION}")
    target_link_libraries(cvregexp PRIVATE
        corvane::regexp corvane::host Boost::program_options nlohmann_json::nlohmann_json ICU::uc)
    if(LUA_FOUND)
        target_include_directories(cvregexp SYSTEM PRIVATE ${LUA_INCLUDE_DIR})
        target_link_libraries(cvregexp PRIVATE ${LUA_LIBRARIES})
    endif()
endif()

if(CORVANE_BUILD_TESTS)
    enable_testing()
    add_subdirectory(tests)
endif()

if(CORVANE_BUILD_BENCH AND EXISTS ${PROJECT_SOURCE_DIR}/bench/CMakeLists.txt)
    add_subdirectory(bench)
endif()

if(CORVANE_BUILD_FUZZ OR CORVANE_BUILD_TESTS)
    add_subdirectory(fuzz)
endif()
