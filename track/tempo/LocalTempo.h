// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

namespace beatatlas::track::inner {

/** The tempo along a track: where it lies within a third of that of the whole track, two seconds
 *  apart. */
struct LocalTempo {
    std::vector<double> hz;  // beats a second, of windows of eight seconds
    /** How far the beats of a window and their harmonics stand out of its other frequencies, in the
     *  middle one of all windows. Noise gives about 2. */
    double standing = 0.0;

    /** Of a time; straight between the middles of two windows. */
    double at(double seconds) const;
};

/** Follows the tempo of a track: it may go anywhere, but every change has its price.
 *  @param envelope  onsets, 150 values a second, at least one
 *  @param hz        beats a second of the whole track */
LocalTempo followTempo(const std::vector<float>& envelope, double hz);

}  // namespace beatatlas::track::inner
