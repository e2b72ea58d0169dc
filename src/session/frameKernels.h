// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace beatatlas {

/** Sum and maximum of sample magnitudes, 16-bit scale. */
struct LevelTotals {
    /** Over both channels. */
    std::int64_t sum = 0;
    /** Largest magnitude of one channel. */
    std::int32_t max = 0;
};

/** Magnitude of a sample cut to 16 bits; in int, so that −32768 has its true one. */
std::int32_t magnitude(float sample);

/** The magnitudes of n frames, each sample by magnitude(); in vector lanes, where whole numbers sum
 *  up the same. */
LevelTotals levelTotals(const float* left, const float* right, int n);

/** The two forms in which the analysers take n frames from −32768 to 32767. Louder samples wrap in
 *  the second form, +32768.0 to −32768 the first of them.
 *
 *  @param mono    receives the mean of both channels, full scale ±1.0
 *  @param stereo  receives both channels in turn, each by truncToInt16() */
void convertFrames(const float* left, const float* right, int n, float* mono, std::int16_t* stereo);

}  // namespace beatatlas
