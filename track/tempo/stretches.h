// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

namespace beatatlas::track::inner {

/** A section of beats of nearly one tempo. */
struct TempoStretch {
    /** First beat, seconds. */
    double from = 0.0;
    /** First beat of the next section, or the last beat of the track. */
    double to = 0.0;
    /** The mean tempo. */
    double bpm = 0.0;
};

/** Cuts beats where their tempo deviates by 4 % from the mean of the section so far. A drummer's
 *  fluctuations stay within one section, a step begins another, and a ramp becomes a staircase.
 *  @param beats  seconds, ascending; fewer than two give no section */
std::vector<TempoStretch> findStretches(const std::vector<double>& beats);

}  // namespace beatatlas::track::inner
