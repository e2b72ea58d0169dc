# SPDX-License-Identifier: MIT
# cmake -DPROGRAM=<test program> -DLIST=<file> -DTIMEOUT=<seconds> -P listSuites.cmake
# Writes the CTest entries of a GoogleTest program's suites.
cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND ${PROGRAM} --gtest_list_tests
    OUTPUT_VARIABLE tests ERROR_VARIABLE complaint RESULT_VARIABLE result TIMEOUT 60)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${PROGRAM} does not list its tests (${result}): ${tests}${complaint}")
endif()

# A suite stands at the beginning of a line and ends in a dot; its tests are indented. Types and
# parameters stand behind a number sign. CTest starts the largest suites first, so that none is left
# alone at the end.
string(REGEX REPLACE "#[^\n]*" "" tests "${tests}")
string(REGEX MATCHALL "(^|\n)[A-Za-z0-9_/]+\\. *(\n  [^\n]*)+" suites "${tests}")
if(NOT suites)
    message(FATAL_ERROR "${PROGRAM} has no tests")
endif()
set(entries "")
foreach(suite IN LISTS suites)
    string(REGEX MATCHALL "\n  " cases "${suite}")
    list(LENGTH cases count)
    string(REGEX MATCH "[A-Za-z0-9_/]+" suite "${suite}")
    string(APPEND entries
        "add_test([=[${suite}]=] [=[${PROGRAM}]=] [=[--gtest_filter=${suite}.*]=])\n"
        "set_tests_properties([=[${suite}]=] PROPERTIES COST ${count} TIMEOUT ${TIMEOUT})\n")
endforeach()
file(WRITE ${LIST} "${entries}")
