# SPDX-License-Identifier: MIT
# What `cmake --install` installs: headers, libraries, a CMake package, pkg-config files, and the
# program. No installed file contains the installation path, so an installed tree can be moved.
include(CMakePackageConfigHelpers)
get_property(libraries GLOBAL PROPERTY BEATATLAS_OFFERED)

install(TARGETS ${libraries} EXPORT BeatAtlasTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        COMPONENT BeatAtlas_Runtime NAMELINK_COMPONENT BeatAtlas_Development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT BeatAtlas_Development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/beatatlas DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    COMPONENT BeatAtlas_Development)

set(package ${CMAKE_INSTALL_LIBDIR}/cmake/BeatAtlas)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/BeatAtlasConfig.cmake.in
    ${PROJECT_BINARY_DIR}/BeatAtlasConfig.cmake INSTALL_DESTINATION ${package})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/BeatAtlasConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(EXPORT BeatAtlasTargets NAMESPACE BeatAtlas:: DESTINATION ${package}
    COMPONENT BeatAtlas_Development)
install(FILES ${PROJECT_BINARY_DIR}/BeatAtlasConfig.cmake
    ${PROJECT_BINARY_DIR}/BeatAtlasConfigVersion.cmake
    DESTINATION ${package} COMPONENT BeatAtlas_Development)

# beatatlas_way_between(<variable> <from> <to> <anchor> <base>): the path from folder <from>,
# written as <anchor>, to folder <to>; folders below the prefix are given relative to it. If one of
# them is absolute, the result is an absolute path below <base>.
function(beatatlas_way_between variable from to anchor base)
    if(IS_ABSOLUTE "${from}" OR IS_ABSOLUTE "${to}")
        cmake_path(ABSOLUTE_PATH to BASE_DIRECTORY ${base} OUTPUT_VARIABLE way)
    else()
        file(RELATIVE_PATH way "/${from}" "/${to}")
        set(way "${anchor}/${way}")
    endif()
    string(REGEX REPLACE "/$" "" way "${way}")
    set(${variable} "${way}" PARENT_SCOPE)
endfunction()

# beatatlas_install_pc(<library> <description> <flags>…): <flags> are the flags that the static
# library needs besides itself.
function(beatatlas_install_pc library pc_description)
    set(folder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
    beatatlas_way_between(pc_prefix ${folder} "" "\${pcfiledir}" ${CMAKE_INSTALL_PREFIX})
    cmake_path(ABSOLUTE_PATH CMAKE_INSTALL_LIBDIR BASE_DIRECTORY "\${prefix}"
        OUTPUT_VARIABLE pc_libdir)
    cmake_path(ABSOLUTE_PATH CMAKE_INSTALL_INCLUDEDIR BASE_DIRECTORY "\${prefix}"
        OUTPUT_VARIABLE pc_includedir)
    list(JOIN ARGN " " pc_libs_private)
    set(pc_libs "-L\${libdir} -l${library}")
    # If only the static library exists, hosts do not ask for --static, so its needs are public.
    if(NOT BEATATLAS_OFFERS_SHARED)
        string(APPEND pc_libs " ${pc_libs_private}")
    endif()
    configure_file(${PROJECT_SOURCE_DIR}/cmake/library.pc.in ${PROJECT_BINARY_DIR}/${library}.pc
        @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${library}.pc DESTINATION ${folder}
        COMPONENT BeatAtlas_Development)
endfunction()

beatatlas_install_pc(beatatlas "${PROJECT_DESCRIPTION}" ${BEATATLAS_CXX_RUNTIME})
beatatlas_install_pc(beatatlas_track
    "Everything about a whole music track: tempo, beat grid, key and waveform overviews"
    -lbeatatlas -pthread ${BEATATLAS_CXX_RUNTIME})

# Builds everything that is installed, and nothing else.
add_custom_target(beatatlas_install_files)
add_dependencies(beatatlas_install_files ${libraries})

# It finds libbeatatlas_track beside itself.
if(TARGET beatatlas_media_shared)
    set_target_properties(beatatlas_media_shared PROPERTIES INSTALL_RPATH "\$ORIGIN")
    set(pc_requires beatatlas_track)
    beatatlas_install_pc(beatatlas_media "The analysis of beatatlas_track for audio files")
endif()

# Hosts of Vamp plugins look in lib/vamp below /usr and /usr/local, also where libraries have a
# folder for each architecture.
if(TARGET beatatlas_vamp)
    beatatlas_way_between(libraries_from_plugin lib/vamp ${CMAKE_INSTALL_LIBDIR} "\$ORIGIN"
        ${CMAKE_INSTALL_PREFIX})
    set_target_properties(beatatlas_vamp PROPERTIES INSTALL_RPATH "${libraries_from_plugin}")
    install(TARGETS beatatlas_vamp LIBRARY DESTINATION lib/vamp COMPONENT BeatAtlas_Vamp)
    install(FILES ${PROJECT_SOURCE_DIR}/vamp/beatatlas.cat ${PROJECT_SOURCE_DIR}/vamp/beatatlas.n3
        DESTINATION lib/vamp COMPONENT BeatAtlas_Vamp)
    add_dependencies(beatatlas_install_files beatatlas_vamp)
endif()

if(TARGET beatatlas_tool)
    beatatlas_way_between(libraries_from_program ${CMAKE_INSTALL_BINDIR} ${CMAKE_INSTALL_LIBDIR}
        "\$ORIGIN"
        ${CMAKE_INSTALL_PREFIX})
    set_target_properties(beatatlas_tool PROPERTIES INSTALL_RPATH "${libraries_from_program}")
    install(TARGETS beatatlas_tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        COMPONENT BeatAtlas_Runtime)
    add_dependencies(beatatlas_install_files beatatlas_tool)
    install(FILES ${PROJECT_SOURCE_DIR}/docs/analysis.schema.json
        DESTINATION ${CMAKE_INSTALL_DATADIR}/beatatlas COMPONENT BeatAtlas_Runtime)
endif()

# Manual pages, and what the shells complete with. Zsh looks in one folder for what a distribution's
# packages install, and in another for everything else.
if(TARGET beatatlas_manual)
    set(zsh_folder site-functions)
    if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
        set(zsh_folder vendor-completions)
    endif()
    get_target_property(made beatatlas_manual MADE)
    install(DIRECTORY ${made}/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
        COMPONENT BeatAtlas_Runtime FILES_MATCHING PATTERN "*.1")
    install(FILES ${made}/beatatlas.bash RENAME beatatlas
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        COMPONENT BeatAtlas_Runtime)
    install(FILES ${made}/_beatatlas DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/${zsh_folder}
        COMPONENT BeatAtlas_Runtime)
    install(FILES ${made}/beatatlas.fish
        DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d
        COMPONENT BeatAtlas_Runtime)
    add_dependencies(beatatlas_install_files beatatlas_manual)
endif()
