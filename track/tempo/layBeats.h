// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "track/tempo/BeatLine.h"
#include "track/tempo/metre.h"

namespace beatatlas::track::inner {

/** The beats of a whole track as a reading of its line places them, shifted onto the onsets. With a
 *  steady tempo they are evenly spaced; else they follow the line, extrapolated beyond its ends.
 *  @param sharp    the onset envelope, 150 values a second; at least one
 *  @param seconds  length of the track
 *  @return seconds, ascending, at least 0 */
std::vector<double> layBeats(const std::vector<float>& sharp, double seconds, const BeatLine& line,
                             const MetreReading& metre, bool isSteady);

}  // namespace beatatlas::track::inner
