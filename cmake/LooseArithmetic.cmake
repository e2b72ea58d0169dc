# SPDX-License-Identifier: MIT
# Flags that a parent project sets for everything reach the library as well. Those that loosen arithmetic would change
# its results without a word. They are refused and not overridden: they reach the linker too, where they make the whole
# program flush denormal numbers to zero. What stands elsewhere is seen by src/dsp/exactArithmetic.h while compiling.
function(beatatlas_refuse_loose_arithmetic)
    get_directory_property(options COMPILE_OPTIONS)
    set(flags ${CMAKE_CXX_FLAGS} ${CMAKE_SHARED_LINKER_FLAGS} ${options})
    foreach(configuration ${CMAKE_BUILD_TYPE} ${CMAKE_CONFIGURATION_TYPES})
        string(TOUPPER ${configuration} configuration)
        list(APPEND flags ${CMAKE_CXX_FLAGS_${configuration}})
    endforeach()
    set(loose fast-math unsafe-math-optimizations associative-math reciprocal-math finite-math-only
        no-signed-zeros no-honor-infinities no-honor-nans approx-func single-precision-constant)
    list(JOIN loose "|" loose)
    # The flags stand in one string, in a list, or inside a generator expression.
    if("${flags}" MATCHES "(^|[ ;:,\"])(-Ofast|-f(${loose})|-mfpmath=387|-mdaz-ftz)($|[ ;,>\"])")
        message(FATAL_ERROR "Beat Atlas defines its results to the bit, and ${CMAKE_MATCH_2} would change them. Give that "
            "flag to your own targets with target_compile_options(), not to the whole project.")
    endif()
endfunction()
