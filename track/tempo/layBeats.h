// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "track/tempo/BeatLine.h"
#include "track/tempo/metre.h"

namespace beatatlas::track::inner {

/** The beats of a whole track where a reading of its line has them, moved onto the onsets. Of a
 *  track of steady tempo they have even distances; else they follow the line, and go straight on
 *  beyond its ends.
 *  @param sharp    the onset envelope, 150 values a second; at least one
 *  @param seconds  of the track
 *  @return seconds, ascending, from 0 */
std::vector<double> layBeats(const std::vector<float>& sharp, double seconds, const BeatLine& line,
                             const MetreReading& metre, bool isSteady);

}  // namespace beatatlas::track::inner
