/* SPDX-License-Identifier: MIT */
/* Read before every source of the libraries (cmake/Flags.cmake). Results are defined to the bit; a
 * compiler that may reorder additions, divide by multiplying or forget that NaN exists gives
 * others, and nothing would show it. */
#ifndef BEATATLAS_DSP_EXACTARITHMETIC_H
#define BEATATLAS_DSP_EXACTARITHMETIC_H

#if defined(__FAST_MATH__) || (defined(__FINITE_MATH_ONLY__) && __FINITE_MATH_ONLY__ > 0) ||       \
    defined(__ASSOCIATIVE_MATH__) || defined(__RECIPROCAL_MATH__) || defined(__NO_SIGNED_ZEROS__)
#error "Beat Atlas defines its results to the bit: compile it without -ffast-math and its kind"
#endif

#endif
