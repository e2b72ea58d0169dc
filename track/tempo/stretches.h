// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

namespace beatatlas::track::inner {

/** A stretch of beats of nearly one tempo. */
struct TempoStretch {
    double from = 0.0;  // seconds, of its first beat
    double to = 0.0;    // of the first one of the next stretch, or of the last beat of all
    double bpm = 0.0;   // the mean
};

/** Cuts beats where their tempo goes 4 % away from the mean of the stretch so far. A drummer's
 *  wavering stays within one, a step begins another, and a ramp becomes a stair.
 *  @param beats  seconds, ascending; none of fewer than two */
std::vector<TempoStretch> findStretches(const std::vector<double>& beats);

}  // namespace beatatlas::track::inner
