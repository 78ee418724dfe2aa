# Install rules, the CMake package and the pkg-config file.

if(NOT CORVANE_INSTALL)
    return()
endif()

include(CMakePackageConfigHelpers)
set(corvane_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/corvane_regexp)

set(corvane_installed corvane_regexp)
if(CORVANE_DEFAULT_HOST)
    list(APPEND corvane_installed corvane_host)
endif()
install(TARGETS ${corvane_installed} EXPORT corvane_regexp-targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(TARGET cvregexp)
    # The tool finds its libraries beside itself wherever the prefix lies.
    file(RELATIVE_PATH lib_from_bin /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
    set_target_properties(cvregexp PROPERTIES INSTALL_RPATH "$ORIGIN/${lib_from_bin}")
    install(TARGETS cvregexp RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
set_target_properties(${corvane_installed} PROPERTIES INSTALL_RPATH "$ORIGIN")

install(CODE "set(source_dir \"${PROJECT_SOURCE_DIR}\")\nset(header_folder \"${CMAKE_INSTALL_INCLUDEDIR}/corvane\")")
install(SCRIPT cmake/install_headers.cmake)

install(EXPORT corvane_regexp-targets NAMESPACE corvane:: DESTINATION ${corvane_package_dir})
configure_package_config_file(cmake/corvane_regexp-config.cmake.in corvane_regexp-config.cmake
    INSTALL_DESTINATION ${corvane_package_dir})
write_basic_package_version_file(corvane_regexp-config-version.cmake COMPATIBILITY ${corvane_compatibility})
install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/corvane_regexp-config.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/corvane_regexp-config-version.cmake
    DESTINATION ${corvane_package_dir})

set(corvane_pc_libs "-lcorvane_regexp -lboost_program_options")
if(CORVANE_DEFAULT_HOST)
    string(APPEND corvane_pc_libs " -lcorvane_host")
endif()
file(RELATIVE_PATH prefix_from_pc /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/corvane_regexp.pc.in corvane_regexp.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/corvane_regexp.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
include(cmake/install_c.cmake)
include(cmake/documentation.cmake)
include(cmake/completions.cmake)
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/NOTICE DESTINATION ${CMAKE_INSTALL_DOCDIR})

if(PROJECT_IS_TOP_LEVEL)
    add_custom_target(uninstall COMMENT "Removing what was installed"
        COMMAND ${CMAKE_COMMAND} -Dmanifest=${CMAKE_BINARY_DIR}/install_manifest.txt
        -P ${CMAKE_CURRENT_SOURCE_DIR}/cmake/uninstall.cmake)
endif()
