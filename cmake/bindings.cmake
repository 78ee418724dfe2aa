# The C interface: a shared library of its own over the engine and the default host.

# Tests and fuzz targets call it, too.
if(NOT CORVANE_DEFAULT_HOST OR NOT (CORVANE_BUILD_C OR CORVANE_BUILD_TESTS OR CORVANE_BUILD_FUZZ))
    return()
endif()

# The objects are apart from the library for the tests, which contain the engine themselves.
file(GLOB corvane_c_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/bindings/c/*.cpp)
add_library(corvane_c_objects OBJECT ${corvane_c_sources})
corvane_compile_rules(corvane_c_objects)
corvane_group_sources(corvane_c_objects 8)
target_include_directories(corvane_c_objects PRIVATE ${PROJECT_SOURCE_DIR})
target_compile_definitions(corvane_c_objects PRIVATE CORVANE_VERSION="${PROJECT_VERSION}")
target_link_libraries(corvane_c_objects PRIVATE Boost::headers Boost::program_options)

add_library(corvane_c SHARED $<TARGET_OBJECTS:corvane_c_objects>)
add_library(corvane::c ALIAS corvane_c)
corvane_compile_rules(corvane_c)
target_include_directories(corvane_c INTERFACE
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/bindings/c> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
# Programs in C need no target of the engine and no C++: its library finds the engine by itself.
target_link_libraries(corvane_c PRIVATE $<BUILD_INTERFACE:corvane_regexp> $<BUILD_INTERFACE:corvane_host>)
set_property(TARGET corvane_c PROPERTY INTERFACE_COMPILE_FEATURES "")
target_link_options(corvane_c PRIVATE -Wl,--version-script=${PROJECT_SOURCE_DIR}/bindings/c/corvane_c.map)
set_target_properties(corvane_c PROPERTIES
    LINKER_LANGUAGE CXX
    LINK_DEPENDS ${PROJECT_SOURCE_DIR}/bindings/c/corvane_c.map
    EXPORT_NAME c VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
