# SPDX-License-Identifier: MIT
# The documents show the program's real output for the demo track.
cmake_minimum_required(VERSION 3.25)

file(MAKE_DIRECTORY ${FOLDER})
execute_process(COMMAND ${MAKE_TRACK} track.wav WORKING_DIRECTORY ${FOLDER} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${TOOL} analyze track.wav WORKING_DIRECTORY ${FOLDER} COMMAND_ERROR_IS_FATAL ANY
    OUTPUT_VARIABLE printed)
string(REGEX REPLACE "([^\n]+)" "    \\1" printed "${printed}")

foreach(document README.md docs/tool.md)
    file(READ ${SOURCE_DIR}/${document} text)
    string(FIND "${text}" "    $ beatatlas analyze track.wav\n${printed}" place)
    if(place EQUAL -1)
        message(FATAL_ERROR "${document} does not show what the program prints:\n${printed}")
    endif()
endforeach()
