// SPDX-License-Identifier: MIT
#pragma once

namespace peakss {

/** The highest level of two channels in 16-bit scale, 1.0 being full scale. Levels below 0.005 count as silence.
 *
 *  @param index  on entry the index of the first sample; takes the index of the highest one, the first of equals.
 *                Untouched when all is silence
 *  @return 0.0 for silence, a count below 1 or a null argument */
float getBuffLevel(int count, const float* left, const float* right, int* index);

}  // namespace peakss
