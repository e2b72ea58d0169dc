// SPDX-License-Identifier: MIT
#pragma once

namespace peakss {

/** The largest of n levels, at least 0; what is not a number does not count. */
float loudestLevel(const float* levels, int n);

/** out[i] = levels[i] − earlier[i]. n ≤ 0 does nothing. */
void subtractLevels(const float* levels, const float* earlier, float* out, int n);

/** Turns each sum over `length` levels into what levels[i] has above the mean, at least 0; 0 for
 *  what is not a number. n ≤ 0 does nothing. */
void subtractMeans(const float* levels, float* sums, int n, int length);

}  // namespace peakss
