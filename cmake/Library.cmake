# SPDX-License-Identifier: MIT
# Builds both kinds of a library from the same objects, and decides which of them hosts may use.

# If BUILD_SHARED_LIBS is unset, both kinds are built; if it is set, one.
set(BEATATLAS_OFFERS_SHARED ON)
set(BEATATLAS_OFFERS_STATIC ON)
if(DEFINED BUILD_SHARED_LIBS)
    if(BUILD_SHARED_LIBS)
        set(BEATATLAS_OFFERS_STATIC OFF)
    else()
        set(BEATATLAS_OFFERS_SHARED OFF)
    endif()
endif()

# The libraries that a C++ compiler links in addition to those of a C compiler. They must be named
# when the static library is linked from another language.
set(BEATATLAS_CXX_RUNTIME ${CMAKE_CXX_IMPLICIT_LINK_LIBRARIES})
list(REMOVE_ITEM BEATATLAS_CXX_RUNTIME ${CMAKE_C_IMPLICIT_LINK_LIBRARIES})
list(REMOVE_DUPLICATES BEATATLAS_CXX_RUNTIME)
list(TRANSFORM BEATATLAS_CXX_RUNTIME REPLACE "^([^/-].*)$" "-l\\1")

# beatatlas_offer(<target> <name> <offered>): if <offered>, hosts may link the target as
# BeatAtlas::<name>, and it is built by default and installed. Otherwise it is built only for the
# tests that need it.
function(beatatlas_offer target name offered)
    target_include_directories(${target} INTERFACE
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    set_target_properties(${target} PROPERTIES LINKER_LANGUAGE CXX EXPORT_NAME ${name})
    if(offered)
        add_library(BeatAtlas::${name} ALIAS ${target})
        set_property(GLOBAL APPEND PROPERTY BEATATLAS_OFFERED ${target})
    else()
        set_target_properties(${target} PROPERTIES EXCLUDE_FROM_ALL ON)
    endif()
endfunction()

# beatatlas_name_shared(<target>): the names of a shared library's file. The version in them follows
# the number of the interface, so that a later version also sorts later.
function(beatatlas_name_shared target)
    set_target_properties(${target} PROPERTIES
        VERSION ${BEATATLAS_INTERFACE}.${PROJECT_VERSION}
        SOVERSION ${BEATATLAS_INTERFACE})
endfunction()

# beatatlas_add_library(<target> NAME <name> EXPORTS <version script> OBJECTS <object library> [USES
# <target>]): the shared library <target>, which exports what the script lists, and <target>_static.
# Hosts link them as BeatAtlas::<name> and BeatAtlas::<name>_static; if only the static one is
# offered, it has both names. USES names a library whose objects the shared one contains too, as
# hidden symbols, and whose static form the static one needs.
function(beatatlas_add_library target)
    cmake_parse_arguments(arg "" "NAME;EXPORTS;OBJECTS;USES" "" ${ARGN})
    set(objects $<TARGET_OBJECTS:${arg_OBJECTS}>)
    add_library(${target}_static STATIC ${objects})
    set_target_properties(${target}_static PROPERTIES OUTPUT_NAME ${target})
    target_link_libraries(${target}_static INTERFACE
        "$<$<NOT:$<LINK_LANGUAGE:CXX>>:${BEATATLAS_CXX_RUNTIME}>")
    if(arg_USES)
        list(APPEND objects $<TARGET_OBJECTS:${arg_USES}_objects>)
        target_link_libraries(${target}_static PUBLIC ${arg_USES}_static)
    endif()

    add_library(${target} SHARED ${objects})
    beatatlas_name_shared(${target})
    target_link_options(${target} PRIVATE -Wl,--version-script=${arg_EXPORTS})
    if(NOT BEATATLAS_SANITIZE)
        target_link_options(${target} PRIVATE -Wl,-z,defs)
    endif()
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${arg_EXPORTS})

    beatatlas_offer(${target} ${arg_NAME} ${BEATATLAS_OFFERS_SHARED})
    beatatlas_offer(${target}_static ${arg_NAME}_static ${BEATATLAS_OFFERS_STATIC})
    if(NOT BEATATLAS_OFFERS_SHARED)
        add_library(BeatAtlas::${arg_NAME} ALIAS ${target}_static)
    endif()
endfunction()
