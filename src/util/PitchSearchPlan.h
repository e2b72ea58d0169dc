// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas {

/** Which concert pitches are tried at first, as candidates 0 … 12 for 434 … 446 Hz. */
struct PitchSearchPlan {
    int hop;            ///< samples between frames, before the caller's division
    int start;          ///< first candidate of the first pass
    int step;           ///< to the next one
    int end;            ///< the first pass stays below it
    bool refinesAfter;  ///< a second pass looks beside the best ones
};

PitchSearchPlan pitchSearchPlanOf(int mode, bool isLong);

}  // namespace beatatlas
