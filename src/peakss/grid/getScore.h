// SPDX-License-Identifier: MIT
#pragma once

#include "peakss/BeatInfo.h"

namespace peakss {

/** How well beats fit a pulse: walks from one position up to another in equal steps, snaps to every beat within
 *  the tolerance, and gathers for each of them the tolerance less its distance.
 *
 *  @param step       samples; below 1, or when snapping would hold the walk in place, the walk ends
 *  @param tolerance  samples
 *  @param firstHit   null, or takes the position of the first beat met, −1 when there is none */
double getScore(const BeatList& raw, double from, double to, double step, int tolerance,
                double* firstHit);

}  // namespace peakss
