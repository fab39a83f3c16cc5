# What `cmake --install` lays down, in three components: runtime (the shared library), dev (what it takes to
# build against it) and tool, which apps/tessit adds. The tree can be moved: nothing in it names its own place.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS tessit EXPORT tessit
    LIBRARY COMPONENT runtime NAMELINK_COMPONENT dev
    ARCHIVE COMPONENT dev
    FILE_SET HEADERS COMPONENT dev)

# find_package(tessit 1.0 CONFIG)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/tessit)
set(package_files ${PROJECT_BINARY_DIR}/package)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/tessitConfig.cmake.in ${package_files}/tessitConfig.cmake
    INSTALL_DESTINATION ${package_dir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${package_files}/tessitConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${package_files}/tessitConfig.cmake ${package_files}/tessitConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT dev)
install(EXPORT tessit FILE tessitTargets.cmake NAMESPACE tessit:: DESTINATION ${package_dir} COMPONENT dev)

# pkg-config tessit. Folders count from the file's own, unless they were chosen as absolute paths.
file(RELATIVE_PATH pc_to_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
cmake_path(APPEND pc_includedir "\${prefix}" ${CMAKE_INSTALL_INCLUDEDIR})
cmake_path(APPEND pc_libdir "\${prefix}" ${CMAKE_INSTALL_LIBDIR})
if(TESSIT_ICU)
    set(pc_requires_private " icu-i18n icu-uc")
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/tessit.pc.in ${package_files}/tessit.pc @ONLY)
install(FILES ${package_files}/tessit.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)

if(PROJECT_IS_TOP_LEVEL)
    include(cmake/debian.cmake)
endif()
