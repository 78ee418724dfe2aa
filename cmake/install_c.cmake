# Install rules of the C library: its header, a CMake package and a pkg-config file of its own. Who programs in C installs
# nothing that C++ needs. install.cmake includes this.

if(NOT TARGET corvane_c)
    return()
endif()

set(corvane_c_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/corvane_c)

install(TARGETS corvane_c EXPORT corvane_c-targets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
set_target_properties(corvane_c PROPERTIES INSTALL_RPATH "$ORIGIN")
install(FILES ${PROJECT_SOURCE_DIR}/bindings/c/corvane/corvane.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/corvane)

install(EXPORT corvane_c-targets NAMESPACE corvane:: DESTINATION ${corvane_c_package_dir})
configure_package_config_file(cmake/corvane_c-config.cmake.in corvane_c-config.cmake
    INSTALL_DESTINATION ${corvane_c_package_dir})
# Its symbols have versions, by which its binary interface lasts longer than that of the engine.
write_basic_package_version_file(corvane_c-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/corvane_c-config.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/corvane_c-config-version.cmake
    DESTINATION ${corvane_c_package_dir})

configure_file(cmake/corvane_c.pc.in corvane_c.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/corvane_c.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
