# SPDX-License-Identifier: MIT
# Flags that a parent project sets globally apply to the library too. Those that loosen arithmetic
# would silently change its results. They are refused rather than overridden, because at link time
# they make the whole program flush denormal numbers to zero.
# This file reads the compiler and linker flags in CMake's variables, the common ones and those of
# the configurations that are built, and the directory's compile and link options.
# src/dsp/exactArithmetic.h detects flags from other places during compilation, if the compiler has
# a macro for them. Flags for contraction and the rounding mode are not refused, since
# cmake/Flags.cmake overrides them.
function(beatatlas_refuse_loose_arithmetic)
    get_directory_property(compile_options COMPILE_OPTIONS)
    get_directory_property(link_options LINK_OPTIONS)
    set(flags ${CMAKE_CXX_COMPILER_ARG1} ${compile_options} ${link_options})
    foreach(name CXX_FLAGS EXE_LINKER_FLAGS MODULE_LINKER_FLAGS SHARED_LINKER_FLAGS)
        list(APPEND flags ${CMAKE_${name}})
        foreach(configuration ${CMAKE_BUILD_TYPE} ${CMAKE_CONFIGURATION_TYPES})
            string(TOUPPER ${configuration} configuration)
            list(APPEND flags ${CMAKE_${name}_${configuration}})
        endforeach()
    endforeach()
    set(loose fast-math unsafe-math-optimizations associative-math reciprocal-math finite-math-only
        no-signed-zeros no-honor-infinities no-honor-nans approx-func single-precision-constant
        "fp-model=(fast|aggressive)"
        "denormal-fp-math(-f32)?=[a-z,-]*(preserve-sign|positive-zero)")
    list(JOIN loose "|" loose)
    # The flags may be in one string, in a list, or inside a generator expression.
    if("${flags}" MATCHES "(^|[ ;:,\"])(-Ofast|-f(${loose})|-mfpmath=387|-mdaz-ftz)($|[ ;,>\"])")
        message(FATAL_ERROR
            "Beat Atlas defines its results to the bit, and ${CMAKE_MATCH_2} would change them. Give "
            "that flag to your own targets with target_compile_options(), not to the whole project.")
    endif()
endfunction()
