# SPDX-License-Identifier: MIT
# What `cmake --install` lays down: headers, the libraries, a CMake package and their pkg-config files.
include(CMakePackageConfigHelpers)

install(TARGETS beatatlas beatatlas_static beatatlas_track beatatlas_track_static EXPORT BeatAtlasTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/beatatlas DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT BeatAtlasTargets NAMESPACE BeatAtlas:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/BeatAtlas)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/BeatAtlasConfig.cmake.in
    ${PROJECT_BINARY_DIR}/BeatAtlasConfig.cmake
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/BeatAtlas)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/BeatAtlasConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/BeatAtlasConfig.cmake ${PROJECT_BINARY_DIR}/BeatAtlasConfigVersion.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/BeatAtlas)

# Relative to the file itself, so that an installed tree can be moved.
file(RELATIVE_PATH BEATATLAS_PREFIX_FROM_PC /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
foreach(library beatatlas beatatlas_track)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/${library}.pc.in ${PROJECT_BINARY_DIR}/${library}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${library}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
