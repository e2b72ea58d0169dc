// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace beatatlas {

/** out[i] = half the sum of the two channels of frame i, exact. n ≤ 0 does nothing.
 *
 *  @param stereo  n frames, left and right interleaved */
void monoOfBlock(const std::int16_t* stereo, double* out, int n);

/** The largest |left + right| of the n frames. 0 for n ≤ 0.
 *
 *  @param stereo  n frames, left and right interleaved */
int largestSum(const std::int16_t* stereo, int n);

/** The largest of |in[i]|, at least 0; values that are no numbers do not count. 0 for n ≤ 0. */
double largestMagnitude(const double* in, int n);

}  // namespace beatatlas
