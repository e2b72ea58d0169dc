// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cmath>

#include "dsp/truncation.h"

namespace peakss {

/** A grid is tied to raw beats at quarter beats. */
inline constexpr int kQuartersPerBeat = 4;

inline double samplesPerMs(int samplingRate) {
    return samplingRate / 1000.0;
}

/** How far, in samples, a raw beat may lie from where a pulse expects it: an eighth of a beat, at
 *  least 50 ms. */
inline int snapTolerance(double beatSamples, int samplingRate) {
    return std::max(samplingRate / 20, beatatlas::truncToInt32(beatSamples * 0.125));
}

/** Whether a pulse of this length can be walked: finite and longer than any snap can hold it back,
 *  50 ms or 1200 BPM. No tempo the tables can hold comes near; without this bound an absurd one
 *  would walk for ever. */
inline bool isWalkableBeat(double beatSamples, int samplingRate) {
    return std::isfinite(beatSamples) && beatSamples > std::max(samplingRate / 20, 1);
}

}  // namespace peakss
