// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

namespace beatatlas::track::inner {

/** The time in seconds of the first beat of a track of steady tempo, or of the point half a beat
 *  off it, to within a few milliseconds. Lies between about 0 and the length of a beat.
 *  @param sharp  the onset envelope, 150 values a second; at least one
 *  @param hz     beats per second */
double firstBeat(const std::vector<float>& sharp, double hz);

}  // namespace beatatlas::track::inner
