# What "cmake --install" leaves: the libraries with their headers, for find_package(norvane) and pkg-config, and the
# program. The desktop program installs itself, with its icon and menu entry.
include(CMakePackageConfigHelpers)

set(floors platform core geometry display exchange check verify shell)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/norvane)
foreach(floor ${floors})
    install(TARGETS norvane_${floor} EXPORT norvane ARCHIVE)
    install(DIRECTORY src/${floor} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/norvane FILES_MATCHING PATTERN "*.h")
endforeach()
install(EXPORT norvane NAMESPACE norvane:: DESTINATION ${package_dir})
configure_package_config_file(cmake/norvaneConfig.cmake.in norvaneConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(norvaneConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/norvaneConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/norvaneConfigVersion.cmake
        DESTINATION ${package_dir})
configure_file(cmake/norvane.pc.in norvane.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/norvane.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(TARGET norvane)
    install(TARGETS norvane RUNTIME)
    install(PROGRAMS tools/view_factors.py DESTINATION ${CMAKE_INSTALL_BINDIR} RENAME norvane-view-factors)
    install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING
            PATTERN "*.gmt" PATTERN "*_rad" PATTERN "*.walls" PATTERN "library" EXCLUDE)
endif()
install(FILES LICENSE README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
