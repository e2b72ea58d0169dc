// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas {

/** Which concert pitches are tried at first, as candidates 0 … 12 for 434 … 446 Hz. */
struct PitchSearchPlan {
    /** Samples between frames, before the caller's division. */
    int hop;
    /** First candidate of the first pass. */
    int start;
    /** Step to the next candidate. */
    int step;
    /** Bound of the first pass, exclusive. */
    int end;
    /** A second pass looks beside the best ones. */
    bool refinesAfter;
};

PitchSearchPlan pitchSearchPlanOf(int mode, bool isLong);

}  // namespace beatatlas
