# SPDX-License-Identifier: MIT
# The compiler flags, in one place.
# beatatlas_numerics is part of the algorithms: every operation rounds once, in the mode that is set
# when it runs. Contracting a multiply and an add into one instruction, or folding an inexact
# constant with rounding to nearest, changes the results. No target adds any other floating-point
# flag.
add_library(beatatlas_numerics INTERFACE)
target_compile_options(beatatlas_numerics INTERFACE -ffp-contract=off -frounding-math)

# For the libraries themselves: their sources refuse to compile if arithmetic is loosened all the
# same.
add_library(beatatlas_exact_arithmetic INTERFACE)
target_compile_options(beatatlas_exact_arithmetic INTERFACE
    "SHELL:-include ${PROJECT_SOURCE_DIR}/src/dsp/exactArithmetic.h")

add_library(beatatlas_warnings INTERFACE)
target_compile_options(beatatlas_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow)
if(BEATATLAS_WERROR)
    target_compile_options(beatatlas_warnings INTERFACE -Werror)
endif()

# An implicit narrowing rounds toward zero at run time but to nearest in the compiler, so none is
# allowed.
add_library(beatatlas_strict_conversions INTERFACE)
target_compile_options(beatatlas_strict_conversions INTERFACE
    -Wconversion -Wdouble-promotion -Wfloat-conversion -Wsign-conversion)

# Rooms of the program that hand samples on but never work through a track themselves: optimising
# their templates fully takes the compiler longer than it saves in any run.
add_library(beatatlas_light_optimisation INTERFACE)
target_compile_options(beatatlas_light_optimisation INTERFACE $<$<CONFIG:Release>:-O1>)
# With sanitizers to optimise them takes three times as long as not to: worth it for fuzz targets
# alone, which run for hours.
if(BEATATLAS_SANITIZE AND NOT BEATATLAS_SANITIZE MATCHES fuzzer)
    target_compile_options(beatatlas_light_optimisation INTERFACE -O0)
endif()

if(BEATATLAS_SANITIZE)
    add_compile_options(-fsanitize=${BEATATLAS_SANITIZE} -fno-sanitize-recover=all
        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${BEATATLAS_SANITIZE})
endif()
