// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas::track::inner {

/** How likely an answer is right, each part given the ones before, 0 … 1: the shares of right
 *  answers on tracks of known metre. 0 where there is no answer. */
struct TempoConfidence {
    double pulse = 0.0;  // the tempo up to the level of the metre
    double level = 0.0;
    double phase = 0.0;
    double bars = 0.0;
};

/** @param clarity  of the pulse, see clarityOf() */
double confidenceOfPulse(double clarity);

/** @param share  that the readings of this level have of all, as a probability */
double confidenceOfLevel(double share);

/** @param share  that the reading has of those of its level */
double confidenceOfPhase(double share);

/** @param share  that the reading of the bars has of all */
double confidenceOfBars(double share);

}  // namespace beatatlas::track::inner
