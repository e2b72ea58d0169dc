# SPDX-License-Identifier: MIT
# Checks flags as in a directory with the given COMPILE_OPTIONS, LINK_OPTIONS and CMake flag
# variables.
cmake_minimum_required(VERSION 3.25)
set(CMAKE_BUILD_TYPE Release)
set_property(DIRECTORY PROPERTY COMPILE_OPTIONS "${COMPILE_OPTIONS}")
set_property(DIRECTORY PROPERTY LINK_OPTIONS "${LINK_OPTIONS}")
include(${SOURCE}/cmake/LooseArithmetic.cmake)
beatatlas_refuse_loose_arithmetic()
