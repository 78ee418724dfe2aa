# The two shared libraries: the engine and the default host that it runs on.

find_package(Boost 1.74 REQUIRED COMPONENTS program_options)
find_package(hwy REQUIRED)

set(corvane_includes
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/corvane>)

if(CORVANE_DEFAULT_HOST)
    find_package(ICU REQUIRED COMPONENTS uc)
    file(GLOB_RECURSE host_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/host/*.cpp)
    add_library(corvane_host SHARED ${host_sources})
    add_library(corvane::host ALIAS corvane_host)
    corvane_compile_rules(corvane_host)
    target_include_directories(corvane_host PUBLIC ${corvane_includes})
    target_link_libraries(corvane_host PRIVATE ICU::uc)
    set_target_properties(corvane_host PROPERTIES
        EXPORT_NAME host VERSION ${PROJECT_VERSION} SOVERSION ${corvane_abi_version})
endif()

# The engine is compiled once. The shared library and the tests link the same objects, so that tests can reach
# what the library hides.
file(GLOB_RECURSE regexp_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/regexp/*.cpp)
add_library(corvane_regexp_objects OBJECT ${regexp_sources})
corvane_compile_rules(corvane_regexp_objects)
corvane_group_sources(corvane_regexp_objects 12)
# They include themselves once for each set of vector instructions.
set_source_files_properties(${PROJECT_SOURCE_DIR}/regexp/seek/kernels.cpp
    ${PROJECT_SOURCE_DIR}/regexp/dfa/shuffle.cpp ${PROJECT_SOURCE_DIR}/regexp/text/conversion_kernels.cpp
    PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
target_include_directories(corvane_regexp_objects PUBLIC ${PROJECT_SOURCE_DIR})
target_link_libraries(corvane_regexp_objects PUBLIC Boost::headers Boost::program_options hwy::hwy)

if(CORVANE_MACHINE_CODE AND CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64" AND CMAKE_SIZEOF_VOID_P EQUAL 8)
    find_package(xbyak QUIET)
    if(xbyak_FOUND)
        target_link_libraries(corvane_regexp_objects PRIVATE $<BUILD_INTERFACE:xbyak::xbyak>)
        # Tests are told, too: they then insist on code.
        target_compile_definitions(corvane_regexp_objects PUBLIC CORVANE_MACHINE_CODE=1)
    else()
        message(STATUS "Xbyak was not found: the engine is built without machine code")
    endif()
endif()

add_library(corvane_regexp SHARED $<TARGET_OBJECTS:corvane_regexp_objects>)
add_library(corvane::regexp ALIAS corvane_regexp)
corvane_compile_rules(corvane_regexp)
target_include_directories(corvane_regexp PUBLIC ${corvane_includes})
target_link_libraries(corvane_regexp PUBLIC Boost::headers Boost::program_options PRIVATE hwy::hwy)
target_link_options(corvane_regexp PRIVATE -Wl,-Bsymbolic-functions
    -Wl,--version-script=${PROJECT_SOURCE_DIR}/cmake/exports.map)
set_target_properties(corvane_regexp PROPERTIES LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/exports.map)
set_target_properties(corvane_regexp PROPERTIES
    LINKER_LANGUAGE CXX
    EXPORT_NAME regexp VERSION ${PROJECT_VERSION} SOVERSION ${corvane_abi_version})

# Without the default host the platform functions stay undefined here and the application supplies them.
if(CORVANE_DEFAULT_HOST)
    target_link_libraries(corvane_regexp PUBLIC corvane_host)
    target_link_libraries(corvane_regexp_objects PUBLIC corvane_host)
endif()
