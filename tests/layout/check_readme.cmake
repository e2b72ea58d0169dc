# SPDX-License-Identifier: MIT
# The program shown in the README is the one that is compiled and run.
cmake_minimum_required(VERSION 3.25)

file(READ ${SOURCE_DIR}/README.md readme)
file(READ ${SOURCE_DIR}/examples/track.c example)
string(FIND "${readme}" "${example}" place)
if(place EQUAL -1)
    message(FATAL_ERROR "README.md does not show examples/track.c as it is")
endif()
