// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

namespace beatatlas::track::inner {

/** The tempo along a track, every two seconds, within a third of the tempo of the whole track. */
struct LocalTempo {
    /** Beats per second, in windows of eight seconds. */
    std::vector<double> hz;
    /** How far the beats and their harmonics stand out from the other frequencies of a window; the
     *  median of all windows. Noise gives about 2. */
    double standing = 0.0;

    /** Beats per second at a time; linear between the centres of two windows. */
    double at(double seconds) const;
};

/** Follows the tempo of a track: every change is allowed, but costs something.
 *  @param envelope  onsets, 150 values a second, at least one
 *  @param hz        beats per second of the whole track */
LocalTempo followTempo(const std::vector<float>& envelope, double hz);

}  // namespace beatatlas::track::inner
