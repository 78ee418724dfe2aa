# Tests of what users get: names that the libraries export, headers, installed files, packages of CMake and pkg-config,
# completions and pages of the manual.

# Names and type information differ elsewhere.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64" AND CMAKE_SIZEOF_VOID_P EQUAL 8)
    foreach(library corvane_regexp corvane_host)
        add_test(NAME exports_of_${library} COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/abi/exports.sh
            $<TARGET_FILE:${library}> ${CMAKE_CURRENT_SOURCE_DIR}/abi/${library}.txt)
    endforeach()
    if(TARGET corvane_c)
        add_test(NAME exports_of_corvane_c COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/abi/exports.sh
            $<TARGET_FILE:corvane_c> ${CMAKE_CURRENT_SOURCE_DIR}/abi/corvane_c.txt cvre_)
    endif()
endif()

if(TARGET cvregexp)
    corvane_program_path(cvregexp path)
    foreach(shell bash fish zsh)
        add_test(NAME completions_${shell} COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/tool/completions.sh
            ${shell} ${PROJECT_BINARY_DIR}/completions ${path}/cvregexp)
        set_tests_properties(completions_${shell} PROPERTIES SKIP_RETURN_CODE 77)
    endforeach()
endif()

add_test(NAME debian_folder COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/install/debian.sh ${PROJECT_SOURCE_DIR})

if(NOT CORVANE_INSTALL OR CMAKE_CROSSCOMPILING)
    return()
endif()

# `installed`, `consumer_options` and `consumer_environment` are those of the consumer tests.

# What depends on other programs or on options is left out of the comparison where they are missing.
set(left_out)
if(NOT CORVANE_PANDOC)
    list(APPEND left_out share/man/)
endif()
if(NOT TARGET cvregexp)
    list(APPEND left_out bin/ share/bash-completion/ share/fish/ share/zsh/ share/man/man1/)
endif()
if(NOT TARGET corvane_c)
    list(APPEND left_out include/corvane/corvane.h lib/cmake/corvane_c/ lib/libcorvane_c lib/pkgconfig/corvane_c.pc
        share/man/man3/)
endif()
string(TOLOWER "${CMAKE_BUILD_TYPE}" build_type)
add_test(NAME installed_files COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/install/compare.sh
    ${installed} ${CMAKE_CURRENT_SOURCE_DIR}/install/files.txt ${CMAKE_INSTALL_LIBDIR} ${build_type} ${left_out})
add_test(NAME uninstall COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/install/uninstall.sh
    ${PROJECT_BINARY_DIR} ${CMAKE_CURRENT_BINARY_DIR}/uninstalled ${PROJECT_SOURCE_DIR})
set_tests_properties(installed_files PROPERTIES FIXTURES_REQUIRED installed)
# Both write the manifest of the build folder.
set_tests_properties(consumer_install uninstall PROPERTIES RESOURCE_LOCK manifest)
if(CORVANE_PANDOC)
    add_test(NAME manual COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/install/manual.sh ${installed})
    set_tests_properties(manual PROPERTIES FIXTURES_REQUIRED installed)
endif()

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    add_test(NAME lean_headers COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/abi/lean_headers.sh
        ${installed}/${CMAKE_INSTALL_INCLUDEDIR}/corvane ${CMAKE_CURRENT_SOURCE_DIR}/abi/lean_headers.txt)
    set_tests_properties(lean_headers PROPERTIES FIXTURES_REQUIRED installed ENVIRONMENT "CXX=${CMAKE_CXX_COMPILER}")
endif()

# Projects that only have to be configured, each with what is checked in its own file.
add_test(NAME consumer_packages COMMAND ${CMAKE_COMMAND} -S ${CMAKE_CURRENT_SOURCE_DIR}/consumer/packages
    -B ${CMAKE_CURRENT_BINARY_DIR}/packages -G ${CMAKE_GENERATOR} --fresh ${consumer_options}
    -DCMAKE_PREFIX_PATH=${installed} -Dversion=${PROJECT_VERSION} -Dhas_c=$<TARGET_EXISTS:corvane_c>)
add_test(NAME consumer_fetch_content COMMAND ${CMAKE_COMMAND} -S ${CMAKE_CURRENT_SOURCE_DIR}/consumer/fetch_content
    -B ${CMAKE_CURRENT_BINARY_DIR}/fetch_content -G ${CMAKE_GENERATOR} ${consumer_options})
set_tests_properties(consumer_packages PROPERTIES FIXTURES_REQUIRED installed)

# Without the presets and without everything that can be missing.
set(corvane_optional xbyak nlohmann_json Lua GTest)
list(TRANSFORM corvane_optional REPLACE "(.+)" "-DCMAKE_DISABLE_FIND_PACKAGE_\\1=ON" OUTPUT_VARIABLE without_optional)
add_test(NAME build_alone COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/install/build_alone.sh ${PROJECT_SOURCE_DIR}
    ${CMAKE_CURRENT_BINARY_DIR}/alone -G ${CMAKE_GENERATOR} ${without_optional} -DCORVANE_PANDOC=)

if(TARGET corvane_c)
    add_test(NAME consumer_c COMMAND ${CMAKE_CTEST_COMMAND}
        --build-and-test ${CMAKE_CURRENT_SOURCE_DIR}/consumer/c ${CMAKE_CURRENT_BINARY_DIR}/consumer_c
        --build-noclean --build-generator ${CMAKE_GENERATOR}
        --build-options -DCMAKE_PREFIX_PATH=${installed} -DCMAKE_C_FLAGS=${CMAKE_CXX_FLAGS} --test-command c_app)
    set_tests_properties(consumer_c PROPERTIES FIXTURES_REQUIRED installed)
    if(CORVANE_PKG_CONFIG)
        add_test(NAME consumer_c_pkg_config COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/consumer/pkg_config_c.sh
            ${CMAKE_CURRENT_SOURCE_DIR}/consumer/c/c_app.c ${installed} ${CMAKE_CURRENT_BINARY_DIR}/pkg_config_c_app)
        set_tests_properties(consumer_c_pkg_config PROPERTIES FIXTURES_REQUIRED installed
            ENVIRONMENT "CFLAGS=${CMAKE_CXX_FLAGS}")
    endif()
endif()
