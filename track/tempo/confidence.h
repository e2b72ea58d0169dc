// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas::track::inner {

/** How likely each part of an answer is right if the parts before it are, 0 … 1: the share of right
 *  answers on tracks of known metre. 0 where there is no answer. */
struct TempoConfidence {
    /** The tempo, up to the level of the metre. */
    double pulse = 0.0;
    double level = 0.0;
    double phase = 0.0;
    double bars = 0.0;
};

/** @param clarity  of the pulse, the result of clarityOf() */
double confidenceOfPulse(double clarity);

/** @param share  probability of all readings of this level together */
double confidenceOfLevel(double share);

/** @param share  probability of the reading among those of its level */
double confidenceOfPhase(double share);

/** @param share  probability of the reading of the bars */
double confidenceOfBars(double share);

}  // namespace beatatlas::track::inner
