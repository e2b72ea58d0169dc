# SPDX-License-Identifier: MIT
# As a directory would that has these COMPILE_OPTIONS, LINK_OPTIONS and the flags given in CMake's
# own variables.
cmake_minimum_required(VERSION 3.25)
set(CMAKE_BUILD_TYPE Release)
set_property(DIRECTORY PROPERTY COMPILE_OPTIONS "${COMPILE_OPTIONS}")
set_property(DIRECTORY PROPERTY LINK_OPTIONS "${LINK_OPTIONS}")
include(${SOURCE}/cmake/LooseArithmetic.cmake)
beatatlas_refuse_loose_arithmetic()
