// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace beatatlas {

/** How loud the bands are in one point of the loudness wave: steps of about 1 dB, from 0 (silent)
 *  to 30. */
struct LoudPointSteps {
    std::int32_t low;
    std::int32_t mid;
    std::int32_t high;
};

/** A finalised point: its level in 16-bit scale, and the steps that its colour is chosen from. */
struct LoudPoint {
    float level;
    LoudPointSteps steps;
};

/** Level of a band in whole dB steps: 0 up to 29.5 dB below full scale … 30 from 0.5 dB below
 *  upwards. */
std::int32_t decibelStep(float sum);

/** Weighs the average level with the low band's peaks: never above the average, never below a
 *  quarter of it.
 *  @param average  average level of the point, the sums: peak levels of its bands, all in 16-bit
 *                  scale */
LoudPoint makeLoudPoint(float average, float lowSum, float midSum, float highSum);

/** Colour 0..5 by the balance of the bands: 0 to 3 where the low band is strong, 4 and 5 where it
 *  is not. */
std::int32_t loudColor(const LoudPointSteps& steps);

}  // namespace beatatlas
