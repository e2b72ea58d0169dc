// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "track/tempo/BeatLine.h"
#include "track/tempo/metre.h"

namespace beatatlas::track::inner {

/** Beats of even distances over a whole track, where a reading of an even line has them, moved onto the onsets.
 *  @param sharp    the onset envelope, 150 values a second; at least one
 *  @param seconds  of the track
 *  @return seconds, ascending, from 0 */
std::vector<double> layEvenBeats(const std::vector<float>& sharp, double seconds,
                                 const BeatLine& line, const MetreReading& metre);

/** The same for a line that follows the music; beyond its ends it goes straight on. */
std::vector<double> layTrackedBeats(const std::vector<float>& sharp, double seconds,
                                    const BeatLine& line, const MetreReading& metre);

}  // namespace beatatlas::track::inner
