# SPDX-License-Identifier: MIT
# The guard that the plain header shows to hosts is, apart from layout, the one used by the test of
# a host's arithmetic.
cmake_minimum_required(VERSION 3.25)

file(READ ${SOURCE_DIR}/include/beatatlas/beatatlas.h header)
file(READ ${SOURCE_DIR}/tests/api/HostArithmeticTest.cpp test)
string(REGEX MATCH "static int enterLibrary[^}]*}[^}]*}" guard "${header}")
if(guard STREQUAL "")
    message(FATAL_ERROR "beatatlas.h shows no guard for the rounding mode")
endif()
string(REGEX REPLACE "[ \n*]+" "" guard "${guard}")
string(REGEX REPLACE "[ \n*]+" "" test "${test}")
string(FIND "${test}" "${guard}" place)
if(place EQUAL -1)
    message(FATAL_ERROR
        "tests/api/HostArithmeticTest.cpp does not use the guard that beatatlas.h shows")
endif()
