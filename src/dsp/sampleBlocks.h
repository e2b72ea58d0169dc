// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>

namespace beatatlas {

/** The mean of both channels of each frame, exact, and its whole part. n ≤ 0 does nothing.
 *
 *  @param stereo  n frames, left and right interleaved
 *  @param means   receives n values: half the sum of both channels
 *  @param wholes  receives the same cut toward zero */
void meansOfBlock(const std::int16_t* stereo, double* means, double* wholes, int n);

/** out[i] = in[i]. n ≤ 0 does nothing. */
void widenBlock(const float* in, double* out, int n);

/** out[i] = |in[i]|, rounded to float before. n ≤ 0 does nothing. */
void magnitudesOfBlock(const double* in, float* out, int n);

/** out[s][i] = |rows[i][s]|. n ≤ 0 does nothing. */
void magnitudesOfRows(const std::array<float, 4>* rows, const std::array<float*, 4>& out, int n);

/** The largest |left + right| of the n frames. 0 for n ≤ 0.
 *
 *  @param stereo  n frames, left and right interleaved */
int largestSum(const std::int16_t* stereo, int n);

/** The largest of |in[i]|, at least 0; values that are no numbers do not count. 0 for n ≤ 0. */
double largestMagnitude(const double* in, int n);

}  // namespace beatatlas
