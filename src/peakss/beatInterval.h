// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cmath>

#include "dsp/truncation.h"

namespace peakss {

/** How far an interval may lie from a reference (both in ms) and still be the same tempo: 4 % of
 *  the reference, at most 20 ms. Cut to single precision only once the cap has been applied. */
inline float intervalTolerance(float referenceMs) {
    const double share = (static_cast<double>(referenceMs) * 2400.0) / 60000.0;
    return static_cast<float>(std::min(share, 20.0));
}

/** Whether an interval has the tempo of a reference interval: it, its double or its half lies
 *  strictly within the tolerance of the reference. A detector that follows half or twice the pulse
 *  hears the same tempo.
 *
 *  Nothing matches a reference that is no tempo (0, negative, infinite, not a number), itself
 *  included. */
inline bool matchesTempo(float intervalMs, float referenceMs) {
    const float tolerance = intervalTolerance(referenceMs);
    const float low = referenceMs - tolerance;
    const float high = referenceMs + tolerance;
    const auto isInside = [low, high](float value) { return low < value && value < high; };
    return isInside(intervalMs) || isInside(2.0F * intervalMs) || isInside(intervalMs / 2.0F);
}

/** True when neither the interval, nor its double, nor its half has the tempo of the reference.
 *  Exactly at the tolerance is not a miss; what is not a number misses nothing. */
inline bool missesTempoOf(float intervalMs, float referenceMs) {
    const float tolerance = intervalTolerance(referenceMs);
    return std::fabs(intervalMs - referenceMs) > tolerance &&
           std::fabs((intervalMs * 2.0F) - referenceMs) > tolerance &&
           std::fabs((intervalMs * 0.5F) - referenceMs) > tolerance;
}

/** The interval of whole BPM, in ms; endless for 0 BPM. */
inline float intervalOfBpm(int bpm) {
    return 60000.0F / static_cast<float>(bpm);
}

/** An interval as a number of beats, rounded half up to quarter beats. */
inline float quarterBeats(float intervalMs, float beatMs) {
    const int quarters = beatatlas::truncToInt32(((intervalMs / beatMs) * 4.0F) + 0.5F);
    return static_cast<float>(quarters) * 0.25F;
}

}  // namespace peakss
