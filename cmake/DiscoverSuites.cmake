# SPDX-License-Identifier: MIT
# Registers the tests of a program with CTest, one entry for each suite. One for each test would
# start the program thousands of times, which under a sanitizer takes longer than the tests.

# beatatlas_discover_suites(<target> TIMEOUT <seconds>)
function(beatatlas_discover_suites target)
    cmake_parse_arguments(arg "" "TIMEOUT" "" ${ARGN})
    set(list ${CMAKE_CURRENT_BINARY_DIR}/${target}_suites.cmake)
    set(script ${PROJECT_SOURCE_DIR}/cmake/listSuites.cmake)
    add_custom_command(TARGET ${target} POST_BUILD BYPRODUCTS ${list}
        COMMAND ${CMAKE_COMMAND} -DPROGRAM=$<TARGET_FILE:${target}> -DLIST=${list}
            -DTIMEOUT=${arg_TIMEOUT} -P ${script}
        VERBATIM)
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${script})
    # A program that was not built fails, instead of vanishing from the count.
    set(include ${CMAKE_CURRENT_BINARY_DIR}/${target}_include.cmake)
    file(WRITE ${include}
        "if(EXISTS \"${list}\")\n  include(\"${list}\")\nelse()\n"
        "  add_test(${target}_NOT_BUILT ${target}_NOT_BUILT)\nendif()\n")
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${include})
endfunction()
