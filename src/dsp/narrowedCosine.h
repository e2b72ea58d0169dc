// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas {

/** Tables of cosines and sines in single precision: the bits that float(std::cos(x)) and
 *  float(std::sin(x)) have.
 *
 *  A double is narrowed: of its 53 bits 24 remain, and the last ones rarely matter. So the values
 *  are first computed in vector lanes to about 2^-48, and where everything within 2^-44 of such a
 *  value narrows to the same float, that float is the answer: the mathematics library, whose error
 *  is smaller, gives it too. Elsewhere, about once in a hundred thousand, the library is asked.
 *
 *  In any rounding mode; n ≤ 0 does nothing. */

/** cosines[i] and sines[i] for angles[i] in radians, of any value. */
void narrowedTone(const double* angles, float* cosines, float* sines, int n);

/** heights[i] = float(0.5 − 0.5 · std::cos(angles[i])). */
void narrowedHann(const double* angles, float* heights, int n);

}  // namespace beatatlas
