// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

namespace beatatlas::track::inner {

/** The time, 0 ≤ t < 1 / (4 hz), from which a sixteenth (a quarter of a beat) apart the onsets of a track of constant
 *  tempo fall, to a few milliseconds.
 *  @param sharp  the onset envelope, 150 values a second; at least one
 *  @param hz     beats a second */
double firstSixteenth(const std::vector<float>& sharp, double hz);

}  // namespace beatatlas::track::inner
