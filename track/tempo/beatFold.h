// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

namespace beatatlas::track::inner {

/** When the first beat of a track of steady tempo falls, or one half a beat off it, to a few
 *  milliseconds: from about 0 to a beat later.
 *  @param sharp  the onset envelope, 150 values a second; at least one
 *  @param hz     beats a second */
double firstBeat(const std::vector<float>& sharp, double hz);

}  // namespace beatatlas::track::inner
