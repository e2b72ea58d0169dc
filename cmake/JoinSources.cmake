# SPDX-License-Identifier: MIT
# beatatlas_join_sources(<target>): compiles the sources of a folder together, because reading what
# they include takes several times as long as compiling them. Names in the unnamed namespaces of a
# folder must therefore differ. A source that has a UNITY_GROUP keeps it. The builds that read every
# header anew compile each source alone. The core and the track library are not joined: many of their
# sources have constants of their own under one short name.
function(beatatlas_join_sources target)
    if(CMAKE_DISABLE_PRECOMPILE_HEADERS)
        return()
    endif()
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
    get_target_property(sources ${target} SOURCES)
    foreach(source IN LISTS sources)
        get_source_file_property(group ${source} UNITY_GROUP)
        if(NOT group)
            cmake_path(GET source PARENT_PATH folder)
            string(MAKE_C_IDENTIFIER "room/${folder}" group)
            set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${group})
        endif()
    endforeach()
endfunction()
